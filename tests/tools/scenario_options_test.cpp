// The options of a scenario: each reaches the library and acts as its closed form tells, in whatever order they stand.
//
// The machine is LdLq with constant inductances, so with given currents of amplitude I along q at position 0
//
//   torque = pole pairs * sqrt(3/2) * I * turns2 * d_flux * steel * magnet * torque correction * magnet temperature
//   Ld = L * steel * inductance * turns1^2,   flux of coil U = sqrt(2/3) * d_flux * flux * steel * magnet * turns1 *
//   ...
#include "kzb/scenario_options.h"

#include <set>

#include "interface/kzbcalc_handle.h"
#include "tools/edits.h"
#include "tools/harmonic_model.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

class ScenarioOptions : public Edits {
  protected:
    ScenarioOptions() {
        machine.d_flux = 0.1;
        write_model(folder / "m.kzb", [this](KZB_STORE* store) {
            fill_constant_machine(store, machine);
            kzb_put_double("control", "turns_in_coil", 20.0, store);
        });
    }
    // Currents along q: u = -I sin(0 + 0), v and w 120 degrees after it.
    std::string driven(const std::string& sections) const {
        return "drive = \"current\"\n[time]\nstep = 1e-3\nstop = 5e-3\n[sources]\nu = 0\nv = 8.660254037844386\n"
               "w = -8.660254037844386\n" +
               sections;
    }
    json run(const std::string& scenario) {
        write_file(folder / "s.toml", scenario);
        return done({"run", "m.kzb", "s.toml"});
    }
    double last(const json& summary, const char* column) { return summary["outputs"][column]["max"].get<double>(); }
    double least(const json& summary, const char* column) { return summary["outputs"][column]["min"].get<double>(); }
    void scenario_refused(const std::string& scenario, int code, const std::string& fault) {
        write_file(folder / "s.toml", scenario);
        refused({"run", "m.kzb", "s.toml"}, code, fault);
    }

    ConstantMachine machine;
};

const double torque_of_10_A = 2.0 * std::sqrt(1.5) * 10.0 * 0.1;

TEST_F(ScenarioOptions, every_correction_acts_as_its_closed_form) {
    struct Case {
        const char* section;
        double torque;      // as a factor on that without corrections
        double inductance;  // likewise
        double coil_flux;   // likewise
    };
    const std::vector<Case> cases = {
        {"", 1.0, 1.0, 1.0},
        {"[corrections]\nflux = 2\n", 1.0, 1.0, 2.0},
        {"[corrections]\nmagnet = 3\n", 3.0, 1.0, 3.0},
        {"[corrections]\nsteel = 0.5\n", 0.5, 0.5, 0.5},
        {"[corrections]\ninductance = 1.5\n", 1.0, 1.5, 1.0},
        {"[corrections]\ntorque = 4\n", 4.0, 1.0, 1.0},
        {"[corrections]\ncoil_turns_1 = 60\n", 1.0, 9.0, 3.0},  // of the file's 20 turns
        {"[corrections]\ncoil_turns_2 = 10\n", 0.5, 1.0, 1.0},
        {"[corrections]\ncoil_turns_1 = 0\ncoil_turns_2 = 0\n", 1.0, 1.0, 1.0},
        {"[corrections]\nsteel = 0.5\nmagnet = 3\ntorque = 4\ninductance = 1.5\n", 6.0, 0.75, 1.5},
        // 1 + 50 K * -0.2 %/K = 0.9
        {"[temperature]\nmagnet_K = 343.15\nmagnet_base_K = 293.15\nmagnet_coefficient_percent_per_K = -0.2\n", 0.9,
         1.0, 0.9},
        {"[temperature]\nmagnet_coefficient = -0.2\nmagnet_base = 293.15\nmagnet = 343.15\n", 0.9, 1.0, 0.9},
    };
    for (const Case& c : cases) {
        const json summary = run(driven(c.section));
        EXPECT_NEAR(last(summary, "torque_Nm"), torque_of_10_A * c.torque, 1e-12) << c.section;
        EXPECT_NEAR(last(summary, "inductance_d_H"), machine.d_inductance * c.inductance, 1e-15) << c.section;
        EXPECT_NEAR(last(summary, "coil_flux_u_Wb"), std::sqrt(2.0 / 3.0) * 0.1 * c.coil_flux, 1e-14) << c.section;
    }
}

TEST_F(ScenarioOptions, resistance_follows_the_coil_temperature_in_either_spelling) {
    for (const char* temperature : {"coil_K = 393.15\ncoil_base_K = 293.15\ncoil_coefficient_ppm_per_K = 4000\n",
                                    "coil_coefficient = 4000\ncoil_base = 293.15\ncoil = 393.15\n"}) {
        const json summary = run(driven(std::string("[temperature]\n") + temperature + "[model]\nresistance = 2\n"));
        EXPECT_NEAR(last(summary, "resistance_Ohm"), 2.0 * 1.4, 1e-12);  // 100 K * 4000 ppm/K
    }
}

