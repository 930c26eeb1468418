// The formulas of frame.h, in the order of operations that the results bind to.
#include "store/transform/frame.h"

#include <cmath>

#include "store/store.h"

namespace kzb {
namespace {

const double pi = 4 * std::atan(1.0);
const double k = std::sqrt(2.0 / 3.0);

}  // namespace

double radians(double angle_deg) {
    return angle_deg * pi / 180;
}

Frame::Frame(double angle_deg) {
    const double r = radians(angle_deg);
    const double r_b = r - (2.0 / 3.0) * pi;
    const double r_c = r + (2.0 / 3.0) * pi;
    cos_[0] = std::cos(r);
    cos_[1] = std::cos(r_b);
    cos_[2] = std::cos(r_c);
    sin_[0] = std::sin(r);
    sin_[1] = std::sin(r_b);
    sin_[2] = std::sin(r_c);
}

Dq0 Frame::dq0(const Uvw& x) const {
    return {k * (x.u * cos_[0] + x.v * cos_[1] + x.w * cos_[2]), k * (-x.u * sin_[0] - x.v * sin_[1] - x.w * sin_[2]),
            std::sqrt(1.0 / 3.0) * (x.u + x.v + x.w)};
}

Uvw Frame::uvw(const Dq0& x) const {
    const double zero = std::sqrt(1.0 / 2.0) * x.zero;
    return {k * (x.d * cos_[0] - x.q * sin_[0] + zero), k * (x.d * cos_[1] - x.q * sin_[1] + zero),
            k * (x.d * cos_[2] - x.q * sin_[2] + zero)};
}

double Frame::d_inductance(const double* L) const {
    double A[3];
    for (int n = 0; n < 3; ++n) {
        A[n] = k * (L[n] * cos_[0] + L[3 + n] * cos_[1] + L[6 + n] * cos_[2]);
    }
    return k * (A[0] * cos_[0] + A[1] * cos_[1] + A[2] * cos_[2]);
}

ElectricalAngle::ElectricalAngle(const KZB_STORE& store)
    : poles_(get_int(store, "control", "number_of_poles")), beta_zero_(get_double(store, "control", "beta_zero")) {}

std::vector<Frame> frames_at(const KZB_STORE& store, const std::vector<double>& positions) {
    const ElectricalAngle angle(store);
    std::vector<Frame> frames;
    frames.reserve(positions.size());
    for (const double position : positions) {
        frames.emplace_back(angle(position));
    }
    return frames;
}

}  // namespace kzb
