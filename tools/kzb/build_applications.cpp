#include "kzb/build_applications.h"

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

// Angles of the three winding axes seen from the rotor's d axis.
std::array<double, 3> winding_angles(double theta_deg) {
    return {theta_deg, theta_deg - 120.0, theta_deg + 120.0};
}

// The node of the period that stands for node n of a cyclic axis: the closing one repeats the first bit for bit.
std::size_t distinct(const TableAxis& axis, std::size_t n) {
    return axis.cyclic && n + 1 == axis.nodes.size() ? 0 : n;
}

// Calls body(current, position index, theta) for each (amplitude, phase, position), position fastest.
template <class Body>
void each_point(const MachineMap& map, const TableGrids& grids, Body body) {
    for (const double amplitude : grids.amplitude.nodes) {
        for (std::size_t j = 0; j < grids.phase.nodes.size(); ++j) {
            const DqCurrent i = current_at(amplitude, grids.phase.nodes[distinct(grids.phase, j)]);
            for (std::size_t n = 0; n < grids.position.nodes.size(); ++n) {
                const std::size_t k = distinct(grids.position, n);
                body(i, k, map.theta_deg(k));
            }
        }
    }
}

// Flux linkages of the windings without current.
std::vector<double> noload_winding_flux(const MachineMap& map, const TableGrids& grids) {
    std::vector<double> values;
    for (std::size_t n = 0; n < grids.position.nodes.size(); ++n) {
        const std::size_t k = distinct(grids.position, n);
        const auto psi = winding_flux(map.at(0.0, 0.0, k), map.theta_deg(k));
        values.insert(values.end(), psi.begin(), psi.end());
    }
    return values;
}

// Secant inductances of SimpleHarmonic: column c from a current vector of the amplitude I along the axis of winding c,
//   column = (2 / 3 I) * winding_flux(psi(i) - psi(0)),  whose limit at I = 0 is the incremental one.
std::array<double, 9> secant_inductance(const MachineMap& map, std::size_t k, double amplitude,
                                        double zero_inductance) {
    const double theta = map.theta_deg(k);
    const MachinePoint noload = map.at(0.0, 0.0, k);
    if (amplitude == 0.0) {
        return winding_inductance(noload, theta, zero_inductance);
    }
    std::array<double, 9> inductance{};
    const auto axes = winding_angles(theta);
    for (std::size_t column = 0; column < 3; ++column) {
        MachinePoint p = map.at(amplitude * cos_deg(axes[column]), -amplitude * sin_deg(axes[column]), k);
        p.psi_d -= noload.psi_d;
        p.psi_q -= noload.psi_q;
        p.psi_0 -= noload.psi_0;
        const auto psi = winding_flux(p, theta);
        for (std::size_t row = 0; row < 3; ++row) {
            inductance[3 * column + row] = 2.0 / 3.0 * psi[row] / amplitude + zero_inductance / 3.0;
        }
    }
    return inductance;
}

// Secant inductance psi / i that stays bounded where i passes zero and psi does not (cross saturation):
//   (L0 * eps^2 + psi * i) / (eps^2 + i^2),  L0 the incremental value there
double bounded_secant(double psi, double i, double incremental, double eps) {
    return (incremental * eps * eps + psi * i) / (eps * eps + i * i);
}

}  // namespace

TableAxis component_axis(std::size_t count) {
    return {even_nodes(0.0, static_cast<double>(count - 1), count), false};
}

void put_table(KZB_STORE* store, const char* category, const char* key, const std::vector<TableAxis>& axes,
               const std::vector<double>& values) {
    std::vector<int> sizes;
    for (const TableAxis& axis : axes) {
        sizes.push_back(static_cast<int>(axis.nodes.size()));
    }
    const int dim = static_cast<int>(axes.size());
    if (kzb_create_table(category, key, dim, sizes.data(), store) != 0) {
        throw Failure(exit_run_failed,
                      fmt::format("table {}/{}: no memory for {} values", category, key, values.size()));
    }
    for (int axis = 1; axis <= dim; ++axis) {
        const TableAxis& a = axes[static_cast<std::size_t>(axis) - 1];
        for (std::size_t n = 0; n < a.nodes.size(); ++n) {
            kzb_set_table_axis_value(category, key, axis, static_cast<int>(n), a.nodes[n], store);
        }
        kzb_set_table_cyclic_flag(category, key, axis, a.cyclic ? 1 : 0, store);
    }
    std::vector<int> index(axes.size(), 0);
    for (const double value : values) {
        kzb_set_table_value(category, key, index.data(), value, store);
        for (std::size_t a = axes.size(); a-- > 0 && ++index[a] == sizes[a];) {
            index[a] = 0;
        }
    }
}

std::array<double, 3> winding_flux(const MachinePoint& point, double theta_deg) {
    std::array<double, 3> psi{};
    const auto axes = winding_angles(theta_deg);
    for (std::size_t k = 0; k < 3; ++k) {
        psi[k] = point.psi_d * cos_deg(axes[k]) - point.psi_q * sin_deg(axes[k]) + point.psi_0;
    }
    return psi;
}

