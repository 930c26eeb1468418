// The circuit of a generic model as a netlist: terminals, and components between two of them.
#pragma once

#include <string>

#include "kzb/json.h"
#include "store/store.h"

namespace kzb::tool {

inline constexpr int generic_motor_type = 10008;

// "terminals", "elements", "motions" and "faults" of the circuit.
Json netlist_of(const KZB_STORE& store);
std::string netlist_text(const Json& netlist);

}  // namespace kzb::tool
