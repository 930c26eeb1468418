// Corrections and magnet flux of Calc_Eq at one position.
//
//   kinds 0, 2   psi_magnet = k_flux * scale * p(position)
//   kind 1       psi_magnet = k_flux * psi(i, position) - (k_flux / k_inductance) L i,  all of the previous step's i
//
// k_flux, k_inductance: products of corrections and turns; scale: magnet temperature factor times magnet correction.
#include "models/calc_eq.h"

namespace kzb {

double Calc_Eq::electrical_angle(double position) const {
    if (machine_.is_linear != 0) {
        return 2.0 * pi * (position + machine_.angle_offset) / machine_.electrical_length;
    }
    return machine_.number_of_poles * position * 0.5;
}

double Calc_Eq::table_angle(double position) const {
    return machine_.is_linear != 0 ? position : position * 180.0 / pi - machine_.angle_offset;
}

double Calc_Eq::magnet_factor_of_step() const {
    const PmsmTemperatures& t = temperatures_;
    const double magnet = machine_.application == harmonic
                              ? (t.magnet_temperature + t.magnet_temperature_previous) * 0.5
                              : t.magnet_temperature;
    return (magnet - t.base_magnet_temperature) * (t.magnet_coefficient / 100.0) + 1.0;
}

double Calc_Eq::temperature_scale() const {
    return magnet_factor_of_step() * corrections_.correction_magnet;
}

void Calc_Eq::update_corrections(double amplitude, double beta) {
    // beta comes from an arc tangent and lies within one turn; the bound only keeps the loop finite.
    for (int turn = 0; turn < 4 && beta < 0.0; ++turn) {
        beta += 360.0;
    }
    PmsmCorrections& c = corrections_;
    const double point[2] = {amplitude, beta};
    const auto take = [&](TableRef& table, double& target) {
        if (table.exists(*store_)) {
            target = table.at(*store_, tables_.linear, point, 2);
        }
    };
    if (tables_.total_flux_correction.exists(*store_)) {
        take(tables_.total_flux_correction, c.correction_flux);
        c.correction_inductance = c.correction_flux;
    } else {
        take(tables_.mag_flux_correction, c.correction_flux);
        take(tables_.inductance_correction, c.correction_inductance);
    }
    take(tables_.torque_correction, c.correction_torque);

    c.flux_multiplier = c.turns1 * c.correction_flux * c.correction_steel;
    c.inductance_multiplier = c.correction_steel * c.correction_inductance * (c.turns1 * c.turns1);
    c.torque_multiplier = c.correction_torque;
}

void Calc_Eq::update_flux(const PhaseAngles& at, double angle) {
    switch (machine_.application) {
        case simple_harmonic:
            return update_magnet_flux_simple(angle);
        case harmonic:
            return update_flux_harmonic(angle);
        case ld_lq:
            return update_magnet_flux_ld_lq(at);
        default:
            return;
    }
}

void Calc_Eq::update_magnet_flux_simple(double angle) {
    const bool old_table = machine_.is_linear == 0 && tables_.facts(*store_).four_simple_tables;
    TableRef& table = old_table ? tables_.magflux : tables_.mag_flux;
    Phases p;
    table.components(*store_, tables_.spline, &angle, 1, 3, p.data());
    const double scale = temperature_scale();
    for (std::size_t k = 0; k < 3; ++k) {
        step_.magnet_flux[k] = corrections_.flux_multiplier * scale * p[k];
        step_.flux_temperature_delta[k] = (scale - 1.0) * corrections_.flux_multiplier * p[k];
    }
}

void Calc_Eq::update_magnet_flux_ld_lq(const PhaseAngles& at) {
    const double scale = temperature_scale();
    for (std::size_t k = 0; k < 3; ++k) {
        const double p = sqrt_two_thirds * machine_.d_flux * at.c[k];
        step_.magnet_flux[k] = corrections_.flux_multiplier * scale * p;
    }
}

double Calc_Eq::flux_per_inductance_previous() const {
    const PmsmCorrections& c = corrections_;
    return c.inductance_multiplier_previous == 0.0 ? c.flux_multiplier_previous
                                                   : c.flux_multiplier_previous / c.inductance_multiplier_previous;
}

void Calc_Eq::update_flux_harmonic(double angle) {
    const double turns = corrections_.turns2;
    const Phases& i = step_.current_previous;
    if (machine_.inductance_dim == 4) {
        const double point[3] = {step_.current_amplitude_previous * turns, step_.current_phase_previous, angle};
        tables_.current_flux.components(*store_, method(), point, 3, 3, step_.total_flux.data());
    } else {
        const double point[4] = {turns * i[0], turns * i[1], turns * i[2], angle};
        tables_.current_flux.components(*store_, method(), point, 4, 3, step_.total_flux.data());
    }
    const double ratio = flux_per_inductance_previous();
    const double scale = temperature_scale();
    for (std::size_t k = 0; k < 3; ++k) {
        const double from_current = row_times(step_.inductance_previous, k, i);
        step_.magnet_flux[k] = corrections_.flux_multiplier * step_.total_flux[k] - ratio * from_current;
        step_.flux_temperature_delta[k] = (scale - 1.0) * step_.magnet_flux[k];
    }
}

void Calc_Eq::update_coil_flux() {
    if (machine_.application != harmonic) {
        step_.coil_flux = step_.magnet_flux;
        return;
    }
    for (std::size_t k = 0; k < 3; ++k) {
        step_.coil_flux[k] = row_times(step_.inductance_previous, k, step_.current_previous) + step_.magnet_flux[k] +
                             step_.flux_temperature_delta[k];
    }
}

double Calc_Eq::magnet_flux_at_position(int phase) {
    if (store_ == nullptr) {
        return 0.0;
    }
    double flux = 0.0;
    if (machine_.application == ld_lq) {
        const double d_flux = get_double(*store_, "d_flux", "d_flux");
        const PhaseAngles at(electrical_angle(step_.position));
        flux = is_phase(phase) ? sqrt_two_thirds * d_flux * of_phase(at.c, phase) : 0.0;
    } else if (machine_.application == simple_harmonic) {
        const double point[2] = {table_angle(step_.position), static_cast<double>(phase) - 1.0};
        flux = tables_.mag_flux.at(*store_, tables_.spline, point, 2);
    }
    return flux * corrections_.flux_multiplier;
}

}  // namespace kzb
