// Switched reluctance machines through the public calls: life, currents of the discrete equation, torque, history.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::reluctance_run_test {
namespace {

constexpr double h = 1e-3;
constexpr double inductance = 2e-3;
constexpr double resistance = 0.5;

class ReluctanceRun : public testing::TestWithParam<int> {
  protected:
    ReluctanceRun() { reluctance_machine(file_, GetParam(), inductance, 0.0, resistance); }
    int phases() const { return GetParam(); }
    ModelFile& file() { return file_; }
    // Different in every phase.
    std::vector<double> voltages(double scale) const {
        std::vector<double> v;
        for (int k = 0; k < phases(); ++k) {
            v.push_back(scale * (k + 1.0));
        }
        return v;
    }

  private:
    ModelFile file_;
};

INSTANTIATE_TEST_SUITE_P(Phases, ReluctanceRun, testing::Values(3, 4, 5));

TEST_P(ReluctanceRun, every_phase_follows_its_own_discrete_equation) {
    // dt R i + L i = L i_previous + dt v, solved from the first sample whose time is above 0.
    Calculator calc(file());
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcGetNumberOfPhases(calc), phases());
    ASSERT_EQ(kzbcalcSetData(calc), 0);
    std::vector<double> i(static_cast<std::size_t>(phases()), 0.0);
    for (int k = 0; k < 6; ++k) {
        const std::vector<double> v = voltages(1.0 + k);
        step_sample(calc, h * k, 3.0 * k, v);
        double sum = 0.0, squares = 0.0;
        for (int phase = 1; phase <= phases(); ++phase) {
            const auto p = static_cast<std::size_t>(phase - 1);
            const double before = i[p];
            i[p] = k == 0 ? 0.0 : (inductance * i[p] + h * v[p]) / (h * resistance + inductance);
            sum += i[p];
            squares += i[p] * i[p];
            EXPECT_NEAR(kzbcalcGetCurrent(phase, calc), i[p], 1e-12);
            EXPECT_EQ(kzbcalcGetVoltage(phase, calc), 0.0);
            EXPECT_NEAR(kzbcalcGetInducedVoltage(phase, calc), inductance * (i[p] - before) / h, 1e-11);
        }
        EXPECT_NEAR(kzbcalcGetTorque(calc), 0.3 * sum, 1e-12);
        EXPECT_NEAR(kzbcalcGetCopperloss(calc), resistance * squares, 1e-11);
        EXPECT_EQ(kzbcalcUpdate(calc), 0);
    }
}

TEST_P(ReluctanceRun, execute_never_commits) {
    Calculator once(file());
    Calculator often(file());
    kzbcalcSetData(once);
    kzbcalcSetData(often);
    for (int k = 0; k < 4; ++k) {
        step_sample(once, h * k, k, voltages(1.0));
        step_sample(often, h * k, k, voltages(-9.0));
        step_sample(often, h * k, k, voltages(1.0));
        EXPECT_EQ(kzbcalcGetCurrent(phases(), often), kzbcalcGetCurrent(phases(), once));
        kzbcalcUpdate(once);
        kzbcalcUpdate(often);
    }
    EXPECT_GT(kzbcalcGetCurrent(phases(), once), 0.0);
}

TEST_P(ReluctanceRun, asking_for_an_inductance_moves_the_history_on) {
    Calculator updated(file());
    Calculator asked(file());
    kzbcalcSetData(updated);
    kzbcalcSetData(asked);
    for (int k = 0; k < 4; ++k) {
        step_sample(updated, h * k, k, voltages(1.0));
        step_sample(asked, h * k, k, voltages(1.0));
        kzbcalcUpdate(updated);
        EXPECT_EQ(kzbcalcGetInductance(phases(), phases(), asked), inductance);
        EXPECT_EQ(kzbcalcGetCurrent(1, asked), kzbcalcGetCurrent(1, updated));
    }
    // Numbers out of range move nothing.
    step_sample(updated, h * 4, 4.0, voltages(1.0));
    const double before = kzbcalcGetCurrent(1, updated);
    EXPECT_EQ(kzbcalcGetInductance(0, 1, updated), 180031.0);
    kzbcalcExecute(updated);
    EXPECT_EQ(kzbcalcGetCurrent(1, updated), before);
}

TEST_P(ReluctanceRun, initial_currents_and_time_start_the_run) {
    Calculator calc(file());
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetInitialCurrent(phases(), 4.0, calc), 0);
    ASSERT_EQ(kzbcalcSetInitialTime(1.0, calc), 0);
    step_sample(calc, 1.0 + h, 0.0, voltages(0.0));
    const double dt = (1.0 + h) - 1.0;
    EXPECT_NEAR(kzbcalcGetCurrent(phases(), calc), inductance * 4.0 / (dt * resistance + inductance), 1e-12);
    EXPECT_EQ(kzbcalcGetCurrent(1, calc), 0.0);
}

TEST_P(ReluctanceRun, port_without_signal_carries_no_current) {
    Calculator calc(file());
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetSignal(1, 0, calc), 0);
    for (int k = 0; k < 3; ++k) {
        step_sample(calc, h * k, 0.0, voltages(1.0));
        kzbcalcUpdate(calc);
    }
    EXPECT_NEAR(kzbcalcGetCurrent(1, calc), 0.0, 1e-12);
    EXPECT_GT(kzbcalcGetCurrent(2, calc), 0.1);
}

TEST_P(ReluctanceRun, current_driven_torque_is_evaluated_from_the_currents) {
    Calculator calc(file(), 2);
    kzbcalcSetData(calc);
    double sum = 0.0;
    for (int phase = 1; phase <= phases(); ++phase) {
        ASSERT_EQ(kzbcalcSetCurrent(phase, 2.0 * phase, calc), 0);
        sum += 2.0 * phase;
        EXPECT_EQ(kzbcalcGetCurrent(phase, calc), 2.0 * phase);
    }
    EXPECT_NEAR(kzbcalcGetTorque(calc), 0.3 * sum, 1e-12);
    EXPECT_EQ(kzbcalcSetCorrectionOfTorque(2.0, calc), 0);
    EXPECT_NEAR(kzbcalcGetTorque(calc), 0.6 * sum, 1e-12);
}

TEST_P(ReluctanceRun, corrections_of_the_file_start_the_model_but_turns_one) {
    file().number("control", "coef_torque", 3.0).number("control", "coef_inductance", 5.0);
    file().number("control", "turns_in_coil", 10.0).number("control", "turns_coil1", 70.0);
    Calculator calc(file(), 2);
    kzbcalcSetData(calc);
    kzbcalcSetCurrent(1, 2.0, calc);
    EXPECT_NEAR(kzbcalcGetTorque(calc), 3.0 * 0.3 * 2.0, 1e-12);
    Calculator driven(file());
    kzbcalcSetData(driven);
    step_sample(driven, h, 0.0, voltages(1.0));
    EXPECT_NEAR(kzbcalcGetInductance(1, 1, driven), 5.0 * inductance, 1e-15);
}

TEST_P(ReluctanceRun, coil_temperature_scales_the_resistance) {
    Calculator calc(file());
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetCoilTemperature(393.15, calc);  // 100 K above base at 3810 ppm per K
    kzbcalcSetData(calc);
    step_sample(calc, h, 0.0, voltages(1.0));
    EXPECT_NEAR(kzbcalcGetResistance(calc), resistance * 1.381, 1e-15);
}

}  // namespace
}  // namespace kzb_test::reluctance_run_test
