// A lookup takes nothing from the heap, whatever its scheme and its point, up to eight axes.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "interface/allocation_counter.h"
#include "interface/model_file.h"

namespace kzb_test::lookup_allocation_test {
namespace {

const std::vector<const char*> all_schemes{"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

// f = 1 + 2 x0 - x1 + x2 .. on grids of two and three rows, of which one is cyclic.
double sum_of_axes(const Point& x) {
    double f = 1.0 + 2.0 * x[0];
    for (std::size_t a = 1; a < x.size(); ++a) {
        f += a % 2 == 0 ? x[a] : -x[a];
    }
    return f;
}

std::vector<Point> grids(int dim) {
    std::vector<Point> axes;
    for (int a = 0; a < dim; ++a) {
        axes.push_back(a % 2 == 0 ? Point{0.0, 1.0, 3.0} : Point{-1.0, 2.0});
    }
    return axes;
}

double look_up(const ModelFile& file, const char* scheme, const Point& x) {
    return kzb_get_table_interpolated_value("map", "f", x.data(), scheme, file.store());
}

void expect_no_allocation(const ModelFile& file, const Point& x, const std::string& point,
                          const std::vector<const char*>& schemes = all_schemes) {
    for (const char* const scheme : schemes) {
        SCOPED_TRACE(std::string(scheme) + " " + point);
        look_up(file, scheme, x);  // resolves the names
        const long before = allocations;
        look_up(file, scheme, x);
        EXPECT_EQ(allocations - before, 0);
    }
}

TEST(LookupAllocation, tables_of_up_to_eight_axes_take_nothing_from_the_heap) {
    for (int dim = 1; dim <= 8; ++dim) {
        SCOPED_TRACE(dim);
        ModelFile file;
        file.table("map", "f", grids(dim), sum_of_axes);
        Point x(static_cast<std::size_t>(dim), 0.25);
        expect_no_allocation(file, x, "inside");
        x.back() = 77.0;
        expect_no_allocation(file, x, "outside");
        x.back() = std::numeric_limits<double>::quiet_NaN();
        // The others print, and the C library takes a buffer for that.
        expect_no_allocation(file, x, "not a number", {"Spline"});
    }
}

// Grids that no ordinary search serves, with the schemes that have nothing to print there: an axis whose nodes are not
// in order, a cyclic one of one row, axes without nodes.
TEST(LookupAllocation, odd_grids_take_nothing_from_the_heap) {
    for (int dim = 2; dim <= 8; ++dim) {
        SCOPED_TRACE(dim);
        const Point x(static_cast<std::size_t>(dim), 0.25);
        std::vector<Point> axes = grids(dim);
        axes[0] = {3.0, 1.0, 0.0};
        ModelFile unordered;
        unordered.table("map", "f", axes, sum_of_axes);
        axes[0] = {2.0};
        ModelFile single;
        single.table("map", "f", axes, sum_of_axes, {1});
        ModelFile bare;
        std::vector<int> sizes(static_cast<std::size_t>(dim), 2);
        kzb_create_table("map", "f", dim, sizes.data(), bare.store());
        expect_no_allocation(unordered, x, "unordered");
        expect_no_allocation(single, x, "one row", {"Linear", "Spline4", "Spline6", "Spline"});
        expect_no_allocation(bare, x, "no grid", {"Cubic", "Spline4", "Spline6", "Spline"});
    }
}

// Working memory beyond what stands on the stack is kept with the table.
TEST(LookupAllocation, splines_along_axes_of_thousands_of_rows_take_nothing_after_the_first) {
    Point fine;
    for (int i = 0; i <= 7200; ++i) {
        fine.push_back(0.05 * i);
    }
    const std::vector<std::vector<Point>> shapes{{fine}, {fine, {0.0, 1.0, 3.0}}, {{0.0, 1.0, 3.0}, fine}};
    for (const std::vector<Point>& axes : shapes) {
        for (const int cyclic : {0, 1}) {
            SCOPED_TRACE(std::to_string(axes.size()) + " axes, cyclic " + std::to_string(cyclic));
            ModelFile file;
            std::vector<int> flags;
            Point x;
            for (const Point& axis : axes) {
                flags.push_back(axis.size() > 3 ? cyclic : 0);
                x.push_back(axis.size() > 3 ? 123.4567 : 0.25);
            }
            file.table(
                "map", "f", axes, [](const Point& at) { return at[0] + at.back(); }, flags);
            expect_no_allocation(file, x, "inside", {"Spline"});
        }
    }
}

// A function that is straight along every axis is met by every scheme away from edge tangents: "Linear" and both
// whole-line and local splines give it to rounding.
TEST(LookupAllocation, straight_functions_of_many_axes_are_met) {
    for (int dim = 6; dim <= 9; ++dim) {
        SCOPED_TRACE(dim);
        ModelFile file;
        file.table("map", "f", grids(dim), sum_of_axes);
        Point x;
        for (int a = 0; a < dim; ++a) {
            x.push_back(0.1 + 0.2 * a);
        }
        for (const char* const scheme : {"Linear", "Spline4", "Spline6", "Spline"}) {
            // Each axis adds a few roundings of values below 32.
            EXPECT_NEAR(look_up(file, scheme, x), sum_of_axes(x), 32.0 * 16.0 * dim * 2.3e-16) << scheme;
        }
    }
}

}  // namespace
}  // namespace kzb_test::lookup_allocation_test
