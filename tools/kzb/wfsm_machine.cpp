#include "kzb/wfsm_machine.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "kzb/build_grids.h"
#include "kzb/build_spline.h"

namespace kzb::tool {

namespace {

constexpr double to_deg = 57.29577951308232;

class LinearWoundField : public WoundFieldMachine {
  public:
    explicit LinearWoundField(const WoundFieldConstants& c) : c_(c) {}
    WoundFieldPoint at(double id, double iq, double i_f) const override {
        WoundFieldPoint p;
        p.psi_d = c_.l_d * id + c_.m * i_f;
        p.psi_q = c_.l_q * iq;
        p.psi_f = 1.5 * c_.m * id + c_.l_f * i_f;
        p.l_dd = c_.l_d;
        p.l_qq = c_.l_q;
        p.l_df = c_.m;
        p.l_ff = c_.l_f;
        return p;
    }

  private:
    WoundFieldConstants c_;
};

struct Flux {
    double d = 0.0;
    double q = 0.0;
};

// Weights of the five-point Gauss-Legendre rule on [0, 1].
struct GaussPoint {
    double t;
    double weight;
};
const std::array<GaussPoint, 5>& gauss() {
    static const std::array<GaussPoint, 5> points = [] {
        const double inner = std::sqrt(5.0 - 2.0 * std::sqrt(10.0 / 7.0)) / 3.0;
        const double outer = std::sqrt(5.0 + 2.0 * std::sqrt(10.0 / 7.0)) / 3.0;
        const double wi = (322.0 + 13.0 * std::sqrt(70.0)) / 900.0;
        const double wo = (322.0 - 13.0 * std::sqrt(70.0)) / 900.0;
        const auto on = [](double x, double w) { return GaussPoint{0.5 + 0.5 * x, 0.5 * w}; };
        return std::array<GaussPoint, 5>{on(-outer, wo), on(-inner, wi), on(0.0, 128.0 / 225.0), on(inner, wi),
                                         on(outer, wo)};
    }();
    return points;
}

// Cubic through nodes and slopes; beyond the ends straight on.
struct Curve {
    double value;
    double slope;
};
Curve on_spline(const std::vector<double>& x, const std::vector<double>& y, const std::vector<double>& m, double at) {
    if (at <= x.front()) {
        return {y.front() + m.front() * (at - x.front()), m.front()};
    }
    if (at >= x.back()) {
        return {y.back() + m.back() * (at - x.back()), m.back()};
    }
    const auto above = std::upper_bound(x.begin(), x.end(), at) - x.begin();
    const auto i = static_cast<std::size_t>(above) - 1;
    const double h = x[i + 1] - x[i];
    const double t = (at - x[i]) / h;
    const double value = y[i] * (1.0 + 2.0 * t) * (1.0 - t) * (1.0 - t) + h * m[i] * t * (1.0 - t) * (1.0 - t) +
                         y[i + 1] * t * t * (3.0 - 2.0 * t) + h * m[i + 1] * t * t * (t - 1.0);
    const double slope = 6.0 * t * (1.0 - t) * (y[i + 1] - y[i]) / h + m[i] * (1.0 - t) * (1.0 - 3.0 * t) +
                         m[i + 1] * t * (3.0 * t - 2.0);
    return {value, slope};
}

}  // namespace

std::unique_ptr<WoundFieldMachine> linear_wound_field(const WoundFieldConstants& constants) {
    return std::make_unique<LinearWoundField>(constants);
}

// The map at one field current of the source.
class MappedWoundField::Plane {
  public:
    Plane(const WoundFieldMap& map, std::size_t f) : reach_(map.amplitude.back()) {
        std::vector<double> d;
        std::vector<double> q;
        for (std::size_t a = 0; a < map.amplitude.size(); ++a) {
            for (std::size_t p = 0; p < map.phase.size(); ++p) {
                d.push_back(map.psi_d[map.index(f, p, a)]);
                q.push_back(map.psi_q[map.index(f, p, a)]);
            }
        }
        d_ = BicubicSurface(map.amplitude, map.phase, d);
        q_ = BicubicSurface(map.amplitude, map.phase, q);
    }
    Flux at(double id, double iq) const {
        if (id <= 0.0) {
            return polar(id, iq);
        }
        // A small step inside gives the direction in which the map goes on.
        const double h = 1e-3 * reach_;
        const Flux edge = polar(0.0, iq);
        const Flux inside = polar(-h, iq);
        return {edge.d + id / h * (edge.d - inside.d), edge.q};
    }

  private:
    Flux polar(double id, double iq) const {
        const double amplitude = std::hypot(id, iq);
        const double against_field = id == 0.0 ? 0.0 : -id;  // no -0.0, which would turn the phase
        const double phase = amplitude > 0.0 ? std::atan2(against_field, iq) * to_deg : 90.0;
        return {d_.at(amplitude, phase).f, q_.at(amplitude, phase).f};
    }
    BicubicSurface d_;
    BicubicSurface q_;
    double reach_;
};

struct MappedWoundField::Data {
    std::vector<Plane> planes;
    std::vector<double> nodes;   // field currents with 0
    std::vector<double> psi_f0;  // of the nodes
    double reach = 0.0;          // largest amplitude
    std::vector<double> breaks;  // amplitudes of the map, where the radial integral is parted
    double l_f0 = 0.0;
    double leakage_factor = 0.0;

