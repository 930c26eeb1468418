#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_store.h"

using kzb_test::TestStore;

namespace {

void categories(KZB_STORE* store, int motor_type, std::initializer_list<const char*> names) {
    kzb_put_int("control", "motor_type", motor_type, store);
    kzb_put_int("parameter", "placeholder", 0, store);
    for (const char* name : names) {
        kzb_put_int(name, "placeholder", 0, store);
    }
}

struct Row {
    const char* motor;
    const char* application;
    std::vector<const char*> needs;
    int fitting_type;
    int other_type;  // 0: the motor type is not tested
};

const std::vector<Row> rows = {
    {"PMSM", "LdLq", {"dq_inductance", "d_flux"}, 1, 0},
    {"PMSM", "SimpleHarmonic", {"inductance", "mag_flux", "torque"}, 10000, 10005},
    {"PMSM", "Harmonic", {"harmonic_inductance", "current_flux", "harmonic_torque"}, 10000, 10007},
    {"PMSM", "Harmonic", {"harmonic_inductance", "current_flux", "pmsm_torque"}, 10000, 10007},
    {"PMSM", "FluxIntegralDQTheta", {"current_table", "flux_table", "harmonic_torque"}, 10000, 10005},
    {"2-PhaseStepping", "anything", {"inductance", "mag_flux", "torque"}, 10001, 10000},
    {"2-PhaseStepping", "", {"inductance", "mag_flux", "torque"}, 10002, 10004},
    {"2-PhaseStepping", "", {"inductance", "mag_flux", "torque"}, 10003, 10004},
    {"LinearSolenoid", "", {"inductance", "distance_flux", "distance_force"}, 1, 0},
    {"LinearSynchronous", "", {"inductance", "mag_flux", "distance_force"}, 1, 0},
    {"SR", "", {"inductance", "torque"}, 1, 0},
    {"IM", "", {"InductionParam"}, 1, 0},
    {"WFSM", "LdLq", {"inductance"}, 1, 0},
    {"WFSM", "Harmonic", {"harmonic_inductance", "current_flux", "harmonic_torque"}, 10007, 10000},
    {"Generic", "any", {}, 10008, 10000},
};

TEST(Applications, offered_when_all_categories_stand_and_the_motor_type_fits) {
    for (const Row& row : rows) {
        TestStore store;
        categories(store, row.fitting_type, {});
        for (const char* need : row.needs) {
            EXPECT_EQ(kzb_has_application(row.motor, row.application, store), 0) << row.motor << " before " << need;
            kzb_put_int(need, "placeholder", 0, store);
        }
        EXPECT_EQ(kzb_has_application(row.motor, row.application, store), 1) << row.motor << ' ' << row.application;
        if (row.other_type != 0) {
            kzb_put_int("control", "motor_type", row.other_type, store);
            EXPECT_EQ(kzb_has_application(row.motor, row.application, store), 0) << row.motor << ' ' << row.application;
        }
    }
}

TEST(Applications, every_single_absent_category_withdraws_the_offer) {
    for (const Row& row : rows) {
        for (std::size_t absent = 0; absent < row.needs.size(); ++absent) {
            TestStore store;
            categories(store, row.fitting_type, {});
            for (std::size_t i = 0; i < row.needs.size(); ++i) {
                if (i != absent) {
                    kzb_put_int(row.needs[i], "placeholder", 0, store);
                }
            }
            EXPECT_EQ(kzb_has_application(row.motor, row.application, store), 0)
                << row.motor << ' ' << row.application << " without " << row.needs[absent];
        }
    }
}

TEST(Applications, reluctance_needs_the_magnet_flux_to_be_absent) {
    TestStore store;
    categories(store, 10010, {"inductance", "torque"});
    EXPECT_EQ(kzb_has_application("SR", "", store), 1);
    kzb_put_int("mag_flux", "k", 0, store);
    EXPECT_EQ(kzb_has_application("SR", "", store), 0);
}

TEST(Applications, unknown_words_are_not_offered) {
    TestStore store;
    categories(store, 10000, {"dq_inductance", "d_flux"});
    EXPECT_EQ(kzb_has_application("PMSM", "LdLq", store), 1);
    EXPECT_EQ(kzb_has_application("PMSM", "ldlq", store), 0);
    EXPECT_EQ(kzb_has_application("PMSM", "", store), 0);
    EXPECT_EQ(kzb_has_application("PMSM", nullptr, store), 0);
    EXPECT_EQ(kzb_has_application("pmsm", "LdLq", store), 0);
    EXPECT_EQ(kzb_has_application("ALL", "", store), 0);
}

TEST(Applications, control_without_parameter_offers_nothing_even_generic) {
    TestStore store;
    kzb_put_int("control", "motor_type", 10008, store);
    EXPECT_EQ(kzb_has_application("Generic", "", store), 0);
    EXPECT_EQ(kzb_get_application_num(store), 0);
    kzb_put_int("parameter", "k", 0, store);
    EXPECT_EQ(kzb_get_application_num(store), 1);
}

TEST(Applications, flux_integral_comes_back_under_its_shorter_word) {
    TestStore store;
    categories(store, 10000, {"current_table", "flux_table", "harmonic_torque"});
    ASSERT_EQ(kzb_get_application_num(store), 1);
    const KZB_INFORMATION row = kzb_get_application(store, 0);
    EXPECT_STREQ(row.first, "PMSM");
    EXPECT_STREQ(row.second, "FluxIntegral");
    EXPECT_EQ(row.type, 0);
    EXPECT_EQ(kzb_has_application(row.first, row.second, store), 0);
}

TEST(Applications, listing_walks_flux_integral_last) {
    TestStore store;
    categories(store, 10000,
               {"current_table", "flux_table", "harmonic_torque", "harmonic_inductance", "current_flux",
                "dq_inductance", "d_flux", "inductance", "InductionParam", "torque"});
    // Offered: LdLq, Harmonic, FluxIntegral, SR (no mag_flux), IM, WFSM LdLq.
    ASSERT_EQ(kzb_get_application_num(store), 6);
    const char* expected[6][2] = {{"PMSM", "LdLq"}, {"PMSM", "Harmonic"}, {"SR", nullptr},
                                  {"IM", nullptr},  {"WFSM", "LdLq"},     {"PMSM", "FluxIntegral"}};
    for (int i = 0; i < 6; ++i) {
        const KZB_INFORMATION row = kzb_get_application(store, i);
        EXPECT_STREQ(row.first, expected[i][0]) << i;
        EXPECT_STREQ(row.second, expected[i][1]) << i;
    }
    for (const int beyond : {6, -1}) {
        const KZB_INFORMATION row = kzb_get_application(store, beyond);
        EXPECT_EQ(row.first, nullptr);
        EXPECT_EQ(row.second, nullptr);
        EXPECT_EQ(row.type, 0);
    }
}

TEST(Applications, selecting_without_a_file_says_so) {
    TestStore store;
    testing::internal::CaptureStderr();
    kzb_set_application("PMSM", "LdLq", store);
    const std::string said = testing::internal::GetCapturedStderr();
    EXPECT_EQ(said.rfind("Unknown file type\n: ", 0), 0U) << said;
    EXPECT_NE(said.find("reading error in ReadTables: "), std::string::npos) << said;
}

TEST(Information, rows_are_visible_when_present_and_not_hidden) {
    TestStore store;
    EXPECT_EQ(kzb_get_motor_information_num(store), 0);
    kzb_put_double("information", "weight", 12.0, store);
    kzb_put_double("parameter", "RU", 0.1, store);
    kzb_put_int("control", "number_of_poles", 8, store);  // never a row: its category is spelt otherwise
    ASSERT_EQ(kzb_get_motor_information_num(store), 2);
    KZB_INFORMATION row = kzb_get_motor_information(store, 1);
    EXPECT_STREQ(row.first, "parameter");
    EXPECT_STREQ(row.second, "RU");
    EXPECT_EQ(row.type, 1);
    row = kzb_get_motor_information(store, 2);
    EXPECT_STREQ(row.first, "");
    EXPECT_STREQ(row.second, "");
}

TEST(Information, only_the_int_one_makes_a_row_with_a_switch_visible) {
    for (const int flag : {0, 2, -1}) {
        TestStore store;
        kzb_put_double("information", "weight", 12.0, store);
        kzb_put_int("information", "weight_visible", flag, store);
        EXPECT_EQ(kzb_get_motor_information_num(store), 0) << flag;
        kzb_put_int("information", "weight_visible", 1, store);
        EXPECT_EQ(kzb_get_motor_information_num(store), 1);
    }
    TestStore store;
    kzb_put_double("information", "weight", 12.0, store);
    kzb_put_string("information", "weight_visible", "1", store);
    EXPECT_EQ(kzb_get_motor_information_num(store), 0);
}

TEST(Information, category_written_one_letter_short_would_show) {
    TestStore store;
    kzb_put_int("cotrol", "number_of_poles", 8, store);
    ASSERT_EQ(kzb_get_motor_information_num(store), 1);
    EXPECT_EQ(kzb_get_motor_information(store, 0).type, 0);
}

TEST(Information, basic_rows_in_their_order) {
    TestStore store;
    for (const char* key : {"preparer", "input_file_name", "creation_date", "title"}) {
        kzb_put_string("information", key, "x", store);
    }
    kzb_put_string("version", "dorn_version", "x", store);
    kzb_put_double("version", "version", 1.0, store);
    ASSERT_EQ(kzb_get_basic_information_num(store), 6);
    const char* keys[6] = {"version", "dorn_version", "title", "creation_date", "input_file_name", "preparer"};
    for (int i = 0; i < 6; ++i) {
        EXPECT_STREQ(kzb_get_basic_information(store, i).second, keys[i]);
        EXPECT_EQ(kzb_get_basic_information(store, i).type, i == 0 ? 1 : 2);
    }
}

}  // namespace
