// The steps with tables: what belongs to a state, and its derivative.
#include <gtest/gtest.h>

#include "im_files.h"

namespace kzb_test::im_table_step_test {
namespace {

const double no_voltage[3] = {0.0, 0.0, 0.0};
// Values of ImTableValues.
constexpr double l11 = 0.125;
constexpr double m12 = 0.09375;
constexpr double m21 = 0.078125;
constexpr double l22 = 0.140625;
constexpr double r2 = 0.375;
constexpr double r1 = 0.5;

TEST(im_table_step, a_state_gives_its_currents_and_fluxes) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double x[4] = {3.0, -4.0, 0.5, 0.25};
    model.observe_state(0.5, 0.3, x);
    const Two secondary = {(0.5 - m12 * 3.0) / l22, (0.25 - m12 * -4.0) / l22};
    const auto primary_phases = im_inverse_clarke({3.0, -4.0});
    const auto secondary_phases = im_to_rotor(secondary, 0.6);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(model.current_output(k + 1), primary_phases[static_cast<std::size_t>(k)]);
        EXPECT_EQ(model.current_output(k + 4), secondary_phases[static_cast<std::size_t>(k)]);
    }
    // The peak as it was set before the lookups: sqrt(25 * 2 / 3).
    EXPECT_EQ(model.state().primary_current, std::sqrt((3.0 * 3.0 + 4.0 * 4.0) * 2 / 3));
    EXPECT_EQ(model.state().secondary_current,
              std::sqrt(2.0 / 3.0) * std::sqrt(secondary.alpha * secondary.alpha + secondary.beta * secondary.beta));
    EXPECT_EQ(model.secondary_flux_d(), 0.5);
    EXPECT_EQ(model.secondary_flux_q(), 0.25);
    // p / 2 * M12 (i2a i1b - i2b i1a)
    EXPECT_NEAR(model.torque(), 2.0 * m12 * (secondary.alpha * -4.0 - secondary.beta * 3.0), 1e-12);
    EXPECT_NEAR(model.primary_copper_loss(), 25.0 * r1, 1e-12);  // the two-axis magnitude squared, power invariant
}

TEST(im_table_step, without_time_the_currents_are_zero_and_the_state_stays_visible) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double x[4] = {3.0, -4.0, 0.5, 0.25};
    model.observe_state(0.0, 0.3, x);
    for (int k = 1; k <= 6; ++k) {
        EXPECT_EQ(model.current_output(k), 0.0);
    }
    EXPECT_EQ(model.torque(), 0.0);
    EXPECT_EQ(model.secondary_flux_d(), 0.5);
    EXPECT_EQ(model.state().primary_current, std::sqrt(25.0 * 2 / 3));
    EXPECT_EQ(model.state().secondary_current, 0.0);
}

TEST(im_table_step, voltage_derivative_is_that_of_the_flux_equations) {
    for (const int connection : {0, 1}) {
        KZB_STORE store;
        ImTableValues m;
        m.connection = connection;
        im_tables_file(store, m);
        constant(store, "equivalent_resistance_table", "copper_loss", {nodes(0, 1, 2)}, 0.25);
        Calc_Eq_im_transient model;
        model.bind(store, 0);
        model.set_user_copper_loss_enabled(true);
        const double v[3] = {100.0, -30.0, -70.0};
        const double x[4] = {3.0, -4.0, 0.5, 0.25};
        double d[4];
        model.voltage_derivative(v, 0.5, 0.3, d, x);

        const double w = 0.6 / 0.5;
        Two u = im_clarke(v[0], v[1], v[2]);
        if (connection == 1) {
            const double r = std::sqrt(3.0) * std::sqrt(u.alpha * u.alpha + u.beta * u.beta);
            const double a = std::atan2(u.alpha, u.beta) - 0.5235987755982988;
            u = {r * std::sin(a), r * std::cos(a)};
        }
        const double rt = r1 + 0.25;
        const double lsig = (1 - m12 * m21 / (l11 * l22)) * l11;
        const double lr2 = l22 * l22;
        EXPECT_EQ(d[0], (m12 * r2 / (lsig * lr2)) * x[2] - (m12 * r2 * m21 / (lsig * lr2) + rt / lsig) * x[0] +
                            (m12 * w / (lsig * l22)) * x[3] + u.alpha / lsig);
        EXPECT_EQ(d[1], (m12 * r2 / (lsig * lr2)) * x[3] - (m12 * r2 * m21 / (lsig * lr2) + rt / lsig) * x[1] -
                            (m12 * w / (lsig * l22)) * x[2] + u.beta / lsig);
        EXPECT_EQ(d[2], (r2 * m21 / l22) * x[0] - (r2 / l22) * x[2] - w * x[3]);
        EXPECT_EQ(d[3], (r2 * m21 / l22) * x[1] + w * x[2] - (r2 / l22) * x[3]);

        // The same from v = Rt i1 + d(psi1)/dt and 0 = R2 i2 + d(psi2)/dt + w-terms, with psi1 = L11 i1 + M12 i2.
        const Two i2 = {(x[2] - m21 * x[0]) / l22, (x[3] - m21 * x[1]) / l22};
        EXPECT_NEAR(d[2], -r2 * i2.alpha - w * x[3], 1e-12);
        EXPECT_NEAR(d[3], -r2 * i2.beta + w * x[2], 1e-12);
        const double di2a = (d[2] - m21 * d[0]) / l22;
        EXPECT_NEAR(rt * x[0] + l11 * d[0] + m12 * di2a, u.alpha, 1e-9);
        const double di2b = (d[3] - m21 * d[1]) / l22;
        EXPECT_NEAR(rt * x[1] + l11 * d[1] + m12 * di2b, u.beta, 1e-9);
    }
}

