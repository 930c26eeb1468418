// Random tables and points for property tests: all kinds of grids, points on nodes, near them, outside, many periods
// away.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "table/table.h"

namespace kzb_test {

struct TableMaker {
    std::mt19937 random{20240607};

    int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
    double uniform(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }

    // `odd` also makes unordered and missing grids, nodes that fall together, and values that are no numbers.
    void fill(KZB_TABLE& table, int dim, int most_rows, bool odd) {
        std::vector<int> rows;
        for (int a = 0; a < dim; ++a) {
            rows.push_back(1 + below(most_rows));
        }
        kzb::table_create(table, dim, rows.data());
        for (int a = 0; a < dim; ++a) {
            fill_axis(table, a, odd);
        }
        for (std::size_t i = 0; i < static_cast<std::size_t>(table.total); ++i) {
            table.values[i] = value(odd);
        }
    }
    void fill_axis(KZB_TABLE& table, int a, bool odd) {
        const int rows = table.sizes[static_cast<std::size_t>(a)];
        const int cyclic[] = {0, 0, 0, 1, 1, 2, -1};
        kzb::table_set_cyclic_flag(&table, a + 1, cyclic[below(7)]);
        if (odd && below(12) == 0) {
            return;
        }
        const int kind = below(5);
        const double width = kind == 2 ? 360.0 / std::max(1, rows - 1) : uniform(0.5, 9.0);
        double x = kind == 2 ? 0.0 : std::floor(uniform(-20.0, 5.0));
        for (int i = 0; i < rows; ++i) {
            kzb::table_set_axis_value(&table, a + 1, i, kind == 2 && i + 1 == rows && i > 0 ? 360.0 : x);
            x += kind == 0 ? 2.0 : (kind == 1 || kind == 2) ? width : uniform(0.1, 5.0);
            if (odd && below(10) == 0) {
                x -= below(2) == 0 ? 6.0 : (kind == 0 ? 2.0 : 0.0);
            }
        }
    }
    double value(bool odd) {
        if (odd && below(20) == 0) {
            const double values[] = {
                0.0,          -0.0,  1e308, -1.7e308, kzb::KZB_NO_VALUE, std::numeric_limits<double>::infinity(),
                std::nan(""), 1e101, 5e-324};
            return values[below(9)];
        }
        return below(6) == 0 ? std::round(uniform(-5.0, 5.0)) : uniform(-100.0, 100.0);
    }
    double coordinate(const KZB_TABLE& table, int a, bool odd) {
        const auto axis = static_cast<std::size_t>(a);
        if (!table.axes[axis]) {
            return uniform(-10.0, 10.0);
        }
        const double* x = table.axes[axis].data();
        const int rows = table.sizes[axis];
        const double first = x[0];
        const double last = x[rows - 1];
        const double node = x[below(rows)];
        if (odd && below(15) == 0) {
            const double far[] = {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, -1e300, first - 1e-10,
                                  last + 1e-10};
            return far[below(6)];
        }
        switch (below(8)) {
            case 0:
                return node;
            case 1:
                return node + uniform(-2e-10, 2e-10);
            case 2:
                return first - uniform(0.0, 900.0);
            case 3:
                return last + uniform(0.0, 900.0);
            default:
                return uniform(first, last + (last == first ? 1.0 : 0.0));
        }
    }
    std::vector<double> point(const KZB_TABLE& table, bool odd) {
        std::vector<double> x;
        for (int a = 0; a < table.dim; ++a) {
            x.push_back(coordinate(table, a, odd));
        }
        return x;
    }
};

}  // namespace kzb_test
