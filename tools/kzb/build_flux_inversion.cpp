#include "kzb/build_flux_inversion.h"

#include <algorithm>
#include <boost/math/tools/toms748_solve.hpp>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <vector>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr double flux_tolerance = 1e-12;  // part of the flux searched for
constexpr int newton_steps = 60;
constexpr double widest = 100.0;  // times the width of the map

double width_of(const std::vector<double>& axis) {
    return axis.back() - axis.front();
}

struct Residual {
    MachinePoint point;
    double d;
    double q;
    double size;
};

Residual residual_at(const MachineMap& map, std::size_t k, DqCurrent i, double psi_d, double psi_q) {
    const MachinePoint point = map.at(i.id, i.iq, k);
    const double d = point.psi_d - psi_d;
    const double q = point.psi_q - psi_q;
    return {point, d, q, std::hypot(d, q)};
}

std::optional<DqCurrent> newton(const MachineMap& map, std::size_t k, double psi_d, double psi_q, DqCurrent i) {
    const double width = std::max(width_of(map.id()), width_of(map.iq()));
    const double flux_scale =
        std::max(std::hypot(psi_d, psi_q), width * std::max(map.mean(0.0, 0.0).l_dd, map.mean(0.0, 0.0).l_qq));
    const double enough = flux_tolerance * flux_scale;
    Residual r = residual_at(map, k, i, psi_d, psi_q);
    for (int step = 0; step < newton_steps && r.size > enough; ++step) {
        const MachinePoint& p = r.point;
        const double determinant = p.l_dd * p.l_qq - p.l_dq * p.l_qd;
        if (!(determinant > 0.0)) {
            return std::nullopt;
        }
        const DqCurrent move{(-r.d * p.l_qq + r.q * p.l_dq) / determinant,
                             (-r.q * p.l_dd + r.d * p.l_qd) / determinant};
        double part = 1.0;
        Residual next = r;
        DqCurrent there = i;
        do {
            there = {i.id + part * move.id, i.iq + part * move.iq};
            next = residual_at(map, k, there, psi_d, psi_q);
            part *= 0.5;
        } while (!(next.size < r.size) && part > 1e-4);
        if (!(next.size < r.size)) {
            return std::nullopt;
        }
        i = there;
        r = next;
    }
    return r.size <= enough ? std::optional(i) : std::nullopt;
}

// Root of a rising function between -reach and reach, nothing where there is none.
template <class Function>
std::optional<double> rising_root(double reach, Function f) {
    const double low = f(-reach);
    const double high = f(reach);
    if (!(low < 0.0 && high > 0.0)) {
        return std::nullopt;
    }
    std::uintmax_t steps = 200;
    const auto [a, b] = boost::math::tools::toms748_solve(f, -reach, reach, low, high,
                                                          boost::math::tools::eps_tolerance<double>(50), steps);
    return 0.5 * (a + b);
}

struct NoRoot : std::runtime_error {
    NoRoot() : std::runtime_error("no root") {}
};

std::optional<DqCurrent> nested_bracketing(const MachineMap& map, std::size_t k, double psi_d, double psi_q) {
    const double reach_d = widest * width_of(map.id());
    const double reach_q = widest * width_of(map.iq());
    const auto id_at = [&](double iq) {
        const auto id = rising_root(reach_d, [&](double x) { return map.at(x, iq, k).psi_d - psi_d; });
        if (!id) {
            throw NoRoot();
        }
        return *id;
    };
    try {
        const auto iq = rising_root(reach_q, [&](double y) { return map.at(id_at(y), y, k).psi_q - psi_q; });
        if (iq) {
            return DqCurrent{id_at(*iq), *iq};
        }
    } catch (const NoRoot&) {
        // psi_d does not reach its value at this i_q: no inverse.
    }
    return std::nullopt;
}

// The nodes and the points half way between them.
std::vector<double> nodes_and_middles(const std::vector<double>& axis) {
    std::vector<double> points;
    for (std::size_t i = 0; i + 1 < axis.size(); ++i) {
        points.push_back(axis[i]);
        points.push_back(0.5 * (axis[i] + axis[i + 1]));
    }
    points.push_back(axis.back());
    return points;
}

}  // namespace

std::optional<DqCurrent> invert_flux(const MachineMap& map, std::size_t k, double psi_d, double psi_q,
                                     DqCurrent start) {
    if (const auto found = newton(map, k, psi_d, psi_q, start)) {
        return found;
    }
    if (const auto found = newton(map, k, psi_d, psi_q, {})) {
        return found;
    }
    const auto bracketed = nested_bracketing(map, k, psi_d, psi_q);
    if (!bracketed) {
        return std::nullopt;
    }
    const auto polished = newton(map, k, psi_d, psi_q, *bracketed);
    return polished ? polished : bracketed;
}

void require_monotone(const MachineMap& map, const std::string& name) {
    const std::size_t positions = map.has_positions() ? map.position_count() : 1;
    for (std::size_t k = 0; k < positions; ++k) {
        for (const double id : nodes_and_middles(map.id())) {
            for (const double iq : nodes_and_middles(map.iq())) {
                const MachinePoint p = map.at(id, iq, k);
                const char* fault = nullptr;
                if (!(p.l_dd > 0.0)) {
                    fault = "psi_d does not rise with id";
                } else if (!(p.l_qq > 0.0)) {
                    fault = "psi_q does not rise with iq";
                } else if (!(p.l_dd * p.l_qq > p.l_dq * p.l_qd)) {
                    fault = "psi_d and psi_q together do not fix the currents";
                }
                if (fault != nullptr) {
                    throw Failure(
                        exit_file,
                        fmt::format("{}: {} at id {:g} A, iq {:g} A{}; FluxIntegralDQTheta needs a flux map "
                                    "that can be inverted",
                                    name, fault, id, iq,
                                    map.has_positions() ? fmt::format(", theta {:g} deg", map.theta_deg(k)) : ""));
                }
            }
        }
    }
}

}  // namespace kzb::tool
