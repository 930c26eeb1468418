// kzb run: drives against closed forms, through the program.
//
// The machine has constant inductances, so each phase of a star under balanced voltages is a resistance and an
// inductance in series. The library's step is backward Euler:
//
//   i_n = (L i_n-1 + h v) / (L + h R),   under constant voltage  i_n = v / R * (1 - (1 + h R / L)^-n)
//
// A run that starts at 0 solves first at its third sample, one that starts later at its second.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>

#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

// CSV read apart from the program's own reader.
struct Csv {
    std::vector<std::string> header;
    std::vector<std::vector<double>> rows;
    std::size_t column(const std::string& name) const {
        const auto at = std::find(header.begin(), header.end(), name);
        if (at == header.end()) {
            throw std::runtime_error("no column " + name);
        }
        return static_cast<std::size_t>(at - header.begin());
    }
    std::vector<double> operator[](const std::string& name) const {
        std::vector<double> values;
        for (const auto& row : rows) {
            values.push_back(row[column(name)]);
        }
        return values;
    }
};

std::vector<std::string> cells_of(const std::string& line) {
    std::vector<std::string> cells;
    std::istringstream rest(line);
    for (std::string cell; std::getline(rest, cell, ',');) {
        cells.push_back(cell);
    }
    return cells;
}

Csv parse_csv(const std::string& text) {
    Csv csv;
    std::istringstream lines(text);
    std::string line;
    std::getline(lines, line);
    csv.header = cells_of(line);
    while (std::getline(lines, line)) {
        std::vector<double> row;
        for (const std::string& cell : cells_of(line)) {
            row.push_back(std::stod(cell));
        }
        csv.rows.push_back(row);
    }
    return csv;
}

class Run : public testing::Test {
  protected:
    Run() { write_constant_machine(folder / "m.kzb", machine); }

    Finished run(const std::string& scenario, const std::vector<std::string>& more = {}) {
        write_file(folder / "s.toml", scenario);
        std::vector<std::string> arguments = {"run", "m.kzb", "s.toml"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_kzb(arguments, folder.path());
    }
    Csv rows(const std::string& scenario) {
        const Finished finished = run(scenario, {"--out", "-"});
        EXPECT_EQ(finished.code, 0) << finished.err;
        return parse_csv(finished.out);
    }
    json summary(const std::string& scenario, int code = 0) {
        const Finished finished = run(scenario, {"--json"});
        EXPECT_EQ(finished.code, code) << finished.err;
        return json::parse(finished.out);
    }
    // The one line of a refused scenario.
    std::string fault(const std::string& scenario, int code = 3) {
        const Finished finished = run(scenario, {"--out", "r.csv"});
        EXPECT_EQ(finished.code, code) << scenario;
        EXPECT_EQ(finished.out, "");
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_FALSE(std::filesystem::exists(folder / "r.csv"));
        return finished.err;
    }

    Folder folder;
    ConstantMachine machine;  // R 0.5 Ohm, L 2 mH, tau 4 ms
};

const std::string dc_sources = "[sources]\nu = 10.0\nv = -5.0\nw = -5.0\n";
const std::string sources_off = "[sources]\nall = 0\n";

TEST_F(Run, a_direct_voltage_charges_the_winding_as_resistance_and_inductance_do) {
    const double h = 1e-4;
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 0.02\n" + dc_sources);
    const std::vector<double> i_u = csv["i_u_A"];
    const std::vector<double> i_v = csv["i_v_A"];
    const std::vector<double> time = csv["time_s"];
    ASSERT_EQ(i_u.size(), 200u);
    const double tau = machine.d_inductance / machine.resistance;
    const double end = 10.0 / machine.resistance;
    for (std::size_t k = 0; k < i_u.size(); ++k) {
        const double n = static_cast<double>(k);  // solves so far: the second sample is the first
        EXPECT_NEAR(time[k], h * (n + 1.0), 1e-15);
        EXPECT_NEAR(i_u[k], end * (1.0 - std::pow(1.0 + h / tau, -n)), 1e-9) << k;
        // Backward Euler is off by at most end * h / (2 tau) * max(x exp(-x)) = 20 * 0.0125 * 0.37
        EXPECT_NEAR(i_u[k], end * (1.0 - std::exp(-n * h / tau)), 0.1) << k;
        EXPECT_NEAR(i_v[k], -0.5 * i_u[k], 1e-9);
    }
}

TEST_F(Run, a_run_that_starts_at_0_solves_first_at_its_third_sample) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 4e-4\n" + dc_sources);
    const std::vector<double> i_u = csv["i_u_A"];
    ASSERT_EQ(i_u.size(), 5u);
    EXPECT_EQ(i_u[0], 0.0);
    EXPECT_EQ(i_u[1], 0.0);
    // h v / (L + h R)
    EXPECT_NEAR(i_u[2], 1e-4 * 10.0 / (2e-3 + 1e-4 * 0.5), 1e-12);
}