std::array<double, 9> winding_inductance(const MachinePoint& point, double theta_deg, double zero_inductance) {
    std::array<double, 9> inductance{};
    const auto axes = winding_angles(theta_deg);
    for (std::size_t column = 0; column < 3; ++column) {
        // dq current per ampere of this winding, and the flux linkages it makes.
        const double id = 2.0 / 3.0 * cos_deg(axes[column]);
        const double iq = -2.0 / 3.0 * sin_deg(axes[column]);
        MachinePoint made;
        made.psi_d = point.l_dd * id + point.l_dq * iq;
        made.psi_q = point.l_qd * id + point.l_qq * iq;
        made.psi_0 = point.l_0d * id + point.l_0q * iq + zero_inductance / 3.0;
        const auto psi = winding_flux(made, theta_deg);
        for (std::size_t row = 0; row < 3; ++row) {
            inductance[3 * column + row] = psi[row];
        }
    }
    return inductance;
}

void put_torque(KZB_STORE* store, const char* category, const MachineMap& map, const TableGrids& grids) {
    std::vector<double> values;
    for (std::size_t j = 0; j < grids.phase.nodes.size(); ++j) {
        const double phase = grids.phase.nodes[distinct(grids.phase, j)];
        for (std::size_t n = 0; n < grids.position.nodes.size(); ++n) {
            for (const double amplitude : grids.amplitude.nodes) {
                const DqCurrent i = current_at(amplitude, phase);
                values.push_back(map.at(i.id, i.iq, distinct(grids.position, n)).torque);
            }
        }
    }
    put_table(store, category, "torque_ibeta", {grids.phase, grids.position, grids.amplitude}, values);
}

void put_harmonic(KZB_STORE* store, const MachineMap& map, const TableGrids& grids, const ApplicationOptions& options) {
    std::vector<double> flux;
    std::vector<double> inductance;
    each_point(map, grids, [&](const DqCurrent& i, std::size_t k, double theta) {
        const MachinePoint point = map.at(i.id, i.iq, k);
        const auto psi = winding_flux(point, theta);
        const auto l = winding_inductance(point, theta, options.zero_inductance);
        flux.insert(flux.end(), psi.begin(), psi.end());
        inductance.insert(inductance.end(), l.begin(), l.end());
    });
    put_table(store, "current_flux", "flux", {grids.amplitude, grids.phase, grids.position, component_axis(3)}, flux);
    put_table(store, "current_flux", "mag_flux", {grids.position, component_axis(3)}, noload_winding_flux(map, grids));
    put_table(store, "harmonic_inductance", "inductance",
              {grids.amplitude, grids.phase, grids.position, component_axis(9)}, inductance);
    put_torque(store, "harmonic_torque", map, grids);
}

void put_simple_harmonic(KZB_STORE* store, const MachineMap& map, const TableGrids& grids,
                         const ApplicationOptions& options) {
    std::vector<double> inductance;
    for (const double amplitude : grids.amplitude.nodes) {
        for (std::size_t n = 0; n < grids.position.nodes.size(); ++n) {
            const auto l = secant_inductance(map, distinct(grids.position, n), amplitude, options.zero_inductance);
            inductance.insert(inductance.end(), l.begin(), l.end());
        }
    }
    put_table(store, "mag_flux", "flux", {grids.position, component_axis(3)}, noload_winding_flux(map, grids));
    put_table(store, "inductance", "inductance", {grids.amplitude, grids.position, component_axis(9)}, inductance);
    put_torque(store, "torque", map, grids);
}

void put_ldlq(KZB_STORE* store, const MachineMap& map, const TableGrids& grids) {
    const MachinePoint noload = map.mean(0.0, 0.0);
    // Of the largest current; a compromise between the pull of cross saturation and the secant itself.
    const double eps = 0.05 * grids.current_max();
    std::vector<double> ld;
    std::vector<double> lq;
    std::vector<double> torque;
    for (std::size_t j = 0; j < grids.phase.nodes.size(); ++j) {
        const double phase = grids.phase.nodes[distinct(grids.phase, j)];
        for (const double amplitude : grids.amplitude.nodes) {
            const DqCurrent i = current_at(amplitude, phase);
            const MachinePoint p = map.mean(i.id, i.iq);
            ld.push_back(bounded_secant(p.psi_d - noload.psi_d, i.id, map.mean(0.0, i.iq).l_dd, eps));
            lq.push_back(bounded_secant(p.psi_q - noload.psi_q, i.iq, map.mean(i.id, 0.0).l_qq, eps));
            torque.push_back(p.torque);
        }
    }
    kzb_put_double("d_flux", "d_flux", power_invariant_factor * noload.psi_d, store);
    put_table(store, "dq_inductance", "d_inductance", {grids.phase, grids.amplitude}, ld);
    put_table(store, "dq_inductance", "q_inductance", {grids.phase, grids.amplitude}, lq);
    put_table(store, "dq_torque", "torque_ibeta", {grids.phase, grids.amplitude}, torque);
}

}  // namespace kzb::tool
