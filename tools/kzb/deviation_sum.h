// The differences of one quantity added up: the largest with the place where it lies, and the root of the mean square.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <utility>

namespace kzb::tool {

// A Deviation has quantity, unit, largest, rms, scale (largest magnitude of the quantity), and a place of its own.
template <class Deviation>
class DeviationSum {
  public:
    DeviationSum(std::string quantity, std::string unit) {
        deviation_.quantity = std::move(quantity);
        deviation_.unit = std::move(unit);
    }

    // mark(deviation) notes the place of a new largest difference.
    template <class Mark>
    void add(double difference, double magnitude, Mark mark) {
        const double off = std::fabs(difference);
        deviation_.scale = std::max(deviation_.scale, std::fabs(magnitude));
        if (off > deviation_.largest || count_ == 0) {
            deviation_.largest = off;
            mark(deviation_);
        }
        squares_ += off * off;
        ++count_;
    }

    bool any() const { return count_ > 0; }

    Deviation result() const {
        Deviation d = deviation_;
        d.rms = count_ == 0 ? 0.0 : std::sqrt(squares_ / static_cast<double>(count_));
        return d;
    }

  private:
    Deviation deviation_;
    double squares_ = 0.0;
    std::size_t count_ = 0;
};

}  // namespace kzb::tool
