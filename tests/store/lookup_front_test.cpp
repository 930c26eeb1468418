// The store's front of a lookup: names, error codes, fold, resolution through changes.
#include "store/lookup_front.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>

#include "own_folder.h"
#include "test_store.h"

using kzb_test::TestStore;

namespace {

using LookupFront = kzb_test::OwnFolder;

double at(KZB_STORE* store, const char* category, const char* key, double x, const char* method) {
    return kzb_get_table_interpolated_value(category, key, &x, method, store);
}

TEST_F(LookupFront, unknown_method_gives_no_value_and_no_error) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_EQ(at(store, "c", "t", 0.5, "linear"), 1.7976931348623157e308);
    EXPECT_EQ(at(store, "c", "t", 0.5, ""), 1.7976931348623157e308);
    EXPECT_EQ(at(store, "c", "absent", 0.5, "linear"), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 0);
}

// A torque table of phase and position in a file with the symmetry; at the phase 135 degrees the fold turns the sign,
// at 45 degrees it does not.
TEST_F(LookupFront, unknown_method_on_a_folded_torque_table_gives_no_value_times_the_factor) {
    TestStore store;
    kzb_put_int("control", "use_phase_symmetry", 1, store);
    kzb_put_int("control", "motor_type", 10000, store);
    const int sizes[2] = {2, 2};
    kzb_create_table("harmonic_torque", "torque_ibeta", 2, sizes, store);
    for (int i = 0; i < 2; ++i) {
        kzb_set_table_axis_value("harmonic_torque", "torque_ibeta", 1, i, 90.0 * i, store);
        kzb_set_table_axis_value("harmonic_torque", "torque_ibeta", 2, i, 360.0 * i, store);
    }
    const double flipped[2] = {135.0, 10.0};
    const double plain[2] = {45.0, 10.0};
    const auto look_up = [&](const double* x) {
        return kzb_get_table_interpolated_value("harmonic_torque", "torque_ibeta", x, "other", store);
    };
    EXPECT_EQ(look_up(flipped), -1.7976931348623157e308);
    EXPECT_EQ(look_up(plain), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST_F(LookupFront, absent_category_leaves_no_error_and_absent_key_leaves_90006) {
    TestStore store;
    kzb_put_int("c", "k", 1, store);
    EXPECT_EQ(at(store, "absent", "t", 0.5, "Linear"), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 0);
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 1.7976931348623157e308);
    EXPECT_EQ(kzb_has_error(store), 90006);
}

TEST_F(LookupFront, range_errors_clamp_and_stay_until_reset) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_EQ(at(store, "c", "t", -1.0, "Linear"), 2.0);
    EXPECT_EQ(kzb_has_error(store), 80001);
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 3.0);
    EXPECT_EQ(kzb_has_error(store), 80001);
    EXPECT_EQ(at(store, "c", "t", 2.0, "Cubic"), 4.0);
    EXPECT_EQ(kzb_has_error(store), 80002);
    kzb_reset_error(store);
    EXPECT_EQ(kzb_has_error(store), 0);
}

TEST_F(LookupFront, callers_values_are_never_changed) {
    TestStore store;
    store.line("c", "t", {0.0, 10.0}, {2.0, 4.0});
    kzb_set_table_cyclic_flag("c", "t", 1, 1, store);
    double x = 25.0;
    EXPECT_EQ(kzb_get_table_interpolated_value("c", "t", &x, "Linear", store), 3.0);
    EXPECT_EQ(x, 25.0);
}

// Four axes, the first one cyclic over a full turn. The straight path reads pairs along the last axis and takes the end
// of the turn as its start; the general path reads the stored end. At 270 degrees: (2 + 1) / 2 against (2 + 9) / 2.
TEST_F(LookupFront, general_path_is_taken_while_its_variable_stands_even_empty) {
    TestStore store;
    const int sizes[4] = {3, 2, 2, 2};
    kzb_create_table("c", "t", 4, sizes, store);
    kzb_set_table_cyclic_flag("c", "t", 1, 1, store);
    const double slab[3] = {1.0, 2.0, 9.0};
    for (int flat = 0; flat < 24; ++flat) {
        const int index[4] = {flat / 8, flat / 4 % 2, flat / 2 % 2, flat % 2};
        kzb_set_table_value("c", "t", index, slab[index[0]], store);
        for (int axis = 1; axis <= 4; ++axis) {
            const int node = index[axis - 1];
            kzb_set_table_axis_value("c", "t", axis, node, axis == 1 ? 180.0 * node : node, store);
        }
    }
    const double point[4] = {270.0, 0.5, 0.5, 0.5};
    const auto value = [&] { return kzb_get_table_interpolated_value("c", "t", point, "Linear", store); };
    EXPECT_EQ(value(), 1.5);
    setenv("USE_GENERIC_INTERPOLATION_X", "1", 1);
    EXPECT_EQ(value(), 1.5);
    unsetenv("USE_GENERIC_INTERPOLATION_X");
    setenv("USE_GENERIC_INTERPOLATION", "", 1);
    EXPECT_EQ(value(), 5.5);
    EXPECT_EQ(value(), 5.5);
    unsetenv("USE_GENERIC_INTERPOLATION");
    EXPECT_EQ(value(), 1.5);
}

