// kzb build sr, solenoid and stepper: tables against formulas, through the program and through what it is made of.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>

#include "fmt/format.h"
#include "kzb/build_sr.h"
#include "kzb/build_stepper.h"
#include "kzb/command.h"
#include "tools/build_synthetic.h"
#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using tool::synthetic::axis_of;
using tool::synthetic::cyclic_of;
using tool::synthetic::each_value;

// An unsaturated phase: psi = (La + Lb cos(6 theta)) i, torque = 1/2 i^2 dL/dtheta, dL/dtheta = -6 Lb sin(6 theta).
constexpr double La = 0.05, Lb = 0.04;
double inductance(double theta) {
    return La + Lb * std::cos(6.0 * theta * radians_of_degree);
}
double torque(double theta, double i) {
    return -3.0 * Lb * std::sin(6.0 * theta * radians_of_degree) * i * i;
}

std::string phase_map(double last, bool with_torque, double step = 2.5) {
    std::string text =
        with_torque ? "theta_mech_deg,current_A,psi_Vs,torque_Nm\n" : "theta_mech_deg,current_A,psi_Vs\n";
    for (double theta = 0.0; theta <= last + 1e-9; theta += step) {
        for (const double i : {1.0, 2.0, 4.0, 8.0}) {
            text += fmt::format("{},{},{}", theta, i, inductance(theta) * i);
            text += with_torque ? fmt::format(",{}\n", torque(theta, i)) : "\n";
        }
    }
    return text;
}

class BuildCoils : public testing::Test {
  protected:
    Finished build(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "build");
        return run_kzb(arguments, folder.path());
    }
    Finished build_sr(const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"sr",          "map.csv",       "-o",          "m.kzb",
                                           "--parameter", "phases=4",      "--parameter", "rotor_poles=6",
                                           "--parameter", "resistance=0.5"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return build(arguments);
    }
    // The one line of a refused build.
    std::string fault(const Finished& finished, int code) {
        EXPECT_EQ(finished.code, code) << finished.err;
        EXPECT_EQ(finished.out, "");
        EXPECT_FALSE(std::filesystem::exists(folder / "m.kzb"));
        return finished.err;
    }
    tool::StorePointer written() {
        tool::StorePointer store = tool::open_store();
        EXPECT_EQ(kzb_reader((folder / "m.kzb").c_str(), store.get()), 0);
        kzb_set_application("ALL", "", store.get());
        return store;
    }
    Folder folder;
};

TEST_F(BuildCoils, reluctance_tables_are_secant_inductances_of_every_phase_and_a_torque_even_in_the_current) {
    write_file(folder / "map.csv", phase_map(60.0, true));
    const Finished finished = build_sr();
    ASSERT_EQ(finished.code, 0) << finished.err;
    const tool::StorePointer store = written();
    EXPECT_EQ(kzb_get_int("control", "motor_type", store.get()), 10011);
    EXPECT_EQ(kzb_get_int("control", "number_of_poles", store.get()), 6);
    EXPECT_EQ(kzb_get_double("parameter", "RU", store.get()), 0.5);
    EXPECT_EQ(kzb_has_application("SR", nullptr, store.get()), 1);
    EXPECT_THAT(cyclic_of(store.get(), "inductance", "inductance"), ElementsAre(0, 1, 0));
    EXPECT_THAT(cyclic_of(store.get(), "torque", "torque_ibeta"), ElementsAre(1, 0));
    EXPECT_THAT(axis_of(store.get(), "inductance", "inductance", 1), ElementsAre(0.0, 1.0, 2.0, 4.0, 8.0));
    EXPECT_THAT(axis_of(store.get(), "torque", "torque_ibeta", 2),
                ElementsAre(-8.0, -4.0, -2.0, -1.0, 0.0, 1.0, 2.0, 4.0, 8.0));
    // Nodes at the shift of 15 degrees between phases hold the values of the map itself.
    each_value(store.get(), "inductance", "inductance", [](const std::vector<double>& at, double value) {
        const int element = static_cast<int>(at[2]);
        const double expected = element % 4 == element / 4 ? inductance(at[1] + 15.0 * (element % 4)) : 0.0;
        EXPECT_NEAR(value, expected, 1e-13) << at[0] << " A, " << at[1] << " deg, element " << element;
    });
    each_value(store.get(), "torque", "torque_ibeta",
               [](const std::vector<double>& at, double value) { EXPECT_NEAR(value, torque(at[0], at[1]), 1e-12); });
}

