// One voltage-driven step of each PMSM application: SetTime, SetDisplacement, three SetVoltage, Execute, Update.
//
//   exported   through the calls of the shared library
//   bare       the plain reference without clocks and environment tests
//   clocks     the plain reference with them
//
// All run the machine of bench/reference/sample_machine.cpp from one file, its fifteen categories in file order. The
// rotor turns at 500 rpm, one whole turn forth and back, 0.15 degrees a step: 20 steps to a cell of the position axis.
// The voltages carry some 100 A, so that current and phase move over their axes as well.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/pmsm.h"
#include "bench/reference/sample_machine.h"
#include "bench/step_program.h"

namespace {

struct Application {
    const char* name;
    int accuracy_type;  // what the file says
};
constexpr Application applications[] = {
    {"LdLq", 1}, {"SimpleHarmonic", 2}, {"Harmonic", 3}, {"FluxIntegralDQTheta", 5}};
constexpr const char* schemes[] = {"Linear", "Cubic"};  // in the order of kzbcalcSetInterpolationType
constexpr int voltage_driven = 1;
constexpr double step_width = 5e-5;      // s
constexpr double step_angle_deg = 0.15;  // mechanical
constexpr int steps_of_a_turn = 2400;

struct Sample {
    double displacement_deg;
    double voltage[3];
};

// A turn forth and the same turn back.
std::vector<Sample> make_samples() {
    constexpr double induced = 13.7;  // V at this speed, peak
    constexpr double drop = 7.0;
    std::vector<Sample> samples;
    for (int i = 0; i < 2 * steps_of_a_turn; ++i) {
        const bool forth = i < steps_of_a_turn;
        const int at = forth ? i : 2 * steps_of_a_turn - i;
        Sample sample{};
        sample.displacement_deg = at * step_angle_deg;
        const double theta = sample.displacement_deg * 4.0 * M_PI / 180.0;
        for (int k = 0; k < 3; ++k) {
            sample.voltage[k] = -((forth ? induced : -induced) + drop) * std::sin(theta + 0.2 - 2.0 * M_PI / 3.0 * k);
        }
        samples.push_back(sample);
    }
    return samples;
}

const std::vector<Sample>& samples() {
    static const std::vector<Sample> made = make_samples();
    return made;
}

kzb_bench::Machine& machine_of(int accuracy_type) {
    static std::unique_ptr<kzb_bench::Machine> machines[6];
    std::unique_ptr<kzb_bench::Machine>& machine = machines[accuracy_type];
    if (!machine) {
        const auto fill = [accuracy_type](kzb_reference::Store& store) {
            kzb_reference::SampleMachine sample;
            sample.accuracy_type = accuracy_type;
            kzb_reference::make_sample_machine(sample, store);
        };
        machine = std::make_unique<kzb_bench::Machine>("step_" + std::to_string(accuracy_type), fill);
    }
    return *machine;
}

void exported_step(benchmark::State& state, int accuracy_type, int scheme) {
    KZB_CALC* handle = nullptr;
    if (kzbcalcInitialize(machine_of(accuracy_type).path(), voltage_driven, &handle) != 0) {
        state.SkipWithError("the model file does not open");
        kzbcalcTerminate(handle);
        return;
    }
    kzbcalcSetInterpolationType(scheme, handle);
    kzbcalcSetData(handle);
    kzb_bench::measure(state, samples(), step_width, [handle](double time, const Sample& sample) {
        kzbcalcSetTime(time, handle);
        kzbcalcSetDisplacement(sample.displacement_deg, handle);
        kzbcalcSetVoltage(1, sample.voltage[0], handle);
        kzbcalcSetVoltage(2, sample.voltage[1], handle);
        kzbcalcSetVoltage(3, sample.voltage[2], handle);
        kzbcalcExecute(handle);
        kzbcalcUpdate(handle);
        return kzbcalcGetCurrent(1, handle);
    });
    kzbcalcTerminate(handle);
}

void reference_step(benchmark::State& state, int accuracy_type, int scheme, kzb_reference::Lookup lookup) {
    kzb_reference::Pmsm pmsm(machine_of(accuracy_type).store(), voltage_driven, lookup);
    pmsm.set_interpolation(schemes[scheme]);
    pmsm.set_data(false, false);
    kzb_bench::measure(state, samples(), step_width, [&pmsm](double time, const Sample& sample) {
        pmsm.set_time(time);
        pmsm.set_displacement(sample.displacement_deg);
        pmsm.set_voltage(1, sample.voltage[0]);
        pmsm.set_voltage(2, sample.voltage[1]);
        pmsm.set_voltage(3, sample.voltage[2]);
        pmsm.execute();
        pmsm.update();
        return pmsm.get_current(1);
    });
}

void register_all() {
    for (const Application& application : applications) {
        for (int scheme = 0; scheme < static_cast<int>(std::size(schemes)); ++scheme) {
            const std::string title = std::string("step/") + application.name + '/' + schemes[scheme] + '/';
            const int accuracy = application.accuracy_type;
            kzb_bench::register_ways(title, exported_step, reference_step, accuracy, scheme);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return kzb_bench::run_registered(argc, argv);
}