TEST_F(Run, with_an_initial_time_the_first_sample_solves) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 4e-4\n" + dc_sources +
                         "[initial]\ntime = 5e-5\n");
    // h v / (2 L - L_previous + h R), and there is no previous inductance yet
    EXPECT_NEAR(csv["i_u_A"][0], 5e-5 * 10.0 / (2.0 * 2e-3 + 5e-5 * 0.5), 1e-12);
}

TEST_F(Run, initial_currents_decay_with_the_time_constant) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 0.01\n" + sources_off +
                         "[initial.current]\nu = 4.0\nv = -2.0\nw = -2.0\n");
    const std::vector<double> i_u = csv["i_u_A"];
    for (std::size_t k = 0; k < i_u.size(); ++k) {
        EXPECT_NEAR(i_u[k], 4.0 * std::pow(1.0 + 1e-4 / 4e-3, -static_cast<double>(k)), 1e-9) << k;
    }
}

TEST_F(Run, a_sine_settles_at_the_amplitude_of_the_impedance) {
    const json result = summary(
        "drive = \"voltage\"\n[time]\nstep = 1e-5\nstop = 0.1\n[sources.all]\ntype = \"sine\"\namplitude = 10\n"
        "frequency = 50\n[record]\nfrom = 0.08\noutputs = [\"i\"]\n");
    const double omega = 2.0 * std::numbers::pi * 50.0;
    const double impedance = std::hypot(machine.resistance, omega * machine.d_inductance);
    for (const char* column : {"i_u_A", "i_v_A", "i_w_A"}) {
        // Backward Euler damps by about omega h / 2 = 0.16 percent; 20 time constants have settled.
        EXPECT_NEAR(result["outputs"][column]["max"].get<double>(), 10.0 / impedance, 0.01 * 10.0 / impedance);
        EXPECT_NEAR(result["outputs"][column]["rms"].get<double>(), 10.0 / impedance / std::sqrt(2.0),
                    0.01 * 10.0 / impedance);
    }
}

TEST_F(Run, pulses_act_as_their_mean) {
    // Duty 0.25 of 40 V on u is 10 V on average; the neutral of the star takes a third, 20/3 V remain across u.
    const json result = summary(
        "drive = \"voltage\"\n[time]\nstep = 1e-5\nstop = 0.1\n[sources]\nv = 0\nw = 0\n[sources.u]\ntype = \"pwm\"\n"
        "high = 40\nduty = 0.25\ncarrier_frequency = 2000\n[record]\nfrom = 0.08\n");
    EXPECT_NEAR(result["outputs"]["v_u_V"]["mean"].get<double>(), 10.0, 0.02);
    EXPECT_NEAR(result["outputs"]["i_u_A"]["mean"].get<double>(), 20.0 / 3.0 / machine.resistance, 0.03);
}

TEST_F(Run, csv_columns_drive_a_phase) {
    write_file(folder / "v.csv", "time_s,v_V\n0,0\n0.01,10\n");
    const Csv csv = rows(
        "drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 0.02\n[sources]\nv = 0\nw = 0\n[sources.u]\ntype = \"csv\"\n"
        "file = \"v.csv\"\ncolumn = \"v_V\"\nscale = 2.0\n");
    const std::vector<double> v_u = csv["v_u_V"];
    EXPECT_NEAR(v_u[5], 10.0, 1e-12);
    EXPECT_NEAR(v_u[20], 20.0, 1e-12);
}

TEST_F(Run, given_currents_yield_the_torque_of_the_magnet_flux) {
    // Ld = Lq: torque = pole pairs * psi * i_q in the power-invariant frame, i_q = sqrt(3/2) * amplitude at beta 0.
    machine.d_flux = 0.1;
    write_constant_machine(folder / "m.kzb", machine);
    // At angle 0 the q axis needs i_u = 0, i_v = +A sqrt(3)/2, i_w = -A sqrt(3)/2: q = sqrt(2/3) A (3/2).
    const double amplitude = 8.0;
    const std::string half = std::to_string(amplitude * std::sqrt(3.0) / 2.0);
    const json result = summary("drive = \"current\"\n[time]\nstep = 1e-4\nstop = 1e-3\n[sources]\nu = 0\nv = " + half +
                                "\nw = -" + half + "\n");
    const double i_q = std::sqrt(1.5) * amplitude;
    EXPECT_NEAR(result["outputs"]["torque_Nm"]["mean"].get<double>(), 0.5 * machine.poles * machine.d_flux * i_q, 1e-5);
    EXPECT_EQ(result["outputs"].count("v_u_V"), 0u) << "no voltage is applied";
}

