// kzb run with generic models: sources and settings by name, switches, motions, labels, what the passes and the tables
// tell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

// Two sources over a resistor each on a node, and a resistor from there to earth: R1 = 1, R2 = 2, R3 = 4 Ohm.
const std::string divider = R"([[terminal]]
name = "left"
kind = "source"
[[terminal]]
name = "right"
kind = "source"
[[terminal]]
name = "mid"
[[terminal]]
name = "earth"
kind = "ground"
[[resistor]]
name = "R1"
from = "left"
to = "mid"
resistance = 1.0
[[resistor]]
name = "R2"
from = "right"
to = "mid"
resistance = 2.0
[[resistor]]
name = "R3"
from = "mid"
to = "earth"
resistance = 4.0
[[probe]]
name = "u mid"
from = "mid"
to = "earth"
)";

// psi = 0.1 Vs/A * i up to 10 A, force 2 N/A^2... at four nodes, over the position from 0 to 10 mm.
const std::string actuator = R"([[terminal]]
name = "supply"
kind = "source"
[[terminal]]
name = "earth"
kind = "ground"
[[coil]]
name = "winding"
from = "supply"
to = "earth"
resistance = 2.0
turns = 100.0
[[motion]]
name = "plunger"
kind = "linear"
[[axis]]
coil = "winding"
column = "i_A"
[[axis]]
motion = "plunger"
column = "x_m"
[flux]
file = "map.csv"
columns = { winding = "psi_Vs" }
[force]
columns = { plunger = "f_N" }
)";

const std::string time_head = "[time]\nstep = 1e-3\nstop = 1e-2\n";

