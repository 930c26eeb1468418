// A wound-field synchronous machine in the rotor's frame: flux linkages of d, q and field winding over their currents.
//
// dq quantities are peak and amplitude-invariant, motor convention, the field winding's flux on +d. The windings take
// the power 1.5 (v_d i_d + v_q i_q) + v_f i_f, and no energy comes from going around in the currents, so
//   d psi_f / d i_d = 1.5 d psi_d / d i_f,   d psi_f / d i_q = 1.5 d psi_q / d i_f
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace kzb::tool {

struct WoundFieldPoint {
    double psi_d = 0.0;
    double psi_q = 0.0;
    double psi_f = 0.0;
    // Incremental inductances: l_dq is d psi_d / d i_q. l_fd = 1.5 l_df, l_fq = 1.5 l_qf.
    double l_dd = 0.0;
    double l_dq = 0.0;
    double l_qd = 0.0;
    double l_qq = 0.0;
    double l_df = 0.0;
    double l_qf = 0.0;
    double l_ff = 0.0;
};

class WoundFieldMachine {
  public:
    virtual ~WoundFieldMachine() = default;
    virtual WoundFieldPoint at(double id, double iq, double i_f) const = 0;
};

// psi_d = L_d i_d + M i_f, psi_q = L_q i_q, psi_f = 1.5 M i_d + L_f i_f
struct WoundFieldConstants {
    double l_d = 0.0;
    double l_q = 0.0;
    double m = 0.0;
    double l_f = 0.0;
};
std::unique_ptr<WoundFieldMachine> linear_wound_field(const WoundFieldConstants& constants);

// The flux map of a machine over field current, stator current and current phase; see wfsm_map.h.
struct WoundFieldMap {
    std::string name;
    std::vector<double> field;      // A, ascending, above 0
    std::vector<double> amplitude;  // A peak, ascending from 0
    std::vector<double> phase;      // degrees from +q towards -d, ascending from 0 to 180
    // field, phase, amplitude; the last fastest.
    std::vector<double> psi_d;
    std::vector<double> psi_q;
    std::vector<double> torque;  // empty where the file has none

    std::size_t index(std::size_t f, std::size_t p, std::size_t a) const {
        return (f * phase.size() + p) * amplitude.size() + a;
    }
};

// The completed map. Over current: bicubic splines in amplitude and phase; for d currents above 0 psi_d goes on
// linearly from i_d = 0 and psi_q stays. Over field current: cubic splines through the nodes and 0, where they go on
// linearly from the two smallest field currents. The field winding's flux linkage:
//   psi_f = psi_f0(i_f) + d/d i_f of 1.5 integral (psi_d d i_d + psi_q d i_q) from no current
//   psi_f0 = a psi_d(0, 0, i_f) + b i_f,   a = 1.5 M / L_d,   b = a M s / (1 - s)
// M and L_d being those of the smallest field current, so that without saturation the leakage factor
// 1 - 1.5 M^2 / (L_d L_f) is s; for s = 0 it is the least that keeps the incremental inductances of d axis and field
// winding positive definite at every point of the map.
class MappedWoundField : public WoundFieldMachine {
  public:
    MappedWoundField(const WoundFieldMap& map, double leakage_factor);
    ~MappedWoundField() override;
    WoundFieldPoint at(double id, double iq, double i_f) const override;
    double unsaturated_field_inductance() const;
    double leakage_factor() const;

  private:
    double least_leakage(const WoundFieldMap& map) const;
    class Plane;
    struct Data;
    std::unique_ptr<Data> data_;
};

}  // namespace kzb::tool
