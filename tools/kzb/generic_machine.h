// The ports of a generic model by name, as its file gives them, for scenarios and columns.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/store.h"

namespace kzb::tool {

// Names of a group, by port number less one; one without a name, or with that of another, is "coil1" and so on.
struct PortNames {
    std::vector<std::string> names;
    // Port number from 1 by name or by number, "2".
    std::optional<int> port(std::string_view name_or_number) const;
};

struct GenericMachine {
    PortNames sources;
    PortNames coils;
    PortNames resistors;
    PortNames inductors;
    PortNames capacitors;
    PortNames probes;
    PortNames motions;           // by id
    PortNames outputs;           // user-specified values by output port
    std::vector<bool> rotation;  // of each motion
    bool has_force = false;
    bool has_iron_loss = false;
};

GenericMachine read_generic_machine(const KZB_STORE& store);

// A name as part of a column: letters, digits, _ and bytes of UTF-8, all else becomes _.
std::string column_part(std::string_view name);

}  // namespace kzb::tool
