// One voltage-driven step of the induction machine: SetTime, SetDisplacement, SetSlipFrequency, three SetVoltage,
// Execute, Update.
//
//   exported   through the calls of the shared library
//   bare       the plain reference without clocks and environment tests
//   clocks     the plain reference with them
//
//   IM            tables over slip frequency and current; the slip takes 20 steps to a cell
//   IM_random     the same at slips that jump
//   IM_losses     the same with iron loss and additional copper loss from tables of five axes
//   IM_constants  the equivalent circuit
//
// All run the machine of bench/reference/im_machine.cpp from one file.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/im.h"
#include "bench/reference/im_machine.h"
#include "bench/step_program.h"

namespace {

struct Case {
    const char* name;
    bool tables;
    bool random;
    bool losses;
};
constexpr Case cases[] = {{"IM", true, false, false},
                          {"IM_random", true, true, false},
                          {"IM_losses", true, false, true},
                          {"IM_constants", false, false, false}};
constexpr const char* schemes[] = {"Linear", "Cubic", "Spline4"};  // in the order of kzbcalcSetInterpolationType
constexpr int voltage_driven = 1;
constexpr double step_width = 2e-5;  // s
constexpr double speed = 24.0;       // turns per s, four poles: 4 % slip at 50 Hz
constexpr int steps_of_a_run = 8000;

struct Sample {
    double slip_hz;
    double voltage[3];
};

std::vector<Sample> make_samples(bool random) {
    constexpr double cell = 5.0;           // Hz
    constexpr int steps_to_and_fro = 320;  // 8 cells each way
    std::mt19937 engine(1);
    std::uniform_real_distribution<double> any(-45.0, 45.0);
    std::vector<Sample> samples;
    for (int i = 0; i < steps_of_a_run; ++i) {
        Sample sample{};
        const int at = i % steps_to_and_fro;
        const int along = at < steps_to_and_fro / 2 ? at : steps_to_and_fro - at;
        sample.slip_hz = random ? any(engine) : cell / 20.0 * along;
        const double theta = 2.0 * M_PI * 50.0 * step_width * i;
        for (int k = 0; k < 3; ++k) {
            sample.voltage[k] = 300.0 * std::cos(theta - 2.0 * M_PI / 3.0 * k);
        }
        samples.push_back(sample);
    }
    return samples;
}

const std::vector<Sample>& samples_of(bool random) {
    static const std::vector<Sample> moving = make_samples(false);
    static const std::vector<Sample> jumping = make_samples(true);
    return random ? jumping : moving;
}

// A new one each time: a model of constants adds its tables to the store.
kzb_bench::Machine make_machine(const Case& which) {
    kzb_reference::SampleInduction machine;
    machine.tables = which.tables;
    machine.loss_table = which.losses;
    machine.copper_loss_table = which.losses;
    return kzb_bench::Machine(std::string("im_step_") + which.name, [&machine](kzb_reference::Store& store) {
        kzb_reference::make_sample_induction(machine, store);
    });
}

void exported_step(benchmark::State& state, const Case& which, int scheme) {
    const kzb_bench::Machine machine = make_machine(which);
    KZB_CALC* handle = nullptr;
    if (kzbcalcInitialize(machine.path(), voltage_driven, &handle) != 0) {
        state.SkipWithError("the model file does not open");
        kzbcalcTerminate(handle);
        return;
    }
    kzbcalcSetInterpolationType(scheme, handle);
    kzbcalcSetStepSize(step_width, handle);
    if (which.losses) {
        kzbcalcSetIronlossCalc(handle);
        kzbcalcSetUserCopperlossCalc(handle);
    }
    kzbcalcSetData(handle);
    // The voltages of a run are whole periods long, so it can start anew.
    kzb_bench::measure(state, samples_of(which.random), step_width, [&](double time, const Sample& sample) {
        kzbcalcSetTime(time, handle);
        kzbcalcSetDisplacement(360.0 * speed * time, handle);
        kzbcalcSetSlipFrequency(sample.slip_hz, handle);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetVoltage(k + 1, sample.voltage[k], handle);
        }
        kzbcalcExecute(handle);
        kzbcalcUpdate(handle);
        return kzbcalcGetCurrent(1, handle);
    });
    kzbcalcTerminate(handle);
}

void reference_step(benchmark::State& state, const Case& which, int scheme, kzb_reference::Lookup lookup) {
    kzb_bench::Machine made = make_machine(which);
    kzb_reference::Induction machine(made.store(), voltage_driven, lookup);
    machine.set_interpolation(schemes[scheme]);
    machine.set_step_size(step_width);
    if (which.losses) {
        machine.set_ironloss_calc(false);
        machine.set_user_copperloss_calc();
    }
    machine.set_data();
    // The voltages of a run are whole periods long, so it can start anew.
    kzb_bench::measure(state, samples_of(which.random), step_width, [&](double time, const Sample& sample) {
        machine.set_time(time);
        machine.set_displacement(360.0 * speed * time);
        machine.set_slip_frequency(sample.slip_hz);
        for (int k = 0; k < 3; ++k) {
            machine.set_voltage(k + 1, sample.voltage[k]);
        }
        machine.execute();
        machine.update();
        return machine.get_current(1);
    });
}

void register_all() {
    for (const Case& which : cases) {
        for (int scheme = 0; scheme < static_cast<int>(std::size(schemes)); ++scheme) {
            const std::string title = std::string("step/") + which.name + '/' + schemes[scheme] + '/';
            kzb_bench::register_ways(title, exported_step, reference_step, which, scheme);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return kzb_bench::run_registered(argc, argv);
}
