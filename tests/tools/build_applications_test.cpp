// The tables of each application against the closed form of a linear machine:
//   psi_k = (psi_m + l_d id) cos(theta_k) - l_q iq sin(theta_k),   theta_k = theta - k 120 deg
//   torque = 1.5 p (psi_m + (l_d - l_q) id) iq
// with id = -I sin(beta), iq = I cos(beta): a negative d current at positive q current has a positive current phase.
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tools/build_synthetic.h"

namespace kzb::tool {
namespace {

using namespace synthetic;
using testing::ElementsAre;

constexpr double pole_pairs = 2.0;
constexpr double rounding = 1e-13;  // of fluxes and currents of order 1 after some hundred operations
const double k32 = std::sqrt(1.5);

struct Dq {
    double id, iq;
};
Dq current(double amplitude, double beta_deg) {
    const double beta = beta_deg * pi / 180.0;
    return {-amplitude * std::sin(beta), amplitude * std::cos(beta)};
}
double angle(double position_deg, double component) {
    return position_deg * pole_pairs * pi / 180.0 - component * 2.0 * pi / 3.0;
}
double linear_torque(const Dq& i) {
    return 1.5 * pole_pairs * (psi_m + (l_d - l_q) * i.id) * i.iq;
}
double phase_inductance(double position, double row, double column) {
    return 2.0 / 3.0 *
           (l_d * std::cos(angle(position, row)) * std::cos(angle(position, column)) +
            l_q * std::sin(angle(position, row)) * std::sin(angle(position, column)));
}

void expect_torque(KZB_STORE* store, const char* category) {
    each_value(store, category, "torque_ibeta", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, linear_torque(current(at[2], at[0])), 1e-11) << at[0] << " " << at[1] << " " << at[2];
    });
    EXPECT_THAT(cyclic_of(store, category, "torque_ibeta"), ElementsAre(1, 1, 0));
}

TEST(BuildHarmonic, axes_cover_one_electrical_period_the_full_phase_circle_and_the_circle_inside_the_map) {
    const PmsmBuild build = build_text(linear_map(), Application::Harmonic);
    KZB_STORE* store = build.model.store.get();
    EXPECT_THAT(axis_of(store, "current_flux", "flux", 1), ElementsAre(0.0, 5.0, 10.0, 15.0, 20.0));
    const auto phase = axis_of(store, "current_flux", "flux", 2);
    EXPECT_EQ(phase.size(), 25U);
    EXPECT_EQ(phase.front(), -180.0);
    EXPECT_EQ(phase.back(), 180.0);
    const auto position = axis_of(store, "current_flux", "flux", 3);  // 360 / 2 pole pairs
    EXPECT_EQ(position.size(), 25U);
    EXPECT_EQ(position.front(), 0.0);
    EXPECT_EQ(position.back(), 180.0);
    EXPECT_THAT(axis_of(store, "current_flux", "flux", 4), ElementsAre(0.0, 1.0, 2.0));
    EXPECT_EQ(axis_of(store, "harmonic_inductance", "inductance", 4).size(), 9U);
    EXPECT_THAT(cyclic_of(store, "current_flux", "flux"), ElementsAre(0, 1, 1, 0));
    EXPECT_THAT(cyclic_of(store, "harmonic_inductance", "inductance"), ElementsAre(0, 1, 1, 0));
    EXPECT_THAT(cyclic_of(store, "current_flux", "mag_flux"), ElementsAre(1, 0));
}

TEST(BuildHarmonic, flux_is_the_inverse_transform_of_the_map) {
    const PmsmBuild build = build_text(linear_map(), Application::Harmonic);
    each_value(build.model.store.get(), "current_flux", "flux", [](const std::vector<double>& at, double value) {
        const Dq i = current(at[0], at[1]);
        const double theta = angle(at[2], at[3]);
        ASSERT_NEAR(value, psi_d(i.id) * std::cos(theta) - psi_q(i.iq) * std::sin(theta), rounding);
    });
    each_value(build.model.store.get(), "current_flux", "mag_flux", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, psi_m * std::cos(angle(at[0], at[1])), rounding);
    });
}

TEST(BuildHarmonic, inductance_is_the_phase_matrix_and_torque_that_of_the_machine) {
    const PmsmBuild build = build_text(linear_map(), Application::Harmonic);
    KZB_STORE* store = build.model.store.get();
    each_value(store, "harmonic_inductance", "inductance", [](const std::vector<double>& at, double value) {
        const double row = std::fmod(at[3], 3.0);
        const double column = std::floor(at[3] / 3.0);
        ASSERT_NEAR(value, phase_inductance(at[2], row, column), 1e-15);
    });
    expect_torque(store, "harmonic_torque");
}

