// The implicit step with constants, driven by primary currents.
#include <gtest/gtest.h>

#include "im_files.h"

namespace kzb_test::im_current_step_test {
namespace {

void asymmetric(KZB_STORE& store, double move = 0.0) {
    im_fill(store, "L11_table", 0.125);
    im_fill(store, "M12_table", 0.09375);
    im_fill(store, "M21_table", 0.078125 + move);
    im_fill(store, "L22_table", 0.140625 + move);
}

TEST(im_current_step, solves_the_rotor_rows_for_the_secondary_current) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    asymmetric(store);
    const double none[3] = {0.0, 0.0, 0.0};
    model.step_current_driven(none, 0.3, 0.0);
    model.accept();
    const double i0[3] = {8.0, -3.0, -5.0};
    model.step_current_driven(i0, 0.4, 1e-3);
    model.accept();
    const double theta_prev = 0.8;
    const kzb::ImInductances p = model.state().inductances;
    const auto accepted = model.state().current_accepted;

    asymmetric(store, 0.015625);
    const double i1[3] = {7.0, 1.0, -8.0};
    model.step_current_driven(i1, 0.55, 3e-3);

    const double dt = 3e-3 - 1e-3;
    const double theta = 4 * 0.5 * 0.55;
    const double w = theta / 3e-3;
    const double rr = model.secondary_resistance();
    const double lr = 0.140625 + 0.015625;
    const double m = 0.078125 + 0.015625;
    EXPECT_EQ(model.state().inductances.m_Lr, lr);
    const Two c = im_clarke(i1[0], i1[1], i1[2]);
    const Two p1 = im_clarke(accepted[0], accepted[1], accepted[2]);
    const Two p2 = im_from_rotor(accepted[3], accepted[4], accepted[5], theta_prev);
    const double a = (2 * lr - p.m_Lr) / dt + rr;
    const double b = (2 * m - p.m_Mrs) / dt;
    const double r0 = m / dt * p1.alpha - (b * c.alpha + m * w * c.beta) + lr / dt * p2.alpha;
    const double r1 = m * w * c.alpha - b * c.beta + m / dt * p1.beta + lr / dt * p2.beta;
    const double det = a * a + (w * lr) * (w * lr);
    const double i2a = a / det * r0 + -(w * lr) / det * r1;
    const double i2b = w * lr / det * r0 + a / det * r1;
    // The result solves [[a, w Lr], [-w Lr, a]] i2 = r.
    EXPECT_NEAR(a * i2a + w * lr * i2b, r0, 1e-9 * std::fabs(r0));
    EXPECT_NEAR(-w * lr * i2a + a * i2b, r1, 1e-9 * std::fabs(r0));

    const auto primary = im_inverse_clarke(c);
    const auto secondary = im_to_rotor({i2a, i2b}, theta);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(model.current_output(k + 1), primary[static_cast<std::size_t>(k)]);
        EXPECT_EQ(model.current_output(k + 4), secondary[static_cast<std::size_t>(k)]);
    }
    EXPECT_EQ(model.state().primary_current, std::sqrt(2.0 / 3.0) * std::sqrt(c.alpha * c.alpha + c.beta * c.beta));
}

TEST(im_current_step, agrees_with_the_voltage_driven_step_that_gives_these_currents) {
    KZB_STORE by_voltage_store;
    im_constants_file(by_voltage_store);
    KZB_STORE by_current_store;
    im_constants_file(by_current_store);
    Calc_Eq_im_transient by_voltage;
    by_voltage.bind(by_voltage_store, 0);
    Calc_Eq_im_transient by_current;
    by_current.bind(by_current_store, 0);
    for (int n = 0; n < 20; ++n) {
        const double t = n * 1e-3;
        const double a = 2 * pi * 50.0 * t;
        im_sample(by_voltage, {300 * std::cos(a), 300 * std::cos(a - 2 * pi / 3), 300 * std::cos(a + 2 * pi / 3)},
                  140.0 * t, t);
        const double i[3] = {by_voltage.current_output(1), by_voltage.current_output(2), by_voltage.current_output(3)};
        by_current.step_current_driven(i, 140.0 * t, t);
        by_current.accept();
        for (int k = 1; k <= 6; ++k) {
            EXPECT_NEAR(by_current.current_output(k), by_voltage.current_output(k), 1e-8) << n;
        }
        EXPECT_NEAR(by_current.torque(), by_voltage.torque(), 1e-7) << n;
    }
    EXPECT_GT(std::fabs(by_voltage.torque()), 1.0);
}

TEST(im_current_step, no_time_gives_no_current_whatever_is_given) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double i[3] = {5.0, -2.0, -3.0};
    model.step_current_driven(i, 0.2, 0.0);
    for (int k = 1; k <= 6; ++k) {
        EXPECT_EQ(model.current_output(k), 0.0);
    }
}

TEST(im_current_step, total_flux_and_induced_voltage_stay) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    im_sample(model, {0.0, 0.0, 0.0}, 0.0, 0.0);
    im_sample(model, {100.0, -30.0, -70.0}, 0.1, 1e-3);
    const double flux = model.flux_total(1);
    const double voltage = model.induced_voltage(1);
    EXPECT_NE(voltage, 0.0);
    const double i[3] = {5.0, -2.0, -3.0};
    model.step_current_driven(i, 0.2, 2e-3);
    EXPECT_EQ(model.flux_total(1), flux);
    EXPECT_EQ(model.induced_voltage(1), voltage);
    EXPECT_NE(model.torque(), 0.0);
}

TEST(im_current_step, a_sample_gives_the_torque_of_its_currents) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double i[3] = {5.0, -2.0, -3.0};
    double state[4] = {1.0, 2.0, 3.0, 4.0};
    model.torque_from_currents(i, 0.0, 0.0, 1.0, state);
    model.accept();
    const double torque = model.torque_from_currents(i, 0.2, 1e-3, 1.0, state);
    EXPECT_EQ(torque, model.torque());
    const Two s = im_primary_of(model);
    const Two r = im_secondary_of(model);
    EXPECT_EQ(torque, 4 * 0.5 * model.state().inductances.m_Msr * (r.alpha * s.beta - r.beta * s.alpha));
    // With constants the caller's state is not touched.
    EXPECT_EQ(state[0], 1.0);
    EXPECT_EQ(state[3], 4.0);
}

}  // namespace
}  // namespace kzb_test::im_current_step_test
