// Edges of the five schemes, with values worked out by hand.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "table/kernels.h"
#include "table/lookup.h"

namespace {

KZB_TABLE table_of(const std::vector<std::vector<double>>& grids, const std::vector<double>& values) {
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
    for (std::size_t i = 0; i < values.size(); ++i) {
        table.values[i] = values[i];
    }
    return table;
}

struct Lookup {
    Lookup(const char* method, const KZB_TABLE& table, const std::vector<double>& x, bool generic = false) {
        testing::internal::CaptureStderr();
        status = kzb::table_lookup(kzb::scheme_of(method), &table, x.data(), value, timing, {generic, false});
        printed = testing::internal::GetCapturedStderr();
    }
    int lines() const {
        int count = 0;
        for (std::size_t at = printed.find("index is invalid: "); at != std::string::npos;
             at = printed.find("index is invalid: ", at + 1)) {
            ++count;
        }
        return count;
    }
    int status = -7;
    double value = kzb::KZB_NO_VALUE;
    double timing[20] = {};
    std::string printed;
};

const char* const local_methods[] = {"Linear", "Cubic", "Spline4", "Spline6"};

TEST(Schemes, names_compare_exactly) {
    EXPECT_EQ(kzb::scheme_of("Linear"), kzb::Scheme::linear);
    EXPECT_EQ(kzb::scheme_of("Spline"), kzb::Scheme::spline);
    EXPECT_EQ(kzb::scheme_of("Cubic"), kzb::Scheme::cubic);
    EXPECT_EQ(kzb::scheme_of("Spline6"), kzb::Scheme::spline6);
    EXPECT_EQ(kzb::scheme_of("Spline4"), kzb::Scheme::spline4);
    for (const char* text : {"linear", "Linear ", "Spline5", "", "Cubi"}) {
        EXPECT_EQ(kzb::scheme_of(text), kzb::Scheme::unknown) << text;
    }
    EXPECT_EQ(kzb::scheme_of(nullptr), kzb::Scheme::unknown);
    const KZB_TABLE table = table_of({{0, 1}}, {2, 3});
    const Lookup unknown("nearest", table, {0.5});
    EXPECT_EQ(unknown.status, -1);
    EXPECT_EQ(unknown.value, kzb::KZB_NO_VALUE);
}

TEST(Schemes, below_the_range_the_edge_value_stands) {
    const KZB_TABLE table = table_of({{0, 1, 2, 3}}, {5, 1, 4, 2});
    for (const char* method : local_methods) {
        const Lookup inside(method, table, {-5e-11});
        EXPECT_EQ(inside.status, 0) << method;
        EXPECT_EQ(inside.value, 5.0) << method;
        const Lookup below(method, table, {-2e-10});
        EXPECT_EQ(below.status, 80001) << method;
        EXPECT_EQ(below.value, 5.0) << method;
        const Lookup above(method, table, {99.0});
        EXPECT_EQ(above.status, 80002) << method;
        EXPECT_EQ(above.value, 2.0) << method;
    }
}

TEST(Schemes, single_node_axis_takes_any_coordinate) {
    KZB_TABLE table = table_of({{3}, {0, 1, 2}}, {5, 1, 4});
    for (const char* method : local_methods) {
        const Lookup far(method, table, {-1e6, 1.0});
        EXPECT_EQ(far.status, 0) << method;
        EXPECT_EQ(far.value, 1.0) << method;
    }
    EXPECT_EQ(Lookup("Spline", table, {-1e6, 1.0}).status, 80001);
    EXPECT_EQ(Lookup("Spline", table, {1e6, 1.0}).status, 80002);
    EXPECT_EQ(Lookup("Spline", table, {1e6, 1.0}).value, 1.0);
    kzb::table_set_cyclic_flag(&table, 1, 1);
    for (const char* method : local_methods) {
        EXPECT_EQ(Lookup(method, table, {1e6, 1.0}).value, 1.0) << method;
        EXPECT_EQ(Lookup(method, table, {1e6, 1.0}).status, 0) << method;
    }
    // In range, two axes: the status the scheme starts with.
    EXPECT_EQ(Lookup("Spline", table, {1e6, 1.0}).status, 90006);
}

TEST(Schemes, cubic_reads_beside_a_single_cyclic_node_and_says_so) {
    KZB_TABLE table = table_of({{3}}, {5});
    kzb::table_set_cyclic_flag(&table, 1, 1);
    const Lookup lookup("Cubic", table, {3.0});
    EXPECT_EQ(lookup.value, 5.0);
    EXPECT_EQ(lookup.lines(), 2);
}

TEST(Schemes, last_axis_out_of_range_decides) {
    const KZB_TABLE table = table_of({{0, 1}, {0, 1}}, {1, 2, 3, 4});
    for (const char* method : local_methods) {
        EXPECT_EQ(Lookup(method, table, {-5.0, 5.0}).status, 80002) << method;
        EXPECT_EQ(Lookup(method, table, {-5.0, 5.0}).value, 2.0) << method;
    }
    EXPECT_EQ(Lookup("Spline", table, {-5.0, 5.0}).status, 80002);
}

TEST(Linear, two_axes_by_hand) {
    // Axis 0 first: (1 + 3) / 2 = 2 and (2 + 8) / 2 = 5; then a quarter of the way: 2.75.
    const KZB_TABLE table = table_of({{0, 2}, {0, 4}}, {1, 2, 3, 8});
    const Lookup lookup("Linear", table, {1.0, 1.0});
    EXPECT_EQ(lookup.value, 2.75);
    EXPECT_EQ(lookup.status, 0);
    EXPECT_EQ(lookup.timing[3], 3.0);
}

TEST(Linear, nodes_that_fall_together_with_different_values_give_no_value) {
    const KZB_TABLE table = table_of({{1, 1}}, {5, 6});
    const Lookup lookup("Linear", table, {1.0});
    EXPECT_EQ(lookup.value, kzb::KZB_NO_VALUE);
    EXPECT_EQ(lookup.status, 0);
}

TEST(Linear, full_turn_rule_acts_in_the_straight_path_of_four_axes_only) {
    // Values along axis 0 at 0, 180, 360: 1, 2, 9 - the end does not repeat the start.
    KZB_TABLE table = table_of({{0, 180, 360}, {0, 1}, {0, 1}, {0, 1}},
                               {1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 9, 9, 9, 9, 9, 9, 9, 9});
    kzb::table_set_cyclic_flag(&table, 1, 1);
    EXPECT_EQ(Lookup("Linear", table, {270.0, 0.5, 0.5, 0.5}).value, 1.5);        // between 2 and the start's 1
    EXPECT_EQ(Lookup("Linear", table, {270.0, 0.5, 0.5, 0.5}, true).value, 5.5);  // between 2 and 9
    kzb::table_set_cyclic_flag(&table, 1, 0);
    EXPECT_EQ(Lookup("Linear", table, {270.0, 0.5, 0.5, 0.5}).value, 5.5);
}

TEST(Linear, axis_without_grid_gives_no_value_after_the_axes_before_it) {
    KZB_TABLE table = table_of({{0, 1}, {0, 1}}, {1, 2, 3, 4});
    table.axes[1].reset();
    const Lookup lookup("Linear", table, {0.5, 0.5});
    EXPECT_EQ(lookup.value, kzb::KZB_NO_VALUE);
    EXPECT_EQ(lookup.lines(), 4);
    EXPECT_EQ(lookup.timing[3], 2.0);
    for (const char* method : {"Cubic", "Spline4", "Spline6", "Spline"}) {
        EXPECT_EQ(Lookup(method, table, {0.5, 0.5}).value, kzb::KZB_NO_VALUE) << method;
    }
    EXPECT_EQ(Lookup("Cubic", table, {0.5, 0.5}).status, 9999);
    EXPECT_EQ(Lookup("Spline", table, {0.5, 0.5}).status, 90006);
}

// The coordinates are wrapped before any grid is missed.
TEST(Schemes, fault_of_a_cyclic_axis_is_told_though_another_axis_has_no_grid) {
    KZB_TABLE table = table_of({{1, 1}, {0, 1}}, {1, 2, 3, 4});
    kzb::table_set_cyclic_flag(&table, 1, 1);
    table.axes[1].reset();
    for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
        const Lookup lookup(method, table, {1.0, 0.5});
        EXPECT_EQ(lookup.printed.rfind("The axis values are not in ascending order\n: ", 0), 0U) << method;
        EXPECT_EQ(lookup.value, kzb::KZB_NO_VALUE) << method;
    }
}

