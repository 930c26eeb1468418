// Least, greatest, mean and root mean square of a series, value by value. Values that are not finite are counted apart.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

namespace kzb::tool {

class Statistics {
  public:
    void add(double value) {
        if (!std::isfinite(value)) {
            ++not_finite_;
            return;
        }
        ++count_;
        least_ = std::fmin(least_, value);
        greatest_ = std::fmax(greatest_, value);
        sum_ += value;
        squares_ += value * value;
    }
    std::uint64_t count() const { return count_; }
    std::uint64_t not_finite() const { return not_finite_; }
    // Not a number as long as nothing was added.
    double least() const { return count_ == 0 ? nothing : least_; }
    double greatest() const { return count_ == 0 ? nothing : greatest_; }
    double mean() const { return sum_ / static_cast<double>(count_); }
    double rms() const { return std::sqrt(squares_ / static_cast<double>(count_)); }

  private:
    static constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
    std::uint64_t count_ = 0;
    std::uint64_t not_finite_ = 0;
    double least_ = std::numeric_limits<double>::infinity();
    double greatest_ = -std::numeric_limits<double>::infinity();
    double sum_ = 0.0;
    double squares_ = 0.0;
};

}  // namespace kzb::tool
