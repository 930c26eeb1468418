// The implicit step with constants, driven by voltages.
#include <gtest/gtest.h>

#include <limits>

#include "im_files.h"

namespace kzb_test::im_voltage_step_test {
namespace {

using Row = std::array<double, 4>;

// Elimination without exchange of rows.
Row solved(std::array<Row, 4> m, Row b) {
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t r = i + 1; r < 4; ++r) {
            const double factor = m[r][i] / m[i][i];
            for (std::size_t c = i + 1; c < 4; ++c) {
                m[r][c] -= m[i][c] * factor;
            }
            b[r] -= b[i] * factor;
        }
    }
    for (std::size_t i = 4; i-- > 0;) {
        for (std::size_t c = i + 1; c < 4; ++c) {
            b[i] -= b[c] * m[i][c];
        }
        b[i] /= m[i][i];
    }
    return b;
}

// The system of one step written out: l and p are Ls, Msr, Lr, Mrs of this step and of the accepted one.
Row currents_of(const Row& l, const Row& p, double rt, double rr, double w, double dt, const Row& x, double va,
                double vb) {
    const auto at = [](const Row& v) {
        return std::array<Row, 4>{{{v[0], 0, v[1], 0}, {0, v[0], 0, v[1]}, {v[3], 0, v[2], 0}, {0, v[3], 0, v[2]}}};
    };
    const std::array<Row, 4> big_l = at(l);
    const std::array<Row, 4> previous = at(p);
    const std::array<Row, 4> r = {
        {{rt, 0, 0, 0}, {0, rt, 0, 0}, {0, w * l[3], rr, w * l[2]}, {-w * l[3], 0, -w * l[2], rr}}};
    std::array<Row, 4> a{};
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            a[i][j] = 2 * big_l[i][j] + dt * r[i][j] - previous[i][j];
        }
    }
    const Row b = {l[0] * x[0] + dt * va + l[1] * x[2], l[0] * x[1] + dt * vb + l[1] * x[3],
                   l[3] * x[0] + dt * 0.0 + l[2] * x[2], l[3] * x[1] + dt * 0.0 + l[2] * x[3]};
    return solved(a, b);
}

Row inductances_of(const kzb::ImInductances& l) {
    return {l.m_Ls, l.m_Msr, l.m_Lr, l.m_Mrs};
}

void expect_currents(const Calc_Eq_im_transient& model, const Row& y, double theta) {
    const std::array<double, 3> primary = im_inverse_clarke({y[0], y[1]});
    const std::array<double, 3> secondary = im_to_rotor({y[2], y[3]}, theta);
    for (int k = 0; k < 3; ++k) {
        EXPECT_EQ(model.current_output(k + 1), primary[static_cast<std::size_t>(k)]);
        EXPECT_EQ(model.current_output(k + 4), secondary[static_cast<std::size_t>(k)]);
        EXPECT_EQ(model.state().current_latest[static_cast<std::size_t>(k)], primary[static_cast<std::size_t>(k)]);
    }
    EXPECT_EQ(model.state().primary_current, std::sqrt(2.0 / 3.0) * std::sqrt(y[0] * y[0] + y[1] * y[1]));
    EXPECT_EQ(model.state().secondary_current, std::sqrt(2.0 / 3.0) * std::sqrt(y[2] * y[2] + y[3] * y[3]));
}

