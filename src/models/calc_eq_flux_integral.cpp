// Kind 3 of Calc_Eq: flux in the d, q, zero frame is integrated by the caller, currents come from tables over flux.
//
//   d psi_d / dt = v_d - R i_d + omega psi_q,   d psi_q / dt = v_q - R i_q - omega psi_d,   i = table(psi, position)
//
// The derivative is taken at the new position with the old fluxes; the speed is that since the stored position.
#include "models/calc_eq.h"
#include "models/flux_inputs.h"

namespace kzb {

void Calc_Eq::flux_derivative(double v_u, double v_v, double v_w, double position, double time, const double* state,
                              double* derivative, int signal_u, int signal_v, int signal_w) {
    derivative[0] = derivative[1] = derivative[2] = 0.0;
    if (store_ == nullptr) {
        return;
    }
    FluxIntegralState& s = integral_;
    const double theta_e = electrical_angle(position);
    FluxInputs in({v_u, v_v, v_w}, state, theta_e, table_angle(position), time, time - step_.time_previous);
    const int signals[3] = {signal_u, signal_v, signal_w};
    in.classify(signals);
    if (time > 0.0 && in.dt_valid()) {
        in.omega = (theta_e - electrical_angle(step_.position)) / in.dt;
    }
    update_corrections(amplitude_of(s.current_dq0[0], s.current_dq0[1]) * corrections_.turns2,
                       phase_of(s.current_dq0[0], s.current_dq0[1]));
    double loss = 0.0;
    DqPair loss_part{0.0, 0.0};
    if (losses_.ironloss_on) {
        loss = iron_loss(speed_rpm(position, in.dt));
        loss_part = loss_current(loss);
    }
    if (in.drive == Drive::one_off) {
        feed_open_phase(in);
    }
    const Dq0 v = terminal_voltage_dq0(in);
    Dq0 flux = air_gap_flux(in);
    Dq0 table{};
    if (in.drive != Drive::off) {
        table = table_current(in, flux);
    }
    const double zero_flux = star_zero_flux(in, table, flux);

    if (in.drive == Drive::off) {
        flux = noload_derivative(in, derivative);
    } else {
        s.current_dq0 = {table[0] + loss_part.d, table[1] + loss_part.q, table[2]};
        voltage_balance(in, v, zero_flux, derivative);
    }
    if (losses_.ironloss_on) {
        step_loss_filters(in, derivative);
    }
    write_flux_integral_row(in, v, loss, loss_part, table, derivative);

    step_.time = time;
    step_.position = position;
    s.table_current_dq0 = table;
    s.flux_derivative_dq0 = {derivative[0], derivative[1], derivative[2]};
    s.air_gap_flux_dq0 = flux;
}

void Calc_Eq::voltage_balance(const FluxInputs& in, const Dq0& v, double zero_flux, double* derivative) const {
    // As bound, or as last evaluated from currents: this kind does not update its resistance.
    const double r = step_.resistance[0];
    const Dq0& i = integral_.current_dq0;
    derivative[0] = v[0] - r * i[0] + in.omega * in.state[1];
    derivative[1] = v[1] - i[1] * r - in.omega * in.state[0];
    if (machine_.connection == connection_delta) {
        derivative[2] = v[2] - i[2] * r;
    } else {
        derivative[2] = in.dt_valid() ? (zero_flux - in.state[2]) / in.dt : 0.0;
    }
}

// Nothing driven: no current, and the flux of the magnet alone, which is returned.
Dq0 Calc_Eq::noload_derivative(const FluxInputs& in, double* derivative) {
    FluxIntegralState& s = integral_;
    s.noload_flux = scaled_noload_flux(in.angle);
    s.current_dq0 = Dq0{};
    for (std::size_t k = 0; k < 3; ++k) {
        derivative[k] = in.dt_valid() ? (s.noload_flux[k] - s.noload_flux_previous[k]) / in.dt : 0.0;
    }
    return s.noload_flux;
}

// Loss current of the last filter outputs: the current that draws `loss` from the induced voltage.
DqPair Calc_Eq::loss_current(double loss) const {
    const double fd = integral_.filtered_d;
    const double fq = integral_.filtered_q;
    const double square = fd * fd + fq * fq;
    if (!(square > 0.0) || !(loss > 0.0)) {
        return {0.0, 0.0};
    }
    const double k = square / loss;
    return {fd / k, fq / k};
}

// The terminal of an open phase carries the voltage that its own flux induces.
void Calc_Eq::feed_open_phase(FluxInputs& in) const {
    const std::size_t k = in.open_phase;
    in.voltages[k] =
        in.dt_valid() ? (step_.coil_flux[k] - step_.coil_flux_previous[k]) / in.dt + integral_.zero_voltage : 0.0;
}

Dq0 Calc_Eq::terminal_voltage_dq0(const FluxInputs& in) const {
    const Phases& v = in.voltages;
    if (machine_.connection == connection_delta) {
        return park({v[0] - v[1], v[1] - v[2], v[2] - v[0]}, in.at);
    }
    return {park_d(v, in.at), park_q(v, in.at), 0.0};
}

// Flux of the state without leakage, brought back to what the tables were made with.
Dq0 Calc_Eq::air_gap_flux(const FluxInputs& in) {
    const DqPair leak = leakage_dq(in.at);
    const Dq0& i = integral_.current_dq0;
    Dq0 flux = {in.state[0] - leak.d * i[0], in.state[1] - leak.q * i[1], in.state[2]};
    const double scale = noload_scale();
    if (stays(scale) && stays(corrections_.inductance_multiplier)) {
        return flux;
    }
    const Dq0 noload = noload_flux_at(in.angle);
    for (std::size_t k = 0; k < 3; ++k) {
        flux[k] = (flux[k] - noload[k] * scale) / corrections_.inductance_multiplier + noload[k];
    }
    const Phases phases = inverse_park(noload, in.at);
    for (std::size_t k = 0; k < 3; ++k) {
        step_.flux_temperature_delta[k] = (temperature_scale() - 1.0) * phases[k];
    }
    return flux;
}

Dq0 Calc_Eq::table_current(const FluxInputs& in, const Dq0& flux) {
    const double turns = corrections_.turns2;
    if (machine_.inductance_dim == 5) {
        const double point[4] = {flux[0], flux[1], flux[2], in.angle};
        const double d = tables_.id.at(*store_, method(), point, 4);
        const double q = tables_.iq.at(*store_, method(), point, 4);
        const double zero = tables_.i0.at(*store_, method(), point, 4);
        return {d / turns, q / turns, zero / turns};
    }
    const double point[3] = {flux[0], flux[1], in.angle};
    const double d = tables_.id.at(*store_, method(), point, 3);
    const double q = tables_.iq.at(*store_, method(), point, 3);
    return {d / turns, q / turns, 0.0};
}

// Zero flux of this sample: of a star with tables over d and q flux it follows the current and goes into `flux`, else
// it is the state's. The zero flux before is the state's in either case.
double Calc_Eq::star_zero_flux(const FluxInputs& in, const Dq0& table, Dq0& flux) {
    if (machine_.connection == connection_delta || machine_.inductance_dim != 4) {
        return in.state[2];
    }
    integral_.zero_voltage = 0.0;
    const double point[3] = {amplitude_of(table[0], table[1]) * corrections_.turns2, phase_of(table[0], table[1]),
                             in.angle};
    const double zero_flux = tables_.f0_ibeta.at(*store_, method(), point, 3);
    flux[2] = zero_flux;
    if (in.dt_valid()) {
        const Phases& v = in.voltages;
        const Phases i = inverse_park_dq(table[0], table[1], in.at);
        const double resistive = (i[0] + i[1] + i[2]) * step_.resistance[0];
        integral_.zero_voltage =
            ((v[0] + v[1] + v[2] - resistive) - sqrt_three * (zero_flux - in.state[2]) / in.dt) / 3.0;
    }
    return zero_flux;
}

void Calc_Eq::step_loss_filters(const FluxInputs& in, const double* derivative) {
    FluxIntegralState& s = integral_;
    const double induced_d = derivative[0] - in.omega * in.state[1];
    const double induced_q = derivative[1] + in.omega * in.state[0];
    double first_d = 0.0;
    if (!s.loss_current_filter_d.started()) {
        first_d = noload_scale() * tables_.fd_noload.at(*store_, method(), &in.angle, 1) * in.omega;
    }
    s.filtered_d = s.loss_current_filter_d.step(induced_d, first_d, in.time, in.omega);
    // The q axis has no first value of its own.
    s.filtered_q = s.loss_current_filter_q.step(induced_q, 0.0, in.time, in.omega);
}

}  // namespace kzb
