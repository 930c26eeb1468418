// Resistance, copper loss, iron loss and user parameters of Calc_Eq.
//
//   R      = (R_element [+ R_ac]) * (1 + (T - T0) * k_c * 1e-6)
//   T_loss = (P_eddy + P_hysteresis) / omega,   taken off the torque
#include <cmath>

#include "models/calc_eq.h"

namespace kzb {
namespace {

constexpr double smallest_omega = 1e-20;  // rad/s

}  // namespace

double Calc_Eq::speed_rpm(double position, double dt) const {
    return dt == 0.0 ? 0.0 : (position - step_.position_previous) / dt / (2.0 * pi) * 60.0;
}

void Calc_Eq::update_resistance(double dt) {
    for (std::size_t k = 0; k < 3; ++k) {
        step_.resistance[k] = element_resistance(k);
    }
    if (losses_.user_copperloss_on && tables_.copper_loss.exists(*store_)) {
        const double point[5] = {step_.current_amplitude_previous * corrections_.turns2, step_.current_phase_previous,
                                 std::fabs(speed_rpm(step_.position, dt)), losses_.dc_voltage,
                                 losses_.carrier_frequency};
        losses_.ac_resistance = tables_.copper_loss.at(*store_, method(), point, 5);
        for (double& r : step_.resistance) {
            r += losses_.ac_resistance;
        }
    }
    // Applied always, whether temperature correction is on or not.
    const PmsmTemperatures& t = temperatures_;
    const double factor = 1.0 + (t.coil_temperature - t.base_coil_temperature) * t.coil_coefficient * 1e-6;
    for (double& r : step_.resistance) {
        r *= factor;
    }
}

void Calc_Eq::update_copper_loss() {
    const double square = step_.current_amplitude_previous * step_.current_amplitude_previous;
    losses_.ac_copper_loss = losses_.ac_resistance * 3.0 * square * 0.5;
    losses_.dc_copper_loss = element_resistance(0) * 3.0 * square * 0.5;
}

// Sets `eddy_loss` and `hysteresis_loss` at the present current; returns their sum.
double Calc_Eq::iron_loss(double rpm) {
    const double amplitude = step_.current_amplitude * corrections_.turns2;
    const double speed = std::fabs(rpm);
    IronLoss loss;
    if (use_old_ironloss() == 0 && tables_.iron_loss.exists(*store_)) {
        const double point[5] = {amplitude, step_.current_phase, speed, losses_.dc_voltage, losses_.carrier_frequency};
        loss.eddy = tables_.iron_loss.at(*store_, method(), point, 5);
    } else {
        const double correction_point[2] = {speed, amplitude};
        corrections_.correction_ironloss =
            tables_.ironloss_correction.exists(*store_)
                ? tables_.ironloss_correction.at(*store_, tables_.linear, correction_point, 2)
                : 1.0;
        const double point[3] = {speed, step_.current_phase, amplitude};
        loss = material_losses_.sum(*store_, method(), point, 3, 3, amplitude, corrections_.correction_ironloss);
    }
    losses_.eddy_loss[0] = loss.eddy;
    losses_.hysteresis_loss[0] = loss.hysteresis;
    return loss.eddy + loss.hysteresis;
}

void Calc_Eq::reduce_torque_by_iron_loss(double dt) {
    if (!losses_.ironloss_on) {
        return;
    }
    const double rpm = speed_rpm(step_.position, dt);
    const double loss = iron_loss(rpm);
    const double omega = 2.0 * pi * rpm / 60.0;
    const double loss_torque = std::fabs(omega) > smallest_omega ? loss / omega : 0.0;
    step_.torque -= loss_torque;
    write_iron_loss_row(loss, omega, loss_torque);
}

void Calc_Eq::update_user_parameters(double angle) {
    if (!user_parameters_.on()) {
        return;
    }
    const bool kind_has_them = machine_.application == harmonic || machine_.application == flux_integral;
    const double turns = corrections_.turns2;
    if (kind_has_them && user_parameters_.dim() == 3) {
        const double point[3] = {step_.current_amplitude * turns, step_.current_phase, angle};
        user_parameters_.update(*store_, method(), point, 3);
    } else if (kind_has_them && user_parameters_.dim() == 4) {
        const Phases& i = step_.current;
        const double point[4] = {turns * i[0], turns * i[1], turns * i[2], angle};
        user_parameters_.update(*store_, method(), point, 4);
    } else {
        user_parameters_.switch_off();
    }
}

}  // namespace kzb
