// Points at which the wound-field model looks its tables up, and what it makes of their values.
//
// The flux table of these tests holds the coordinate of axis k in component k, so the fluxes of coils u, v, w, f are
// the four coordinates of the point.
#include <gtest/gtest.h>

#include "models/calc_eq_wfsm_frame.h"
#include "wfsm_files.h"

namespace kzb_test::wfsm_lookup_test {
namespace {

void coordinate_file(KZB_STORE& store, const WoundField& w) {
    wfsm_basics(store, w);
    const Axis wide = nodes(-1000.0, 1000.0, 2);
    const std::vector<Axis> axes{wide, wide, nodes(w.first_field, 1000.0, 2), wide};
    auto with = [&](Axis last) {
        std::vector<Axis> all = axes;
        all.push_back(std::move(last));
        return all;
    };
    table(store, "current_flux", "flux", with(components(4)),
          [](const std::vector<double>& x) { return x[static_cast<std::size_t>(x[4])]; });
    table(store, "harmonic_inductance", "inductance", with(components(16)),
          [](const std::vector<double>& x) { return x[4] + 1.0; });
    table(store, "harmonic_torque", "torque_ibeta", axes, [](const std::vector<double>& x) { return x[2] + 7.0; });
}

struct Machine {
    explicit Machine(const WoundField& w) {
        coordinate_file(store, w);
        model.bind(store);
    }
    // Currents of d, q and the field at `position`.
    void at(double d, double q, double field, double position, double th) {
        const auto i = phases_of(d, q, th);
        const Four all{i[0], i[1], i[2], field};
        model.evaluate(all.data(), position, 0.0);
    }
    KZB_STORE store;
    Calc_Eq_wfsm model;
};

void expect_point(const Calc_Eq_wfsm& model, double x0, double x1, double x2, double x3) {
    EXPECT_NEAR(model.coil_flux(1), x0, 1e-9);
    EXPECT_NEAR(model.coil_flux(2), x1, 1e-9);
    EXPECT_NEAR(model.coil_flux(3), x2, 1e-9);
    EXPECT_NEAR(model.coil_flux(4), x3, 1e-9);
}

constexpr double position = 0.3;
constexpr double th = 0.6;  // four poles
constexpr double angle = position * 180.0 / pi;

TEST(wfsm_lookup, point_over_d_and_q) {
    Machine m({.beta_zero = 10.0});
    m.at(3.0, -4.0, 2.0, position, th);
    // angle_offset = 2 * 10 / 4
    expect_point(m.model, 3.0, -4.0, 2.0, angle - 5.0);
    EXPECT_FALSE(m.model.state().mirrored);
}

TEST(wfsm_lookup, point_over_amplitude_and_phase) {
    Machine m({.beta_zero = 10.0, .current_type = 1});
    m.at(3.0, -4.0, 2.0, position, th);
    expect_point(m.model, 5.0 * std::sqrt(2.0 / 3.0), std::atan2(3.0, 4.0) * 180.0 / pi - 180.0, 2.0, angle - 5.0);
}

TEST(wfsm_lookup, turns_scale_the_currents_but_not_their_phase) {
    for (const int type : {0, 1}) {
        KZB_STORE store;
        coordinate_file(store, {.current_type = type});
        kzb::put_double(store, "control", "turns_in_coil", 10.0);
        kzb::put_double(store, "control", "turns_in_field_coil", 20.0);
        Calc_Eq_wfsm model;
        model.set_turns_coil2(20.0);
        model.set_turns_coil2_fieldcoil(100.0);
        model.bind(store);
        const auto i = phases_of(0.0, 3.0, th);
        const Four all{i[0], i[1], i[2], 2.0};
        model.evaluate(all.data(), position, 0.0);
        // Flux grows with the turns as well.
        EXPECT_NEAR(model.coil_flux(1), type == 0 ? 0.0 : 2.0 * 2.0 * 3.0 * std::sqrt(2.0 / 3.0), 1e-9);
        EXPECT_NEAR(model.coil_flux(2), type == 0 ? 2.0 * 2.0 * 3.0 : 0.0, 1e-9);
        EXPECT_NEAR(model.coil_flux(3), 2.0 * 10.0, 1e-9);
        EXPECT_NEAR(model.coil_flux(4), 5.0 * angle, 1e-8);
    }
}

// A field current of -1: +1 in the point, reversed armature currents, half an electrical turn (90 degrees of four
// poles) further on; the field flux changes its sign.
TEST(wfsm_lookup, field_current_below_the_tables_is_looked_up_from_the_other_pole) {
    Machine dq({});
    dq.at(3.0, -4.0, -1.0, position, th);
    expect_point(dq.model, -3.0, 4.0, 1.0, -(angle + 90.0));
    Machine polar({.current_type = 1});
    polar.at(0.0, 2.0, -1.0, position, th);
    expect_point(polar.model, 2.0 * std::sqrt(2.0 / 3.0), 180.0, 1.0, -(angle + 90.0));
    // The torque is as the table has it.
    EXPECT_NEAR(polar.model.torque(), 8.0, 1e-9);
}

TEST(wfsm_lookup, mirrored_point_changes_the_sign_of_the_six_field_couplings_alone) {
    for (const double field : {1.0, -1.0}) {
        Machine m({});
        m.at(1.0, 2.0, field, position, th);
        for (int row = 1; row <= 4; ++row) {
            for (int column = 1; column <= 4; ++column) {
                // Component k of the table is k + 1, its place row k mod 4, column k / 4.
                const double value = (column - 1) * 4 + (row - 1) + 1.0;
                const bool coupling = (row == 4) != (column == 4);
                EXPECT_NEAR(m.model.inductance(row, column), coupling && field < 0.0 ? -value : value, 1e-12);
            }
        }
        EXPECT_NEAR(m.model.field_inductance(), 16.0, 1e-12);
    }
}

TEST(wfsm_lookup, floor_of_the_field_axis) {
    // A table that begins below 0 is looked up as it is down to there.
    Machine negative({.first_field = -50.0});
    EXPECT_EQ(negative.model.machine().field_axis_floor, -50.0);
    negative.at(3.0, -4.0, -10.0, position, th);
    expect_point(negative.model, 3.0, -4.0, -10.0, angle);
    negative.at(3.0, -4.0, -50.0, position, th);
    EXPECT_FALSE(negative.model.state().mirrored);
    // One that begins above 0 is looked up from 0 on.
    Machine positive({.first_field = 5.0});
    EXPECT_EQ(positive.model.machine().field_axis_floor, 0.0);
    positive.at(3.0, -4.0, 0.0, position, th);
    EXPECT_FALSE(positive.model.state().mirrored);
    positive.at(3.0, -4.0, -0.1, position, th);
    EXPECT_TRUE(positive.model.state().mirrored);
}

TEST(wfsm_lookup, scales_of_armature_field_and_torque) {
    KZB_STORE store;
    coordinate_file(store, {});
    Calc_Eq_wfsm model;
    model.set_coef_flux(2.0);
    model.set_coef_flux_fieldcoil(3.0);
    model.set_coef_material(5.0);
    model.set_coef_torque(7.0);
    model.bind(store);
    const Four i{0.0, 0.0, 0.0, 1.0};
    model.evaluate(i.data(), position, 0.0);
    EXPECT_NEAR(model.coil_flux(3), 10.0 * 1.0, 1e-9);
    EXPECT_NEAR(model.coil_flux(4), 15.0 * angle, 1e-9);
    EXPECT_NEAR(model.inductance(3, 4), 10.0 * 15.0, 1e-9);
    EXPECT_NEAR(model.inductance(4, 3), 15.0 * 12.0, 1e-9);
    EXPECT_NEAR(model.torque(), 35.0 * 8.0, 1e-9);
}

// Tables whose axes are unknown are looked up without a point: the component alone, and 0.0 on what is left.
TEST(wfsm_lookup, unknown_axes_give_the_component_on_the_first_axis) {
    KZB_STORE store;
    coordinate_file(store, {.current_type = 3, .first_field = -10.0});
    Calc_Eq_wfsm model;
    model.bind(store);
    EXPECT_EQ(model.machine().current_type, -1);
    const Four i{1.0, 2.0, 3.0, 4.0};
    model.evaluate(i.data(), position, 0.0);
    // Component 0 of the table is the coordinate of axis 1, on which the component stands.
    expect_point(model, 0.0, 1.0, 2.0, 3.0);
    EXPECT_NEAR(model.torque(), 7.0, 1e-12);
}

TEST(wfsm_frame, phase_of_a_current_on_the_d_axis_is_a_right_angle) {
    EXPECT_EQ(kzb::wfsm::current_phase(1.0, 0.0), -90.0);
    EXPECT_EQ(kzb::wfsm::current_phase(-1.0, -0.0), 90.0);
    EXPECT_EQ(kzb::wfsm::current_phase(0.0, 0.0), 0.0);
    EXPECT_NEAR(kzb::wfsm::current_phase(-1.0, 1.0), 45.0, 1e-12);
    EXPECT_NEAR(kzb::wfsm::current_phase(-1.0, -1.0), 135.0, 1e-12);
    EXPECT_NEAR(kzb::wfsm::current_phase(1.0, -1.0), -135.0, 1e-12);
    EXPECT_EQ(kzb::wfsm::current_phase(0.0, -1.0), -180.0);
    EXPECT_EQ(kzb::phase_of(1.0, 0.0), 0.0);
}

TEST(wfsm_frame, park_and_its_inverse) {
    const kzb::PhaseAngles at(0.7);
    const kzb::Phases i = kzb::wfsm::inverse_park({2.0, -3.0}, at);
    EXPECT_NEAR(i[0] + i[1] + i[2], 0.0, 1e-14);
    EXPECT_NEAR(kzb::wfsm::park(i, at).d, 2.0, 1e-14);
    EXPECT_NEAR(kzb::wfsm::park(i, at).q, -3.0, 1e-14);
    EXPECT_NEAR(kzb::park_q(i, at), -3.0, 1e-14);
    EXPECT_TRUE(std::signbit(kzb::wfsm::park_q({0.0, 0.0, 0.0}, at)));
}

}  // namespace
}  // namespace kzb_test::wfsm_lookup_test
