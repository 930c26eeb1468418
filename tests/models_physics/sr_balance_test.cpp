// Power balance of the switched reluctance model over one rotor pole pitch at constant speed.
//
//   psi_k = L(theta_k) i / (1 + |i| / i_s),  theta_k = theta + k * 360 / (poles n),  no coupling between phases
//   W'    = L(theta_k) i_s^2 (|i| / i_s - ln(1 + |i| / i_s))                         coenergy
//   T_k   = dW' / dtheta,  W = psi i - W'
//
//   sum of v i dt = sum of R i^2 dt + sum of T omega dt + change of W
//
// The machine has no iron loss. The step is of first order; at 2000 steps a period the sums stay far within 1 %.
#include <gtest/gtest.h>

#include <array>
#include <cmath>

#include "models/coil_files.h"

namespace {

using namespace kzb_test;

constexpr int poles = 8;
constexpr double pitch = 360.0 / poles;  // degrees
constexpr double saturation = 8.0;       // A
constexpr double resistance = 0.5;       // Ohm, of the file
constexpr double omega = 100.0;          // mechanical rad/s

double inductance_at(double angle_deg) {
    return 8e-3 + 5e-3 * std::cos(poles * angle_deg * M_PI / 180.0);
}
double slope_at(double angle_deg) {
    return -5e-3 * poles * std::sin(poles * angle_deg * M_PI / 180.0);
}
double coenergy_shape(double i) {
    const double a = std::fabs(i) / saturation;
    return saturation * saturation * (a - std::log1p(a));
}

void saturating_machine(KZB_STORE& store, int phases) {
    const auto n = static_cast<std::size_t>(phases);
    const Axis positions = nodes(0.0, pitch, 361, true);
    kzb::put_int(store, "control", "motor_type", 10007 + phases);
    kzb::put_int(store, "control", "number_of_poles", poles);
    kzb::put_double(store, "parameter", "RU", resistance);
    table(store, "inductance", "inductance", {nodes(0.0, 40.0, 161), positions, coil_axis(phases * phases)},
          [n](const std::vector<double>& x) {
              const std::size_t k = row_of(x[2], n);
              const double shifted = x[1] + static_cast<double>(k) * pitch / static_cast<double>(n);
              return k == column_of(x[2], n) ? inductance_at(shifted) / (1.0 + x[0] / saturation) : 0.0;
          });
    table(store, "torque", "torque_ibeta", {positions, nodes(-40.0, 40.0, 321)},
          [](const std::vector<double>& x) { return slope_at(x[0]) * coenergy_shape(x[1]); });
}

struct Energies {
    double input = 0.0;
    double copper = 0.0;
    double mechanical = 0.0;
    double stored = 0.0;  // at an instant
};

double stored_energy(const kzb::Calc_Eq_sr& machine, int phases, double angle_deg) {
    double sum = 0.0;
    for (int k = 0; k < phases; ++k) {
        const double i = machine.current_output(k + 1);
        const double l = inductance_at(angle_deg + k * pitch / phases);
        sum += l * i * i / (1.0 + std::fabs(i) / saturation) - l * coenergy_shape(i);
    }
    return sum;
}

TEST(sr_balance, input_is_copper_loss_and_mechanical_work_over_a_pole_pitch) {
    for (const int phases : {3, 4, 5}) {
        KZB_STORE store;
        saturating_machine(store, phases);
        kzb::Calc_Eq_sr machine;
        machine.bind(store, phases);
        constexpr int steps = 2000;  // of a period
        constexpr int settling = 12;
        const double period = 2.0 * M_PI / poles / omega;
        const double dt = period / steps;
        Energies sum;
        double stored_before = 0.0;
        std::array<double, 5> signals{};
        signals.fill(1.0);
        for (int s = 1; s <= (settling + 1) * steps; ++s) {
            const double time = s * dt;
            const double angle_deg = omega * time * 180.0 / M_PI;
            std::array<double, 5> v{};
            for (int k = 0; k < phases; ++k) {
                // leads the inductance, so that the machine drives
                v[static_cast<std::size_t>(k)] =
                    4.0 + 12.0 * std::cos(poles * (angle_deg + k * pitch / phases) * M_PI / 180.0 + 2.5);
            }
            machine.step(v.data(), omega * time, time, signals.data());
            machine.accept();
            if (s == settling * steps) {
                stored_before = stored_energy(machine, phases, angle_deg);
            }
            if (s > settling * steps) {
                for (int k = 0; k < phases; ++k) {
                    const double i = machine.current_output(k + 1);
                    sum.input += v[static_cast<std::size_t>(k)] * i * dt;
                    sum.copper += resistance * i * i * dt;
                }
                sum.mechanical += machine.torque() * omega * dt;
                sum.stored = stored_energy(machine, phases, angle_deg) - stored_before;
            }
        }
        EXPECT_GT(sum.mechanical, 0.1 * sum.input) << phases;  // it is a motor, and not one of copper loss alone
        EXPECT_NEAR(sum.copper + sum.mechanical + sum.stored, sum.input, 0.01 * sum.input) << phases;
    }
}

}  // namespace
