// kzb run tells for every machine how many passes its steps took, and how many did not converge.
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "nlohmann/json.hpp"
#include "support/environment.h"
#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using kzb_test::Environment;  // seen by the program that the test starts
using nlohmann::json;
using testing::HasSubstr;

class RunPasses : public testing::Test {
  protected:
    void build_wound_field() {
        const Finished done = build_linear_wound_field(folder);
        ASSERT_EQ(done.code, 0) << done.err;
    }
    Finished run(const std::string& scenario, const std::vector<std::string>& more = {}) {
        write_file(folder / "s.toml", scenario);
        std::vector<std::string> arguments{"run", "m.kzb", "s.toml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        Finished done = run_kzb(arguments, folder.path());
        EXPECT_EQ(done.code, 0) << done.err;
        return done;
    }
    json passes(const std::string& scenario) { return json::parse(run(scenario, {"--json"}).out)["passes"]; }
    Folder folder;
};

// 11 samples from 1e-4 s on, the first of which is not solved.
const std::string late_time_head = "[time]\nstart = 1e-4\nstep = 1e-4\nstop = 1.1e-3\n";
const std::string field = "drive = \"voltage\"\n" + late_time_head + "[sources]\nu = 0\nv = 0\nw = 0\nf = 20\n";

// A linear machine is solved by the first pass of a step; the second finds no change.
TEST_F(RunPasses, linear_wound_field_machine_takes_two_passes_a_step) {
    build_wound_field();
    const json told = passes(field);
    EXPECT_EQ(told["iterates"], true);
    EXPECT_EQ(told["solved_steps"], 10);
    EXPECT_EQ(told["passes"], 20);
    EXPECT_EQ(told["mean"], 2.0);
    EXPECT_EQ(told["most"], 2);
    EXPECT_EQ(told["unconverged_steps"], 0);
    const Finished text = run(field);
    EXPECT_THAT(text.out, HasSubstr("passes: 20 in 10 solved steps, 2 in the mean, 2 at most; 0 steps did not"));
    EXPECT_EQ(text.err, "");
}

// No change is below a tolerance of nothing.
TEST_F(RunPasses, steps_of_a_wound_field_machine_that_run_out_of_passes_are_warned_of) {
    build_wound_field();
    const Environment tolerance("DORN_KZ_DEBUG_ITR", "0");
    const Environment most("DORN_KZ_DEBUG_NITR", "3");
    const json told = passes(field);
    EXPECT_EQ(told["passes"], 30);
    EXPECT_EQ(told["most"], 3);
    EXPECT_EQ(told["unconverged_steps"], 10);
    EXPECT_THAT(run(field).err,
                HasSubstr("10 of 10 solved steps did not converge within 3 passes; the best pass stands"));
}

TEST_F(RunPasses, given_currents_are_not_solved) {
    build_wound_field();
    const std::string scenario = "drive = \"current\"\n" + late_time_head + "[sources]\nu = 0\nv = 8\nw = -8\nf = 4\n";
    const json told = passes(scenario);
    EXPECT_EQ(told["solved_steps"], 0);
    EXPECT_EQ(told["passes"], 0);
    EXPECT_EQ(told["mean"], 0.0);
    EXPECT_THAT(run(scenario).out, HasSubstr("passes: none, no step was solved\n"));
}

TEST_F(RunPasses, machine_that_does_not_iterate_takes_one_pass_a_step) {
    write_constant_machine(folder / "m.kzb");
    const std::string scenario = "drive = \"voltage\"\n" + late_time_head + "[sources]\nall = 0\n";
    const json told = passes(scenario);
    EXPECT_EQ(told["iterates"], false);
    EXPECT_EQ(told["solved_steps"], 11);
    EXPECT_EQ(told["passes"], 11);
    EXPECT_EQ(told["mean"], 1.0);
    EXPECT_EQ(told["most"], 1);
    EXPECT_EQ(told["unconverged_steps"], 0);
    EXPECT_THAT(run(scenario).out, HasSubstr("passes: 1 in each of 11 steps; this model does not iterate\n"));
}

}  // namespace
}  // namespace kzb::test