TEST_F(BuildCoils, half_a_pitch_is_completed_by_mirror_symmetry) {
    write_file(folder / "map.csv", phase_map(30.0, true));
    const Finished finished = build_sr();
    ASSERT_EQ(finished.code, 0) << finished.err;
    EXPECT_THAT(finished.err, HasSubstr("mirror image"));
    const tool::StorePointer store = written();
    each_value(store.get(), "torque", "torque_ibeta",
               [](const std::vector<double>& at, double value) { EXPECT_NEAR(value, torque(at[0], at[1]), 1e-12); });
}

TEST_F(BuildCoils, torque_that_the_map_lacks_is_the_derivative_of_the_coenergy) {
    write_file(folder / "map.csv", phase_map(60.0, false));
    const Finished finished = build_sr();
    ASSERT_EQ(finished.code, 0) << finished.err;
    const tool::StorePointer store = written();
    // A periodic spline through cos(6 theta) has at its nodes the slope times 3 sin(wh) / ((2 + cos(wh)) wh), which
    // is 1 - (wh)^4 / 180 and more; wh = 15 degrees.
    const double wh = 6.0 * 2.5 * radians_of_degree;
    const double factor = 3.0 * std::sin(wh) / ((2.0 + std::cos(wh)) * wh);
    each_value(store.get(), "torque", "torque_ibeta", [factor](const std::vector<double>& at, double value) {
        EXPECT_NEAR(value, factor * torque(at[0], at[1]), 1e-9);
    });
}

