// Small induction machines for the tests, made in memory, and the formulas of the frames written out once more.
#pragma once

#include <array>
#include <cmath>

#include "models/calc_eq_im.h"
#include "pmsm_files.h"

namespace kzb_test {

using kzb::Calc_Eq_im_transient;

constexpr double im_two_pi = 6.283185307179586;

// Constants of the equivalent circuit per phase; reactances at `frequency`.
struct ImConstants {
    double r1 = 0.5;
    double r2 = 0.4;
    double x1 = 1.0;
    double x2 = 1.2;
    double b0 = 0.04;
    double g0 = 0.001;
    double frequency = 50.0;
    int poles = 4;
    int connection = 0;
};

inline void im_control(KZB_STORE& store, int poles, int connection) {
    kzb::put_int(store, "control", "motor_type", 10006);
    kzb::put_int(store, "control", "number_of_poles", poles);
    kzb::put_int(store, "control", "Winding_Pattern_Flag", connection);
}

inline void im_constants_file(KZB_STORE& store, const ImConstants& m = {}) {
    im_control(store, m.poles, m.connection);
    kzb::put_double(store, "information", "rated_freqency", m.frequency);
    kzb::put_double(store, "InductionParam", "R1", m.r1);
    kzb::put_double(store, "InductionParam", "R2", m.r2);
    kzb::put_double(store, "InductionParam", "X1", m.x1);
    kzb::put_double(store, "InductionParam", "X2", m.x2);
    kzb::put_double(store, "InductionParam", "b0", m.b0);
    kzb::put_double(store, "InductionParam", "g0", m.g0);
}

// One value per table, all different, so that no two can be taken for each other. Powers of two and their sums: the
// interpolation of a constant is then exact.
struct ImTableValues {
    double l11 = 0.125;
    double m12 = 0.09375;
    double m21 = 0.078125;
    double l22 = 0.140625;
    double r2 = 0.375;
    double r1 = 0.5;
    int poles = 4;
    int connection = 0;
};

inline const std::vector<Axis>& im_axes() {
    static const std::vector<Axis> axes = {nodes(-64.0, 64.0, 3), nodes(0.0, 128.0, 3)};
    return axes;
}

inline void im_tables_file(KZB_STORE& store, const ImTableValues& m = {}) {
    im_control(store, m.poles, m.connection);
    kzb::put_double(store, "InductionParam", "R1", m.r1);
    const char* const category = "InductionParam_HigherAccuracy";
    constant(store, category, "L11_table", im_axes(), m.l11);
    constant(store, category, "M12_table", im_axes(), m.m12);
    constant(store, category, "M21_table", im_axes(), m.m21);
    constant(store, category, "L22_table", im_axes(), m.l22);
    constant(store, category, "R2_table", im_axes(), m.r2);
}

// Gives every value of a table of the model anew.
inline void im_fill(KZB_STORE& store, const char* key, double value) {
    KZB_TABLE* const table = kzb::find_table(store, "InductionParam_HigherAccuracy", key);
    for (std::size_t i = 0; i < table->values.size(); ++i) {
        table->values[i] = value;
    }
}

inline double im_value(const KZB_STORE& store, const char* key, int i = 0, int j = 0) {
    const int indices[2] = {i, j};
    return kzb::table_get_value(kzb::find_table(store, "InductionParam_HigherAccuracy", key), indices);
}

// ---- the frames, from their definitions
struct Two {
    double alpha;
    double beta;
};

inline Two im_clarke(double a, double b, double c) {
    const double k = std::sqrt(2.0 / 3.0);
    const double h = std::sqrt(3.0) / 2.0;
    return {k * (a - b / 2 - c / 2), k * (h * b - h * c)};
}

inline std::array<double, 3> im_inverse_clarke(const Two& x) {
    const double k = std::sqrt(2.0 / 3.0);
    const double h = std::sqrt(3.0) / 2.0;
    return {k * x.alpha, k * (h * x.beta - x.alpha / 2), k * (-x.alpha / 2 - h * x.beta)};
}

inline Two im_from_rotor(double a, double b, double c, double th) {
    const double k = std::sqrt(2.0 / 3.0);
    const double turn = 8.0 * std::atan(1.0);
    return {k * (std::cos(th) * a + std::cos(th + turn / 3) * b + std::cos(th + 2 * turn / 3) * c),
            k * (std::sin(th) * a + std::sin(th + turn / 3) * b + std::sin(th + 2 * turn / 3) * c)};
}

inline std::array<double, 3> im_to_rotor(const Two& x, double th) {
    std::array<double, 3> phases{};
    for (int k = 0; k < 3; ++k) {
        const double at = th + k * 8.0 * std::atan(1.0) / 3;
        phases[static_cast<std::size_t>(k)] = std::sqrt(2.0 / 3.0) * (std::cos(at) * x.alpha + std::sin(at) * x.beta);
    }
    return phases;
}

inline Two im_primary_of(const Calc_Eq_im_transient& model) {
    return im_clarke(model.current_output(1), model.current_output(2), model.current_output(3));
}

inline Two im_secondary_of(const Calc_Eq_im_transient& model) {
    return im_from_rotor(model.current_output(4), model.current_output(5), model.current_output(6),
                         model.state().theta);
}

constexpr double im_all_driven[3] = {1.0, 1.0, 1.0};

// One voltage-driven sample with constants, accepted.
inline void im_sample(Calc_Eq_im_transient& model, const std::array<double, 3>& v, double displacement, double time) {
    model.step_voltage_driven(v.data(), displacement, time, im_all_driven);
    model.accept();
}

}  // namespace kzb_test
