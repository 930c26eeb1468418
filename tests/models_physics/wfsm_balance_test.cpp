// Power balance of the wound-field model over whole periods at constant speed:
//
//   integral of v i dt = integral of (R i^2 + iron loss + torque w) dt + change of the stored energy,  W = psi i / 2
//
// The machine is linear, its tables exact in the currents and sampled at their nodes, so that nothing but the step
// itself can unbalance it. The step makes v = R i + (psi - psi_previous) / dt at its end; taken with the mean of the
// currents at both ends, the work of each step is that of the straight way between them, and the balance closes to the
// second order of the step: (4 degrees)^2 / 12, 4e-4.
//
// With iron loss the balance has kept asymmetries. The solve takes the terminal currents for those of the coils: flux
// and energy are theirs, the torque alone is that of the coil currents behind the loss. With U and E the voltages
// behind the resistance and of the field, d the angle between them, a loss current in phase with U takes (E / U) cos d
// of the loss from the torque, not all of it; that is less than 1 % of the input here. And in a delta the loss current
// is found from the terminals' voltages, smaller than the coils' by sqrt(3) and 30 degrees away: it takes sqrt(3) (E /
// U) cos(30 - d) of the loss.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "models/wfsm_files.h"

namespace {

using namespace kzb_test;

constexpr double rpm = 1500.0;
constexpr double omega = rpm / 60.0 * 2.0 * pi;  // mechanical rad/s
constexpr int steps_of_a_turn = 180;
constexpr double step_angle = 2.0 * pi / steps_of_a_turn;
constexpr double step_time = step_angle / omega;
constexpr double field_ampere = 5.0;
constexpr double phase_ampere = 10.0;  // peak, in phase with the field's voltage
constexpr double iron_watt = 60.0;     // eddy and hysteresis

struct Balance {
    double input = 0.0;  // J
    double copper = 0.0;
    double mechanical = 0.0;
    double iron = 0.0;
    double stored = 0.0;
    double missing() const { return input - copper - mechanical - iron - stored; }
};

// Voltages of the machine in its steady state; none of what follows needs the state to be exactly that.
Four voltages_at(const WoundField& w, double position) {
    const double electrical = omega * w.poles * 0.5;
    const double l = w.l + 1.5 * w.m;
    const double q = std::sqrt(1.5) * phase_ampere;
    const double v_d = -electrical * l * q;
    const double v_q = w.resistance * q + electrical * std::sqrt(1.5) * w.mf * field_ampere;
    const auto v = phases_of(v_d, v_q, position * w.poles * 0.5);
    const double v_f = w.field_resistance * field_ampere;
    if (w.connection == 0) {
        return {v[0], v[1], v[2], v_f};
    }
    return {0.0, -v[0], v[2], v_f};  // terminals whose differences are the coils' voltages
}

// Voltages over the coils u, v, w, f.
Four coil_voltages(const WoundField& w, const Four& terminal) {
    if (w.connection == 0) {
        return terminal;
    }
    return {terminal[0] - terminal[1], terminal[1] - terminal[2], terminal[2] - terminal[0], terminal[3]};
}

double stored_energy(const Calc_Eq_wfsm& model) {
    double energy = 0.0;
    for (int k = 1; k <= 4; ++k) {
        energy += 0.5 * model.coil_flux(k) * model.terminal_current(k);
    }
    return energy;
}

void put_losses(KZB_STORE& store) {
    const std::vector<Axis> axes = {nodes(0.0, 6000.0, 3), nodes(-100.0, 100.0, 3), nodes(-100.0, 100.0, 3),
                                    nodes(0.0, 20.0, 3)};
    for (const char* category : {"eddyloss", "hysloss"}) {
        kzb::put_int(store, category, "numMat", 1);
        kzb::put_int(store, category, "matID1", 1);
        constant(store, category, category + std::string("1"), axes, 0.5 * iron_watt);
    }
}

// One mechanical turn, after two to settle.
Balance balance_of(const WoundField& w, bool iron_loss) {
    KZB_STORE store;
    linear_file(store, w);
    put_losses(store);
    Calc_Eq_wfsm model;
    model.bind(store);
    model.set_loss_mode(iron_loss ? 1 : 0, 0);
    const auto start = phases_of(0.0, std::sqrt(1.5) * phase_ampere, 0.0);
    for (int k = 1; k <= 3; ++k) {
        model.set_initial_current(k, start[static_cast<std::size_t>(k - 1)]);
    }
    model.set_initial_current(4, field_ampere);
    Balance balance;
    Four current{};
    double torque = 0.0;
    for (int n = 0; n <= 3 * steps_of_a_turn; ++n) {
        const Four before = current;
        const double torque_before = torque;
        if (n == 2 * steps_of_a_turn + 1) {
            balance.stored = -stored_energy(model);
        }
        const Four v = voltages_at(w, n * step_angle);
        sample(model, v, n * step_angle, n * step_time);
        for (int k = 1; k <= 4; ++k) {
            current[static_cast<std::size_t>(k - 1)] = model.terminal_current(k);
        }
        torque = model.torque();
        if (n <= 2 * steps_of_a_turn) {
            continue;
        }
        const Four coil = coil_voltages(w, v);
        double neutral = 0.0;  // no current flows into it
        if (w.connection == 0) {
            neutral = (v[0] + v[1] + v[2]) / 3.0;
        }
        for (std::size_t k = 0; k < 4; ++k) {
            const double mean = 0.5 * (before[k] + current[k]);
            const double r = k == 3 ? w.field_resistance : w.resistance;
            balance.input += (coil[k] - (k < 3 ? neutral : 0.0)) * mean * step_time;
            balance.copper += r * current[k] * mean * step_time;
        }
        balance.mechanical += 0.5 * (torque_before + torque) * step_angle;
        balance.iron += (model.eddy_loss() + model.hysteresis_loss()) * step_time;
    }
    balance.stored += stored_energy(model);
    return balance;
}

TEST(wfsm_balance, input_is_copper_loss_and_mechanical_work_and_stored_energy) {
    for (const int connection : {0, 1}) {
        const Balance balance = balance_of({.connection = connection, .positions = steps_of_a_turn + 1}, false);
        // 1.5 * 10 A * (78.5 V + 5 V) and 50 W of the field for 40 ms: 52 J; the step lags by half its angle, which is
        // worth a tenth of the current.
        EXPECT_NEAR(balance.input, 52.0, 8.0);
        EXPECT_EQ(balance.iron, 0.0);
        EXPECT_LT(std::fabs(balance.missing()), 0.001 * balance.input) << connection;
    }
}

TEST(wfsm_balance, iron_loss_is_taken_from_the_torque_as_far_as_the_loss_current_goes) {
    for (const int connection : {0, 1}) {
        const WoundField machine{.connection = connection, .positions = steps_of_a_turn + 1};
        const Balance balance = balance_of(machine, true);
        EXPECT_NEAR(balance.iron, iron_watt * 0.04, 1e-9);
        EXPECT_GT(balance.iron, 0.04 * balance.input);
        if (connection == 0) {
            EXPECT_LT(std::fabs(balance.missing()), 0.01 * balance.input);
        }
        const double e = omega * 2.0 * machine.mf * field_ampere;
        const double x = omega * 2.0 * (machine.l + 1.5 * machine.m) * phase_ampere;
        const double d = std::atan2(x, e);
        const double ratio = e / std::hypot(e, x);
        const double taken = connection == 0 ? ratio * std::cos(d) : std::sqrt(3.0) * ratio * std::cos(pi / 6.0 - d);
        // The current is not exactly the one of these angles: 2 % of the loss.
        EXPECT_NEAR(balance.missing() / balance.iron, taken - 1.0, 0.02) << connection;
    }
}

}  // namespace
