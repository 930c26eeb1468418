// One step of the generic machine of three coils in both forms: SetTime, displacement, three supplies, Execute, Update.
//
//   exported   through the calls of the shared library
//   bare       the plain reference
//
// The machine of bench/reference/generic_machine.cpp, 7 nodes per current (15 per phase) and 25 positions, turns at
// 500 rpm, one turn forth and back, 0.75 degrees a step: 20 steps to a cell of the position axis. The supplies carry
// some 10 A, so that the currents move over their axes as well; a step takes some passes of the iteration.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/generic.h"
#include "bench/reference/generic_machine.h"
#include "bench/step_program.h"

namespace {

constexpr const char* schemes[] = {"Linear", "Cubic"};  // in the order of kzbcalcSetInterpolationType
constexpr double step_width = 2.5e-4;                   // s
constexpr double step_angle_deg = 0.75;
constexpr int steps_of_a_turn = 480;

struct Sample {
    double displacement_deg;
    double voltage[3];
};

const std::vector<Sample>& samples() {
    static const std::vector<Sample> made = [] {
        std::vector<Sample> samples;
        for (int i = 0; i < 2 * steps_of_a_turn; ++i) {
            const int at = i < steps_of_a_turn ? i : 2 * steps_of_a_turn - i;
            Sample sample{};
            sample.displacement_deg = at * step_angle_deg;
            const double theta = 2.0 * sample.displacement_deg * M_PI / 180.0;
            for (int k = 0; k < 3; ++k) {
                sample.voltage[k] = 8.0 * std::cos(theta + 2.0 * M_PI / 3.0 * k);
            }
            samples.push_back(sample);
        }
        return samples;
    }();
    return made;
}

kzb_bench::Machine& machine_of(bool table_axes_form) {
    static std::unique_ptr<kzb_bench::Machine> machines[2];
    std::unique_ptr<kzb_bench::Machine>& machine = machines[table_axes_form ? 1 : 0];
    if (!machine) {
        machine = std::make_unique<kzb_bench::Machine>(table_axes_form ? "generic_step_axes" : "generic_step_sets",
                                                       [=](kzb_reference::Store& store) {
                                                           kzb_reference::GenericMachine sample;
                                                           sample.table_axes_form = table_axes_form;
                                                           kzb_reference::make_generic_machine(sample, store);
                                                       });
    }
    return *machine;
}

void exported_step(benchmark::State& state, bool table_axes_form, int scheme) {
    KZB_CALC* handle = nullptr;
    if (kzbcalcInitialize(machine_of(table_axes_form).path(), 1, &handle) != 0) {
        state.SkipWithError("the model file does not open");
        kzbcalcTerminate(handle);
        return;
    }
    kzbcalcSetInterpolationType(scheme, handle);
    kzbcalcSetData(handle);
    kzb_bench::measure(state, samples(), step_width, [handle](double time, const Sample& sample) {
        kzbcalcSetTime(time, handle);
        kzbcalcSetDisplacementForGenericModel(1, sample.displacement_deg, handle);
        for (int k = 1; k <= 3; ++k) {
            kzbcalcSetPowerSupplyForGenericModel(k, sample.voltage[k - 1], handle);
        }
        kzbcalcExecute(handle);
        kzbcalcUpdate(handle);
        return kzbcalcGetCoilCurrentForGenericModel(1, handle);
    });
    kzbcalcTerminate(handle);
}

void reference_step(benchmark::State& state, bool table_axes_form, int scheme) {
    kzb_reference::Generic machine(machine_of(table_axes_form).store());
    machine.interpolation = schemes[scheme];
    machine.set_data();
    int steps = 0;
    kzb_bench::measure(state, samples(), step_width, [&](double time, const Sample& sample) {
        machine.set_time(time);
        machine.set_displacement(1, sample.displacement_deg);
        for (int k = 1; k <= 3; ++k) {
            machine.set_power_supply(k, sample.voltage[k - 1]);
        }
        machine.execute();
        machine.update();
        ++steps;
        return machine.current(0, 1);
    });
    state.counters["passes"] = static_cast<double>(machine.passes) / steps;
}

}  // namespace

int main(int argc, char** argv) {
    for (const bool table_axes_form : {true, false}) {
        for (int scheme = 0; scheme < static_cast<int>(std::size(schemes)); ++scheme) {
            const std::string title =
                std::string(table_axes_form ? "step/GenericAxes/" : "step/GenericSets/") + schemes[scheme] + '/';
            benchmark::RegisterBenchmark((title + "exported").c_str(), exported_step, table_axes_form, scheme);
            benchmark::RegisterBenchmark((title + "bare").c_str(), reference_step, table_axes_form, scheme);
        }
    }
    return kzb_bench::run_registered(argc, argv);
}