TEST_F(Run, a_free_rotor_coasts_down_by_coulomb_friction) {
    // No flux, no current: no torque. 100 rpm minus 0.2 / 0.01 rad/s^2 = 20 rad/s^2 over 0.25 s: 5 rad/s less.
    const Csv csv =
        rows("drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 0.25\n" + sources_off +
             "[mechanics]\ntype = \"rotor\"\ninertia = 0.01\ncoulomb_friction = 0.2\nstart_speed_rpm = 100\n"
             "start_angle_deg = 30\n");
    const std::vector<double> speed = csv["speed_rpm"];
    EXPECT_EQ(speed[0], 100.0);
    EXPECT_EQ(csv["displacement_deg"][0], 30.0);
    EXPECT_NEAR(speed[250], 100.0 - 5.0 * 30.0 / std::numbers::pi, 1e-9);
}

TEST_F(Run, the_torque_that_is_read_back_drives_the_rotor) {
    machine.d_flux = 0.1;
    write_constant_machine(folder / "m.kzb", machine);
    // Given currents at a heavy rotor: the angle hardly moves, the torque stays, the speed grows as T t / J.
    const json result = summary(
        "drive = \"current\"\n[time]\nstep = 1e-4\nstop = 0.01\n[sources]\nu = 0\nv = 5\nw = -5\n[mechanics]\n"
        "type = \"rotor\"\ninertia = 100\n");
    const double torque = 0.5 * machine.poles * machine.d_flux * std::sqrt(2.0 / 3.0) * 5.0 * std::sqrt(3.0);
    EXPECT_NEAR(result["outputs"]["speed_rpm"]["max"].get<double>(), torque * 0.01 / 100.0 * 30.0 / std::numbers::pi,
                1e-9);
}

TEST_F(Run, given_speed_turns_six_degrees_per_second_and_rpm) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstep = 0.01\nstop = 1\n" + sources_off +
                         "[mechanics]\ntype = \"speed\"\nspeed_rpm = 60\n");
    EXPECT_NEAR(csv["displacement_deg"][100], 360.0, 1e-9);
    EXPECT_EQ(csv["speed_rpm"][50], 60.0);
}

TEST_F(Run, an_open_phase_carries_no_current) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 0.04\n" + dc_sources +
                         "[open_phases]\nw = [[0.0, inf]]\n");
    const std::vector<double> i_w = csv["i_w_A"];
    const std::vector<double> i_u = csv["i_u_A"];
    for (const double i : i_w) {
        EXPECT_NEAR(i, 0.0, 1e-12);
    }
    // u and v in series: 15 V over two resistances.
    EXPECT_NEAR(i_u.back(), 15.0 / (2.0 * machine.resistance), 0.01);
}

TEST_F(Run, an_open_window_ends) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstart = 1e-4\nstep = 1e-4\nstop = 0.04\n" + dc_sources +
                         "[open_phases]\nu = [[0.0, 0.02]]\nv = [[0.0, 0.02]]\nw = [[0.0, 0.02]]\n");
    const std::vector<double> i_u = csv["i_u_A"];
    EXPECT_NEAR(i_u[150], 0.0, 1e-12);
    EXPECT_GT(i_u.back(), 15.0);  // 20 A less exp(-5) of it
}

TEST_F(Run, resistance_corrections_and_temperature_reach_the_model) {
    const json result = summary("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n" + dc_sources +
                                "[model]\nresistance = 2.0\ninterpolation = \"spline\"\nconnection = "
                                "\"star\"\n[corrections]\ninductance = 0.5\n"
                                "[temperature]\ncoil = 393.15\ncoil_base = 293.15\ncoil_coefficient = 4000\n");
    // 2 Ohm * (1 + 100 K * 4000e-6 / K)
    EXPECT_NEAR(result["outputs"]["resistance_Ohm"]["max"].get<double>(), 2.0 * 1.4, 1e-12);
    EXPECT_NEAR(result["outputs"]["inductance_d_H"]["max"].get<double>(), 0.5 * 2e-3, 1e-15);
    EXPECT_EQ(result["failed_sets"], json::array());
}

