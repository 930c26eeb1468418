// kzb build wfsm: inductances and flux maps into models. Expected values are closed forms, worked out here.
#include "kzb/build_wfsm.h"

#include <cmath>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "kzb/wfsm_deviation.h"
#include "kzb/wfsm_map.h"
#include "nlohmann/json.hpp"
#include "tools/build_synthetic.h"
#include "tools/program.h"

namespace kzb::tool {
namespace {

using synthetic::TextFile;
using testing::HasSubstr;

constexpr double pi = 3.14159265358979323846;
const std::string parameters =
    "name,value,unit\npole_pairs,3,1\nR_s,0.01555,ohm\nR_e_referred,0.0072,ohm\nL_d,0.00166,H\nL_q,0.00035,H\n"
    "L_m,0.001589,H\nL_e_referred,0.00174,H\n";

WfsmBuild built(const std::string& text, const std::vector<std::string>& words = {},
                FieldForm form = FieldForm::referred) {
    const TextFile file("wfsm.csv", text);
    WfsmOptions options;
    options.parameter_path = file.path();
    options.parameters = words;
    options.field_form = form;
    return build_wfsm(options);
}

double at(KZB_STORE* store, const char* category, const char* key, std::vector<double> where) {
    return kzb_get_table_interpolated_value(category, key, where.data(), "Linear", store);
}

// Phase U at position 0 is d, the currents of the tables are sqrt(3/2) times peak.
TEST(BuildWfsm, referred_inductances_become_those_of_a_winding_of_the_same_power) {
    const WfsmBuild build = built(parameters);
    KZB_STORE* store = build.store.get();
    EXPECT_EQ(kzb_get_int("control", "motor_type", store), 10007);
    EXPECT_EQ(kzb_get_int("control", "number_of_poles", store), 6);
    EXPECT_EQ(kzb_get_int("control", "current_type", store), 0);
    EXPECT_DOUBLE_EQ(kzb_get_double("parameter", "RF", store), 1.5 * 0.0072);  // 1.5 v_e at i_e
    const double id = -40.0;
    const double iq = 70.0;
    const double i_e = 120.0;
    const double s = std::sqrt(1.5);
    const auto flux = [&](double component) {
        return at(store, "current_flux", "flux", {s * id, s * iq, i_e, 0.0, component});
    };
    EXPECT_NEAR(flux(0.0), 0.00166 * id + 0.001589 * i_e, 1e-9);
    // V lags by 120 degrees: psi_d cos(-120) - psi_q sin(-120)
    EXPECT_NEAR(flux(1.0), -0.5 * (0.00166 * id + 0.001589 * i_e) + std::sqrt(0.75) * 0.00035 * iq, 1e-9);
    EXPECT_NEAR(flux(3.0), 1.5 * (0.001589 * id + 0.00174 * i_e), 1e-9);
    EXPECT_NEAR(at(store, "harmonic_torque", "torque_ibeta", {s * id, s * iq, i_e, 17.0}),
                4.5 * ((0.00166 * id + 0.001589 * i_e) * iq - 0.00035 * iq * id), 1e-6);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST(BuildWfsm, inductance_elements_are_the_derivatives_of_the_flux_linkages) {
    const WfsmBuild build = built(parameters);
    KZB_STORE* store = build.store.get();
    const double position = 13.0;  // degrees mechanical, a node: whole electrical degrees
    const double theta = 3.0 * position * pi / 180.0;
    const auto phase_currents_to_axes = [&](const std::array<double, 4>& i) {
        double d = 0.0;
        double q = 0.0;
        for (int k = 0; k < 3; ++k) {
            d += std::sqrt(2.0 / 3.0) * i[static_cast<std::size_t>(k)] * std::cos(theta - 2.0 * pi / 3.0 * k);
            q -= std::sqrt(2.0 / 3.0) * i[static_cast<std::size_t>(k)] * std::sin(theta - 2.0 * pi / 3.0 * k);
        }
        return std::array<double, 3>{d, q, i[3]};
    };
    for (int column = 0; column < 4; ++column) {
        std::array<double, 4> up{10.0, -4.0, -6.0, 20.0};
        std::array<double, 4> down = up;
        up[static_cast<std::size_t>(column)] += 5.0;
        down[static_cast<std::size_t>(column)] -= 5.0;
        for (int row = 0; row < 4; ++row) {
            const auto a = phase_currents_to_axes(up);
            const auto b = phase_currents_to_axes(down);
            const double r = row;
            const double difference = (at(store, "current_flux", "flux", {a[0], a[1], a[2], position, r}) -
                                       at(store, "current_flux", "flux", {b[0], b[1], b[2], position, r})) /
                                      10.0;
            const double element = 4.0 * column + row;
            EXPECT_NEAR(at(store, "harmonic_inductance", "inductance", {0.0, 0.0, 0.0, position, element}), difference,
                        1e-10)
                << row << column;
        }
    }
}

TEST(BuildWfsm, field_current_ratio_scales_the_winding_and_keeps_its_power) {
    const WfsmBuild build = built(parameters, {"field_current_ratio=0.05"});
    // i_f = 0.05 i_e, v_f = 30 v_e: R_f = 600 R_e, L_f = 600 L_e, M = 20 L_m
    EXPECT_NEAR(build.field_resistance, 600.0 * 0.0072, 1e-12);
    EXPECT_NEAR(build.constants.l_f, 600.0 * 0.00174, 1e-12);
    EXPECT_NEAR(build.constants.m, 20.0 * 0.001589, 1e-12);
    const WfsmBuild winding = built(parameters, {"field_inductance=0.01"}, FieldForm::winding);
    EXPECT_EQ(winding.constants.l_f, 0.01);
    EXPECT_EQ(winding.constants.m, 0.001589);
    EXPECT_EQ(winding.field_resistance, 0.0072);
}

TEST(BuildWfsm, account_of_inductances_is_that_of_straight_lines_over_a_degree) {
    const WfsmBuild build = built(parameters);
    const WfsmDeviationReport report = compare_wfsm(build.store.get(), build);
    ASSERT_EQ(report.deviations.size(), 4U);
    // Halfway a chord of a sine of period 360 lies below it by 1 - cos(0.5 deg) = 3.8e-5 of its size, and dq both.
    for (const WfsmDeviation& d : report.deviations) {
        const double bound = d.quantity == "psi_d" || d.quantity == "psi_q" ? 3.9e-5 : 1e-9;
        EXPECT_LT(d.largest, bound * d.scale) << d.quantity;
    }
}

// A map by formula: psi_d = L_d i_d + M i_f, psi_q = L_q i_q: the completed field winding is then linear, with
// L_f = 1.5 M^2 / (L_d (1 - s)).
std::string linear_map() {
    std::string text = "i_f_A,i_peak_A,beta_deg,psi_d_Vs,psi_q_Vs,torque_Nm\n";
    for (const double f : {1.0, 2.0, 5.0, 10.0}) {
        for (int beta = -180; beta <= 0; beta += 10) {
            for (const double i : {0.0, 50.0, 100.0, 200.0}) {
                const double id = i * std::sin(beta * pi / 180.0);
                const double iq = i * std::cos(beta * pi / 180.0);
                const double psi_d = 8e-4 * id + 0.04 * f;
                const double psi_q = 5e-4 * iq;
                text += fmt::format("{},{},{},{},{},{}\n", f, i, beta, psi_d, psi_q, 4.5 * (psi_d * iq - psi_q * id));
            }
        }
    }
    return text;
}

TEST(BuildWfsm, completed_map_of_a_linear_machine_is_that_machine) {
    const WoundFieldMap map = read_wound_field_map(CsvTable::parse(linear_map(), "map.csv"));
    const MappedWoundField machine(map, 0.2);
    const double l_f = 1.5 * 0.04 * 0.04 / (8e-4 * 0.8);
    EXPECT_NEAR(machine.unsaturated_field_inductance(), l_f, 1e-4 * l_f);
    // Splines of sines over h = 10 degrees: h^4 / 384 = 2.4e-6 of 0.16 Vs inside. Beyond i_d = 0 by the slope at the
    // edge, where the spline's end segment is a parabola: within h^2 / 4 = 0.76 % of the part of i_d.
    const double edge = 0.0076;
    for (const double id : {-150.0, -30.0, 0.0, 60.0}) {
        const double beyond = id > 0.0 ? edge * id : 0.0;
        for (const double iq : {-80.0, 0.0, 110.0}) {
            for (const double f : {0.0, 0.5, 3.0, 10.0}) {
                const WoundFieldPoint p = machine.at(id, iq, f);
                EXPECT_NEAR(p.psi_d, 8e-4 * id + 0.04 * f, 2e-5 + 8e-4 * beyond) << id << " " << iq << " " << f;
                EXPECT_NEAR(p.psi_q, 5e-4 * iq, 2e-5) << id << " " << iq << " " << f;
                EXPECT_NEAR(p.psi_f, 0.06 * id + l_f * f, 2e-3 + 1e-4 * l_f * f + 0.06 * beyond)
                    << id << " " << iq << " " << f;
                if (id <= 0.0) {
                    EXPECT_NEAR(p.l_df, 0.04, 1e-5);
                    EXPECT_NEAR(p.l_ff, l_f, 1e-3 * l_f);
                    EXPECT_NEAR(p.l_dd, 8e-4, 2e-5);
                }
            }
        }
    }
}

// d psi_f / d i_d = 1.5 d psi_d / d i_f on the published, saturated map.
TEST(BuildWfsm, completed_map_loses_no_energy_in_a_circle_of_currents) {
    const std::string folder = std::string(KZB_SOURCE_DIR) + "/examples/data/eesm-6pole/";
    const WoundFieldMap map = read_wound_field_map(CsvTable::read(folder + "flux_map.csv"));
    const MappedWoundField machine(map, 0.13);
    for (const double id : {-300.0, -100.0}) {
        for (const double iq : {-150.0, 60.0, 250.0}) {
            for (const double f : {1.5, 6.0}) {
                const WoundFieldPoint p = machine.at(id, iq, f);
                const double h = 2.0;
                const double by_d = (machine.at(id + h, iq, f).psi_f - machine.at(id - h, iq, f).psi_f) / (2.0 * h);
                const double by_q = (machine.at(id, iq + h, f).psi_f - machine.at(id, iq - h, f).psi_f) / (2.0 * h);
                // Points of the map are 116 A and up to 6 A apart, over which these inductances fall from 0.07 H to a
                // tenth; its splines, each for itself, agree to a tenth of the largest.
                EXPECT_NEAR(by_d, 1.5 * p.l_df, 0.007) << id << " " << iq << " " << f;
                EXPECT_NEAR(by_q, 1.5 * p.l_qf, 0.007) << id << " " << iq << " " << f;
            }
        }
    }
}

TEST(BuildWfsm, wrong_maps_and_parameters_are_refused_in_one_line) {
    const std::string head = "i_f_A,i_peak_A,beta_deg,psi_d_Vs,psi_q_Vs\n";
    std::string positive;
    for (const double f : {1.0, 2.0, 3.0}) {
        for (const double beta : {0.0, 90.0, 180.0}) {
            for (const double i : {0.0, 1.0, 2.0}) {
                positive += fmt::format("{},{},{},{},{}\n", f, i, beta, 0.1, 0.1);
            }
        }
    }
    for (const auto& [text, message] : std::vector<std::pair<std::string, std::string>>{
             {"i_f_A,psi_d_Vs\n1,1\n", "map.csv:1: no column \"beta_deg\"; the columns are i_f_A, psi_d_Vs"},
             {head + "1,0,0,0,0\n", "map.csv: "},
             {head + positive, "expected -180 to 0"},
         }) {
        try {
            read_wound_field_map(CsvTable::parse(text, "map.csv"));
            ADD_FAILURE() << "accepted: " << text;
        } catch (const Failure& failure) {
            EXPECT_THAT(failure.what(), HasSubstr(message));
            EXPECT_THAT(failure.what(), testing::Not(HasSubstr("\n")));
        }
    }
    EXPECT_THROW(built(parameters, {"field_inductance=0.0001"}), Failure);  // below 1.5 M^2 / L_d
    EXPECT_THROW(built(parameters, {"pole_pairs=0"}), Failure);
    EXPECT_THROW(built("name,value,unit\npole_pairs,3,1\n"), Failure);
}

TEST(BuildWfsm, program_tells_what_it_assumed_of_a_map_and_writes_a_valid_model) {
    const test::Folder folder;
    test::write_file(folder / "p.csv",
                     "name,value,unit\npole_pairs,3,1\nphase_resistance,0.01,ohm\nfield_resistance,40,ohm\n");
    test::write_file(folder / "map.csv", linear_map());
    const test::Finished done = test::run_kzb(
        {"build", "wfsm", "p.csv", "--map", "map.csv", "--out", "m.kzb", "--json", "--position-step", "15"},
        folder.path());
    ASSERT_EQ(done.code, 0) << done.err;
    EXPECT_THAT(done.err, HasSubstr("the map lacks the field winding's flux linkage"));
    EXPECT_THAT(done.err, HasSubstr("an assumption"));
    const auto account = nlohmann::json::parse(done.out);
    EXPECT_EQ(account["motor"], "WFSM");
    EXPECT_EQ(account["points"], 4 * 19 * 4);
    EXPECT_EQ(test::run_kzb({"validate", "m.kzb"}, folder.path()).out, "m.kzb: nothing found\n");
    const test::Finished refused = test::run_kzb(
        {"build", "wfsm", "p.csv", "--map", "map.csv", "--out", "n.kzb", "--phase-step", "7"}, folder.path());
    EXPECT_EQ(refused.code, 2);
    EXPECT_THAT(refused.err, HasSubstr("--phase-step 7: expected a whole part of 90 degrees"));
    EXPECT_EQ(test::line_count(refused.err.substr(refused.err.find("kzb: error"))), 1);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"m.kzb", "map.csv", "p.csv"}));
}

}  // namespace
}  // namespace kzb::tool
