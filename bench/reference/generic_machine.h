// Generic models for the benchmarks and their tests: records of lists in a plain store, and the machine of three coils.
//
// The machine: three sources feed coils 1, 2, 3, whose other ends meet in a free node; one rotating part.
//
//   i_k = -A sin(phase + delta_k + theta),  delta_k = 120 (k - 1) degrees,  theta = pole pairs * position
//   psi_k = L i_k / (1 + |i_k| / i_s) - M (sum of the others) + psi_m cos(delta_k + theta)
//   torque = -pole pairs psi_m (sum of i_k sin(delta_k + theta))
//
// Table axes form: axes i_1, i_2, i_3, position. Coil set form: one three-phase set, axes A, phase, position.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "bench/reference/generic_subcategory.h"

namespace kzb_reference {

using FieldValue = std::variant<int, double, std::string>;
struct Field {
    const char* key;
    FieldValue value;
};

// Writes fields into a category, which is created when absent.
void put_fields(const std::string& category, const std::vector<Field>& fields, Store& store);
// Appends a record to a list of two path elements, or of three at `outer`; its place.
int add_record(const std::string& path, const std::vector<Field>& fields, Store& store, int outer = 0);

struct GenericMachine {
    bool table_axes_form = true;
    int pole_pairs = 2;
    int current_nodes = 7;
    int position_nodes = 25;
    double resistance = 0.5;  // Ohm
};

void make_generic_machine(const GenericMachine& machine, Store& store);

}  // namespace kzb_reference
