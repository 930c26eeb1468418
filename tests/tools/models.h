// Small KZB files for the tests, made through the store's calls.
#pragma once

#include <functional>
#include <numbers>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"

namespace kzb::test {

inline constexpr double radians_of_degree = std::numbers::pi / 180.0;

// Writes the binary file that `fill` puts together.
void write_model(const std::string& path, const std::function<void(KZB_STORE*)>& fill);

// A table over the given axes; value(point) at every node.
void put_table(KZB_STORE* store, const char* category, const char* key, const std::vector<std::vector<double>>& axes,
               const std::function<double(const std::vector<double>&)>& value);

// A three-phase machine of application LdLq whose inductances do not depend on the current.
struct ConstantMachine {
    double resistance = 0.5;
    double d_inductance = 2e-3;
    double q_inductance = 2e-3;
    double d_flux = 0.0;  // amplitude in the two-axis frame, sqrt(3/2) times the phase amplitude
    int poles = 4;
    double table_end = 1e4;  // last node of the current axis, A
    int motor_type = 10000;
};
void fill_constant_machine(KZB_STORE* store, const ConstantMachine& machine);
void write_constant_machine(const std::string& path, const ConstantMachine& machine = {});

}  // namespace kzb::test
