// Axes of every table: nodes that are there, are numbers and rise strictly, and cyclic axes that close.
//
// A cyclic axis holds both of its end nodes for one point, so the values at the last node repeat those at the first.
#include <algorithm>
#include <cmath>

#include "fmt/format.h"
#include "kzb/sound_table.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

// Of the largest value of the table; far below what the interpolation between nodes is worth.
constexpr double cyclic_tolerance = 1e-3;
// Of the largest value of the tables of the category: a component that is zero but for rounding has no size of its own.
constexpr double rounding_share = 1e-9;
// Of one table; no model looks a table of more axes up, and a broken file may hold millions.
constexpr std::size_t most_axes = 64;

void check_nodes(const KZB_TABLE& table, const std::string& category, std::size_t axis, Findings& findings) {
    if (!has_nodes(table, axis)) {
        const int expected = axis < table.sizes.size() ? table.sizes[axis] : 1;
        findings.error("axis-missing", {category, table.keyword, axis_place(axis)},
                       fmt::format("{} nodes, expected {}", axis < table.axes.size() ? table.axes[axis].size() : 0,
                                   std::max(expected, 1)));
        return;
    }
    const ZeroedArray& nodes = table.axes[axis];
    std::size_t bad = 0;
    std::size_t first_bad = 0;
    std::size_t falling = 0;
    std::size_t first_falling = 0;
    for (std::size_t i = nodes.size(); i-- > 0;) {
        if (is_unusable(nodes[i])) {
            ++bad;
            first_bad = i;
        } else if (i > 0 && nodes[i] <= nodes[i - 1] && !is_unusable(nodes[i - 1])) {
            ++falling;
            first_falling = i;
        }
    }
    if (bad > 0) {
        findings.error("axis-not-finite", {category, table.keyword, node_place(axis, first_bad)},
                       fmt::format("{} of {} nodes are no usable numbers, the first is {}; expected a finite number",
                                   bad, nodes.size(), nodes[first_bad]));
    }
    if (falling > 0) {
        findings.error("axis-order", {category, table.keyword, node_place(axis, first_falling)},
                       fmt::format("{} is not above {} of the node before, expected nodes that rise ({} of {} do not)",
                                   nodes[first_falling], nodes[first_falling - 1], falling, nodes.size() - 1));
    }
}

// The worst pair of end values of one cyclic axis.
void compare_ends(const KZB_TABLE& table, const std::string& category, std::size_t axis, double tolerance,
                  Findings& findings) {
    const std::size_t stride = stride_of(table, axis);
    const std::size_t to_last = (rows_of(table, axis) - 1) * stride;
    const double* const values = table.values.data();
    std::size_t differing = 0;
    std::size_t worst = 0;
    double worst_gap = 0.0;
    for (std::size_t block = 0; block < table.values.size(); block += to_last + stride) {
        for (std::size_t i = block; i < block + stride; ++i) {
            const double gap = std::abs(values[i] - values[i + to_last]);
            if (gap <= tolerance || is_unusable(gap)) {
                continue;
            }
            ++differing;
            if (gap > worst_gap) {
                worst_gap = gap;
                worst = i;
            }
        }
    }
    if (differing > 0) {
        findings.warning(
            "cyclic-ends", {category, table.keyword, axis_place(axis) + ", " + value_place(table, worst)},
            fmt::format("{:.6g} at the first node of a cyclic axis, {:.6g} at its last; expected the same within {:g} "
                        "({:g} % of the largest value; {} of {} pairs differ)",
                        values[worst], values[worst + to_last], tolerance, 100.0 * cyclic_tolerance, differing,
                        table.values.size() / rows_of(table, axis)));
    }
}

}  // namespace

void check_axes(const Examined& model, Findings& findings) {
    for (const KZB_CATEGORY& category : model.store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            if (is_placeholder(table)) {
                continue;
            }
            const std::size_t count = std::min(std::max(table.sizes.size(), table.axes.size()), most_axes);
            for (std::size_t axis = 0; axis < count; ++axis) {
                check_nodes(table, category.name, axis, findings);
            }
        }
    }
}

void check_cyclic_ends(const Examined& model, Findings& findings) {
    for (const KZB_CATEGORY& category : model.store.categories) {
        double largest_of_all = 0.0;
        for (const KZB_TABLE& table : category.tables) {
            largest_of_all = std::max(largest_of_all, has_values(table) ? largest_magnitude(table) : 0.0);
        }
        for (const KZB_TABLE& table : category.tables) {
            const auto closes = [](int flag) { return flag > 0; };
            if (!has_values(table) || std::none_of(table.cyclic.begin(), table.cyclic.end(), closes)) {
                continue;
            }
            const double tolerance =
                std::max(cyclic_tolerance * largest_magnitude(table), rounding_share * largest_of_all);
            for (std::size_t axis = 0; axis < std::min(table.cyclic.size(), most_axes); ++axis) {
                if (closes(table.cyclic[axis]) && table.sizes[axis] > 1) {
                    compare_ends(table, category.name, axis, tolerance, findings);
                }
            }
        }
    }
}

}  // namespace kzb::tool
