// Bracket search: pairs, tolerance, status.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "table/lookup.h"

namespace {

KZB_TABLE table_of(const std::vector<std::vector<double>>& grids) {
    KZB_TABLE table;
    std::vector<int> rows;
    for (const auto& grid : grids) {
        rows.push_back(static_cast<int>(grid.size()));
    }
    kzb::table_create(table, static_cast<int>(rows.size()), rows.data());
    for (std::size_t a = 0; a < grids.size(); ++a) {
        for (std::size_t i = 0; i < grids[a].size(); ++i) {
            kzb::table_set_axis_value(&table, static_cast<int>(a) + 1, static_cast<int>(i), grids[a][i]);
        }
    }
    return table;
}

struct Found {
    int lo, hi, status;
    bool operator==(const Found&) const = default;
};

Found find(const std::vector<double>& grid, double x) {
    const KZB_TABLE table = table_of({grid});
    kzb::Bracket bracket;
    const int status = kzb::table_find_bracket(table, &x, &bracket);
    return {bracket.lo, bracket.hi, status};
}

TEST(Bracket, inner_node_belongs_to_the_segment_below) {
    EXPECT_EQ(find({0, 1, 2, 3}, 2.0), (Found{1, 2, 0}));
    EXPECT_EQ(find({0, 1, 2, 3}, 0.0), (Found{0, 1, 0}));
    EXPECT_EQ(find({0, 1, 2, 3}, 3.0), (Found{2, 3, 0}));
    EXPECT_EQ(find({0, 1, 2, 3}, 1.5), (Found{1, 2, 0}));
    // Within the tolerance above a node the lower segment still holds it, beyond it no longer.
    EXPECT_EQ(find({0, 1, 2, 3}, 1.0 + 9e-11), (Found{0, 1, 0}));
    EXPECT_EQ(find({0, 1, 2, 3}, 1.0 + 2e-10), (Found{1, 2, 0}));
}

TEST(Bracket, tolerance_at_the_ends) {
    EXPECT_EQ(find({0, 1, 2}, -9e-11), (Found{0, 1, 0}));
    EXPECT_EQ(find({0, 1, 2}, -2e-10), (Found{0, 1, 80001}));
    EXPECT_EQ(find({0, 1, 2}, 2.0 + 9e-11), (Found{1, 2, 0}));
    EXPECT_EQ(find({0, 1, 2}, 2.0 + 2e-10), (Found{1, 2, 80002}));
    // Exactly on the widened end neither side takes it.
    EXPECT_EQ(find({0, 1, 2}, -1e-10), (Found{-1, -1, 0}));
}

TEST(Bracket, single_node_has_no_outside) {
    EXPECT_EQ(find({5}, -1e9), (Found{0, 0, 0}));
    EXPECT_EQ(find({5}, std::nan("")), (Found{0, 0, 0}));
}

TEST(Bracket, not_a_number_and_missing_grid_have_none) {
    EXPECT_EQ(find({0, 1, 2}, std::nan("")), (Found{-1, -1, 0}));
    KZB_TABLE table;
    const int rows[] = {3};
    kzb::table_create(table, 1, rows);
    const double x = 1.0;
    kzb::Bracket bracket{7, 7};
    EXPECT_EQ(kzb::table_find_bracket(table, &x, &bracket), 0);
    EXPECT_EQ(bracket.lo, -1);
    EXPECT_EQ(bracket.hi, -1);
}

TEST(Bracket, last_offending_axis_decides_the_status) {
    const KZB_TABLE table = table_of({{0, 1}, {0, 1}, {0, 1}});
    kzb::Bracket brackets[3];
    const double low_high[] = {-5.0, 9.0, 0.5};
    EXPECT_EQ(kzb::table_find_bracket(table, low_high, brackets), 80002);
    const double high_low[] = {5.0, -9.0, 0.5};
    EXPECT_EQ(kzb::table_find_bracket(table, high_low, brackets), 80001);
}

TEST(Bracket, unordered_grids_take_the_first_segment_that_holds_the_point) {
    // Node by node: 3 lies in 0..5 (i = 0) though also in 2..7 (i = 2).
    EXPECT_EQ(find({0, 5, 2, 7}, 3.0), (Found{0, 1, 0}));
    // 6 lies in 2..7 only; descending pairs hold nothing.
    EXPECT_EQ(find({0, 5, 2, 7}, 6.0), (Found{2, 3, 0}));
    EXPECT_EQ(find({0, 9, 8, 7, 6, 5, 4, 10, 12}, 9.5), (Found{6, 7, 0}));
    EXPECT_EQ(find({0, -3, 2}, 1.0), (Found{1, 2, 0}));
}

TEST(Bracket, long_grids_find_every_segment) {
    std::vector<double> grid;
    for (int i = 0; i < 50; ++i) {
        grid.push_back(i * 1.5);
    }
    for (int i = 0; i < 49; ++i) {
        EXPECT_EQ(find(grid, i * 1.5 + 0.7), (Found{i, i + 1, 0}));
    }
}

}  // namespace
