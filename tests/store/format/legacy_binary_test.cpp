// Old binary files: sections, texts between two bytes, keys of `control`, tables. Expected values are those that the
// test itself puts into the bytes.
#include <gmock/gmock.h>

#include <limits>

#include "store/format/legacy_bytes.h"

namespace kzb::test {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using LegacyBinary = LegacyFile;

TEST_F(LegacyBinary, all_sections_make_one_store) {
    LegacyBytes file;
    file.version(900.5).control(10004, 0).key("coef_flux").float64(0.25);
    file.parameter(2).key("RU").float64(1.5).key("RA").float64(2.5);
    file.settings(3).key("n").raw("i").int32(-7).key("x").raw("d").float64(0.125).key("t").raw("s").key("two words");
    two_axes(file.table("flux", {0, 1}));
    EXPECT_EQ(read(file.str()), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(err_, "");
    EXPECT_EQ(store_.version, 900.5);
    EXPECT_THAT(category_names(),
                ElementsAre("version", "control", "parameter", "settings", "distance_flux", "information"));
    EXPECT_EQ(get_double(store_, "version", "version"), 900.5);
    EXPECT_EQ(get_int(store_, "control", "motor_type"), 10004);
    EXPECT_EQ(get_double(store_, "control", "coef_flux"), 0.25);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.5);
    EXPECT_EQ(get_double(store_, "parameter", "RA"), 2.5);
    EXPECT_EQ(get_int(store_, "settings", "n"), -7);
    EXPECT_EQ(get_double(store_, "settings", "x"), 0.125);
    EXPECT_STREQ(get_string(store_, "settings", "t"), "two words");
    expect_two_axes(table("distance_flux", "flux"));
    EXPECT_EQ(table("distance_flux", "flux").cyclic, (std::vector<int>{0, 1}));
    EXPECT_EQ(get_int(store_, "distance_flux", "reading_method"), 1);
    EXPECT_EQ(get_int(store_, "distance_flux", "table_type"), 2);
    EXPECT_EQ(get_string(store_, "distance_flux", "ShaftName"), nullptr);
}

// ---- Sections

TEST_F(LegacyBinary, file_without_a_section_reads_as_an_empty_one) {
    for (const char* bytes : {"", "$DORN", "hello, world", "*unknown\n", "*unknown", "*", "\n$DORN-KZb,#\n"}) {
        KZB_STORE store;
        const std::string file = write(bytes);
        EXPECT_EQ(read_model_file(store, file.c_str()), 0) << bytes;
        EXPECT_EQ(store.error, 0) << bytes;
        ASSERT_EQ(store.categories.size(), 1U) << bytes;
        EXPECT_EQ(store.categories[0].name, "information");
    }
}

TEST_F(LegacyBinary, unknown_section_is_passed_over) {
    EXPECT_EQ(read(LegacyBytes().section("other").raw("bytes").parameter(1).key("RU").float64(3.0).str()), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 3.0);
}

TEST_F(LegacyBinary, section_word_that_cannot_be_read_leaves_90004) {
    for (const std::string& mark : {std::string("*vers*ion\n"), LegacyBytes().section(std::string(256, 'w')).str()}) {
        store_.error = 0;
        EXPECT_EQ(read(mark), 1) << mark;
        EXPECT_EQ(store_.error, 90004) << mark;
        EXPECT_EQ(told(binary_fault), 0U);
    }
    store_.error = 0;
    EXPECT_EQ(read(LegacyBytes().section(std::string(255, 'w')).str()), 0);
    EXPECT_EQ(store_.error, 0);
}

TEST_F(LegacyBinary, version_lies_between_0_and_1000) {
    for (const double good : {0.0, 900.5, 1000.0}) {
        EXPECT_EQ(read(LegacyBytes().version(good).str()), 0);
        EXPECT_EQ(store_.version, good);
        EXPECT_EQ(get_double(store_, "version", "version"), good);
    }
    for (const double bad : {-0.5, 1000.5, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
        KZB_STORE store;
        const std::string file = write(LegacyBytes().version(bad).str());
        EXPECT_EQ(captured([&] { return read_model_file(store, file.c_str()); }), 1) << bad;
        EXPECT_EQ(told(binary_fault), 1U);
        EXPECT_FALSE(has_category(store, "version"));
        EXPECT_EQ(store.version, 0.0);
        EXPECT_EQ(store.error, 0);
    }
    EXPECT_EQ(read("*version\n1234567"), 1);  // a byte short
}

TEST_F(LegacyBinary, negative_counts_fail_and_none_is_no_entry) {
    EXPECT_EQ(read(LegacyBytes().parameter(-1).str()), 1);
    EXPECT_EQ(told(binary_fault), 1U);
    EXPECT_EQ(read(LegacyBytes().settings(-1).str()), 1);
    EXPECT_EQ(told(binary_fault), 1U);
    EXPECT_EQ(read(LegacyBytes().parameter(0).settings(0).str()), 0);
}

TEST_F(LegacyBinary, more_entries_announced_than_there_are_fail_with_those_kept) {
    EXPECT_EQ(read(LegacyBytes().parameter(0x7fffffff).key("RU").float64(4.0).str()), 1);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 4.0);
    EXPECT_EQ(read(LegacyBytes().settings(0x7fffffff).key("n").raw("i").int32(5).str()), 1);
    EXPECT_EQ(get_int(store_, "settings", "n"), 5);
}

TEST_F(LegacyBinary, setting_of_an_unknown_type_fails) {
    EXPECT_EQ(read(LegacyBytes().settings(1).key("n").raw("x").int32(5).str()), 1);
    EXPECT_EQ(told(binary_fault), 1U);
}

// ---- Texts between two bytes

TEST_F(LegacyBinary, text_has_at_most_255_bytes_and_no_star) {
    const std::string longest(255, 'k');
    EXPECT_EQ(read(LegacyBytes().parameter(1).key(longest).float64(1.0).str()), 0);
    EXPECT_EQ(get_double(store_, "parameter", longest), 1.0);
    EXPECT_EQ(read(LegacyBytes().parameter(1).key(longest + "k").float64(1.0).str()), 1);
    EXPECT_EQ(told(binary_fault), 1U);
    EXPECT_EQ(read(LegacyBytes().settings(1).key("t").raw("s").key("a*b").str()), 1);
    EXPECT_EQ(read(LegacyBytes().parameter(1).key("a*b").float64(1.0).str()), 1);
}

TEST_F(LegacyBinary, bytes_in_front_of_a_text_are_skipped) {
    EXPECT_EQ(read(LegacyBytes().raw("front").parameter(1).raw("*\n\0x").key("RU").float64(1.0).str()), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.0);
}

TEST_F(LegacyBinary, end_of_the_file_ends_a_text_without_failure) {
    EXPECT_EQ(read(LegacyBytes().settings(1).key("t").raw("s").raw("\"half").str()), 0);
    EXPECT_STREQ(get_string(store_, "settings", "t"), "half");
    EXPECT_EQ(read("*settings"), 1);  // the word is whole, its section is not there
    EXPECT_EQ(told(binary_fault), 1U);
}

TEST_F(LegacyBinary, text_stands_in_the_store_as_in_the_file) {
    const std::string shift_jis = "\x83\x82\x81\x5b\x83\x5e";
    EXPECT_EQ(read(LegacyBytes().settings(1).key("t").raw("s").key(shift_jis).str()), 0);
    EXPECT_EQ(get_string(store_, "settings", "t"), shift_jis);
    EXPECT_EQ(out_, "");
}

// ---- Control

TEST_F(LegacyBinary, control_keys_have_their_kinds) {
    LegacyBytes file;
    file.version(901.0).control();
    const std::vector<std::string> ints{"motor_type", "number_of_poles", "number_of_splinetables", "accuracy_type",
                                        "number_of_tables"};
    const std::vector<std::string> doubles{"beta_zero",     "coef_inertia1", "coef_inertia2", "coef_inductance",
                                           "coef_flux",     "coef_torque",   "coef_magnet",   "coef_material",
                                           "coef_mass1",    "coef_mass2",    "coef_force",    "electrical_length",
                                           "turns_in_coil", "turns_coil2",   "turns_coil1"};
    int number = 10000;
    for (const std::string& name : ints) {
        file.key(name).int32(number++);
    }
    double value = 0.5;
    for (const std::string& name : doubles) {
        file.key(name).float64(value);
        value += 1.0;
    }
    EXPECT_EQ(read(file.str()), 0);
    number = 10000;
    for (const std::string& name : ints) {
        EXPECT_EQ(get_int(store_, "control", name), number++) << name;
    }
    value = 0.5;
    for (const std::string& name : doubles) {
        EXPECT_EQ(get_double(store_, "control", name), value) << name;
        value += 1.0;
    }
    EXPECT_EQ(find_category(store_, "control")->ints.size(), ints.size());
    EXPECT_EQ(find_category(store_, "control")->doubles.size(), doubles.size());
}

TEST_F(LegacyBinary, turns_are_words_below_version_901) {
    for (const char* key : {"turns_in_coil", "turns_coil1", "turns_coil2"}) {
        EXPECT_EQ(read(LegacyBytes().version(900.5).control().key(key).int32(35).key("beta_zero").float64(5.0).str()),
                  0);
        EXPECT_EQ(get_double(store_, "control", key), 35.0);
        EXPECT_EQ(get_int(store_, "control", key), 0);
        EXPECT_EQ(get_double(store_, "control", "beta_zero"), 5.0);
        EXPECT_EQ(
            read(LegacyBytes().version(901.0).control().key(key).float64(35.5).key("beta_zero").float64(6.0).str()), 0);
        EXPECT_EQ(get_double(store_, "control", key), 35.5);
        EXPECT_EQ(get_double(store_, "control", "beta_zero"), 6.0);
    }
}

TEST_F(LegacyBinary, file_without_a_version_counts_turns_in_words) {
    EXPECT_EQ(read(LegacyBytes().control().key("turns_in_coil").int32(20).key("coef_flux").float64(2.0).str()), 0);
    EXPECT_EQ(get_double(store_, "control", "turns_in_coil"), 20.0);
    EXPECT_EQ(get_double(store_, "control", "coef_flux"), 2.0);
}

// The next section, whose first key is unknown to `control`, is read from its mark on.
TEST_F(LegacyBinary, key_outside_the_lists_ends_control_and_is_left) {
    EXPECT_EQ(read(LegacyBytes().control(10000, 3).parameter(1).key("RU").float64(7.0).str()), 0);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 7.0);
    EXPECT_EQ(read(LegacyBytes().control().key("other").settings(1).key("n").raw("i").int32(9).str()), 0);
    EXPECT_EQ(get_int(store_, "settings", "n"), 9);
    EXPECT_FALSE(has_parameter(store_, "control", "other"));
}

