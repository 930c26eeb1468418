// Calculators on threads of their own: results are those of one after the other, to the last bit.
#include <gtest/gtest.h>

#include <barrier>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "same_bits/runs.h"

namespace kzb_test {
namespace {

constexpr std::size_t thread_count = 8;
constexpr int samples = 8;

// Runs `body(thread)` on eight threads that start at once.
template <class Body>
void on_threads(Body body) {
    std::barrier start(static_cast<std::ptrdiff_t>(thread_count));
    std::vector<std::thread> threads;
    for (std::size_t thread = 0; thread < thread_count; ++thread) {
        threads.emplace_back([&, thread] {
            start.arrive_and_wait();
            body(thread);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

struct Expected {
    const MachineRun* run;
    std::unique_ptr<RunFile> file;
    Bits bits;
};

std::vector<Expected> one_after_the_other() {
    std::vector<Expected> all;
    for (const MachineRun& run : all_runs()) {
        auto file = std::make_unique<RunFile>(run);
        Bits bits = results_of(run, file->path(), samples);
        all.push_back({&run, std::move(file), std::move(bits)});
    }
    return all;
}

TEST(MachinesOnThreads, eight_threads_give_the_bits_of_one) {
    const std::vector<Expected> expected = one_after_the_other();
    std::vector<std::string> wrong(thread_count);
    on_threads([&](std::size_t thread) {
        for (std::size_t i = 0; i < expected.size(); ++i) {
            // Each thread starts elsewhere, so that different models run beside each other.
            const Expected& one = expected[(i + thread * expected.size() / thread_count) % expected.size()];
            if (!(results_of(*one.run, one.file->path(), samples) == one.bits)) {
                wrong[thread] += ' ' + one.run->name;
            }
        }
    });
    EXPECT_EQ(wrong, std::vector<std::string>(thread_count));
}

TEST(MachinesOnThreads, calculators_of_one_file_give_the_bits_of_one) {
    for (const char* const name :
         {"pmsm_harmonic_everything", "induction_tables_cubic_everything", "wound_field_everything",
          "reluctance_4_cubic_everything", "solenoid", "stepping", "generic_expressions_everything"}) {
        const MachineRun& run = run_named(name);
        const RunFile file(run);
        const Bits expected = results_of(run, file.path(), samples);
        std::vector<int> same(thread_count, 0);
        on_threads([&](std::size_t thread) { same[thread] = results_of(run, file.path(), samples) == expected; });
        EXPECT_EQ(same, std::vector<int>(thread_count, 1)) << name;
    }
}

TEST(MachinesOnThreads, stores_of_one_file_give_the_bits_of_one) {
    const RunFile file(run_named("reluctance_3"));
    const Bits expected = store_results(file.path());
    std::vector<int> same(thread_count, 0);
    on_threads([&](std::size_t thread) { same[thread] = store_results(file.path()) == expected; });
    EXPECT_EQ(same, std::vector<int>(thread_count, 1));
}

class CalculatorOnThreads : public testing::TestWithParam<MachineRun> {};

// A handle belongs to one thread at a time, not to one for ever.
TEST_P(CalculatorOnThreads, goes_from_thread_to_thread) {
    const MachineRun& run = GetParam();
    const RunFile file(run);
    const Bits expected = results_of(run, file.path(), samples);
    Bits bits;
    KZB_CALC* calc = nullptr;
    std::thread([&] { bits.add(kzbcalcInitialize(file.path(), run.calc_mode, &calc)); }).join();
    std::thread([&] { configure(run, calc, bits); }).join();
    const int last = std::min(samples, run.samples);
    for (int sample = 0; sample < last; ++sample) {
        std::thread([&] { drive(run, calc, sample, sample + 1, bits); }).join();
    }
    std::thread([&] { bits.add(kzbcalcTerminate(calc)); }).join();
    EXPECT_EQ(bits, expected);
}

// One thread, two calculators of a file, a sample of this, a sample of that.
TEST_P(CalculatorOnThreads, steps_in_turn_with_another) {
    const MachineRun& run = GetParam();
    const RunFile file(run);
    const Bits expected = results_of(run, file.path(), samples);
    Bits bits[2];
    KZB_CALC* calcs[2] = {};
    const int last = std::min(samples, run.samples);
    for (const std::size_t i : {0U, 1U}) {
        bits[i].add(kzbcalcInitialize(file.path(), run.calc_mode, &calcs[i]));
        configure(run, calcs[i], bits[i]);
    }
    for (int sample = 0; sample < last; ++sample) {
        drive(run, calcs[0], sample, sample + 1, bits[0]);
        drive(run, calcs[1], sample, sample + 1, bits[1]);
    }
    for (const std::size_t i : {0U, 1U}) {
        bits[i].add(kzbcalcTerminate(calcs[i]));
        EXPECT_EQ(bits[i], expected);
    }
}

// Calls that only read, from eight threads at once.
TEST_P(CalculatorOnThreads, is_read_by_several_at_once) {
    const MachineRun& run = GetParam();
    const RunFile file(run);
    KZB_CALC* calc = nullptr;
    Bits bits;
    kzbcalcInitialize(file.path(), run.calc_mode, &calc);
    configure(run, calc, bits);
    drive(run, calc, 0, 5, bits);
    const auto read = [&](Bits& values) {
        for (int phase = 0; phase <= 6; ++phase) {
            values.add(kzbcalcGetCurrent(phase, calc));
            values.add(kzbcalcGetVoltage(phase, calc));
            values.add(kzbcalcGetInducedVoltage(phase, calc));
            values.add(kzbcalcGetCoilFlux(phase, calc));
            values.add(kzbcalcGetCoilCurrentForGenericModel(phase, calc));
            values.add(kzbcalcGetVoltageProbeValueForGenericModel(phase, calc));
            values.add(kzbcalcGetPowerSupplyTypeForGenericModel(phase, calc));
        }
        values.add(kzbcalcGetResistance(calc));
        values.add(kzbcalcGetCopperloss(calc));
        values.add(kzbcalcGetIronloss(calc));
        values.add(kzbcalcGetCoilTemperature(calc));
        values.add(run.calc_mode == 1 ? kzbcalcGetTorque(calc) : 0.0);
    };
    Bits expected;
    read(expected);
    std::vector<Bits> seen(thread_count);
    on_threads([&](std::size_t thread) { read(seen[thread]); });
    EXPECT_EQ(seen, std::vector<Bits>(thread_count, expected));
    kzbcalcTerminate(calc);
}

std::vector<MachineRun> one_of_each() {
    std::vector<MachineRun> runs;
    for (const char* const name :
         {"pmsm_harmonic_everything", "pmsm_flux_integral", "linear_synchronous_everything", "induction_tables",
          "wound_field", "reluctance_5", "solenoid", "stepping", "generic_table_axes", "generic_expressions"}) {
        runs.push_back(run_named(name));
    }
    return runs;
}

INSTANTIATE_TEST_SUITE_P(Models, CalculatorOnThreads, testing::ValuesIn(one_of_each()),
                         [](const testing::TestParamInfo<MachineRun>& each) { return each.param.name; });

}  // namespace
}  // namespace kzb_test
