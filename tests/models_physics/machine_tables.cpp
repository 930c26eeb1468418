#include "models_physics/machine_tables.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace kzb::physics {

namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;
const double k32 = std::sqrt(1.5);  // power-invariant per peak

struct Polar {
    double amplitude;
    double phase;
};
Polar polar(const Dq& i) {
    return {std::hypot(i.d, i.q), std::atan2(-i.d, i.q) / degree};
}

double poles_of(KZB_STORE* store) {
    return kzb_get_int("control", "number_of_poles", store);
}

class HarmonicTables : public MachineTables {
  public:
    explicit HarmonicTables(KZB_STORE* store)
        : flux_(store, "current_flux", "flux"),
          torque_(store, "harmonic_torque", "torque_ibeta"),
          pairs_(poles_of(store) / 2.0) {}
    Dq flux(const Dq& i, double theta) const override {
        const Polar p = polar(i);
        double phase[3];
        for (int k = 0; k < 3; ++k) {
            phase[k] = flux_.at({p.amplitude, p.phase, theta / pairs_, static_cast<double>(k)});
        }
        return park(phase, theta);
    }
    double torque(const Dq& i, double theta) const override {
        const Polar p = polar(i);
        return torque_.at({p.phase, theta / pairs_, p.amplitude});
    }
    bool left() const override { return flux_.left() || torque_.left(); }

  private:
    Table flux_;
    Table torque_;
    double pairs_;
};

// psi_d = magnet flux + Ld i_d, psi_q = Lq i_q, torque = 1.5 p (psi_d i_q - psi_q i_d).
class LdLqTables : public MachineTables {
  public:
    explicit LdLqTables(KZB_STORE* store)
        : ld_(store, "dq_inductance", "d_inductance"),
          lq_(store, "dq_inductance", "q_inductance"),
          magnet_(kzb_get_double("d_flux", "d_flux", store) / k32),
          pairs_(poles_of(store) / 2.0) {}
    Dq flux(const Dq& i, double) const override {
        const Polar p = polar(i);
        return {magnet_ + ld_.at({p.phase, p.amplitude}) * i.d, lq_.at({p.phase, p.amplitude}) * i.q};
    }
    double torque(const Dq& i, double theta) const override {
        const Dq psi = flux(i, theta);
        return 1.5 * pairs_ * (psi.d * i.q - psi.q * i.d);
    }
    bool left() const override { return ld_.left() || lq_.left(); }

  private:
    Table ld_;
    Table lq_;
    double magnet_;
    double pairs_;
};

// psi = magnet flux + L i; the column of a winding with negative current is taken half an electrical period on.
class SimpleHarmonicTables : public MachineTables {
  public:
    explicit SimpleHarmonicTables(KZB_STORE* store)
        : magnet_(store, "mag_flux", "flux"),
          inductance_(store, "inductance", "inductance"),
          torque_(store, "torque", "torque_ibeta"),
          pairs_(poles_of(store) / 2.0) {}
    Dq flux(const Dq& i, double theta) const override {
        double phase[3];
        for (int row = 0; row < 3; ++row) {
            phase[row] = magnet_.at({theta / pairs_, static_cast<double>(row)});
            for (int column = 0; column < 3; ++column) {
                const double current = winding(i, theta, column);
                const double seen = current < 0.0 ? theta + 180.0 : theta;
                phase[row] += current * inductance_.at(
                                            {polar(i).amplitude, seen / pairs_, static_cast<double>(3 * column + row)});
            }
        }
        return park(phase, theta);
    }
    double torque(const Dq& i, double theta) const override {
        const Polar p = polar(i);
        return torque_.at({p.phase, theta / pairs_, p.amplitude});
    }
    bool left() const override { return inductance_.left() || torque_.left(); }

  private:
    Table magnet_;
    Table inductance_;
    Table torque_;
    double pairs_;
};

class FluxIntegralTables : public MachineTables {
  public:
    explicit FluxIntegralTables(KZB_STORE* store)
        : id_(store, "current_table", "id"),
          iq_(store, "current_table", "iq"),
          fd_(store, "flux_table", "fd_noload"),
          fq_(store, "flux_table", "fq_noload"),
          torque_(store, "harmonic_torque", "torque_ibeta"),
          pairs_(poles_of(store) / 2.0) {}
    // Without current only: these tables go from flux to current.
    Dq flux(const Dq&, double theta) const override {
        return {fd_.at({theta / pairs_}) / k32, fq_.at({theta / pairs_}) / k32};
    }
    Dq current(const Dq& psi, double theta, const Dq&) const override {
        const std::vector<double> where{k32 * psi.d, k32 * psi.q, theta / pairs_};
        return {id_.at(where) / k32, iq_.at(where) / k32};
    }
    double torque(const Dq& i, double theta) const override {
        const Polar p = polar(i);
        return torque_.at({p.phase, theta / pairs_, p.amplitude});
    }
    bool left() const override { return id_.left() || iq_.left() || torque_.left(); }

