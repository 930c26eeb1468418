// Losses and torque of Calc_Eq_im_transient.
//
//   copper losses  sum of squared phase currents times Rs, R_equivalent and Rr
//   torque         0: p/2 M12 (i2a i1b - i2b i1a);  1: air-gap power over synchronous speed and slip;
//                  other values of DORN_KZ_TORQUE_TYPE: the torque before
//
// The iron loss takes its part of the torque at the shaft: torque -= iron loss / mechanical speed.
#include <cmath>

#include "models/calc_eq_im.h"

namespace kzb {

void Calc_Eq_im_transient::update_losses(const Currents& currents) {
    losses_.iron_loss = compute_iron_loss();
    const SixCurrents& i = step_.current_latest;
    const double primary_squares = i[0] * i[0] + i[1] * i[1] + i[2] * i[2];
    const double secondary_squares = i[3] * i[3] + i[4] * i[4] + i[5] * i[5];
    losses_.primary_copper_loss = primary_squares * resistances_.Rs;
    losses_.user_copper_loss = primary_squares * resistances_.R_equivalent;
    losses_.secondary_copper_loss = secondary_squares * resistances_.Rr;
    step_.torque = torque_of(currents);
}

double Calc_Eq_im_transient::compute_iron_loss() {
    if (!machine_.ironloss_enabled) {
        return 0.0;
    }
    if (use_old_ironloss() == 0 && tables_.iron_loss.exists(*store_)) {
        const double point[5] = {step_.primary_current, std::fabs(slip_frequency()),
                                 std::fabs(electrical_speed() / 6.283185307179586), machine_.dc_voltage,
                                 machine_.carrier_frequency};
        return tables_.iron_loss.at(*store_, method(), point, 5);
    }
    if (tables_.ironloss.exists(*store_)) {
        const double point[2] = {slip_frequency(), step_.primary_current};
        return tables_.ironloss.at(*store_, method(), point, 2);
    }
    return 0.0;
}

double Calc_Eq_im_transient::compute_torque() {
    if (store_ != nullptr) {
        step_.torque = torque_of(currents_out());
    }
    return step_.torque;
}

double Calc_Eq_im_transient::torque_of(const Currents& currents) {
    // Any type but these keeps the torque, and yet takes the iron loss off it every time, as established.
    double torque = step_.torque;
    if (torque_type_ == 0) {
        torque = machine_.number_of_poles * 0.5 * step_.inductances.m_Msr *
                 (currents.secondary.alpha * currents.primary.beta - currents.secondary.beta * currents.primary.alpha);
    } else if (torque_type_ == 1) {
        torque = power_torque();
    }
    if (machine_.ironloss_enabled) {
        const double speed_mech = electrical_speed() / (machine_.number_of_poles * 0.5);
        if (speed_mech != 0.0) {
            torque -= losses_.iron_loss / speed_mech;
        }
    }
    return torque;
}

// A slip of 0 divides by 0, as established.
double Calc_Eq_im_transient::power_torque() const {
    const double frequency = (electrical_speed() + step_.slip_omega) / 6.283185307179586;
    const double pole_pairs = machine_.number_of_poles * 0.5;
    const double synchronous = frequency * 6.283185307179586 / pole_pairs;
    const double torque =
        3.0 / synchronous * (step_.secondary_current * step_.secondary_current) * 0.5 * resistances_.Rr;
    const double slip = slip_frequency() / frequency;
    return torque / slip;
}

}  // namespace kzb
