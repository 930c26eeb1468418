// Items and failures of correction files. Texts and codes are those that users know.
#include "measured_store.h"

namespace {

using namespace kzb_test;
using CorrectionFile = Measured;
using Numbers = std::vector<double>;

TEST_F(CorrectionFile, tables_go_to_their_keys) {
    const struct {
        const char* item;
        const char* key;
        int cyclic;
    } rows[] = {{"Inductance", "inductance", 1},
                {"Torque", "torque", 1},
                {"MagFlux", "mag-flux", 1},
                {"TotalFluxLinkage", "total-flux", 1},
                {"Ironloss", "ironloss", 0}};
    for (const auto& row : rows) {
        TestStore store;
        const std::string path = file(correction_file("$KZ_Correction_" + std::string(row.item) +
                                                      ",2,3\nlabel,0,120,240\n1,1.5,1.25,1.125\n2,2.5,2.25,2.125\n"));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 0) << row.item;
        EXPECT_EQ(kzb_has_error(store), 0);
        EXPECT_EQ(kzb_get_table_num("correction", store), 1);
        ASSERT_EQ(kzb_get_table_dim("correction", row.key, store), 2) << row.item;
        EXPECT_EQ(kzb_get_table_num_rows("correction", row.key, 1, store), 2);
        EXPECT_EQ(kzb_get_table_num_rows("correction", row.key, 2, store), 3);
        EXPECT_EQ(kzb_get_table_axis_value("correction", row.key, 1, 1, store), 2.0);
        EXPECT_EQ(kzb_get_table_axis_value("correction", row.key, 2, 1, store), 120.0);
        const int at[2] = {1, 0};
        EXPECT_EQ(kzb_get_table_value("correction", row.key, at, store), 2.5);
        EXPECT_EQ(kzb_get_table_cyclic_flag("correction", row.key, 1, store), 0);
        EXPECT_EQ(kzb_get_table_cyclic_flag("correction", row.key, 2, store), row.cyclic) << row.item;
    }
}

TEST_F(CorrectionFile, leakage_values_go_to_parameter) {
    EXPECT_EQ(correct(correction_file("$KZ_Correction_LeakageInductance_U,1.5e-3\n"
                                      "$KZ_Correction_LeakageInductance_V, 2.5E-3 mH\n"
                                      "$KZ_Correction_LeakageInductance_W,none\n")),
              0);
    EXPECT_EQ(kzb_get_double("parameter", "leakage_inductance_u", store_), 1.5e-3);
    EXPECT_EQ(kzb_get_double("parameter", "leakage_inductance_v", store_), 2.5e-3);
    EXPECT_EQ(kzb_has_parameter("parameter", "leakage_inductance_w", store_), 1);
    EXPECT_EQ(kzb_get_double("parameter", "leakage_inductance_w", store_), 0.0);
}

TEST_F(CorrectionFile, blocks_are_counted_over_the_life_of_the_store) {
    for (int round = 1; round <= 3; ++round) {
        EXPECT_EQ(correct(correction_file(one_factor("Torque", "2") + one_factor("Torque", "2") +
                                          one_factor("TotalFluxLinkage", "2") + one_factor("Ironloss", "2"))),
                  0);
        EXPECT_EQ(kzb_get_int("information", "torque_correction_counter", store_), 2 * round);
        EXPECT_EQ(kzb_get_int("information", "totalflux_correction_counter", store_), round);
        EXPECT_EQ(kzb_get_int("information", "ironloss_correction_counter", store_), round);
    }
    EXPECT_EQ(kzb_get_int_num("information", store_), 3);
}

TEST_F(CorrectionFile, without_end_marker_even_good_items_fail) {
    for (const char* end : {"", "\n", "$KZ_Correction_Version,1\n", "$KZ_Correction_EndMarker", "# text"}) {
        EXPECT_EQ(correct("$KZ_Correction_Start\n$KZ_Correction_MotorType,PMSM\n" + one_factor("Torque", "2") + end),
                  1);
        EXPECT_EQ(error(), 90016) << end;
        EXPECT_EQ(kzb_get_table_dim("correction", "torque", store_), 2);  // what was read stays
    }
    EXPECT_EQ(correct(""), 1);
    EXPECT_EQ(error(), 90016);
}

