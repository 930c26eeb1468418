// The induction model in steady state, against the equivalent circuit of one phase in complex numbers.
//
//   V = (R1 + j X) I1 + j Xm (I1 + I2),   0 = (R2 / s + j X) I2 + j Xm (I1 + I2)     X = (X1 + X2) / 2, Xm = 1 / b0
//   torque = 3/2 p/2 |I2|^2 R2 / (s w),   secondary loss = 3/2 |I2|^2 R2             peak values
//
// Both steps are of first order: they see j w psi2 turned by w dt / (2 s), 0.8 % at dt = 1 us and s = 0.02. That is a
// reactance of 0.8 % of R2 / s beside a resistance of R2 / s, and less than 0.2 % of every magnitude here.
#include <complex>

#include "gtest/gtest.h"
#include "models_physics/im_run.h"

namespace kzb::physics {
namespace {

using Complex = std::complex<double>;

struct SteadyState {
    double primary;
    double torque;
    double secondary_loss;
};

SteadyState equivalent_circuit(const ImConstants& m, double r2, double volt, double slip) {
    const double w = 2.0 * M_PI * m.frequency;
    const Complex leakage(0.0, (m.x1 + m.x2) * 0.5);
    const Complex magnetising(0.0, 1.0 / m.b0);
    const Complex rotor = r2 / slip + leakage;
    const Complex primary = volt / (m.r1 + leakage + magnetising * rotor / (magnetising + rotor));
    const double loss = 1.5 * std::norm(primary * magnetising / (magnetising + rotor)) * r2;
    return {std::abs(primary), loss / slip / w * m.poles * 0.5, loss};
}

struct ImSteadyCase {
    const char* name;
    bool tables;
    double slip;
};

void PrintTo(const ImSteadyCase& c, std::ostream* out) {
    *out << c.name;
}

class ImSteadyState : public testing::TestWithParam<ImSteadyCase> {};

TEST_P(ImSteadyState, is_that_of_the_equivalent_circuit) {
    const ImConstants machine;
    const double volt = 300.0;
    const double slip = GetParam().slip;
    ImRun run(machine, GetParam().tables, volt, slip, 1e-6);
    run.model.bind(run.store, 0);
    const int period = run.period();
    for (int n = 0; n < 25 * period; ++n) {
        run.step();
    }
    SteadyState mean{};
    for (int n = 0; n < period; ++n) {
        run.step();
        mean.primary += run.model.state().primary_current / period;
        mean.torque += run.model.torque() / period;
        mean.secondary_loss += run.model.secondary_copper_loss() / period;
    }
    const double skin = GetParam().tables ? 1.0 + im_skin * std::fabs(slip) * machine.frequency : 1.0;
    const SteadyState expected = equivalent_circuit(machine, machine.r2 * skin, volt, slip);
    EXPECT_NEAR(mean.primary, expected.primary, 0.005 * expected.primary);
    EXPECT_NEAR(mean.torque, expected.torque, 0.005 * std::fabs(expected.torque));
    EXPECT_NEAR(mean.secondary_loss, expected.secondary_loss, 0.005 * expected.secondary_loss);
}

INSTANTIATE_TEST_SUITE_P(
    Im, ImSteadyState,
    testing::Values(ImSteadyCase{"constants_no_load", false, 0.02}, ImSteadyCase{"constants_generator", false, -0.05},
                    ImSteadyCase{"constants_overload", false, 0.3}, ImSteadyCase{"tables_no_load", true, 0.02},
                    ImSteadyCase{"tables_generator", true, -0.05}, ImSteadyCase{"tables_overload", true, 0.3}),
    [](const testing::TestParamInfo<ImSteadyCase>& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace kzb::physics
