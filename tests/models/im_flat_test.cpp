// The induction machine of constants: tables of one value each are read without a search. Nobody can tell.
#include <gtest/gtest.h>

#include "im_files.h"

namespace kzb_test::im_flat_test {
namespace {

using kzb::ImFlatTables;
using kzb::Scheme;

constexpr const char* category = "InductionParam_HigherAccuracy";

struct FlatTables : testing::Test {
    FlatTables() {
        const char* const keys[] = {"L11_table", "M12_table", "M21_table", "L22_table", "R2_table"};
        for (std::size_t k = 0; k < ImFlatTables::count; ++k) {
            constant(store, category, keys[k], {nodes(-100.0, 100.0, 2), nodes(-100.0, 100.0, 2)},
                     0.3 + 0.1 * double(k));
            refs[k] = kzb::TableRef(category, keys[k]);
        }
    }
    ImFlatTables::Refs all() { return {&refs[0], &refs[1], &refs[2], &refs[3], &refs[4]}; }
    // Five lookups as the model makes them.
    ImFlatTables::Values searched(Scheme scheme, const double* point) {
        ImFlatTables::Values values{};
        const char* const names[] = {"Linear", "Spline", "Cubic", "Spline6", "Spline4"};
        const kzb::Method method = kzb::Method::named(names[static_cast<int>(scheme)]);
        EXPECT_EQ(method.scheme, scheme);
        for (std::size_t k = 0; k < values.size(); ++k) {
            values[k] = refs[k].at(store, method, point, 2);
        }
        return values;
    }
    bool learn(Scheme scheme, const double* point) {
        flat.begin(store);
        const ImFlatTables::Values values = searched(scheme, point);
        flat.end(store, scheme, point, all(), values);
        ImFlatTables::Values read{};
        return flat.look_up(store, scheme, point, read);
    }

    KZB_STORE store;
    std::array<kzb::TableRef, ImFlatTables::count> refs;
    ImFlatTables flat;
};

constexpr double near_zero[] = {0.0, 1.0};
constexpr double elsewhere[] = {-99.0, 42.42};

TEST_F(FlatTables, give_the_values_and_the_calls_of_five_searches) {
    for (const Scheme scheme : {Scheme::linear, Scheme::cubic, Scheme::spline4}) {
        ASSERT_TRUE(learn(scheme, near_zero));
        std::array<double, kzb::timing_slots> before{};
        std::copy_n(store.timing, kzb::timing_slots, before.begin());
        const ImFlatTables::Values expected = searched(scheme, elsewhere);
        std::array<double, kzb::timing_slots> calls{};
        for (std::size_t i = 0; i < calls.size(); ++i) {
            calls[i] = store.timing[i] - before[i];
            store.timing[i] = before[i];
        }
        ImFlatTables::Values values{};
        ASSERT_TRUE(flat.look_up(store, scheme, elsewhere, values));
        EXPECT_EQ(values, expected);
        EXPECT_EQ(values, (ImFlatTables::Values{0.3, 0.3 + 0.1, 0.3 + 0.1 * 2, 0.3 + 0.1 * 3, 0.3 + 0.1 * 4}));
        double counted = 0.0;
        for (std::size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(store.timing[i] - before[i], calls[i]) << i;
            counted += calls[i];
        }
        EXPECT_GT(counted, 0.0);
    }
}

TEST_F(FlatTables, see_a_value_that_all_nodes_share_anew) {
    ASSERT_TRUE(learn(Scheme::linear, near_zero));
    im_fill(store, "R2_table", 7.5);
    ImFlatTables::Values values{};
    ASSERT_TRUE(flat.look_up(store, Scheme::linear, elsewhere, values));
    EXPECT_EQ(values[4], 7.5);
}

TEST_F(FlatTables, have_to_be_searched_where_a_search_could_tell_more) {
    ImFlatTables::Values values{};
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, near_zero, values));  // nothing known yet
    ASSERT_TRUE(learn(Scheme::linear, near_zero));
    EXPECT_FALSE(flat.look_up(store, Scheme::cubic, near_zero, values));
    const double outside[] = {0.0, 100.5};
    const double nothing[] = {std::nan(""), 0.0};
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, outside, values));
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, nothing, values));
    store.debug_lines = true;
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, near_zero, values));
    store.debug_lines = false;
    store.switches.generic_path = true;
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, near_zero, values));
    store.switches.generic_path = false;
    EXPECT_TRUE(flat.look_up(store, Scheme::linear, near_zero, values));
    ++store.revision;
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, near_zero, values));
}

TEST_F(FlatTables, are_not_flat_with_two_values_or_a_zero) {
    ASSERT_TRUE(learn(Scheme::linear, near_zero));
    KZB_TABLE* const table = kzb::find_table(store, category, "M12_table");
    ImFlatTables::Values values{};
    table->values[3] = 0.5;
    EXPECT_FALSE(flat.look_up(store, Scheme::linear, near_zero, values));
    EXPECT_FALSE(learn(Scheme::linear, near_zero));
    for (std::size_t i = 0; i < 4; ++i) {
        table->values[i] = -0.0;  // a search gives it another sign
    }
    EXPECT_FALSE(learn(Scheme::linear, near_zero));
}

TEST_F(FlatTables, are_not_known_by_schemes_of_more_than_neighbours) {
    EXPECT_FALSE(learn(Scheme::spline, near_zero));
    EXPECT_FALSE(learn(Scheme::spline6, near_zero));
}

TEST_F(FlatTables, have_two_nodes_an_axis) {
    constant(store, category, "L22_table", {nodes(-100.0, 100.0, 3), nodes(-100.0, 100.0, 2)}, 0.5);
    EXPECT_FALSE(learn(Scheme::linear, near_zero));
}

}  // namespace
}  // namespace kzb_test::im_flat_test