TEST_F(CorrectionFile, an_end_marker_needs_no_line_feed) {
    EXPECT_EQ(correct("$KZ_Correction_Start\n$KZ_Correction_MotorType,PMSM\n$KZ_Correction_End"), 0);
    EXPECT_EQ(error(), 0);
}

TEST_F(CorrectionFile, reading_stops_at_the_end_marker) {
    EXPECT_EQ(correct(correction_file("") + one_factor("Torque", "2") + "$KZ_Correction_LdLq\n"), 0);
    EXPECT_EQ(kzb_has_category("correction", store_), 0);
}

TEST_F(CorrectionFile, without_start_the_text_names_the_end_marker) {
    EXPECT_EQ(correct("$KZ_Correction_MotorType,PMSM\n$KZ_Correction_End\n"), 1);
    EXPECT_EQ(error(), 90017);
    testing::internal::CaptureStderr();
    kzb_print_error_short_message(error());
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with(
        "The end marker [$KZ_Correction_Start] was not found in the correction file."));
}

TEST_F(CorrectionFile, the_motor_type_must_begin_with_pmsm) {
    const struct {
        const char* line;
        int error;
    } rows[] = {{"$KZ_Correction_MotorType,PMSM", 0},
                {"$KZ_Correction_MotorType,PMSMX", 0},
                {"$KZ_Correction_MotorType, PMSM ", 0},
                {"$KZ_Correction_MotorType,,PMSM,", 0},
                {"$KZ_Correction_MotorType,PMS", 90018},
                {"$KZ_Correction_MotorType,pmsm", 90018},
                {"$KZ_Correction_MotorType,IM", 90018},
                {"$KZ_Correction_MotorType", 90018},
                {"no type", 90018}};
    for (const auto& row : rows) {
        const int result = correct("$KZ_Correction_Start\n" + std::string(row.line) + "\n$KZ_Correction_End\n");
        EXPECT_EQ(result, row.error == 0 ? 0 : 1) << row.line;
        EXPECT_EQ(error(), row.error) << row.line;
    }
}

TEST_F(CorrectionFile, missing_start_is_told_before_the_motor_type) {
    EXPECT_EQ(correct("$KZ_Correction_End\n"), 1);
    EXPECT_EQ(error(), 90017);
}

TEST_F(CorrectionFile, total_flux_beside_a_part_of_it_in_one_file_is_refused) {
    for (const char* part : {"Inductance", "MagFlux"}) {
        TestStore store;
        const std::string path = file(correction_file(one_factor("TotalFluxLinkage", "2") + one_factor(part, "2")));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 1);
        EXPECT_EQ(kzb_has_error(store), 90020) << part;
        EXPECT_EQ(kzb_get_table_num("correction", store), 2);
    }
}

TEST_F(CorrectionFile, total_flux_on_top_of_a_part_is_refused) {
    for (const char* part : {"Inductance", "MagFlux"}) {
        TestStore store;
        EXPECT_EQ(kzb_read_correction_file(file(correction_file(one_factor(part, "2"))).c_str(), store), 0);
        const std::string path = file(correction_file(one_factor("TotalFluxLinkage", "2")));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 1);
        EXPECT_EQ(kzb_has_error(store), 90021) << part;
        // The table has stayed: given once more it is not new, and nothing is wrong any more.
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 0);
        EXPECT_EQ(kzb_has_error(store), 0);
    }
}

TEST_F(CorrectionFile, a_part_on_top_of_total_flux_is_refused) {
    for (const char* part : {"Inductance", "MagFlux"}) {
        TestStore store;
        kzb_read_correction_file(file(correction_file(one_factor("TotalFluxLinkage", "2"))).c_str(), store);
        EXPECT_EQ(kzb_has_error(store), 0);
        EXPECT_EQ(kzb_read_correction_file(file(correction_file(one_factor(part, "2"))).c_str(), store), 1);
        EXPECT_EQ(kzb_has_error(store), 90022) << part;
    }
}

