// kzb validate: applications without their data, tables of other axes than an application looks up, loss tables and
// user parameters.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/store.h"
#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;

const auto zero = [](const auto&) { return 0.0; };

struct Absent {
    void (*fill)(KZB_STORE*);
    const char* category;
    const char* key;
    const char* severity;
};

TEST(ValidateApplications, a_table_that_an_offered_application_looks_up_is_missed) {
    const Absent absents[] = {
        {fill_ldlq, "dq_inductance", "q_inductance", "error"},
        {fill_simple, "mag_flux", "flux", "error"},
        {fill_simple, "inductance", "inductance", "error"},
        {fill_simple, "torque", "torque_ibeta", "warning"},  // the model has another way to its torque
        {fill_harmonic, "current_flux", "flux", "error"},
        {fill_harmonic, "harmonic_inductance", "inductance", "error"},
        {fill_harmonic, "harmonic_torque", "torque_ibeta", "error"},
        {fill_flux_integral, "current_table", "iq", "error"},
        {fill_flux_integral, "flux_table", "f0_noload", "error"},
        {fill_flux_integral, "flux_table", "f0_ibeta", "warning"},
        {fill_wound_field, "harmonic_torque", "torque_ibeta", "error"},
        {fill_induction, "InductionParam_HigherAccuracy", "M21_table", "error"},
    };
    for (const Absent& absent : absents) {
        const Folder folder;
        write_changed(folder, absent.fill, [&](KZB_STORE* store) {
            // The category stays, so that the application is offered.
            kzb_put_int(absent.category, "kept", 1, store);
            delete_table(*store, absent.category, absent.key);
        });
        EXPECT_EQ(told(only_finding(folder)),
                  std::string(absent.severity) + " table-absent " + absent.category + "/" + absent.key);
    }
}

TEST(ValidateApplications, a_magnet_flux_that_is_absent_is_read_as_none) {
    const Folder folder;
    write_changed(folder, fill_ldlq, [](KZB_STORE* store) {
        find_category(*store, "d_flux")->doubles.erase("d_flux");
        kzb_put_int("d_flux", "kept", 1, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "warning table-absent d_flux/d_flux");
}

TEST(ValidateApplications, a_file_without_an_application_of_its_machine_is_told) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) { fill_machine(store, 10000, 1); });
    auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error application /");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("PMSM LdLq or PMSM SimpleHarmonic or PMSM Harmonic"));
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_int("control", "motor_type", 10008, store); });
    finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error application /");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("no category parameter"));
}

TEST(ValidateApplications, an_accuracy_type_selects_an_application_of_the_file) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) { kzb_put_int("control", "accuracy_type", 1, store); });
    EXPECT_EQ(told(only_finding(folder)), "error accuracy-type control/accuracy_type");
}

TEST(ValidateApplications, a_table_of_other_axes_than_the_application_knows_is_told) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        put_table(store, "harmonic_torque", "torque_ibeta", {{-180.0, 180.0}, {0.0, 100.0}}, zero);
    });
    auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error table-dim harmonic_torque/torque_ibeta");
    EXPECT_EQ(finding["message"], "2 axes, expected 3 by PMSM Harmonic");
    write_changed(folder, fill_simple, [](KZB_STORE* store) {
        put_table(store, "torque", "torque_ibeta", {{-180.0, 180.0}, {0.0, 100.0}}, zero);
    });
    finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning table-dim torque/torque_ibeta");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("expected 3 or 4 by PMSM SimpleHarmonic"));
}