// psi_d = psi_m + l_d id + m iq with psi_q blind to id: the phase matrix is not symmetric,
//   d psi_r / d i_c = (2/3) (cos_r (l_d cos_c - m sin_c) + l_q sin_r sin_c)
TEST(BuildHarmonic, inductance_elements_stand_by_columns) {
    constexpr double m = 1e-3;
    std::string text = "id_A,iq_A,psi_d_Vs,psi_q_Vs\n";
    for (const double id : {-10.0, 0.0, 10.0}) {
        for (const double iq : {-10.0, 0.0, 10.0}) {
            text += fmt::format("{},{},{},{}\n", id, iq, psi_d(id) + m * iq, psi_q(iq));
        }
    }
    const PmsmBuild build = build_text(text, Application::Harmonic);
    each_value(
        build.model.store.get(), "harmonic_inductance", "inductance", [](const std::vector<double>& at, double value) {
            const double r = angle(at[2], std::fmod(at[3], 3.0));
            const double c = angle(at[2], std::floor(at[3] / 3.0));
            const double wanted =
                2.0 / 3.0 * (std::cos(r) * (l_d * std::cos(c) - m * std::sin(c)) + l_q * std::sin(r) * std::sin(c));
            ASSERT_NEAR(value, wanted, 1e-15);
        });
}

TEST(BuildHarmonic, both_ends_of_a_cyclic_axis_hold_the_same_bits) {
    const PmsmBuild build = build_text(linear_map(), Application::Harmonic);
    KZB_STORE* store = build.model.store.get();
    for (int amplitude = 0; amplitude < 5; ++amplitude) {
        for (int k = 0; k < 3; ++k) {
            const int first[] = {amplitude, 0, 7, k};
            const int last[] = {amplitude, 24, 7, k};
            EXPECT_EQ(kzb_get_table_value("current_flux", "flux", first, store),
                      kzb_get_table_value("current_flux", "flux", last, store));
            const int start[] = {amplitude, 3, 0, k};
            const int end[] = {amplitude, 3, 24, k};
            EXPECT_EQ(kzb_get_table_value("current_flux", "flux", start, store),
                      kzb_get_table_value("current_flux", "flux", end, store));
        }
    }
}

TEST(BuildHarmonic, zero_inductance_is_what_a_common_current_sees) {
    const PmsmBuild build =
        build_text(linear_map(), Application::Harmonic, [](PmsmOptions& o) { o.model.tables.zero_inductance = 4e-4; });
    // The rows of (L_phase * (1, 1, 1)) are the zero inductance: the dq parts cancel.
    for (int row = 0; row < 3; ++row) {
        double sum = 0.0;
        for (int column = 0; column < 3; ++column) {
            const int index[] = {2, 5, 7, 3 * column + row};
            sum += kzb_get_table_value("harmonic_inductance", "inductance", index, build.model.store.get());
        }
        EXPECT_NEAR(sum, 4e-4, 1e-15);
    }
}

TEST(BuildSimpleHarmonic, tables_are_magnet_flux_phase_matrix_and_torque) {
    const PmsmBuild build = build_text(linear_map(), Application::SimpleHarmonic);
    KZB_STORE* store = build.model.store.get();
    each_value(store, "mag_flux", "flux", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, psi_m * std::cos(angle(at[0], at[1])), rounding);
    });
    each_value(store, "inductance", "inductance", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, phase_inductance(at[1], std::fmod(at[2], 3.0), std::floor(at[2] / 3.0)), 1e-15);
    });
    EXPECT_THAT(cyclic_of(store, "mag_flux", "flux"), ElementsAre(1, 0));
    EXPECT_THAT(cyclic_of(store, "inductance", "inductance"), ElementsAre(0, 1, 0));
    expect_torque(store, "torque");
}

