// Kind 3: fluxes are integrated, currents come from tables over flux.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "pmsm_flux_integral_file.h"

namespace kzb_test::pmsm_flux_integral_test {
namespace {

using kzb::Phases;

TEST(pmsm_flux_integral, time_zero_starts_from_the_flux_without_current) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    run.model.set_correction_flux(2.0);
    run.model.set_correction_magnet(1.5);
    bind(run.model, store, kzb::flux_integral);
    run.model.set_own_magnet_temperature(393.15);
    run.execute({}, 0.3, 0.0);
    const double s = 2.0 * 1.5 * 0.89;
    EXPECT_NEAR(run.state[0], s * psi, 1e-15);
    EXPECT_NEAR(run.state[1], s * 0.01, 1e-15);
    EXPECT_NEAR(run.state[2], s * 0.02, 1e-15);
    EXPECT_EQ(run.model.flux_integral_state().noload_flux, (kzb::Dq0{run.state[0], run.state[1], run.state[2]}));
    EXPECT_EQ(run.model.current_output(1), 0.0);
    EXPECT_EQ(run.model.position(), 0.0);  // stored by the derivative alone
}

// v_d - R i_d + w psi_q, v_q - R i_q - w psi_d at the new angle with the old flux; w from the stored position.
TEST(pmsm_flux_integral, derivative_by_hand) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.state[0] = 0.2;
    run.state[1] = 0.1;
    run.state[2] = 0.03;
    const double dt = 1e-3;
    const Phases v = {30.0, -12.0, 5.0};
    run.model.flux_derivative(v[0], v[1], v[2], 0.1, dt, run.state, run.derivative, 1, 1, 1);
    const kzb::PhaseAngles at(0.2);
    const double omega = 0.2 / dt;
    const double id = (0.2 - psi) / ld;
    const double iq = 0.1 / lq;
    EXPECT_NEAR(run.derivative[0], kzb::park_d(v, at) - r * id + omega * 0.1, 1e-10);
    EXPECT_NEAR(run.derivative[1], kzb::park_q(v, at) - r * iq - omega * 0.2, 1e-10);
    EXPECT_NEAR(run.derivative[2], (0.05 - 0.03) / dt, 1e-10);  // the zero flux follows the current's table
    const kzb::FluxIntegralState& s = run.model.flux_integral_state();
    EXPECT_NEAR(s.current_dq0[0], id, 1e-11);
    EXPECT_NEAR(s.current_dq0[1], iq, 1e-11);
    EXPECT_NEAR(s.zero_voltage, ((30.0 - 12.0 + 5.0) - std::sqrt(3.0) * 0.02 / dt) / 3.0, 1e-10);
    EXPECT_EQ(run.model.position(), 0.1);
}

TEST(pmsm_flux_integral, delta_integrates_its_zero_flux) {
    KZB_STORE store;
    integral_file(store, {.connection = 1}, true);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    EXPECT_EQ(run.model.machine().inductance_dim, 5);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.state[0] = 0.2;
    run.state[1] = 0.1;
    run.state[2] = 0.5;
    const Phases v = {30.0, -12.0, 5.0};
    const Phases line = {42.0, -17.0, -25.0};
    run.model.flux_derivative(v[0], v[1], v[2], 0.0, 1e-3, run.state, run.derivative, 1, 1, 1);
    const kzb::PhaseAngles at(0.0);
    EXPECT_NEAR(run.derivative[0], kzb::park_d(line, at) - r * (0.2 - psi) / ld, 1e-10);
    EXPECT_NEAR(run.derivative[1], kzb::park_q(line, at) - r * 0.1 / lq, 1e-10);
    EXPECT_NEAR(run.derivative[2], 0.0 - r * 10.0, 1e-10);  // line voltages have no zero part
    run.model.flux_update(1e-3, 0.0, run.state);
    const Phases i = kzb::inverse_park({(0.2 - psi) / ld, 0.1 / lq, 10.0}, at);
    EXPECT_NEAR(run.model.current_output(2), i[1], 1e-10);
}

TEST(pmsm_flux_integral, corrected_machine_reads_the_tables_at_the_uncorrected_flux) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    run.model.set_correction_magnet(1.2);
    run.model.set_correction_inductance(1.6);
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    // Flux of 10 A in d and 8 A in q with the corrected magnet and inductances.
    run.state[0] = 1.2 * psi + 1.6 * ld * 10.0;
    run.state[1] = 1.2 * 0.01 + 1.6 * (lq * 8.0 - 0.01);
    run.model.flux_derivative(0.0, 0.0, 0.0, 0.0, 1e-3, run.state, run.derivative, 1, 1, 1);
    EXPECT_NEAR(run.model.flux_integral_state().current_dq0[0], 10.0, 1e-10);
    EXPECT_NEAR(run.model.flux_integral_state().current_dq0[1], 8.0, 1e-10);
    // (1.2 - 1) times the phases of the flux without current at angle 0
    EXPECT_NEAR(run.model.state().flux_temperature_delta[0], 0.2 * std::sqrt(2.0 / 3.0) * (psi + std::sqrt(0.5) * 0.02),
                1e-14);
}