TEST(im_table_step, current_derivative_is_that_of_the_rotor_flux) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double i[3] = {7.0, 1.0, -8.0};
    const double x[2] = {0.5, 0.25};
    double d[4] = {9.0, 9.0, 9.0, 9.0};
    model.current_derivative(i, 0.5, 0.3, d, x);
    const Two i1 = im_clarke(7.0, 1.0, -8.0);
    const double w = 0.6 / 0.5;
    EXPECT_EQ(d[0], (r2 * m21 / l22) * i1.alpha - (r2 / l22) * 0.5 - w * 0.25);
    EXPECT_EQ(d[1], (r2 * m21 / l22) * i1.beta + w * 0.5 - (r2 / l22) * 0.25);
    EXPECT_EQ(d[2], 0.0);
    EXPECT_EQ(d[3], 0.0);
    EXPECT_EQ(model.state().primary_current, std::sqrt(2.0 / 3.0) * std::sqrt(i1.alpha * i1.alpha + i1.beta * i1.beta));
}

TEST(im_table_step, a_sample_moves_the_state_by_step_size_and_shows_the_state_before) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    Calc_Eq_im_transient other;
    other.bind(store, 0);
    const double v[3] = {100.0, -30.0, -70.0};
    double x[4] = {3.0, -4.0, 0.5, 0.25};
    const double before[4] = {3.0, -4.0, 0.5, 0.25};
    double d[4];
    other.observe_state(0.5, 0.3, before);
    other.voltage_derivative(v, 0.5, 0.3, d, before);
    model.execute(v, 0.3, 0.5, im_all_driven, 1e-3, x);
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_EQ(x[k], before[k] + d[k] * 1e-3);
        EXPECT_NE(x[k], before[k]);
    }
    EXPECT_EQ(model.current_output(1), im_inverse_clarke({3.0, -4.0})[0]);
    EXPECT_EQ(model.torque(), other.torque());
    // Every call moves the state on.
    const double moved = x[2];
    model.execute(v, 0.3, 0.5, im_all_driven, 1e-3, x);
    EXPECT_NE(x[2], moved);
}

TEST(im_table_step, a_current_driven_sample_takes_its_flux_from_the_first_two_places) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double i[3] = {7.0, 1.0, -8.0};
    double x[4] = {0.5, 0.25, 11.0, 12.0};
    const double torque = model.torque_from_currents(i, 0.3, 0.5, 1e-3, x);
    const Two i1 = im_clarke(7.0, 1.0, -8.0);
    const Two i2 = {(0.5 - m12 * i1.alpha) / l22, (0.25 - m12 * i1.beta) / l22};
    EXPECT_NEAR(torque, 2.0 * m12 * (i2.alpha * i1.beta - i2.beta * i1.alpha), 1e-11);
    EXPECT_EQ(torque, model.torque());
    EXPECT_EQ(model.secondary_flux_d(), 0.5);
    const double w = 0.6 / 0.5;
    EXPECT_EQ(x[0], 0.5 + ((r2 * m21 / l22) * i1.alpha - (r2 / l22) * 0.5 - w * 0.25) * 1e-3);
    EXPECT_EQ(x[2], 11.0);
    EXPECT_EQ(x[3], 12.0);
}

TEST(im_table_step, first_observation_applies_the_start) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_initial_time(0.5);
    model.set_initial_current(2, 4.0);
    const double x[4] = {3.0, -4.0, 0.5, 0.25};
    model.observe_state(0.5, 0.3, x);
    EXPECT_EQ(model.current_output(1), 0.0);  // no time has passed
    EXPECT_EQ(model.state().theta_prev, 0.6);
    EXPECT_EQ(model.state().current_accepted, (kzb::SixCurrents{0.0, 4.0, 0.0, 0.0, 0.0, 0.0}));
    model.observe_state(0.625, 0.3, x);
    EXPECT_NE(model.current_output(1), 0.0);
}

TEST(im_table_step, a_sample_has_flux_and_induced_voltage) {
    KZB_STORE store;
    im_tables_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    double x[4] = {3.0, -4.0, 0.5, 0.25};
    model.execute(no_voltage, 0.0, 0.25, im_all_driven, 0.125, x);
    model.accept();
    const double flux_before = model.flux_total(2);
    model.execute(no_voltage, 0.1, 0.5, im_all_driven, 0.125, x);
    const Two s = im_primary_of(model);
    const Two r = im_secondary_of(model);
    const auto flux = im_inverse_clarke({l11 * s.alpha + m21 * r.alpha, l11 * s.beta + m21 * r.beta});
    EXPECT_EQ(model.flux_total(2), flux[1]);
    EXPECT_EQ(model.induced_voltage(2), (flux[1] - flux_before) / 0.25);
}

}  // namespace
}  // namespace kzb_test::im_table_step_test
