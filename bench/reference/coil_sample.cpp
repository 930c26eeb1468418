#include "bench/reference/coil_sample.h"

#include <cmath>

#include "bench/reference/table_formula.h"

namespace kzb_reference {

namespace {

constexpr double degree = M_PI / 180.0;
constexpr int poles = 16;            // of the reluctance machine; its tables repeat after 45 degrees
constexpr double pole_pitch = 45.0;  // mechanical degrees
constexpr int stepper_poles = 100;   // 7.2 degrees per period
constexpr double stepper_period = 7.2;

Axis counted(int count) {
    Axis axis;
    for (int i = 0; i < count; ++i) {
        axis.push_back(i);
    }
    return axis;
}

void make_reluctance(int phases, Store& store) {
    const auto profile = [](double angle, int k, int n) {
        return std::cos(poles / 2.0 * (angle + k * pole_pitch / n) * degree);
    };
    fill(store, "inductance", "inductance",
         {evenly(0.0, 40.0, 11), evenly(0.0, pole_pitch, 16), counted(phases * phases)}, {0, 1, 0},
         [=](const double* x) {
             const int component = static_cast<int>(x[2]);
             const int row = component % phases;
             const int column = component / phases;
             const double saturation = 1.0 + x[0] / 30.0;
             if (row == column) {
                 return (6e-3 + 4e-3 * profile(x[1], row, phases)) / saturation;
             }
             return -3e-4 * (1.0 + profile(x[1], row, phases) * profile(x[1], column, phases)) / saturation;
         });
    fill(store, "torque", "torque_ibeta", {evenly(0.0, pole_pitch, 16), evenly(-40.0, 40.0, 21)}, {1, 0},
         [=](const double* x) {
             return -0.5 * x[1] * x[1] * 4e-3 * poles / 2.0 * std::sin(poles / 2.0 * x[0] * degree) /
                    (1.0 + std::fabs(x[1]) / 30.0);
         });
}

void make_solenoid(Store& store) {
    const Axis positions = evenly(0.0, 0.01, 21);
    fill(store, "inductance", "inductance", {evenly(0.0, 10.0, 11), positions, counted(1)}, {0, 0, 0},
         [](const double* x) { return 0.05 / (1.0 + x[1] / 0.004) / (1.0 + x[0] / 8.0); });
    fill(store, "distance_flux", "flux", {positions, counted(1)}, {0, 0},
         [](const double* x) { return 0.2 * (1.0 - x[0] / 0.03); });
    fill(store, "distance_force", "force", {positions, evenly(-10.0, 10.0, 21)}, {0, 0},
         [](const double* x) { return (20.0 + 5.0 * x[1] + x[1] * x[1]) / (1.0 + x[0] / 0.004); });
}

void make_stepper(Store& store) {
    fill(store, "mag_flux", "flux", {evenly(0.0, stepper_period, 16), counted(4)}, {1, 0}, [](const double* x) {
        const double theta = stepper_poles / 2.0 * x[0] * degree - (x[1] < 2.0 ? 0.0 : M_PI / 2.0);
        return (static_cast<int>(x[1]) % 2 == 0 ? 4e-3 : -4e-3) * std::cos(theta);
    });
    fill(store, "inductance", "inductance", {evenly(0.0, 5.0, 11), evenly(0.0, stepper_period, 16), counted(16)},
         {0, 1, 0}, [](const double* x) {
             const int row = static_cast<int>(x[2]) % 4;
             const int column = static_cast<int>(x[2]) / 4;
             const double saturation = (1.0 + x[0] / 6.0) * (1.0 + 0.02 * std::cos(stepper_poles * x[1] * degree));
             if (row == column) {
                 return 3e-3 / saturation;
             }
             return row / 2 == column / 2 ? -2.4e-3 / saturation : 0.0;
         });
    fill(store, "torque", "torque_ibeta",
         {evenly(-5.0, 5.0, 11), evenly(0.0, stepper_period, 16), evenly(-5.0, 5.0, 11)}, {0, 1, 0},
         [](const double* x) {
             const double theta = stepper_poles / 2.0 * x[1] * degree;
             return stepper_poles / 2.0 * 4e-3 * (-x[0] * std::sin(theta) + x[2] * std::cos(theta));
         });
}

}  // namespace

void make_coil_sample(int motor_type, Store& store) {
    kzb_put_double("version", "version", 2.0, store);
    kzb_put_int("control", "motor_type", motor_type, store);
    kzb_put_int("control", "number_of_poles", motor_type == 10003 ? stepper_poles : poles, store);
    kzb_put_int("control", "number_of_tables", 3, store);
    kzb_put_double("control", "turns_in_coil", 60.0, store);
    kzb_put_double("control", "length", 0.05, store);
    kzb_put_double("control", "diameter", 0.1, store);
    kzb_put_double("parameter", "RU", 0.3, store);
    kzb_put_double("parameter", "RA", 4.0, store);
    kzb_put_double("parameter", "RA+", 1.0, store);
    kzb_put_double("parameter", "DispLimitMin", 0.0, store);
    kzb_put_double("parameter", "DispLimitMax", 0.01, store);
    kzb_put_double("information", "weight", 2.0, store);
    kzb_put_string("information", "title", "sample machine", store);
    if (motor_type == 10003) {
        make_stepper(store);
    } else if (motor_type == 10004) {
        make_solenoid(store);
    } else {
        make_reluctance(motor_type - 10007, store);
    }
}

}  // namespace kzb_reference