    // One value per node; at 0 by the straight line through the first two planes, without its value at no current.
    template <class OfPlane>
    std::vector<double> along_field(const OfPlane& of_plane) const {
        std::vector<double> values{0.0};
        for (const Plane& plane : planes) {
            values.push_back(of_plane(plane));
        }
        const double part = nodes[1] / (nodes[2] - nodes[1]);
        values[0] = values[1] - part * (values[2] - values[1]);
        return values;
    }
    // A machine without field current turns all flux linkages with all currents: that gives d currents above 0.
    std::vector<double> flux_along_field(double id, double iq, bool q) const {
        std::vector<double> values = of_planes(id, iq, q);
        values[0] = id > 0.0 ? -without_field(-id, -iq, q) : without_field(id, iq, q);
        return values;
    }
    std::vector<double> of_planes(double id, double iq, bool q) const {
        return along_field([&](const Plane& plane) {
            const Flux flux = plane.at(id, iq);
            return q ? flux.q : flux.d;
        });
    }
    double without_field(double id, double iq, bool q) const {
        return of_planes(id, iq, q)[0] - of_planes(0.0, 0.0, q)[0];
    }
    // 1.5 integral of psi . di from no current along the straight way.
    std::vector<double> coenergy(double id, double iq) const {
        std::vector<double> sum(nodes.size(), 0.0);
        const double amplitude = std::hypot(id, iq);
        std::vector<double> parts{0.0};
        for (const double b : breaks) {
            if (b > 0.0 && b < amplitude) {
                parts.push_back(b / amplitude);
            }
        }
        parts.push_back(1.0);
        for (std::size_t k = 0; k + 1 < parts.size(); ++k) {
            const double width = parts[k + 1] - parts[k];
            for (const GaussPoint& point : gauss()) {
                const double t = parts[k] + width * point.t;
                const auto d = flux_along_field(t * id, t * iq, false);
                const auto q = flux_along_field(t * id, t * iq, true);
                for (std::size_t n = 0; n < sum.size(); ++n) {
                    sum[n] += 1.5 * width * point.weight * (d[n] * id + q[n] * iq);
                }
            }
        }
        return sum;
    }
};

MappedWoundField::MappedWoundField(const WoundFieldMap& map, double leakage_factor) : data_(std::make_unique<Data>()) {
    Data& data = *data_;
    for (std::size_t f = 0; f < map.field.size(); ++f) {
        data.planes.emplace_back(map, f);
    }
    data.nodes = map.field;
    data.nodes.insert(data.nodes.begin(), 0.0);
    data.reach = map.amplitude.back();
    data.breaks = map.amplitude;
    const double h = 1e-3 * data.reach;
    const double m = data.planes.front().at(0.0, 0.0).d / map.field.front();
    const double l_d = (data.planes.front().at(0.0, 0.0).d - data.planes.front().at(-h, 0.0).d) / h;
    const double a = 1.5 * m / l_d;
    const std::vector<double> noload = data.flux_along_field(0.0, 0.0, false);
    for (const double flux : noload) {
        data.psi_f0.push_back(a * flux);
    }
    const double b = leakage_factor > 0.0 ? a * m * leakage_factor / (1.0 - leakage_factor) : least_leakage(map);
    for (std::size_t n = 0; n < data.nodes.size(); ++n) {
        data.psi_f0[n] += b * data.nodes[n];
    }
    data.l_f0 = a * m + b;
    data.leakage_factor = b / data.l_f0;
}

// The field winding's leakage with which the incremental inductances of d axis and field winding are positive definite
// at every point of the map: l_dd l_ff above 1.5 l_df^2.
double MappedWoundField::least_leakage(const WoundFieldMap& map) const {
    constexpr double margin = 1.05;
    double least = 0.0;
    for (const double i_f : map.field) {
        for (const double phase : map.phase) {
            for (const double amplitude : map.amplitude) {
                const DqCurrent i = current_at(amplitude, phase);
                const WoundFieldPoint p = at(i.id, i.iq, i_f);
                if (p.l_dd > 0.0) {
                    least = std::max(least, margin * 1.5 * p.l_df * p.l_df / p.l_dd - p.l_ff);
                }
            }
        }
    }
    return least;
}

MappedWoundField::~MappedWoundField() = default;

double MappedWoundField::unsaturated_field_inductance() const {
    return data_->l_f0;
}

double MappedWoundField::leakage_factor() const {
    return data_->leakage_factor;
}

WoundFieldPoint MappedWoundField::at(double id, double iq, double i_f) const {
    const Data& data = *data_;
    const auto flux = [&](double d, double c, bool q) {
        const std::vector<double> values = data.flux_along_field(d, c, q);
        return on_spline(data.nodes, values, spline_slopes(data.nodes, values), i_f);
    };
    WoundFieldPoint p;
    const Curve d = flux(id, iq, false);
    const Curve q = flux(id, iq, true);
    p.psi_d = d.value;
    p.psi_q = q.value;
    p.l_df = d.slope;
    p.l_qf = q.slope;
    const double h = 1e-3 * data.reach;
    p.l_dd = (flux(id + h, iq, false).value - flux(id - h, iq, false).value) / (2.0 * h);
    p.l_qd = (flux(id + h, iq, true).value - flux(id - h, iq, true).value) / (2.0 * h);
    p.l_dq = (flux(id, iq + h, false).value - flux(id, iq - h, false).value) / (2.0 * h);
    p.l_qq = (flux(id, iq + h, true).value - flux(id, iq - h, true).value) / (2.0 * h);
    std::vector<double> psi_f = spline_slopes(data.nodes, data.coenergy(id, iq));
    for (std::size_t n = 0; n < psi_f.size(); ++n) {
        psi_f[n] += data.psi_f0[n];
    }
    const Curve f = on_spline(data.nodes, psi_f, spline_slopes(data.nodes, psi_f), i_f);
    p.psi_f = f.value;
    p.l_ff = f.slope;
    return p;
}

}  // namespace kzb::tool