TEST_F(ScenarioOptions, a_key_with_and_without_its_unit_is_one_too_many) {
    scenario_refused(driven("[temperature]\ncoil = 300\ncoil_K = 310\n"), 3,
                     "s.toml:10: temperature.coil: given as coil_K too, expected one of the two");
}

TEST_F(ScenarioOptions, a_delta_has_a_third_of_the_inductance) {
    EXPECT_NEAR(last(run(driven("[model]\nconnection = \"delta\"\n")), "inductance_d_H"), machine.d_inductance / 3.0,
                1e-15);
    EXPECT_NEAR(last(run(driven("[model]\nconnection = \"star\"\n")), "inductance_d_H"), machine.d_inductance, 1e-15);
}

TEST_F(ScenarioOptions, the_initial_displacement_turns_the_flux) {
    // 15 mechanical degrees are 30 electrical ones.
    EXPECT_NEAR(last(run(driven("[initial]\ndisplacement_deg = 15\n")), "coil_flux_u_Wb"),
                std::sqrt(2.0 / 3.0) * 0.1 * cosine_of_deg(30.0), 1e-14);
}

TEST_F(ScenarioOptions, each_interpolation_word_chooses_its_scheme) {
    const auto fill = [this](KZB_STORE* store) {
        fill_constant_machine(store, machine);
        // Steep between its nodes, so that the schemes differ.
        const std::vector<double> amplitudes = {0.0, 7.0, 9.0, 12.0, 16.0, 21.0};
        put_table(store, "dq_inductance", "d_inductance", {{-180.0, -90.0, 0.0, 90.0, 180.0}, amplitudes},
                  [](const auto& p) { return 1e-3 * std::exp(-p[1] / 5.0) + 1e-6 * p[0]; });
    };
    write_model(folder / "m.kzb", fill);
    const OpenedStore store = opened(folder / "m.kzb");
    const std::vector<std::pair<const char*, const char*>> words = {
        {"linear", "Linear"}, {"cubic", "Cubic"}, {"spline4", "Spline4"}, {"spline6", "Spline6"}, {"spline", "Spline"}};
    std::set<double> values;
    for (const auto& [word, method] : words) {
        const double point[] = {0.0, 10.0};
        const double expected =
            kzb_get_table_interpolated_value("dq_inductance", "d_inductance", point, method, store.get());
        const json summary =
            run(driven(std::string("[model]\ninterpolation = \"") + word + "\"\n[record]\nfrom = 3e-3\n"));
        EXPECT_NEAR(last(summary, "inductance_d_H"), expected, 1e-12) << word;
        values.insert(expected);
    }
    EXPECT_GE(values.size(), 3u) << "the schemes give different values";
}

TEST_F(ScenarioOptions, accuracy_chooses_between_the_models_of_a_file) {
    write_model(folder / "m.kzb", [this](KZB_STORE* store) {
        fill_constant_machine(store, machine);
        fill_harmonic_machine(store);
        kzb_put_int("control", "accuracy_type", 4, store);  // both
    });
    const std::string still =
        "drive = \"voltage\"\n[time]\nstep = 1e-3\nstop = 5e-3\n[sources]\nall = 0\n[model]\naccuracy = ";
    EXPECT_NEAR(last(run(still + "0\n"), "inductance_d_H"), machine.d_inductance, 1e-15);
    EXPECT_NEAR(last(run(still + "1\n"), "inductance_d_H"), harmonic_inductance, 1e-15);
    scenario_refused(still + "2\n", 1, "s.toml:8: model.accuracy: kzbcalcSetAccuracyType: status 180067");
}

TEST_F(ScenarioOptions, the_force_of_a_linear_machine_is_corrected) {
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        kzb_put_int("control", "motor_type", 10005, store);
        kzb_put_double("control", "electrical_length", 0.06, store);
        kzb_put_double("parameter", "RU", 1.0, store);
        const std::vector<double> track = {-1.0, 1.0};
        put_table(store, "inductance", "inductance", {{0.0, 100.0}, track, {0, 1, 2, 3, 4, 5, 6, 7, 8}},
                  [](const auto& p) { return static_cast<int>(p[2]) % 4 == 0 ? 2e-3 : 0.0; });
        put_table(store, "mag_flux", "flux", {{-1.0, 0.0, 1.0}, {0, 1, 2}}, [](const auto&) { return 0.0; });
        put_table(store, "distance_force", "force", {{-180.0, 180.0}, track, {0.0, 100.0}},
                  [](const auto& p) { return 3.0 * p[2]; });
    });
    const std::string scenario =
        "drive = \"current\"\n[time]\nstep = 1e-3\nstop = 5e-3\n[sources]\nu = 2\nv = -1\nw = -1\n";
    EXPECT_NEAR(last(run(scenario), "force_N"), 6.0, 1e-9);  // 3 N/A at 2 A
    EXPECT_NEAR(last(run(scenario + "[corrections]\nforce = 2.5\n"), "force_N"), 15.0, 1e-9);
    EXPECT_NEAR(last(run(scenario + "[initial]\ndisplacement = 0.01\n"), "force_N"), 6.0, 1e-9);
    scenario_refused(scenario + "[corrections]\ntorque = 2\n", 1,
                     "s.toml:10: corrections.torque: kzbcalcSetCorrectionOfTorque: status 180039");
    scenario_refused(scenario + "[initial]\ndisplacement_deg = 1\n", 3,
                     "s.toml:10: initial.displacement_deg: unknown key, expected one of current, displacement, time");
}

