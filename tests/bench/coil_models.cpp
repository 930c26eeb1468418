#include "coil_models.h"

#include <cmath>
#include <functional>

#include "bench/reference/solenoid_machine.h"
#include "bench/reference/sr_machine.h"
#include "bench/reference/stepper_machine.h"
#include "random_table.h"

namespace kzb_bench_test {
namespace {

using kzb_reference::Store;
using Axis = std::vector<double>;
using Formula = std::function<double(const double*)>;

class Maker {
  public:
    Maker(const CoilModel& model, std::mt19937_64& random, Store& store)
        : model_(model), random_(random), store_(store), coils_(coils_of(model.motor_type)) {}

    void make() {
        put_control();
        put_parameters();
        put_inductance();
        if (model_.motor_type == 10004) {
            put_solenoid_tables();
        } else if (model_.motor_type == 10003) {
            put_stepper_tables();
        } else {
            put_reluctance_tables();
        }
    }

  private:
    bool chance(int percent) { return static_cast<int>(random_() % 100) < percent; }
    int pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }
    double uniform(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random_); }

    void maybe(const char* key, double least, double most) {
        if (chance(50)) {
            kzb_put_double("control", key, uniform(least, most), store_);
        }
    }

    void put_control() {
        kzb_put_double("version", "version", 2.0, store_);
        kzb_put_int("control", "motor_type", model_.motor_type, store_);
        kzb_put_int("control", "number_of_poles", chance(10) ? pick(-3, 1) : pick(2, 50), store_);
        if (chance(10)) {
            kzb_put_int("control", "use_phase_symmetry", 1, store_);
        }
        maybe("turns_in_coil", 20.0, 100.0);
        maybe("turns_coil1", 20.0, 100.0);
        maybe("turns_coil2", 20.0, 100.0);
        for (const char* const key :
             {"coef_flux", "coef_magnet", "coef_material", "coef_inductance", "coef_torque", "coef_force"}) {
            maybe(key, 0.8, 1.2);
        }
        maybe("base_coil_temperature", 280.0, 310.0);
        maybe("base_magnet_temperature", 280.0, 310.0);
        maybe("coef_coil_temperature", 3000.0, 5000.0);
        maybe("coef_magnet_temperature", -0.3, 0.0);
    }

    void put_parameters() {
        for (const char* const key : {"RU", "RA", "RA+"}) {
            kzb_put_double("parameter", key, uniform(0.1, 5.0), store_);
        }
        if (chance(70)) {
            kzb_put_double("parameter", "DispLimitMax", uniform(0.001, 0.02), store_);
            kzb_put_double("parameter", "DispLimitMin", -uniform(0.001, 0.02), store_);
        }
    }

    Axis rising(double first, double last, int nodes) {
        Axis axis{first};
        for (int i = 1; i < nodes; ++i) {
            axis.push_back(first + (last - first) * (i + (i + 1 < nodes ? uniform(-0.3, 0.3) : 0.0)) / (nodes - 1));
        }
        return axis;
    }
    Axis magnitudes() { return rising(chance(80) ? 0.0 : uniform(0.1, 2.0), uniform(5.0, 30.0), pick(1, 7)); }
    Axis currents() { return rising(-uniform(5.0, 30.0), uniform(5.0, 30.0), pick(2, 8)); }
    Axis components(int count) {
        Axis axis;
        for (int i = 0; i < (chance(90) ? count : pick(1, count)); ++i) {
            axis.push_back(i);
        }
        return axis;
    }
    // Position with its cyclic flag: degrees, or metres of the solenoid.
    Axis positions(int& cyclic) {
        if (model_.motor_type == 10004) {
            cyclic = 0;
            return rising(-uniform(0.001, 0.02), uniform(0.001, 0.02), pick(1, 9));
        }
        const double reach = chance(60) ? 360.0 : uniform(20.0, 90.0);
        cyclic = chance(70) ? 1 : (chance(50) ? 0 : 2);
        return rising(0.0, reach, pick(2, 13));
    }

    void put(const char* category, const char* key, const std::vector<Axis>& axes, const std::vector<int>& cyclic,
             const Formula& formula) {
        if (model_.form == TableForm::foreign && chance(10)) {
            kzb_require_category(category, store_);
            return;
        }
        if (model_.form == TableForm::foreign && chance(50)) {
            RandomTable(random_, TableShape{1, 4, 6, false}).put(category, key, store_);
            keep_wraps_short(*kzb_reference::find_table(category, key, store_), cyclic);
            return;
        }
        RandomTable(random_, axes, cyclic).put(category, key, store_);
        if (model_.form == TableForm::random) {
            return;
        }
        kzb_reference::Table& table = *kzb_reference::find_table(category, key, store_);
        std::vector<double> point(axes.size());
        for (int flat = 0; flat < table.total; ++flat) {
            for (int a = 0; a < table.dim; ++a) {
                point[static_cast<std::size_t>(a)] = table.axes[a][flat / table.strides[a] % table.sizes[a]];
            }
            table.values[flat] = formula(point.data());
        }
    }