TEST_F(CorrectionFile, torque_and_ironloss_go_with_anything) {
    EXPECT_EQ(correct(correction_file(one_factor("Inductance", "2") + one_factor("MagFlux", "2") +
                                      one_factor("Torque", "2") + one_factor("Ironloss", "2"))),
              0);
    EXPECT_EQ(kzb_get_table_num("correction", store_), 4);
}

TEST_F(CorrectionFile, old_items_leave_their_code_and_reading_goes_on) {
    const struct {
        const char* item;
        int error;
    } rows[] = {{"$KZ_Correction_BackEMF", 90011},
                {"$KZ_Correction_Flux,2,2", 90012},
                {"$KZ_Correction_LdLq,1", 90013},
                {"$KZ_Correction_Other", 90014},
                {"$", 90014},
                {"$,,", 90014}};
    for (const auto& row : rows) {
        TestStore store;
        const std::string path = file(correction_file(std::string(row.item) + "\n" + one_factor("Torque", "2")));
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store), 1) << row.item;
        EXPECT_EQ(kzb_has_error(store), row.error) << row.item;
        EXPECT_EQ(kzb_get_table_dim("correction", "torque", store), 2);
    }
}

TEST_F(CorrectionFile, of_two_old_items_the_first_is_told) {
    EXPECT_EQ(correct(correction_file("$KZ_Correction_LdLq\n$KZ_Correction_BackEMF\n$KZ_Correction_Other\n")), 1);
    EXPECT_EQ(error(), 90013);
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Other\n$KZ_Correction_BackEMF\n")), 1);
    EXPECT_EQ(error(), 90014);
}

TEST_F(CorrectionFile, a_failing_check_overwrites_the_code_of_an_old_item) {
    EXPECT_EQ(correct("$KZ_Correction_Start\n$KZ_Correction_LdLq\n$KZ_Correction_End\n"), 1);
    EXPECT_EQ(error(), 90018);
}

TEST_F(CorrectionFile, an_earlier_error_is_forgotten) {
    kzb_get_table_axis_value("", "", 1, 0, store_);
    kzb_put_int("c", "k", 1, store_);
    kzb_get_table_axis_value("c", "none", 1, 0, store_);
    ASSERT_EQ(error(), 90010);
    EXPECT_EQ(correct(correction_file("")), 0);
    EXPECT_EQ(error(), 0);
}

TEST_F(CorrectionFile, a_file_that_cannot_be_opened_is_told) {
    for (const std::string& path : {folder_ + "/none", folder_, std::string("/dev/null"), std::string()}) {
        kzb_reset_error(store_);
        EXPECT_EQ(kzb_read_correction_file(path.c_str(), store_), 1) << path;
        EXPECT_EQ(error(), 90015) << path;
    }
    kzb_reset_error(store_);
    EXPECT_EQ(kzb_read_correction_file(nullptr, store_), 1);
    EXPECT_EQ(error(), 90015);
    EXPECT_EQ(kzb_read_correction_file("any", nullptr), 1);
}

TEST_F(CorrectionFile, the_retired_call_does_nothing) {
    const std::string path = file(correction_file(one_factor("Torque", "2")));
    EXPECT_EQ(kzb_apply_correction(path.c_str(), store_), 1);
    EXPECT_EQ(kzb_apply_correction(nullptr, store_), 1);
    EXPECT_EQ(kzb_apply_correction(nullptr, nullptr), 1);
    EXPECT_EQ(kzb_get_category_num(store_), 0);
    EXPECT_EQ(error(), 0);
}

TEST_F(CorrectionFile, head_words_may_stand_between_blanks) {
    EXPECT_EQ(correct("$KZ_Correction_Start \n$KZ_Correction_MotorType\t,PMSM\n$KZ_Correction_Torque , 1 , 1\n"
                      "label, 20\n 10, 2\n$KZ_Correction_End \t\n"),
              0);
    EXPECT_EQ(values("torque"), Numbers{2.0});
    EXPECT_EQ(nodes("correction", "torque", 2), Numbers{20.0});
}

TEST_F(CorrectionFile, a_line_that_starts_otherwise_is_passed_over) {
    EXPECT_EQ(correct(correction_file("text\n\n,,,\n $KZ_Correction_LdLq\n#$KZ_Correction_LdLq\n1,2,3\n")), 0);
    EXPECT_EQ(error(), 0);
}