TEST(BuildLdLq, tables_are_the_inductances_and_the_power_invariant_magnet_flux) {
    const PmsmBuild build = build_text(linear_map(), Application::LdLq);
    KZB_STORE* store = build.model.store.get();
    EXPECT_NEAR(kzb_get_double("d_flux", "d_flux", store), k32 * psi_m, rounding);
    each_value(store, "dq_inductance", "d_inductance",
               [](const std::vector<double>&, double value) { ASSERT_NEAR(value, l_d, 1e-15); });
    each_value(store, "dq_inductance", "q_inductance",
               [](const std::vector<double>&, double value) { ASSERT_NEAR(value, l_q, 1e-15); });
    each_value(store, "dq_torque", "torque_ibeta", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, linear_torque(current(at[1], at[0])), 1e-11);
    });
    EXPECT_THAT(cyclic_of(store, "dq_inductance", "d_inductance"), ElementsAre(1, 0));
    EXPECT_EQ(axis_of(store, "dq_inductance", "q_inductance", 1).size(), 25U);  // phase first
    EXPECT_EQ(axis_of(store, "dq_inductance", "q_inductance", 2).size(), 5U);
}

// i_d = (psi_d - psi_m) / l_d in peak quantities; the tables hold sqrt(3/2) times both.
TEST(BuildFluxIntegral, currents_are_the_inverse_of_the_map_in_the_power_invariant_frame) {
    const PmsmBuild build = build_text(linear_map(), Application::FluxIntegralDQTheta);
    KZB_STORE* store = build.model.store.get();
    each_value(store, "current_table", "id", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, k32 * (at[0] / k32 - psi_m) / l_d, 1e-9);
    });
    each_value(store, "current_table", "iq", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, k32 * (at[1] / k32) / l_q, 1e-9);
    });
    each_value(store, "flux_table", "fd_noload",
               [](const std::vector<double>&, double value) { ASSERT_NEAR(value, k32 * psi_m, rounding); });
    each_value(store, "flux_table", "fq_noload",
               [](const std::vector<double>&, double value) { ASSERT_NEAR(value, 0.0, rounding); });
    EXPECT_THAT(cyclic_of(store, "current_table", "id"), ElementsAre(0, 0, 1));
    EXPECT_THAT(cyclic_of(store, "flux_table", "fd_noload"), ElementsAre(1));
    EXPECT_THAT(cyclic_of(store, "flux_table", "f0_ibeta"), ElementsAre(0, 1, 1));
    expect_torque(store, "harmonic_torque");
}

TEST(BuildFluxIntegral, flux_plane_holds_all_currents_of_the_largest_circle) {
    const PmsmBuild build = build_text(linear_map(), Application::FluxIntegralDQTheta);
    const FluxRange& range = build.model.flux_range;
    EXPECT_LT(range.d_low, k32 * psi_d(-20.0));
    EXPECT_GT(range.d_high, k32 * psi_d(20.0));
    EXPECT_LT(range.q_low, k32 * psi_q(-20.0));
    EXPECT_GT(range.q_high, k32 * psi_q(20.0));
}

TEST(BuildFluxIntegral, flux_without_current_is_a_node_so_that_its_current_is_zero) {
    const PmsmBuild build = build_text(linear_map(), Application::FluxIntegralDQTheta);
    KZB_STORE* store = build.model.store.get();
    EXPECT_THAT(axis_of(store, "current_table", "id", 1),
                testing::Contains(testing::DoubleNear(k32 * psi_m, rounding)));
    EXPECT_THAT(axis_of(store, "current_table", "iq", 2), testing::Contains(testing::DoubleNear(0.0, rounding)));
    EXPECT_EQ(axis_of(store, "current_table", "id", 1).size(), 7U);
}

TEST(BuildFluxIntegral, flux_plane_holds_no_flux_at_all) {
    // No current inside the map takes all flux away: psi_d is 0.06 Vs at -20 A.
    const PmsmBuild build = build_text(linear_map(), Application::FluxIntegralDQTheta);
    EXPECT_LT(build.model.flux_range.d_low, 0.0);
}

TEST(BuildFluxIntegral, map_that_falls_with_its_own_current_is_refused_with_the_place) {
    std::string text = "id,iq,psi_d,psi_q\n";
    for (const double id : {-10.0, 0.0, 10.0}) {
        for (const double iq : {-10.0, 0.0, 10.0}) {
            text += fmt::format("{},{},{},{}\n", id, iq, psi_d(id), -psi_q(iq));
        }
    }
    try {
        build_text(text, Application::FluxIntegralDQTheta);
        FAIL() << "accepted";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.code, exit_file);
        EXPECT_THAT(failure.what(), testing::HasSubstr("psi_q does not rise with iq at id -10 A, iq -10 A"));
    }
}

