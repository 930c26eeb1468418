// The models of the permanent-magnet machine on tables of published machines, against an independent integration.
//
// The model's step is of first order: at dt = 1e-5 s it stays within 2 % of peak current and torque, and its distance
// from the integration falls in proportion to dt. How far the tables are from the machine's data is another matter,
// told by the account of the build.
//
// Proportion shows only where all steps are of one length to the last bit: the Harmonic step takes a step longer than
// the one before, were it by rounding alone, with the induced voltage of the step before. Sample times here are exact
// multiples of a dt with few binary digits; times that round as n * dt does are tried apart.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>

#include "gtest/gtest.h"
#include "kzb/build_pmsm.h"
#include "models_physics/drive_run.h"

namespace kzb::physics {
namespace {

using tool::Application;

const std::string data = std::string(KZB_SOURCE_DIR) + "/examples/data";

struct Case {
    const char* name;
    const char* map;
    int poles;
    double resistance;
    bool mirror;
    Application application;
    double speed_rpm;
    Dq target;  // currents of the steady state that the voltages belong to
    double end_time;
};

void PrintTo(const Case& c, std::ostream* out) {
    *out << c.name;
}

tool::PmsmOptions options_of(const Case& c) {
    tool::PmsmOptions options;
    options.map_path = data + c.map;
    options.model.applications = {c.application};
    options.model.number_of_poles = c.poles;
    options.model.resistance = c.resistance;
    options.machine.mirror = c.mirror ? tool::Mirror::iq : tool::Mirror::none;
    if (c.application == Application::SimpleHarmonic) {
        // The model takes this application's magnet flux by spline, the reference linearly: 2 deg apart, the two differ
        // by (h^2 / 8) = 0.015 %.
        options.machine.position_count = 180;
    }
    return options;
}

// The voltage that holds the target current in the mean: v = R i + omega J psi.
Drive drive_of(const Case& c, const tool::PmsmBuild& build) {
    Drive drive;
    drive.speed_rpm = c.speed_rpm;
    drive.pole_pairs = 0.5 * c.poles;
    drive.resistance = c.resistance;
    drive.end_time = c.end_time;
    const tool::MachineMap map(build.source, build.machine);
    const tool::MachinePoint p = map.mean(c.target.d, c.target.q);
    const double omega = drive.theta(1.0) * 3.14159265358979323846 / 180.0;
    drive.voltage = {c.resistance * c.target.d - omega * p.psi_q, c.resistance * c.target.q + omega * p.psi_d};
    // FluxIntegralDQTheta starts from the flux without current whatever the caller sets.
    if (c.application != Application::FluxIntegralDQTheta) {
        drive.start_current = c.target;
    }
    return drive;
}

struct Distance {
    double current = 0.0;  // largest difference, part of the largest current
    double torque = 0.0;
};

// Both runs sampled at multiples of the model's dt; the reference starts at its `first` sample.
Distance distance(const Recording& model, const Recording& reference, std::size_t first) {
    double off_current = 0.0;
    double off_torque = 0.0;
    double current = 0.0;
    double torque = 0.0;
    for (std::size_t n = 0; n < reference.samples.size(); ++n) {
        const Sample& r = reference.samples[n];
        const Sample& m = model.samples[n + first];
        for (int k = 0; k < 3; ++k) {
            off_current = std::max(off_current, std::fabs(m.current[k] - r.current[k]));
            current = std::max(current, std::fabs(r.current[k]));
        }
        off_torque = std::max(off_torque, std::fabs(m.torque - r.torque));
        torque = std::max(torque, std::fabs(r.torque));
    }
    return {off_current / current, off_torque / torque};
}

// The nearest number to dt whose multiples up to some thousands are exact.
double exact_step(double dt) {
    return std::ldexp(std::round(std::ldexp(dt, 40)), -40);
}

class PmsmPhysics : public testing::TestWithParam<Case> {
  protected:
    void SetUp() override {
        const tool::PmsmBuild build = tool::build_pmsm(options_of(GetParam()));
        path_ = testing::TempDir() + "physics_" + std::to_string(::getpid()) + "_" + GetParam().name + ".kzb";
        const tool::StorePointer store = tool::write_model(build.model.store.get(), path_);
        machine_ = machine_tables(store.get(), tool::name_of(GetParam().application));
        drive_ = drive_of(GetParam(), build);
    }
    void TearDown() override { std::remove(path_.c_str()); }