// One component on the node 0 of a segment of no width: the values decide, as for a single lookup.
TEST(Linear, single_component_before_a_node_that_falls_together_with_its_own) {
    for (const double second : {6.0, 5.0}) {
        const KZB_TABLE table = table_of({{0, 5e-11}}, {5, second});
        double result = 0.0;
        double timing[20] = {};
        const double none = 0.0;
        EXPECT_EQ(kzb::table_lookup_components(kzb::Scheme::linear, &table, &none, 1, &result, timing, {}), 0);
        EXPECT_EQ(result, second == 5.0 ? 5.0 : kzb::KZB_NO_VALUE);
        EXPECT_EQ(result, Lookup("Linear", table, {0.0}).value);
        EXPECT_EQ(timing[3], 1.0);
    }
}

// A model without axes has no coordinates to give: the components are the nodes themselves, 4 + 3 k.
TEST(Schemes, components_of_a_table_without_another_axis_need_no_coordinates) {
    const KZB_TABLE table = table_of({{0, 1, 2, 3, 4, 5, 6}}, {4, 7, 10, 13, 16, 19, 22});
    for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
        double results[7] = {};
        double timing[20] = {};
        kzb::table_lookup_components(kzb::scheme_of(method), &table, nullptr, 7, results, timing, {});
        for (int k = 0; k < 7; ++k) {
            EXPECT_DOUBLE_EQ(results[k], 4.0 + 3.0 * k) << method << " " << k;
        }
    }
}

