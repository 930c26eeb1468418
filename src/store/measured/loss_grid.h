// The grid that the points of a loss file span: per axis the distinct coordinates, ascending.
//
// A coordinate is new to its axis unless one taken before lies within 1e-10 of it; so the first of near ones stays.
// Coordinates kept are further apart than that, hence only the neighbours of a new one need a look.
#pragma once

#include <cstdint>
#include <set>
#include <vector>

namespace kzb {

class LossGrid {
  public:
    // `most_points`: no file at hand has more points. Once the axes span more, no more coordinates are kept.
    explicit LossGrid(std::int64_t most_points) : most_points_(most_points) {}

    void set_axis_count(std::size_t count);
    std::size_t axis_count() const { return collected_.size(); }
    // Takes the coordinates of one point, array of [axis_count].
    void add_point(const double* coordinates);
    std::int64_t point_count() const { return points_; }
    // True when the axes span as many points as were taken, one at least.
    bool is_full() const { return points_ > 0 && !beyond_ && spanned() == points_; }
    // True when every coordinate can be found again: none is infinite or no number.
    bool is_finite() const { return finite_; }

    // From here on no point is taken.
    void sort();
    const std::vector<double>& axis(std::size_t a) const { return axes_[a]; }
    // Index of the first value within 1e-10, -1 for none. Behind `sort`.
    int index_of(std::size_t axis, double coordinate) const;

  private:
    std::int64_t spanned() const;

    std::vector<std::multiset<double>> collected_;
    std::vector<std::int64_t> unordered_;  // coordinates that are no number, per axis
    std::vector<std::vector<double>> axes_;
    std::int64_t most_points_;
    std::int64_t points_ = 0;
    bool beyond_ = false;
    bool finite_ = true;
};

}  // namespace kzb