TEST_F(Run, skew_scales_the_magnet_flux) {
    machine.d_flux = 0.1;
    write_constant_machine(folder / "m.kzb", machine);
    const std::string base = "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 5e-4\n" + sources_off +
                             "[record]\noutputs = [\"magnet_flux_u\"]\n";
    // Two steps of 10 mechanical degrees, at -5 and 5; 2 pole pairs: c = cos(2 * -5 degrees) for the one slice of M
    // = 1.
    const double factor = std::cos(10.0 * std::numbers::pi / 180.0);
    const double plain = summary(base)["outputs"]["magnet_flux_u_Wb"]["max"].get<double>();
    const double skewed =
        summary(base +
                "[skew.a]\ntype = \"stepped\"\nangle_deg = 10\nsteps = 2\n")["outputs"]["magnet_flux_u_Wb"]["max"]
            .get<double>();
    EXPECT_NEAR(plain, std::sqrt(2.0 / 3.0) * 0.1, 1e-12);
    EXPECT_NEAR(skewed, plain * factor, 1e-12);
}

// loss = 2 * dc_voltage + carrier_frequency / 1000 + |rpm| / 100, whatever the current
double loss_at(const std::vector<double>& p) {
    return 2.0 * p[3] + p[4] / 1000.0 + p[2] / 100.0;
}
const std::vector<std::vector<double>> loss_axes = {
    {0.0, 100.0}, {-180.0, 180.0}, {0.0, 6000.0}, {0.0, 500.0}, {0.0, 20e3}};

TEST_F(Run, iron_loss_is_looked_up_at_speed_dc_voltage_and_carrier_and_brakes) {
    write_model(folder / "m.kzb", [this](KZB_STORE* store) {
        fill_constant_machine(store, machine);
        put_table(store, "loss_table", "iron_loss", loss_axes, loss_at);
    });
    const json result =
        summary("drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 0.01\n" + sources_off +
                "[mechanics]\ntype = \"speed\"\nspeed_rpm = 3000\n[losses]\niron = true\ndc_voltage = 300\n"
                "carrier_frequency = 5e3\n[record]\nfrom = 5e-3\n");
    const double loss = 2.0 * 300.0 + 5.0 + 30.0;
    EXPECT_NEAR(result["outputs"]["iron_loss_W"]["mean"].get<double>(), loss, 1e-6);
    // No current and no flux: what is left is the loss over 100 pi rad/s, against the motion.
    EXPECT_NEAR(result["outputs"]["torque_Nm"]["mean"].get<double>(), -loss / (100.0 * std::numbers::pi), 1e-6);
}

TEST_F(Run, user_copper_loss_adds_its_resistance) {
    write_model(folder / "m.kzb", [this](KZB_STORE* store) {
        fill_constant_machine(store, machine);
        put_table(store, "equivalent_resistance_table", "copper_loss", loss_axes,
                  [](const auto& p) { return p[3] / 1000.0; });
    });
    const json result =
        summary("drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 0.01\n" + sources_off +
                "[losses]\nuser_copper = true\ndc_voltage = 200\npwm_frequency = 1e4\n[record]\nfrom = 5e-3\n");
    EXPECT_NEAR(result["outputs"]["resistance_Ohm"]["mean"].get<double>(), 0.5 + 0.2, 1e-12);
}

TEST_F(Run, a_dc_voltage_that_no_loss_uses_is_refused) {
    EXPECT_THAT(
        fault("drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 0.01\n" + sources_off + "[losses]\ndc_voltage = 200\n",
              1),
        HasSubstr("s.toml:8: losses.dc_voltage: kzbcalcSetDCVoltage: status 180064"));
}

TEST_F(Run, every_setting_of_a_rotary_machine_reaches_its_call) {
    // Each is refused with the status of its own test, so each arrived at the right call with the right number.
    const std::vector<std::pair<std::string, int>> cases = {
        {"[model]\nresistance = 0\n", 180041},
        {"[model]\naccuracy = 9\n", 180038},
        {"[model]\naccuracy = 1\n", 180037},
        {"[corrections]\nflux = 0\n", 180017},
        {"[corrections]\nmagnet = 0\n", 180020},
        {"[corrections]\nsteel = 0\n", 180021},
        {"[corrections]\ninductance = 0\n", 180018},
        {"[corrections]\ntorque = 0\n", 180019},
        {"[corrections]\nforce = 1\n", 180039},
        {"[corrections]\ncoil_turns_1 = -1\n", 180016},
        {"[corrections]\ncoil_turns_2 = -1\n", 180016},
        {"[temperature]\nmagnet = -1\n", 180043},
        {"[temperature]\nmagnet_base = -1\n", 180043},
        {"[temperature]\nmagnet_coefficient = 0.1\n", 180045},
        {"[temperature]\ncoil = -1\n", 180043},
        {"[temperature]\ncoil_base = -1\n", 180043},
        {"[temperature]\ncoil_coefficient = -1\n", 180044},
        {"[temperature]\ncorrection = false\ncoil = 300\n", 180046},
        {"[losses]\niron = true\n", 180040},
        {"[losses]\nuser_copper = true\n", 180065},
        {"[losses]\ncarrier_frequency = 1\n", 180064},
        {"[initial]\ntime = -1\n", 180032},
    };
    for (const auto& [section, status] : cases) {
        const json result =
            summary("drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 0.01\n" + sources_off + section, 1);
        ASSERT_EQ(result["failed_sets"].size(), 1u) << section;
        EXPECT_EQ(result["failed_sets"][0]["status"], status) << section;
    }
}

