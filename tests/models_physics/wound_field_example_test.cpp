// The wound-field model on published machines, against an independent integration of the machines' own equations
//
//   d psi_d / dt = v_d - R i_d + w psi_q,   d psi_q / dt = v_q - R i_q - w psi_d,   d psi_f / dt = v_f - R_f i_f
// in the rotor's frame, peak values, with the classical Runge-Kutta method of fourth order.
//
// The model's step is implicit Euler, of first order: halving dt halves its distance. What does not fall is the
// distance of its tables, which join sines by straight lines over position steps of h: h^2 / 8 of the flux linkage,
// 1e-5 at 0.5 degrees.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "KZBCalculator/kzbcalc.h"
#include "gtest/gtest.h"
#include "interface/kzbcalc_handle.h"
#include "kzb/build_pmsm.h"
#include "kzb/build_wfsm.h"
#include "models_physics/machine_tables.h"

namespace kzb::physics {
namespace {

const std::string data = std::string(KZB_SOURCE_DIR) + "/examples/data/";
constexpr double pi = 3.14159265358979323846;

struct Three {
    double d = 0.0;
    double q = 0.0;
    double f = 0.0;
};

Three moved(const Three& x, const Three& k, double h) {
    return {x.d + h * k.d, x.q + h * k.q, x.f + h * k.f};
}

struct FieldDrive {
    double pole_pairs = 1.0;
    double speed_rpm = 0.0;
    double resistance = 0.0;
    double field_resistance = 0.0;
    Dq voltage;                  // peak, in the rotor's frame
    double field_voltage = 0.0;  // from field_step_time on, else field_before
    double field_before = 0.0;
    double field_step_time = 0.0;
    double end_time = 0.0;
    double theta(double t) const { return 6.0 * speed_rpm * pole_pairs * t; }  // electrical degrees
    double field_at(double t) const { return t >= field_step_time ? field_voltage : field_before; }
};

struct FieldSample {
    double time = 0.0;
    double current[4] = {};  // U, V, W, F
    double torque = 0.0;
};

using CurrentOf = std::function<Three(const Three& flux, const Three& near)>;

std::vector<FieldSample> run_reference(const CurrentOf& current_of, const FieldDrive& drive, double dt,
                                       int keep_every) {
    const double w = drive.theta(1.0) * pi / 180.0;
    Three current;
    const auto slope = [&](double t, const Three& psi) {
        const Three i = current_of(psi, current);
        return Three{drive.voltage.d - drive.resistance * i.d + w * psi.q,
                     drive.voltage.q - drive.resistance * i.q - w * psi.d,
                     drive.field_at(t) - drive.field_resistance * i.f};
    };
    std::vector<FieldSample> samples;
    Three psi;
    const long count = std::lround(drive.end_time / dt);
    for (long n = 0; n <= count; ++n) {
        const double t = static_cast<double>(n) * dt;
        current = current_of(psi, current);
        if (!std::isfinite(current.d + current.q + current.f)) {
            ADD_FAILURE() << "no current at " << t << " s";
            break;
        }
        if (n % keep_every == 0) {
            FieldSample s{
                t, {0.0, 0.0, 0.0, current.f}, 1.5 * drive.pole_pairs * (psi.d * current.q - psi.q * current.d)};
            for (int k = 0; k < 3; ++k) {
                s.current[k] = winding({current.d, current.q}, drive.theta(t), k);
            }
            samples.push_back(s);
        }
        // A step of the field voltage lies on a step of time; within the step the voltage is that of its start.
        const double middle = t + 0.25 * dt;
        const Three k1 = slope(middle, psi);
        const Three k2 = slope(middle, moved(psi, k1, 0.5 * dt));
        const Three k3 = slope(middle, moved(psi, k2, 0.5 * dt));
        const Three k4 = slope(middle, moved(psi, k3, dt));
        psi = moved(moved(moved(moved(psi, k1, dt / 6.0), k2, dt / 3.0), k3, dt / 3.0), k4, dt / 6.0);
    }
    return samples;
}

struct ModelRun {
    std::vector<FieldSample> samples;
    bool left_table = false;
};

ModelRun run_model(const std::string& path, const FieldDrive& drive, double dt, int keep_every) {
    KZB_CALC* calc = nullptr;
    ModelRun run;
    EXPECT_EQ(kzbcalcInitialize(path.c_str(), 1, &calc), 0);
    kzbcalcSetData(calc);
    KZB_STORE* store = calc->store.get();
    const long count = std::lround(drive.end_time / dt);
    for (long n = 0; n <= count; ++n) {
        // The first sample does not solve; it stands at 0 with no current. A sample of an implicit step belongs to the
        // voltages at its end, a step of the field voltage to what follows it.
        const double t = static_cast<double>(n) * dt;
        kzbcalcSetTime(t, calc);
        kzbcalcSetDisplacement(drive.theta(t) / drive.pole_pairs, calc);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetVoltage(k + 1, winding(drive.voltage, drive.theta(t), k), calc);
        }
        kzbcalcSetVoltage(4, drive.field_at(t - 0.5 * dt), calc);
        for (int port = 1; port <= 4; ++port) {
            kzbcalcSetSignal(port, 1, calc);
        }
        kzb_reset_error(store);
        kzbcalcExecute(calc);
        run.left_table = run.left_table || kzb_has_error(store) != 0;
        if (n % keep_every == 0) {
            FieldSample s{t, {}, kzbcalcGetTorque(calc)};
            for (int k = 0; k < 4; ++k) {
                s.current[k] = kzbcalcGetCurrent(k + 1, calc);
            }
            run.samples.push_back(s);
        }
        kzbcalcUpdate(calc);
    }
    kzbcalcTerminate(calc);
    return run;
}

struct Distance {
    double armature = 0.0;  // largest difference, part of the largest value
    double field = 0.0;
    double torque = 0.0;
};

Distance distance(const std::vector<FieldSample>& model, const std::vector<FieldSample>& reference) {
    Distance off;
    Distance scale;
    EXPECT_EQ(model.size(), reference.size());
    for (std::size_t n = 0; n < std::min(model.size(), reference.size()); ++n) {
        for (int k = 0; k < 3; ++k) {
            off.armature = std::max(off.armature, std::fabs(model[n].current[k] - reference[n].current[k]));
            scale.armature = std::max(scale.armature, std::fabs(reference[n].current[k]));
        }
        off.field = std::max(off.field, std::fabs(model[n].current[3] - reference[n].current[3]));
        scale.field = std::max(scale.field, std::fabs(reference[n].current[3]));
        off.torque = std::max(off.torque, std::fabs(model[n].torque - reference[n].torque));
        scale.torque = std::max(scale.torque, std::fabs(reference[n].torque));
    }
    return {off.armature / scale.armature, off.field / scale.field, off.torque / scale.torque};
}

class BuiltModel {
  public:
    explicit BuiltModel(const tool::WfsmOptions& options)
        : path_(testing::TempDir() + "wound_field_" + std::to_string(::getpid()) + ".kzb"),
          build_(tool::build_wfsm(options)) {
        written_ = tool::write_model(build_.store.get(), path_);
    }
    ~BuiltModel() { std::remove(path_.c_str()); }
    BuiltModel(const BuiltModel&) = delete;
    BuiltModel& operator=(const BuiltModel&) = delete;
    const std::string& path() const { return path_; }
    KZB_STORE* store() const { return written_.get(); }

