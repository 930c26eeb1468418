// What is made at its first use must stand a race: fresh processes in which sixteen threads make the first call at
// once.
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

#include "same_bits/runs.h"

namespace kzb_test {
namespace {

struct Output {
    int status;
    std::string text;
};

Output output_of(const std::string& command) {
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        return {-1, {}};
    }
    std::string text;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        text += static_cast<char>(c);
    }
    return {::pclose(pipe), text};
}

class FirstCalls : public testing::TestWithParam<const char*> {};

TEST_P(FirstCalls, of_sixteen_threads_give_the_results_of_one) {
    const MachineRun& run = run_named(GetParam());
    const RunFile file(run);
    char expected[32];
    std::snprintf(expected, sizeof expected, "%llx\n",
                  static_cast<unsigned long long>(results_of(run, file.path(), 4).hash()));
    for (int process = 0; process < 5; ++process) {
        const Output output = output_of(std::string("'" KZB_FIRST_CALLS "' ") + run.name + " '" + file.path() + "'");
        EXPECT_EQ(output.status, 0);
        EXPECT_EQ(output.text, expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Models, FirstCalls,
                         testing::Values("pmsm_harmonic", "pmsm_simple_harmonic", "pmsm_flux_integral",
                                         "linear_synchronous", "induction_tables", "induction_constants", "wound_field",
                                         "reluctance_3", "solenoid", "stepping", "generic_expressions",
                                         "generic_coil_sets"),
                         [](const testing::TestParamInfo<const char*>& each) { return std::string(each.param); });

}  // namespace
}  // namespace kzb_test