  private:
    Table id_;
    Table iq_;
    Table fd_;
    Table fq_;
    Table torque_;
    double pairs_;
};

}  // namespace

Table::Table(KZB_STORE* store, const char* category, const char* key) {
    const int dim = kzb_get_table_dim(category, key, store);
    if (dim == 0) {
        throw std::runtime_error(std::string("no table ") + category + "/" + key);
    }
    for (int axis = 1; axis <= dim; ++axis) {
        std::vector<double> nodes;
        for (int n = 0; n < kzb_get_table_num_rows(category, key, axis, store); ++n) {
            nodes.push_back(kzb_get_table_axis_value(category, key, axis, n, store));
        }
        axes_.push_back(nodes);
        cyclic_.push_back(kzb_get_table_cyclic_flag(category, key, axis, store) == 1);
    }
    std::vector<int> index(axes_.size(), 0);
    for (bool more = true; more;) {
        values_.push_back(kzb_get_table_value(category, key, index.data(), store));
        more = false;
        for (std::size_t a = index.size(); a-- > 0 && !more;) {
            more = ++index[a] < static_cast<int>(axes_[a].size());
            if (!more) {
                index[a] = 0;
            }
        }
    }
}

double Table::at(const std::vector<double>& where) const {
    // Position and weight of the upper neighbour on each axis.
    std::vector<std::size_t> low(axes_.size());
    std::vector<double> weight(axes_.size());
    for (std::size_t a = 0; a < axes_.size(); ++a) {
        const std::vector<double>& nodes = axes_[a];
        if (nodes.size() == 1) {
            continue;  // constant along this axis
        }
        double x = where[a];
        if (cyclic_[a]) {
            const double period = nodes.back() - nodes.front();
            x -= std::floor((x - nodes.front()) / period) * period;
        }
        left_ = left_ || x < nodes.front() - 1e-9 || x > nodes.back() + 1e-9;
        x = std::clamp(x, nodes.front(), nodes.back());
        const auto above = std::upper_bound(nodes.begin() + 1, nodes.end() - 1, x);
        low[a] = static_cast<std::size_t>(above - nodes.begin()) - 1;
        weight[a] = (x - nodes[low[a]]) / (nodes[low[a] + 1] - nodes[low[a]]);
    }
    double sum = 0.0;
    for (unsigned corner = 0; corner < (1U << axes_.size()); ++corner) {
        double part = 1.0;
        std::size_t position = 0;
        for (std::size_t a = 0; a < axes_.size(); ++a) {
            const bool upper = ((corner >> a) & 1U) != 0;
            part *= upper ? weight[a] : 1.0 - weight[a];
            position = position * axes_[a].size() + low[a] + (upper ? 1 : 0);
        }
        sum += part == 0.0 ? 0.0 : part * values_[position];
    }
    return sum;
}

// Newton's method with slopes from differences; the flux is piecewise smooth and rises with the current.
Dq MachineTables::current(const Dq& psi, double theta, const Dq& start) const {
    Dq i = start;
    for (int step = 0; step < 100; ++step) {
        const Dq f = flux(i, theta);
        const Dq off{f.d - psi.d, f.q - psi.q};
        if (std::hypot(off.d, off.q) < 1e-11) {
            return i;
        }
        const double h = 1e-4;
        const Dq fd = flux({i.d + h, i.q}, theta);
        const Dq fq = flux({i.d, i.q + h}, theta);
        const double dd = (fd.d - f.d) / h;
        const double qd = (fd.q - f.q) / h;
        const double dq = (fq.d - f.d) / h;
        const double qq = (fq.q - f.q) / h;
        const double det = dd * qq - dq * qd;
        const double damping = step < 20 ? 1.0 : 0.5;  // a kink between two cells can make full steps swing
        i.d -= damping * (off.d * qq - off.q * dq) / det;
        i.q -= damping * (off.q * dd - off.d * qd) / det;
    }
    throw std::runtime_error("flux linkage not inverted");
}

std::unique_ptr<MachineTables> machine_tables(KZB_STORE* store, const char* application) {
    const std::string name = application;
    if (name == "Harmonic") {
        return std::make_unique<HarmonicTables>(store);
    }
    if (name == "LdLq") {
        return std::make_unique<LdLqTables>(store);
    }
    if (name == "SimpleHarmonic") {
        return std::make_unique<SimpleHarmonicTables>(store);
    }
    return std::make_unique<FluxIntegralTables>(store);
}

Dq park(const double phase[3], double theta) {
    Dq dq;
    for (int k = 0; k < 3; ++k) {
        const double angle = (theta - 120.0 * k) * degree;
        dq.d += 2.0 / 3.0 * phase[k] * std::cos(angle);
        dq.q -= 2.0 / 3.0 * phase[k] * std::sin(angle);
    }
    return dq;
}

double winding(const Dq& vector, double theta, int phase) {
    const double angle = (theta - 120.0 * phase) * degree;
    return vector.d * std::cos(angle) - vector.q * std::sin(angle);
}

}  // namespace kzb::physics
