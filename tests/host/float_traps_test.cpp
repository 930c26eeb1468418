// A host that lets the processor interrupt it at floating-point exceptions: inside a call they are masked, behind it
// everything is as the host had it. The results are the same to the last bit.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "host/float_environment.h"
#include "interface/call_table.h"
#include "interface/generic_accessors.h"
#include "interface/machines.h"
#include "same_bits/runs.h"

namespace kzb_test {
namespace {

constexpr int samples = 6;
constexpr int usual_traps = FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW;

TEST(FloatTraps, runs_of_every_model_give_the_same_bits) {
    for (const MachineRun& run : all_runs()) {
        const RunFile file(run);
        const Bits expected = results_of(run, file.path(), samples);
        const HostTraps traps(usual_traps);
        EXPECT_EQ(results_of(run, file.path(), samples), expected) << run.name;
        EXPECT_EQ(fegetexcept(), usual_traps) << run.name;
    }
}

TEST(FloatTraps, store_gives_the_same_bits) {
    const RunFile file(run_named("reluctance_3"));
    const Bits expected = store_results(file.path());
    const HostTraps traps(usual_traps);
    EXPECT_EQ(store_results(file.path()), expected);
    EXPECT_EQ(fegetexcept(), usual_traps);
}

// Whatever is handed over: every call of the calculator with numbers whose arithmetic meets every exception.
class FloatTrapsOf : public testing::TestWithParam<Machine> {};

void make_every_call(KZB_CALC* calc, double value) {
    for (const auto& row : value_setters) {
        row.function(value, calc);
    }
    for (int id = 1; id <= 5; ++id) {
        for (const auto& row : indexed_setters) {
            row.function(id, value, calc);
        }
        for (const GenericSetter& row : generic_setters) {
            // Those whose value is an int: the conversion is the test's, not the library's.
            const std::string name = row.name;
            const bool takes_int =
                name.find("SupplyType") != std::string::npos || name.find("Switch") != std::string::npos;
            row.set(id, takes_int ? 1.0 : value, calc);
        }
    }
    kzbcalcSetData(calc);
    for (int i = 1; i <= 4; ++i) {
        kzbcalcSetTime(1e-4 * i, calc);
        kzbcalcExecute(calc);
        for (const auto& row : getters) {
            row.function(calc);
        }
        for (int id = 1; id <= 5; ++id) {
            for (const auto& row : phase_getters) {
                row.function(id, calc);
            }
            for (const GenericGetter& row : generic_getters) {
                row.get(id, calc);
            }
            kzbcalcGetInductance(id, id, calc);
        }
        kzbcalcUpdate(calc);
    }
}

TEST_P(FloatTrapsOf, no_call_is_interrupted) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    constexpr double numbers[] = {0.0,
                                  -0.0,
                                  1e308,
                                  -1e308,
                                  1e-308,
                                  5e-324,
                                  infinity,
                                  -infinity,
                                  std::numeric_limits<double>::quiet_NaN(),
                                  std::numeric_limits<double>::signaling_NaN()};
    ModelFile file;
    GetParam().fill(file);
    testing::internal::CaptureStderr();  // indices that numbers without a place make are told of there
    for (const int mode : {1, 2}) {
        for (const double value : numbers) {
            Calculator calc(file, mode);
            ASSERT_EQ(calc.status, 0);
            const HostTraps traps(usual_traps);
            kzbcalcSetTemperatureCorrectionCalc(calc);
            make_every_call(calc, value);
            EXPECT_EQ(fegetexcept(), usual_traps);
        }
    }
    testing::internal::GetCapturedStderr();
}

INSTANTIATE_TEST_SUITE_P(Types, FloatTrapsOf, testing::ValuesIn(machines),
                         [](const testing::TestParamInfo<Machine>& each) { return std::to_string(each.param.code); });

// The environment behind a call is that before it, bit for bit: traps, flags of the past, rounding.
TEST(FloatTraps, environment_behind_a_call_is_that_before_it) {
    const RunFile file(run_named("pmsm_harmonic"));
    KZB_CALC* calc = nullptr;
    kzbcalcInitialize(file.path(), 1, &calc);
    kzbcalcSetData(calc);
    const HostTraps traps(FE_ALL_EXCEPT);  // even inexact results
    for (const int raised : {0, FE_INEXACT, FE_UNDERFLOW | FE_INEXACT}) {
        std::fexcept_t flags{};
        std::feclearexcept(FE_ALL_EXCEPT);
        fegetexceptflag(&flags, FE_ALL_EXCEPT);
        fedisableexcept(FE_ALL_EXCEPT);
        std::feraiseexcept(raised);
        feenableexcept(FE_ALL_EXCEPT & ~raised);
        const int time_status = kzbcalcSetTime(0.1, calc);
        const int place_status = kzbcalcSetDisplacement(0.1, calc);  // divides by 180
        const int step_status = kzbcalcExecute(calc);
        const double torque = kzbcalcGetTorque(calc);
        const int enabled = fegetexcept();
        const int flagged = std::fetestexcept(FE_ALL_EXCEPT);
        fedisableexcept(FE_ALL_EXCEPT);
        EXPECT_EQ(time_status + place_status + step_status, 0);
        EXPECT_EQ(torque, torque);
        EXPECT_EQ(enabled, FE_ALL_EXCEPT & ~raised);
        EXPECT_EQ(flagged, raised);
    }
    kzbcalcTerminate(calc);
}

#if defined(__x86_64__)
// A host that has told the x87 unit alone: the library doesn't compute there.
TEST(FloatTraps, of_the_x87_unit_alone_are_left_alone) {
    const MachineRun& run = run_named("generic_expressions");
    const RunFile file(run);
    const Bits expected = results_of(run, file.path(), samples);
    unsigned short before = 0;
    asm volatile("fnstcw %0" : "=m"(before));
    const unsigned short unmasked = before & static_cast<unsigned short>(~0x0d);  // invalid, division by zero, overflow
    asm volatile("fldcw %0" : : "m"(unmasked));
    const Bits seen = results_of(run, file.path(), samples);
    unsigned short after = 0;
    asm volatile("fnstcw %0" : "=m"(after));
    asm volatile("fldcw %0" : : "m"(before));
    EXPECT_EQ(after, unmasked);
    EXPECT_EQ(seen, expected);
}
#endif

}  // namespace
}  // namespace kzb_test
