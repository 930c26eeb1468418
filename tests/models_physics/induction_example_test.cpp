// The induction model on machines built from published equivalent circuits, against an independent integration of the
// circuits' own equations and against a published operating point.
//
// The model of a file with tables moves its state by explicit Euler, of first order: an oscillation of angular
// frequency w gains w^2 dt / 2 of damping, against rates of the machine of 5 to 100 1/s. At 50 Hz and dt = 2e-6 s that
// is 0.1 1/s, or 2 % of the slowest of them; halving dt halves it.
#include <math.h>  // NOLINT(modernize-deprecated-headers): pchip.hpp needs the global isnan
#include <unistd.h>

#include <algorithm>
#include <boost/math/interpolators/pchip.hpp>
#include <cmath>
#include <cstdio>
#include <string>

#include "gtest/gtest.h"
#include "kzb/build_im.h"
#include "kzb/build_pmsm.h"
#include "models_physics/induction_run.h"

namespace kzb::physics {
namespace {

const std::string data = std::string(KZB_SOURCE_DIR) + "/examples/data/";

// A model built in memory, in a file of the test's own.
class BuiltModel {
  public:
    explicit BuiltModel(const tool::ImOptions& options)
        : path_(testing::TempDir() + "induction_" + std::to_string(::getpid()) + ".kzb") {
        const tool::ImBuild build = tool::build_im(options);
        tool::write_model(build.store.get(), path_);
    }
    ~BuiltModel() { std::remove(path_.c_str()); }
    BuiltModel(const BuiltModel&) = delete;
    BuiltModel& operator=(const BuiltModel&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// Numbers as they stand in the README files and parameter files of the data, not as the tool reads them.
struct TCircuit {
    double pole_pairs, r_s, r_r, l_m, l_sigma_s, l_sigma_r;
};
constexpr TCircuit im_1k1{2.0, 2.9338, 1.355, 0.14375, 0.00587, 0.00587};
constexpr TCircuit im_2k2_linear{2.0, 3.7, 2.1, 0.224, 0.021, 0.0};  // inverse-gamma

// psi_s = (L_m + L_sigma_s) i_s + L_m i_r,  psi_r = L_m i_s + (L_m + L_sigma_r) i_r, solved by Cramer's rule.
InductionMachine linear_machine(const TCircuit& c) {
    const double l_s = c.l_m + c.l_sigma_s;
    const double l_r = c.l_m + c.l_sigma_r;
    const double det = l_s * l_r - c.l_m * c.l_m;
    return {c.pole_pairs, c.r_s, c.r_r, [=](Complex psi_s, Complex psi_r, Complex& i_s, Complex& i_r) {
                i_s = (l_r * psi_s - c.l_m * psi_r) / det;
                i_r = (l_s * psi_r - c.l_m * psi_s) / det;
            }};
}

// The published saturation function: i_s = psi_s / L_s(|psi_s|) - (psi_r - psi_s) / L_ell.
InductionMachine saturated_2k2() {
    return {2.0, 3.7, 2.5, [](Complex psi_s, Complex psi_r, Complex& i_s, Complex& i_r) {
                const double l_s = 0.34 / (1.0 + std::pow(0.84 * std::abs(psi_s), 7.0));
                i_r = (psi_r - psi_s) / 0.023;
                i_s = psi_s / l_s - i_r;
            }};
}

// Five computed points of the magnetizing curve, rms, with a monotone cubic through them; T form. With
// q = psi_s / l_s + psi_r / l_r and k = 1 / l_s + 1 / l_r both leakage equations together say i_m + k psi_m = q, so the
// three are of one direction and |i_m| + k psi(|i_m|) = |q|, which rises with |i_m|: found by bisection.
InductionMachine saturated_8pole() {
    constexpr double r = 1.4142135623730951;
    std::vector<double> i{0.0, 0.8153707064 * r, 3.159561487 * r, 5.503752268 * r, 7.847943049 * r, 10.19213383 * r};
    std::vector<double> psi{
        0.0, 0.1105318905 * r, 0.4224100587 * r, 0.6447040392 * r, 0.7428206048 * r, 0.7915931019 * r};
    const double last = i.back();
    const boost::math::interpolators::pchip<std::vector<double>> curve(std::move(i), std::move(psi));
    constexpr double l_s = 0.00282975049;
    constexpr double l_r = 0.001709766582;
    return {4.0, 0.6750742728, 0.5265531177, [=](Complex psi_s, Complex psi_r, Complex& i_s, Complex& i_r) {
                const Complex q = psi_s / l_s + psi_r / l_r;
                const double k = 1.0 / l_s + 1.0 / l_r;
                double low = 0.0;
                double high = last;
                for (int n = 0; n < 60; ++n) {
                    const double middle = 0.5 * (low + high);
                    (middle + k * curve(middle) < std::abs(q) ? low : high) = middle;
                }
                const Complex psi_m = std::abs(q) > 0.0 ? curve(low) * q / std::abs(q) : Complex();
                i_s = (psi_s - psi_m) / l_s;
                i_r = (psi_r - psi_m) / l_r;
            }};
}

struct Distance {
    double current = 0.0;  // largest difference, part of the largest current
    double torque = 0.0;
    double speed = 0.0;
};

Distance distance(const std::vector<InductionSample>& model, const std::vector<InductionSample>& reference) {
    Distance largest;
    Distance scale;
    EXPECT_EQ(model.size(), reference.size());
    for (std::size_t n = 0; n < std::min(model.size(), reference.size()); ++n) {
        const InductionSample& a = model[n];
        const InductionSample& b = reference[n];
        for (int k = 0; k < 3; ++k) {
            largest.current = std::max(largest.current, std::fabs(a.current[k] - b.current[k]));
            scale.current = std::max(scale.current, std::fabs(b.current[k]));
        }
        largest.torque = std::max(largest.torque, std::fabs(a.torque - b.torque));
        scale.torque = std::max(scale.torque, std::fabs(b.torque));
        largest.speed = std::max(largest.speed, std::fabs(a.speed - b.speed));
        scale.speed = std::max(scale.speed, std::fabs(b.speed));
    }
    return {largest.current / scale.current, largest.torque / scale.torque, largest.speed / scale.speed};
}

// Start from standstill at full voltage, and a load step once it runs.
void expect_start_and_load_step(const tool::ImOptions& options, const InductionMachine& machine,
                                const InductionRun& run) {
    const BuiltModel model(options);
    const double dt = 2e-6;
    const int every = 50;
    const auto reference = run_induction_reference(machine, run, 10.0 * dt, every / 10);
    const Distance coarse =
        distance(run_induction_model(model.path(), run, machine.pole_pairs, dt, every, true), reference);
    const Distance fine =
        distance(run_induction_model(model.path(), run, machine.pole_pairs, 0.5 * dt, 2 * every, true), reference);
    EXPECT_LT(coarse.current, 0.02);
    EXPECT_LT(coarse.torque, 0.02);
    EXPECT_LT(coarse.speed, 0.02);
    // First order, with some room for the second.
    EXPECT_NEAR(fine.current / coarse.current, 0.5, 0.05);
    EXPECT_NEAR(fine.torque / coarse.torque, 0.5, 0.05);
    EXPECT_NEAR(fine.speed / coarse.speed, 0.5, 0.05);
    // The run is what it is meant to be: up to near synchronous speed, then held back by the load.
    EXPECT_GT(reference.back().speed * machine.pole_pairs, 0.9 * 6.283185307 * run.frequency);
    EXPECT_NEAR(reference.back().torque, run.load, 0.02 * run.load);
}

TEST(InductionExample, small_machine_starts_and_takes_a_load_as_its_equations_tell) {
    tool::ImOptions options;
    options.parameter_path = data + "im-1k1/parameters.csv";
    options.parameters = {"frequency=50"};
    // 0.0011 kg m^2 of the file; half of 560 V of the link; 3 N*m.
    expect_start_and_load_step(options, linear_machine(im_1k1), {280.0, 50.0, 0.0011, 0.0, 3.0, 0.3, 0.6});
}

TEST(InductionExample, laboratory_machine_starts_and_takes_its_rated_load_as_its_equations_tell) {
    tool::ImOptions options;
    options.parameter_path = data + "im-2k2/parameters.csv";
    options.circuit = tool::CircuitForm::inverse_gamma;
    expect_start_and_load_step(options, linear_machine(im_2k2_linear),
                               {400.0 * std::sqrt(2.0 / 3.0), 50.0, 0.015, 0.0, 14.6, 0.6, 1.0});
}

struct Means {
    double current_rms;
    double torque;
};

// Over the last 0.1 s.
Means last_means(const std::vector<InductionSample>& samples) {
    Means means{0.0, 0.0};
    std::size_t count = 0;
    for (const InductionSample& s : samples) {
        if (s.time > samples.back().time - 0.1 + 1e-9) {
            means.current_rms +=
                (s.current[0] * s.current[0] + s.current[1] * s.current[1] + s.current[2] * s.current[2]) / 3.0;
            means.torque += s.torque;
            ++count;
        }
    }
    means.current_rms = std::sqrt(means.current_rms / static_cast<double>(count));
    means.torque /= static_cast<double>(count);
    return means;
}

// The tables hold what the saturated circuit does in steady state; a transient passes through them with the inductances
// of its momentary current, so only its end is compared.
void expect_steady_state(const tool::ImOptions& options, const InductionMachine& machine, InductionRun run, double slip,
                         double rated_torque) {
    const BuiltModel model(options);
    run.start_speed = (1.0 - slip) * 6.283185307179586 * run.frequency / machine.pole_pairs;
    const Means wanted = last_means(run_induction_reference(machine, run, 4e-5, 5));
    const auto told = [&](double dt) {
        const int every = static_cast<int>(std::lround(1e-4 / dt));
        return last_means(run_induction_model(model.path(), run, machine.pole_pairs, dt, every, true));
    };
    const Means coarse = told(2e-6);
    const Means fine = told(1e-6);
    EXPECT_NEAR(fine.current_rms, wanted.current_rms, 0.02 * wanted.current_rms) << slip;
    EXPECT_NEAR(fine.torque, wanted.torque, 0.02 * rated_torque) << slip;
    EXPECT_LT(std::fabs(fine.current_rms - wanted.current_rms), std::fabs(coarse.current_rms - wanted.current_rms))
        << slip;
}

TEST(InductionExample, saturated_machine_ends_in_the_steady_state_of_its_equations) {
    tool::ImOptions options;
    options.parameter_path = data + "im-2k2/parameters.csv";
    options.saturation_path = data + "im-2k2/saturation.csv";
    options.circuit = tool::CircuitForm::gamma;
    for (const double slip : {0.0, 0.05}) {
        expect_steady_state(options, saturated_2k2(), {400.0 * std::sqrt(2.0 / 3.0), 50.0, 1e30, 0.0, 0.0, 0.0, 1.0},
                            slip, 14.6);
    }
}

TEST(InductionExample, machine_of_a_computed_magnetizing_curve_ends_in_the_steady_state_of_its_equations) {
    tool::ImOptions options;
    options.parameter_path = data + "im-8pole/parameters.csv";
    options.saturation_path = data + "im-8pole/magnetizing_curve.csv";
    // 230.94 V rms; the example runs at 3 %. Its torque there is some 100 N*m.
    expect_steady_state(options, saturated_8pole(), {326.599, 50.0, 1e30, 0.0, 0.0, 0.0, 0.8}, 0.03, 100.0);
}

// Published for 600 V rms, 60 Hz, 1188 1/min: I_1 = 138.578 - j 231.278 A rms, torque 1922.283 N*m.
TEST(InductionExample, traction_machine_runs_at_its_published_operating_point) {
    tool::ImOptions options;
    options.parameter_path = data + "im-traction/parameters.csv";
    options.saturation_path = data + "im-traction/magnetizing_inductance.csv";
    options.parameters = {"r1=R_1_at_150C", "r2=R_2_at_200C_referred", "frequency=60", "phase_voltage_rms=600"};
    options.current_nodes = 161;
    const BuiltModel model(options);
    InductionRun run{600.0 * std::sqrt(2.0), 60.0};
    run.start_speed = 1188.0 * 6.283185307179586 / 60.0;
    run.end_time = 1.5;  // the slowest rate is some 5 1/s
    const double current = std::hypot(138.5784916, 231.2780253);
    const double torque = 1922.283416;
    const auto error_at = [&](double dt) {
        const Means told =
            last_means(run_induction_model(model.path(), run, 3.0, dt, static_cast<int>(std::lround(1e-4 / dt)), true));
        return Means{std::fabs(told.current_rms / current - 1.0), std::fabs(told.torque / torque - 1.0)};
    };
    const Means coarse = error_at(4e-6);
    const Means fine = error_at(2e-6);
    EXPECT_LT(fine.current_rms, 0.02);
    EXPECT_LT(fine.torque, 0.02);
    EXPECT_LT(fine.torque, 0.7 * coarse.torque);
}

// A model of constants takes the mean speed since time 0, so it is right at constant speed.
TEST(InductionExample, constants_at_constant_speed_follow_the_equations) {
    tool::ImOptions options;
    options.parameter_path = data + "im-1k1/parameters.csv";
    options.parameters = {"frequency=50"};
    options.application = tool::ImApplication::constants;
    const BuiltModel model(options);
    const InductionMachine machine = linear_machine(im_1k1);
    InductionRun run{280.0, 50.0};
    run.start_speed = 1420.0 * 6.283185307179586 / 60.0;
    run.end_time = 0.2;
    const double dt = 1e-5;
    const auto reference = run_induction_reference(machine, run, dt, 10);
    const Distance coarse = distance(run_induction_model(model.path(), run, 2.0, dt, 10, false), reference);
    const Distance fine = distance(run_induction_model(model.path(), run, 2.0, 0.5 * dt, 20, false), reference);
    EXPECT_LT(coarse.current, 0.02);
    EXPECT_LT(coarse.torque, 0.02);
    EXPECT_NEAR(fine.current / coarse.current, 0.5, 0.1);
    EXPECT_NEAR(fine.torque / coarse.torque, 0.5, 0.1);
}

}  // namespace
}  // namespace kzb::physics