class RunGeneric : public testing::Test {
  protected:
    void build(const std::string& description) {
        write_file(folder / "d.toml", description);
        const Finished finished = run_kzb({"build", "generic", "d.toml", "--out", "m.kzb"}, folder.path());
        ASSERT_EQ(finished.code, 0) << finished.err;
    }
    void build_actuator() {
        std::string map = "i_A,x_m,psi_Vs,f_N\n";
        for (const double i : {-10.0, 0.0, 10.0}) {
            for (const double x : {0.0, 0.01}) {
                map += fmt::format("{},{},{},{}\n", i, x, 0.1 * i, 3.0 * i);
            }
        }
        write_file(folder / "map.csv", map);
        build(actuator);
    }
    Finished run(const std::string& scenario, const std::vector<std::string>& more = {}) {
        write_file(folder / "s.toml", scenario);
        std::vector<std::string> arguments{"run", "m.kzb", "s.toml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_kzb(arguments, folder.path());
    }
    // The rows of a run.
    tool::CsvTable rows(const std::string& scenario) {
        const Finished finished = run(scenario, {"--out", "r.csv"});
        EXPECT_EQ(finished.code, 0) << finished.err;
        return tool::CsvTable::read(folder / "r.csv");
    }
    static std::vector<double> column(const tool::CsvTable& csv, const std::string& name) {
        const auto at = csv.column(name);
        EXPECT_TRUE(at) << name;
        return at ? csv.numbers(*at) : std::vector<double>(csv.row_count());
    }
    double last(const std::string& scenario, const std::string& name) { return column(rows(scenario), name).back(); }
    void refused(const std::string& scenario, const std::string& message) {
        const Finished finished = run(scenario);
        EXPECT_NE(finished.code, 0);
        EXPECT_THAT(finished.err, HasSubstr(message));
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
    }
    Folder folder;
};

// u_mid = (u1 / R1 + u2 / R2) / (1 / R1 + 1 / R2 + 1 / R3) = (10 + 2) / 1.75.
TEST_F(RunGeneric, sources_go_by_name_or_by_number) {
    build(divider);
    for (const char* sources : {"left = 10.0\nright = 4.0\n", "1 = 10.0\n2 = 4.0\n", "right = 4.0\n1 = 10.0\n"}) {
        EXPECT_NEAR(last(time_head + "[sources]\n" + sources, "v_u_mid_V"), 12.0 / 1.75, 1e-12) << sources;
    }
}

TEST_F(RunGeneric, a_source_for_all_serves_each_with_its_lag) {
    build(divider);
    const tool::CsvTable csv = rows(
        "[time]\nstep = 1e-3\nstop = 0.02\n[sources.all]\ntype = \"sine\"\namplitude = "
        "10\nfrequency = 50\n");
    const std::vector<double> left = column(csv, "source_left_V");
    const std::vector<double> right = column(csv, "source_right_V");
    for (std::size_t n = 0; n < left.size(); ++n) {
        EXPECT_NEAR(left[n], -right[n], 1e-12);  // 180 degrees of two
    }
}

// From 4 ms to 7 ms the right source floats: u_mid = u1 R3 / (R1 + R3) = 8 V.
TEST_F(RunGeneric, a_switch_lets_its_source_float) {
    build(divider);
    const std::vector<double> u = column(
        rows(time_head + "[sources]\nleft = 10.0\nright = 4.0\n[switches]\nright = [[0.0035, 0.0065]]\n"), "v_u_mid_V");
    EXPECT_NEAR(u[3], 12.0 / 1.75, 1e-12);
    EXPECT_NEAR(u[4], 8.0, 1e-12);
    EXPECT_NEAR(u[6], 8.0, 1e-12);
    EXPECT_NEAR(u[7], 12.0 / 1.75, 1e-12);
}

// 10 V at the left, 3 A into the node behind R2: u_mid = (10 / 1 + 3) / (1 + 1 / 4).
TEST_F(RunGeneric, a_source_becomes_a_current_source_by_its_type) {
    build(divider);
    const tool::CsvTable csv =
        rows(time_head + "[sources]\nleft = 10.0\nright = 3.0\n[generic.source_type]\nright = \"current\"\n");
    EXPECT_NEAR(column(csv, "v_u_mid_V").back(), 13.0 / 1.25, 1e-12);
    EXPECT_EQ(column(csv, "source_right_A").back(), 3.0);
    // Both: 2 A and 3 A through 4 Ohm.
    EXPECT_NEAR(last("drive = \"current\"\n" + time_head + "[sources]\nleft = 2.0\nright = 3.0\n", "v_u_mid_V"), 20.0,
                1e-12);
}

TEST_F(RunGeneric, settings_reach_their_component) {
    build(divider);
    // R3 = 8: u_mid = 12 / 1.625.
    EXPECT_NEAR(last(time_head + "[sources]\nleft = 10.0\nright = 4.0\n[generic.resistance]\nR3 = 8.0\n", "v_u_mid_V"),
                12.0 / 1.625, 1e-12);
    refused(time_head + "[sources]\nall = 1.0\n[generic.resistance]\nR3 = -1.0\n",
            "s.toml:7: generic.resistance.R3: kzbcalcSetResistanceForGenericModel: status 180041");
    refused(time_head + "[sources]\nall = 1.0\n[generic.resistance]\nR9 = 1.0\n",
            "s.toml:7: generic.resistance.R9: names no resistor, expected one of R1, R2, R3");
    refused(time_head + "[sources]\nall = 1.0\n[generic.ohms]\nR1 = 1.0\n", "s.toml:6: generic.ohms: unknown key");
}

// L = 0.1 H, R = 2 Ohm under backward Euler: i_n = U / R (1 - (1 + dt R / L)^-n).
TEST_F(RunGeneric, settings_of_a_coil_change_its_step) {
    build_actuator();
    const auto expected = [](double u, double r, double l, double i0) {
        double i = i0;
        for (int n = 0; n < 10; ++n) {
            i = (l * i + 1e-3 * u) / (l + 1e-3 * r);
        }
        return i;
    };
    const std::string head = time_head + "[sources]\nsupply = 10.0\n";
    EXPECT_NEAR(last(head, "i_winding_A"), expected(10, 2, 0.1, 0), 1e-9);
    EXPECT_NEAR(last(head + "[generic.coil_resistance]\nwinding = 5.0\n", "i_winding_A"), expected(10, 5, 0.1, 0),
                1e-9);
    EXPECT_NEAR(last(head + "[generic.initial_coil_current]\nwinding = 2.0\n", "i_winding_A"), expected(10, 2, 0.1, 2),
                1e-9);
    // 3810 ppm/K from 293.15 K: 100 K more are a factor of 1.381.
    EXPECT_NEAR(last(head + "[temperature]\ncorrection = true\n[generic.coil_temperature_K]\nwinding = 393.15\n",
                     "i_winding_A"),
                expected(10, 2 * 1.381, 0.1, 0), 1e-9);
    refused(head + "[generic.coil_temperature_K]\nwinding = 393.15\n", "status 180046");
}

TEST_F(RunGeneric, scaled_coils_report_scaled_flux) {
    build_actuator();
    const tool::CsvTable csv =
        rows(time_head +
             "[sources]\nsupply = 0.0\n[generic.initial_coil_current]\nwinding = 4.0\n"
             "[generic.flux_correction]\nwinding = 1.5\n[generic.coil_turns_2]\nwinding = 200.0\n");
    EXPECT_NEAR(column(csv, "flux_winding_Wb").front(), 0.4 * 1.5 * 2.0, 1e-12);
}

// 5 A hold 15 N; with 0.5 kg x = 1/2 30 t^2 after 10 ms, by the trapezoids of the mechanics exactly.
TEST_F(RunGeneric, a_free_motion_follows_the_force) {
    build_actuator();
    const tool::CsvTable csv = rows(
        "drive = \"current\"\n[time]\nstep = 1e-4\nstop = 1e-2\n[sources]\nsupply = 5.0\n"
        "[generic.initial_coil_current]\nwinding = 5.0\n"
        "[motions.plunger]\ntype = \"mover\"\nmass = 0.5\n");
    EXPECT_NEAR(column(csv, "force_plunger_N").back(), 15.0, 1e-9);
    EXPECT_NEAR(column(csv, "displacement_plunger_m").back(), 0.5 * 30.0 * 1e-4, 1e-9);
    EXPECT_NEAR(column(csv, "speed_plunger_mps").back(), 0.3, 1e-9);
}

TEST_F(RunGeneric, one_motion_may_stand_in_mechanics) {
    build_actuator();
    const std::string head = time_head + "[sources]\nsupply = 1.0\n";
    EXPECT_NEAR(last(head + "[mechanics]\ntype = \"speed\"\nspeed = 0.2\n", "displacement_plunger_m"), 2e-3, 1e-15);
    refused(head + "[mechanics]\ntype = \"locked\"\n[motions.plunger]\ntype = \"locked\"\n", "beside [mechanics]");
    refused(head + "[motions.rotor]\ntype = \"locked\"\n", "motions.rotor: names no motion, expected one of plunger");
    build(divider);
    refused(time_head + "[sources]\nall = 1.0\n[mechanics]\ntype = \"locked\"\n", "the model has 0 motions");
}

TEST_F(RunGeneric, outputs_go_by_name_group_column_or_label) {
    build_actuator();
    const std::string head = time_head + "[sources]\nsupply = 1.0\n[record]\noutputs = ";
    for (const char* wish : {"i_winding", "i", "i_winding_A", "I_FEMCoil1 [A]"}) {
        EXPECT_THAT(rows(head + "[\"" + wish + "\"]\n").header(), testing::ElementsAre("time_s", "i_winding_A"))
            << wish;
    }
    EXPECT_THAT(rows(head + "[\"Torque1 [Nm]/Force1 [N]\", \"Flux_FEMCoil1 [wb]\"]\n").header(),
                testing::ElementsAre("time_s", "force_plunger_N", "flux_winding_Wb"));
    refused(head + "[\"torque\"]\n", "no output \"torque\"");
}

TEST_F(RunGeneric, refuses_sources_that_are_missing_or_unknown) {
    build(divider);
    refused(time_head, "sources: missing");
    refused(time_head + "[sources]\nleft = 1.0\n", "sources.right: missing");
    refused(time_head + "[sources]\nall = 1.0\nmiddle = 1.0\n",
            "sources.middle: names no source, expected one of left, right");
    refused(time_head + "[sources]\nleft = 1.0\nright = 1.0\n1 = 1.0\n", "source 1 a second time");
    refused(time_head + "[sources]\nall = 1.0\n[switches]\nleft = [1.0]\n", "switches.left: expected pairs");
}

// A linear network needs one pass, and a second where the first has moved the currents by more than 1 mA in sum: here
// in the first solved step alone.
TEST_F(RunGeneric, passes_stand_in_the_text_and_in_json) {
    build(divider);
    const std::string scenario = time_head + "[sources]\nleft = 10.0\nright = 4.0\n";
    const json summary = json::parse(run(scenario, {"--json"}).out);
    EXPECT_EQ(summary["passes"]["solved_steps"], 10);
    EXPECT_EQ(summary["passes"]["passes"], 11);
    EXPECT_EQ(summary["passes"]["most"], 2);
    EXPECT_EQ(summary["passes"]["unconverged_steps"], 0);
    EXPECT_THAT(run(scenario).out,
                HasSubstr("passes: 11 in 10 solved steps, 1.1 in the mean, 2 at most; 0 steps did not"));
}

// The grid ends at 10 A; 20 A are wanted. Every lookup of the last samples is above.
TEST_F(RunGeneric, lookups_beyond_a_table_are_told_with_axis_and_distance) {
    build_actuator();
    const std::string scenario = "[time]\nstep = 1e-2\nstop = 1.0\n[sources]\nsupply = 40.0\n";
    const Finished text = run(scenario);
    EXPECT_THAT(text.err, HasSubstr("flux_list;0;flux_table;0;/table, axis 1: "));
    EXPECT_THAT(text.err, HasSubstr(" lookups above 10, up to 20"));
    const json summary = json::parse(run(scenario, {"--json"}).out);
    ASSERT_FALSE(summary["lookup_exits"].empty());
    const json& exit = summary["lookup_exits"][0];
    EXPECT_EQ(exit["axis"], 1);
    EXPECT_EQ(exit["side"], "above");
    EXPECT_EQ(exit["end"], 10.0);
    EXPECT_NEAR(exit["farthest"].get<double>(), 20.0, 0.1);
    EXPECT_GT(exit["lookups"].get<int>(), 50);
    EXPECT_TRUE(json::parse(run(time_head + "[sources]\nsupply = 1.0\n", {"--json"}).out)["lookup_exits"].empty());
}

}  // namespace
}  // namespace kzb::test
