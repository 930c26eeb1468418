// Ld and Lq of Calc_Eq at the operating point, leakage included.
//
//   kind 0   Ld = (2/3) c' L c, Lq = (2/3) s' L s,  c and s the cosines and sines of the phase angles
//   kind 1   Ld as kind 0, Lq = (psi_q(i) - psi_q(0)) / i_q, near beta = +-90 degrees the mean of two probes
//   kind 2   table values
//   kind 3   Lq = (psi_q - psi_q(0)) / i_q, Ld = d psi_d / d i_d by central difference
#include <cmath>

#include "models/calc_eq.h"

namespace kzb {
namespace {

constexpr double smallest_amplitude = 1e-6;
constexpr double probe_step = 10.0;     // degrees
constexpr double axis_closeness = 5.0;  // degrees
constexpr double smallest_current = 1e-8;

bool near_degrees(double beta, double axis) {
    return std::fabs(beta - axis) < axis_closeness;
}

// (2/3) x' L x, row vector first.
double quadratic_form(const Matrix3& l, const Phases& x) {
    Phases row;
    for (std::size_t n = 0; n < 3; ++n) {
        row[n] = x[0] * l[n] + x[1] * l[3 + n] + x[2] * l[6 + n];
    }
    return 2.0 / 3.0 * (row[0] * x[0] + row[1] * x[1] + row[2] * x[2]);
}

double weighted_squares(const Phases& weights, const Phases& x) {
    return 2.0 / 3.0 * (weights[0] * (x[0] * x[0]) + weights[1] * (x[1] * x[1]) + weights[2] * (x[2] * x[2]));
}

}  // namespace

DqPair Calc_Eq::quadratic_dq(const PhaseAngles& at) const {
    return {quadratic_form(step_.inductance, at.c), quadratic_form(step_.inductance, at.s)};
}

DqPair Calc_Eq::leakage_dq(const PhaseAngles& at) const {
    return {weighted_squares(machine_.leakage_inductance, at.c), weighted_squares(machine_.leakage_inductance, at.s)};
}

// Ld and Lq of a Harmonic or flux-integral point, beta in degrees. Only Lq carries the multiplier here: Ld has it from
// the matrix, or from its own formula.
DqPair Calc_Eq::dq_from_flux(double amplitude, double beta, double angle, const PhaseAngles& at) {
    DqPair l{};
    if (machine_.application == flux_integral) {
        l = dq_from_flux_integral(beta, angle);
    } else {
        l.q = probed_q_inductance(amplitude, beta, angle, at);
        l.d = quadratic_form(step_.inductance, at.c);
    }
    l.q *= corrections_.inductance_multiplier;
    return l;
}

// q flux of "current_flux" at a current of its own.
double Calc_Eq::probed_q_flux(double amplitude, double beta, double angle, const PhaseAngles& at) {
    Phases flux;
    if (machine_.inductance_dim == 4) {
        const double point[3] = {amplitude, beta, angle};
        tables_.current_flux.components(*store_, method(), point, 3, 3, flux.data());
    } else {
        const double b = radians_of(beta);
        const double d = -std::sin(b) * amplitude * sqrt_three_halves;
        const double q = std::cos(b) * amplitude * sqrt_three_halves;
        const Phases i = inverse_park_dq(d, q, at);
        const double point[4] = {i[0], i[1], i[2], angle};
        tables_.current_flux.components(*store_, method(), point, 4, 3, flux.data());
    }
    return park_q(flux, at);
}

double Calc_Eq::probed_q_inductance(double amplitude, double beta, double angle, const PhaseAngles& at) {
    const double noload = probed_q_flux(0.0, beta, angle, at);
    if (amplitude < smallest_amplitude) {
        return 0.0;
    }
    if (near_degrees(beta, 90.0) || near_degrees(beta, -90.0)) {
        const double a = std::cos(radians_of(beta + probe_step)) * amplitude * sqrt_three_halves;
        const double b = std::cos(radians_of(beta - probe_step)) * amplitude * sqrt_three_halves;
        const double below = probed_q_flux(amplitude, beta - probe_step, angle, at);
        const double above = probed_q_flux(amplitude, beta + probe_step, angle, at);
        return ((below - noload) / b + (above - noload) / a) * 0.5;
    }
    const Phases& t = step_.total_flux;
    const double q_flux = -sqrt_two_thirds * (at.s[0] * t[0] + at.s[1] * t[1] + at.s[2] * t[2]);
    return (q_flux - noload) / (std::cos(radians_of(beta)) * amplitude * sqrt_three_halves);
}

DqPair Calc_Eq::dq_from_flux_integral(double beta, double angle) {
    const double noload_q = tables_.fq_noload.at(*store_, method(), &angle, 1);
    const double noload_d = tables_.fd_noload.at(*store_, method(), &angle, 1);
    FluxIntegralState& s = integral_;
    double lq = s.q_inductance_kept;
    if (step_.step_count == 1) {
        lq = 0.0;
    } else if (!near_degrees(beta, 90.0) && !near_degrees(beta, -90.0)) {
        lq = (s.air_gap_flux_dq0[1] - noload_q) / (corrections_.turns2 * s.table_current_dq0[1]);
    }
    s.q_inductance_kept = lq;
    s.d_inductance_kept = d_inductance_from_current(noload_d, beta, angle);
    return {s.d_inductance_kept, lq};
}

// Held against the current of the machine, loss current included: the one with a previous value.
double Calc_Eq::d_inductance_from_current(double noload_d, double beta, double angle) {
    const FluxIntegralState& s = integral_;
    const double kept = s.d_inductance_kept;
    const double current = s.current_dq0[0];
    const double d_flux = s.air_gap_flux_dq0[0];
    const bool weak = std::fabs(d_flux) < std::fabs(noload_d) && near_degrees(beta, 90.0);
    const double flux = weak || near_degrees(beta, -90.0) ? noload_d : d_flux;
    const double dh = 0.01 * std::fabs(flux);
    const double above = table_d_current(d_flux + dh, angle);
    const double below = table_d_current(d_flux - dh, angle);
    const double difference = above - below;
    if (std::fabs(current) < smallest_current || std::fabs(difference) < smallest_current ||
        std::fabs(difference / current) < 0.001) {
        return kept;
    }
    const double ld = 2.0 * dh / difference * corrections_.inductance_multiplier;
    const bool comparable = std::fabs(kept) > smallest_current && std::fabs(current) > smallest_current;
    // A jump of Ld at an almost unchanged current is noise of the difference.
    if (comparable && std::fabs((current - s.current_dq0_previous[0]) / current) < 0.01 &&
        std::fabs((ld - kept) / kept) >= 0.01) {
        return kept;
    }
    return ld;
}

double Calc_Eq::table_d_current(double d_flux, double angle) {
    const Dq0& flux = integral_.air_gap_flux_dq0;
    if (machine_.inductance_dim == 5) {
        const double point[4] = {d_flux, flux[1], flux[2], angle};
        return tables_.id.at(*store_, method(), point, 4);
    }
    const double point[3] = {d_flux, flux[1], angle};
    return tables_.id.at(*store_, method(), point, 3);
}

// Kind 1, at the previous step's current.
DqPair Calc_Eq::harmonic_dq(double angle, const PhaseAngles& at) {
    const double turns = corrections_.turns2;
    if (machine_.inductance_dim == 4) {
        return dq_from_flux(step_.current_amplitude_previous * turns, step_.current_phase_previous, angle, at);
    }
    const Phases& previous = step_.current_previous;
    const Phases i = {turns * previous[0], turns * previous[1], turns * previous[2]};
    double amplitude = 0.0;
    double beta = 0.0;
    if (std::fabs(i[0]) >= smallest_amplitude || std::fabs(i[1]) >= smallest_amplitude ||
        std::fabs(i[2]) >= smallest_amplitude) {
        const double d = park_d(i, at);
        const double q = park_q(i, at);
        amplitude = amplitude_of(d, q);
        beta = phase_of(d, q);
    }
    return dq_from_flux(amplitude, beta, angle, at);
}

void Calc_Eq::update_dq_inductances(double angle, const PhaseAngles& at) {
    DqPair l{};
    switch (machine_.application) {
        case simple_harmonic:
            l = quadratic_dq(at);
            break;
        case harmonic:
            l = harmonic_dq(angle, at);
            break;
        case ld_lq:
            l = {step_.d_inductance, step_.q_inductance};
            break;
        default:
            l = {integral_.d_inductance_kept, integral_.q_inductance_kept * corrections_.inductance_multiplier};
            break;
    }
    const DqPair leak = leakage_dq(at);
    step_.d_inductance = l.d + leak.d;
    step_.q_inductance = l.q + leak.q;
}

}  // namespace kzb