// The builder's ignored word holds a quote and a star: read as a key of `control` it fails, and ends the section too.
TEST_F(LegacyBinary, bytes_behind_control_that_are_no_key_end_it) {
    LegacyBytes file;
    two_axes(file.control(10004, 0).table("flux", {0, 0})).raw("\"").raw(std::string(300, 'x'));
    EXPECT_EQ(read(file.str()), 0);
    expect_two_axes(table("distance_flux", "flux"));
    EXPECT_EQ(read(LegacyBytes().control(10004, 0).settings(1).key("n").raw("i").int32(4).str()), 0);
    EXPECT_EQ(get_int(store_, "settings", "n"), 4);
}

TEST_F(LegacyBinary, control_may_be_followed_by_a_section_without_quotes_or_by_nothing) {
    LegacyBytes file;
    two_axes(file.control(10004, 0).table("flux", {0, 0}));
    EXPECT_EQ(read(file.str()), 0);
    expect_two_axes(table("distance_flux", "flux"));
    EXPECT_EQ(read(LegacyBytes().control(10004, 0).str()), 0);
}

TEST_F(LegacyBinary, more_than_1000_control_entries_leave_90003) {
    LegacyBytes file;
    file.control();
    for (int i = 0; i < 999; ++i) {
        file.key("coef_flux").float64(i);
    }
    file.key("motor_type").int32(10004);
    EXPECT_EQ(read(file.str()), 0);
    EXPECT_EQ(store_.error, 0);
    EXPECT_EQ(get_double(store_, "control", "coef_flux"), 998.0);
    EXPECT_EQ(read(file.key("coef_flux").float64(1.0).str()), 1);
    EXPECT_EQ(store_.error, 90003);
    EXPECT_EQ(told(binary_fault), 1U);
}

