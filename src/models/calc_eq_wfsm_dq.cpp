// Inductances of the d and q axes of Calc_Eq_wfsm.
//
//   Ld = (2/3) sum over i, j of c_i L[i][j] c_j,   c = cos(th), cos(th - a), cos(th + a)
//   Lq = flux_scale (psi_q(i) - psi_q(0)) / i_q,   next to the d axis the mean at 10 degrees either side
#include <cmath>

#include "models/calc_eq_wfsm.h"
#include "models/calc_eq_wfsm_frame.h"

namespace kzb {
namespace {

constexpr double smallest_amplitude = 1e-6;  // A
constexpr double near_d_axis = 5.0;          // degrees
constexpr double aside = 10.0;               // degrees

}  // namespace

// Flux of the q axis, unscaled, at armature currents a1, a2 on the tables' axes.
double Calc_Eq_wfsm::probed_q_flux(double a1, double a2, double field, double angle, const PhaseAngles& at) {
    const Point point = point_of(a1, a2, field, angle);
    Phases flux;
    tables_.flux.components(*store_, method(), point.x.data(), point.count, 3, flux.data());
    return wfsm::park_q(flux, at);
}

double Calc_Eq_wfsm::probed_q_inductance(double amplitude, double beta, double field, double angle, double noload,
                                         const PhaseAngles& at) {
    const double b1 = radians_of(beta + aside);
    const double b2 = radians_of(beta - aside);
    const double s = sqrt_three_halves;
    const double q1 = std::cos(b1) * amplitude * s;
    const double q2 = std::cos(b2) * amplitude * s;
    double f1 = 0.0;
    double f2 = 0.0;
    if (machine_.current_type == wfsm_axes_dq) {
        f1 = probed_q_flux(-std::sin(b1) * amplitude * s, q1, field, angle, at);
        f2 = probed_q_flux(-std::sin(b2) * amplitude * s, q2, field, angle, at);
    } else if (machine_.current_type == wfsm_axes_polar) {
        f1 = probed_q_flux(amplitude, beta + aside, field, angle, at);
        f2 = probed_q_flux(amplitude, beta - aside, field, angle, at);
    }
    return ((f2 - noload) / q2 + (f1 - noload) / q1) * 0.5;
}

void Calc_Eq_wfsm::update_dq_inductance(double amplitude, double beta, double field, double angle,
                                        const PhaseAngles& at) {
    double d = 0.0;
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t j = 0; j < 3; ++j) {
            d += at.c[i] * step_.inductance[i * 4 + j] * at.c[j];
        }
    }
    step_.d_inductance = 2.0 / 3.0 * d;

    const double noload = probed_q_flux(0.0, 0.0, field, angle, at);
    double q = 0.0;
    if (amplitude >= smallest_amplitude) {
        if (std::fabs(beta - 90.0) <= near_d_axis || std::fabs(beta + 90.0) <= near_d_axis) {
            q = probed_q_inductance(amplitude, beta, field, angle, noload, at);
        } else {
            // The present flux is scaled, the one without current is not: kept.
            q = (wfsm::park_q(wfsm::armature(step_.flux), at) - noload) /
                (std::cos(radians_of(beta)) * amplitude * sqrt_three_halves);
        }
    }
    step_.q_inductance = q * corrections_.flux_scale;
}

}  // namespace kzb
