// What the command line needs to know of a motor type to drive it: phases, kind of motion, torque or force.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kzb::tool {

struct Machine {
    int motor_type = 0;
    bool linear = false;  // displacement in metres, else in degrees
    std::vector<std::string> phases;

    // Phase number from 1.
    std::optional<int> phase(std::string_view name) const;
};

// Failure(exit_file) for a motor type that `kzb run` does not drive; `path` is the KZB file.
Machine machine_of(int motor_type, const std::string& path);

}  // namespace kzb::tool