TEST_F(LegacyBinary, motor_type_without_an_application_is_told_and_read_on) {
    EXPECT_EQ(read(LegacyBytes().control(10006, 0).parameter(1).key("RU").float64(1.0).str()), 0);
    EXPECT_EQ(told("application is not found."), 1U);
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.0);
}

// ---- Tables

TEST_F(LegacyBinary, shaft_name_stands_with_reading_method_31000_alone) {
    LegacyBytes file;
    file.section("table").int32(31000).section("any").int32(5).key("shaft one").int32(2).int32(1).int32(0);
    EXPECT_EQ(read(two_axes(file).str()), 0);
    expect_two_axes(table("any", "any"));
    EXPECT_STREQ(get_string(store_, "any", "ShaftName"), "shaft one");
    EXPECT_EQ(get_int(store_, "any", "reading_method"), 31000);
    EXPECT_EQ(get_int(store_, "any", "table_type"), 5);
    EXPECT_EQ(table("any", "any").cyclic, (std::vector<int>{1, 0}));
}

// value = 1000 first + 100 second + 10 third + fourth node, nodes 1, 2, ... on each axis.
TEST_F(LegacyBinary, outer_axes_stand_around_the_blocks) {
    LegacyBytes three;
    three.table("t", {0, 0, 1}).int32(2);
    for (const double a : {1.0, 2.0}) {
        three.float64(a).block({1, 2}, {{1, 100 * a + 11, 100 * a + 12}, {2, 100 * a + 21, 100 * a + 22}});
    }
    EXPECT_EQ(read(three.str()), 0);
    EXPECT_EQ(table("t", "t").sizes, (std::vector<int>{2, 2, 2}));
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{111, 112, 121, 122, 211, 212, 221, 222}));

    LegacyBytes four;
    four.table("t", {0, 0, 0, 0}).int32(2);
    for (const double a : {1.0, 2.0}) {
        four.float64(a).int32(3);
        for (const double b : {1.0, 2.0, 3.0}) {
            const double base = 1000 * a + 100 * b + 10;
            four.float64(b).block({1, 2}, {{1, base + 1, base + 2}});
        }
    }
    EXPECT_EQ(read(four.str()), 0);
    const KZB_TABLE& found = table("t", "t");
    EXPECT_EQ(found.sizes, (std::vector<int>{2, 3, 1, 2}));
    EXPECT_EQ(numbers(found.axes[0]), (std::vector<double>{1, 2}));
    EXPECT_EQ(numbers(found.axes[1]), (std::vector<double>{1, 2, 3}));
    EXPECT_EQ(numbers(found.axes[2]), (std::vector<double>{1}));
    EXPECT_EQ(numbers(found.axes[3]), (std::vector<double>{1, 2}));
    EXPECT_EQ(numbers(found.values), (std::vector<double>{1111, 1112, 1211, 1212, 1311, 1312,  //
                                                          2111, 2112, 2211, 2212, 2311, 2312}));
}

