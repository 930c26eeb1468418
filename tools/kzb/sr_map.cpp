#include "kzb/sr_map.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/nearly_equal.h"

namespace kzb::tool {

namespace {

// The line of one position behind the others; `sign` on the torque.
void repeat_line(CoilMap& map, std::size_t of, double at, double sign) {
    for (std::size_t i = 0; i < map.currents.size(); ++i) {
        map.flux.push_back(map.flux[map.index(of, i)]);
        if (!map.torque.empty()) {
            map.torque.push_back(sign * map.torque[map.index(of, i)]);
        }
    }
    map.positions.push_back(at);
}

void require_phase_flux(const CoilMap& map) {
    for (std::size_t p = 0; p < map.positions.size(); ++p) {
        for (std::size_t i = 1; i < map.currents.size(); ++i) {
            if (!(map.flux[map.index(p, i)] > 0.0)) {
                throw Failure(exit_file,
                              fmt::format("{}: flux linkage {:g} Vs at {:g} deg, {:g} A, expected one above "
                                          "0 for a current above 0",
                                          map.name, map.flux[map.index(p, i)], map.positions[p], map.currents[i]));
            }
        }
        if (map.flux[map.index(p, 0)] != 0.0) {
            throw Failure(exit_file, fmt::format("{}: flux linkage {:g} Vs at {:g} deg without current, expected 0",
                                                 map.name, map.flux[map.index(p, 0)], map.positions[p]));
        }
    }
}

double wrapped(double theta, double pitch) {
    return theta - std::floor(theta / pitch) * pitch;
}

}  // namespace

CoilMap whole_pitch(CoilMap map, double pitch, std::vector<std::string>& notes) {
    require_phase_flux(map);
    const double first = map.positions.front();
    const double span = map.positions.back() - first;
    const double step = span / static_cast<double>(map.positions.size() - 1);
    if (std::fabs(first) > 1e-9 * pitch) {
        throw Failure(exit_file, fmt::format("{}: positions start at {:g} deg, expected 0", map.name, first));
    }
    if (nearly_equal(span, 0.5 * pitch)) {
        for (std::size_t p = map.positions.size() - 1; p-- > 0;) {
            repeat_line(map, p, p == 0 ? pitch : pitch - map.positions[p], -1.0);
        }
        notes.push_back(fmt::format("positions {:g} to {:g} deg are the mirror image of the half pitch of the map",
                                    0.5 * pitch, pitch));
    } else if (nearly_equal(span, pitch)) {
        map.positions.back() = pitch;
    } else if (nearly_equal(span + step, pitch)) {
        repeat_line(map, 0, pitch, 1.0);
    } else {
        throw Failure(exit_file, fmt::format("{}: positions run from {:g} to {:g} deg, expected 0 to {:g} (a rotor "
                                             "pitch) or 0 to {:g} (half of it)",
                                             map.name, first, map.positions.back(), pitch, 0.5 * pitch));
    }
    return map;
}

std::vector<double> torque_of_coenergy(const CoilMap& map, double pitch) {
    const CoilField coenergy(map, coenergy_of(map), pitch);
    std::vector<double> torque;
    for (const double theta : map.positions) {
        for (const double i : map.currents) {
            torque.push_back(coenergy.at(theta, i).fx * 180.0 / std::numbers::pi);
        }
    }
    return torque;
}

SrCoupling::SrCoupling(const CoilMap& mutual, double pitch, double shift, std::vector<std::string>& notes)
    : pitch_(pitch) {
    // Fitted points, and the same seen from the other phase; where both stand their mean counts.
    std::vector<std::pair<double, double>> points;
    for (std::size_t p = 0; p < mutual.positions.size(); ++p) {
        double product = 0.0;
        double squares = 0.0;
        for (std::size_t i = 0; i < mutual.currents.size(); ++i) {
            product += mutual.currents[i] * mutual.flux[mutual.index(p, i)];
            squares += mutual.currents[i] * mutual.currents[i];
        }
        const double theta = wrapped(mutual.positions[p], pitch);
        points.emplace_back(theta, product / squares);
        points.emplace_back(wrapped(-shift - theta, pitch), product / squares);
    }
    std::sort(points.begin(), points.end());
    std::vector<std::size_t> counts;
    for (const auto& [theta, value] : points) {
        if (!theta_.empty() && theta - theta_.back() < 1e-6 * pitch) {
            const auto count = static_cast<double>(counts.back()++);
            value_.back() = (value_.back() * count + value) / (count + 1.0);
        } else {
            theta_.push_back(theta);
            value_.push_back(value);
            counts.push_back(1);
        }
    }
    // The widest stretch without a point, the way over the end of the pitch included.
    double widest = theta_.front() + pitch - theta_.back();
    double from = theta_.back();
    for (std::size_t n = 1; n < theta_.size(); ++n) {
        if (theta_[n] - theta_[n - 1] > widest) {
            widest = theta_[n] - theta_[n - 1];
            from = theta_[n - 1];
        }
    }
    if (widest > 0.1 * pitch) {
        notes.push_back(
            fmt::format("the coupling between {:g} and {:g} deg is not in {}; it runs on a straight line "
                        "there",
                        from, from + widest, mutual.name));
    }
}

double SrCoupling::at(double theta_deg) const {
    if (theta_.empty()) {
        return 0.0;
    }
    double theta = wrapped(theta_deg, pitch_);
    const auto above = static_cast<std::size_t>(std::upper_bound(theta_.begin(), theta_.end(), theta) - theta_.begin());
    // Between the last point of a pitch and the first of the next.
    const bool over_the_end = above == 0 || above == theta_.size();
    const std::size_t high = over_the_end ? 0 : above;
    const std::size_t low = over_the_end ? theta_.size() - 1 : above - 1;
    const double start = over_the_end && above == 0 ? theta_[low] - pitch_ : theta_[low];
    const double width = over_the_end ? theta_[high] + pitch_ - theta_[low] : theta_[high] - theta_[low];
    const double part = width > 0.0 ? (theta - start) / width : 0.0;
    return value_[low] + part * (value_[high] - value_[low]);
}

}  // namespace kzb::tool
