// Whole step sequences of the wound-field machine against the plain reference: every getter, bit for bit.
//
// Both run from the same file. Voltages are a rotating system with noise, the step width changes, samples are executed
// once or several times, phases open and close, the time stands still now and then and the field changes its sign.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "wfsm_pair.h"

namespace kzb_bench_test {
namespace {

using kzb_reference::Store;
using kzb_reference::WfsmIteration;
using kzb_reference::WfsmMachine;

struct WfsmScenario {
    const char* name;
    WfsmMachine machine{};
    WfsmIteration iteration{};
    int interpolation = 0;
    bool iron_loss = false;
    bool pwm = false;
    bool temperatures = false;
    bool corrections_by_call = false;
    bool open_phases = false;
    bool irregular = true;  // step widths
    bool repeated = true;   // Execute calls per sample
    bool initial_values = false;
    bool negative_field = false;
    double voltage = 60.0;  // peak
    int samples = 150;
    int calc_mode = 1;
};

void PrintTo(const WfsmScenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

// Everything that can be switched on at once.
void everything(WfsmScenario& s) {
    s.machine.beta_zero = 15.0;
    s.machine.iron_loss = true;
    s.machine.user_parameters = true;
    s.machine.control_record = true;
    s.machine.turns_in_coil = 40.0;
    s.machine.turns_in_field_coil = 100.0;
    s.machine.turns = 42.0;
    s.machine.field_turns = 95.0;
    s.machine.unsettled = 0.02;
    s.machine.ripple = 0.03;
    s.iron_loss = true;
    s.temperatures = true;
    s.corrections_by_call = true;
    s.open_phases = true;
    s.initial_values = true;
    s.negative_field = true;
}

std::vector<WfsmScenario> scenarios() {
    std::vector<WfsmScenario> all;
    const auto add = [&](const char* name, const std::function<void(WfsmScenario&)>& change) {
        WfsmScenario scenario{name};
        change(scenario);
        all.push_back(scenario);
    };
    add("linear", [](auto&) {});
    add("cubic", [](auto& s) { s.interpolation = 1, s.samples = 40; });
    add("spline4", [](auto& s) { s.interpolation = 2, s.samples = 12; });
    add("spline6", [](auto& s) { s.interpolation = 3, s.samples = 8; });
    add("spline", [](auto& s) { s.interpolation = 4, s.samples = 2; });
    add("delta", [](auto& s) { s.machine.connection = 1; });
    add("over_d_and_q", [](auto& s) { s.machine.current_type = 0; });
    add("over_d_and_q_delta_cubic",
        [](auto& s) { s.machine.current_type = 0, s.machine.connection = 1, s.interpolation = 1, s.samples = 30; });
    add("everything", [](auto& s) { everything(s); });
    add("everything_delta", [](auto& s) { everything(s), s.machine.connection = 1; });
    add("everything_over_d_and_q", [](auto& s) { everything(s), s.machine.current_type = 0; });
    add("everything_cubic", [](auto& s) { everything(s), s.interpolation = 1, s.samples = 40; });
    add("everything_filtered", [](auto& s) { everything(s), s.pwm = true, s.repeated = false, s.irregular = false; });
    add("filtered_and_repeated", [](auto& s) { s.machine.iron_loss = true, s.iron_loss = true, s.pwm = true; });
    add("negative_field", [](auto& s) { s.negative_field = true; });
    add("negative_field_delta_over_d_and_q",
        [](auto& s) { s.negative_field = true, s.machine.connection = 1, s.machine.current_type = 0; });
    add("field_axis_below_zero", [](auto& s) { s.negative_field = true, s.machine.first_field = -5.0; });
    add("field_axis_above_zero", [](auto& s) { s.negative_field = true, s.machine.first_field = 2.0; });
    add("amplitude_axis_above_zero", [](auto& s) {
        s.machine.least_amplitude = 20.0, s.machine.iron_loss = true, s.iron_loss = true;
        s.machine.least_loss_amplitude = 60.0;
    });
    add("phase_symmetry", [](auto& s) {
        s.machine.phase_symmetry = true, s.machine.beta_zero = 10.0, s.machine.iron_loss = true, s.iron_loss = true;
        s.negative_field = true;
    });
    add("phase_symmetry_cubic", [](auto& s) { s.machine.phase_symmetry = true, s.interpolation = 1, s.samples = 30; });
    add("phase_symmetry_over_d_and_q", [](auto& s) {  // folds nothing
        s.machine.phase_symmetry = true, s.machine.current_type = 0, s.samples = 30;
    });
    add("one_pass", [](auto& s) { s.iteration.max_iterations = 1; });
    add("two_passes", [](auto& s) { s.iteration.max_iterations = 2, s.machine.unsettled = 0.1; });
    add("five_passes_relaxed", [](auto& s) {
        s.iteration = {1e-9, 5, 0.7}, s.machine.unsettled = 0.1, s.negative_field = true;
    });
    add("no_pass", [](auto& s) { s.iteration.max_iterations = 0, s.initial_values = true; });
    add("overrelaxed", [](auto& s) { s.iteration = {1e-6, 30, 1.3}, s.samples = 40; });
    add("far_outside_the_tables", [](auto& s) { s.voltage = 600.0, s.open_phases = true; });
    add("open_phases_delta", [](auto& s) { s.machine.connection = 1, s.open_phases = true; });
    add("no_connection", [](auto& s) { s.machine.connection = 2, s.samples = 10, s.initial_values = true; });
    add("neither_axes", [](auto& s) { s.machine.current_type = 2, s.samples = 10; });
    add("two_poles_many_positions", [](auto& s) { s.machine.poles = 2, s.machine.positions = 73; });
    for (const int type : {0, 1}) {
        add(type == 0 ? "by_current_over_d_and_q" : "by_current",
            [type](auto& s) { everything(s), s.calc_mode = 2, s.machine.current_type = type; });
    }
    add("by_current_cubic", [](auto& s) { s.calc_mode = 2, s.interpolation = 1, s.samples = 40; });
    return all;
}

void configure(const WfsmScenario& scenario, WfsmPair& pair) {
    KZB_CALC* const handle = pair.product();
    kzb_reference::Wfsm& reference = pair.reference();
    pair.interpolation(scenario.interpolation);
    if (scenario.iron_loss) {
        ASSERT_EQ(kzbcalcSetIronlossCalc(handle), 0);
        reference.set_ironloss();
    }
    if (scenario.pwm) {
        ASSERT_EQ(kzbcalcSetPWMFreq(5000.0, handle), 0);
        reference.set_pwm_frequency(5000.0);
    }
    if (scenario.temperatures) {
        ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(handle), 0);
        ASSERT_EQ(kzbcalcSetCoilTemperature(393.15, handle), 0);
        ASSERT_EQ(kzbcalcSetFieldCoilTemperature(363.15, handle), 0);
        reference.temperature_correction = true;
        reference.coil_temperature = 393.15;
        reference.field_coil_temperature = 363.15;
    }
    if (scenario.corrections_by_call) {
        ASSERT_EQ(kzbcalcSetCorrectionOfFlux(0.93, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfFieldFlux(1.03, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfSteel(1.01, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfTorque(0.99, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfCoilTurn2(41.0, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfFieldCoilTurn2(98.0, handle), 0);
        ASSERT_EQ(kzbcalcSetResistance(0.04, handle), 0);
        ASSERT_EQ(kzbcalcSetFieldCoilResistance(2.1, handle), 0);
        reference.coef_flux = 0.93;
        reference.coef_flux_fieldcoil = 1.03;
        reference.coef_material = 1.01;
        reference.coef_torque = 0.99;
        reference.turns_coil2 = 41.0;
        reference.turns_coil2_fieldcoil = 98.0;
        reference.R = 0.04;
        reference.Rf = 2.1;
    }
    pair.set_data();
    if (scenario.initial_values) {
        constexpr double currents[] = {30.0, -40.0, 10.0, 6.0};
        for (int k = 1; k <= 4; ++k) {
            ASSERT_EQ(kzbcalcSetInitialCurrent(k, currents[k - 1], handle), 0);
            reference.set_initial_current(k, currents[k - 1]);
        }
        ASSERT_EQ(kzbcalcSetInitialDisplacement(7.0, handle), 0);
        reference.set_initial_displacement(7.0);
        ASSERT_EQ(kzbcalcSetInitialTime(1e-5, handle), 0);
        reference.set_initial_time(1e-5);
    }
}

class WfsmDrive {
  public:
    explicit WfsmDrive(const WfsmScenario& scenario) : scenario_(scenario), random_(42) {}

    void next() {
        double width = 5e-5;
        if (scenario_.irregular) {
            constexpr double factors[] = {1.0, 1.0, 1.0, 1.0, 2.0, 0.5, 1.5, 0.0};
            width *= factors[random_() % std::size(factors)];
        }
        time += count_ == 0 && !scenario_.initial_values ? 0.0 : width;
        const double theta = 2.0 * M_PI * turns_per_second * time;
        displacement = -30.0 + 720.0 / scenario_.machine.poles * turns_per_second * time;
        for (int k = 0; k < 3; ++k) {
            voltage[k] = -scenario_.voltage * std::sin(theta + 0.3 - 2.0 * M_PI / 3.0 * k) + noise() * 5.0;
            current[k] = 150.0 * std::cos(theta + 1.9 - 2.0 * M_PI / 3.0 * k) + noise();
        }
        const double sign = scenario_.negative_field && count_ / 35 % 2 == 1 ? -1.0 : 1.0;
        voltage[3] = sign * (scenario_.negative_field ? 4000.0 : 60.0) + noise();
        current[3] = sign * 12.0 + noise();
        std::fill_n(signal, 4, 1);
        if (scenario_.open_phases) {
            constexpr int patterns[][4] = {{1, 1, 1, 1}, {0, 1, 1, 1}, {1, 0, 1, 1}, {1, 1, 0, 1},
                                           {2, 1, 1, 1}, {0, 0, 1, 1}, {1, 1, 1, 0}, {0, 0, 0, 0}};
            std::copy_n(patterns[static_cast<std::size_t>(count_ / 10) % std::size(patterns)], 4, signal);
        }
        executions = scenario_.repeated ? 1 + static_cast<int>(random_() % 3) : 1;
        ++count_;
    }

    double time = 0.0;
    double displacement = 0.0;
    double voltage[4] = {};
    double current[4] = {};
    int signal[4] = {1, 1, 1, 1};
    int executions = 1;

  private:
    double noise() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }
    static constexpr double turns_per_second = 110.0;  // electrical
    const WfsmScenario& scenario_;
    std::mt19937_64 random_;
    int count_ = 0;
};

class WfsmAgainstReference : public testing::TestWithParam<WfsmScenario> {};

TEST_P(WfsmAgainstReference, every_result_agrees_to_the_bit) {
    const WfsmScenario& scenario = GetParam();
    Store store;
    kzb_reference::make_wfsm_machine(scenario.machine, store);
    WfsmPair pair(store, scenario.calc_mode, scenario.iteration);
    ASSERT_EQ(pair.status(), 0);
    configure(scenario, pair);
    WfsmDrive drive(scenario);
    for (int s = 0; s < scenario.samples && !HasFailure(); ++s) {
        drive.next();
        pair.time(drive.time);
        pair.displacement(drive.displacement);
        if (scenario.calc_mode == 1) {
            pair.voltage(drive.voltage);
            pair.signal(drive.signal);
            for (int e = 0; e < drive.executions; ++e) {
                pair.execute();
            }
        } else {
            pair.current(drive.current);
        }
        pair.expect_equal_results(s);
        pair.update();
    }
}

INSTANTIATE_TEST_SUITE_P(Wfsm, WfsmAgainstReference, testing::ValuesIn(scenarios()),
                         [](const testing::TestParamInfo<WfsmScenario>& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace kzb_bench_test