TEST(ValidateApplications, flux_and_inductance_of_harmonic_have_the_same_axes) {
    const Folder folder;
    const std::vector<double> current = {-100.0, 0.0, 100.0};
    write_changed(folder, fill_harmonic, [&](KZB_STORE* store) {
        put_table(store, "current_flux", "flux", {current, current, current, {0.0, 180.0}, {0.0, 1.0, 2.0}}, zero);
        kzb_set_table_cyclic_flag("current_flux", "flux", 4, 1, store);
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error table-dim current_flux/flux");
    EXPECT_EQ(finding["message"], "5 axes, expected 4 as harmonic_inductance/inductance has");
}

TEST(ValidateApplications, components_beyond_the_machine_are_suspicious_alone) {
    const Folder folder;
    write_changed(folder, fill_simple, [](KZB_STORE* store) {
        put_table(store, "mag_flux", "flux", {{0.0, 180.0}, {0.0, 1.0, 2.0, 3.0}}, zero);
        kzb_set_table_cyclic_flag("mag_flux", "flux", 1, 1, store);
        // No magnet flux: the torque is the reluctance torque and the ripple, which is not compared here.
        kzb_put_int("torque", "kept", 1, store);
        put_table(store, "torque", "torque_ibeta", {{0.0}, {0.0, 180.0}, {0.0, 100.0}}, zero);
        kzb_set_table_cyclic_flag("torque", "torque_ibeta", 2, 1, store);
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning component-axis mag_flux/flux axis 2");
    EXPECT_EQ(finding["message"], "4 components, expected 3; the others are not looked up");
}

TEST(ValidateApplications, components_are_numbered_from_zero) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        for (int i = 0; i < 3; ++i) {
            kzb_set_table_axis_value("current_flux", "flux", 4, i, i + 1.0, store);
        }
    });
    EXPECT_EQ(told(only_finding(folder)), "error component-axis current_flux/flux axis 4, node 0");
    write_changed(folder, fill_simple, [](KZB_STORE* store) {
        put_table(store, "mag_flux", "flux", {{0.0, 180.0}, {0.0, 1.0}}, zero);
        kzb_set_table_cyclic_flag("mag_flux", "flux", 1, 1, store);
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error component-axis mag_flux/flux axis 2");
    EXPECT_EQ(finding["message"], "2 components, expected 3");
}

// Four poles: the coils see the machine again after 180 mechanical degrees, the rotor's frame after 30.
TEST(ValidateApplications, a_cyclic_axis_spans_its_period) {
    const Folder folder;
    write_changed(folder, fill_simple, [](KZB_STORE* store) {
        put_table(store, "mag_flux", "flux", {{0.0, 90.0}, {0.0, 1.0, 2.0}}, zero);
        kzb_set_table_cyclic_flag("mag_flux", "flux", 1, 1, store);
        delete_table(*store, "torque", "torque_ibeta");
        put_table(store, "torque", "torque_ibeta", {{0.0, 180.0}, {0.0, 30.0}, {0.0, 100.0}}, zero);
        kzb_set_table_cyclic_flag("torque", "torque_ibeta", 1, 1, store);
        kzb_set_table_cyclic_flag("torque", "torque_ibeta", 2, 1, store);
    });
    const auto findings = findings_of(folder);
    ASSERT_EQ(findings.size(), 2u) << findings.dump(2);
    EXPECT_EQ(told(findings[0]), "warning cyclic-span mag_flux/flux axis 1");
    EXPECT_EQ(findings[0]["message"], "a cyclic position of 90, expected a whole multiple of 180");
    EXPECT_EQ(told(findings[1]), "warning cyclic-span torque/torque_ibeta axis 1");
    EXPECT_EQ(findings[1]["message"], "a cyclic current phase of 180 degrees, expected 360");
}

TEST(ValidateApplications, the_position_of_a_rotating_machine_is_cyclic) {
    const Folder folder;
    write_changed(folder, fill_harmonic,
                  [](KZB_STORE* store) { kzb_set_table_cyclic_flag("current_flux", "flux", 3, 0, store); });
    EXPECT_EQ(told(only_finding(folder)), "warning position-not-cyclic current_flux/flux axis 3");
}

void put_losses(KZB_STORE* store, int materials) {
    kzb_put_int("hysloss", "numMat", materials, store);
    for (int k = 1; k <= materials; ++k) {
        kzb_put_int("hysloss", ("matID" + std::to_string(k)).c_str(), 10 * k, store);
        for (const char* category : {"hysloss", "eddyloss"}) {
            put_table(store, category, (category + std::to_string(10 * k)).c_str(),
                      {{0.0, 1000.0}, {-180.0, 180.0}, {0.0, 100.0}}, zero);
        }
    }
}

TEST(ValidateLosses, whole_tables_by_material_are_clean) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) { put_losses(store, 2); });
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
}

TEST(ValidateLosses, each_material_has_an_id_and_two_tables) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        put_losses(store, 2);
        delete_table(*store, "eddyloss", "eddyloss20");
    });
    EXPECT_EQ(told(only_finding(folder)), "error table-absent eddyloss/eddyloss20");
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        put_losses(store, 2);
        kzb_put_int("hysloss", "numMat", 2000000000, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "error loss-tables hysloss/matID3");
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        put_losses(store, 1);
        put_table(store, "hysloss", "hysloss10", {{0.0, 1000.0}}, zero);
    });
    EXPECT_EQ(told(only_finding(folder)), "error table-dim hysloss/hysloss10");
}

TEST(ValidateLosses, hysteresis_and_eddy_losses_come_together) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) { kzb_put_int("eddyloss", "n", 1, store); });
    EXPECT_EQ(told(only_finding(folder)), "error loss-tables hysloss/");
}

TEST(ValidateLosses, corrections_and_whole_losses_have_the_axes_of_their_lookups) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        put_table(store, "correction", "torque", {{0.0, 1.0}}, zero);
        put_table(store, "equivalent_resistance_table", "copper_loss", {{0.0, 1.0}}, zero);
    });
    const auto findings = findings_of(folder);
    ASSERT_EQ(findings.size(), 2u) << findings.dump(2);
    EXPECT_EQ(told(findings[0]), "error table-dim equivalent_resistance_table/copper_loss");
    EXPECT_EQ(told(findings[1]), "error table-dim correction/torque");
}

TEST(ValidateUserParameters, each_has_a_table_and_a_port_of_the_count) {
    const std::string table = "user_specified_parameter_table";
    const auto fill = [&](KZB_STORE* store, int port, int id) {
        fill_harmonic(store);
        kzb_put_int("num_user_specified_parameter", "num_user_specified_parameter", 1, store);
        kzb_put_int("user_specified_parameter1", "table_id", id, store);
        kzb_put_int("user_specified_parameter1", "output_port_id", port, store);
        put_table(store, table.c_str(), (table + "1").c_str(), {{0.0, 100.0}, {-180.0, 180.0}, {0.0, 180.0}}, zero);
    };
    const Folder folder;
    write_model(folder / "m.kzb", [&](KZB_STORE* store) { fill(store, 1, 1); });
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write_model(folder / "m.kzb", [&](KZB_STORE* store) { fill(store, 2, 1); });
    EXPECT_EQ(told(only_finding(folder)), "error user-parameters user_specified_parameter1/output_port_id");
    write_model(folder / "m.kzb", [&](KZB_STORE* store) { fill(store, 1, 7); });
    EXPECT_EQ(told(only_finding(folder)), "error table-absent " + table + "/" + table + "7");
    write_model(folder / "m.kzb", [&](KZB_STORE* store) {
        fill(store, 1, 1);
        kzb_put_int("num_user_specified_parameter", "num_user_specified_parameter", 2, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "error user-parameters user_specified_parameter2/");
}

}  // namespace
}  // namespace kzb::test