TEST(im_voltage_step, solves_the_four_current_system) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    // Four different inductances, so that no two can be exchanged.
    im_fill(store, "L11_table", 0.125);
    im_fill(store, "M12_table", 0.09375);
    im_fill(store, "M21_table", 0.078125);
    im_fill(store, "L22_table", 0.140625);
    im_sample(model, {0.0, 0.0, 0.0}, 0.3, 0.0);

    Row x = {};
    Row l_prev = inductances_of(model.state().inductances);
    EXPECT_EQ(l_prev[3], 0.078125);
    double theta_prev = model.state().theta;
    double time_prev = 0.0;
    for (int n = 1; n < 5; ++n) {
        // Inductances that move from step to step.
        im_fill(store, "L11_table", 0.125 + n * 0.0078125);
        im_fill(store, "M21_table", 0.078125 + n * 0.0078125);
        const double time = n * 1e-3;
        const double displacement = 0.3 + n * 0.17;
        const std::array<double, 3> v = {100.0 * n, -30.0, -45.0 - n};
        model.step_voltage_driven(v.data(), displacement, time, im_all_driven);
        const double theta = 4 * 0.5 * displacement;
        const double w = theta / time;
        const Two drive = im_clarke(v[0], v[1], v[2]);
        const Row l = inductances_of(model.state().inductances);
        const Row y =
            currents_of(l, l_prev, 0.5, model.secondary_resistance(), w, time - time_prev, x, drive.alpha, drive.beta);
        SCOPED_TRACE(n);
        expect_currents(model, y, theta);
        model.accept();
        const auto& i = model.state().current_accepted;
        const Two p1 = im_clarke(i[0], i[1], i[2]);
        const Two p2 = im_from_rotor(i[3], i[4], i[5], theta);
        x = {p1.alpha, p1.beta, p2.alpha, p2.beta};
        l_prev = l;
        theta_prev = theta;
        time_prev = time;
    }
    EXPECT_EQ(model.state().theta_prev, theta_prev);
    EXPECT_EQ(model.state().time_prev, time_prev);
}

TEST(im_voltage_step, the_additional_resistance_is_in_series_with_the_primary) {
    KZB_STORE store;
    im_constants_file(store);
    constant(store, "equivalent_resistance_table", "copper_loss", {nodes(0, 1, 2)}, 0.25);
    Calc_Eq_im_transient with_loss;
    with_loss.bind(store, 0);
    with_loss.set_user_copper_loss_enabled(true);
    KZB_STORE plain;
    ImConstants m;
    m.r1 = 0.75;
    im_constants_file(plain, m);
    Calc_Eq_im_transient without;
    without.bind(plain, 0);
    for (Calc_Eq_im_transient* const model : {&with_loss, &without}) {
        im_sample(*model, {0.0, 0.0, 0.0}, 0.0, 0.0);
        im_sample(*model, {100.0, -20.0, -80.0}, 0.1, 1e-3);
    }
    EXPECT_EQ(with_loss.current_output(1), without.current_output(1));
    EXPECT_EQ(with_loss.current_output(5), without.current_output(5));
    EXPECT_EQ(with_loss.primary_copper_loss() * 0.5, with_loss.user_copper_loss());
}

TEST(im_voltage_step, a_first_step_above_time_zero_has_no_previous_inductances) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const std::array<double, 3> v = {100.0, -30.0, -70.0};
    model.step_voltage_driven(v.data(), 0.2, 1e-3, im_all_driven);
    const Two drive = im_clarke(v[0], v[1], v[2]);
    const Row y = currents_of(inductances_of(model.state().inductances), {0, 0, 0, 0}, 0.5, 0.4, 0.4 / 1e-3, 1e-3,
                              {0, 0, 0, 0}, drive.alpha, drive.beta);
    expect_currents(model, y, 0.4);
}

TEST(im_voltage_step, repeated_steps_of_a_sample_start_from_the_accepted_one) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    im_sample(model, {0.0, 0.0, 0.0}, 0.0, 0.0);
    im_sample(model, {100.0, -50.0, -50.0}, 0.1, 1e-3);
    const std::array<double, 3> v = {90.0, -10.0, -80.0};
    model.step_voltage_driven(v.data(), 0.2, 2e-3, im_all_driven);
    const kzb::SixCurrents once = model.state().current_out;
    model.step_voltage_driven(v.data(), 0.2, 2e-3, im_all_driven);
    EXPECT_EQ(model.state().current_out, once);
    EXPECT_EQ(model.state().step_count, 3);
}

