#include "store/measured/loss_grid.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "table/table.h"

namespace kzb {

namespace {

bool within_tolerance(double a, double b) {
    return std::fabs(a - b) < KZB_AXIS_TOL;
}

// Subtraction rounds monotonically: if neither neighbour is near, nothing is.
bool holds(const std::multiset<double>& values, double x) {
    const auto above = values.lower_bound(x);
    return (above != values.end() && within_tolerance(*above, x)) ||
           (above != values.begin() && within_tolerance(*std::prev(above), x));
}

}  // namespace

void LossGrid::set_axis_count(std::size_t count) {
    collected_.resize(count);
    unordered_.assign(count, 0);
}

void LossGrid::add_point(const double* coordinates) {
    ++points_;
    bool grown = false;
    for (std::size_t a = 0; a < collected_.size(); ++a) {
        const double x = coordinates[a];
        finite_ = finite_ && std::isfinite(x);
        if (std::isnan(x)) {
            ++unordered_[a];  // near to nothing, not even to another one
            grown = true;
        } else if (!beyond_ && !holds(collected_[a], x)) {
            collected_[a].insert(x);
            grown = true;
        }
    }
    if (grown) {
        beyond_ = spanned() > most_points_;
    }
}

// Product of the axis lengths; only told to be too many beyond `most_points_`.
std::int64_t LossGrid::spanned() const {
    std::int64_t product = 1;
    for (std::size_t a = 0; a < collected_.size(); ++a) {
        const std::int64_t length = static_cast<std::int64_t>(collected_[a].size()) + unordered_[a];
        if (length > 0 && product > most_points_ / length) {
            return most_points_ + 1;
        }
        product *= length;
    }
    return product;
}

void LossGrid::sort() {
    for (const auto& values : collected_) {
        axes_.emplace_back(values.begin(), values.end());
    }
    collected_.clear();
}

int LossGrid::index_of(std::size_t axis, double coordinate) const {
    const std::vector<double>& values = axes_[axis];
    const auto first = std::partition_point(values.begin(), values.end(),
                                            [&](double value) { return coordinate - value >= KZB_AXIS_TOL; });
    if (first == values.end() || !within_tolerance(*first, coordinate)) {
        return -1;
    }
    return static_cast<int>(first - values.begin());
}

}  // namespace kzb
