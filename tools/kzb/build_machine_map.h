// The flux map as a smooth function of dq current at each position node of the tables to be written.
//
// Over position: periodic cubic splines in dq, evaluated at theta_k = beta_zero + k * 360 / n electrical degrees.
// Over current: bicubic splines; their derivatives are the incremental inductances. Beyond the edge of the map the
// functions go on linearly from the nearest edge point.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kzb/build_source_map.h"
#include "kzb/build_spline.h"
#include "kzb/build_torque.h"

namespace kzb::tool {

// A map that covers one sign of the q current is completed by the mirror symmetry of the machine about its d axis:
//   psi_d(id, -iq, -theta) = psi_d(id, iq, theta),  psi_q and torque change sign,  psi_0 does not.
enum class Mirror { none, iq };

struct MachineOptions {
    double pole_pairs = 1.0;
    double beta_zero = 0.0;           // electrical degrees of the first position node
    std::size_t position_count = 72;  // nodes over 360 electrical degrees, the closing one not counted
    Mirror mirror = Mirror::none;
};

struct MachinePoint {
    double psi_d = 0.0;
    double psi_q = 0.0;
    double psi_0 = 0.0;
    // Incremental inductances: l_dq is d psi_d / d i_q.
    double l_dd = 0.0;
    double l_dq = 0.0;
    double l_qd = 0.0;
    double l_qq = 0.0;
    double l_0d = 0.0;
    double l_0q = 0.0;
    double torque = 0.0;
};

class MachineMap {
  public:
    MachineMap(const SourceMap& source, const MachineOptions& options);

    double pole_pairs() const { return options_.pole_pairs; }
    double beta_zero() const { return options_.beta_zero; }
    std::size_t position_count() const { return options_.position_count; }
    double theta_deg(std::size_t k) const;  // k up to and including position_count()
    bool has_positions() const { return planes_.size() > 1; }
    TorqueSource torque_source() const { return torque_source_; }
    // Nodes of the map after mirroring.
    const std::vector<double>& id() const { return id_; }
    const std::vector<double>& iq() const { return iq_; }
    bool covers(double id, double iq) const;

    MachinePoint at(double id, double iq, std::size_t k) const;
    // Mean over the positions.
    MachinePoint mean(double id, double iq) const { return point_of(mean_, id, iq); }
    // Largest deviation of the i_q = 0 line of a mirrored map from its own mirror image, psi_q in Vs.
    double mirror_residual() const { return mirror_residual_; }

  private:
    struct Plane {
        BicubicSurface psi_d, psi_q, psi_0, rest;
    };
    MachinePoint point_of(const Plane& plane, double id, double iq) const;
    void require_usable(const SourceMap& source) const;
    std::vector<double> resampled(const SourceMap& source, const std::vector<double>& field, double mirror_sign,
                                  bool alternates);
    Plane plane_of(const std::vector<std::vector<double>>& fields, std::size_t k) const;

    MachineOptions options_;
    std::vector<double> id_;
    std::vector<double> iq_;
    std::vector<Plane> planes_;  // one per position, a single one for a map without positions
    Plane mean_;
    TorqueSource torque_source_ = TorqueSource::flux_and_current;
    double mirror_residual_ = 0.0;
};

}  // namespace kzb::tool
