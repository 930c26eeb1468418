// Inductances of the d and q axes of the wound-field model.
#include <gtest/gtest.h>

#include "wfsm_files.h"

namespace kzb_test::wfsm_dq_test {
namespace {

// A machine at position 0 with a linear air gap: Ld = Lq = l + 1.5 m. `bend` adds bend * i_q^2 to the q axis flux.
struct Machine {
    explicit Machine(int current_type, double bend = 0.0) : machine{.current_type = current_type} {
        linear_file(store, machine);
        if (bend != 0.0) {
            KZB_TABLE* const flux = kzb::find_table(store, "current_flux", "flux");
            std::vector<Axis> axes;
            for (std::size_t a = 0; a < 4; ++a) {
                Axis axis;
                for (std::size_t i = 0; i < flux->axes[a].size(); ++i) {
                    axis.nodes.push_back(flux->axes[a][i]);
                }
                axis.cyclic = false;
                axes.push_back(axis);
            }
            // Nodes where the tests look up: phases 78, 88, 98 and amplitude 10.
            axes[0] = {{0.0, 10.0, 20.0}, false};
            axes[1] = {{-98.0, -88.0, -80.0, -78.0, 0.0, 78.0, 80.0, 88.0, 98.0}, false};
            axes.push_back(components(4));
            table(store, "current_flux", "flux", axes, [this, bend](const std::vector<double>& x) {
                const double q = dq_of_point(machine, x)[1];
                const double th = x[3] * pi / 180.0 * 2.0;
                const auto extra = phases_of(0.0, bend * q * q, th);
                return linear_flux(machine, x, static_cast<int>(x[4])) +
                       (x[4] < 3.0 ? extra[static_cast<std::size_t>(x[4])] : 0.0);
            });
        }
        model.bind(store);
    }
    void at(double amplitude, double beta) {
        const double s = std::sqrt(1.5) * amplitude;
        const auto i = phases_of(-std::sin(beta * pi / 180.0) * s, std::cos(beta * pi / 180.0) * s, 0.0);
        const Four all{i[0], i[1], i[2], 10.0};
        const FiveAxisLookups lookups(store);
        model.evaluate(all.data(), 0.0, 0.0);
        // 20 of the present point, three per probed flux.
        probes = (lookups.count() - 20.0) / 3.0;
    }
    WoundField machine;
    KZB_STORE store;
    Calc_Eq_wfsm model;
    double probes = 0.0;
};

TEST(wfsm_dq, smooth_air_gap_has_equal_inductances) {
    for (const int type : {0, 1}) {
        Machine m(type);
        for (const double beta : {0.0, 45.0, 120.0, -170.0}) {
            m.at(10.0, beta);
            EXPECT_NEAR(m.model.d_inductance(), 0.007, 1e-12) << beta;
            EXPECT_NEAR(m.model.q_inductance(), 0.007, 1e-12) << beta;
            EXPECT_EQ(m.probes, 1.0);
        }
        // The field current adds nothing to the q axis.
        EXPECT_NEAR(m.model.field_inductance(), 1.2, 1e-12);
    }
}

// Beyond 5 degrees from the d axis the quotient of the point itself, within it the mean of those 10 degrees aside.
TEST(wfsm_dq, close_to_the_d_axis_two_neighbours_are_taken) {
    for (const double side : {1.0, -1.0}) {
        Machine m(1, 0.001);
        // psi_q = L q + bend q^2, so psi_q / q = L + bend q with q = cos(beta) amp sqrt(1.5).
        const double s = 10.0 * std::sqrt(1.5);
        m.at(10.0, side * 80.0);
        EXPECT_EQ(m.probes, 1.0);
        EXPECT_NEAR(m.model.q_inductance(), 0.007 + 0.001 * std::cos(80.0 * pi / 180.0) * s, 1e-9);
        m.at(10.0, side * 88.0);
        EXPECT_EQ(m.probes, 3.0);
        const double mean = 0.5 * (std::cos(98.0 * pi / 180.0) + std::cos(78.0 * pi / 180.0)) * s;
        EXPECT_NEAR(m.model.q_inductance(), 0.007 + 0.001 * mean, 1e-9);
    }
}

TEST(wfsm_dq, five_degrees_belong_to_the_neighbourhood) {
    Machine m(0);
    for (const double beta : {85.1, 94.9, -85.1, -94.9}) {
        m.at(10.0, beta);
        EXPECT_EQ(m.probes, 3.0) << beta;
        EXPECT_NEAR(m.model.q_inductance(), 0.007, 1e-9);
    }
    for (const double beta : {84.9, 95.1, -84.9, -95.1}) {
        m.at(10.0, beta);
        EXPECT_EQ(m.probes, 1.0) << beta;
    }
}

TEST(wfsm_dq, without_armature_current_there_is_no_q_inductance) {
    Machine m(0);
    m.at(0.0, 0.0);
    EXPECT_EQ(m.model.q_inductance(), 0.0);
    EXPECT_NEAR(m.model.d_inductance(), 0.007, 1e-12);
    m.at(0.9e-6, 0.0);
    EXPECT_EQ(m.model.q_inductance(), 0.0);
    m.at(1.1e-6, 0.0);
    EXPECT_NEAR(m.model.q_inductance(), 0.007, 1e-6);
}

// The present flux is scaled, that without current is not, and the quotient is scaled again: with a factor k and a
// field on the q axis of the tables' own, L_q = k (k psi_q(i) - psi_q(0)) / i_q. Here psi_q(0) = 0.
TEST(wfsm_dq, flux_scale_acts_twice_on_the_direct_form_and_once_on_the_neighbours) {
    Machine m(0);
    m.model.set_coef_flux(2.0);
    m.at(10.0, 30.0);
    EXPECT_NEAR(m.model.q_inductance(), 4.0 * 0.007, 1e-12);
    EXPECT_NEAR(m.model.d_inductance(), 2.0 * 0.007, 1e-12);
    m.at(10.0, 90.0);
    EXPECT_NEAR(m.model.q_inductance(), 2.0 * 0.007, 1e-9);
}

}  // namespace
}  // namespace kzb_test::wfsm_dq_test
