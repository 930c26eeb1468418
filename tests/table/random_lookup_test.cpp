// Whole lookups against the slow derivation of reference_lookup.cpp, to the last bit, with status, counters and the
// number of printed lines.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "random_tables.h"
#include "reference_lookup.h"
#include "table/lookup.h"

namespace {

using kzb_test::Outcome;
using kzb_test::TableMaker;

const char* const methods[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

std::uint64_t bits(double v) {
    std::uint64_t b = 0;
    std::memcpy(&b, &v, sizeof b);
    return std::isnan(v) ? 1 : b;  // one not-a-number is as good as another
}

Outcome product_lookup(const char* method, const KZB_TABLE& table, const std::vector<double>& x, bool generic) {
    Outcome out;
    testing::internal::CaptureStderr();
    out.status = kzb::table_lookup(kzb::scheme_of(method), &table, x.data(), out.value, out.timing,
                                   kzb::LookupSwitches{generic, false});
    const std::string printed = testing::internal::GetCapturedStderr();
    // Two of the three texts end in a line break of their own, before the ": " and the system's text.
    std::size_t at = 0;
    while ((at = printed.find(": ", at)) != std::string::npos) {
        ++out.prints;
        at += 2;
    }
    return out;
}

void compare(const char* method, const KZB_TABLE& table, const std::vector<double>& x, bool generic) {
    const Outcome expected = kzb_test::reference_lookup(method, table, x, generic);
    const Outcome found = product_lookup(method, table, x, generic);
    std::string where = method;
    for (int a = 0; a < table.dim; ++a) {
        const auto axis = static_cast<std::size_t>(a);
        where += "\n axis rows " + std::to_string(table.sizes[axis]) + " cyclic " + std::to_string(table.cyclic[axis]) +
                 " x " + std::to_string(x[axis]);
    }
    ASSERT_EQ(bits(expected.value), bits(found.value)) << where << " " << expected.value << " " << found.value;
    ASSERT_EQ(expected.status, found.status) << where;
    ASSERT_EQ(expected.prints, found.prints) << where;
    for (int slot = 0; slot < 20; ++slot) {
        ASSERT_EQ(expected.timing[slot], found.timing[slot]) << where << " slot " << slot;
    }
}

void run(int dim, int most_rows, int tables, int points, bool odd) {
    TableMaker maker;
    maker.random.seed(static_cast<unsigned>(dim * 1000 + most_rows * 10 + (odd ? 1 : 0)));
    for (int t = 0; t < tables; ++t) {
        KZB_TABLE table;
        maker.fill(table, dim, most_rows, odd);
        for (int p = 0; p < points; ++p) {
            const std::vector<double> x = maker.point(table, odd);
            for (const char* method : methods) {
                for (const bool generic : {false, true}) {
                    compare(method, table, x, generic);
                    if (testing::Test::HasFatalFailure()) {
                        return;
                    }
                }
            }
        }
    }
}

class RandomLookup : public testing::TestWithParam<int> {};

TEST_P(RandomLookup, equals_the_slow_derivation_on_ordered_grids) {
    const int dim = GetParam();
    const int most_rows[] = {0, 20, 12, 9, 8, 8, 4, 3, 2};
    const int tables[] = {0, 150, 120, 80, 25, 6, 2, 2, 1};
    run(dim, most_rows[dim], tables[dim], dim < 7 ? 12 : 2, false);
}

TEST_P(RandomLookup, equals_the_slow_derivation_on_odd_grids_values_and_points) {
    const int dim = GetParam();
    const int most_rows[] = {0, 12, 8, 7, 5, 4, 3, 2, 2};
    const int tables[] = {0, 300, 200, 100, 30, 8, 2, 2, 1};
    run(dim, most_rows[dim], tables[dim], dim < 7 ? 8 : 2, true);
}

INSTANTIATE_TEST_SUITE_P(Axes, RandomLookup, testing::Range(1, 9));

// The tolerance itself away from a node at 0, and the doubles next to it; nodes as far apart as the tolerance too.
TEST(AxisTolerance, decides_at_its_very_edge_as_the_slow_derivation_does) {
    constexpr double tol = kzb::KZB_AXIS_TOL;
    const double offsets[] = {tol, std::nextafter(tol, 0.0), std::nextafter(tol, 1.0)};
    TableMaker maker;
    for (int round = 0; round < 600; ++round) {
        const int dim = 1 + maker.below(3);
        std::vector<int> rows;
        for (int a = 0; a < dim; ++a) {
            rows.push_back(2 + maker.below(dim == 1 ? 7 : 5));
        }
        KZB_TABLE table;
        kzb::table_create(table, dim, rows.data());
        std::vector<double> x;
        for (int a = 0; a < dim; ++a) {
            const int count = rows[static_cast<std::size_t>(a)];
            const int zero = maker.below(count);
            const double width = maker.below(4) == 0 ? tol : 1.0;
            for (int i = 0; i < count; ++i) {
                kzb::table_set_axis_value(&table, a + 1, i, width * (i - zero));
            }
            kzb::table_set_cyclic_flag(&table, a + 1, maker.below(5) == 0 ? 1 : 0);
            x.push_back((maker.below(2) == 0 ? 1.0 : -1.0) * offsets[maker.below(3)]);
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(table.total); ++i) {
            table.values[i] = maker.value(false);
        }
        for (const char* const method : methods) {
            for (const bool generic : {false, true}) {
                ASSERT_NO_FATAL_FAILURE(compare(method, table, x, generic)) << "round " << round;
            }
        }
    }
}

// The components of a table are what single lookups give at 0, 1, 2 .. of the last axis.
TEST(Components, equal_single_lookups) {
    TableMaker maker;
    for (int round = 0; round < 1500; ++round) {
        const bool odd = round % 3 == 0;
        const int dim = 1 + maker.below(5);
        KZB_TABLE table;
        maker.fill(table, dim, dim > 3 ? 5 : 8, odd);
        const int rows = table.sizes.back();
        if (round % 4 != 0) {
            // As component axes are made: 0, 1, 2 ..
            for (int i = 0; i < rows; ++i) {
                kzb::table_set_axis_value(&table, dim, i, i);
            }
            kzb::table_set_cyclic_flag(&table, dim, maker.below(3) == 0 ? 1 : 0);
        }
        const int count = rows + maker.below(2);
        std::vector<double> x = maker.point(table, odd);
        const char* const method = methods[maker.below(5)];
        const kzb::LookupSwitches switches{maker.below(2) == 0, false};

        int status = 0;
        double timing[20] = {};
        std::vector<double> singles(static_cast<std::size_t>(count), kzb::KZB_NO_VALUE);
        std::vector<double> together = singles;
        testing::internal::CaptureStderr();
        for (int k = 0; k < count; ++k) {
            x.back() = k;
            const int single = kzb::table_lookup(kzb::scheme_of(method), &table, x.data(),
                                                 singles[static_cast<std::size_t>(k)], timing, switches);
            status = single > 0 || status <= 0 ? single : status;
        }
        const std::string printed = testing::internal::GetCapturedStderr();
        double timing_together[20] = {};
        testing::internal::CaptureStderr();
        const int status_together = kzb::table_lookup_components(kzb::scheme_of(method), &table, x.data(), count,
                                                                 together.data(), timing_together, switches);
        EXPECT_EQ(printed, testing::internal::GetCapturedStderr());
        EXPECT_EQ(status, status_together) << method << " round " << round;
        for (std::size_t k = 0; k < singles.size(); ++k) {
            EXPECT_EQ(bits(singles[k]), bits(together[k])) << method << " component " << k << " round " << round;
        }
        for (int slot = 0; slot < 20; ++slot) {
            EXPECT_EQ(timing[slot], timing_together[slot]) << method << " slot " << slot;
        }
    }
}

}  // namespace