TEST_F(LookupFront, changed_table_is_seen_by_the_next_lookup) {
    TestStore store;
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 3.0);
    const int first = 0;
    kzb_set_table_value("c", "t", &first, 6.0, store);
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 5.0);
    store.line("c", "t", {0.0, 2.0}, {0.0, 8.0});
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 2.0);
    for (int i = 0; i < 40; ++i) {  // moves the records of the list
        store.line("c", ("filler" + std::to_string(i)).c_str(), {0.0}, {0.0});
    }
    EXPECT_EQ(at(store, "c", "t", 0.5, "Linear"), 2.0);
}

TEST_F(LookupFront, texts_that_change_behind_one_address_are_read_anew) {
    TestStore store;
    store.line("c", "a", {0.0, 1.0}, {2.0, 4.0});
    store.line("c", "b", {0.0, 1.0}, {20.0, 40.0});
    char key[2] = "a";
    EXPECT_EQ(at(store, "c", key, 0.5, "Linear"), 3.0);
    key[0] = 'b';
    EXPECT_EQ(at(store, "c", key, 0.5, "Linear"), 30.0);
}

TEST_F(LookupFront, kept_reference_notices_that_its_table_was_made_later) {
    TestStore store;
    kzb::TableRef table("c", "t");
    const kzb::Method linear = kzb::Method::named("Linear");
    const double x = 0.5;
    EXPECT_EQ(table.at(*store, linear, &x, 1), kzb::KZB_NO_VALUE);
    EXPECT_FALSE(table.exists(*store));
    EXPECT_EQ(table.dim(*store), 0);
    store.line("c", "t", {0.0, 1.0}, {2.0, 4.0});
    EXPECT_TRUE(table.exists(*store));
    EXPECT_EQ(table.dim(*store), 1);
    EXPECT_EQ(table.at(*store, linear, &x, 1), 3.0);
}

TEST_F(LookupFront, axes_beyond_the_given_values_are_seen_as_zero) {
    TestStore store;
    const int sizes[2] = {2, 2};
    kzb_create_table("c", "t", 2, sizes, store);
    for (int i = 0; i < 2; ++i) {
        kzb_set_table_axis_value("c", "t", 1, i, i, store);
        kzb_set_table_axis_value("c", "t", 2, i, i, store);
        for (int j = 0; j < 2; ++j) {
            const int at_node[2] = {i, j};
            kzb_set_table_value("c", "t", at_node, 10.0 * i + j, store);
        }
    }
    kzb::TableRef table("c", "t");
    const double x = 0.5;
    EXPECT_EQ(table.at(*store, kzb::Method::named("Linear"), &x, 1), 5.0);
}

TEST_F(LookupFront, components_equal_single_lookups_with_and_without_debug_lines) {
    TestStore store;
    const int sizes[2] = {3, 3};
    kzb_create_table("c", "t", 2, sizes, store);
    for (int i = 0; i < 3; ++i) {
        kzb_set_table_axis_value("c", "t", 1, i, 2.0 * i, store);
        kzb_set_table_axis_value("c", "t", 2, i, i, store);
        for (int j = 0; j < 3; ++j) {
            const int at_node[2] = {i, j};
            kzb_set_table_value("c", "t", at_node, i * i + 0.5 * j, store);
        }
    }
    kzb::TableRef table("c", "t");
    const double x = 1.25;
    for (const bool debug : {false, true}) {
        if (debug) {
            setenv("KZBFILEHANDLER_DEBUG_MODE", "1", 1);
        }
        kzb::read_lookup_switches(*store);
        for (const char* name : {"Linear", "Cubic", "Spline4", "Spline6", "Spline", "other"}) {
            const kzb::Method method = kzb::Method::named(name);
            double together[3];
            table.components(*store, method, &x, 1, 3, together);
            for (int k = 0; k < 3; ++k) {
                const double point[2] = {x, static_cast<double>(k)};
                EXPECT_EQ(together[k], kzb_get_table_interpolated_value("c", "t", point, name, store)) << name << k;
            }
        }
    }
    std::istringstream lines(content("KZBFileHandlerDebug.txt"));
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        ++count;
    }
    EXPECT_EQ(count, 2 * 6 * 3);  // three single lines and three of the components, per method
}

}  // namespace
