// The change between the phase quantities u, v, w and d, q, 0 at one electrical angle; it keeps the power.
//
//   r = angle,  r_b = r - 2/3 pi,  r_c = r + 2/3 pi,  k = sqrt(2/3)
//   d = k (u cos r + v cos r_b + w cos r_c)       u = k (d cos r   - q sin r   + sqrt(1/2) zero)
//   q = k (-u sin r - v sin r_b - w sin r_c)      v = k (d cos r_b - q sin r_b + sqrt(1/2) zero)
//   zero = sqrt(1/3) (u + v + w)                  w = k (d cos r_c - q sin r_c + sqrt(1/2) zero)
#pragma once

#include <vector>

struct KZB_STORE;

namespace kzb {

struct Uvw {
    double u = 0.0;
    double v = 0.0;
    double w = 0.0;
};

struct Dq0 {
    double d = 0.0;
    double q = 0.0;
    double zero = 0.0;
};

class Frame {
  public:
    explicit Frame(double angle_deg);
    Dq0 dq0(const Uvw& phases) const;
    Uvw uvw(const Dq0& axes) const;
    // d-axis inductance of the phase inductance matrix L[3 * row + column].
    double d_inductance(const double* phase_inductance) const;

  private:
    double cos_[3];
    double sin_[3];
};

// Electrical angle (deg) of a rotor position (mechanical deg), by the file's pole count and zero of the angle.
class ElectricalAngle {
  public:
    explicit ElectricalAngle(const KZB_STORE& store);
    double operator()(double position) const { return position * poles_ / 2 + beta_zero_; }

  private:
    double poles_;
    double beta_zero_;
};

// Frames at rotor positions (mechanical deg).
std::vector<Frame> frames_at(const KZB_STORE& store, const std::vector<double>& positions);

double radians(double angle_deg);

}  // namespace kzb
