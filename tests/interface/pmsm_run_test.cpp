// Whole voltage-driven runs of the permanent-magnet machines against their equations solved by hand.
//
// With constant inductances and a balanced star or delta the matrices of the step reduce to one equation per winding,
// which each test carries on in its own few lines:
//
//   flux form   (dt R + L) i = psi_previous - psi + L I + dt u        u: voltage across the winding
//   EMF form    (dt R + L) i = -dt e + L I + dt u
//
// Tolerances: 1e-12 relative to the run's largest current covers the rounding of an order-7 elimination over some tens
// of samples.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

#include "interface/model_file.h"

namespace kzb_test::pmsm_run_test {
namespace {

using Phases = std::array<double, 3>;

constexpr double third = 2.0 * std::numbers::pi / 3.0;
constexpr double h = 0x1p-13;       // s; a power of two, so that equal steps are equal to the last bit
constexpr double resistance = 0.4;  // Ohm
constexpr int pole_pairs = 2;

Phases cosines(double amplitude, double angle) {
    return {amplitude * std::cos(angle), amplitude * std::cos(angle - third), amplitude * std::cos(angle + third)};
}

// 1000 mechanical degrees per second, in steps of 0.1 degree.
double degrees_at(int k) {
    return 0.1 * k;
}
double electrical_at(int k) {
    return pole_pairs * degrees_at(k) * rad_per_deg;
}
Phases voltage_at(int k) {
    return cosines(30.0, 400.0 * h * k + 0.3);
}

void give_sample(KZB_CALC* calc, double time, double displacement, const Phases& v) {
    ASSERT_EQ(kzbcalcSetTime(time, calc), 0);
    ASSERT_EQ(kzbcalcSetDisplacement(displacement, calc), 0);
    for (int phase = 1; phase <= 3; ++phase) {
        ASSERT_EQ(kzbcalcSetVoltage(phase, v[static_cast<std::size_t>(phase - 1)], calc), 0);
    }
    ASSERT_EQ(kzbcalcExecute(calc), 0);
}

void expect_currents(KZB_CALC* calc, const Phases& expected, int k) {
    for (int phase = 1; phase <= 3; ++phase) {
        const double i = expected[static_cast<std::size_t>(phase - 1)];
        EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), i, 1e-11) << "sample " << k << " phase " << phase;
    }
}

// ---- LdLq

constexpr double ld_lq_inductance = 3e-3;
constexpr double ld_lq_flux = 0.2;

struct LdLqFile : ModelFile {
    LdLqFile() {
        rotary_frame(*this, 1, resistance);
        add_ld_lq(*this, ld_lq_inductance, ld_lq_inductance, ld_lq_flux);
    }
};

// sqrt(2/3) d_flux cos(theta_e - k 120 degrees).
Phases ld_lq_flux_at(int k) {
    return cosines(std::sqrt(2.0 / 3.0) * ld_lq_flux, electrical_at(k));
}

TEST(PmsmRun, ld_lq_star_follows_its_discrete_equation) {
    LdLqFile file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    Phases i{};
    for (int k = 0; k < 30; ++k) {
        const Phases v = voltage_at(k);
        give_sample(calc, h * k, degrees_at(k), v);
        const Phases before = i;
        Phases rise{};
        if (k >= 2) {  // the first two samples do not solve
            const Phases psi = ld_lq_flux_at(k);
            const Phases psi_previous = ld_lq_flux_at(k - 1);
            for (std::size_t p = 0; p < 3; ++p) {
                rise[p] = psi[p] - psi_previous[p];
                i[p] = (-rise[p] + ld_lq_inductance * before[p] + h * v[p]) / (h * resistance + ld_lq_inductance);
            }
        }
        expect_currents(calc, i, k);
        for (int phase = 1; k >= 2 && phase <= 3; ++phase) {
            const auto p = static_cast<std::size_t>(phase - 1);
            // Voltage across the winding less the resistive drop; the neutral of a balanced star lies at 0.
            EXPECT_NEAR(kzbcalcGetVoltage(phase, calc), v[p] - resistance * i[p], 1e-10);
            const double linkage_rise = ld_lq_inductance * (i[p] - before[p]) + rise[p];
            EXPECT_NEAR(kzbcalcGetInducedVoltage(phase, calc), linkage_rise / h, 1e-8);
        }
        // Equal Ld and Lq: torque is pole pairs * d_flux * i_q, q being power invariant.
        const double theta = electrical_at(k);
        const double q = -std::sqrt(2.0 / 3.0) *
                         (i[0] * std::sin(theta) + i[1] * std::sin(theta - third) + i[2] * std::sin(theta + third));
        EXPECT_NEAR(kzbcalcGetTorque(calc), pole_pairs * ld_lq_flux * q, 1e-11);
        EXPECT_NEAR(kzbcalcGetCopperloss(calc), resistance * (i[0] * i[0] + i[1] * i[1] + i[2] * i[2]), 1e-10);
        EXPECT_EQ(kzbcalcUpdate(calc), 0);
    }
    EXPECT_GT(std::abs(i[0]), 1.0);  // the run is not at rest
}

