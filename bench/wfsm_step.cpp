// One voltage-driven step of the wound-field machine: the exported calls against the plain reference.
//
// Both step the machine of bench/reference/wfsm_machine.cpp from one file. The rotor turns at 500 rpm, one whole turn
// forth and back, 0.1875 degrees a step: 20 steps to a cell of the position axis. A step takes some passes of twenty
// lookups each. Beside it the same machine without field, at angles that jump at random.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/wfsm.h"
#include "bench/reference/wfsm_machine.h"
#include "bench/step_program.h"

namespace {

constexpr const char* schemes[] = {"Linear", "Cubic"};  // in the order of kzbcalcSetInterpolationType
constexpr int voltage_driven = 1;
constexpr double step_angle_deg = 0.1875;  // mechanical
constexpr double step_width = step_angle_deg / 360.0 / (500.0 / 60.0);
constexpr int steps_of_a_turn = 1920;
constexpr double field_current = 10.0;  // A, from the first step on
constexpr double field_resistance = 2.5;

struct Sample {
    double displacement_deg;
    double voltage[4];
};

Sample sample_at(double displacement_deg, bool forth) {
    constexpr double induced = 16.0;  // V at this speed, peak
    constexpr double drop = 3.0;
    Sample sample{};
    sample.displacement_deg = displacement_deg;
    const double theta = displacement_deg * 4.0 * M_PI / 180.0;
    for (int k = 0; k < 3; ++k) {
        sample.voltage[k] = -((forth ? induced : -induced) + drop) * std::sin(theta + 0.2 - 2.0 * M_PI / 3.0 * k);
    }
    sample.voltage[3] = field_current * field_resistance;
    return sample;
}

// A turn forth and the same turn back.
std::vector<Sample> moving_samples() {
    std::vector<Sample> samples;
    for (int i = 0; i < 2 * steps_of_a_turn; ++i) {
        const bool forth = i < steps_of_a_turn;
        samples.push_back(sample_at((forth ? i : 2 * steps_of_a_turn - i) * step_angle_deg, forth));
    }
    return samples;
}

std::vector<Sample> random_samples() {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> angle(0.0, 360.0);
    std::vector<Sample> samples;
    for (int i = 0; i < steps_of_a_turn; ++i) {
        Sample sample = sample_at(angle(random), true);
        sample.voltage[3] = 0.0;
        samples.push_back(sample);
    }
    return samples;
}

const std::vector<Sample>& samples(bool moving) {
    static const std::vector<Sample> along = moving_samples();
    static const std::vector<Sample> jumping = random_samples();
    return moving ? along : jumping;
}

kzb_bench::Machine& machine() {
    static kzb_bench::Machine made("wfsm_step",
                                   [](kzb_reference::Store& store) { kzb_reference::make_wfsm_machine({}, store); });
    return made;
}

void exported_step(benchmark::State& state, bool moving, int scheme) {
    KZB_CALC* handle = nullptr;
    if (kzbcalcInitialize(machine().path(), voltage_driven, &handle) != 0) {
        state.SkipWithError("the model file does not open");
        kzbcalcTerminate(handle);
        return;
    }
    kzbcalcSetInterpolationType(scheme, handle);
    kzbcalcSetData(handle);
    kzbcalcSetInitialCurrent(4, moving ? field_current : 0.0, handle);
    kzb_bench::measure(state, samples(moving), step_width, [handle](double time, const Sample& sample) {
        kzbcalcSetTime(time, handle);
        kzbcalcSetDisplacement(sample.displacement_deg, handle);
        for (int k = 0; k < 4; ++k) {
            kzbcalcSetVoltage(k + 1, sample.voltage[k], handle);
        }
        kzbcalcExecute(handle);
        kzbcalcUpdate(handle);
        return kzbcalcGetCurrent(1, handle);
    });
    kzbcalcTerminate(handle);
}

void reference_step(benchmark::State& state, bool moving, int scheme, kzb_reference::Lookup lookup) {
    kzb_reference::Wfsm wfsm(machine().store(), voltage_driven, lookup);
    wfsm.set_interpolation(schemes[scheme]);
    wfsm.set_data();
    wfsm.set_initial_current(4, moving ? field_current : 0.0);
    kzb_bench::measure(state, samples(moving), step_width, [&wfsm](double time, const Sample& sample) {
        wfsm.set_time(time);
        wfsm.set_displacement(sample.displacement_deg);
        for (int k = 0; k < 4; ++k) {
            wfsm.set_voltage(k + 1, sample.voltage[k]);
        }
        wfsm.execute();
        wfsm.update();
        return wfsm.get_current(1);
    });
    state.counters["passes"] = static_cast<double>(wfsm.passes) / static_cast<double>(state.iterations());
}

void register_all() {
    for (const bool moving : {true, false}) {
        for (int scheme = 0; scheme < static_cast<int>(std::size(schemes)); ++scheme) {
            const std::string title = std::string(moving ? "step/WFSM/" : "step/WFSM_random/") + schemes[scheme] + '/';
            kzb_bench::register_ways(title, exported_step, reference_step, moving, scheme);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    return kzb_bench::run_registered(argc, argv);
}
