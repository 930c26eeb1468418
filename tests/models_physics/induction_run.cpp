#include "models_physics/induction_run.h"

#include <cmath>
#include <stdexcept>

#include "KZBCalculator/kzbcalc.h"

namespace kzb::physics {

namespace {

constexpr double two_pi = 6.283185307179586476925;
constexpr double third = two_pi / 3.0;

double phase_voltage(const InductionRun& run, double t, int phase) {
    return run.voltage * std::cos(two_pi * run.frequency * t - third * phase);
}

double load_at(const InductionRun& run, double t) {
    return t >= run.load_time ? run.load : 0.0;
}

struct State {
    Complex psi_s;
    Complex psi_r;
    double speed;
};

State moved(const State& x, const State& k, double h) {
    return {x.psi_s + h * k.psi_s, x.psi_r + h * k.psi_r, x.speed + h * k.speed};
}

double torque_of(const InductionMachine& m, const State& x, Complex i_s) {
    return 1.5 * m.pole_pairs * (i_s * std::conj(x.psi_s)).imag();
}

State slope(const InductionMachine& m, const InductionRun& run, double t, const State& x) {
    Complex i_s;
    Complex i_r;
    m.currents(x.psi_s, x.psi_r, i_s, i_r);
    const Complex v = std::polar(run.voltage, two_pi * run.frequency * t);
    return {v - m.r_s * i_s, -m.r_r * i_r + Complex(0.0, m.pole_pairs * x.speed) * x.psi_r,
            (torque_of(m, x, i_s) - load_at(run, t)) / run.inertia};
}

}  // namespace

std::vector<InductionSample> run_induction_model(const std::string& path, const InductionRun& run, double pole_pairs,
                                                 double dt, int keep_every, bool with_slip) {
    KZB_CALC* calc = nullptr;
    if (kzbcalcInitialize(path.c_str(), 1, &calc) != 0) {
        kzbcalcTerminate(calc);
        throw std::runtime_error("model not opened: " + path);
    }
    kzbcalcSetData(calc);
    kzbcalcSetStepSize(dt, calc);
    std::vector<InductionSample> samples;
    double speed = run.start_speed;
    double angle = 0.0;
    const long count = std::lround(run.end_time / dt);
    for (long n = 0; n <= count; ++n) {
        const double t = static_cast<double>(n) * dt;
        kzbcalcSetTime(t, calc);
        kzbcalcSetDisplacement(angle * 360.0 / two_pi, calc);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetVoltage(k + 1, phase_voltage(run, t, k), calc);
            kzbcalcSetSignal(k + 1, 1, calc);
        }
        if (with_slip) {
            kzbcalcSetSlipFrequency(run.frequency - pole_pairs * speed / two_pi, calc);
        }
        kzbcalcExecute(calc);
        const double torque = kzbcalcGetTorque(calc);
        if (n % keep_every == 0) {
            samples.push_back({t,
                               {kzbcalcGetCurrent(1, calc), kzbcalcGetCurrent(2, calc), kzbcalcGetCurrent(3, calc)},
                               torque,
                               speed});
        }
        kzbcalcUpdate(calc);
        const double next = speed + dt * (torque - load_at(run, t)) / run.inertia;
        angle += 0.5 * dt * (speed + next);
        speed = next;
    }
    kzbcalcTerminate(calc);
    return samples;
}

std::vector<InductionSample> run_induction_reference(const InductionMachine& machine, const InductionRun& run,
                                                     double dt, int keep_every) {
    std::vector<InductionSample> samples;
    State x{{}, {}, run.start_speed};
    const long count = std::lround(run.end_time / dt);
    for (long n = 0; n <= count; ++n) {
        const double t = static_cast<double>(n) * dt;
        if (n % keep_every == 0) {
            Complex i_s;
            Complex i_r;
            machine.currents(x.psi_s, x.psi_r, i_s, i_r);
            InductionSample s{t, {}, torque_of(machine, x, i_s), x.speed};
            for (int k = 0; k < 3; ++k) {
                s.current[k] = (i_s * std::polar(1.0, -third * k)).real();
            }
            samples.push_back(s);
        }
        const State k1 = slope(machine, run, t, x);
        const State k2 = slope(machine, run, t + 0.5 * dt, moved(x, k1, 0.5 * dt));
        const State k3 = slope(machine, run, t + 0.5 * dt, moved(x, k2, 0.5 * dt));
        const State k4 = slope(machine, run, t + dt, moved(x, k3, dt));
        x = moved(x, k1, dt / 6.0);
        x = moved(x, k2, dt / 3.0);
        x = moved(x, k3, dt / 3.0);
        x = moved(x, k4, dt / 6.0);
    }
    return samples;
}

}  // namespace kzb::physics
