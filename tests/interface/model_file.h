// KZB files made through the exported store calls, and the small machines that the tests use.
#pragma once

#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "KZBCalculator/kzbcalc.h"

namespace kzb_test {

using Point = std::vector<double>;

// One file, written when its path is asked for and deleted with the object.
class ModelFile {
  public:
    ModelFile() { kzb_initialize(&store_); }
    ModelFile(const ModelFile&) = delete;
    ModelFile& operator=(const ModelFile&) = delete;
    ~ModelFile() {
        kzb_finish(store_);
        if (!path_.empty()) {
            std::filesystem::remove(path_);
        }
    }

    ModelFile& integer(const char* category, const char* key, int value) {
        kzb_put_int(category, key, value, store_);
        return *this;
    }
    ModelFile& number(const char* category, const char* key, double value) {
        kzb_put_double(category, key, value, store_);
        return *this;
    }
    ModelFile& text(const char* category, const char* key, const char* value) {
        kzb_put_string(category, key, value, store_);
        return *this;
    }
    // Null once the file is written.
    KZB_STORE* store() const { return store_; }
    // Table of `value` at the nodes; `cyclic` lists the axes, from 1, that are periodic.
    ModelFile& table(const char* category, const char* key, const std::vector<Point>& axes,
                     const std::function<double(const Point&)>& value, const std::vector<int>& cyclic = {}) {
        std::vector<int> sizes;
        for (const Point& axis : axes) {
            sizes.push_back(static_cast<int>(axis.size()));
        }
        const int dim = static_cast<int>(axes.size());
        kzb_create_table(category, key, dim, sizes.data(), store_);
        for (int a = 0; a < dim; ++a) {
            for (int i = 0; i < sizes[static_cast<std::size_t>(a)]; ++i) {
                const double node = axes[static_cast<std::size_t>(a)][static_cast<std::size_t>(i)];
                kzb_set_table_axis_value(category, key, a + 1, i, node, store_);
            }
        }
        for (const int axis : cyclic) {
            kzb_set_table_cyclic_flag(category, key, axis, 1, store_);
        }
        std::vector<int> at(axes.size(), 0);
        Point x(axes.size());
        for (;;) {
            for (std::size_t a = 0; a < axes.size(); ++a) {
                x[a] = axes[a][static_cast<std::size_t>(at[a])];
            }
            kzb_set_table_value(category, key, at.data(), value(x), store_);
            std::size_t a = axes.size();
            while (a > 0 && ++at[a - 1] == sizes[a - 1]) {
                at[--a] = 0;
            }
            if (a == 0) {
                return *this;
            }
        }
    }

    // Writes the file at the first call.
    const std::string& path() {
        if (path_.empty()) {
            static int count = 0;
            path_ = (std::filesystem::temp_directory_path() /
                     ("kzb_interface_" + std::to_string(::getpid()) + "_" + std::to_string(count++) + ".kzb"))
                        .string();
            kzb_writer(path_.c_str(), store_);
            kzb_finish(store_);
            store_ = nullptr;
        }
        return path_;
    }

  private:
    KZB_STORE* store_ = nullptr;
    std::string path_;
};

// A calculator that is terminated with the object.
class Calculator {
  public:
    explicit Calculator(const std::string& path, int calc_mode = 1)
        : status(kzbcalcInitialize(path.c_str(), calc_mode, &handle_)) {}
    explicit Calculator(ModelFile& file, int calc_mode = 1) : Calculator(file.path(), calc_mode) {}
    Calculator(const Calculator&) = delete;
    Calculator& operator=(const Calculator&) = delete;
    ~Calculator() { kzbcalcTerminate(handle_); }
    operator KZB_CALC*() const { return handle_; }

  private:
    KZB_CALC* handle_ = nullptr;

