// A host that rounds another way: no call minds, the mode stays, and with it gone the results are the usual ones.
#include <gtest/gtest.h>

#include "host/float_environment.h"
#include "same_bits/runs.h"

namespace kzb_test {
namespace {

TEST(Rounding, another_mode_is_kept_and_harms_nothing) {
    constexpr int samples = 6;
    for (const MachineRun& run : all_runs()) {
        const RunFile file(run);
        const Bits expected = results_of(run, file.path(), samples);
        for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
            const HostRounding rounding(mode);
            const Bits rounded = results_of(run, file.path(), samples);
            EXPECT_EQ(std::fegetround(), mode) << run.name;
            // Nothing ends early; the values themselves may differ in their last bits.
            EXPECT_EQ(rounded.words().size(), expected.words().size()) << run.name;
        }
        EXPECT_EQ(results_of(run, file.path(), samples), expected) << run.name;
    }
}

}  // namespace
}  // namespace kzb_test
