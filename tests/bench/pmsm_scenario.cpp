#include "pmsm_scenario.h"

namespace kzb_bench_test {
namespace {

SampleMachine machine_of(int accuracy, int connection = 0) {
    SampleMachine machine;
    machine.accuracy_type = accuracy;
    machine.connection = connection;
    return machine;
}

template <class Change>
Scenario make(const char* name, const SampleMachine& machine, Change change) {
    Scenario scenario{name};
    scenario.machine = machine;
    change(scenario);
    return scenario;
}

Scenario plain(const char* name, int accuracy, int interpolation, int connection = 0) {
    return make(name, machine_of(accuracy, connection), [&](Scenario& s) { s.interpolation = interpolation; });
}

// Everything that can be switched on at once.
Scenario full(const char* name, int accuracy, int interpolation, int connection) {
    return make(name, machine_of(accuracy, connection), [&](Scenario& s) {
        s.interpolation = interpolation;
        s.machine.corrections = true;
        s.machine.leakage = true;
        s.machine.beta_zero = 15.0;
        s.machine.copper_loss_table = true;
        s.iron_loss = true;
        s.user_copper_loss = true;
        s.temperatures = true;
        s.corrections_by_call = true;
        s.open_phases = true;
        s.initial_values = true;
    });
}

}  // namespace

std::vector<Scenario> scenarios() {
    constexpr int ldlq = 1;
    constexpr int simple = 2;
    constexpr int harmonic = 3;
    std::vector<Scenario> all;
    all.push_back(plain("harmonic_linear", harmonic, 0));
    all.push_back(plain("harmonic_cubic", harmonic, 1));
    all.push_back(plain("harmonic_spline4", harmonic, 2));
    all.push_back(plain("harmonic_spline6", harmonic, 3));
    all.push_back(plain("harmonic_delta", harmonic, 0, 1));
    all.push_back(full("harmonic_full", harmonic, 0, 0));
    all.push_back(full("harmonic_full_delta_cubic", harmonic, 1, 1));
    all.push_back(plain("simple_harmonic_linear", simple, 0));
    all.push_back(plain("simple_harmonic_cubic", simple, 1));
    all.push_back(plain("simple_harmonic_delta", simple, 0, 1));
    all.push_back(full("simple_harmonic_full", simple, 0, 0));
    all.push_back(make("simple_harmonic_coenergy", machine_of(simple),
                       [](Scenario& s) { s.machine.torque_axes = 2, s.temperatures = true; }));
    all.push_back(plain("ldlq_linear", ldlq, 0));
    all.push_back(plain("ldlq_cubic", ldlq, 1));
    all.push_back(plain("ldlq_delta", ldlq, 0, 1));
    all.push_back(full("ldlq_full", ldlq, 0, 0));
    all.push_back(make("harmonic_over_phase_currents", machine_of(harmonic), [](Scenario& s) {
        s.machine.currents_as_axes = true;
        s.open_phases = true;
    }));
    all.push_back(make("harmonic_loss_table", machine_of(harmonic), [](Scenario& s) {
        s.machine.loss_table = true;
        s.iron_loss = true;
    }));
    all.push_back(
        make("harmonic_user_parameters", machine_of(harmonic), [](Scenario& s) { s.machine.user_parameters = true; }));
    all.push_back(make("harmonic_phase_symmetry", machine_of(harmonic), [](Scenario& s) {
        s.machine.phase_symmetry = true;
        s.machine.beta_zero = 10.0;
        s.iron_loss = true;
    }));
    all.push_back(make("harmonic_chosen_by_accuracy", machine_of(7), [](Scenario& s) { s.kind = 1; }));
    all.push_back(make("ldlq_chosen_by_accuracy", machine_of(7), [](Scenario& s) { s.kind = 2; }));
    all.push_back(make("harmonic_far_outside_the_tables", machine_of(harmonic), [](Scenario& s) {
        s.voltage = 600.0;
        s.open_phases = true;
    }));
    SampleMachine linear = machine_of(simple);
    linear.motor_type = 10005;
    linear.beta_zero = 20.0;
    all.push_back(make("linear_machine", linear, [](Scenario& s) { s.open_phases = true; }));
    all.push_back(make("linear_machine_warm_delta", linear, [](Scenario& s) {
        s.machine.connection = 1;
        s.temperatures = true;
        s.corrections_by_call = true;
    }));
    for (const int accuracy : {ldlq, simple, harmonic}) {
        constexpr const char* names[] = {"", "ldlq_by_current", "simple_harmonic_by_current", "harmonic_by_current"};
        all.push_back(make(names[accuracy], machine_of(accuracy), [](Scenario& s) {
            s.calc_mode = 2;
            s.iron_loss = true;
            s.temperatures = true;
            s.machine.corrections = true;
            s.machine.leakage = true;
        }));
    }
    const SampleMachine integral = machine_of(5);
    all.push_back(make("flux_integral", integral, [](Scenario& s) { s.repeated = false, s.irregular = false; }));
    all.push_back(make("flux_integral_cubic", integral, [](Scenario& s) {
        s.repeated = false;
        s.irregular = false;
        s.interpolation = 1;
    }));
    all.push_back(make("flux_integral_irregular", integral, [](Scenario&) {}));
    all.push_back(make("flux_integral_delta", machine_of(5, 1), [](Scenario& s) { s.repeated = false; }));
    all.push_back(make("flux_integral_open_phases", integral, [](Scenario& s) {
        s.repeated = false;
        s.open_phases = true;
    }));
    all.push_back(make("flux_integral_warm", integral, [](Scenario& s) {
        s.repeated = false;
        s.temperatures = true;
        s.corrections_by_call = true;
        s.machine.corrections = true;
        s.machine.leakage = true;
        s.machine.beta_zero = 10.0;
    }));
    all.push_back(make("flux_integral_zero_axis", integral, [](Scenario& s) {
        s.repeated = false;
        s.machine.zero_axis = true;
        s.open_phases = true;
    }));
    all.push_back(make("flux_integral_user_parameters", integral, [](Scenario& s) {
        s.repeated = false;
        s.machine.user_parameters = true;
        s.initial_values = true;
    }));
    all.push_back(make("flux_integral_iron_loss", integral, [](Scenario& s) {
        s.repeated = false;
        s.irregular = false;
        s.iron_loss = true;
    }));
    return all;
}

}  // namespace kzb_bench_test
