// Loss tables of the fixed form: application, grid, ends of the file, faults.
#include <chrono>
#include <limits>
#include <random>

#include "measured_store.h"

namespace {

using namespace kzb_test;
using Numbers = std::vector<double>;

class LossTable : public Measured {
  protected:
    LossTable() { make(store_, 10000, {"harmonic_inductance", "current_flux", "harmonic_torque"}); }

    static void make(KZB_STORE* store, int motor_type, const std::vector<const char*>& categories) {
        kzb_put_int("control", "motor_type", motor_type, store);
        kzb_put_double("parameter", "RU", 1.0, store);
        for (const char* category : categories) {
            kzb_put_int(category, "present", 1, store);
        }
    }
    bool has_table() { return kzb_get_table_dim("loss_table", "iron_loss", store_) != 0; }
    double loss(const std::vector<int>& at) { return value("loss_table", "iron_loss", at); }
};

const std::string four_points =
    "$ amplitude phase speed voltage carrier loss\n10 0 100 0 0 1\n10 90 100 0 0 2\n0 0 100 0 0 3\n0 90 100 0 0 4\n";

TEST_F(LossTable, points_in_any_order_make_a_table_of_five_ascending_axes) {
    ASSERT_EQ(add_iron_loss(four_points), 0);
    EXPECT_EQ(error(), 0);
    EXPECT_EQ(sizes("loss_table", "iron_loss"), (std::vector<int>{2, 2, 1, 1, 1}));
    EXPECT_EQ(nodes("loss_table", "iron_loss", 1), (Numbers{0.0, 10.0}));
    EXPECT_EQ(nodes("loss_table", "iron_loss", 2), (Numbers{0.0, 90.0}));
    EXPECT_EQ(nodes("loss_table", "iron_loss", 3), Numbers{100.0});
    EXPECT_EQ(loss({0, 0, 0, 0, 0}), 3.0);
    EXPECT_EQ(loss({0, 1, 0, 0, 0}), 4.0);
    EXPECT_EQ(loss({1, 0, 0, 0, 0}), 1.0);
    EXPECT_EQ(loss({1, 1, 0, 0, 0}), 2.0);
}

TEST_F(LossTable, the_phase_axis_is_cyclic_for_a_permanent_magnet_machine_alone) {
    ASSERT_EQ(add_iron_loss(four_points), 0);
    for (int axis = 1; axis <= 5; ++axis) {
        EXPECT_EQ(kzb_get_table_cyclic_flag("loss_table", "iron_loss", axis, store_), axis == 2 ? 1 : 0);
    }
    TestStore induction;
    make(induction, 10006, {"InductionParam"});
    ASSERT_EQ(kzb_add_loss_table(file(four_points).c_str(), induction), 0);
    for (int axis = 1; axis <= 5; ++axis) {
        EXPECT_EQ(kzb_get_table_cyclic_flag("loss_table", "iron_loss", axis, induction), 0);
    }
}

TEST_F(LossTable, copper_loss_goes_to_its_own_table) {
    ASSERT_EQ(kzb_add_equivalent_copper_loss_resistance_table(file(four_points).c_str(), store_), 0);
    EXPECT_FALSE(has_table());
    EXPECT_EQ(value("equivalent_resistance_table", "copper_loss", {1, 1, 0, 0, 0}), 2.0);
    EXPECT_EQ(kzb_get_table_cyclic_flag("equivalent_resistance_table", "copper_loss", 2, store_), 1);
}

TEST_F(LossTable, other_applications_take_no_table) {
    const std::string path = file(four_points);
    const struct {
        int motor_type;
        std::vector<const char*> categories;
        int iron;
        int copper;
    } rows[] = {{10000, {"dq_inductance", "d_flux"}, 90025, 90025},  // LdLq
                {10000, {"inductance", "mag_flux", "torque"}, 90025, 90025},
                {10000, {"harmonic_inductance", "current_flux", "pmsm_torque"}, 0, 0},
                {10006, {"InductionParam"}, 0, 90025},
                {10007, {"harmonic_inductance", "current_flux", "harmonic_torque"}, 90025, 90025},
                {10008, {}, 0, 90025}};
    for (const auto& row : rows) {
        TestStore store;
        make(store, row.motor_type, row.categories);
        EXPECT_EQ(kzb_add_loss_table(path.c_str(), store), row.iron == 0 ? 0 : 1) << row.motor_type;
        EXPECT_EQ(kzb_has_error(store), row.iron);
        EXPECT_EQ(kzb_add_equivalent_copper_loss_resistance_table(path.c_str(), store), row.copper == 0 ? 0 : 1);
        EXPECT_EQ(kzb_has_error(store), row.copper);
    }
    TestStore empty;
    EXPECT_EQ(kzb_add_loss_table(path.c_str(), empty), 1);
    EXPECT_EQ(kzb_has_error(empty), 90025);
    EXPECT_EQ(kzb_add_loss_table(nullptr, empty), 1);
    EXPECT_EQ(kzb_has_error(empty), 90025);
    EXPECT_EQ(kzb_add_loss_table(path.c_str(), nullptr), 1);
    EXPECT_EQ(kzb_add_equivalent_copper_loss_resistance_table(path.c_str(), nullptr), 1);
}

TEST_F(LossTable, a_file_that_cannot_be_opened_is_told) {
    EXPECT_EQ(kzb_add_loss_table((folder_ + "/none").c_str(), store_), 1);
    EXPECT_EQ(error(), 90015);
    kzb_reset_error(store_);
    EXPECT_EQ(kzb_add_loss_table(nullptr, store_), 1);
    EXPECT_EQ(error(), 90015);
    kzb_reset_error(store_);
    EXPECT_EQ(kzb_add_equivalent_copper_loss_resistance_table(folder_.c_str(), store_), 1);
    EXPECT_EQ(error(), 90015);
}

TEST_F(LossTable, blanks_and_commas_separate_and_blank_lines_are_passed_over) {
    EXPECT_EQ(add_iron_loss("\n \t \n,,\n 1,2 ,3 4,,5,6,\n\n\t1 2 3 4 7 8\t\n"), 0);
    EXPECT_EQ(sizes("loss_table", "iron_loss"), (std::vector<int>{1, 1, 1, 1, 2}));
    EXPECT_EQ(loss({0, 0, 0, 0, 1}), 8.0);
}

TEST_F(LossTable, a_tab_between_numbers_separates_nothing) {
    EXPECT_EQ(add_iron_loss("1\t2 3 4 5 6 7\n"), 1);
    EXPECT_EQ(error(), 90031);
}

TEST_F(LossTable, lines_may_end_in_carriage_return_and_line_feed) {
    EXPECT_EQ(add_iron_loss("$ x\r\n1 2 3 4 5 6\r\n"), 0);
    EXPECT_EQ(loss({0, 0, 0, 0, 0}), 6.0);
}

TEST_F(LossTable, near_coordinates_count_as_one_and_the_points_then_fail) {
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n0.00000000001 0 0 0 0 2\n"), 1);
    EXPECT_EQ(error(), 90024);
    // Further apart they are two.
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n0.000000001 0 0 0 0 2\n"), 0);
    EXPECT_EQ(sizes("loss_table", "iron_loss")[0], 2);
}

TEST_F(LossTable, near_coordinates_of_a_full_grid_take_the_first_of_them) {
    EXPECT_EQ(add_iron_loss("1 0 0 0 0 1\n2 0 0 0 0 2\n1.00000000001 9 0 0 0 3\n2 9 0 0 0 4\n"), 0);
    EXPECT_EQ(nodes("loss_table", "iron_loss", 1), (Numbers{1.0, 2.0}));
    EXPECT_EQ(loss({0, 1, 0, 0, 0}), 3.0);
}

TEST_F(LossTable, a_field_that_is_no_number_is_told) {
    for (const char* field : {"1.0abc", "abc", "0x10", "1e999", "1e", "\"1\"", "#1"}) {
        EXPECT_EQ(add_iron_loss("0 0 0 0 0 " + std::string(field) + "\n"), 1);
        EXPECT_EQ(error(), 90031) << field;
        // Even where the number of fields is wrong as well.
        EXPECT_EQ(add_iron_loss("0 0 " + std::string(field) + "\n"), 1);
        EXPECT_EQ(error(), 90031) << field;
    }
}

TEST_F(LossTable, a_point_missing_from_the_grid_is_told) {
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n1 0 0 0 0 1\n0 1 0 0 0 1\n"), 1);
    EXPECT_EQ(error(), 90024);
    EXPECT_FALSE(has_table());
}

TEST_F(LossTable, a_point_given_twice_is_too_many) {
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n0 0 0 0 0 2\n"), 1);
    EXPECT_EQ(error(), 90024);
    // Kept: the count alone is tested. One point twice for one that is missing passes; the later value counts.
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n1 0 0 0 0 2\n0 1 0 0 0 3\n0 1 0 0 0 4\n"), 0);
    EXPECT_EQ(loss({0, 1, 0, 0, 0}), 4.0);
    EXPECT_EQ(loss({1, 1, 0, 0, 0}), 0.0);
}

TEST_F(LossTable, another_number_of_fields_is_told) {
    for (const char* line : {"1 2 3 4 5\n", "1 2 3 4 5 6 7\n", "1\n"}) {
        EXPECT_EQ(add_iron_loss("1 2 3 4 5 6\n" + std::string(line)), 1);
        EXPECT_EQ(error(), 90023) << line;
    }
}

TEST_F(LossTable, a_last_line_without_line_feed_is_not_read) {
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n1 0 0 0 0 2"), 0);
    EXPECT_EQ(sizes("loss_table", "iron_loss")[0], 1);
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\nwhatever"), 0);
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1"), 1);
    EXPECT_EQ(error(), 90024);
}

TEST_F(LossTable, a_comment_may_be_the_last_line) {
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n$ end\n"), 0);
    EXPECT_EQ(add_iron_loss("0 0 0 0 0 1\n$ end"), 0);
    EXPECT_EQ(loss({0, 0, 0, 0, 0}), 1.0);
}

TEST_F(LossTable, a_comment_starts_with_the_first_byte) {
    EXPECT_EQ(add_iron_loss(" $ no comment\n0 0 0 0 0 1\n"), 1);
    EXPECT_EQ(error(), 90031);
}

TEST_F(LossTable, without_points_the_points_are_not_enough) {
    for (const char* text : {"", "\n\n", "$\n", "$"}) {
        EXPECT_EQ(add_iron_loss(text), 1) << text;
        EXPECT_EQ(error(), 90024) << text;
        EXPECT_FALSE(has_table());
    }
}

TEST_F(LossTable, a_failure_leaves_the_store_as_it_was) {
    ASSERT_EQ(add_iron_loss(four_points), 0);
    const int categories = kzb_get_category_num(store_);
    for (const char* text : {"", "x\n", "1 2\n", "0 0 0 0 0 1\n0 0 0 0 0 2\n", "nan 0 0 0 0 1\n"}) {
        EXPECT_EQ(add_iron_loss(text), 1);
        EXPECT_EQ(loss({1, 1, 0, 0, 0}), 2.0) << text;
        EXPECT_EQ(kzb_get_category_num(store_), categories);
    }
}

TEST_F(LossTable, a_second_file_replaces_the_table_in_its_place) {
    ASSERT_EQ(add_iron_loss(four_points), 0);
    store_.line("loss_table", "behind", {0.0}, {1.0});
    ASSERT_EQ(add_iron_loss("0 0 0 0 0 7\n"), 0);
    EXPECT_EQ(sizes("loss_table", "iron_loss"), (std::vector<int>{1, 1, 1, 1, 1}));
    EXPECT_STREQ(kzb_get_table_keyword("loss_table", 0, store_), "iron_loss");
    EXPECT_EQ(kzb_get_table_num("loss_table", store_), 2);
}

TEST_F(LossTable, an_earlier_error_is_forgotten) {
    add_iron_loss("x\n");
    ASSERT_EQ(error(), 90031);
    EXPECT_EQ(add_iron_loss(four_points), 0);
    EXPECT_EQ(error(), 0);
}

TEST_F(LossTable, coordinates_that_are_no_finite_number_are_illegal_values_are_not) {
    for (const char* x : {"nan", "inf", "-inf"}) {
        EXPECT_EQ(add_iron_loss(std::string(x) + " 0 0 0 0 1\n"), 1);
        EXPECT_EQ(error(), 90029) << x;
    }
    EXPECT_EQ(add_iron_loss("nan 0 0 0 0 1\nnan 1 0 0 0 1\n"), 1);
    EXPECT_EQ(error(), 90024);  // two coordinates in two axes
    EXPECT_EQ(add_iron_loss("-1 -2 -3 -4 -5 inf\n"), 0);
    EXPECT_EQ(loss({0, 0, 0, 0, 0}), std::numeric_limits<double>::infinity());
}

TEST_F(LossTable, a_line_beyond_1023_bytes_counts_as_several) {
    // Lines of 1022 and 1023 bytes with their line feed; a byte more cuts the line feed off, which is then a blank
    // line.
    for (const std::size_t blanks : {1011U, 1012U, 1013U}) {
        EXPECT_EQ(add_iron_loss("1 2 3 4 5" + std::string(blanks, ' ') + "6\n"), 0) << blanks;
        EXPECT_EQ(loss({0, 0, 0, 0, 0}), 6.0);
    }
    // A piece of 1023 bytes does not see the end of the file behind it: this last line is read.
    EXPECT_EQ(add_iron_loss("1 2 3 4 5" + std::string(1013, ' ') + "7"), 0);
    EXPECT_EQ(loss({0, 0, 0, 0, 0}), 7.0);
    // The value falls into the second piece.
    EXPECT_EQ(add_iron_loss("1 2 3 4 5" + std::string(1014, ' ') + "6\n"), 1);
    EXPECT_EQ(error(), 90023);
    // A piece may start with the sign of a comment.
    EXPECT_EQ(add_iron_loss("1 2 3 4 5 6" + std::string(1012, ' ') + "$ comment\n"), 0);
}

TEST_F(LossTable, a_line_ends_at_a_nul) {
    using namespace std::string_literals;
    EXPECT_EQ(add_iron_loss("1 2 3 4 5 6\0 7\n\0 x\n"s), 0);
    EXPECT_EQ(loss({0, 0, 0, 0, 0}), 6.0);
    EXPECT_EQ(add_iron_loss("1 2 3\0 4 5 6\n"s), 1);
    EXPECT_EQ(error(), 90023);
}

TEST_F(LossTable, lookups_see_the_new_table) {
    ASSERT_EQ(add_iron_loss(four_points), 0);
    const double at[5] = {5.0, 45.0, 100.0, 0.0, 0.0};
    EXPECT_EQ(kzb_get_table_interpolated_value("loss_table", "iron_loss", at, "Linear", store_), 2.5);
    ASSERT_EQ(add_iron_loss("0 0 0 0 0 7\n"), 0);
    EXPECT_EQ(kzb_get_table_interpolated_value("loss_table", "iron_loss", at, "Linear", store_), 7.0);
}

TEST_F(LossTable, random_bytes_do_no_harm) {
    std::mt19937 random(4);
    const std::string letters = "0123456789.-e ,\n\n$#\"=xn\r";
    for (int round = 0; round < 2000; ++round) {
        std::string text;
        for (auto i = random() % 100; i > 0; --i) {
            text.push_back(random() % 50 == 0 ? static_cast<char>(random()) : letters[random() % letters.size()]);
        }
        const int result = add_iron_loss(text);
        EXPECT_EQ(result != 0, error() != 0);
    }
}

// 200 000 points of 100 x 100 x 20, and as many with all coordinates different, where the axes would span 2e5^5 points.
TEST_F(LossTable, many_lines_are_read_in_seconds) {
    constexpr int count = 200000;
    std::string grid;
    std::string scattered;
    for (int i = 0; i < count; ++i) {
        const std::string a = std::to_string(i % 100);
        const std::string b = std::to_string(i / 100 % 100);
        const std::string c = std::to_string(i / 10000);
        const std::string n = std::to_string(count - i);
        grid.append(a).append(" ").append(b).append(" ").append(c).append(" 0 0 ").append(n).append("\n");
        for (int column = 0; column < 6; ++column) {
            scattered.append(n).append(column == 5 ? "\n" : ",");
        }
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(add_iron_loss(grid), 0);
    EXPECT_EQ(loss({99, 98, 17, 0, 0}), count - (99.0 + 9800.0 + 170000.0));
    EXPECT_EQ(add_iron_loss(scattered), 1);
    EXPECT_EQ(error(), 90024);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    RecordProperty("seconds", std::to_string(elapsed.count()));
    EXPECT_LT(elapsed.count(), 60.0);  // generous: sanitizers, machines at full load
}

}  // namespace
