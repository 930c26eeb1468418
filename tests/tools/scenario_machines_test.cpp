// kzb run with induction and wound-field machines: slip, step waveforms, the field winding, and what they offer.
#include <cmath>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "kzb/waveform.h"
#include "nlohmann/json.hpp"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class ScenarioMachines : public testing::Test {
  protected:
    // 2 pole pairs, 50 Hz.
    void build_induction(const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"build", "im", "--out", "m.kzb"};
        for (const char* word : {"pole_pairs=2", "r1=0.5", "r2=0.4", "leakage1=0.003", "leakage2=0.002",
                                 "main_inductance=0.1", "frequency=50"}) {
            arguments.insert(arguments.end(), {"--parameter", word});
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Finished done = run_kzb(arguments, folder.path());
        ASSERT_EQ(done.code, 0) << done.err;
    }
    void build_wound_field() {
        const Finished done = build_linear_wound_field(folder);
        ASSERT_EQ(done.code, 0) << done.err;
    }
    json run(const std::string& scenario) {
        write_file(folder / "s.toml", scenario);
        const Finished done = run_kzb({"run", "m.kzb", "s.toml", "--json"}, folder.path());
        EXPECT_EQ(done.code, 0) << done.err;
        return done.code == 0 ? json::parse(done.out) : json();
    }
    void refused(const std::string& scenario, const std::string& message) {
        write_file(folder / "s.toml", scenario);
        const Finished done = run_kzb({"run", "m.kzb", "s.toml"}, folder.path());
        EXPECT_NE(done.code, 0);
        EXPECT_THAT(done.err, HasSubstr(message));
        EXPECT_EQ(line_count(done.err), 1) << done.err;
    }
    Folder folder;
};

const std::string sine =
    "drive = \"voltage\"\n[time]\nstep = 1e-5\nstop = 2e-3\n[sources.all]\ntype = \"sine\"\n"
    "amplitude = 100\nfrequency = 50\nphase_deg = 90\n";

// 1440 rpm of 2 pole pairs are 48 Hz.
TEST_F(ScenarioMachines, slip_follows_supply_and_speed) {
    build_induction();
    const json summary = run(sine + "[slip]\nsupply_frequency = 50\n[mechanics]\ntype = \"speed\"\nspeed_rpm = 1440\n");
    EXPECT_NEAR(summary["outputs"]["slip_frequency_Hz"]["min"].get<double>(), 2.0, 1e-12);
    EXPECT_NEAR(summary["outputs"]["slip_frequency_Hz"]["max"].get<double>(), 2.0, 1e-12);
    EXPECT_GT(summary["outputs"]["i_u_A"]["max"].get<double>(), 1.0);  // the state moves by the step of the scenario
    for (const char* name : {"secondary_flux_alpha_Wb", "secondary_resistance_Ohm", "primary_copper_loss_W",
                             "secondary_copper_loss_W", "iron_loss_W"}) {
        EXPECT_TRUE(summary["outputs"].contains(name)) << name;
    }
    EXPECT_TRUE(summary["lookup_errors"].empty());
}

TEST_F(ScenarioMachines, slip_can_be_given_over_time) {
    build_induction();
    const json summary = run(sine + "[slip.frequency]\ntype = \"steps\"\ntimes = [0.0, 1e-3]\nvalues = [1.5, -3.0]\n");
    EXPECT_DOUBLE_EQ(summary["outputs"]["slip_frequency_Hz"]["max"].get<double>(), 1.5);
    EXPECT_DOUBLE_EQ(summary["outputs"]["slip_frequency_Hz"]["min"].get<double>(), -3.0);
}

TEST_F(ScenarioMachines, motion_of_type_slip_turns_at_the_speed_of_the_slip) {
    build_induction({"-a", "InductionParam"});
    const json summary = run(sine + "[mechanics]\ntype = \"slip\"\nslip = 0.04\nsupply_frequency = 50\n");
    EXPECT_NEAR(summary["outputs"]["speed_rpm"]["mean"].get<double>(), 1440.0, 1e-9);
    EXPECT_FALSE(summary["outputs"].contains("slip_frequency_Hz"));
    EXPECT_TRUE(summary["lookup_errors"].empty());
}

TEST_F(ScenarioMachines, wrong_slips_are_refused) {
    build_induction();
    refused(sine + "[slip]\n", "slip.supply_frequency");
    refused(sine + "[slip]\nsupply_frequency = 50\nfrequency = 1\n", "given beside supply_frequency");
    refused(sine + "[slip]\nsupply = 50\n", "slip.supply");
    refused(sine + "[mechanics]\ntype = \"slip\"\nslip = 0.04\n", "mechanics.supply_frequency");
    build_induction({"-a", "InductionParam"});
    refused(sine + "[slip]\nsupply_frequency = 50\n", "180061");  // constants know no slip
}

// At rest, the armature at 0 V: i_f rises to v / R with L_f / R_f + L_d / R = 0.25 s + 0.02 s as its slow time
// constant, after a fast rise against the leakage inductance, which takes a part of it away.
TEST_F(ScenarioMachines, field_voltage_drives_the_field_current) {
    build_wound_field();
    const std::string head =
        "drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 1.5\n[sources]\nu = 0\nv = 0\nw = 0\nf = 20\n";
    const json summary = run(head);
    EXPECT_NEAR(summary["outputs"]["i_f_A"]["max"].get<double>(), 10.0, 10.0 * std::exp(-1.5 / 0.27));
    EXPECT_NEAR(summary["outputs"]["field_copper_loss_W"]["max"].get<double>(), 200.0, 2.0);
    EXPECT_NEAR(summary["outputs"]["coil_flux_f_Wb"]["max"].get<double>(), 5.0, 0.05);
    EXPECT_NEAR(summary["outputs"]["v_f_V"]["mean"].get<double>(), 20.0, 1e-12);
    EXPECT_TRUE(summary["lookup_errors"].empty());
    refused("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n[sources]\nall = 0\n", "sources.f");
    refused(head + "[slip]\nsupply_frequency = 50\n", "slip");
}

// Given currents: the torque is 1.5 p (psi_d i_q - psi_q i_d), at position 0 with i_u = -i_q sin(0) = 0.
TEST_F(ScenarioMachines, given_currents_of_a_wound_field_machine_give_its_torque) {
    build_wound_field();
    const json summary =
        run("drive = \"current\"\n[time]\nstep = 1e-3\nstop = 5e-3\n[sources]\nu = 0\nv = 8.660254037844386\n"
            "w = -8.660254037844386\nf = 4\n");
    EXPECT_NEAR(summary["outputs"]["torque_Nm"]["mean"].get<double>(), 1.5 * 2.0 * 0.05 * 4.0 * 10.0, 1e-6);
}

TEST(Steps, value_holds_from_each_time_to_the_next) {
    const auto list = [](std::vector<double> v) { return std::make_shared<const std::vector<double>>(std::move(v)); };
    const tool::Waveform steps(tool::Steps{list({1.0, 2.0, 4.0}), list({10.0, -5.0, 7.0})});
    EXPECT_EQ(steps.at(0.0), 10.0);
    EXPECT_EQ(steps.at(1.0), 10.0);
    EXPECT_EQ(steps.at(1.999), 10.0);
    EXPECT_EQ(steps.at(2.0), -5.0);
    EXPECT_EQ(steps.at(100.0), 7.0);
    EXPECT_FALSE(steps.is_constant());
}

}  // namespace
}  // namespace kzb::test