TEST(PmsmRun, ld_lq_delta_follows_its_discrete_equation) {
    // Windings u-v, v-w, w-u; balanced windings carry no circulating current.
    LdLqFile file;
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetConnectionType(1, calc), 0);
    kzbcalcSetData(calc);
    Phases i{};
    for (int k = 0; k < 30; ++k) {
        const Phases v = voltage_at(k);
        give_sample(calc, h * k, degrees_at(k), v);
        if (k >= 2) {
            const Phases psi = ld_lq_flux_at(k);
            const Phases psi_previous = ld_lq_flux_at(k - 1);
            for (std::size_t p = 0; p < 3; ++p) {
                const double across = v[p] - v[(p + 1) % 3];
                i[p] = (psi_previous[p] - psi[p] + ld_lq_inductance * i[p] + h * across) /
                       (h * resistance + ld_lq_inductance);
                EXPECT_NEAR(kzbcalcGetVoltage(static_cast<int>(p) + 1, calc), (psi[p] - psi_previous[p]) / h, 1e-9);
            }
        }
        expect_currents(calc, i, k);
        kzbcalcUpdate(calc);
    }
    EXPECT_GT(std::abs(i[0]), 1.0);
}

TEST(PmsmRun, leakage_adds_to_the_inductance) {
    LdLqFile file;
    for (const char* const key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        file.number("parameter", key, 1e-3);
    }
    Calculator calc(file);
    kzbcalcSetData(calc);
    Phases i{};
    for (int k = 0; k < 10; ++k) {
        const Phases v = voltage_at(k);
        give_sample(calc, h * k, 0.0, v);
        for (std::size_t p = 0; k >= 2 && p < 3; ++p) {
            i[p] = ((ld_lq_inductance + 1e-3) * i[p] + h * v[p]) / (h * resistance + ld_lq_inductance + 1e-3);
        }
        expect_currents(calc, i, k);
        kzbcalcUpdate(calc);
    }
    // Leakage is part of the axis inductances that are reported.
    EXPECT_NEAR(kzbcalcGetDAxisInductance(calc), ld_lq_inductance + 1e-3, 1e-15);
}

TEST(PmsmRun, initial_currents_and_time_start_the_run_at_once) {
    // With an initial time above 0 the first sample solves, from the initial currents.
    LdLqFile file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    const Phases start{2.0, -3.0, 1.0};
    for (int phase = 1; phase <= 3; ++phase) {
        ASSERT_EQ(kzbcalcSetInitialCurrent(phase, start[static_cast<std::size_t>(phase - 1)], calc), 0);
    }
    ASSERT_EQ(kzbcalcSetInitialTime(1.0, calc), 0);
    const Phases v = voltage_at(5);
    give_sample(calc, 1.0 + h, 0.0, v);
    const double dt = (1.0 + h) - 1.0;
    for (int phase = 1; phase <= 3; ++phase) {
        // The first step's previous inductance is still 0: the matrix is 2 L - 0.
        const auto p = static_cast<std::size_t>(phase - 1);
        const double i = (ld_lq_inductance * start[p] + dt * v[p]) / (dt * resistance + 2.0 * ld_lq_inductance);
        EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), i, 1e-12);
    }
}

TEST(PmsmRun, step_without_elapsed_time_keeps_the_current) {
    LdLqFile file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    for (int k = 0; k < 5; ++k) {
        give_sample(calc, h * k, 0.0, voltage_at(k));
        kzbcalcUpdate(calc);
    }
    const double before = kzbcalcGetCurrent(1, calc);
    EXPECT_NE(before, 0.0);
    give_sample(calc, h * 4, 0.0, voltage_at(9));
    EXPECT_EQ(kzbcalcGetCurrent(1, calc), before);
}

// ---- Harmonic

constexpr double harmonic_inductance = 4e-3;
constexpr double harmonic_flux = 0.15;

struct HarmonicFile : ModelFile {
    HarmonicFile() {
        rotary_frame(*this, 3, resistance);
        add_harmonic(*this, harmonic_inductance, 0.0, harmonic_flux, 2.5);
    }
};

// The table at its nodes, every 5 mechanical degrees: the runs below move from node to node.
Phases harmonic_flux_at(int k) {
    return cosines(harmonic_flux, pole_pairs * 5.0 * k * rad_per_deg);
}

