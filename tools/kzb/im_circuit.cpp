#include "kzb/im_circuit.h"

#include <math.h>  // the header below calls isnan without std::

#include <algorithm>
#include <boost/math/interpolators/pchip.hpp>
#include <cmath>
#include <functional>

namespace kzb::tool {

struct MagnetizingCurve::Interpolation {
    boost::math::interpolators::pchip<std::vector<double>> curve;
};

namespace {

using Complex = std::complex<double>;

constexpr std::size_t cubic_points = 4;  // fewer are joined by straight lines

// The place where a rising function that is at or below `target` at 0 reaches it, to the last digits.
double where_reached(const std::function<double(double)>& rising, double target, double start) {
    double high = std::max(start, 1e-12);
    for (int n = 0; n < 200 && rising(high) < target; ++n) {
        high *= 2.0;
    }
    double low = 0.0;
    for (int n = 0; n < 200 && high - low > 1e-15 * high; ++n) {
        const double middle = 0.5 * (low + high);
        (rising(middle) < target ? low : high) = middle;
    }
    return 0.5 * (low + high);
}

// Rotor current that belongs to a main flux linkage of angle 0.
Complex rotor_current(const ImCircuit& c, double slip_omega, double flux) {
    return -Complex(0.0, slip_omega * flux) / Complex(c.r2, slip_omega * c.leakage2);
}

}  // namespace

MagnetizingCurve::MagnetizingCurve(const std::vector<double>& current, const std::vector<double>& flux)
    : current_(current), flux_(flux) {
    if (current_.size() >= cubic_points) {
        auto x = current_;
        auto y = flux_;
        between_ = std::make_shared<const Interpolation>(
            Interpolation{boost::math::interpolators::pchip<std::vector<double>>(std::move(x), std::move(y))});
    }
}

double MagnetizingCurve::flux(double current) const {
    if (current_.empty()) {
        return inductance_ * current;
    }
    const auto last = current_.size() - 1;
    if (between_ && current < current_.back()) {
        return between_->curve(current);
    }
    const auto above = std::upper_bound(current_.begin(), current_.end(), current) - current_.begin();
    const std::size_t right = std::clamp<std::size_t>(static_cast<std::size_t>(above), 1, last);
    const double slope = (flux_[right] - flux_[right - 1]) / (current_[right] - current_[right - 1]);
    return flux_[right] + slope * (current - current_[right]);
}

double MagnetizingCurve::inductance(double current) const {
    if (current_.empty()) {
        return inductance_;
    }
    const double i = std::max(current, 1e-3 * current_[1]);
    return flux(i) / i;
}

double MagnetizingCurve::current_of(double flux_linkage) const {
    return where_reached([this](double i) { return flux(i); }, flux_linkage,
                         current_.empty() ? flux_linkage / inductance_ : current_.back());
}

double primary_current(const ImCircuit& c, double slip_omega, double i_m) {
    return std::abs(i_m - rotor_current(c, slip_omega, c.main.flux(i_m)));
}

double magnetizing_current(const ImCircuit& c, double slip_omega, double i_1) {
    if (i_1 <= 0.0) {
        return 0.0;
    }
    return where_reached([&](double i_m) { return primary_current(c, slip_omega, i_m); }, i_1, i_1);
}

ImState steady_state(const ImCircuit& c, double voltage, double omega, double slip) {
    // All with the main flux linkage as real axis; the voltage turns it into place.
    const auto currents_at = [&](double i_m) {
        const Complex i2 = rotor_current(c, slip * omega, c.main.flux(i_m));
        return std::pair{i_m - i2, i2};
    };
    const auto voltage_at = [&](double i_m) {
        const Complex i1 = currents_at(i_m).first;
        return Complex(c.r1, omega * c.leakage1) * i1 + Complex(0.0, omega * c.main.flux(i_m));
    };
    const double i_m = where_reached([&](double i) { return std::abs(voltage_at(i)); }, voltage, voltage);
    const auto [i1, i2] = currents_at(i_m);
    const Complex v = voltage_at(i_m);
    const Complex turn = std::abs(v) > 0.0 ? std::conj(v) / std::abs(v) : Complex(1.0, 0.0);
    // torque = 1.5 p Im(i1 conj(psi_m)) = 1.5 p psi_m Im(i1)
    return {i1 * turn, i2 * turn, 1.5 * c.pole_pairs * c.main.flux(i_m) * i1.imag()};
}

}  // namespace kzb::tool
