// examples/stepper.toml against an independent integration of the closed forms of the motor, as two phases:
//   d/dt (psi_A + (1 - k) L j_A / 2) = (V s_A - R j_A) / 2,  likewise B,   j = 2 i in series
//   J d omega / dt = T - load - c omega
// with psi_A, psi_B, T of `kzb build stepper`, by the classical Runge-Kutta method.
//
// The model and the run are of first order: the torque of one sample drives the rotor to the next, which takes
// w^2 dt / 4 from the damping of its oscillation, w^2 = 50^2 0.0125 Vs 2 A sqrt(2) / J = 2.9e6 1/s^2. At dt = 2e-6 s
// that is 1.5 1/s beside the damping c / 2 J = 167 1/s, 1 % of what the oscillation does; the bound leaves twice that.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "kzb/build_pmsm.h"
#include "kzb/build_stepper.h"
#include "models_physics/coil_run.h"

namespace kzb::physics {
namespace {

const std::string examples = std::string(KZB_SOURCE_DIR) + "/examples/";
constexpr double pairs = 50.0, m = 0.0125, L = 3.2e-3, k = 0.95, S = 0.1e-3, R = 2.5, D = 0.03;
constexpr double J = 3e-5, viscous = 1e-2, load = 0.1, V = 5.0, rate = 100.0, first_step = 0.01;

struct Currents {
    double a, b;  // differences of the half coils of a phase
};

// y: flux linkages of a half coil of A and of B (with leakage), speed, angle (rad).
Currents currents(const State& y) {
    const double e = pairs * y[3];
    const double leak = 0.5 * (1.0 - k) * L;
    const double aa = k * L + S * std::cos(2 * e) + leak;
    const double bb = k * L - S * std::cos(2 * e) + leak;
    const double ab = S * std::sin(2 * e);
    const double ra = y[0] - m * std::cos(e);
    const double rb = y[1] - m * std::sin(e);
    const double det = aa * bb - ab * ab;
    return {(ra * bb - rb * ab) / det, (rb * aa - ra * ab) / det};
}

double torque(const State& y) {
    const Currents j = currents(y);
    const double e = pairs * y[3];
    return pairs * (-m * std::sin(e) * j.a + m * std::cos(e) * j.b - S * std::sin(2 * e) * (j.a * j.a - j.b * j.b) +
                    2 * S * std::cos(2 * e) * j.a * j.b) -
           D * std::sin(4 * e);
}

std::vector<CoilSample> integrate(double end, double h) {
    const double start = 0.9 * std::numbers::pi / 180.0;
    State y{m * std::cos(pairs * start), m * std::sin(pairs * start), 0.0, start};
    std::vector<CoilSample> run;
    const long count = std::lround(end / h);
    for (long n = 0; n <= count; ++n) {
        const double t = static_cast<double>(n) * h;
        const Currents j = currents(y);
        run.push_back({t, {j.a / 2, -j.a / 2, j.b / 2, -j.b / 2}, torque(y), y[3] * 180.0 / std::numbers::pi});
        const long steps = std::min(20L, std::max(0L, static_cast<long>(std::floor((t - first_step) * rate + 1e-6))));
        // A+B+, A-B+, A-B-, A+B-
        const double sign_a = steps % 4 == 0 || steps % 4 == 3 ? 1.0 : -1.0;
        const double sign_b = steps % 4 < 2 ? 1.0 : -1.0;
        y = runge_kutta(
            [&](double, const State& at) {
                const Currents i = currents(at);
                return State{0.5 * (V * sign_a - R * i.a), 0.5 * (V * sign_b - R * i.b),
                             (torque(at) - load - viscous * at[2]) / J, at[2]};
            },
            t, y, h);
    }
    return run;
}

TEST(StepperExample, follows_the_integration_with_first_order) {
    tool::StepperOptions options;
    options.common.parameter_path = examples + "data/stepper/parameters.toml";
    const tool::StepperBuild build = tool::build_stepper(options);
    const ModelPath kzb("stepper_example");
    const tool::StorePointer store = tool::write_model(build.store.get(), kzb.path());
    const std::vector<CoilSample> reference = integrate(0.28, 1e-5);
    std::vector<CoilDistance> found;
    for (const double dt : {8e-6, 4e-6, 2e-6}) {
        found.push_back(distance(run_scenario(kzb.path(), examples + "stepper.toml", dt, 4e-5), reference));
        std::printf("dt %g: current %.3f %%, torque %.3f %%, angle %.3f %%\n", dt, 100.0 * found.back().current,
                    100.0 * found.back().torque, 100.0 * found.back().displacement);
    }
    EXPECT_LT(found[2].current, 0.02);
    EXPECT_LT(found[2].torque, 0.02);
    EXPECT_LT(found[2].displacement, 0.02);
    for (std::size_t n = 1; n < found.size(); ++n) {
        EXPECT_LT(found[n].current, 0.7 * found[n - 1].current);
        EXPECT_LT(found[n].displacement, 0.7 * found[n - 1].displacement);
    }
    // Twenty steps of 1.8 degrees from 0.9 degrees, less what load and detent leave.
    EXPECT_NEAR(reference.back().displacement, 36.9, 0.2);
}

}  // namespace
}  // namespace kzb::physics
