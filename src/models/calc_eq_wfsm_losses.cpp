// Iron loss of Calc_Eq_wfsm as an equivalent current of the terminals.
//
//   U = V - R i,   A = 2 (P / 3) / |U|,   i_loss = A in phase with U,   i_coil = i_terminal - i_loss
//
// U and P are of this step, the loss current taken off is that of the step before.
#include <cmath>

#include "models/calc_eq_wfsm.h"
#include "models/calc_eq_wfsm_frame.h"

namespace kzb {
namespace {

constexpr double start_voltage = 1e-5;  // V; no loss before the terminals have once seen it
constexpr int third_axis = 3;

}  // namespace

double Calc_Eq_wfsm::speed_rpm(double dt) const {
    return dt == 0.0 ? 0.0 : (step_.position - step_.position_previous) / dt / (2.0 * pi) * 60.0;
}

bool Calc_Eq_wfsm::iron_step(const Drive& drive, const PhaseAngles& at, int& error) {
    WfsmStep& s = step_;
    for (std::size_t k = 0; k < 3; ++k) {
        s.current[k] -= losses_.iron_current[k];
    }
    const DqPair i = wfsm::park(wfsm::armature(s.terminal_current), at);
    const double rpm = speed_rpm(drive.dt);
    const DqPair v = wfsm::park(seen_voltages(drive, rpm), at);
    // The resistance at base temperature: kept.
    const double ud = v.d - machine_.R * i.d;
    const double uq = v.q - machine_.R * i.q;
    const double amplitude = amplitude_of(ud, uq);
    const double angle = radians_of(wfsm::current_phase(ud, uq));
    const LossCurrent loss = compute_iron_loss(i, s.current[3], rpm, amplitude);
    const double size = sqrt_three_halves * loss.amplitude;
    const Phases phases = wfsm::inverse_park({-std::sin(angle) * size, std::cos(angle) * size}, at);
    if (!all_finite(phases.data(), phases.size(), error)) {
        return false;
    }
    losses_.iron_current = phases;
    return true;
}

// Terminal voltages, each through its filter while the machine turns forward and the filters are on.
Phases Calc_Eq_wfsm::seen_voltages(const Drive& drive, double rpm) {
    const WfsmCoils& v = drive.voltages;
    if (!losses_.voltage_filter_on || !(rpm > 0.0)) {
        return wfsm::armature(v);
    }
    const double c = rpm * machine_.number_of_poles * 0.5 / 60.0 * 5.0;
    const double u_filtered = losses_.filter_u.filter(v[0], step_.time, c);
    const double v_filtered = losses_.filter_v.filter(v[1], step_.time, c);
    const double w_filtered = losses_.filter_w.filter(v[2], step_.time, c);
    return {u_filtered, v_filtered, w_filtered};
}

// Sets both losses at the armature current i; gives the loss current for the voltage amplitude.
Calc_Eq_wfsm::LossCurrent Calc_Eq_wfsm::compute_iron_loss(const DqPair& i, double field, double rpm, double voltage) {
    const double amplitude = amplitude_of(i.d, i.q);
    std::array<double, 4> point{std::fabs(rpm)};
    int count = 1;
    if (machine_.current_type == wfsm_axes_dq) {
        // q stands before d in these tables, and their armature currents see no turns: both kept.
        const double sign = field < 0.0 ? -1.0 : 1.0;
        point = {point[0], sign * i.q, sign * i.d, std::fabs(field) * corrections_.turns_coil2_fieldcoil};
        count = 4;
    } else if (machine_.current_type == wfsm_axes_polar) {
        // Here the field current sees no turns either: kept.
        const double beta = wfsm::current_phase(i.d, i.q);
        point = {point[0], field < 0.0 ? beta + 180.0 : beta, amplitude, std::fabs(field)};
        count = 4;
    }
    // The amplitude, without turns, is held against the third axis of the eddy table, whatever that axis is (the d
    // current in tables over d and q); the permanent-magnet model holds the amplitude with turns against it. There is
    // no correction.
    const IronLoss loss = material_losses_.sum(*store_, method(), point.data(), count, third_axis, amplitude, 1.0);
    losses_.eddy_loss = loss.eddy;
    losses_.hysteresis_loss = loss.hysteresis;
    return loss_current(loss.eddy + loss.hysteresis, voltage);
}

Calc_Eq_wfsm::LossCurrent Calc_Eq_wfsm::loss_current(double total, double voltage) {
    if (std::fabs(voltage) > start_voltage) {
        losses_.loss_started = true;
    }
    LossCurrent result;
    if (voltage == 0.0 || !losses_.loss_started || total == 0.0) {
        return result;
    }
    total /= 3.0;
    result.resistance = voltage * voltage / total * 0.5;
    // A square too small for a double leaves no resistance to draw a current.
    if (result.resistance != 0.0) {
        result.amplitude = 2.0 * total / voltage;
    }
    return result;
}

}  // namespace kzb
