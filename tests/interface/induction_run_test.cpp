// Induction machine through the public calls: constants and tables, voltage and current driven, losses, slip.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::induction_run_test {
namespace {

constexpr double h = 1e-3;
// Of the file: L11 = L22, M, R1, R2; two pole pairs.
constexpr double l = 0.11;
constexpr double m = 0.1;
constexpr double r1 = 0.5;
constexpr double r2 = 0.4;

struct Constants : ModelFile {
    Constants() { induction_constants(*this); }
};
struct Tables : ModelFile {
    Tables() { induction_tables(*this); }
};

struct TwoAxis {
    double alpha = 0.0;
    double beta = 0.0;
};

TwoAxis two_axis(const std::vector<double>& x) {
    return {std::sqrt(2.0 / 3.0) * (x[0] - x[1] / 2.0 - x[2] / 2.0),
            std::sqrt(2.0 / 3.0) * std::sqrt(3.0) / 2.0 * (x[1] - x[2])};
}

std::vector<double> three_phases(const TwoAxis& x) {
    const double half_root = std::sqrt(3.0) / 2.0;
    return {std::sqrt(2.0 / 3.0) * x.alpha, std::sqrt(2.0 / 3.0) * (half_root * x.beta - x.alpha / 2.0),
            std::sqrt(2.0 / 3.0) * (-x.alpha / 2.0 - half_root * x.beta)};
}

std::vector<double> balanced(double amplitude, double angle) {
    return {amplitude * std::cos(angle), amplitude * std::cos(angle - 2.0 * std::numbers::pi / 3.0),
            amplitude * std::cos(angle + 2.0 * std::numbers::pi / 3.0)};
}

void expect_currents(KZB_CALC* calc, const std::vector<double>& expected, int k) {
    for (int phase = 1; phase <= 3; ++phase) {
        EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), expected[static_cast<std::size_t>(phase - 1)], 1e-9) << k;
    }
}

TEST(InductionRun, kind_of_the_data_is_told_before_and_after_they_are_set) {
    Constants constants;
    Tables tables;
    Calculator zero(constants);
    Calculator one(tables);
    ASSERT_EQ(zero.status, 0);
    ASSERT_EQ(one.status, 0);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(kzbcalcCheckInductionMotorInductanceType(zero), 0);
        EXPECT_EQ(kzbcalcCheckInductionMotorInductanceType(one), 1);
        kzbcalcSetData(zero);
        kzbcalcSetData(one);
    }
}

// Both axes of a machine at rest: (2 L - Lp + dt R) y = L x + dt V for the pair (i1, i2), where Lp is L from the second
// accepted step on; the first sample, at time 0, does not solve.
TEST(InductionRun, constants_at_rest_follow_the_implicit_equation) {
    Constants file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    TwoAxis i1, i2;
    for (int k = 0; k < 10; ++k) {
        const std::vector<double> v = balanced(30.0, 0.3 * k);
        step_sample(calc, h * k, 0.0, v);
        if (k > 0) {
            const TwoAxis u = two_axis(v);
            const auto solve = [](double& x1, double& x2, double source) {
                const double a = l + h * r1, b = m, d = l + h * r2;
                const double right1 = l * x1 + m * x2 + h * source, right2 = m * x1 + l * x2;
                const double det = a * d - b * b;
                x1 = (right1 * d - b * right2) / det;
                x2 = (a * right2 - b * right1) / det;
            };
            solve(i1.alpha, i2.alpha, u.alpha);
            solve(i1.beta, i2.beta, u.beta);
        }
        const std::vector<double> phases = three_phases(i1);
        expect_currents(calc, phases, k);
        EXPECT_NEAR(kzbcalcGetTorque(calc), 2.0 * m * (i2.alpha * i1.beta - i2.beta * i1.alpha), 1e-9);
        const double squares = i1.alpha * i1.alpha + i1.beta * i1.beta;
        EXPECT_NEAR(kzbcalcGetPrimaryCopperLoss(calc), r1 * squares, 1e-8);
        EXPECT_NEAR(kzbcalcGetCopperloss(calc), r1 * squares, 1e-8);
        EXPECT_NEAR(kzbcalcGetSecondaryCopperLoss(calc), r2 * (i2.alpha * i2.alpha + i2.beta * i2.beta), 1e-8);
        EXPECT_NEAR(kzbcalcGetSecondaryFluxD(calc), m * i1.alpha + l * i2.alpha, 1e-9);
        EXPECT_NEAR(kzbcalcGetSecondaryFluxQ(calc), m * i1.beta + l * i2.beta, 1e-9);
        kzbcalcUpdate(calc);
    }
    EXPECT_NE(kzbcalcGetCurrent(1, calc), 0.0);
    EXPECT_EQ(kzbcalcGetResistance(calc), r1);
    EXPECT_EQ(kzbcalcGetSecondaryResistance(calc), r2);
}

