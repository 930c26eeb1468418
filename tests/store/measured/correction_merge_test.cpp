// A correction given twice: factors compound on the grid of the later file.
#include "measured_store.h"

namespace {

using namespace kzb_test;
using CorrectionMerge = Measured;
using Numbers = std::vector<double>;

std::string torque(const std::string& block) {
    return correction_file("$KZ_Correction_Torque," + block);
}

TEST_F(CorrectionMerge, the_grid_of_the_later_file_wins_and_factors_compound) {
    EXPECT_EQ(correct(torque("2,2\nl,0,360\n0,2,2\n100,4,4\n")), 0);
    EXPECT_EQ(correct(torque("3,1\nl,90\n0,1\n50,10\n100,0.5\n")), 0);
    EXPECT_EQ(error(), 0);
    EXPECT_EQ(nodes("correction", "torque", 1), (Numbers{0.0, 50.0, 100.0}));
    EXPECT_EQ(nodes("correction", "torque", 2), Numbers{90.0});
    // The earlier table rises from 2 at 0 A to 4 at 100 A.
    EXPECT_EQ(values("torque"), (Numbers{2.0, 30.0, 2.0}));
    EXPECT_EQ(kzb_get_table_cyclic_flag("correction", "torque", 2, store_), 1);
}

TEST_F(CorrectionMerge, outside_the_earlier_range_the_factor_is_one) {
    EXPECT_EQ(correct(torque("2,1\nl,0\n10,2\n20,2\n")), 0);
    EXPECT_EQ(correct(torque("4,1\nl,0\n9,3\n10,3\n20,3\n21,3\n")), 0);
    EXPECT_EQ(values("torque"), (Numbers{3.0, 6.0, 6.0, 3.0}));
    EXPECT_EQ(error(), 0);
}

TEST_F(CorrectionMerge, the_earlier_phase_axis_is_cyclic_except_for_ironloss) {
    const std::string wide = "1,2\nl,0,360\n10,2,2\n";
    const std::string beyond = "1,1\nl,370\n10,3\n";
    EXPECT_EQ(correct(torque(wide)), 0);
    EXPECT_EQ(correct(torque(beyond)), 0);
    EXPECT_EQ(values("torque"), Numbers{6.0});
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Ironloss," + wide)), 0);
    EXPECT_EQ(correct(correction_file("$KZ_Correction_Ironloss," + beyond)), 0);
    EXPECT_EQ(values("ironloss"), Numbers{3.0});
}

// A turn at a time would take hours, or for ever where a turn is lost in the rounding.
TEST_F(CorrectionMerge, a_phase_far_from_the_earlier_range_ends_the_reading_all_the_same) {
    for (const char* phase : {"3600000000020", "1e18", "-1e300", "inf", "nan"}) {
        TestStore store;
        const std::string wide = file(torque("1,2\nl,0,360\n10,2,2\n"));
        const std::string far = file(torque("1,1\nl," + std::string(phase) + "\n10,3\n"));
        EXPECT_EQ(kzb_read_correction_file(wide.c_str(), store), 0);
        EXPECT_EQ(kzb_read_correction_file(far.c_str(), store), 0) << phase;
        EXPECT_EQ(kzb_get_table_num("correction", store), 1);
    }
}

TEST_F(CorrectionMerge, two_blocks_of_one_file_merge_too) {
    EXPECT_EQ(
        correct(correction_file(one_factor("Torque", "2") + one_factor("Torque", "3") + one_factor("Torque", "5"))), 0);
    EXPECT_EQ(values("torque"), Numbers{30.0});
}

TEST_F(CorrectionMerge, the_table_takes_the_place_of_the_block_and_no_temporary_stays) {
    EXPECT_EQ(correct(correction_file(one_factor("Torque", "2") + one_factor("Ironloss", "2"))), 0);
    EXPECT_EQ(correct(torque("1,1\nl,20\n10,3\n")), 0);
    ASSERT_EQ(kzb_get_table_num("correction", store_), 2);
    EXPECT_STREQ(kzb_get_table_keyword("correction", 0, store_), "ironloss");
    EXPECT_STREQ(kzb_get_table_keyword("correction", 1, store_), "torque");
    EXPECT_EQ(values("torque"), Numbers{6.0});
}

TEST_F(CorrectionMerge, a_corrupt_block_leaves_the_table_and_its_own_part) {
    EXPECT_EQ(correct(torque("1,1\nl,20\n10,2\n")), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(correct(torque("2,1\nl,20\n10,3\n20\n")), 1);
    const std::string output = testing::internal::GetCapturedStderr();
    EXPECT_EQ(error(), 90019);
    // Once by the merge, once by the reading that ends.
    const std::size_t first = output.find("The correction file is corrupt.");
    ASSERT_NE(first, std::string::npos);
    EXPECT_NE(output.find("The correction file is corrupt.", first + 1), std::string::npos);
    EXPECT_EQ(values("torque"), Numbers{2.0});
    EXPECT_EQ(values("torque_dummy"), (Numbers{3.0, 0.0}));
    EXPECT_EQ(kzb_get_int("information", "torque_correction_counter", store_), 2);
    // The next merge takes the temporary's place in the list.
    EXPECT_EQ(correct(correction_file(one_factor("Ironloss", "2") + one_factor("Torque", "3"))), 0);
    EXPECT_EQ(values("torque"), Numbers{6.0});
    ASSERT_EQ(kzb_get_table_num("correction", store_), 2);
    EXPECT_STREQ(kzb_get_table_keyword("correction", 0, store_), "torque");
    EXPECT_STREQ(kzb_get_table_keyword("correction", 1, store_), "ironloss");
}

TEST_F(CorrectionMerge, a_block_without_rows_leaves_the_table) {
    EXPECT_EQ(correct(torque("1,1\nl,20\n10,2\n")), 0);
    testing::internal::CaptureStderr();
    EXPECT_EQ(correct(torque("0,1\n")), 0);
    EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("The num of row is zero.\n"));
    EXPECT_EQ(values("torque"), Numbers{2.0});
}

TEST_F(CorrectionMerge, every_lookup_is_counted) {
    EXPECT_EQ(correct(torque("2,2\nl,0,360\n0,2,2\n100,4,4\n")), 0);
    const double point[2] = {50.0, 90.0};
    kzb_get_table_interpolated_value("correction", "torque", point, "Linear", store_);
    const double of_one = kzb_get_time(store_, 3);
    EXPECT_GT(of_one, 0.0);
    EXPECT_EQ(correct(torque("3,2\nl,0,360\n0,1,1\n50,1,1\n200,1,1\n")), 0);
    EXPECT_EQ(kzb_get_time(store_, 3), 7.0 * of_one);  // six nodes more
}

// Corrections that a model file brings are merged with, whether they were loaded before or not.
TEST_F(CorrectionMerge, corrections_still_in_the_model_file_are_loaded_first) {
    const std::string path = folder_ + "/model.kzb";
    KZB_STORE* made = nullptr;
    kzb_initialize(&made);
    kzb_read_correction_file(file(torque("1,1\nl,20\n10,2.5\n")).c_str(), made);
    kzb_writer(path.c_str(), made);
    kzb_finish(made);
    ASSERT_EQ(kzb_reader(path.c_str(), store_), 0);
    EXPECT_EQ(correct(torque("1,1\nl,20\n10,2\n")), 0);
    EXPECT_EQ(values("torque"), Numbers{5.0});
    kzb_set_application("ALL", "", store_);
    EXPECT_EQ(values("torque"), Numbers{5.0});
    EXPECT_EQ(nodes("correction", "torque", 1), Numbers{10.0});
}

TEST_F(CorrectionMerge, corrections_that_cannot_be_loaded_stop_the_reading) {
    const std::string path = folder_ + "/model.kzb";
    KZB_STORE* made = nullptr;
    kzb_initialize(&made);
    kzb_read_correction_file(file(torque("1,1\nl,20\n10,2.5\n")).c_str(), made);
    kzb_writer(path.c_str(), made);
    kzb_finish(made);
    ASSERT_EQ(kzb_reader(path.c_str(), store_), 0);
    std::filesystem::remove(path);
    testing::internal::CaptureStdout();
    EXPECT_EQ(correct(torque("1,1\nl,20\n10,2\n")), 1);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(error(), 90001);
    EXPECT_EQ(kzb_get_int("information", "torque_correction_counter", store_), 1);
}

// A correction table that a model brings may have another shape; it is looked up as far as its axes go.
TEST_F(CorrectionMerge, an_earlier_table_of_another_shape_does_no_harm) {
    store_.line("correction", "torque", {0.0, 100.0}, {2.0, 4.0});
    EXPECT_EQ(correct(torque("1,1\nl,20\n50,10\n")), 0);
    EXPECT_EQ(values("torque"), Numbers{30.0});
    const int size[3] = {1, 1, 1};
    kzb_create_table("correction", "ironloss", 3, size, store_);
    for (int axis = 1; axis <= 3; ++axis) {
        kzb_set_table_axis_value("correction", "ironloss", axis, 0, 0.0, store_);
    }
    const int at[3] = {0, 0, 0};
    kzb_set_table_value("correction", "ironloss", at, 7.0, store_);
    EXPECT_EQ(correct(correction_file(one_factor("Ironloss", "2"))), 0);
    EXPECT_EQ(values("ironloss"), Numbers{14.0});
}

}  // namespace
