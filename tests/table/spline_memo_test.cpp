// Coefficients kept of a table's splined lines: whatever changes, a lookup gives what a table without a past gives.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>

#include "table/lookup.h"
#include "table/table.h"

namespace {

// rows x columns, nodes 0, 1, 2 .. stretched a little, values of no regularity.
void fill(KZB_TABLE& table, int rows, int columns) {
    const int sizes[] = {rows, columns};
    ASSERT_EQ(kzb::table_create(table, 2, sizes), 0);
    for (int a = 0; a < 2; ++a) {
        for (int i = 0; i < sizes[a]; ++i) {
            kzb::table_set_axis_value(&table, a + 1, i, a == 0 ? i + 0.1 * std::sin(3.0 * i) : i);
        }
    }
    for (int i = 0; i < rows; ++i) {
        for (int k = 0; k < columns; ++k) {
            const int at[] = {i, k};
            kzb::table_set_value(&table, at, std::cos(1.7 * i) + 10.0 * k);
        }
    }
}

double at(const KZB_TABLE& table, double position, int column) {
    const double point[] = {position, static_cast<double>(column)};
    double result = 0.0;
    double timing[kzb::timing_slots] = {};
    kzb::table_lookup(kzb::Scheme::spline, &table, point, result, timing, {});
    return result;
}

// A table of the same content that nobody has looked at.
KZB_TABLE without_a_past(const KZB_TABLE& table) {
    KZB_TABLE fresh;
    EXPECT_EQ(kzb::table_create(fresh, table.dim, table.sizes.data()), 0);
    for (int a = 0; a < table.dim; ++a) {
        const auto axis = static_cast<std::size_t>(a);
        for (int i = 0; i < table.sizes[axis]; ++i) {
            kzb::table_set_axis_value(&fresh, a + 1, i, table.axes[axis][static_cast<std::size_t>(i)]);
        }
        kzb::table_set_cyclic_flag(&fresh, a + 1, table.cyclic[axis]);
    }
    for (std::size_t i = 0; i < table.values.size(); ++i) {
        fresh.values[i] = table.values[i];
    }
    return fresh;
}

void expect_no_memory(const KZB_TABLE& table) {
    for (int column = 0; column < table.sizes[1]; ++column) {
        for (const double position : {0.3, 2.6, 4.49}) {
            const double kept = at(table, position, column);
            EXPECT_EQ(std::bit_cast<std::uint64_t>(kept),
                      std::bit_cast<std::uint64_t>(at(without_a_past(table), position, column)))
                << position << ", column " << column;
        }
    }
}

TEST(spline_memo, a_second_lookup_of_a_line_gives_the_bits_of_the_first) {
    KZB_TABLE table;
    fill(table, 7, 3);
    const double first = at(table, 2.6, 1);
    EXPECT_GT(at(table, 2.6, 2), first + 9.0);  // another line
    EXPECT_EQ(at(table, 2.6, 1), first);
    expect_no_memory(table);
}

TEST(spline_memo, a_changed_value_is_seen) {
    KZB_TABLE table;
    fill(table, 7, 3);
    expect_no_memory(table);
    const double before = at(table, 2.6, 1);
    const int where[] = {6, 1};  // far from the query, but on its line
    kzb::table_set_value(&table, where, 50.0);
    EXPECT_NE(at(table, 2.6, 1), before);
    expect_no_memory(table);
}

TEST(spline_memo, a_changed_node_is_seen) {
    KZB_TABLE table;
    fill(table, 7, 3);
    expect_no_memory(table);
    const double before = at(table, 2.6, 1);
    kzb::table_set_axis_value(&table, 1, 6, 6.75);
    EXPECT_NE(at(table, 2.6, 1), before);
    expect_no_memory(table);
}

TEST(spline_memo, a_zero_that_changes_its_sign_is_seen) {
    KZB_TABLE table;
    fill(table, 3, 1);
    for (std::size_t i = 0; i < 3; ++i) {
        table.values[i] = -0.0;
    }
    EXPECT_TRUE(std::signbit(at(table, 0.3, 0)) == std::signbit(at(without_a_past(table), 0.3, 0)));
    for (std::size_t i = 0; i < 3; ++i) {
        table.values[i] = 0.0;
    }
    EXPECT_FALSE(std::signbit(at(table, 0.3, 0)));
}

TEST(spline_memo, a_table_of_another_shape_under_the_same_name_starts_anew) {
    KZB_TABLE table;
    fill(table, 7, 6);
    expect_no_memory(table);
    kzb::table_free(table);
    fill(table, 6, 7);  // as many values
    expect_no_memory(table);
    kzb::table_free(table);
    fill(table, 7, 6);
    expect_no_memory(table);
}

TEST(spline_memo, lines_along_the_other_axis_are_right_too) {
    KZB_TABLE table;
    fill(table, 7, 5);
    expect_no_memory(table);
    const double on_node = table.axes[0][3];
    for (const double column : {0.5, 1.5, 3.25}) {
        const double point[] = {on_node, column};
        double kept = 0.0;
        double fresh = 0.0;
        double timing[kzb::timing_slots] = {};
        kzb::table_lookup(kzb::Scheme::spline, &table, point, kept, timing, {});
        const KZB_TABLE other = without_a_past(table);
        kzb::table_lookup(kzb::Scheme::spline, &other, point, fresh, timing, {});
        EXPECT_EQ(kept, fresh);
        // The values rise by 10 a column, evenly: the spline is that line.
        EXPECT_NEAR(kept, std::cos(1.7 * 3) + 10.0 * column, 1e-12);
    }
}

TEST(spline_memo, long_lines_and_large_tables_are_not_kept) {
    KZB_TABLE table;
    fill(table, kzb::SplineMemo::most_rows + 1, 1);
    expect_no_memory(table);
    kzb::table_free(table);
    fill(table, kzb::SplineMemo::most_rows, kzb::SplineMemo::most_values / kzb::SplineMemo::most_rows);
    at(table, 0.3, 0);
    at(table, 0.3, 15);
    EXPECT_EQ(at(table, 2.6, 15), at(without_a_past(table), 2.6, 15));
}

}  // namespace