TEST(pmsm_flux_integral, leakage_is_taken_off_before_the_table) {
    KZB_STORE store;
    integral_file(store);
    for (const char* key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        kzb::put_double(store, "parameter", key, 0.001);
    }
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.state[0] = 0.2;
    run.state[1] = 0.1;
    run.execute({}, 0.0, 1e-3);
    const kzb::Dq0 i = run.model.flux_integral_state().current_dq0;
    run.accept(1e-3);
    const double d = run.state[0];
    const double q = run.state[1];
    run.model.flux_derivative(0.0, 0.0, 0.0, 0.0, 2e-3, run.state, run.derivative, 1, 1, 1);
    // Equal leakages act as one inductance on each axis.
    EXPECT_NEAR(run.model.flux_integral_state().air_gap_flux_dq0[0], d - 0.001 * i[0], 1e-14);
    EXPECT_NEAR(run.model.flux_integral_state().air_gap_flux_dq0[1], q - 0.001 * i[1], 1e-14);
}

TEST(pmsm_flux_integral, no_driven_terminal_leaves_the_flux_without_current) {
    KZB_STORE store;
    integral_file(store);
    table(store, "flux_table", "fd_noload", {nodes(0, 360, 5, true)},
          [](const std::vector<double>& x) { return x[0] == 90.0 ? 0.25 : psi; });
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.execute({100.0, 50.0, 0.0}, pi / 2.0, 1e-3, 0, 0, 1);
    EXPECT_NEAR(run.derivative[0], (0.25 - psi) / 1e-3, 1e-9);
    EXPECT_NEAR(run.derivative[1], 0.0, 1e-9);
    EXPECT_EQ(run.model.current_output(1), 0.0);
    EXPECT_NEAR(run.state[0], 0.25, 1e-12);
}

TEST(pmsm_flux_integral, open_phase_takes_its_own_induced_voltage) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.execute({30.0, -12.0, 5.0}, 0.05, 1e-3);
    const kzb::PmsmStep s = run.model.state();
    run.accept(1e-3);
    // Nothing changes between accept and the next derivative, so the flux has not moved: only the zero voltage remains.
    const double open = run.model.flux_integral_state().zero_voltage;
    double with_open[3];
    double given[3];
    kzb::Calc_Eq& model = run.model;
    model.flux_derivative(30.0, 777.0, 5.0, 0.1, 2e-3, run.state, with_open, 1, 0, 1);
    const kzb::PhaseAngles at(0.2);
    const double omega = 0.1 / (2e-3 - 1e-3);
    const Phases v = {30.0, open, 5.0};
    given[0] = kzb::park_d(v, at) - r * model.flux_integral_state().current_dq0[0] + omega * run.state[1];
    given[1] = kzb::park_q(v, at) - r * model.flux_integral_state().current_dq0[1] - omega * run.state[0];
    EXPECT_NEAR(with_open[0], given[0], 1e-9);
    EXPECT_NEAR(with_open[1], given[1], 1e-9);
    EXPECT_EQ(s.coil_flux, run.model.state().coil_flux_previous);
}

TEST(pmsm_flux_integral, outputs_belong_to_the_new_state) {
    KZB_STORE store;
    integral_file(store);
    for (const char* key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        kzb::put_double(store, "parameter", key, 0.0004);
    }
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.execute({30.0, -12.0, 5.0}, 0.1, 1e-3);
    const kzb::FluxIntegralState& s = run.model.flux_integral_state();
    const kzb::PhaseAngles at(0.2);
    const Phases i = kzb::inverse_park({s.current_dq0[0], s.current_dq0[1], 0.0}, at);
    const Phases flux = kzb::inverse_park({run.state[0], run.state[1], run.state[2]}, at);
    const Phases e = kzb::inverse_park({run.derivative[0], run.derivative[1], run.derivative[2]}, at);
    for (std::size_t k = 0; k < 3; ++k) {
        const int phase = static_cast<int>(k) + 1;
        EXPECT_NEAR(run.model.current_output(phase), i[k], 1e-10);
        EXPECT_NEAR(run.model.coil_flux(phase), flux[k] - 0.0004 * i[k], 1e-13);
        EXPECT_NEAR(run.model.stored_induced_voltage(phase), e[k], 1e-9);
    }
    const double amplitude = std::hypot(s.table_current_dq0[0], s.table_current_dq0[1]) * std::sqrt(2.0 / 3.0);
    const double beta = kzb::phase_of(s.table_current_dq0[0], s.table_current_dq0[1]);
    // 5 degree nodes of a cosine: the chord lies below by at most h^2 / 8.
    const double h = 5.0 * pi / 180.0;
    EXPECT_NEAR(run.model.torque(), 0.3 * amplitude * std::cos(beta * pi / 180.0), 0.3 * amplitude * h * h / 8.0);
}