TEST(InductionRun, execute_with_constants_never_commits) {
    Constants file;
    Calculator once(file);
    Calculator often(file);
    kzbcalcSetData(once);
    kzbcalcSetData(often);
    for (int k = 0; k < 4; ++k) {
        step_sample(once, h * k, 0.0, balanced(30.0, 0.3 * k));
        step_sample(often, h * k, 0.0, balanced(99.0, 1.0));
        step_sample(often, h * k, 0.0, balanced(30.0, 0.3 * k));
        EXPECT_EQ(kzbcalcGetCurrent(1, once), kzbcalcGetCurrent(1, often));
        kzbcalcUpdate(once);
        kzbcalcUpdate(often);
    }
}

// Euler steps of the handle's state (i1, psi2) with the fixed step; results belong to the state before the step.
struct EulerRun {
    TwoAxis i1, psi2;
    void step(const TwoAxis& u, double dt) {
        const double sigma_l = (1.0 - m * m / (l * l)) * l;
        const auto axis = [&](double& i, double& psi, double v) {
            const double rise_i =
                m * r2 / (sigma_l * l * l) * psi - (m * r2 * m / (sigma_l * l * l) + r1 / sigma_l) * i + v / sigma_l;
            const double rise_psi = r2 * m / l * i - r2 / l * psi;
            i += dt * rise_i;
            psi += dt * rise_psi;
        };
        axis(i1.alpha, psi2.alpha, u.alpha);
        axis(i1.beta, psi2.beta, u.beta);
    }
};

TEST(InductionRun, tables_at_rest_integrate_the_state_with_the_fixed_step) {
    Tables file;
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetStepSize(h, calc), 0);
    kzbcalcSetData(calc);
    EulerRun run;
    for (int k = 0; k < 10; ++k) {
        const std::vector<double> v = balanced(30.0, 0.3 * k);
        step_sample(calc, h * (k + 1), 0.0, v);
        expect_currents(calc, three_phases(run.i1), k);
        EXPECT_NEAR(kzbcalcGetSecondaryFluxD(calc), run.psi2.alpha, 1e-12);
        EXPECT_NEAR(kzbcalcGetSecondaryFluxQ(calc), run.psi2.beta, 1e-12);
        run.step(two_axis(v), h);
        kzbcalcUpdate(calc);
    }
    EXPECT_NE(kzbcalcGetCurrent(1, calc), 0.0);
}

TEST(InductionRun, every_execute_with_tables_moves_the_state) {
    Tables file;
    Calculator calc(file);
    kzbcalcSetStepSize(h, calc);
    kzbcalcSetData(calc);
    EulerRun run;
    const std::vector<double> v = balanced(30.0, 0.0);
    step_sample(calc, h, 0.0, v);
    run.step(two_axis(v), h);
    kzbcalcExecute(calc);  // the same sample again
    expect_currents(calc, three_phases(run.i1), 1);
    EXPECT_NE(kzbcalcGetCurrent(1, calc), 0.0);
}

