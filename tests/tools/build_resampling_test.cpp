// Positions and mirror images: what the tables hold between, and beyond, the points of the map.
#include <map>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tools/build_synthetic.h"

namespace kzb::tool {
namespace {

using namespace synthetic;

double sin6(double theta_deg) {
    return std::sin(6.0 * theta_deg * pi / 180.0);
}
double cos6(double theta_deg) {
    return std::cos(6.0 * theta_deg * pi / 180.0);
}

// Sixth harmonics with the symmetries of a machine: psi_d, psi_0 even and psi_q, torque odd in (iq, theta), psi_0 of
// order three.
std::array<double, 4> rippled(double id, double iq, double theta) {
    return {psi_d(id) + 0.004 * cos6(theta) + 1e-4 * iq * sin6(theta), psi_q(iq) + 0.003 * sin6(theta),
            0.01 * std::cos(3.0 * theta * pi / 180.0),
            1.5 * 2.0 * psi_m * iq + 0.2 * sin6(theta) + 0.01 * iq * cos6(theta)};
}

const std::vector<double> both_signs{-20.0, -10.0, 0.0, 10.0, 20.0};
const std::vector<double> upward{0.0, 10.0, 20.0};

std::vector<double> values_of(const PmsmBuild& build, const char* category, const char* key) {
    std::vector<double> values;
    each_value(build.model.store.get(), category, key,
               [&values](const std::vector<double>&, double value) { values.push_back(value); });
    return values;
}

void expect_same_tables(const PmsmBuild& a, const PmsmBuild& b, double tolerance) {
    const std::map<const char*, const char*> tables{
        {"current_flux", "flux"}, {"harmonic_inductance", "inductance"}, {"harmonic_torque", "torque_ibeta"}};
    for (const auto& [category, key] : tables) {
        const auto va = values_of(a, category, key);
        const auto vb = values_of(b, category, key);
        ASSERT_EQ(va.size(), vb.size());
        for (std::size_t n = 0; n < va.size(); ++n) {
            ASSERT_NEAR(va[n], vb[n], tolerance) << category << " " << n;
        }
    }
}

TEST(BuildPositions, nodes_that_are_points_of_the_map_hold_its_values) {
    const PmsmBuild build =
        build_text(position_map(both_signs, both_signs, steps(0.0, 15.0, 24), rippled), Application::Harmonic);
    each_value(build.model.store.get(), "current_flux", "flux", [](const std::vector<double>& at, double value) {
        const double beta = at[1] * pi / 180.0;
        const double theta = at[2] * 2.0;  // two pole pairs
        const auto v = rippled(-at[0] * std::sin(beta), at[0] * std::cos(beta), theta);
        const double angle = (theta - 120.0 * at[3]) * pi / 180.0;
        ASSERT_NEAR(value, v[0] * std::cos(angle) - v[1] * std::sin(angle) + v[2], 1e-13);
    });
}

TEST(BuildPositions, one_period_of_60_degrees_stands_for_six) {
    const auto over_360 = position_map(both_signs, both_signs, steps(0.0, 5.0, 72), rippled);
    const auto over_60 = position_map(both_signs, both_signs, steps(0.0, 5.0, 12), rippled);
    const auto with_both_ends = position_map(both_signs, both_signs, steps(0.0, 5.0, 13), rippled);
    const PmsmBuild full = build_text(over_360, Application::Harmonic);
    const PmsmBuild part = build_text(over_60, Application::Harmonic);
    EXPECT_EQ(full.source.period, 360.0);
    EXPECT_EQ(part.source.period, 60.0);
    expect_same_tables(full, part, 1e-12);
    const PmsmBuild closed = build_text(with_both_ends, Application::Harmonic);
    EXPECT_EQ(closed.source.theta.size(), 12U);
    expect_same_tables(part, closed, 1e-12);
}

TEST(BuildPositions, mechanical_degrees_and_radians_are_understood) {
    const auto electrical = position_map(both_signs, both_signs, steps(0.0, 15.0, 24), rippled);
    std::string mechanical = "iq_mA,id_A,theta_mech_rad,psi_q_mVs,psi_d_Wb,psi_0_Vs,torque_kNm\n";
    for (const double iq : both_signs) {
        for (const double id : both_signs) {
            for (const double theta : steps(0.0, 15.0, 24)) {
                const auto v = rippled(id, iq, theta);
                mechanical += fmt::format("{},{},{},{},{},{},{}\n", 1e3 * iq, id, 0.5 * theta * pi / 180.0, 1e3 * v[1],
                                          v[0], v[2], 1e-3 * v[3]);
            }
        }
    }
    expect_same_tables(build_text(electrical, Application::Harmonic), build_text(mechanical, Application::Harmonic),
                       1e-11);
}

TEST(BuildMirror, half_a_map_with_its_image_is_the_whole_map) {
    // 7.5 degree nodes between 15 degree points: the spline between them has the same symmetry as the points.
    const auto finer = [](PmsmOptions& o) {
        o.machine.position_count = 48;
        o.machine.beta_zero = 3.0;  // an image of a node that is no node
    };
    const PmsmBuild whole =
        build_text(position_map(both_signs, both_signs, steps(0.0, 15.0, 24), rippled), Application::Harmonic, finer);
    const PmsmBuild mirrored = build_text(position_map(both_signs, upward, steps(0.0, 15.0, 24), rippled),
                                          Application::Harmonic, [&finer](PmsmOptions& o) {
                                              finer(o);
                                              o.machine.mirror = Mirror::iq;
                                          });
    expect_same_tables(whole, mirrored, 1e-12);
    EXPECT_THAT(mirrored.notes.front(), testing::HasSubstr("mirror image"));
}

TEST(BuildMirror, map_that_holds_both_signs_is_refused) {
    try {
        build_text(linear_map(), Application::Harmonic, [](PmsmOptions& o) { o.machine.mirror = Mirror::iq; });
        FAIL() << "accepted";
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr("q current starts at -20 A, expected 0 and up only"));
    }
}

// No values at id > 0: linear continuation, which a linear machine cannot tell from its own flux.
TEST(BuildOutside, continued_part_of_a_linear_map_is_that_of_the_machine_and_is_told) {
    std::string half = "id,iq,psi_d,psi_q\n";
    for (const double id : {-20.0, -10.0, 0.0}) {
        for (const double iq : both_signs) {
            half += fmt::format("{},{},{},{}\n", id, iq, psi_d(id), psi_q(iq));
        }
    }
    const PmsmBuild whole = build_text(linear_map(), Application::Harmonic);
    const PmsmBuild continued = build_text(half, Application::Harmonic);
    expect_same_tables(whole, continued, 1e-11);
    // 4 amplitudes above zero times the 11 phases inside (-180, 0); the phases -180, 0 and 180 lie on the edge.
    EXPECT_THAT(continued.notes, testing::Contains(testing::HasSubstr("44 of 125 current nodes lie beyond the map")));

    const PmsmBuild limited =
        build_text(half, Application::Harmonic, [](PmsmOptions& o) { o.grids.outside = Outside::limit; });
    EXPECT_EQ(limited.grids.phase.nodes.front(), 0.0);
    EXPECT_EQ(limited.grids.phase.nodes.back(), 180.0);
    EXPECT_FALSE(limited.grids.phase.cyclic);
    EXPECT_THAT(limited.notes, testing::Contains(testing::HasSubstr("phase axis covers 0 to 180 deg")));
    EXPECT_THAT(limited.notes, testing::Not(testing::Contains(testing::HasSubstr("lie beyond"))));
}

// rest = p dW'/dtheta. With psi_d = .. + a id cos 6 theta and psi_q = .. + b iq cos 6 theta,
//   W' = 0.75 (a id^2 + b iq^2) cos 6 theta + what does not turn,
//   dW'/dtheta = -4.5 (a id^2 + b iq^2) sin 6 theta.
// At its nodes a periodic cubic spline through e^(i w x) has the slope i w * 3 sin(wh) / ((2 + cos(wh)) wh): with
// w = 6 and h = 5 degrees wh is pi / 6.
TEST(BuildTorque, ripple_follows_from_the_coenergy_where_the_map_has_no_torque) {
    constexpr double a = 1e-4;
    constexpr double b = -2e-4;
    const auto row = [](double id, double iq, double theta) {
        return std::array<double, 4>{psi_d(id) + a * id * cos6(theta), psi_q(iq) + b * iq * cos6(theta), 0.0, 0.0};
    };
    const PmsmBuild build = build_text(position_map(both_signs, both_signs, steps(0.0, 5.0, 72), row, false),
                                       Application::Harmonic, [](PmsmOptions& o) { o.machine.position_count = 72; });
    const double wh = pi / 6.0;
    const double slope = 3.0 * std::sin(wh) / ((2.0 + std::cos(wh)) * wh);
    const MachineMap map(build.source, build.machine);
    for (const double id : both_signs) {
        for (const double iq : both_signs) {
            for (std::size_t k = 0; k < 72; ++k) {
                const double theta = map.theta_deg(k);
                const double ld = l_d + a * cos6(theta);
                const double lq = l_q + b * cos6(theta);
                const double wanted = 1.5 * 2.0 * (psi_m + (ld - lq) * id) * iq -
                                      2.0 * 4.5 * (a * id * id + b * iq * iq) * sin6(theta) * slope;
                ASSERT_NEAR(map.at(id, iq, k).torque, wanted, 1e-11);
            }
        }
    }
}

TEST(BuildFrame, rms_and_power_invariant_maps_give_the_same_tables) {
    const PmsmBuild peak = build_text(linear_map(), Application::Harmonic);
    const std::map<DqFrame, double> frames{{DqFrame::amplitude_rms, std::sqrt(0.5)},
                                           {DqFrame::power_invariant, std::sqrt(1.5)}};
    for (const auto& [frame, scale] : frames) {
        std::string text = "id,iq,psi_d,psi_q\n";
        for (const double id : both_signs) {
            for (const double iq : both_signs) {
                text += fmt::format("{},{},{},{}\n", scale * id, scale * iq, scale * psi_d(id), scale * psi_q(iq));
            }
        }
        const PmsmBuild other =
            build_text(text, Application::Harmonic, [frame = frame](PmsmOptions& o) { o.source.frame = frame; });
        expect_same_tables(peak, other, 1e-11);
    }
}

}  // namespace
}  // namespace kzb::tool