TEST(im_voltage_step, no_time_gives_no_current) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    for (int k = 1; k <= 6; ++k) {
        model.set_initial_current(k, k);
    }
    const double v[3] = {100.0, -50.0, -50.0};
    for (const double time : {0.0, -1.0}) {
        model.step_voltage_driven(v, 0.5, time, im_all_driven);
        for (int k = 1; k <= 6; ++k) {
            EXPECT_EQ(model.current_output(k), 0.0);
            EXPECT_EQ(model.state().current_accepted[static_cast<std::size_t>(k - 1)], k);
        }
        EXPECT_EQ(model.torque(), 0.0);
        EXPECT_EQ(model.primary_copper_loss(), 0.0);
        EXPECT_EQ(model.induced_voltage(1), 0.0);
    }
}

TEST(im_voltage_step, the_first_step_keeps_the_initial_currents_that_were_set) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_initial_current(1, 6.0);
    model.set_initial_current(5, 3.0);
    model.set_initial_current(0, 9.0);
    model.set_initial_current(7, 9.0);
    const double v[3] = {0.0, 0.0, 0.0};
    model.step_voltage_driven(v, 0.2, 1e-3, im_all_driven);
    EXPECT_EQ(model.state().current_accepted, (kzb::SixCurrents{6.0, 0.0, 0.0, 0.0, 3.0, 0.0}));
    // The rotor's angle before is taken as the present one.
    EXPECT_EQ(model.state().theta_prev, 0.4);
    const Two p1 = im_clarke(6.0, 0.0, 0.0);
    const Two p2 = im_from_rotor(0.0, 3.0, 0.0, 0.4);
    const Row y = currents_of(inductances_of(model.state().inductances), {0, 0, 0, 0}, 0.5, 0.4, 0.4 / 1e-3, 1e-3,
                              {p1.alpha, p1.beta, p2.alpha, p2.beta}, 0.0, 0.0);
    expect_currents(model, y, 0.4);
}

TEST(im_voltage_step, an_initial_time_shortens_the_first_step) {
    KZB_STORE store;
    im_constants_file(store);
    const double v[3] = {100.0, -50.0, -50.0};
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    model.set_initial_time(0.5);
    model.step_voltage_driven(v, 0.0, 0.5, im_all_driven);
    EXPECT_EQ(model.current_output(1), 0.0);
    model.step_voltage_driven(v, 0.0, 0.625, im_all_driven);
    const Two drive = im_clarke(v[0], v[1], v[2]);
    const Row y = currents_of(inductances_of(model.state().inductances), {0, 0, 0, 0}, 0.5, 0.4, 0.0, 0.125,
                              {0, 0, 0, 0}, drive.alpha, drive.beta);
    expect_currents(model, y, 0.0);
}

TEST(im_voltage_step, a_delta_takes_sqrt_3_times_the_voltage_turned_by_30_degrees) {
    // With L and R of one winding alone the drive can be read off the currents; compare with a star that is handed the
    // turned voltages.
    ImConstants delta;
    delta.connection = 1;
    KZB_STORE delta_store;
    im_constants_file(delta_store, delta);
    KZB_STORE star_store;
    im_constants_file(star_store);
    Calc_Eq_im_transient in_delta;
    in_delta.bind(delta_store, 0);
    Calc_Eq_im_transient in_star;
    in_star.bind(star_store, 0);
    im_sample(in_delta, {0, 0, 0}, 0.0, 0.0);
    im_sample(in_star, {0, 0, 0}, 0.0, 0.0);
    for (int n = 1; n <= 12; ++n) {
        // Angle a from the beta axis: alpha = V sin a, beta = V cos a.
        const double a = n * pi / 6.0 + 0.1;
        const std::array<double, 3> v = im_inverse_clarke({100.0 * std::sin(a), 100.0 * std::cos(a)});
        const double turned = a - pi / 6.0;
        const double r = 100.0 * std::sqrt(3.0);
        const std::array<double, 3> lagging = im_inverse_clarke({r * std::sin(turned), r * std::cos(turned)});
        im_sample(in_delta, v, 0.0, n * 1e-3);
        im_sample(in_star, lagging, 0.0, n * 1e-3);
        for (int k = 1; k <= 6; ++k) {
            EXPECT_NEAR(in_delta.current_output(k), in_star.current_output(k), 1e-11) << n;
        }
    }
    EXPECT_NE(in_star.current_output(1), 0.0);
}