TEST(InductionRun, state_stays_without_a_step_size) {
    Tables file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    for (int k = 1; k < 5; ++k) {
        step_sample(calc, h * k, 0.0, balanced(30.0, 0.0));
        kzbcalcUpdate(calc);
    }
    EXPECT_EQ(kzbcalcGetCurrent(1, calc), 0.0);
}

TEST(InductionRun, current_driven_torque_with_tables_advances_the_secondary_flux) {
    // The torque belongs to the flux before the step: i2 = (psi2 - M i1) / L.
    Tables file;
    Calculator calc(file, 2);
    kzbcalcSetStepSize(h, calc);
    kzbcalcSetData(calc);
    TwoAxis psi;
    for (int k = 1; k < 8; ++k) {
        kzbcalcSetTime(h * k, calc);
        const std::vector<double> i = balanced(5.0, 0.3 * k);
        for (int phase = 1; phase <= 3; ++phase) {
            ASSERT_EQ(kzbcalcSetCurrent(phase, i[static_cast<std::size_t>(phase - 1)], calc), 0);
        }
        const TwoAxis i1 = two_axis(i);
        const TwoAxis i2{(psi.alpha - m * i1.alpha) / l, (psi.beta - m * i1.beta) / l};
        EXPECT_NEAR(kzbcalcGetTorque(calc), 2.0 * m * (i2.alpha * i1.beta - i2.beta * i1.alpha), 1e-10) << k;
        psi = {psi.alpha + h * (r2 * m / l * i1.alpha - r2 / l * psi.alpha),
               psi.beta + h * (r2 * m / l * i1.beta - r2 / l * psi.beta)};
        kzbcalcUpdate(calc);
    }
    EXPECT_GT(psi.alpha * psi.alpha + psi.beta * psi.beta, 0.0);
}

TEST(InductionRun, current_driven_torque_with_constants_solves_the_secondary) {
    // (L / dt + R2) i2 = M / dt (i1_accepted - i1) + L / dt i2_accepted at rest, from the second accepted step on.
    Constants file;
    Calculator calc(file, 2);
    kzbcalcSetData(calc);
    TwoAxis i1_before, i2;
    for (int k = 0; k < 8; ++k) {
        kzbcalcSetTime(h * k, calc);
        const std::vector<double> i = balanced(5.0, 0.3 * k);
        for (int phase = 1; phase <= 3; ++phase) {
            kzbcalcSetCurrent(phase, i[static_cast<std::size_t>(phase - 1)], calc);
        }
        TwoAxis i1 = two_axis(i);
        if (k == 0) {
            i1 = {};  // a step without elapsed time takes all currents as 0
        } else {
            const auto axis = [](double before, double now, double secondary) {
                return (m / h * (before - now) + l / h * secondary) / (l / h + r2);
            };
            i2 = {axis(i1_before.alpha, i1.alpha, i2.alpha), axis(i1_before.beta, i1.beta, i2.beta)};
        }
        EXPECT_NEAR(kzbcalcGetTorque(calc), 2.0 * m * (i2.alpha * i1.beta - i2.beta * i1.alpha), 1e-10) << k;
        i1_before = i1;
        kzbcalcUpdate(calc);
    }
}

TEST(InductionRun, slip_frequency_needs_the_tables) {
    Constants constants;
    Tables tables;
    Calculator zero(constants);
    Calculator one(tables);
    for (int pass = 0; pass < 2; ++pass) {
        EXPECT_EQ(kzbcalcSetSlipFrequency(3.0, zero), 180061);
        EXPECT_EQ(kzbcalcGetSlipFrequency(zero), 180061.0);
        EXPECT_EQ(kzbcalcSetSlipFrequency(3.0, one), 0);
        EXPECT_DOUBLE_EQ(kzbcalcGetSlipFrequency(one), 3.0);
        EXPECT_EQ(kzbcalcSetSlipFrequency(1e-22, one), 0);
        EXPECT_EQ(kzbcalcGetSlipFrequency(one), 0.0);  // below 1e-20 rad/s
        kzbcalcSetData(zero);
        kzbcalcSetData(one);
    }
}

