// kzb build im: equivalent circuits into models. Expected values are closed forms of the circuit, worked out here.
#include "kzb/build_im.h"

#include <cmath>
#include <complex>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "kzb/im_deviation.h"
#include "kzb/im_saturation.h"
#include "nlohmann/json.hpp"
#include "tools/build_synthetic.h"
#include "tools/program.h"

namespace kzb::tool {
namespace {

using synthetic::TextFile;
using testing::HasSubstr;
using Complex = std::complex<double>;

const std::string machine_data = std::string(KZB_SOURCE_DIR) + "/examples/data/";
const std::string t_circuit =
    "name,value,unit\npole_pairs,2,1\nR_1,0.5,ohm\nR_2,400,mohm\nL_sigma_1,3,mH\nL_sigma_2,0.002,H\nL_m,0.1,H\n"
    "rated_frequency,50,Hz\nrated_voltage_line_rms,400,V\n";

ImOptions options_for(const TextFile& file) {
    ImOptions options;
    options.parameter_path = file.path();
    return options;
}

// Stator impedance of the T circuit at a slip, written out.
Complex impedance(double r1, double l1, double r2, double l2, double lm, double w, double slip) {
    const Complex rotor(r2 / slip, w * l2);
    const Complex main(0.0, w * lm);
    return Complex(r1, w * l1) + main * rotor / (main + rotor);
}

double constant(KZB_STORE* store, const char* key) {
    return kzb_get_double("InductionParam", key, store);
}

double table(KZB_STORE* store, const char* key, double slip, double current) {
    const double at[2] = {slip, current};
    return kzb_get_table_interpolated_value("InductionParam_HigherAccuracy", key, at, "Linear", store);
}

// X1 = X2, b0: another circuit, the same at the terminals.
TEST(BuildIm, constants_have_equal_leakages_and_the_source_circuits_impedance) {
    const TextFile file("t.csv", t_circuit);
    ImOptions options = options_for(file);
    options.application = ImApplication::constants;
    const ImBuild build = build_im(options);
    KZB_STORE* store = build.store.get();
    EXPECT_EQ(kzb_get_int("control", "motor_type", store), 10006);
    EXPECT_EQ(kzb_get_int("control", "number_of_poles", store), 4);
    EXPECT_EQ(kzb_get_double("information", "rated_freqency", store), 50.0);
    EXPECT_EQ(constant(store, "R1"), 0.5);
    EXPECT_EQ(constant(store, "X1"), constant(store, "X2"));
    EXPECT_EQ(kzb_has_category("InductionParam_HigherAccuracy", store), 0);
    const double w = 2.0 * 3.14159265358979323846 * 50.0;
    for (const double slip : {1.0, 0.05, -0.3}) {
        const Complex source = impedance(0.5, 0.003, 0.4, 0.002, 0.1, w, slip);
        const Complex written = impedance(constant(store, "R1"), constant(store, "X1") / w, constant(store, "R2"),
                                          constant(store, "X2") / w, 1.0 / constant(store, "b0") / w, w, slip);
        EXPECT_NEAR(std::abs(written - source), 0.0, 1e-12 * std::abs(source)) << slip;
    }
}

TEST(BuildIm, tables_of_a_linear_circuit_hold_its_inductances_everywhere) {
    const TextFile file("t.csv", t_circuit);
    const ImBuild build = build_im(options_for(file));
    for (const double slip : {-50.0, 0.0, 3.7}) {
        for (const double current : {0.0, 12.3, 5000.0}) {
            EXPECT_DOUBLE_EQ(table(build.store.get(), "L11_table", slip, current), 0.103);
            EXPECT_DOUBLE_EQ(table(build.store.get(), "L22_table", slip, current), 0.102);
            EXPECT_DOUBLE_EQ(table(build.store.get(), "M12_table", slip, current), 0.1);
            EXPECT_DOUBLE_EQ(table(build.store.get(), "M21_table", slip, current), 0.1);
            EXPECT_DOUBLE_EQ(table(build.store.get(), "R2_table", slip, current), 0.4);
        }
    }
    EXPECT_EQ(kzb_has_error(build.store.get()), 0);
}

// At a node of the tables: the main inductance M there and the current ratio of the rotor circuit give back the
// magnetizing current, whose flux linkage by the curve is M times it.
TEST(BuildIm, each_node_of_a_saturated_machine_satisfies_the_circuit) {
    const TextFile file("t.csv", t_circuit);
    const TextFile curve("curve.csv", "i_m_rms_A,psi_m_rms_Vs\n1,0.1\n2,0.18\n4,0.27\n8,0.35\n");
    ImOptions options = options_for(file);
    options.saturation_path = curve.path();
    options.slip_nodes = 5;
    options.current_nodes = 9;
    const ImBuild build = build_im(options);
    const MagnetizingCurve main = read_magnetizing_curve(CsvTable::read(curve.path()));
    EXPECT_DOUBLE_EQ(main.flux(2.0 * std::sqrt(2.0)), 0.18 * std::sqrt(2.0));  // rms in the file
    for (const double slip : build.slip.nodes) {
        for (const double current : build.current.nodes) {
            const double m = table(build.store.get(), "M12_table", slip, current);
            const Complex rotor(0.4, 2.0 * 3.14159265358979323846 * slip * 0.002);
            const Complex emf(0.0, 2.0 * 3.14159265358979323846 * slip * m);
            const double i_m = current / std::abs(1.0 + emf / rotor);
            if (current > 0.0) {
                EXPECT_NEAR(main.flux(i_m), m * i_m, 1e-10) << slip << " Hz, " << current << " A";
            }
            EXPECT_DOUBLE_EQ(table(build.store.get(), "L11_table", slip, current), m + 0.003);
        }
    }
}

TEST(BuildIm, forms_of_one_circuit_are_the_same_machine_at_the_terminals) {
    const TextFile t("t.csv", t_circuit);
    // gamma: g = (Lm + L1) / Lm, L_ell = L1 g + L2 g^2; inverse-gamma: k = Lm / (Lm + L2)
    const double g = 0.103 / 0.1;
    const double k = 0.1 / 0.102;
    const std::string common = "name,value,unit\npole_pairs,2,1\nR_s,0.5,ohm\nrated_frequency,50,Hz\n";
    const TextFile gamma("g.csv", common + fmt::format("R_r_gamma,{},ohm\nL_ell_gamma,{},H\nL_s,{},H\n", 0.4 * g * g,
                                                       0.003 * g + 0.002 * g * g, 0.103));
    const TextFile inverse(
        "i.csv", common + fmt::format("R_R,{},ohm\nL_sigma,{},H\nL_M,{},H\n", 0.4 * k * k, 0.003 + k * 0.002, k * 0.1));
    const auto solved = [](const TextFile& file, CircuitForm form) {
        ImOptions options = options_for(file);
        options.circuit = form;
        const ImBuild build = build_im(options);
        return steady_state(build.circuit, 325.0, 314.0, 0.04);
    };
    const ImState wanted = solved(t, CircuitForm::t);
    for (const ImState& state : {solved(gamma, CircuitForm::gamma), solved(inverse, CircuitForm::inverse_gamma)}) {
        EXPECT_NEAR(std::abs(state.i1 - wanted.i1), 0.0, 1e-10);
        EXPECT_NEAR(state.torque, wanted.torque, 1e-9);
    }
    // and the torque is the rotor's air-gap power over synchronous speed: 3/2 |i2|^2 R2 / s / (w / p)
    EXPECT_NEAR(wanted.torque, 1.5 * std::norm(wanted.i2) * 0.4 / 0.04 * 2.0 / 314.0, 1e-9);
}

TEST(BuildIm, published_operating_point_of_the_traction_machine_is_met) {
    ImOptions options;
    options.parameter_path = machine_data + "im-traction/parameters.csv";
    options.saturation_path = machine_data + "im-traction/magnetizing_inductance.csv";
    options.operating_point_path = machine_data + "im-traction/published_operating_point.csv";
    options.parameters = {"r1=R_1_at_150C", "r2=R_2_at_200C_referred", "frequency=60", "phase_voltage_rms=600"};
    const ImBuild build = build_im(options);
    // 600 V rms, 60 Hz, slip 0.01: I_1 = 138.5785 - j 231.2780 A rms, I_2 = 145.9867 - j 11.6826 A rms out of the
    // circuit, 1922.283 N*m.
    const double w = 2.0 * 3.14159265358979323846 * 60.0;
    const ImState exact = steady_state(build.circuit, 600.0 * std::sqrt(2.0), w, 0.01);
    EXPECT_NEAR(std::abs(exact.i1 / std::sqrt(2.0) - Complex(138.5784916, -231.2780253)), 0.0, 0.05);
    EXPECT_NEAR(std::abs(exact.i2 / std::sqrt(2.0) + Complex(145.9867213, -11.68261951)), 0.0, 0.05);
    EXPECT_NEAR(exact.torque, 1922.283416, 0.5);
    // The tables join their nodes by straight lines.
    const ImState written =
        written_steady_state(build.store.get(), ImApplication::tables, 600.0 * std::sqrt(2.0), w, 0.01);
    EXPECT_NEAR(std::abs(written.i1), std::abs(exact.i1), 0.01 * std::abs(exact.i1));
    EXPECT_NEAR(written.torque, 1922.283416, 0.005 * 1922.283416);
    const auto reports = compare_im(build.store.get(), build, options);
    ASSERT_EQ(reports.size(), 3U);
    EXPECT_EQ(reports[2].deviations.size(), 9U);
    for (const ImDeviation& d : reports[2].deviations) {
        EXPECT_LT(d.largest, 0.01 * d.scale) << d.quantity;
    }
}

// P = 61.5 W at the reference flux linkage, 0.7179 Vs rms.
TEST(BuildIm, iron_loss_follows_the_square_of_the_main_flux) {
    ImOptions options;
    options.parameter_path = machine_data + "im-8pole/parameters.csv";
    options.saturation_path = machine_data + "im-8pole/magnetizing_curve.csv";
    const ImBuild build = build_im(options);
    const double current = build.current.nodes[40];
    const double psi = table(build.store.get(), "M12_table", 0.0, current) * current;  // at slip 0 all is magnetizing
    const double share = psi / (0.7179408759 * std::sqrt(2.0));
    EXPECT_NEAR(table(build.store.get(), "ironloss_table", 0.0, current), 61.5 * share * share, 1e-9);
    // The conductance across the main flux linkage: 61.5 W = 3 (w psi)^2 g0
    const double emf = 2.0 * 3.14159265358979323846 * 49.99982828 * 0.7179408759;
    EXPECT_NEAR(constant(build.store.get(), "g0"), 61.5 / (3.0 * emf * emf), 1e-9);
}

struct WrongParameters {
    std::string text;
    std::vector<std::string> words;
    std::string message;
};

TEST(BuildIm, wrong_parameters_are_refused_in_one_line_that_says_what_and_where) {
    const std::vector<WrongParameters> wrong{
        {"name,value\n", {}, "no row of numbers"},
        {"key,value,unit\na,1,1\n", {}, ":1: no column \"name\", expected a parameter file with name,value,unit"},
        {t_circuit + "R_1,2,ohm\n", {}, "R_1 a second time"},
        {t_circuit + "R_s,2,ohm\n", {}, "R_1 and R_s both tell r1; name one with --parameter r1=NAME"},
        {t_circuit, {"r9=1"}, "unknown quantity \"r9\", expected one of r2, leakage1"},
        {t_circuit, {"r1=nothing"}, "\"nothing\" is no number and no name in"},
        {t_circuit, {"r1"}, "expected QUANTITY=NUMBER or QUANTITY=NAME"},
        {t_circuit, {"r1=-1"}, "r1 is -1, expected a number of 0 or more"},
        {t_circuit, {"r2=0"}, "r2 is 0, expected a number above 0"},
        {t_circuit, {"r2=L_m"}, "L_m: unit \"H\", expected one of ohm, Ohm, mohm, mOhm"},
        {t_circuit, {"pole_pairs=1.5"}, "pole_pairs is 1.5, expected a whole number"},
        {"name,value,unit\npole_pairs,2,1\n", {}, "no r1: expected r1, R_1, R_s or --parameter r1=NUMBER"},
        {t_circuit, {"leakage1=0", "leakage2=0"}, "both leakage inductances are 0"},
        {"name,value,unit\nR_1,x,ohm\n", {}, "\"x\" is not a finite number"},
    };
    for (const WrongParameters& input : wrong) {
        const TextFile file("wrong.csv", input.text);
        ImOptions options = options_for(file);
        options.parameters = input.words;
        try {
            build_im(options);
            ADD_FAILURE() << "accepted: " << input.text;
        } catch (const Failure& failure) {
            EXPECT_THAT(failure.what(), HasSubstr(input.message));
            EXPECT_THAT(failure.what(), testing::Not(HasSubstr("\n")));
        }
    }
}

TEST(BuildIm, wrong_magnetizing_curves_are_refused) {
    const std::vector<std::pair<std::string, std::string>> wrong{
        {"i_m_A,x\n1,1\n", "no column for the main flux linkage, expected psi_m_rms_Vs"},
        {"i,psi_m_Vs\n1,1\n", "no column for the magnetizing current, expected i_m_rms_A"},
        {"i_m_A,psi_m_Vs\n0,0.1\n1,0.2\n", ":2: flux linkage 0.1 Vs without current, expected 0"},
        {"i_m_A,psi_m_Vs\n0,0\n2,0.2\n1,0.3\n", ":4: current 1 A, flux linkage 0.3 Vs (peak): expected both above 2 A"},
        {"i_m_A,psi_m_Vs\n1,0.2\n2,0.2\n", ":3: current 2 A"},
        {"i_m_A,psi_m_Vs\n0,0\n", "no point beside the origin"},
    };
    for (const auto& [text, message] : wrong) {
        try {
            read_magnetizing_curve(CsvTable::parse(text, "curve.csv"));
            ADD_FAILURE() << "accepted: " << text;
        } catch (const Failure& failure) {
            EXPECT_THAT(failure.what(), HasSubstr(message));
        }
    }
    const MagnetizingCurve inductance =
        read_magnetizing_curve(CsvTable::parse("i_m_A,L_m_H\n0,0.1\n2,0.1\n4,0.075\n", "c"));
    EXPECT_DOUBLE_EQ(inductance.flux(4.0), 0.3);
    EXPECT_DOUBLE_EQ(inductance.flux(6.0), 0.4);  // straight on: 0.05 Vs/A
    EXPECT_DOUBLE_EQ(inductance.current_of(0.25), 3.0);
}

// Through the program: from TOML and options, both forms, whole or not at all.
TEST(BuildIm, program_builds_from_toml_and_options_and_tells_its_account) {
    const test::Folder folder;
    test::write_file(folder / "m.toml", "pole_pairs = 2\nr1 = 0.5\nr2 = 0.4\nleakage1 = 0.003\nleakage2 = 0.002\n");
    const std::vector<std::string> arguments{
        "build",  "im",          "m.toml",       "--parameter", "main_inductance=0.1",   "--out",
        "m.kzb",  "--parameter", "frequency=50", "--parameter", "phase_voltage_rms=230", "--json",
        "--form", "ascii"};
    const test::Finished built = test::run_kzb(arguments, folder.path());
    ASSERT_EQ(built.code, 0) << built.err;
    const auto account = nlohmann::json::parse(built.out);
    EXPECT_EQ(account["application"], "InductionParam_HigherAccuracy");
    EXPECT_EQ(account["number_of_poles"], 4);
    EXPECT_LT(account["deviations"][0]["torque"]["largest"].get<double>(), 1e-8);
    const test::Finished info = test::run_kzb({"info", "m.kzb", "--json"}, folder.path());
    EXPECT_THAT(info.out, HasSubstr("\"form\": \"ascii\""));
    EXPECT_THAT(info.out, HasSubstr("\"IM\""));
    EXPECT_EQ(test::run_kzb({"validate", "m.kzb"}, folder.path()).code, 0);

    const test::Finished refused = test::run_kzb({"build", "im", "--out", "n.kzb"}, folder.path());
    EXPECT_EQ(refused.code, 2);
    EXPECT_EQ(test::line_count(refused.err), 1) << refused.err;
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"m.kzb", "m.toml"}));
    const test::Finished over = test::run_kzb({"build", "im", "m.toml", "--out", "m.toml"}, folder.path());
    EXPECT_EQ(over.code, 2);
    EXPECT_THAT(over.err, HasSubstr("is the file of parameters itself"));
}

}  // namespace
}  // namespace kzb::tool
