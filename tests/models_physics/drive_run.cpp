#include "models_physics/drive_run.h"

#include <array>
#include <cmath>
#include <stdexcept>

#include "KZBCalculator/kzb_store.h"
#include "KZBCalculator/kzbcalc.h"
#include "interface/kzbcalc_handle.h"

namespace kzb::physics {

namespace {

constexpr int below_range = 80001;
constexpr int above_range = 80002;
constexpr double degree = 3.14159265358979323846 / 180.0;

Dq rotated(const Dq& v, double angle_deg) {
    const double c = std::cos(angle_deg * degree);
    const double s = std::sin(angle_deg * degree);
    return {v.d * c - v.q * s, v.d * s + v.q * c};
}

class Integration {
  public:
    Integration(const MachineTables& machine, const Drive& drive) : machine_(machine), drive_(drive) {}

    void start(double time) {
        current_ = drive_.start_current;
        psi_ = rotated(machine_.flux(current_, drive_.theta(time)), drive_.theta(time));
    }
    void advance(double t, double h) {
        const Dq k1 = slope(t, psi_);
        const Dq k2 = slope(t + 0.5 * h, moved(k1, 0.5 * h));
        const Dq k3 = slope(t + 0.5 * h, moved(k2, 0.5 * h));
        const Dq k4 = slope(t + h, moved(k3, h));
        psi_.d += h / 6.0 * (k1.d + 2.0 * k2.d + 2.0 * k3.d + k4.d);
        psi_.q += h / 6.0 * (k1.q + 2.0 * k2.q + 2.0 * k3.q + k4.q);
    }
    Sample sample(double t) {
        const double theta = drive_.theta(t);
        const Dq i = current_at(t, psi_);
        Sample s{t, {}, machine_.torque(i, theta)};
        for (int k = 0; k < 3; ++k) {
            s.current[k] = winding(i, theta, k);
        }
        return s;
    }

  private:
    Dq moved(const Dq& k, double h) const { return {psi_.d + h * k.d, psi_.q + h * k.q}; }
    Dq current_at(double t, const Dq& psi) {
        const double theta = drive_.theta(t);
        current_ = machine_.current(rotated(psi, -theta), theta, current_);
        return current_;
    }
    Dq slope(double t, const Dq& psi) {
        const double theta = drive_.theta(t);
        const Dq i = rotated(current_at(t, psi), theta);
        const Dq v = rotated(drive_.voltage, theta);
        return {v.d - drive_.resistance * i.d, v.q - drive_.resistance * i.q};
    }

    const MachineTables& machine_;
    const Drive& drive_;
    Dq psi_;
    Dq current_;
};

}  // namespace

Recording run_reference(const MachineTables& machine, const Drive& drive, double start_time, double dt, int substeps) {
    Integration integration(machine, drive);
    integration.start(start_time);
    Recording run;
    const long count = std::lround((drive.end_time - start_time) / dt);
    for (long n = 0; n <= count; ++n) {
        const double t = start_time + static_cast<double>(n) * dt;
        run.samples.push_back(integration.sample(t));
        for (int part = 0; part < substeps; ++part) {
            integration.advance(t + dt * part / substeps, dt / substeps);
        }
    }
    run.left_table = machine.left();
    return run;
}

Recording run_model(const std::string& path, const Drive& drive, double dt) {
    KZB_CALC* calc = nullptr;
    if (kzbcalcInitialize(path.c_str(), 1, &calc) != 0) {
        kzbcalcTerminate(calc);
        throw std::runtime_error("model not opened: " + path);
    }
    kzbcalcSetData(calc);
    Recording run;
    for (int k = 0; k < 3; ++k) {
        // The second sample is the first whose current counts: the step before a solve only takes in the start.
        kzbcalcSetInitialCurrent(k + 1, winding(drive.start_current, drive.theta(dt), k), calc);
    }
    KZB_STORE* store = calc->store.get();
    const long count = std::lround(drive.end_time / dt);
    for (long n = 0; n <= count; ++n) {
        const double t = static_cast<double>(n) * dt;
        kzbcalcSetTime(t, calc);
        kzbcalcSetDisplacement(drive.theta(t) / drive.pole_pairs, calc);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetVoltage(k + 1, winding(drive.voltage, drive.theta(t), k), calc);
        }
        kzb_reset_error(store);
        kzbcalcExecute(calc);
        const int error = kzb_has_error(store);
        run.left_table = run.left_table || error == below_range || error == above_range;
        Sample s{t, {}, kzbcalcGetTorque(calc)};
        for (int k = 0; k < 3; ++k) {
            s.current[k] = kzbcalcGetCurrent(k + 1, calc);
        }
        run.samples.push_back(s);
        kzbcalcUpdate(calc);
    }
    kzbcalcTerminate(calc);
    return run;
}

}  // namespace kzb::physics