// The store's own transforms, written apart from this tool, agree on frames, orders and angles.
TEST(BuildFrames, ldlq_derived_by_the_store_from_harmonic_tables_are_the_inductances) {
    const TextFile file("build_frames.csv", linear_map());
    PmsmOptions options = options_for(file.path(), Application::Harmonic);
    options.machine.beta_zero = 40.0;
    const PmsmBuild build = build_pmsm(options);
    const std::string path = fmt::format("{}{}_build_frames.kzb", testing::TempDir(), ::getpid());
    const StorePointer written = write_model(build.model.store.get(), path);
    ASSERT_EQ(kzb_make_LdLq(written.get()), 1);
    each_value(written.get(), "dq_inductance", "d_inductance",
               [](const std::vector<double>&, double value) { ASSERT_NEAR(value, l_d, 1e-14); });
    each_value(written.get(), "dq_inductance", "q_inductance",
               [](const std::vector<double>&, double value) { ASSERT_NEAR(value, l_q, 1e-12); });
    std::remove(path.c_str());
}

TEST(BuildFrames, noload_flux_of_the_flux_integral_tables_turns_into_the_winding_flux) {
    const PmsmBuild build =
        build_text(linear_map(), Application::FluxIntegralDQTheta, [](PmsmOptions& o) { o.machine.beta_zero = 30.0; });
    KZB_STORE* store = build.model.store.get();
    ASSERT_EQ(kzb_make_UVW_from_dq0(store), 0);
    each_value(store, "current_flux", "mag_flux", [](const std::vector<double>& at, double value) {
        ASSERT_NEAR(value, psi_m * std::cos(angle(at[0], at[1]) + 30.0 * pi / 180.0), rounding);
    });
}

TEST(BuildFrames, beta_zero_is_the_electrical_angle_at_position_zero) {
    const PmsmBuild build =
        build_text(linear_map(), Application::Harmonic, [](PmsmOptions& o) { o.machine.beta_zero = -90.0; });
    KZB_STORE* store = build.model.store.get();
    EXPECT_EQ(kzb_get_double("control", "beta_zero", store), -90.0);
    const int phase_b[] = {0, 0, 0, 1};  // theta = -90 - 120 = 150 deg
    EXPECT_NEAR(kzb_get_table_value("current_flux", "flux", phase_b, store), psi_m * std::cos(150.0 * pi / 180.0),
                rounding);
}

TEST(BuildModel, control_and_parameter_tell_the_machine) {
    const PmsmBuild build = build_text(linear_map(), Application::Harmonic, [](PmsmOptions& o) {
        o.model.connection = 1;
        o.model.leakage_inductance = 1e-5;
        o.model.turns_in_coil = 35.0;
        o.model.title = "A machine";
    });
    KZB_STORE* store = build.model.store.get();
    EXPECT_EQ(kzb_get_int("control", "motor_type", store), 10000);
    EXPECT_EQ(kzb_get_int("control", "number_of_poles", store), 4);
    EXPECT_EQ(kzb_get_int("control", "Winding_Pattern_Flag", store), 1);
    EXPECT_EQ(kzb_get_double("control", "turns_in_coil", store), 35.0);
    EXPECT_EQ(kzb_get_double("parameter", "RU", store), 0.5);
    EXPECT_EQ(kzb_get_double("parameter", "leakage_inductance_w", store), 1e-5);
    EXPECT_STREQ(kzb_get_string("information", "title", store), "A machine");
    EXPECT_EQ(kzb_has_application("PMSM", "Harmonic", store), 1);
    EXPECT_EQ(kzb_has_application("PMSM", "SimpleHarmonic", store), 0);
}

TEST(BuildModel, accuracy_type_names_the_set_of_applications) {
    using enum Application;
    EXPECT_EQ(accuracy_type_of({LdLq}), 1);
    EXPECT_EQ(accuracy_type_of({SimpleHarmonic}), 2);
    EXPECT_EQ(accuracy_type_of({Harmonic}), 3);
    EXPECT_EQ(accuracy_type_of({Harmonic, LdLq}), 4);
    EXPECT_EQ(accuracy_type_of({FluxIntegralDQTheta}), 5);
    EXPECT_EQ(accuracy_type_of({FluxIntegralDQTheta, Harmonic}), 6);
    EXPECT_EQ(accuracy_type_of({LdLq, Harmonic, FluxIntegralDQTheta}), 7);
    EXPECT_THROW(accuracy_type_of({SimpleHarmonic, Harmonic}), Failure);
    EXPECT_THROW(accuracy_type_of({LdLq, FluxIntegralDQTheta}), Failure);
}

}  // namespace
}  // namespace kzb::tool
