// One voltage-driven step of the wound-field machine: the exported calls against the plain reference.
//
// Both step the machine of bench/reference/wfsm_machine.cpp from one file. The rotor turns at 500 rpm, one whole turn
// forth and back, 0.1875 degrees a step: 20 steps to a cell of the position axis. A step takes some passes of twenty
// lookups each. Beside it the same machine without field, at angles that jump at random.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <system_error>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/wfsm.h"
#include "bench/reference/wfsm_machine.h"

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

// The machine in memory and in a file that goes away at the end of the program.
class Machine {
  public:
    Machine() {
        kzb_reference::make_wfsm_machine({}, store_);
        path_ = std::filesystem::temp_directory_path() / ("kzb_wfsm_step_" + std::to_string(getpid()) + ".kzb");
        kzb_reference::write_model_file(path_.c_str(), store_);
    }
    ~Machine() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
    kzb_reference::Store& store() { return store_; }
    const char* path() const { return path_.c_str(); }

  private:
    kzb_reference::Store store_;
    std::filesystem::path path_;
};

Machine& machine() {
    static Machine made;
    return made;
}

// The highest current tells that the run is one of a loaded machine.
template <class Step>
void measure(benchmark::State& state, bool moving, Step step) {
    const std::vector<Sample>& run = samples(moving);
    std::size_t next = 0;
    double time = 0.0;
    double peak = 0.0;
    for (auto _ : state) {
        const double current = step(time, run[next]);
        peak = std::fmax(peak, std::fabs(current));
        time += step_width;
        if (++next == run.size()) {
            next = 0;
        }
    }
    state.counters["peak_current"] = peak;
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
    measure(state, moving, [handle](double time, const Sample& sample) {
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
    measure(state, moving, [&wfsm](double time, const Sample& sample) {
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
    using namespace kzb_reference;
    for (const bool moving : {true, false}) {
        for (int scheme = 0; scheme < static_cast<int>(std::size(schemes)); ++scheme) {
            const std::string title = std::string(moving ? "step/WFSM/" : "step/WFSM_random/") + schemes[scheme] + '/';
            benchmark::RegisterBenchmark((title + "exported").c_str(), exported_step, moving, scheme);
            benchmark::RegisterBenchmark((title + "bare").c_str(), reference_step, moving, scheme,
                                         static_cast<Lookup>(kzb_get_table_interpolated_value<Bare>));
            benchmark::RegisterBenchmark((title + "clocks").c_str(), reference_step, moving, scheme,
                                         static_cast<Lookup>(kzb_get_table_interpolated_value<WithClocks>));
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    register_all();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