TEST_F(Run, a_refused_setting_is_exit_code_1_with_its_status_and_text) {
    const std::string scenario =
        "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n" + dc_sources + "[corrections]\nflux = -1\n";
    EXPECT_THAT(fault(scenario, 1), HasSubstr("s.toml:10: corrections.flux: kzbcalcSetCorrectionOfFlux: status 180017 "
                                              "(flux correction zero or negative)"));
    const json result = summary(scenario, 1);
    EXPECT_EQ(result["steps"], 0);
    ASSERT_EQ(result["failed_sets"].size(), 1u);
    EXPECT_EQ(result["failed_sets"][0]["status"], 180017);
    EXPECT_EQ(result["failed_sets"][0]["text"], "flux correction zero or negative");
}

TEST_F(Run, several_refused_settings_are_all_told) {
    const Finished finished = run("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n" + dc_sources +
                                  "[corrections]\nflux = 0\nsteel = 0\n[losses]\niron = true\n");
    EXPECT_EQ(finished.code, 1);
    EXPECT_EQ(line_count(finished.err), 3) << finished.err;
    for (const char* status : {"180017", "180021", "180040"}) {
        EXPECT_THAT(finished.err, HasSubstr(status));
    }
}

TEST_F(Run, lookups_outside_the_table_are_counted) {
    machine.table_end = 5.0;  // A; the run goes to 20 A
    write_constant_machine(folder / "m.kzb", machine);
    const Finished finished = run("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 0.02\n" + dc_sources, {"--json"});
    EXPECT_EQ(finished.code, 0);
    const json result = json::parse(finished.out);
    ASSERT_EQ(result["lookup_errors"].size(), 1u);
    EXPECT_EQ(result["lookup_errors"][0]["code"], 80002);
    EXPECT_GT(result["lookup_errors"][0]["steps"], 100);
    EXPECT_THAT(finished.err, HasSubstr("The reference value of table is upper than the axis range."));
    // One line more for each table: its axis, how often and how far.
    EXPECT_EQ(line_count(finished.err), 3) << finished.err;
    EXPECT_THAT(finished.err, HasSubstr("dq_inductance/d_inductance, axis 2: "));
}

TEST_F(Run, a_run_within_its_tables_has_nothing_to_warn_of) {
    const Finished finished = run("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 0.02\n" + dc_sources, {"--json"});
    EXPECT_EQ(json::parse(finished.out)["lookup_errors"], json::array());
    EXPECT_EQ(finished.err, "");
}

// Such a lookup leaves the code of an absent table when all went well; outside its table it leaves the cause.
TEST_F(Run, a_spline_lookup_that_succeeds_is_nothing_to_warn_of) {
    const std::string scenario =
        "drive = \"voltage\"\nmodel.interpolation = \"spline\"\n[time]\nstep = 1e-4\nstop = 0.02\n" + dc_sources;
    const Finished finished = run(scenario, {"--json"});
    EXPECT_EQ(json::parse(finished.out)["lookup_errors"], json::array());
    EXPECT_EQ(finished.err, "");
    machine.table_end = 5.0;
    write_constant_machine(folder / "m.kzb", machine);
    EXPECT_EQ(json::parse(run(scenario, {"--json"}).out)["lookup_errors"][0]["code"], 80002);
}

TEST_F(Run, the_header_names_each_unit_last_and_rows_are_whole) {
    const Finished finished =
        run("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n" + dc_sources, {"--out", "r.csv"});
    EXPECT_EQ(finished.code, 0) << finished.err;
    const std::string csv = read_file(folder / "r.csv");
    EXPECT_EQ(csv.substr(0, csv.find('\n')),
              "time_s,displacement_deg,speed_rpm,v_u_V,v_v_V,v_w_V,i_u_A,i_v_A,i_w_A,torque_Nm,v_induced_u_V,"
              "v_induced_v_V,v_induced_w_V,coil_flux_u_Wb,coil_flux_v_Wb,coil_flux_w_Wb,inductance_d_H,inductance_q_H,"
              "resistance_Ohm,copper_loss_W,eddy_loss_W,hysteresis_loss_W,iron_loss_W,user_copper_loss_W");
    EXPECT_EQ(line_count(csv), 12);  // header and samples 0 to 10
    EXPECT_THAT(finished.out, HasSubstr("i_u_A"));
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb", "r.csv", "s.toml"));
}