// The library refuses a temperature before the correction is on, and a supply before a loss is: sections in the wrong
// order, keys above their switch.
TEST_F(ScenarioOptions, the_order_in_the_scenario_does_not_matter) {
    write_model(folder / "m.kzb", [this](KZB_STORE* store) {
        fill_constant_machine(store, machine);
        const std::vector<double> ends = {0.0, 1e4};
        put_table(store, "loss_table", "iron_loss", {{0.0, 1e3}, {-180.0, 180.0}, {0.0, 1e4}, ends, ends},
                  [](const auto& p) { return p[3] + 1e-3 * p[4]; });
        put_table(store, "equivalent_resistance_table", "copper_loss",
                  {{0.0, 1e3}, {-180.0, 180.0}, {0.0, 1e4}, ends, ends}, [](const auto& p) { return p[3] / 1e3; });
    });
    const json summary =
        run("drive = \"voltage\"\n[losses]\ncarrier_frequency = 4000\ndc_voltage = 300\npwm_frequency = 4000\n"
            "user_copper = true\niron = true\n[temperature]\ncoil_K = 293.15\ncorrection = true\n[initial]\ntime = 0\n"
            "[initial.current]\nu = 0\n[sources]\nall = 0\n[time]\nstep = 1e-3\nstop = 5e-3\n[record]\nfrom = 3e-3\n");
    EXPECT_EQ(summary["failed_sets"], json::array());
    EXPECT_NEAR(least(summary, "iron_loss_W"), 300.0 + 4.0, 1e-9);
    EXPECT_NEAR(least(summary, "resistance_Ohm"), 0.5 + 0.3, 1e-12);
}

// Whatever is refused is told with the key that asked for it; options of other machines too.
TEST_F(ScenarioOptions, a_refused_option_names_its_key_and_the_status_text) {
    const std::string not_this_machine = "status 180039 (the call doesn't apply to this motor type)";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[model]\nfield_coil_resistance = 1\n",
         "s.toml:10: model.field_coil_resistance: kzbcalcSetFieldCoilResistance: " + not_this_machine},
        {"[model]\nsecondary_resistance = 1\n",
         "model.secondary_resistance: kzbcalcSetSecondaryResistance: " + not_this_machine},
        {"[model]\nslip_frequency = 1\n", "model.slip_frequency: kzbcalcSetSlipFrequency: " + not_this_machine},
        {"[model]\nstep_size = 1\n", "model.step_size: kzbcalcSetStepSize: " + not_this_machine},
        {"[corrections]\nfield_flux = 1\n",
         "corrections.field_flux: kzbcalcSetCorrectionOfFieldFlux: " + not_this_machine},
        {"[corrections]\nfield_coil_turns_2 = 1\n",
         "corrections.field_coil_turns_2: kzbcalcSetCorrectionOfFieldCoilTurn2: " + not_this_machine},
        {"[temperature]\nfield_coil_K = 300\n",
         "temperature.field_coil_K: kzbcalcSetFieldCoilTemperature: " + not_this_machine},
        {"[temperature]\nsecondary_coil_K = 300\n",
         "temperature.secondary_coil_K: kzbcalcSetSecondaryCoilTemperature: " + not_this_machine},
        {"[temperature]\nmagnet_K = -1\n",
         "temperature.magnet_K: kzbcalcSetMagnetTemperature: status 180043 (temperature negative)"},
        {"[temperature]\nmagnet_coefficient_percent_per_K = 0.1\n", "temperature.magnet_coefficient_percent_per_K: "},
        {"[losses]\nuser_inputs = [1.0]\n", "losses.user_inputs[1]: kzbcalcSetUserInputParameter: " + not_this_machine},
        {"[losses]\ndc_voltage = 1\n", "losses.dc_voltage: kzbcalcSetDCVoltage: status 180064"},
    };
    for (const auto& [section, fault] : cases) {
        scenario_refused(driven(section), 1, fault);
    }
}

