// Functions with the phase symmetry, and stores that hold their compact tables.
//
// With beta the current phase and phi an angle that the mirror turns to -phi, a function of
//   even(beta, phi) = 2 + sin(beta) (1 + cos(phi)) + cos(beta) sin(phi)
// is the same at (180 - beta, -phi); odd(beta, phi) = cos(beta) (1 + cos(phi)) + sin(beta) sin(phi) changes its sign.
// The mirror takes position p to P - (p + b0) - b0 - shift: the electrical angle t = pp p + beta_zero goes to
// -t - pp shift, so phi = t + pp shift / 2 turns to -phi.
#pragma once

#include "synthetic_store.h"

namespace synthetic {

inline double even(double beta, double phi) {
    return 2 + sind(beta) * (1 + cosd(phi)) + cosd(beta) * sind(phi);
}
inline double odd(double beta, double phi) {
    return cosd(beta) * (1 + cosd(phi)) + sind(beta) * sind(phi);
}

struct SymmetricMachine {
    static constexpr double pp = 2;
    static constexpr double beta_zero = 40;  // of an electrical step of 20 degrees a multiple

    static double electrical(double position) { return pp * position + beta_zero; }
    // pp * shift, in electrical degrees.
    static double shift_of_inductance(int row, int column, int windings) {
        if (row == 3 && windings == 4) {
            return pp * column * 120;  // the field's terms are plain mechanical 120 degrees
        }
        return column == 3 ? pp * row * 120 : 240 * row + 60 * column;
    }

    // PMSM: flux [I, beta, position, phase], inductance [.., 3 row + column], torque [beta, position, I].
    static double flux3(const Point& x) { return (1 + x[0]) * even(x[1], electrical(x[2]) + 60 * x[3]); }
    static double inductance3(const Point& x) {
        const int c = static_cast<int>(x[3]);
        return even(x[1], electrical(x[2]) + shift_of_inductance(c / 3, c % 3, 3) / 2);
    }
    static double torque3(const Point& x) { return (1 + x[2]) * odd(x[0], electrical(x[1])); }
    static double loss3(const Point& x) { return (1 + x[0]) * (2 + sind(x[1])) * (1 + x[2]); }
    // Wound field: the field current is axis 3, the position axis 4.
    static double flux4(const Point& x) {
        const double shift = x[4] < 3 ? 120 * x[4] : 0;
        return (1 + x[0] + x[2]) * even(x[1], electrical(x[3]) + shift / 2);
    }
    static double inductance4(const Point& x) {
        const int c = static_cast<int>(x[4]);
        return (1 + x[2]) * even(x[1], electrical(x[3]) + shift_of_inductance(c / 4, c % 4, 4) / 2);
    }
    static double torque4(const Point& x) { return (1 + x[0] + x[2]) * odd(x[1], electrical(x[3])); }
    static double loss4(const Point& x) { return loss3(x) * (1 + x[3]); }
    // Linear: force [beta, position, I]; the electrical length is one period, b0 = beta_zero / pp in its units.
    static constexpr double length = 180;
    static double force(const Point& x) { return torque3(x); }
    static double attraction(const Point& x) { return (1 + x[2]) * even(x[0], electrical(x[1])); }

    std::vector<double> betas = range(-90, 15, 90);
    std::vector<double> positions = range(0, 10, 180);

    void pmsm(KZB_STORE& store) const {
        fill_control(store, 10000, 4, beta_zero);
        kzb::put_int(store, "control", "use_phase_symmetry", 1);
        make_table(store, "current_flux", "flux", {{0, 1}, betas, positions, {0, 1, 2}}, {0, 0, 1, 0}, flux3);
        make_table(store, "harmonic_inductance", "inductance", {{0, 1}, betas, positions, range(0, 1, 8)}, {0, 0, 1, 0},
                   inductance3);
        make_table(store, "harmonic_torque", "torque_ibeta", {betas, positions, {0, 1}}, {0, 1, 0}, torque3);
        for (const char* category : {"hysloss", "eddyloss"}) {
            kzb::put_int(store, category, "numMat", 2);
            kzb::put_int(store, category, "matID1", 7);
            kzb::put_int(store, category, "matID2", 12);
            for (const char* id : {"7", "12"}) {
                make_table(store, category, std::string(category) + id, {{0, 1}, betas, {0, 1}}, {0, 0, 0}, loss3);
            }
        }
    }

    void wound_field(KZB_STORE& store) const {
        fill_control(store, 10007, 4, beta_zero);
        kzb::put_int(store, "control", "use_phase_symmetry", 1);
        kzb::put_int(store, "control", "current_type", 1);
        make_table(store, "current_flux", "flux", {{0, 1}, betas, {0, 1}, positions, range(0, 1, 2)}, {0, 0, 0, 1, 0},
                   flux4);
        make_table(store, "harmonic_inductance", "inductance", {{0, 1}, betas, {0, 1}, positions, range(0, 1, 15)},
                   {0, 0, 0, 1, 0}, inductance4);
        make_table(store, "harmonic_torque", "torque_ibeta", {{0, 1}, betas, {0, 1}, positions}, {0, 0, 0, 1}, torque4);
        kzb::put_int(store, "hysloss", "numMat", 1);
        kzb::put_int(store, "hysloss", "matID1", 3);
        make_table(store, "hysloss", "hysloss3", {{0, 1}, betas, {0, 1}, {0, 1}}, {0, 0, 0, 0}, loss4);
    }

    void linear(KZB_STORE& store) const {
        fill_control(store, 10005, 4, beta_zero);
        kzb::put_int(store, "control", "use_phase_symmetry", 1);
        kzb::put_double(store, "control", "electrical_length", length);
        make_table(store, "distance_force", "force", {betas, positions, {0, 1}}, {0, 1, 0}, force);
        make_table(store, "distance_force", "attractive_force", {betas, positions, {0, 1}}, {0, 1, 0}, attraction);
    }
};

}  // namespace synthetic
