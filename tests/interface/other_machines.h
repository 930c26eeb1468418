// Files of the machines beside the permanent-magnet ones: constant inductances, and torque, force and flux that are
// simple functions of current and position, so that a test can say what comes out.
#pragma once

#include "interface/model_file.h"

namespace kzb_test {

inline const Point signed_currents{-1000.0, 1000.0};
inline const Point amplitudes{0.0, 1000.0};

inline Point components(int count) {
    return every(1.0, 0.0, count - 1.0);
}

// Switched reluctance machine of 2 poles; torque per phase is 0.3 N*m per A and independent of the angle.
inline void reluctance_machine(ModelFile& file, int phases, double self, double mutual, double resistance) {
    const Point angles{-3600.0, 3600.0};
    file.integer("control", "motor_type", 10007 + phases)
        .integer("control", "number_of_poles", 2)
        .number("parameter", "RU", resistance)
        .table("inductance", "inductance", {amplitudes, angles, components(phases * phases)},
               [=](const Point& x) { return static_cast<int>(x[2]) % (phases + 1) == 0 ? self : mutual; })
        .table("torque", "torque_ibeta", {angles, signed_currents}, [](const Point& x) { return 0.3 * x[1]; });
}

// Solenoid: flux 10 times `flux` per m of displacement, force 2 N per A at every position.
inline void solenoid_machine(ModelFile& file, double inductance, double flux, double resistance) {
    const Point positions{-1000.0, 1000.0};
    file.integer("control", "motor_type", 10004)
        .number("parameter", "RA", resistance)
        .number("parameter", "DispLimitMax", 0.25)
        .number("parameter", "DispLimitMin", -0.125)
        .table("inductance", "inductance", {amplitudes, positions, {0.0, 1.0}}, constant(inductance))
        .table("distance_flux", "flux", {positions, {0.0, 1.0}}, [=](const Point& x) { return 10.0 * flux * x[0]; })
        .table("distance_force", "force", {positions, signed_currents}, [](const Point& x) { return 2.0 * x[1]; });
}

// Stepping motor of 2 poles: flux of coil k is flux * (k + 1) * angle in degrees, torque i_A + 10 i_B.
inline void stepping_machine(ModelFile& file, double self, double mutual, double flux, double resistance) {
    const Point angles{-3600.0, 3600.0};
    file.integer("control", "motor_type", 10003)
        .integer("control", "number_of_poles", 2)
        .number("parameter", "RA+", resistance)
        .table("inductance", "inductance", {amplitudes, angles, components(16)},
               [=](const Point& x) { return static_cast<int>(x[2]) % 5 == 0 ? self : mutual; })
        .table("mag_flux", "flux", {angles, components(4)}, [=](const Point& x) { return flux * (x[1] + 1.0) * x[0]; })
        .table("torque", "torque_ibeta", {signed_currents, angles, signed_currents},
               [](const Point& x) { return x[0] + 10.0 * x[2]; });
}

// Induction machine of 4 poles as an equivalent circuit at 50 Hz: L11 = L22 = 0.11 H, M = 0.1 H.
inline void induction_constants(ModelFile& file) {
    const double omega = 2.0 * std::numbers::pi * 50.0;
    file.integer("control", "motor_type", 10006)
        .integer("control", "number_of_poles", 4)
        .integer("control", "Winding_Pattern_Flag", 0)
        .number("parameter", "RU", 0.0)
        .number("information", "rated_freqency", 50.0)
        .number("InductionParam", "R1", 0.5)
        .number("InductionParam", "R2", 0.4)
        .number("InductionParam", "X1", 0.01 * omega)
        .number("InductionParam", "X2", 0.01 * omega)
        .number("InductionParam", "b0", 1.0 / (0.1 * omega))
        .number("InductionParam", "g0", 0.0);
}

// The same machine as tables over slip frequency and current.
inline void induction_tables(ModelFile& file) {
    induction_constants(file);
    const char* const category = "InductionParam_HigherAccuracy";
    const std::vector<Point> axes{{-100.0, 100.0}, {-100.0, 100.0}};
    file.table(category, "R2_table", axes, constant(0.4))
        .table(category, "L11_table", axes, constant(0.11))
        .table(category, "L22_table", axes, constant(0.11))
        .table(category, "M12_table", axes, constant(0.1))
        .table(category, "M21_table", axes, constant(0.1));
}

// Wound-field machine of 2 poles over amplitude, phase, field current and angle. Armature flux 0, field flux `field`
// times its current; torque 1.5 N*m per A of field current.
inline void wound_field_machine(ModelFile& file, double self, double mutual, double field, double resistance,
                                double field_resistance) {
    const Point fields{0.0, 1000.0};
    const Point angles{-3600.0, 3600.0};
    file.integer("control", "motor_type", 10007)
        .integer("control", "number_of_poles", 2)
        .integer("control", "current_type", 1)
        .integer("control", "Winding_Pattern_Flag", 0)
        .number("control", "beta_zero", 0.0)
        .number("parameter", "RU", resistance)
        .number("parameter", "RF", field_resistance)
        .table("current_flux", "flux", {amplitudes, betas, fields, angles, components(4)},
               [=](const Point& x) { return x[4] == 3.0 ? field * x[2] : 0.0; })
        .table("harmonic_inductance", "inductance", {amplitudes, betas, fields, angles, components(16)},
               [=](const Point& x) {
                   const int t = static_cast<int>(x[4]);
                   return t == 15 ? field : t % 5 == 0 ? self : mutual;
               })
        .table("harmonic_torque", "torque_ibeta", {amplitudes, betas, fields, angles},
               [](const Point& x) { return 1.5 * x[2]; });
}

}  // namespace kzb_test
