// Iron loss by material, and the equivalent current that a step splits off the terminal current.
#include <cmath>
#include <string>

#include "bench/reference/wfsm.h"

namespace kzb_reference {

double VoltageFilter::filter(double x, double t, double c) {
    if (t == 0.0) {
        output = 0.0;
        last_time = 0.0;
        return 0.0;
    }
    const double a = 1.0 / (c * 0.8) * 0.8;
    const double dt = t - last_time;
    output = (a * output / dt + x) / (a / dt + 1.0);
    last_time = t;
    return output;
}

double Wfsm::speed_rpm(double dt) const {
    return dt == 0.0 ? 0.0 : (position - position_prev) / dt / 6.283185307179586 * 60.0;
}

Wfsm::Loss Wfsm::compute_iron_loss(const WfsmAxes& terminal, double field, double speed, double v_amplitude) {
    eddy_loss = 0.0;
    hysteresis_loss = 0.0;
    const double amplitude = wfsm_amplitude(terminal);
    const double b = wfsm_current_phase(terminal.d, terminal.q);
    const int materials = kzb_get_int("hysloss", "numMat", store_);
    for (int i = 1; i <= materials; ++i) {
        const int id = kzb_get_int("hysloss", ("matID" + std::to_string(i)).c_str(), store_);
        const std::string eddy_key = "eddyloss" + std::to_string(id);
        const std::string hys_key = "hysloss" + std::to_string(id);
        Vector at = {std::fabs(speed)};
        if (current_type == 0) {
            const double sign = field < 0.0 ? -1.0 : 1.0;
            at.push_back(sign * terminal.q);
            at.push_back(sign * terminal.d);
            at.push_back(std::fabs(field) * turns_coil2_fieldcoil);
        } else if (current_type == 1) {
            at.push_back(field < 0.0 ? b + 180.0 : b);
            at.push_back(amplitude);
            at.push_back(std::fabs(field));
        }
        double eddy = look("eddyloss", eddy_key, at);
        double hys = look("hysloss", hys_key, at);
        const double least = kzb_get_table_axis_value("eddyloss", eddy_key.c_str(), 3, 0, store_);
        if (least > amplitude) {
            eddy *= amplitude / least;
            hys *= amplitude / least;
        }
        eddy_loss += eddy;
        hysteresis_loss += hys;
    }
    double total = eddy_loss + hysteresis_loss;
    Loss loss;
    if (std::fabs(v_amplitude) > 1e-5) {
        loss_started = true;
    }
    if (v_amplitude == 0.0 || !loss_started) {
        return loss;
    }
    if (total != 0.0) {
        total /= 3.0;
        loss.resistance = v_amplitude * v_amplitude / total * 0.5;
        loss.current = loss.resistance == 0.0 ? 0.0 : 2.0 * total / v_amplitude;
    }
    return loss;
}

bool Wfsm::iron_step(const double* v, double dt) {
    const double th = theta();
    for (int k = 0; k < 3; ++k) {
        terminal_current[k] = current[k];
        current[k] = current[k] - iron_current[k];
    }
    const WfsmAxes terminal = wfsm_park(terminal_current, th);
    const double speed = speed_rpm(dt);
    WfsmAxes vdq;
    if (!voltage_filter_on || !(speed > 0.0)) {
        vdq = wfsm_park(v, th);
    } else {
        const double c = speed * number_of_poles * 0.5 / 60.0 * 5.0;
        double filtered[3] = {};
        filtered[0] = filter_u.filter(v[0], time, c);
        filtered[1] = filter_v.filter(v[1], time, c);
        filtered[2] = filter_w.filter(v[2], time, c);
        vdq = wfsm_park(filtered, th);
    }
    const WfsmAxes u{vdq.d - R * terminal.d, vdq.q - R * terminal.q};
    const double v_amplitude = wfsm_amplitude(u);
    const double vb = wfsm_current_phase(u.d, u.q);
    const double A = compute_iron_loss(terminal, current[3], speed, v_amplitude).current;
    const double s = std::sqrt(1.5) * A;
    const double radians = vb * M_PI / 180.0;
    double candidate[3] = {};
    wfsm_inverse_park({-std::sin(radians) * s, std::cos(radians) * s}, th, candidate);
    for (const double i : candidate) {
        if (!std::isfinite(i)) {
            return false;
        }
    }
    for (int k = 0; k < 3; ++k) {
        iron_current[k] = candidate[k];
    }
    return true;
}

void Wfsm::evaluate(const double* currents, double at_position, double at_time) {
    for (int k = 0; k < 4; ++k) {
        current[k] = currents[k];
    }
    position = at_position;
    time = at_time;
    const double th = theta();
    update_scales();
    if (step_count == 1) {
        first_step();
    }
    const Vector at = axis_vector(current[0], current[1], current[2], current[3], position);
    update_flux(at);
    update_inductance(at);
    update_user_parameters(at);
    const WfsmAxes dq = wfsm_park(current, th);
    update_dq_inductance(wfsm_amplitude(dq), wfsm_current_phase(dq.d, dq.q), current[3],
                         position * 180.0 / M_PI - angle_offset, th);
    field_inductance = inductance[15];
    if (iron_loss_on) {
        for (int k = 0; k < 4; ++k) {
            terminal_current[k] = current[k];
        }
        const WfsmAxes terminal = wfsm_park(terminal_current, th);
        const Loss loss =
            compute_iron_loss(terminal, current[3], speed_rpm(time - time_prev), loss_resistance * loss_current);
        loss_resistance = loss.resistance;
        loss_current = loss.current;
        double split[3] = {};
        wfsm_inverse_park({0.0, std::sqrt(1.5) * loss.current}, th, split);
        for (int k = 0; k < 3; ++k) {
            current[k] = terminal_current[k] - split[k];
        }
    }
    for (int k = 0; k < 4; ++k) {
        terminal_current[k] = current[k];
    }
    const WfsmAxes after = wfsm_park(terminal_current, th);
    Id = after.d;
    Iq = after.q;
    Iamp = wfsm_amplitude(after);
    beta = wfsm_current_phase(after.d, after.q);
    torque = compute_torque(current, position);
}

}  // namespace kzb_reference