TEST_F(Run, record_chooses_outputs_by_name_group_or_column_and_thins_rows) {
    const Csv csv = rows("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-2\n" + dc_sources +
                         "[record]\noutputs = [\"torque_Nm\", \"i\", \"inductance_uv\"]\nevery = 10\nfrom = 5e-3\n");
    EXPECT_THAT(csv.header, ElementsAre("time_s", "torque_Nm", "i_u_A", "i_v_A", "i_w_A", "inductance_uv_H"));
    EXPECT_EQ(csv.rows.size(), 6u);                                  // 5, 6, 7, 8, 9 and 10 ms
    EXPECT_NEAR(csv["inductance_uv_H"].back(), -2e-3 / 3.0, 1e-15);  // 2/3 L cos 120 degrees
}

TEST_F(Run, summary_numbers_are_those_of_the_rows) {
    const std::string scenario = "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 2e-3\n" + dc_sources;
    const std::vector<double> i = rows(scenario)["i_u_A"];
    const json result = summary(scenario);
    EXPECT_EQ(result["steps"], 21);
    EXPECT_EQ(result["recorded"], 21);
    EXPECT_EQ(result["drive"], "voltage");
    double sum = 0.0;
    double squares = 0.0;
    for (const double x : i) {
        sum += x;
        squares += x * x;
    }
    const json& i_u = result["outputs"]["i_u_A"];
    EXPECT_EQ(i_u["min"], *std::min_element(i.begin(), i.end()));
    EXPECT_EQ(i_u["max"], *std::max_element(i.begin(), i.end()));
    EXPECT_NEAR(i_u["mean"].get<double>(), sum / 21.0, 1e-12);
    EXPECT_NEAR(i_u["rms"].get<double>(), std::sqrt(squares / 21.0), 1e-12);
}

TEST_F(Run, a_linear_machine_moves_in_metres_and_gives_a_force) {
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        kzb_put_int("control", "motor_type", 10005, store);
        kzb_put_double("control", "electrical_length", 0.06, store);
        kzb_put_double("parameter", "RU", 1.0, store);
        const std::vector<double> component = {0, 1, 2, 3, 4, 5, 6, 7, 8};
        const std::vector<double> track = {-1.0, 1.0};
        put_table(store, "inductance", "inductance", {{0.0, 100.0}, track, component},
                  [](const auto& p) { return static_cast<int>(p[2]) % 4 == 0 ? 2e-3 : 0.0; });
        put_table(store, "mag_flux", "flux", {{-1.0, 0.0, 1.0}, {0, 1, 2}}, [](const auto&) { return 0.0; });
        put_table(store, "distance_force", "force", {{-180.0, 180.0}, track, {0.0, 100.0}},
                  [](const auto& p) { return 3.0 * p[2]; });
    });
    const json result = summary(
        "drive = \"current\"\n[time]\nstep = 1e-3\nstop = 0.1\n[sources]\nu = 2\nv = -1\nw = -1\n[mechanics]\n"
        "type = \"mover\"\nmass = 3\nviscous_friction = 0\n");
    // Amplitude 2 A gives 6 N, 2 m/s^2: 0.2 m/s and 0.01 m after 0.1 s.
    EXPECT_NEAR(result["outputs"]["force_N"]["mean"].get<double>(), 6.0, 1e-9);
    EXPECT_NEAR(result["outputs"]["speed_mps"]["max"].get<double>(), 0.2, 1e-9);
    EXPECT_NEAR(result["outputs"]["displacement_m"]["max"].get<double>(), 0.01, 1e-9);
    EXPECT_THAT(fault("drive = \"current\"\n[time]\nstep = 1e-3\nstop = 0.1\n" + sources_off +
                      "[mechanics]\ntype = \"speed\"\nspeed_rpm = 3\n"),
                HasSubstr("mechanics.speed: missing"));
}