TEST(InductionRun, secondary_resistance_is_settable_with_constants_alone) {
    Constants constants;
    Tables tables;
    Calculator zero(constants);
    Calculator one(tables);
    kzbcalcSetData(zero);
    kzbcalcSetData(one);
    EXPECT_EQ(kzbcalcSetSecondaryResistance(0.7, zero), 0);
    EXPECT_EQ(kzbcalcGetSecondaryResistance(zero), 0.7);
    step_sample(zero, h, 0.0, balanced(1.0, 0.0));
    EXPECT_EQ(kzbcalcGetSecondaryResistance(zero), 0.7);
    EXPECT_EQ(kzbcalcSetSecondaryResistance(0.7, one), 180060);
    EXPECT_EQ(kzbcalcSetSecondaryResistance(0.0, one), 180042);  // the value comes first
    EXPECT_EQ(kzbcalcGetSecondaryResistance(one), r2);
}

TEST(InductionRun, temperatures_of_two_windings_start_from_the_record) {
    Constants plain;
    Calculator defaults(plain);
    kzbcalcSetTemperatureCorrectionCalc(defaults);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperature(defaults), 293.15);
    EXPECT_EQ(kzbcalcGetCoilTemperatureCorrectionCoefficient(defaults), 1.0);  // not 3810, as established
    EXPECT_EQ(kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient(defaults), 1.0);

    Constants file;
    file.number("control", "base_1st_coil_temperature", 300.0)
        .number("control", "coef_1st_coil_temperature", 4000.0)
        .number("control", "base_2nd_coil_temperature", 310.0)
        .number("control", "coef_2nd_coil_temperature", 5000.0)
        .number("control", "base_coil_temperature", 77.0)
        .number("control", "coef_coil_temperature", 78.0);
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperature(calc), 300.0);
    EXPECT_EQ(kzbcalcGetCoilTemperatureCorrectionCoefficient(calc), 4000.0);
    EXPECT_EQ(kzbcalcGetSecondaryCoilBaseTemperature(calc), 310.0);
    EXPECT_EQ(kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient(calc), 5000.0);
    kzbcalcSetCoilTemperature(400.0, calc);
    kzbcalcSetSecondaryCoilTemperature(410.0, calc);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, balanced(1.0, 0.0));
    EXPECT_NEAR(kzbcalcGetResistance(calc), r1 * 1.4, 1e-15);
    EXPECT_NEAR(kzbcalcGetSecondaryResistance(calc), r2 * 1.5, 1e-15);
}

TEST(InductionRun, delta_takes_the_line_voltages) {
    // A balanced input keeps its magnitude times sqrt(3): currents at rest grow by the same factor.
    Constants file;
    double amplitude[2] = {};
    for (const int connection : {0, 1}) {
        Calculator calc(file);
        ASSERT_EQ(kzbcalcSetConnectionType(connection, calc), 0);
        kzbcalcSetData(calc);
        step_sample(calc, 0.0, 0.0, balanced(30.0, 0.0));
        kzbcalcUpdate(calc);
        step_sample(calc, h, 0.0, balanced(30.0, 0.0));
        const TwoAxis i =
            two_axis({kzbcalcGetCurrent(1, calc), kzbcalcGetCurrent(2, calc), kzbcalcGetCurrent(3, calc)});
        amplitude[connection] = std::hypot(i.alpha, i.beta);
    }
    EXPECT_GT(amplitude[0], 0.01);
    EXPECT_NEAR(amplitude[1], amplitude[0] * std::sqrt(3.0), 1e-9);
}

// ---- losses

