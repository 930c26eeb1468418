// Torque of a three-phase machine over its currents, the mean over the positions, formed in two ways: from its torque
// table and from flux linkage and current,
//
//   T = k (psi_d i_q - psi_q i_d)
//
// in the power-invariant frame of the rotor, k = pole pairs of a rotary machine, 2 pi / electrical length of a linear
// one. What this leaves out, the change of coenergy with position at constant d and q current, has a mean of zero over
// the period of the position axis.
#pragma once

#include <cstddef>
#include <numbers>
#include <optional>
#include <vector>

#include "kzb/dq_current.h"
#include "store/store.h"

namespace kzb::tool {

// Between two phases, electrical.
inline constexpr double third_of_turn = 2.0 * std::numbers::pi / 3.0;

// Angle and torque of the machine: theta_e [rad] = electrical_per_unit * table position + offset.
struct TravelScale {
    double electrical_per_unit = 0.0;
    double offset = 0.0;
    double torque_factor = 0.0;
};
// Nothing when the file tells no poles or no electrical length.
std::optional<TravelScale> travel_of(const KZB_STORE& store, int motor_type);

// Where x lies on rising nodes: between `lo` and `hi`, at the part `t` of the way. Nothing outside the nodes of an axis
// that is not cyclic; a cyclic axis takes any finite x.
struct Spot {
    std::size_t lo = 0;
    std::size_t hi = 0;
    double t = 0.0;
};
std::optional<Spot> spot_on(const std::vector<double>& nodes, bool cyclic, double x);

// Values over current amplitude (or d current), current phase (or q current) and field current, the last axis fastest;
// a machine without field coil has one field node.
struct CurrentMap {
    std::vector<double> a;
    std::vector<double> b;
    std::vector<double> field{0.0};
    bool polar = true;  // a and b are amplitude and phase in degrees
    bool b_cyclic = false;
    std::vector<double> values;

    double& at(std::size_t i, std::size_t j, std::size_t n) { return values[(i * b.size() + j) * field.size() + n]; }
    double at(std::size_t i, std::size_t j, std::size_t n) const {
        return values[(i * b.size() + j) * field.size() + n];
    }
    // Linear between the nodes; nothing outside them.
    std::optional<double> interpolated(double a_value, double b_value, double field_value) const;
};

// In the power-invariant frame; `a` and `b` as in a CurrentMap.
DqCurrent dq_current(double a, double b, bool polar);

// Trapezoid weights of the mean over the nodes; {1} for one node.
std::vector<double> mean_weights(const std::vector<double>& nodes);

// Nodes of one axis, from 0.
std::vector<double> nodes_of(const KZB_TABLE& table, std::size_t axis);

// The axes of a table, from 0, by their meaning; no field axis where `field` is -1.
struct MapAxes {
    int a;
    int b;
    int position;
    int field = -1;
};
// The mean over the positions of a torque table.
CurrentMap mean_of_table(const KZB_TABLE& table, const MapAxes& axes, bool polar);
// The same from a table of flux linkages whose last axis counts the phases.
CurrentMap mean_of_flux(const KZB_TABLE& flux, const MapAxes& axes, bool polar, const TravelScale& travel);

}  // namespace kzb::tool