// EMF of a step: change of the flux of the last two accepted positions, less what the change of current explains.
struct HarmonicRun {
    Phases i{};
    Phases i_previous{};
    Phases e{};

    void take(int k, double dt, double dt1, const Phases& v, bool longer) {
        const Phases psi = harmonic_flux_at(k);
        const Phases psi_previous = harmonic_flux_at(k - 1);
        const Phases before = i;
        Phases now{};
        for (std::size_t p = 0; p < 3; ++p) {
            // The table gives total flux, so the magnet part falls by L times the change of current.
            const double lagged = (psi[p] - psi_previous[p] - harmonic_inductance * (before[p] - i_previous[p])) / dt1;
            now[p] = longer ? dt1 * e[p] / dt : lagged;
        }
        const double neutral = (v[0] + v[1] + v[2] - now[0] - now[1] - now[2]) / 3.0;
        for (std::size_t p = 0; p < 3; ++p) {
            i[p] = (-dt * now[p] + harmonic_inductance * before[p] + dt * (v[p] - neutral)) /
                   (dt * resistance + harmonic_inductance);
        }
        e = now;
        i_previous = before;
    }
};

TEST(PmsmRun, harmonic_star_follows_its_lagged_equation) {
    HarmonicFile file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    HarmonicRun run;
    for (int k = 0; k < 12; ++k) {
        const Phases v = cosines(30.0, 0.2 * k);
        give_sample(calc, h * k, 5.0 * k, v);
        if (k >= 2) {
            run.take(k, h, h, v, false);
        }
        expect_currents(calc, run.i, k);
        for (int phase = 1; phase <= 3; ++phase) {
            EXPECT_NEAR(kzbcalcGetVoltage(phase, calc), run.e[static_cast<std::size_t>(phase - 1)], 1e-7);
        }
        EXPECT_NEAR(kzbcalcGetTorque(calc), 2.5, 1e-12);
        kzbcalcUpdate(calc);
    }
}

TEST(PmsmRun, harmonic_step_longer_than_the_last_takes_the_last_emf_scaled) {
    HarmonicFile file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    HarmonicRun run;
    double time = 0.0;
    for (int k = 0; k < 8; ++k) {
        const bool is_long = k == 6;  // twice as long as the step before
        const double dt = is_long ? 2.0 * h : h;
        time = k == 0 ? 0.0 : time + dt;
        const Phases v = cosines(30.0, 0.2 * k);
        give_sample(calc, time, 5.0 * k, v);
        if (k >= 2) {
            run.take(k, dt, k == 7 ? 2.0 * h : h, v, is_long);
        }
        expect_currents(calc, run.i, k);
        kzbcalcUpdate(calc);
    }
}

// ---- SimpleHarmonic, rotary and linear

TEST(PmsmRun, simple_harmonic_star_follows_its_discrete_equation) {
    // Self 4e-3, mutual -1e-3: a balanced star sees their difference, 5e-3 H. Magnet flux at nodes every 5 degrees.
    ModelFile file;
    rotary_frame(file, 2, resistance);
    add_simple_harmonic(file, 4e-3, -1e-3, 0.15, 1.5);
    Calculator calc(file);
    kzbcalcSetData(calc);
    constexpr double l = 5e-3;
    Phases i{};
    for (int k = 0; k < 12; ++k) {
        const Phases v = cosines(30.0, 0.2 * k);
        give_sample(calc, h * k, 5.0 * k, v);
        const Phases psi = cosines(0.15, pole_pairs * 5.0 * k * rad_per_deg);
        const Phases psi_previous = cosines(0.15, pole_pairs * 5.0 * (k - 1) * rad_per_deg);
        for (std::size_t p = 0; k >= 2 && p < 3; ++p) {
            i[p] = (psi_previous[p] - psi[p] + l * i[p] + h * v[p]) / (h * resistance + l);
        }
        expect_currents(calc, i, k);
        EXPECT_NEAR(kzbcalcGetMagFlux(2, calc), psi[1], 1e-12);
        EXPECT_NEAR(kzbcalcGetCoilFlux(1, calc), psi[0], 1e-12);
        EXPECT_NEAR(kzbcalcGetTorque(calc), 1.5, 1e-12);
        // (2/3) c^T L c of self S and mutual M is S - M, in both axes.
        EXPECT_NEAR(kzbcalcGetDAxisInductance(calc), l, 1e-15);
        EXPECT_NEAR(kzbcalcGetQAxisInductance(calc), l, 1e-15);
        kzbcalcUpdate(calc);
    }
}

