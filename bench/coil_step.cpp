// One voltage-driven step of the machines with separate windings: SetTime, SetDisplacement, SetVoltage of every phase,
// Execute, Update.
//
//   exported   through the calls of the shared library
//   bare       the plain reference without clocks and environment tests
//   clocks     the plain reference with them
//
// All run a machine of bench/reference/coil_sample.cpp from one file. The position moves at every call by a twentieth
// of a cell of its axis, forth and back; the voltages carry the currents over their axes as well. In a case with
// "_random" position and currents jump over their whole axes at every call.
#include <benchmark/benchmark.h>

#include <cmath>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/coil_sample.h"
#include "bench/reference/solenoid_machine.h"
#include "bench/reference/sr_machine.h"
#include "bench/reference/stepper_machine.h"
#include "bench/step_program.h"

namespace {

using namespace kzb_reference;

struct Case {
    const char* name;
    int motor_type;
    int phases;
    double reach;      // of the position axis: degrees or m
    int cells;         // of that axis
    double voltage;    // peak, V
    double current;    // of the current axis, A
    double frequency;  // of the voltage, per position axis
};
constexpr Case cases[] = {{"SR3", 10010, 3, 45.0, 15, 12.0, 40.0, 1.0},
                          {"SR4", 10011, 4, 45.0, 15, 12.0, 40.0, 1.0},
                          {"SR5", 10012, 5, 45.0, 15, 12.0, 40.0, 1.0},
                          {"Solenoid", 10004, 1, 0.01, 20, 15.0, 10.0, 3.0},
                          {"Stepper", 10003, 4, 7.2, 15, 4.0, 5.0, 1.0}};
constexpr const char* schemes[] = {"Linear", "Cubic"};  // in the order of kzbcalcSetInterpolationType
constexpr int voltage_driven = 1;
constexpr double step_width = 5e-5;  // s
constexpr int steps_per_cell = 20;

struct Sample {
    double displacement;
    double voltage[5];
    double current[5];  // to start from, of a random sample
};

// Over the position axis and back, or as many positions at random.
std::vector<Sample> make_samples(const Case& machine, bool at_random) {
    const int way = machine.cells * steps_per_cell;
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> anywhere(0.0, machine.reach);
    std::vector<Sample> samples;
    for (int i = 0; i < 2 * way; ++i) {
        Sample sample{};
        const double part = static_cast<double>(i < way ? i : 2 * way - i) / way;
        sample.displacement = at_random ? anywhere(random) : part * machine.reach;
        for (int k = 0; k < machine.phases; ++k) {
            sample.voltage[k] =
                machine.voltage * std::cos(2.0 * M_PI * (machine.frequency * part - k / double(machine.phases)));
            sample.current[k] = machine.current * (2.0 * anywhere(random) / machine.reach - 1.0);
        }
        samples.push_back(sample);
    }
    return samples;
}

kzb_bench::Machine& machine_of(int motor_type) {
    static std::map<int, std::unique_ptr<kzb_bench::Machine>> machines;
    std::unique_ptr<kzb_bench::Machine>& machine = machines[motor_type];
    if (!machine) {
        machine = std::make_unique<kzb_bench::Machine>("coil_step_" + std::to_string(motor_type),
                                                       [=](Store& store) { make_coil_sample(motor_type, store); });
    }
    return *machine;
}

void exported_step(benchmark::State& state, const Case& machine, int scheme, bool at_random) {
    KZB_CALC* handle = nullptr;
    if (kzbcalcInitialize(machine_of(machine.motor_type).path(), voltage_driven, &handle) != 0) {
        state.SkipWithError("the model file does not open");
        kzbcalcTerminate(handle);
        return;
    }
    kzbcalcSetInterpolationType(scheme, handle);
    kzbcalcSetData(handle);
    kzb_bench::measure(state, make_samples(machine, at_random), step_width, [&](double time, const Sample& sample) {
        kzbcalcSetTime(time, handle);
        kzbcalcSetDisplacement(sample.displacement, handle);
        for (int k = 0; k < machine.phases; ++k) {
            kzbcalcSetVoltage(k + 1, sample.voltage[k], handle);
            if (at_random) {  // becomes the accepted current
                kzbcalcSetInitialCurrent(k + 1, sample.current[k], handle);
            }
        }
        kzbcalcExecute(handle);
        kzbcalcUpdate(handle);
        return kzbcalcGetCurrent(1, handle);
    });
    kzbcalcTerminate(handle);
}

std::unique_ptr<CoilMachine> make_reference(int motor_type, Store& store, Lookup lookup) {
    if (motor_type == 10003) {
        return std::make_unique<StepperMachine>(store, voltage_driven, lookup);
    }
    if (motor_type == 10004) {
        return std::make_unique<SolenoidMachine>(store, voltage_driven, lookup);
    }
    return std::make_unique<SrMachine>(store, voltage_driven, lookup);
}

void reference_step(benchmark::State& state, const Case& machine, int scheme, bool at_random, Lookup lookup) {
    const auto reference = make_reference(machine.motor_type, machine_of(machine.motor_type).store(), lookup);
    reference->interpolation = schemes[scheme];
    reference->set_data();
    kzb_bench::measure(state, make_samples(machine, at_random), step_width, [&](double time, const Sample& sample) {
        reference->set_time(time);
        reference->set_displacement(sample.displacement);
        for (int k = 0; k < machine.phases; ++k) {
            reference->set_voltage(k + 1, sample.voltage[k]);
            if (at_random) {
                reference->set_initial_current(k + 1, sample.current[k]);
            }
        }
        reference->execute();
        reference->update();
        return reference->get_current(1);
    });
}

void register_all() {
    for (const Case& machine : cases) {
        for (int scheme = 0; scheme < static_cast<int>(std::size(schemes)); ++scheme) {
            for (const bool at_random : {false, true}) {
                const std::string title =
                    std::string("step/") + machine.name + (at_random ? "_random/" : "/") + schemes[scheme] + '/';
                kzb_bench::register_ways(title, exported_step, reference_step, machine, scheme, at_random);
            }
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return kzb_bench::run_registered(argc, argv);
}