TEST(Linear, not_a_number_prints_once_per_corner) {
    const KZB_TABLE table = table_of({{0, 1}, {0, 1}}, {1, 2, 3, 4});
    const Lookup lookup("Linear", table, {std::nan(""), 0.5});
    EXPECT_EQ(lookup.value, kzb::KZB_NO_VALUE);
    EXPECT_EQ(lookup.lines(), 4);
    EXPECT_EQ(lookup.status, 0);
    EXPECT_EQ(Lookup("Cubic", table, {std::nan(""), 0.5}).value, kzb::KZB_NO_VALUE);
}

TEST(Cubic, two_nodes_use_both_phantoms) {
    // Phantom nodes a tenth of the span outside carry the edge values, so s0 = s2 = 0, a = -0.1, b = 1.1:
    // m1 = s1 * 0.1 / 1.1 = s1 / 11 and m2 = s1 / 11 as well. At t = 1/2 of 0..1: 1/2 + (m1 - m2) / 8 = 1/2; at 1/4:
    // 5/32 + 9/64 m1 - 3/64 m2 = 5/32 + (6/64) / 11.
    const KZB_TABLE table = table_of({{0, 1}}, {0, 1});
    EXPECT_DOUBLE_EQ(Lookup("Cubic", table, {0.5}).value, 0.5);
    EXPECT_NEAR(Lookup("Cubic", table, {0.25}).value, 5.0 / 32.0 + 6.0 / 64.0 / 11.0, 1e-15);
    EXPECT_EQ(Lookup("Cubic", table, {0.25}).timing[5], 1.0);
}

TEST(Cubic, counts_the_whole_block_even_on_a_node) {
    const KZB_TABLE table = table_of({{0, 1, 2}, {0, 1, 2}, {0, 1, 2}}, std::vector<double>(27, 1.0));
    EXPECT_EQ(Lookup("Cubic", table, {1.0, 1.0, 1.0}).timing[5], 21.0);
    EXPECT_EQ(Lookup("Cubic", table, {0.3, 1.2, 1.9}).timing[5], 21.0);
}

TEST(LocalSplines, three_nodes_make_a_spline_of_two_segments) {
    // As in the kernel's hand calculation: 11/16.
    const KZB_TABLE table = table_of({{0, 1, 2}}, {0, 1, 0});
    for (const char* method : {"Spline4", "Spline6"}) {
        const Lookup lookup(method, table, {0.5});
        EXPECT_DOUBLE_EQ(lookup.value, 0.6875) << method;
        EXPECT_EQ(lookup.timing[1], 1.0) << method;
    }
}

TEST(LocalSplines, two_row_cyclic_axis_reads_the_entries_below_the_bracket) {
    // Stencil of width 4 around nodes 0, 10: -1 and 0 fold to node 0 at -10 and node 0 at 0, both with value 3.
    KZB_TABLE table = table_of({{0, 10}}, {3, 8});
    kzb::table_set_cyclic_flag(&table, 1, 1);
    EXPECT_EQ(Lookup("Spline4", table, {4.0}).value, 3.0);
    EXPECT_EQ(Lookup("Spline6", table, {4.0}).value, 3.0);
    EXPECT_EQ(Lookup("Spline4", table, {4.0}).timing[3], 1.0);
}