    // The reference walks a cyclic axis period by period: only that of the position stays cyclic, if it is long.
    void keep_wraps_short(kzb_reference::Table& table, const std::vector<int>& cyclic) {
        for (int a = 0; a < table.dim; ++a) {
            const bool position =
                static_cast<std::size_t>(a) < cyclic.size() && cyclic[static_cast<std::size_t>(a)] > 0;
            const double reach = table.axes[a][table.sizes[a] - 1] - table.axes[a][0];
            table.cyclic[a] = position && reach > 20.0 ? table.cyclic[a] : 0;
        }
    }

    void put_inductance() {
        int cyclic = 0;
        const Axis position = positions(cyclic);
        const double own = uniform(1e-3, 2e-2);
        const double pitch = uniform(1.0, 20.0);
        put("inductance", "inductance", {magnitudes(), position, components(coils_ * coils_)}, {0, cyclic, 0},
            [=, this](const double* x) {
                const int component = static_cast<int>(x[2]);
                const bool diagonal = component / coils_ == component % coils_;
                const double wave = std::cos(x[1] * pitch * (model_.motor_type == 10004 ? 10.0 : M_PI / 180.0));
                return (diagonal ? own * (1.0 + 0.4 * wave) : 0.05 * own * wave) / (1.0 + 0.03 * x[0]);
            });
    }

    Formula wave(double amplitude, int position_axis, int current_axis) {
        const double pitch = uniform(1.0, 20.0);
        const double phase = uniform(0.0, 6.0);
        return [=](const double* x) {
            double value = amplitude * std::cos(x[position_axis] * pitch * M_PI / 180.0 + phase);
            return current_axis < 0 ? value : value * x[current_axis] / (1.0 + std::fabs(x[current_axis]) / 20.0);
        };
    }

    void put_reluctance_tables() {
        int cyclic = 0;
        const Axis position = positions(cyclic);
        put("torque", "torque_ibeta", {position, currents()}, {cyclic, 0}, wave(0.5, 0, 1));
    }

    void put_solenoid_tables() {
        int cyclic = 0;
        const Axis position = positions(cyclic);
        const double slope = uniform(-2.0, 2.0);
        put("distance_flux", "flux", {position, components(1)}, {0, 0},
            [=](const double* x) { return 0.05 + slope * x[0]; });
        put("distance_force", "force", {positions(cyclic), currents()}, {0, 0},
            [=](const double* x) { return 3.0 * x[1] * (1.0 + 20.0 * x[0]); });
    }

    void put_stepper_tables() {
        int cyclic = 0;
        const Axis position = positions(cyclic);
        put("mag_flux", "flux", {position, components(4)}, {cyclic, 0}, wave(0.02, 0, 1));
        int torque_cyclic = 0;
        const Axis torque_position = positions(torque_cyclic);
        put("torque", "torque_ibeta", {currents(), torque_position, currents()}, {0, torque_cyclic, 0},
            wave(0.5, 1, 0));
    }

    const CoilModel& model_;
    std::mt19937_64& random_;
    Store& store_;
    int coils_;
};

}  // namespace

std::string name_of(TableForm form) {
    return form == TableForm::plausible ? "plausible" : (form == TableForm::random ? "random" : "foreign");
}

int coils_of(int motor_type) {
    return motor_type == 10003 ? 4 : (motor_type == 10004 ? 1 : motor_type - 10007);
}

void make_random_coil_model(const CoilModel& model, std::mt19937_64& random, kzb_reference::Store& store) {
    Maker(model, random, store).make();
}

std::unique_ptr<kzb_reference::CoilMachine> make_coil_reference(int motor_type, int calc_mode,
                                                                kzb_reference::Store& store) {
    using namespace kzb_reference;
    const Lookup lookup = kzb_get_table_interpolated_value<Bare>;
    if (motor_type == 10003) {
        return std::make_unique<StepperMachine>(store, calc_mode, lookup);
    }
    if (motor_type == 10004) {
        return std::make_unique<SolenoidMachine>(store, calc_mode, lookup);
    }
    return std::make_unique<SrMachine>(store, calc_mode, lookup);
}

}  // namespace kzb_bench_test