TEST(PmsmRun, linear_star_follows_its_discrete_equation) {
    ModelFile file;
    linear_machine(file, 4e-3, -1e-3, 0.15, resistance);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetData(calc);
    constexpr double l = 5e-3;
    constexpr double pitch = 0.005;  // m per sample, from node to node
    Phases i{};
    for (int k = 0; k < 12; ++k) {
        const Phases v = cosines(30.0, 0.2 * k);
        give_sample(calc, h * k, pitch * k, v);
        const Phases psi = cosines(0.15, 2.0 * std::numbers::pi * pitch * k / 0.1);
        const Phases psi_previous = cosines(0.15, 2.0 * std::numbers::pi * pitch * (k - 1) / 0.1);
        for (std::size_t p = 0; k >= 2 && p < 3; ++p) {
            i[p] = (psi_previous[p] - psi[p] + l * i[p] + h * v[p]) / (h * resistance + l);
        }
        expect_currents(calc, i, k);
        kzbcalcUpdate(calc);
    }
}

// ---- FluxIntegralDQTheta

class FluxIntegralRun : public testing::TestWithParam<double> {};

// The initial displacement is the model's position from the start, so that the first speed is that of the
// displacements.
TEST_P(FluxIntegralRun, star_integrates_its_fluxes) {
    // psi_d' = v_d - R i_d + w psi_q, psi_q' = v_q - R i_q - w psi_d, explicit over dt; i_d = (psi_d - flux) / l.
    constexpr double l = 5e-3;
    constexpr double flux = 0.2;
    ModelFile file;
    rotary_frame(file, 5, resistance);
    add_flux_integral(file, l, flux, 3.5);
    Calculator calc(file);
    kzbcalcSetData(calc);
    const double offset = pole_pairs * GetParam() * rad_per_deg;
    ASSERT_EQ(kzbcalcSetInitialDisplacement(GetParam(), calc), 0);
    double psi_d = flux, psi_q = 0.0;
    double i_d = 0.0, i_q = 0.0;
    const double to_two_axes = std::sqrt(2.0 / 3.0);
    for (int k = 0; k < 20; ++k) {
        const Phases v = voltage_at(k);
        give_sample(calc, h * k, degrees_at(k), v);
        const double theta = electrical_at(k) + offset;
        const Phases c = cosines(1.0, theta);
        const Phases s = cosines(1.0, theta - std::numbers::pi / 2.0);
        if (k >= 1) {
            const double w = (electrical_at(k) - electrical_at(k - 1)) / h;
            const double v_d = to_two_axes * (v[0] * c[0] + v[1] * c[1] + v[2] * c[2]);
            const double v_q = -to_two_axes * (v[0] * s[0] + v[1] * s[1] + v[2] * s[2]);
            i_d = (psi_d - flux) / l;
            i_q = psi_q / l;
            const double rise_d = v_d - resistance * i_d + w * psi_q;
            const double rise_q = v_q - resistance * i_q - w * psi_d;
            psi_d += h * rise_d;
            psi_q += h * rise_q;
        }
        Phases i{};
        for (std::size_t p = 0; p < 3; ++p) {
            i[p] = to_two_axes * (i_d * c[p] - i_q * s[p]);
        }
        for (int phase = 1; phase <= 3; ++phase) {
            // The difference (psi - flux) / l magnifies rounding of the flux by 1 / l.
            EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), i[static_cast<std::size_t>(phase - 1)], 1e-9) << k;
        }
        EXPECT_NEAR(kzbcalcGetTorque(calc), 3.5, 1e-12);
        kzbcalcUpdate(calc);
    }
    EXPECT_GT(std::abs(i_q), 0.1);
}

INSTANTIATE_TEST_SUITE_P(InitialDisplacements, FluxIntegralRun, testing::Values(0.0, 30.0));

// ---- current driven

TEST(PmsmRun, current_driven_torque_is_evaluated_from_the_currents) {
    // q current of (i cos(theta + 90 degrees), ...) is sqrt(3/2) i, d current 0: torque = pole pairs * d_flux * q.
    LdLqFile file;
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    kzbcalcSetDisplacement(10.0, calc);
    const double theta = pole_pairs * 10.0 * rad_per_deg;
    const Phases i = cosines(4.0, theta + std::numbers::pi / 2.0);
    for (int phase = 1; phase <= 3; ++phase) {
        kzbcalcSetCurrent(phase, i[static_cast<std::size_t>(phase - 1)], calc);
    }
    EXPECT_NEAR(kzbcalcGetTorque(calc), pole_pairs * ld_lq_flux * std::sqrt(1.5) * 4.0, 1e-12);
    for (int phase = 1; phase <= 3; ++phase) {
        EXPECT_EQ(kzbcalcGetCurrent(phase, calc), i[static_cast<std::size_t>(phase - 1)]);
    }
    EXPECT_NEAR(kzbcalcGetDAxisInductance(calc), ld_lq_inductance, 1e-15);
}

}  // namespace
}  // namespace kzb_test::pmsm_run_test