TEST_F(ScenarioOptions, values_of_a_wrong_kind_name_their_line) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"[temperature]\ncoil_K = \"hot\"\n", "s.toml:10: temperature.coil_K: expected a finite number"},
        {"[temperature]\ncoil_K = inf\n", "s.toml:10: temperature.coil_K: expected a finite number"},
        {"[temperature]\ncorrection = 1\n", "s.toml:10: temperature.correction: expected true or false"},
        {"[temperature]\ncoil_C = 20\n",
         "s.toml:10: temperature.coil_C: unknown key, expected one of correction, magnet_K"},
        {"[losses]\nuser_inputs = 1\n", "s.toml:10: losses.user_inputs: expected an array"},
        {"[losses]\nuser_inputs = [1, \"a\"]\n", "s.toml:10: losses.user_inputs: expected finite numbers"},
        {"[initial]\ncurrent = 3\n", "s.toml:10: initial.current: expected a table"},
        {"[initial.current]\nx = 3\n", "s.toml:10: initial.current.x: unknown key, expected one of u, v, w"},
        {"[model]\nconnection = 0\n", "s.toml:10: model.connection: expected one of \"star\", \"delta\""},
    };
    for (const auto& [section, fault] : cases) {
        scenario_refused(driven(section), 3, fault);
    }
}

// ---- the table of options itself

TEST(ScenarioOptionTable, names_are_single_and_keys_that_state_a_unit_state_theirs) {
    std::set<std::string> names;
    std::set<std::string> calls;
    for (const tool::ScenarioOption& option : tool::scenario_options()) {
        const std::string key = option.key;
        EXPECT_TRUE(names.insert(std::string(option.section) + '.' + key).second) << key;
        calls.insert(option.call_name);
        if (std::string(option.section) == "temperature" && key != "correction") {
            const std::map<std::string, std::string> endings = {
                {"K", "_K"}, {"ppm/K", "_coefficient_ppm_per_K"}, {"%/K", "_coefficient_percent_per_K"}};
            EXPECT_TRUE(key.ends_with(endings.at(option.unit))) << key;
        }
    }
    EXPECT_EQ(calls.size() + 1, names.size()) << "the displacement alone has two keys";
}

// The library turns the initial displacement of a solenoid from degrees into radians and adds those to its metres.
TEST(ScenarioOptionTable, the_initial_displacement_of_linear_machines_is_in_metres) {
    const Folder folder;
    for (const int motor_type : {10004, 10005}) {
        write_model(folder / "m.kzb", [motor_type](KZB_STORE* store) {
            kzb_put_int("control", "motor_type", motor_type, store);
            kzb_put_double("parameter", "RA", 1.0, store);
            for (const auto& [category, key] :
                 {std::pair{"inductance", "inductance"}, std::pair{"mag_flux", "flux"},
                  std::pair{"distance_flux", "flux"}, std::pair{"distance_force", "force"}}) {
                put_table(store, category, key, {{0.0}}, [](const auto&) { return 0.0; });
            }
        });
        KZB_CALC* handle = nullptr;
        ASSERT_EQ(kzbcalcInitialize((folder / "m.kzb").c_str(), 2, &handle), 0) << motor_type;
        for (const tool::ScenarioOption& option : tool::scenario_options()) {
            if (std::string(option.section) == "initial" && std::string(option.key) == "displacement") {
                EXPECT_EQ(std::get<tool::NumberCall>(option.call).call(0.0125, handle), 0);
            }
        }
        EXPECT_NEAR(handle->initial_displacement[0], 0.0125, 1e-16) << motor_type;
        kzbcalcTerminate(handle);
    }
}

// Rows of the section "## [name]" of the document, up to the next section.
std::string section_of(const std::string& document, const std::string& name) {
    const std::size_t from = document.find("## [" + name + "]");
    return from == std::string::npos ? "" : document.substr(from, document.find("\n## ", from) - from);
}

TEST(ScenarioOptionTable, every_option_stands_in_the_document_with_its_unit) {
    const std::string document = read_file(std::string(KZB_SOURCE_DIR) + "/docs/scenario.md");
    for (const tool::ScenarioOption& option : tool::scenario_options()) {
        const std::string section = section_of(document, option.section);
        const std::string key = option.key;
        std::size_t at = section.find('`' + key + '`');
        if (at == std::string::npos) {
            at = section.find('`' + key + '.');  // current.u
        }
        ASSERT_NE(at, std::string::npos) << option.section << '.' << key;
        const std::string row = section.substr(at, section.find('\n', at) - at);
        EXPECT_THAT(row, HasSubstr(std::string("| ") + option.unit)) << option.section << '.' << key;
    }
}

}  // namespace
}  // namespace kzb::test