  private:
    std::string path_;
    tool::WfsmBuild build_;
    tool::StorePointer written_;
};

// The published inductances, field quantities referred to the stator with the power 1.5 v_e i_e: the winding of the
// model carries i_e at 1.5 v_e, so psi_f = 1.5 (L_m i_d + L_e i_e).
TEST(WoundFieldExample, field_voltage_step_of_the_linear_machine_follows_its_equations) {
    constexpr double l_d = 0.00166, l_q = 0.00035, l_m = 0.001589, l_e = 0.00174;
    tool::WfsmOptions options;
    options.parameter_path = data + "eesm-linear/parameters.csv";
    options.position_step = 0.5;
    const BuiltModel model(options);
    const CurrentOf current_of = [=](const Three& psi, const Three&) {
        const double e = psi.f / 1.5;
        const double det = l_d * l_e - l_m * l_m;
        return Three{(l_e * psi.d - l_m * e) / det, psi.q / l_q, (l_d * e - l_m * psi.d) / det};
    };
    FieldDrive drive;
    drive.pole_pairs = 3.0;
    drive.speed_rpm = 1000.0;
    drive.resistance = 0.01555;
    drive.field_resistance = 1.5 * 0.0072;
    drive.voltage = {0.0, 20.0};
    drive.field_before = 0.0;
    drive.field_voltage = 1.5 * 0.0072 * 150.0;  // the nominal field current, in the end
    drive.field_step_time = 0.05;
    drive.end_time = 0.2;
    const double dt = 2e-5;
    const auto reference = run_reference(current_of, drive, dt, 5);
    const ModelRun coarse = run_model(model.path(), drive, dt, 5);
    const ModelRun fine = run_model(model.path(), drive, 0.5 * dt, 10);
    EXPECT_FALSE(coarse.left_table);
    const Distance far = distance(coarse.samples, reference);
    const Distance near = distance(fine.samples, reference);
    EXPECT_LT(far.armature, 0.02);
    EXPECT_LT(far.field, 0.02);
    EXPECT_LT(far.torque, 0.02);
    EXPECT_LT(near.armature, 0.6 * far.armature);
    EXPECT_LT(near.field, 0.6 * far.field);
    EXPECT_LT(near.torque, 0.6 * far.torque);
}

// The flux linkages of a model file at position 0, where d is U: over amplitude, phase and field current.
class MapFromTables {
  public:
    explicit MapFromTables(KZB_STORE* store) : flux_(store, "current_flux", "flux") {}
    Three flux(const Three& i) const {
        // Below field current 0 all currents and flux linkages turn, as in a machine half a turn on.
        if (i.f < 0.0) {
            const Three turned = flux({-i.d, -i.q, -i.f});
            return {-turned.d, -turned.q, -turned.f};
        }
        const double amplitude = std::hypot(i.d, i.q);
        const double phase = std::atan2(-i.d, i.q) * 180.0 / pi;
        double k[4];
        for (int c = 0; c < 4; ++c) {
            k[c] = flux_.at({amplitude, phase, i.f, 0.0, static_cast<double>(c)});
        }
        const double abc[3] = {k[0], k[1], k[2]};
        const Dq dq = park(abc, 0.0);
        return {dq.d, dq.q, k[3]};
    }
    // Newton's method with differences; a step that does not come nearer is halved, for the tables have edges.
    Three current(const Three& psi, const Three& near) const {
        const auto rest = [&psi](const Three& at) {
            return std::fabs(psi.d - at.d) + std::fabs(psi.q - at.q) + 0.01 * std::fabs(psi.f - at.f);
        };
        Three i = near;
        Three at = flux(i);
        for (int n = 0; n < 30 && rest(at) > 1e-9; ++n) {
            const double r[3] = {psi.d - at.d, psi.q - at.q, psi.f - at.f};
            const Three steps[3] = {{0.01, 0.0, 0.0}, {0.0, 0.01, 0.0}, {0.0, 0.0, 0.0005}};
            const double sizes[3] = {0.01, 0.01, 0.0005};
            double m[3][3];
            for (int c = 0; c < 3; ++c) {
                const Three up = flux(moved(i, steps[c], 1.0));
                m[0][c] = (up.d - at.d) / sizes[c];
                m[1][c] = (up.q - at.q) / sizes[c];
                m[2][c] = (up.f - at.f) / sizes[c];
            }
            const Three change = cramer(m, r);
            double part = 1.0;
            Three next = moved(i, change, part);
            Three there = flux(next);
            while (!(rest(there) < rest(at)) && part > 1e-3) {
                part *= 0.5;
                next = moved(i, change, part);
                there = flux(next);
            }
            i = next;
            at = there;
        }
        return i;
    }
    bool left() const { return flux_.left(); }