TEST_F(CorrectionFile, a_comma_before_the_line_end_is_dropped) {
    EXPECT_EQ(correct("$KZ_Correction_Start,\n$KZ_Correction_MotorType,PMSM,\n$KZ_Correction_Torque,1,1,\n"
                      "label,20,\n10,2,\n$KZ_Correction_End,\n"),
              0);
    EXPECT_EQ(values("torque"), Numbers{2.0});
    // With the comma no token is left behind it: the last number of the row is missing, not 0.
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Ironloss,1,2\nlabel,0,1\n10,2,\n")), 1);
    EXPECT_EQ(error(), 90019);
}

TEST_F(CorrectionFile, lines_may_end_in_carriage_return_and_line_feed) {
    std::string text;
    for (const char c : correction_file("$KZ_Correction_Torque,1,2,\nlabel,0,180,\n10,2,3,\n")) {
        text += c == '\n' ? std::string("\r\n") : std::string(1, c);
    }
    EXPECT_EQ(correct(text), 0);
    EXPECT_EQ(values("torque"), (Numbers{2.0, 3.0}));
}

TEST_F(CorrectionFile, an_item_line_beyond_127_bytes_counts_as_several) {
    const std::string item = "$KZ_Correction_LdLq\n";
    EXPECT_EQ(correct(correction_file(std::string(126, 'x') + item)), 0);  // "$" is the 127th byte of the piece
    EXPECT_EQ(correct(correction_file(std::string(127, 'x') + item)), 1);
    EXPECT_EQ(error(), 90013);
    EXPECT_EQ(correct(correction_file(std::string(128, 'x') + item)), 0);
    EXPECT_EQ(correct(correction_file(std::string(254, 'x') + item)), 1);
    // 127 bytes with the line feed are one piece; the blanks behind the word go.
    EXPECT_EQ(
        correct("$KZ_Correction_Start\n$KZ_Correction_MotorType,PMSM\n$KZ_Correction_End" + std::string(500, ' ')), 0);
}

TEST_F(CorrectionFile, a_line_ends_at_a_nul) {
    using namespace std::string_literals;
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Version\0,x\n"s)), 0);
    EXPECT_EQ(correct(correction_file("\0$KZ_Correction_LdLq\n"s)), 0);
    EXPECT_EQ(correct(correction_file("$KZ_Correction_LdLq\0 here\n"s)), 1);
    EXPECT_EQ(error(), 90013);
    EXPECT_EQ(correct("\0\0\0"s), 1);
    EXPECT_EQ(error(), 90016);
    EXPECT_EQ(correct("\0\n\0\n"s), 1);
    EXPECT_EQ(error(), 90016);
}

TEST_F(CorrectionFile, a_leakage_item_without_value_is_corrupt) {
    kzb_put_double("parameter", "leakage_inductance_u", 0.25, store_);
    testing::internal::CaptureStderr();
    EXPECT_EQ(correct(correction_file("$KZ_Correction_LeakageInductance_U\n")), 1);
    EXPECT_EQ(error(), 90019);
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("The correction file is corrupt."));
    EXPECT_EQ(kzb_get_double("parameter", "leakage_inductance_u", store_), 0.25);
}

// By way of a saved model: the corrections come back with every application.
TEST_F(CorrectionFile, corrections_are_saved_and_always_loaded) {
    const std::string path = folder_ + "/model.kzb";
    KZB_STORE* made = nullptr;
    kzb_initialize(&made);
    kzb_read_correction_file(file(correction_file(one_factor("Torque", "2.5"))).c_str(), made);
    kzb_writer(path.c_str(), made);
    kzb_finish(made);
    ASSERT_EQ(kzb_reader(path.c_str(), store_), 0);
    kzb_set_application("Generic", "", store_);
    EXPECT_EQ(values("torque"), Numbers{2.5});
    EXPECT_EQ(nodes("correction", "torque", 1), Numbers{10.0});
    EXPECT_EQ(kzb_get_table_cyclic_flag("correction", "torque", 2, store_), 1);
    EXPECT_EQ(kzb_get_int("information", "torque_correction_counter", store_), 1);
}

}  // namespace