TEST_F(BuildCoils, coupling_is_fitted_symmetric_and_turns_its_sign_at_the_last_phase) {
    write_file(folder / "map.csv", phase_map(60.0, true));
    // M(theta) = 1 mH + 0.5 mH cos(6 (theta - 22.5)): the same at theta and at 45 - theta, as it must be.
    const auto m = [](double theta) { return 1e-3 + 0.5e-3 * std::cos(6.0 * (theta - 22.5) * radians_of_degree); };
    std::string text = "theta_mech_deg,current_A,psi_neighbour_Vs\n";
    for (double theta = 0.0; theta < 59.0; theta += 2.5) {
        for (const double i : {1.0, 8.0}) {
            text += fmt::format("{},{},{}\n", theta, i, m(theta) * i);
        }
    }
    write_file(folder / "mutual.csv", text);
    const Finished finished = build_sr({"--mutual", "mutual.csv"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    const tool::StorePointer store = written();
    each_value(store.get(), "inductance", "inductance", [&m](const std::vector<double>& at, double value) {
        const int row = static_cast<int>(at[2]) % 4;
        const int column = static_cast<int>(at[2]) / 4;
        const int low = std::min(row, column), high = std::max(row, column);
        if (high - low == 1) {
            EXPECT_NEAR(value, m(at[1] + 15.0 * low), 1e-12);
        } else if (high - low == 3) {
            EXPECT_NEAR(value, -m(at[1] + 15.0 * high), 1e-12);
        } else if (high - low == 2) {
            EXPECT_EQ(value, 0.0);
        }
    });
}

TEST_F(BuildCoils, account_tells_how_far_coarse_tables_are_from_the_map) {
    write_file(folder / "map.csv", phase_map(60.0, true));
    const Finished finished = build_sr({"--json", "--position-nodes", "13"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    const json account = json::parse(finished.out);
    EXPECT_EQ(account["motor_type"], 10011);
    EXPECT_EQ(account["axes"]["position_deg"]["nodes"], 13);
    // Straight lines over h = 5 deg through cos(6 theta) miss it in the middle by 1 - cos(15 deg) at its crest: 8 A
    // times 0.04 H times 0.0341.
    const json& psi = account["deviations"][0]["psi"];
    EXPECT_NEAR(psi["largest"],
                8.0 * Lb * (1.0 - std::cos(15.0 * radians_of_degree)) * std::cos(15.0 * radians_of_degree), 2e-5);
    EXPECT_GT(psi["largest"], psi["rms"]);
    EXPECT_EQ(account["deviations"][0]["lookups_out_of_table"], 0);
    EXPECT_NEAR(psi["scale"], 8.0 * (La + Lb), 1e-12);
}

TEST_F(BuildCoils, ascii_form_is_written_on_demand) {
    write_file(folder / "map.csv", phase_map(60.0, true));
    ASSERT_EQ(build_sr({"--form", "ascii"}).code, 0);
    EXPECT_EQ(read_file(folder / "m.kzb").substr(0, 11), "$DORN-KZa,#");
    EXPECT_EQ(kzb_get_int("control", "motor_type", written().get()), 10011);
}

TEST_F(BuildCoils, wrong_input_is_told_in_one_line_and_nothing_is_written) {
    const std::string head = "theta_mech_deg,current_A,psi_Vs\n";
    const std::vector<std::pair<std::string, std::string>> wrong{
        {head + "0,1,0.1\n0,-1,0.1\n", "map.csv:3: current -1 A, expected currents of 0 or more"},
        {head + "5,1,0.1\n5,2,0.2\n65,1,0.1\n65,2,0.2\n", "map.csv: positions start at 5 deg, expected 0"},
        {head + "0,1,0.1\n0,2,0.2\n50,1,0.1\n50,2,0.2\n",
         "map.csv: positions run from 0 to 50 deg, expected 0 to 60 (a rotor pitch) or 0 to 30 (half of it)"},
        {head + "0,1,0.1\n0,2,0.2\n30,1,-0.1\n30,2,0.2\n", "flux linkage -0.1 Vs at 30 deg, 1 A, expected one above 0"},
        {head + "0,1,0.1\n0,2,0.2\n30,1,0.1\n",
         "map.csv: no row for theta_mech 30 deg, current 2 A, expected a full grid"},
        {"theta_mech_deg,psi_Vs\n0,1\n", "map.csv:1: no column for current"},
    };
    for (const auto& [text, message] : wrong) {
        write_file(folder / "map.csv", text);
        const std::string said = fault(build_sr(), 3);
        EXPECT_THAT(said, HasSubstr(message));
        EXPECT_EQ(line_count(said), 1) << said;
    }
    write_file(folder / "map.csv", phase_map(60.0, true));
    EXPECT_THAT(fault(build_sr({"--current-max", "9"}), 2), HasSubstr("--current-max 9: the map ends at 8 A"));
    EXPECT_THAT(fault(build_sr({"--column", "speed=x"}), 2), HasSubstr("unknown quantity \"speed\""));
    EXPECT_THAT(fault(build({"sr", "map.csv", "-o", "m.kzb", "--parameter", "phases=6", "--parameter", "rotor_poles=6",
                             "--parameter", "resistance=1"}),
                      2),
                HasSubstr("phases 6: expected a whole number from 3 to 5"));
    EXPECT_THAT(fault(build({"sr", "absent.csv", "-o", "m.kzb", "--parameter", "phases=3", "--parameter",
                             "rotor_poles=6", "--parameter", "resistance=1"}),
                      3),
                HasSubstr("absent.csv: cannot be opened"));
    EXPECT_EQ(build({"sr", "map.csv", "-o", "map.csv"}).code, 2);
    EXPECT_EQ(read_file(folder / "map.csv"), phase_map(60.0, true));
}

// psi = c i / (x + 1 mm), force = -1/2 c i^2 / (x + 1 mm)^2.
TEST_F(BuildCoils, solenoid_tables_follow_the_map_and_hold_the_ends_of_the_stroke) {
    const double c = 2e-4;
    std::string text = "x_mm,current_mA,psi_Vs,force_N\n";
    for (int p = 0; p <= 8; ++p) {
        for (const double i : {0.0, 0.5, 1.0}) {
            const double x = 0.5e-3 * p;
            text += fmt::format("{},{},{},{}\n", 1e3 * x, 1e3 * i, c * i / (x + 1e-3),
                                -0.5 * c * i * i / ((x + 1e-3) * (x + 1e-3)));
        }
    }
    write_file(folder / "map.csv", text);
    const Finished finished = build({"solenoid", "map.csv", "-o", "m.kzb", "--parameter", "resistance=10"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    const tool::StorePointer store = written();
    EXPECT_EQ(kzb_get_int("control", "motor_type", store.get()), 10004);
    EXPECT_EQ(kzb_get_double("parameter", "RA", store.get()), 10.0);
    EXPECT_EQ(kzb_get_double("parameter", "DispLimitMin", store.get()), 0.0);
    EXPECT_EQ(kzb_get_double("parameter", "DispLimitMax", store.get()), 0.004);
    each_value(store.get(), "inductance", "inductance", [c](const std::vector<double>& at, double value) {
        EXPECT_NEAR(value, c / (at[1] + 1e-3), 1e-12);  // at current 0 as well: a straight line has its own slope
    });
    each_value(store.get(), "distance_flux", "flux",
               [](const std::vector<double>&, double value) { EXPECT_EQ(value, 0.0); });
    each_value(store.get(), "distance_force", "force", [c](const std::vector<double>& at, double value) {
        EXPECT_NEAR(value, -0.5 * c * at[1] * at[1] / ((at[0] + 1e-3) * (at[0] + 1e-3)), 1e-12);
    });
}

TEST_F(BuildCoils, stepper_tables_are_the_closed_forms_and_the_torque_is_that_of_the_coenergy) {
    write_file(folder / "p.toml",
               "rotor_teeth = 50\nresistance = 2.5\nmagnet_flux = 0.0125\ninductance = 3e-3\ncoupling = 0.9\n"
               "saliency = 1e-4\nlargest_current = 2\n");
    const Finished finished =
        build({"stepper", "--parameters", "p.toml", "-o", "m.kzb", "--position-nodes", "41", "--current-nodes", "5"});
    ASSERT_EQ(finished.code, 0) << finished.err;
    const tool::StorePointer store = written();
    EXPECT_EQ(kzb_get_int("control", "motor_type", store.get()), 10003);
    EXPECT_EQ(kzb_get_int("control", "number_of_poles", store.get()), 100);
    EXPECT_EQ(kzb_get_double("parameter", "RA+", store.get()), 2.5);
    EXPECT_THAT(axis_of(store.get(), "torque", "torque_ibeta", 1), ElementsAre(-4.0, -2.0, 0.0, 2.0, 4.0));
    each_value(store.get(), "mag_flux", "flux", [](const std::vector<double>& at, double value) {
        const double quarter = at[1] < 2 ? 0.0 : 90.0;
        const double sign = static_cast<int>(at[1]) % 2 == 0 ? 1.0 : -1.0;
        EXPECT_NEAR(value, sign * 0.0125 * std::cos((50.0 * at[0] - quarter) * radians_of_degree), 1e-15);
    });
    // Coenergy of the currents (j_A, 0, j_B, 0): the linkages of A+ and B+ integrated over them,
    //   W = psi_m+ j + 1/2 j^T L j,   torque = dW / d angle, by central differences between the closed forms.
    const tool::StepperMachine machine{50.0, 2.5, 0.0125, 3e-3, 0.9, 1e-4, 0.0, 2.0};
    const auto coenergy = [&machine](double angle, double a, double b) {
        return machine.magnet(angle, 0) * a + machine.magnet(angle, 2) * b +
               0.5 * (machine.inductance_of(angle, 0, 0) * a * a + machine.inductance_of(angle, 2, 2) * b * b) +
               machine.inductance_of(angle, 0, 2) * a * b;
    };
    each_value(store.get(), "torque", "torque_ibeta", [&](const std::vector<double>& at, double value) {
        const double h = 1e-4;  // degrees
        const double slope =
            (coenergy(at[1] + h, at[0], at[2]) - coenergy(at[1] - h, at[0], at[2])) / (2 * h * radians_of_degree);
        EXPECT_NEAR(value, slope, 1e-7);  // h^2 / 6 of the third derivative, and rounding 1e-16 / (2 h)
    });
    // The matrix is symmetric; half coils of a phase are coupled by -k L.
    EXPECT_NEAR(machine.inductance_of(0.9, 0, 1), -0.9 * 3e-3, 1e-6);
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            EXPECT_EQ(machine.inductance_of(0.37, row, column), machine.inductance_of(0.37, column, row));
        }
    }
}

TEST_F(BuildCoils, built_models_run_by_angle_and_by_steps) {
    write_file(folder / "map.csv", phase_map(60.0, true));
    ASSERT_EQ(build_sr().code, 0);
    const std::string head = "drive = \"voltage\"\n[time]\nstep = 1e-5\nstop = 0.02\n";
    const std::string switching = "[switching]\nvoltage = 50\nturn_on_deg = 32\nturn_off_deg = 43\n";
    write_file(folder / "s.toml", head + switching + "[mechanics]\ntype = \"speed\"\nspeed_rpm = 1500\n");
    const Finished finished = run_kzb({"run", "m.kzb", "s.toml", "--json"}, folder.path());
    ASSERT_EQ(finished.code, 0) << finished.err;
    const json outputs = json::parse(finished.out)["outputs"];
    for (const char* phase : {"i_a_A", "i_b_A", "i_c_A", "i_d_A"}) {
        EXPECT_GE(outputs[phase]["min"], -1e-12) << phase;  // diodes
        EXPECT_GT(outputs[phase]["max"], 0.5) << phase;
    }
    EXPECT_GT(outputs["torque_Nm"]["mean"], 0.0);
    // What does not suit is told with its line.
    for (const auto& [section, message] : std::vector<std::pair<std::string, std::string>>{
             {switching + "[sources]\nall = 0\n", "s.toml:5: switching: expected only one of sources, switching"},
             {"[steps]\nmode = \"full\"\nvoltage = 5\nrate = 100\n", "s.toml:5: steps: this machine is no stepping"},
             {"[switching]\nvoltage = 5\nturn_on_deg = 10\nturn_off_deg = 80\n",
              "s.toml:8: switching.turn_off_deg: 80 is not above turn_on_deg by less than the period of 60 degrees"}}) {
        write_file(folder / "s.toml", head + section);
        const Finished refused = run_kzb({"run", "m.kzb", "s.toml"}, folder.path());
        EXPECT_EQ(refused.code, 3);
        EXPECT_THAT(refused.err, HasSubstr(message));
        EXPECT_EQ(line_count(refused.err), 1) << refused.err;
    }
}

}  // namespace
}  // namespace kzb::test