    Distance at_step(double dt, int substeps) {
        const bool from_zero = GetParam().application == Application::FluxIntegralDQTheta;
        const Recording model = run_model(path_, drive_, dt);
        const Recording reference = run_reference(*machine_, drive_, from_zero ? 0.0 : dt, dt, substeps);
        EXPECT_FALSE(model.left_table) << dt;
        EXPECT_FALSE(reference.left_table) << dt;
        const Distance found = distance(model, reference, from_zero ? 0 : 1);
        std::printf("%s dt %g: current %.3f %%, torque %.3f %%\n", GetParam().name, dt, 100.0 * found.current,
                    100.0 * found.torque);
        return found;
    }

  private:
    std::string path_;
    std::unique_ptr<MachineTables> machine_;
    Drive drive_;
};

TEST_P(PmsmPhysics, model_follows_the_integration_with_first_order) {
    const Distance coarse = at_step(exact_step(4e-5), 4);
    const Distance middle = at_step(exact_step(2e-5), 2);
    const Distance fine = at_step(exact_step(1e-5), 1);
    EXPECT_LT(fine.current, 0.02);
    EXPECT_LT(fine.torque, 0.02);
    EXPECT_NEAR(coarse.current / middle.current, 2.0, 0.25);
    EXPECT_NEAR(middle.current / fine.current, 2.0, 0.25);
    EXPECT_NEAR(coarse.torque / middle.torque, 2.0, 0.25);
    EXPECT_NEAR(middle.torque / fine.torque, 2.0, 0.25);
}

TEST_P(PmsmPhysics, times_that_round_stay_within_two_percent) {
    const Distance found = at_step(1e-5, 1);
    EXPECT_LT(found.current, 0.02);
    EXPECT_LT(found.torque, 0.02);
}

constexpr const char* ipm = "/ipm48s8p/position_map_dq.csv";
constexpr const char* pmsyrm = "/pmsyrm-5k6/flux_map.csv";

INSTANTIATE_TEST_SUITE_P(
    PublishedMachines, PmsmPhysics,
    testing::Values(
        Case{"ipm_harmonic", ipm, 8, 0.0806, true, Application::Harmonic, 1000.0, {-60.0, 80.0}, 0.05},
        Case{"ipm_flux_integral", ipm, 8, 0.0806, true, Application::FluxIntegralDQTheta, 500.0, {-40.0, 10.0}, 0.04},
        Case{"ipm_ldlq", ipm, 8, 0.0806, true, Application::LdLq, 750.0, {-60.0, 80.0}, 0.05},
        Case{"pmsyrm_harmonic", pmsyrm, 4, 0.63, false, Application::Harmonic, 1000.0, {-5.0, 8.0}, 0.05},
        Case{
            "pmsyrm_flux_integral", pmsyrm, 4, 0.63, false, Application::FluxIntegralDQTheta, 500.0, {-2.0, 2.0}, 0.06},
        Case{"pmsyrm_ldlq", pmsyrm, 4, 0.63, false, Application::LdLq, 500.0, {-5.0, 8.0}, 0.05},
        Case{"pmsyrm_simple_harmonic", pmsyrm, 4, 0.63, false, Application::SimpleHarmonic, 500.0, {-5.0, 8.0}, 0.05}),
    [](const testing::TestParamInfo<Case>& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace kzb::physics