  private:
    static double det(const double m[3][3]) {
        return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) - m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
               m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
    }
    static Three cramer(const double m[3][3], const double r[3]) {
        double x[3];
        for (int c = 0; c < 3; ++c) {
            double n[3][3];
            for (int row = 0; row < 3; ++row) {
                for (int col = 0; col < 3; ++col) {
                    n[row][col] = col == c ? r[row] : m[row][col];
                }
            }
            x[c] = det(n) / det(m);
        }
        return {x[0], x[1], x[2]};
    }
    Table flux_;
};

// The machine is what its tables say; how far they are from the finite-element map is told by the build, below.
TEST(WoundFieldExample, field_voltage_step_of_the_mapped_machine_follows_its_tables) {
    tool::WfsmOptions options;
    options.parameter_path = data + "eesm-6pole/parameters.csv";
    options.map_path = data + "eesm-6pole/flux_map.csv";
    options.position_step = 4.0;
    const BuiltModel model(options);
    const MapFromTables tables(model.store());
    FieldDrive drive;
    drive.pole_pairs = 3.0;
    drive.speed_rpm = 600.0;
    drive.resistance = 0.01;
    drive.field_resistance = 40.0;
    drive.voltage = {0.0, 0.0};  // short-circuited: the d current opposes the field, where the map is
    drive.field_before = 120.0;  // 3 A
    drive.field_voltage = 200.0;
    drive.field_step_time = 0.1;
    drive.end_time = 0.2;
    const double dt = 5e-5;
    const auto reference =
        run_reference([&](const Three& psi, const Three& near) { return tables.current(psi, near); }, drive, dt, 4);
    const ModelRun coarse = run_model(model.path(), drive, dt, 4);
    const ModelRun fine = run_model(model.path(), drive, 0.5 * dt, 8);
    EXPECT_FALSE(coarse.left_table);
    EXPECT_FALSE(tables.left());
    const Distance far = distance(coarse.samples, reference);
    const Distance near = distance(fine.samples, reference);
    EXPECT_LT(near.armature, 0.02);
    EXPECT_LT(near.field, 0.02);
    EXPECT_LT(near.torque, 0.02);
    EXPECT_LT(near.armature, far.armature);
    EXPECT_LT(near.field, far.field);
    EXPECT_LT(near.torque, far.torque);
}

}  // namespace
}  // namespace kzb::physics