TEST(LocalSplines, stencil_slides_at_the_edges) {
    const std::vector<double> x{0, 1, 2, 3, 4, 5, 6, 7};
    const std::vector<double> y{3, 1, 4, 1, 5, 9, 2, 6};
    const KZB_TABLE table = table_of({x}, y);
    EXPECT_EQ(Lookup("Spline4", table, {0.5}).value, kzb::natural_spline_eval(3, x.data(), y.data(), 0.5));
    EXPECT_EQ(Lookup("Spline4", table, {3.5}).value, kzb::natural_spline_eval(3, x.data() + 2, y.data() + 2, 3.5));
    EXPECT_EQ(Lookup("Spline4", table, {6.5}).value, kzb::natural_spline_eval(3, x.data() + 4, y.data() + 4, 6.5));
    EXPECT_EQ(Lookup("Spline6", table, {1.5}).value, kzb::natural_spline_eval(5, x.data(), y.data(), 1.5));
    EXPECT_EQ(Lookup("Spline6", table, {3.5}).value, kzb::natural_spline_eval(5, x.data() + 1, y.data() + 1, 3.5));
    EXPECT_EQ(Lookup("Spline6", table, {5.5}).value, kzb::natural_spline_eval(5, x.data() + 2, y.data() + 2, 5.5));
}

TEST(LocalSplines, generic_path_of_width_six_counts_two_node_axes_too) {
    const KZB_TABLE table = table_of({{0, 1}, {0, 1, 2}}, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(Lookup("Spline6", table, {0.5, 0.5}).timing[1], 2.0);
    EXPECT_EQ(Lookup("Spline6", table, {0.5, 0.5}, true).timing[1], 3.0);
    // "Spline4" knows no such switch.
    EXPECT_EQ(Lookup("Spline4", table, {0.5, 0.5}, true).timing[1], 2.0);
}

TEST(Schemes, values_beyond_the_limit_set_a_status_and_stand) {
    const KZB_TABLE table = table_of({{0, 1, 2}}, {2e100, 2e100, 2e100});
    for (const char* method : {"Cubic", "Spline4", "Spline6"}) {
        EXPECT_EQ(Lookup(method, table, {1.0}).status, 9999) << method;
        EXPECT_EQ(Lookup(method, table, {-9.0}).status, 9999) << method;
        EXPECT_EQ(Lookup(method, table, {1.0}).value, 2e100) << method;
    }
    EXPECT_EQ(Lookup("Linear", table, {1.0}).status, 0);
    EXPECT_EQ(Lookup("Spline", table, {1.0}).status, 0);
}

TEST(Spline, two_node_axis_is_linear_and_its_status_survives) {
    const KZB_TABLE table = table_of({{0, 1}, {0, 1}}, {1, 2, 3, 8});
    // Axis 0 first: 1.5 and 3.5 at a quarter; half of both: 2.5.
    EXPECT_EQ(Lookup("Spline", table, {0.25, 0.5}).value, 2.5);
    EXPECT_EQ(Lookup("Spline", table, {0.25, 0.5}).timing[3], 3.0);
    EXPECT_EQ(Lookup("Spline", table, {0.25, 0.5}).status, 90006);
    EXPECT_EQ(Lookup("Spline", table, {-1.0, 0.5}).status, 80001);
    EXPECT_EQ(Lookup("Spline", table, {-1.0, 0.5}).value, 1.5);
}

TEST(Spline, one_axis_writes_its_status) {
    const KZB_TABLE table = table_of({{0, 1, 2}}, {0, 1, 0});
    EXPECT_EQ(Lookup("Spline", table, {0.5}).status, 0);
    EXPECT_DOUBLE_EQ(Lookup("Spline", table, {0.5}).value, 0.6875);
    EXPECT_EQ(Lookup("Spline", table, {2.5}).status, 80002);
}

TEST(Schemes, elapsed_times_are_kept_only_when_asked_for) {
    const KZB_TABLE table = table_of({{0, 1, 2}}, {0, 1, 0});
    for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
        const Lookup lookup(method, table, {0.5});
        for (int slot = 6; slot < 20; ++slot) {
            EXPECT_EQ(lookup.timing[slot], 0.0) << method << slot;
        }
        double timing[20] = {};
        double value = 0.0;
        const double x = 0.5;
        for (int i = 0; i < 100000; ++i) {
            kzb::table_lookup(kzb::scheme_of(method), &table, &x, value, timing, {false, true});
        }
        const int slot = method[0] == 'L' ? 6 : method[0] == 'C' ? 7 : 8;
        EXPECT_EQ(timing[slot] > 0.0, std::string(method) != "Spline") << method;
        EXPECT_EQ(value, lookup.value);
    }
}

TEST(ManyAxes, blocks_beyond_reason_give_no_value) {
    const KZB_TABLE table = table_of(std::vector<std::vector<double>>(40, {0.0}), {5.0});
    const std::vector<double> x(40, 0.0);
    for (const char* method : local_methods) {
        EXPECT_EQ(Lookup(method, table, x).status, 90007) << method;
        EXPECT_EQ(Lookup(method, table, x).value, kzb::KZB_NO_VALUE) << method;
    }
    EXPECT_EQ(Lookup("Spline", table, x).value, 5.0);
}

}  // namespace