TEST(InductionRun, iron_loss_of_constants_is_granted_by_g0_or_by_data) {
    Constants without;
    Calculator none(without);
    EXPECT_EQ(kzbcalcCheckIronloss(none), 0);
    EXPECT_EQ(kzbcalcSetIronlossCalc(none), 180040);
    Constants with;
    with.number("InductionParam", "g0", 1e-3);
    Calculator calc(with);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);  // no data
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
}

const std::vector<Point> supply_axes{{0.0, 1000.0}, {0.0, 1000.0}, {0.0, 1e5}, {0.0, 1000.0}, {0.0, 1e5}};

TEST(InductionRun, iron_loss_of_tables_needs_data) {
    Tables without;
    without.number("InductionParam", "g0", 1e-3);
    Calculator none(without);
    EXPECT_EQ(kzbcalcSetIronlossCalc(none), 180040);
    Tables own;
    own.table("InductionParam_HigherAccuracy", "ironloss_table", {{-100.0, 100.0}, {-100.0, 100.0}}, constant(11.0));
    Tables common;
    common.table("loss_table", "iron_loss", supply_axes, constant(12.0));
    for (const auto& [file, loss] : {std::pair<ModelFile*, double>{&own, 11.0}, {&common, 12.0}}) {
        Calculator calc(*file);
        EXPECT_EQ(kzbcalcCheckIronloss(calc), 1);
        EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
        kzbcalcSetData(calc);
        step_sample(calc, h, 0.0, balanced(1.0, 0.0));
        EXPECT_EQ(kzbcalcGetIronloss(calc), loss);
        // A supply counts only in the common table.
        EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), file == &common ? 0 : 180064);
        EXPECT_EQ(kzbcalcSetCarrierFrequency(300.0, calc), file == &common ? 0 : 180064);
    }
}

TEST(InductionRun, iron_loss_is_off_without_its_call) {
    Tables file;
    file.table("loss_table", "iron_loss", supply_axes, constant(12.0));
    Calculator calc(file);
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, balanced(1.0, 0.0));
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);
}

TEST(InductionRun, user_copper_loss_adds_to_the_primary_resistance) {
    // The table is dc_voltage: 0.25 V make 0.25 Ohm.
    Tables file;
    file.table("equivalent_resistance_table", "copper_loss", supply_axes, [](const Point& x) { return x[3]; });
    Calculator calc(file);
    EXPECT_EQ(kzbcalcCheckUserCopperloss(calc), 1);
    ASSERT_EQ(kzbcalcSetUserCopperlossCalc(calc), 0);
    EXPECT_EQ(kzbcalcSetDCVoltage(0.25, calc), 180064);  // not bound yet
    kzbcalcSetStepSize(h, calc);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetDCVoltage(0.25, calc), 0);
    for (int k = 1; k < 4; ++k) {
        step_sample(calc, h * k, 0.0, balanced(30.0, 0.0));
        kzbcalcUpdate(calc);
    }
    double squares = 0.0;
    for (const int phase : {1, 2, 3}) {
        squares += kzbcalcGetCurrent(phase, calc) * kzbcalcGetCurrent(phase, calc);
    }
    EXPECT_GT(squares, 0.0);
    EXPECT_NEAR(kzbcalcGetResistance(calc), r1 + 0.25, 1e-15);
    EXPECT_NEAR(kzbcalcGetUserCopperLoss(calc), 0.25 * squares, 1e-12);
}

TEST(InductionRun, voltage_outside_the_phases_is_zero_but_the_induced_one_refused) {
    Constants file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetVoltage(4, calc), 0.0);
    EXPECT_EQ(kzbcalcGetInducedVoltage(4, calc), 180031.0);
    EXPECT_EQ(kzbcalcGetInductance(1, 1, calc), 180039.0);
    EXPECT_EQ(kzbcalcGetInductance(9, 9, calc), 180039.0);
}

}  // namespace
}  // namespace kzb_test::induction_run_test