TEST_F(LegacyBinary, axes_are_as_many_as_the_file_holds) {
    constexpr int outer = 2000;
    LegacyBytes file;
    file.table("t", std::vector<int>(outer + 2, 0));
    for (int a = 0; a < outer; ++a) {
        file.int32(1).float64(a);
    }
    EXPECT_EQ(read(two_axes(file).str()), 0);
    EXPECT_EQ(table("t", "t").dim, outer + 2);
    EXPECT_EQ(table("t", "t").axes[outer - 1][0], outer - 1);
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{110, 120, 130, 210, 220, 230}));
}

TEST_F(LegacyBinary, table_of_one_axis_or_none_is_no_table) {
    for (const int dim : {1, 0, -1, std::numeric_limits<int>::min()}) {
        LegacyBytes file;
        file.section("table").int32(1).section("t").int32(2).int32(dim).int32(0).int32(3).numbers({1, 2, 3, 4, 5, 6});
        EXPECT_EQ(read(file.str()), 1) << dim;
        EXPECT_EQ(told(binary_fault), 1U) << dim;
        EXPECT_FALSE(has_category(store_, "t")) << dim;
    }
}

TEST_F(LegacyBinary, table_without_a_name_is_refused) {
    LegacyBytes file;
    EXPECT_EQ(read(two_axes(file.table("", {0, 0})).str()), 1);
    EXPECT_EQ(told(binary_fault), 1U);
}