TEST(pmsm_flux_integral, corrected_machine_takes_its_voltage_from_the_change_of_flux) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    run.model.set_correction_flux(1.5);
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.execute({30.0, -12.0, 5.0}, 0.1, 1e-3);
    const kzb::PmsmStep& s = run.model.state();
    EXPECT_NEAR(s.induced_voltage[1], (s.coil_flux[1] - s.total_flux_previous[1]) / 1e-3, 1e-12);
}

// Explicit Euler of the continuous machine, in the rotor frame and in the test's own words.
TEST(pmsm_flux_integral, run_follows_the_machine_equations) {
    KZB_STORE store;
    integral_file(store);
    constant(store, "flux_table", "fq_noload", {nodes(0, 360, 5, true)}, 0.0);
    constant(store, "flux_table", "f0_ibeta", {nodes(0, 100, 2), all_phases(), nodes(0, 360, 5, true)}, 0.02);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    const double dt = 1e-5;
    const double omega = 300.0;
    const double vd = -15.0;
    const double vq = 60.0;
    double d = psi;
    double q = 0.0;
    for (int n = 0; n <= 2000; ++n) {
        const double time = n * dt;
        const double position = omega / 2.0 * time;
        const kzb::PhaseAngles at(omega * time);
        run.execute(kzb::inverse_park({vd, vq, 0.0}, at), position, time);
        if (n > 0) {
            const double new_d = d + dt * (vd - r * (d - psi) / ld + omega * q);
            q += dt * (vq - r * q / lq - omega * d);
            d = new_d;
        }
        run.accept(time);
    }
    EXPECT_NEAR(run.state[0], d, 1e-9);
    EXPECT_NEAR(run.state[1], q, 1e-9);
    // Lq = (psi_q - 0) / i_q, Ld by differences of a linear table.
    EXPECT_NEAR(run.model.q_inductance(), lq, 1e-12);
    EXPECT_NEAR(run.model.d_inductance(), ld, 1e-12);
}

// Loss current: with fd, fq the filtered voltages and k = (fd^2 + fq^2) / P it is (fd, fq) / k, so it draws P.
TEST(pmsm_flux_integral, loss_current_draws_the_iron_loss) {
    KZB_STORE store;
    integral_file(store);
    constant(store, "loss_table", "iron_loss", {nodes(0, 100, 2), nodes(-180, 180, 2), nodes(0, 10000, 2)}, 40.0);
    Host run;
    bind(run.model, store, kzb::flux_integral, 1);
    ASSERT_TRUE(run.model.ironloss_on());
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.execute({0.0, 0.0, 0.0}, 0.1, 1e-3);
    const kzb::FluxIntegralState first = run.model.flux_integral_state();
    EXPECT_EQ(first.current_dq0[0], first.table_current_dq0[0]);  // nothing filtered yet
    EXPECT_NEAR(first.filtered_d, psi * 200.0, 1e-9);             // the first value: flux times speed
    EXPECT_EQ(first.filtered_q, 0.0);
    run.accept(1e-3);
    run.execute({0.0, 0.0, 0.0}, 0.2, 2e-3);
    const kzb::FluxIntegralState& s = run.model.flux_integral_state();
    const double loss_d = s.current_dq0[0] - s.table_current_dq0[0];
    const double loss_q = s.current_dq0[1] - s.table_current_dq0[1];
    EXPECT_NEAR(loss_d * first.filtered_d + loss_q * first.filtered_q, 40.0, 1e-9);
    EXPECT_EQ(run.model.eddy_loss(), 40.0);
}

// A multiplier that is no number is not taken for 1: the uncorrected flux would look sound.
TEST(pmsm_flux_integral, temperature_that_is_no_number_does_not_pass_for_an_uncorrected_machine) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    run.model.set_own_magnet_temperature(std::numeric_limits<double>::quiet_NaN());
    run.execute({30.0, -12.0, 5.0}, 0.1, 1e-3);
    EXPECT_TRUE(std::isnan(run.model.flux_integral_state().air_gap_flux_dq0[0]));
}

}  // namespace
}  // namespace kzb_test::pmsm_flux_integral_test