TEST(im_voltage_step, signals_enter_no_number) {
    kzb::SixCurrents results[2];
    const double signals[2][3] = {{1.0, 1.0, 1.0}, {0.0, -1.0, 0.0}};
    for (std::size_t n = 0; n < 2; ++n) {
        KZB_STORE store;
        im_constants_file(store);
        Calc_Eq_im_transient model;
        model.bind(store, 0);
        const double v[3] = {100.0, -30.0, -70.0};
        model.step_voltage_driven(v, 0.1, 1e-3, signals[n]);
        results[n] = model.state().current_out;
    }
    EXPECT_EQ(results[0], results[1]);
    EXPECT_NE(results[0][0], 0.0);
}

TEST(im_voltage_step, signals_mark_the_driven_terminals) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    const double v[3] = {100.0, -30.0, -70.0};
    const double signals[3] = {1.0, 0.0, 2.0};
    model.step_voltage_driven(v, 0.1, 1e-3, signals);
    EXPECT_EQ(model.network()->terminals[0]->potential, 100.0);
    EXPECT_EQ(model.network()->terminals[1]->potential, 0.0);
    EXPECT_EQ(model.network()->terminals[2]->potential, -70.0);
}

TEST(im_voltage_step, accepting_moves_present_values_to_the_previous_ones) {
    KZB_STORE store;
    im_constants_file(store);
    Calc_Eq_im_transient model;
    model.bind(store, 0);
    im_sample(model, {0.0, 0.0, 0.0}, 0.0, 0.0);
    const double v[3] = {100.0, -30.0, -70.0};
    model.step_voltage_driven(v, 0.1, 1e-3, im_all_driven);
    const kzb::ImStep before = model.state();
    EXPECT_NE(before.flux_total_prev, before.flux_total);
    model.accept();
    const kzb::ImStep& after = model.state();
    EXPECT_EQ(after.current_accepted, before.current_latest);
    EXPECT_EQ(after.step_count, before.step_count + 1);
    EXPECT_EQ(after.time_prev, 1e-3);
    EXPECT_EQ(after.theta_prev, before.theta);
    EXPECT_EQ(after.inductances_prev.m_Ls, before.inductances.m_Ls);
    EXPECT_EQ(after.inductances_prev.m_Msr, before.inductances.m_Msr);
    EXPECT_EQ(after.inductances_prev.m_Lr, before.inductances.m_Lr);
    EXPECT_EQ(after.inductances_prev.m_Mrs, before.inductances.m_Mrs);
    EXPECT_EQ(after.flux_total_prev, before.flux_total);
}

TEST(im_voltage_step, a_current_that_is_set_is_the_latest_and_the_output) {
    Calc_Eq_im_transient model;
    model.set_current(2, 5.0);
    model.set_current(0, 1.0);
    model.set_current(7, 1.0);
    EXPECT_EQ(model.current_output(2), 5.0);
    EXPECT_EQ(model.state().current_latest, (kzb::SixCurrents{0.0, 5.0, 0.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(model.current_output(0), 0.0);
    EXPECT_EQ(model.current_output(7), 0.0);
    model.accept();
    EXPECT_EQ(model.state().current_accepted[1], 5.0);
}

}  // namespace
}  // namespace kzb_test::im_voltage_step_test