TEST_F(LegacyBinary, sizes_that_the_file_cannot_hold_are_refused_before_memory_is_taken) {
    const int huge = 0x7fffffff;
    for (const std::vector<int>& sizes : {std::vector<int>{huge, huge}, {huge, 1}, {1, huge}, {2, 4}}) {
        LegacyBytes file;
        file.table("t", {0, 0}).int32(sizes[0]).int32(sizes[1]).numbers({1, 2, 3, 4, 5, 6, 7});
        EXPECT_EQ(read(file.str()), 1);
        EXPECT_EQ(find_table(store_, "t", "t"), nullptr);
    }
    LegacyBytes outer;
    two_axes(outer.table("t", {0, 0, 0}).int32(huge).float64(1.0));
    EXPECT_EQ(read(outer.str()), 1);
    EXPECT_EQ(find_table(store_, "t", "t"), nullptr);
    EXPECT_EQ(read(LegacyBytes().section("table").int32(1).section("t").int32(2).int32(huge).str()), 1);
    EXPECT_FALSE(has_category(store_, "u"));
}

TEST_F(LegacyBinary, sizes_below_one_are_refused) {
    for (const std::vector<int>& sizes : {std::vector<int>{0, 3}, {2, 0}, {-1, 3}, {2, -3}}) {
        LegacyBytes file;
        file.table("t", {0, 0}).int32(sizes[0]).int32(sizes[1]).numbers(std::vector<double>(20, 1.0));
        EXPECT_EQ(read(file.str()), 1);
        EXPECT_EQ(told("The num of row is zero.\n"), 1U);
        EXPECT_EQ(find_table(store_, "t", "t"), nullptr);
    }
    LegacyBytes outer;
    EXPECT_EQ(read(two_axes(outer.table("t", {0, 0, 0}).int32(0).float64(1.0)).str()), 1);
}