TEST_F(Run, wrong_scenarios_are_exit_code_3_and_name_their_line) {
    const std::string head = "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n";  // 4 lines
    const std::string good = head + sources_off;                                         // 6 lines
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"drive = \"voltage\"\nstep = \n", "s.toml:2: not valid TOML"},
        {"[time]\nstep = 1\nstop = 2\n", "drive: missing"},
        {"drive = \"power\"\n", "s.toml:1: drive: expected one of \"voltage\", \"current\""},
        {"drive = 3\n", "s.toml:1: drive: expected one of"},
        {"drive = \"voltage\"\n" + sources_off, "time: missing"},
        {"drive = \"voltage\"\n[time]\nstep = 0\nstop = 1\n", "s.toml:3: time.step: 0 is not above 0"},
        {"drive = \"voltage\"\n[time]\nstep = nan\nstop = 1\n", "s.toml:3: time.step: expected a finite number"},
        {"drive = \"voltage\"\n[time]\nstep = \"1\"\nstop = 1\n", "s.toml:3: time.step: expected a finite number"},
        {"drive = \"voltage\"\n[time]\nstep = 1e-300\nstop = 1\n", "s.toml:3: time.step: "},
        {"drive = \"voltage\"\n[time]\nstep = 1\nstop = 1\nstart = 2\n", "s.toml:4: time.stop: "},
        {head, "sources: missing"},
        {head + "[sources]\nu = 1\nv = 2\n", "sources.w: missing"},
        {head + "[sources]\nall = 1\nx = 2\n", "s.toml:7: sources.x: unknown key, expected one of all, u, v, w"},
        {head + "[sources]\nall = true\n", "s.toml:6: sources.all: expected a number, or a table"},
        {head + "[sources.all]\ntype = \"saw\"\n", "s.toml:6: sources.all.type: expected one of \"dc\""},
        {head + "[sources.all]\ntype = \"sine\"\namplitude = 1\n", "sources.all.frequency: missing"},
        {head + "[sources.all]\ntype = \"pwm\"\nhigh = 1\ncarrier_frequency = 1e3\n", "either duty or modulation"},
        {head + "[sources.all]\ntype = \"pwm\"\nhigh = 1\ncarrier_frequency = 1e3\nduty = 1.5\n",
         "not between 0 and 1"},
        {head + "[sources.all]\ntype = \"pwm\"\nhigh = 1\ncarrier_frequency = 1e30\nduty = 0.5\n",
         "periods in a time step"},
        {good + "[open_phases]\nu = [[2, 1]]\n", "s.toml:8: open_phases.u: the time 2 is not before 1"},
        {good + "[open_phases]\nu = [1, 2]\n", "s.toml:8: open_phases.u: expected pairs"},
        {good + "[mechanics]\ntype = \"rotor\"\n", "mechanics.inertia: missing"},
        {good + "[mechanics]\ntype = \"rotor\"\ninertia = -1\n", "s.toml:9: mechanics.inertia: -1 is not above 0"},
        {good + "[mechanics]\ntype = \"mover\"\nmass = 1\n", "s.toml:8: mechanics.type: expected one of"},
        {good + "[model]\nresistence = 1\n", "s.toml:8: model.resistence: unknown key, expected one of interpolation"},
        {good + "[model]\ninterpolation = \"quadratic\"\n",
         "s.toml:8: model.interpolation: expected one of \"linear\""},
        {good + "[model]\naccuracy = 1.5\n", "s.toml:8: model.accuracy: expected an integer"},
        {good + "[record]\noutputs = [\"power\"]\n",
         "s.toml:8: record.outputs: no output \"power\", expected one of time"},
        {good + "[record]\nevery = 0\n", "s.toml:8: record.every: expected an integer from 1"},
        {good + "[record]\nfrom = 0.002\n", "s.toml:8: record.from: 0.002 is after the last sample"},
        // samples 0 to 10: every seventh is 0 and 7
        {good + "[record]\nevery = 7\nfrom = 8e-4\n", "record.from: 0.0008 is after the last sample"},
        {good + "[skew.a]\ntype = \"stepped\"\nangle_deg = 5\nsteps = 1\n",
         "s.toml:10: skew.a.steps: expected an integer from 2"},
        {good + "[losses]\niron = 1\n", "s.toml:8: losses.iron: expected true or false"},
        {good + "[extra]\n", "s.toml:7: extra: unknown key"},
    };
    for (const auto& [scenario, wording] : cases) {
        EXPECT_THAT(fault(scenario), HasSubstr(wording));
    }
}