  public:
    const int status;
};

inline Point every(double step, double from, double to) {
    Point axis;
    for (int i = 0; from + i * step <= to + 1e-9; ++i) {
        axis.push_back(from + i * step);
    }
    return axis;
}
inline const Point three{0.0, 1.0, 2.0};
inline const Point nine = every(1.0, 0.0, 8.0);
inline const Point currents{0.0, 1000.0};
inline const Point phase_currents{-1000.0, 1000.0};
inline const Point betas{-360.0, 360.0};

inline std::function<double(const Point&)> constant(double value) {
    return [=](const Point&) { return value; };
}

// Element t of a matrix with `self` on the diagonal and `mutual` beside it; t is the last coordinate.
inline std::function<double(const Point&)> symmetric_matrix(double self, double mutual) {
    return [=](const Point& x) {
        const int t = static_cast<int>(x.back());
        return t % 4 == 0 ? self : mutual;
    };
}

inline constexpr double rad_per_deg = std::numbers::pi / 180.0;

// Rotary machine of 4 poles without tables: star, no offset, turns ratio 1.
inline void rotary_frame(ModelFile& file, int accuracy_type, double resistance) {
    file.integer("control", "motor_type", 10000)
        .integer("control", "number_of_poles", 4)
        .integer("control", "accuracy_type", accuracy_type)
        .integer("control", "Winding_Pattern_Flag", 0)
        .number("control", "beta_zero", 0.0)
        .number("parameter", "RU", resistance);
}

// Category and tables of application LdLq with constant inductances.
inline void add_ld_lq(ModelFile& file, double ld, double lq, double d_flux) {
    file.table("dq_inductance", "d_inductance", {betas, currents}, constant(ld))
        .table("dq_inductance", "q_inductance", {betas, currents}, constant(lq))
        .number("d_flux", "d_flux", d_flux);
}

// Magnet flux of phase k, at mechanical angle x degrees of a 4-pole machine.
inline double sine_flux(double amplitude, double angle_deg, double k) {
    return amplitude * std::cos((2.0 * angle_deg - 120.0 * k) * rad_per_deg);
}

// Application SimpleHarmonic: nodes every 5 degrees over one electrical period of 180 degrees.
inline void add_simple_harmonic(ModelFile& file, double self, double mutual, double flux, double torque) {
    const Point angles = every(5.0, 0.0, 180.0);
    file.table("inductance", "inductance", {{1.0, 1000.0}, angles, nine}, symmetric_matrix(self, mutual), {2})
        .table("mag_flux", "flux", {angles, three}, [=](const Point& x) { return sine_flux(flux, x[0], x[1]); }, {1})
        .table("torque", "torque_ibeta", {betas, angles, currents}, constant(torque), {2});
}

// Application Harmonic over amplitude and phase.
inline void add_harmonic(ModelFile& file, double self, double mutual, double flux, double torque) {
    const Point angles = every(5.0, 0.0, 180.0);
    file.table("current_flux", "flux", {currents, betas, angles, three},
               [=](const Point& x) { return sine_flux(flux, x[2], x[3]); }, {3})
        .table("harmonic_inductance", "inductance", {currents, betas, angles, nine}, symmetric_matrix(self, mutual),
               {3})
        .table("harmonic_torque", "torque_ibeta", {betas, angles, currents}, constant(torque), {2});
}

// Application FluxIntegralDQTheta: i_d = (psi_d - flux) / l, i_q = psi_q / l at every angle.
inline void add_flux_integral(ModelFile& file, double l, double flux, double torque) {
    const Point angles = every(5.0, 0.0, 180.0);
    const Point fluxes{-100.0, 100.0};
    file.table("flux_table", "fd_noload", {angles}, constant(flux), {1})
        .table("flux_table", "fq_noload", {angles}, constant(0.0), {1})
        .table("flux_table", "f0_noload", {angles}, constant(0.0), {1})
        .table("flux_table", "f0_ibeta", {currents, betas, angles}, constant(0.0), {3})
        .table("current_table", "id", {fluxes, fluxes, angles}, [=](const Point& x) { return (x[0] - flux) / l; }, {3})
        .table("current_table", "iq", {fluxes, fluxes, angles}, [=](const Point& x) { return x[1] / l; }, {3})
        .table("harmonic_torque", "torque_ibeta", {betas, angles, currents}, constant(torque), {2});
}

// Linear machine with an electrical length of 0.1 m; force 12 N, attraction 34 N at every point.
inline void linear_machine(ModelFile& file, double self, double mutual, double flux, double resistance) {
    const Point positions = every(0.005, 0.0, 0.1);
    file.integer("control", "motor_type", 10005)
        .integer("control", "Winding_Pattern_Flag", 0)
        .number("control", "electrical_length", 0.1)
        .number("parameter", "RU", resistance)
        .table("inductance", "inductance", {{1.0, 1000.0}, positions, nine}, symmetric_matrix(self, mutual), {2})
        .table("mag_flux", "flux", {positions, three},
               [=](const Point& x) {
                   return flux * std::cos(x[0] / 0.1 * 2.0 * std::numbers::pi - x[1] * 120.0 * rad_per_deg);
               },
               {1})
        .table("distance_force", "force", {betas, positions, currents}, constant(12.0), {2})
        .table("distance_force", "attractive_force", {betas, positions, currents}, constant(34.0), {2});
}

}  // namespace kzb_test