// The first block gives the shape 2 x 2; of the second, 3 x 3, what has a place is kept.
TEST_F(LegacyBinary, later_block_with_other_sizes_is_cut_to_the_table) {
    LegacyBytes file;
    file.table("t", {0, 0, 0}).int32(3).float64(1.0).block({1, 2}, {{1, 11, 12}, {2, 21, 22}});
    file.float64(2.0).block({1, 2, 3}, {{1, 31, 32, 33}, {2, 41, 42, 43}, {3, 51, 52, 53}});
    file.float64(3.0).block({1}, {{1, 61}});
    EXPECT_EQ(read(file.parameter(1).key("RU").float64(1.5).str()), 0);
    EXPECT_EQ(told("index is invalid\n"), 1U);
    EXPECT_EQ(table("t", "t").sizes, (std::vector<int>{3, 2, 2}));
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{11, 12, 21, 22, 31, 32, 41, 42, 61, 0, 0, 0}));
    EXPECT_EQ(get_double(store_, "parameter", "RU"), 1.5);  // the sections behind are found
}

TEST_F(LegacyBinary, table_may_be_larger_than_the_blocks_that_follow_the_first) {
    LegacyBytes file;
    file.table("t", {0, 0, 0}).int32(4).float64(1.0).block({1, 2, 3}, {{1, 1, 2, 3}, {2, 4, 5, 6}});
    for (const double node : {2.0, 3.0, 4.0}) {
        file.float64(node).block({1}, {{1, 9}});
    }
    EXPECT_EQ(read(file.str()), 0);
    EXPECT_EQ(table("t", "t").sizes, (std::vector<int>{4, 2, 3}));
    EXPECT_EQ(numbers(table("t", "t").axes[0]), (std::vector<double>{1, 2, 3, 4}));
}

TEST_F(LegacyBinary, later_inner_axis_with_another_size_is_cut_to_the_table) {
    LegacyBytes file;
    file.table("t", {0, 0, 0, 0}).int32(2).float64(1.0).int32(1).float64(5.0).block({1}, {{1, 11}});
    file.float64(2.0).int32(2).float64(5.0).block({1}, {{1, 12}}).float64(6.0).block({1}, {{1, 13}});
    file.raw(std::string(64, ' '));
    EXPECT_EQ(read(file.str()), 0);
    EXPECT_EQ(told("index is invalid\n"), 1U);
    EXPECT_EQ(table("t", "t").sizes, (std::vector<int>{2, 1, 1, 1}));
    EXPECT_EQ(numbers(table("t", "t").axes[1]), (std::vector<double>{5}));
    EXPECT_EQ(numbers(table("t", "t").values), (std::vector<double>{11, 12}));
}

TEST_F(LegacyBinary, table_cut_by_the_end_of_the_file_fails) {
    LegacyBytes file;
    const std::string whole = two_axes(file.table("t", {1, 1})).str();
    EXPECT_EQ(read(whole.substr(0, whole.size() - 1)), 1);
    EXPECT_EQ(told(binary_fault), 1U);
}

TEST_F(LegacyBinary, d_flux_is_a_table_and_its_first_value_a_double) {
    LegacyBytes file;
    EXPECT_EQ(read(two_axes(file.control(10000, 1).table("d_flux", {0, 0})).str()), 0);
    expect_two_axes(table("d_flux", "d_flux"));
    EXPECT_EQ(get_double(store_, "d_flux", "d_flux"), 110.0);
}

TEST_F(LegacyBinary, other_tables_give_no_double) {
    LegacyBytes file;
    EXPECT_EQ(read(two_axes(file.table("e_flux", {0, 0})).str()), 0);
    EXPECT_TRUE(find_category(store_, "e_flux")->doubles.empty());
}

TEST_F(LegacyBinary, table_met_twice_holds_the_second_body) {
    LegacyBytes file;
    file.table("t", {1, 1}).block({1}, {{1, 5}});
    EXPECT_EQ(read(two_axes(file.table("t", {0, 1})).str()), 0);
    expect_two_axes(table("t", "t"));
    EXPECT_EQ(table("t", "t").cyclic, (std::vector<int>{0, 1}));
    EXPECT_EQ(find_category(store_, "t")->tables.size(), 1U);
}

}  // namespace
}  // namespace kzb::test
