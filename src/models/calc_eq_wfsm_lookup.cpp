// Tables of Calc_Eq_wfsm: the point of a set of currents, and flux, inductance and torque there.
//
//   current type 1   (amplitude, beta, i_f, angle)        current type 0   (i_d, i_q, i_f, angle)
//
// A field current below the table is looked up with reversed currents and one pole pitch further on: the same machine
// seen from the other pole. Its field flux and field couplings then change sign.
#include <cmath>

#include "models/calc_eq_wfsm.h"
#include "models/calc_eq_wfsm_frame.h"

namespace kzb {

double Calc_Eq_wfsm::electrical_angle(double position) const {
    return position * machine_.number_of_poles * 0.5;
}

double Calc_Eq_wfsm::table_angle(double position) const {
    return position * 180.0 / pi - machine_.angle_offset;
}

// The point of armature currents given as d and q, or as amplitude and phase, whichever the tables take. `mirrored`
// tells whether the field current lies below the tables.
Calc_Eq_wfsm::Point Calc_Eq_wfsm::point_of(double a1, double a2, double field, double angle) {
    const double turns = corrections_.turns_coil2;
    const double field_turns = corrections_.turns_coil2_fieldcoil;
    Point point;
    step_.mirrored = false;
    // Tables without a known pair of current axes are looked up at nothing.
    if (machine_.current_type == wfsm_axes_none) {
        return point;
    }
    point.count = 4;
    if (field >= machine_.field_axis_floor) {
        point.x = {a1 * turns, a2, field * field_turns, angle};
        if (machine_.current_type == wfsm_axes_dq) {
            point.x[1] = a2 * turns;
        }
        return point;
    }
    step_.mirrored = true;
    const double far_angle = 360.0 / (machine_.number_of_poles * 0.5) * 0.5 + angle;
    if (machine_.current_type == wfsm_axes_polar) {
        point.x = {a1 * turns, a2 + 180.0, std::fabs(field) * field_turns, far_angle};
    } else {
        point.x = {-a1 * turns, -a2 * turns, std::fabs(field) * field_turns, far_angle};
    }
    return point;
}

Calc_Eq_wfsm::Point Calc_Eq_wfsm::axis_vector(const WfsmCoils& i, double position, const PhaseAngles& at) {
    const DqPair dq = wfsm::park(wfsm::armature(i), at);
    const double angle = table_angle(position);
    if (machine_.current_type == wfsm_axes_polar) {
        return point_of(amplitude_of(dq.d, dq.q), wfsm::current_phase(dq.d, dq.q), i[3], angle);
    }
    return point_of(dq.d, dq.q, i[3], angle);
}

void Calc_Eq_wfsm::update_scales() {
    WfsmCorrections& c = corrections_;
    c.flux_scale = c.coef_material * c.coef_flux * c.turns_coil2;
    c.field_flux_scale = c.coef_material * c.coef_flux_fieldcoil * c.turns_coil2_fieldcoil;
    c.torque_scale = c.coef_torque * c.coef_material;
}

void Calc_Eq_wfsm::update_flux(const Point& point) {
    WfsmCoils& flux = step_.flux;
    tables_.flux.components(*store_, method(), point.x.data(), point.count, 4, flux.data());
    for (std::size_t k = 0; k < 3; ++k) {
        flux[k] *= corrections_.flux_scale;
    }
    flux[3] *= corrections_.field_flux_scale;
    if (step_.mirrored) {
        flux[3] *= -1.0;
    }
}

// Tables hold the matrix by columns.
void Calc_Eq_wfsm::update_inductance(const Point& point) {
    WfsmMatrix elements;
    tables_.inductance.components(*store_, method(), point.x.data(), point.count, 16, elements.data());
    WfsmMatrix& l = step_.inductance;
    for (std::size_t k = 0; k < 16; ++k) {
        const std::size_t row = k % 4;
        l[row * 4 + k / 4] = elements[k] * (row < 3 ? corrections_.flux_scale : corrections_.field_flux_scale);
    }
    if (step_.mirrored) {
        for (std::size_t k = 0; k < 3; ++k) {
            l[3 * 4 + k] = -l[3 * 4 + k];
            l[k * 4 + 3] = -l[k * 4 + 3];
        }
    }
}

double Calc_Eq_wfsm::compute_torque(const PhaseAngles& at) {
    const Point point = axis_vector(step_.current, step_.position, at);
    // No change of sign where the point is mirrored: reversed currents a pole pitch further on give the same torque.
    const double torque = tables_.torque.at(*store_, method(), point.x.data(), point.count) * corrections_.torque_scale;
    write_torque_row(at, torque);
    return torque;
}

void Calc_Eq_wfsm::update_user_parameters(const Point& point) {
    if (user_parameters_.on()) {
        user_parameters_.update(*store_, method(), point.x.data(), point.count);
    }
}

}  // namespace kzb
