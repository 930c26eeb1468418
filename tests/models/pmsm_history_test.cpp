// What accept keeps, and the induced voltage that is formed from it.
#include <gtest/gtest.h>

#include "pmsm_files.h"

namespace kzb_test::pmsm_history_test {
namespace {

using kzb::Calc_Eq;
using kzb::Phases;

Phases voltages_of(double time) {
    return {40.0 * std::cos(300.0 * time), 30.0 * std::cos(300.0 * time - 2.0), 35.0 * std::cos(300.0 * time + 1.5)};
}

TEST(pmsm_history, accept_moves_every_present_value) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    for (int n = 0; n < 4; ++n) {
        sample(model, voltages_of(n * 1e-4), n * 0.01, n * 1e-4);
    }
    model.set_correction_flux(1.5);
    model.set_own_magnet_temperature(333.15);
    sample(model, voltages_of(4e-4), 0.04, 4e-4, false);
    const kzb::PmsmStep before = model.state();
    const kzb::PmsmCorrections corrections = model.corrections();
    model.accept();
    const kzb::PmsmStep& after = model.state();
    EXPECT_EQ(after.current_older, before.current_previous);
    EXPECT_EQ(after.current_previous, before.current_output);
    EXPECT_EQ(after.magnet_flux_previous, before.magnet_flux);
    EXPECT_EQ(after.total_flux_previous, before.total_flux);
    EXPECT_EQ(after.coil_flux_previous, before.coil_flux);
    EXPECT_EQ(after.step_count, before.step_count + 1);
    EXPECT_EQ(after.inductance_previous, before.inductance);
    EXPECT_EQ(after.coenergy_previous, before.coenergy);
    EXPECT_EQ(after.position_previous, before.position);
    EXPECT_EQ(after.time_older, before.time_previous);
    EXPECT_EQ(after.time_previous, before.time);
    EXPECT_EQ(after.current_amplitude_previous, before.current_amplitude);
    EXPECT_EQ(after.current_phase_previous, before.current_phase);
    EXPECT_EQ(after.induced_voltage_previous, before.induced_voltage);
    EXPECT_EQ(after.neutral_voltage, 0.0);
    EXPECT_EQ(model.corrections().flux_multiplier_previous, corrections.flux_multiplier);
    EXPECT_EQ(model.corrections().flux_multiplier_previous, 1.5);
    EXPECT_EQ(model.corrections().inductance_multiplier_previous, corrections.inductance_multiplier);
    EXPECT_EQ(model.temperatures().magnet_temperature_previous, 333.15);
    EXPECT_NE(before.current, before.current_previous);
}

// In a current-driven run the accepted current is the one evaluated, whatever was set since.
TEST(pmsm_history, accept_takes_the_current_that_was_put_out) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    model.set_current(1, 5.0);
    model.torque_from_currents();
    model.set_current(1, 8.0);
    EXPECT_EQ(model.state().current_previous[0], 5.0);
    model.accept();
    EXPECT_EQ(model.state().current_previous[0], 5.0);
    EXPECT_EQ(model.state().current[0], 8.0);
}

TEST(pmsm_history, induced_voltage_of_flux_and_inductance_changes) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    for (int n = 0; n < 3; ++n) {
        sample(model, voltages_of(n * 1e-4), n * 0.01, n * 1e-4);
    }
    sample(model, voltages_of(3e-4), 0.03, 3e-4, false);
    const kzb::PmsmStep& s = model.state();
    for (std::size_t k = 0; k < 3; ++k) {
        double flux = s.magnet_flux[k] - s.magnet_flux_previous[k];
        for (std::size_t j = 0; j < 3; ++j) {
            flux += s.inductance[3 * k + j] * s.current[j] - s.inductance_previous[3 * k + j] * s.current_previous[j];
        }
        EXPECT_NEAR(model.induced_voltage(static_cast<int>(k) + 1), flux / (3e-4 - 2e-4), 1e-9);
    }
    EXPECT_NE(model.induced_voltage(1), 0.0);
}

TEST(pmsm_history, induced_voltage_is_zero_before_the_third_step) {
    KZB_STORE store;
    ld_lq_file(store);
    Calc_Eq model;
    bind(model, store, kzb::ld_lq);
    for (int n = 0; n < 2; ++n) {
        sample(model, voltages_of(n * 1e-4), n * 0.01, n * 1e-4, false);
        for (const int phase : {1, 2, 3}) {
            EXPECT_EQ(model.induced_voltage(phase), 0.0);
        }
        model.accept();
    }
    EXPECT_EQ(model.state().step_count, 3);
}

TEST(pmsm_history, reset_returns_to_the_start) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    for (int n = 0; n < 4; ++n) {
        sample(model, voltages_of(n * 1e-4), n * 0.01, n * 1e-4);
    }
    model.set_own_coil_temperature(400.0);
    model.reset();
    EXPECT_EQ(model.state().step_count, 1);
    EXPECT_EQ(model.connection(), -1);
    EXPECT_EQ(model.own_coil_temperature(), 293.15);
    EXPECT_EQ(model.current_output(1), 0.0);
    EXPECT_EQ(model.resistance(1), 0.0);
    // And it may be bound again.
    bind(model, store, kzb::harmonic);
    EXPECT_TRUE(sample(model, {}, 0.0, 0.0));
}

TEST(pmsm_history, current_driven_ld_and_lq_of_an_ld_lq_file) {
    KZB_STORE store;
    ld_lq_file(store);
    table(store, "dq_inductance", "d_inductance", {all_phases(), nodes(0, 100, 3)},
          [](const std::vector<double>& x) { return 0.002 + x[1] * 1e-5; });
    Calc_Eq model;
    model.set_correction_inductance(2.0);
    bind(model, store, kzb::ld_lq);
    const kzb::PhaseAngles at(0.0);
    const Phases i = kzb::inverse_park({0.0, 10.0 * std::sqrt(1.5), 0.0}, at);
    for (int repeat = 0; repeat < 2; ++repeat) {
        for (std::size_t k = 0; k < 3; ++k) {
            model.set_current(static_cast<int>(k) + 1, i[k]);
        }
        model.torque_from_currents();
        model.dq_inductances_from_currents(0.0);
        // The inductances are those at the accepted current: none yet, then 10 A.
        EXPECT_NEAR(model.d_inductance(), 2.0 * (repeat == 0 ? 0.002 : 0.0021), 1e-15);
        EXPECT_NEAR(model.q_inductance(), 2.0 * 0.005, 1e-15);
        if (repeat == 0) {
            // The first step forgets the polar current again, as established.
            EXPECT_EQ(model.state().current_amplitude, 0.0);
            for (std::size_t k = 0; k < 3; ++k) {
                model.set_current(static_cast<int>(k) + 1, i[k]);
            }
            model.torque_from_currents();
            model.accept();
        }
    }
}

}  // namespace
}  // namespace kzb_test::pmsm_history_test