TEST_F(Run, wrong_csv_files_name_their_line_and_column) {
    const std::string scenario =
        "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n[sources.all]\ntype = \"csv\"\nfile = \"v.csv\"\n"
        "column = \"v_V\"\n";
    EXPECT_THAT(fault(scenario), HasSubstr("v.csv"));
    write_file(folder / "v.csv", "time_s,other\n0,1\n");
    EXPECT_THAT(fault(scenario), HasSubstr("s.toml:8: sources.all.column: "));
    EXPECT_THAT(fault(scenario), HasSubstr("no column \"v_V\", expected one of \"time_s\", \"other\""));
    write_file(folder / "v.csv", "t,v_V\n0,1\n");
    EXPECT_THAT(fault(scenario), HasSubstr("no column \"time_s\""));
    write_file(folder / "v.csv", "time_s,v_V\n0,1\n1,x\n");
    EXPECT_THAT(fault(scenario), HasSubstr("v.csv:3: column \"v_V\": \"x\" is not a finite number"));
    write_file(folder / "v.csv", "time_s,v_V\n0,1\n1,2\n1,3\n");
    EXPECT_THAT(fault(scenario), HasSubstr("v.csv:4: time 1 is not above 1 of the row before"));
    write_file(folder / "v.csv", "");
    EXPECT_THAT(fault(scenario), HasSubstr("v.csv"));
}

TEST_F(Run, a_missing_scenario_or_a_directory_is_exit_code_3) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"none.toml", "cannot be opened (No such file or directory), expected a scenario in TOML"},
        {".", "is a directory, expected a scenario in TOML"},
        {"/dev/zero", "is neither a file nor a pipe, expected a scenario in TOML"}};
    for (const auto& [name, fault] : cases) {
        const Finished finished = run_kzb({"run", "m.kzb", name}, folder.path());
        EXPECT_EQ(finished.code, 3);
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_THAT(finished.err, HasSubstr(name + ": " + fault));
    }
}

TEST_F(Run, rows_do_not_replace_what_the_run_reads_or_draws) {
    const std::string scenario = "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n" + dc_sources;
    const std::string model = read_file(folder / "m.kzb");
    for (const auto& more : std::vector<std::vector<std::string>>{
             {"--out", "m.kzb"}, {"--out", "./s.toml"}, {"--out", "p.png", "--plot", "p.png"}}) {
        const Finished finished = run(scenario, more);
        EXPECT_EQ(finished.code, 2) << more[1];
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_THAT(finished.err, HasSubstr("expected another file"));
    }
    EXPECT_EQ(read_file(folder / "m.kzb"), model);
    EXPECT_EQ(read_file(folder / "s.toml"), scenario);
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb", "s.toml"));
}

TEST_F(Run, a_plot_that_cannot_be_written_is_told_before_the_run) {
    const Finished finished = run("drive = \"voltage\"\n[time]\nstep = 1e-6\nstop = 1e3\n" + dc_sources,
                                  {"--out", "r.csv", "--plot", "none/p.png"});
    EXPECT_EQ(finished.code, 1);
    EXPECT_THAT(finished.err, HasSubstr("none/p.png: cannot write"));
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb", "s.toml"));
}

TEST_F(Run, a_motor_type_that_is_not_driven_is_exit_code_3) {
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_int("control", "motor_type", 10009, store); });
    EXPECT_THAT(fault("drive = \"voltage\"\n"), HasSubstr("motor type 10009 (unknown), expected 10000"));
}

TEST_F(Run, an_interrupted_run_leaves_the_old_output_and_nothing_beside_it) {
    write_file(folder / "r.csv", "old");
    write_file(folder / "s.toml", "drive = \"voltage\"\n[time]\nstep = 1e-6\nstop = 1e3\n" + dc_sources);
    const Finished finished = run_kzb_for({"run", "m.kzb", "s.toml", "--out", "r.csv"}, folder.path(), 0.3);
    EXPECT_EQ(finished.signal, SIGTERM);
    EXPECT_EQ(read_file(folder / "r.csv"), "old");
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb", "r.csv", "s.toml"));
}

TEST_F(Run, a_failing_run_leaves_the_old_output) {
    write_file(folder / "r.csv", "old");
    const Finished finished =
        run("drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 1e-3\n" + dc_sources + "[corrections]\nflux = -1\n",
            {"--out", "r.csv"});
    EXPECT_EQ(finished.code, 1);
    EXPECT_EQ(read_file(folder / "r.csv"), "old");
}

TEST_F(Run, a_plot_shows_currents_torque_and_losses_over_time) {
    const Finished finished =
        run("drive = \"voltage\"\n[time]\nstep = 1e-5\nstop = 0.1\n" + dc_sources, {"--plot", "r.svg"});
    EXPECT_EQ(finished.code, 0) << finished.err;
    const std::string svg = read_file(folder / "r.svg");
    for (const char* label : {"current (A)", "torque (N m)", "loss (W)", "time (s)", "i_u", "copper_loss"}) {
        EXPECT_THAT(svg, HasSubstr(label));
    }
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb", "r.svg", "s.toml"));
}

}  // namespace
}  // namespace kzb::test
