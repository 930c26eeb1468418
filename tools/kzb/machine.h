// What the command line needs to know of a motor type to drive it: phases, kind of motion, torque or force.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kzb::tool {

struct GenericMachine;

struct Machine {
    int motor_type = 0;
    bool linear = false;  // displacement in metres, else in degrees
    std::vector<std::string> phases;

    std::shared_ptr<const GenericMachine> generic = {};  // of a generic model, whose sources stand for phases
    bool slip_tables = false;                            // an induction machine with tables over the slip frequency
    int number_of_poles = 0;  // as the file tells; of a reluctance machine the teeth of the rotor

    bool is_reluctance() const { return motor_type >= 10010; }
    bool is_stepper() const { return motor_type == 10003; }
    bool is_solenoid() const { return motor_type == 10004; }
    bool is_induction() const { return motor_type == 10006; }
    bool is_wound_field() const { return motor_type == 10007; }
    // Phases that follow one another by an even lag: all but a field winding.
    std::size_t rotating_phases() const { return is_wound_field() ? phases.size() - 1 : phases.size(); }
    bool has_separate_coils() const { return is_reluctance() || is_stepper() || is_solenoid(); }
    // Phase number from 1.
    std::optional<int> phase(std::string_view name) const;
};

// Failure(exit_file) for a motor type that `kzb run` does not drive; `path` is the KZB file.
Machine machine_of(int motor_type, const std::string& path);

}  // namespace kzb::tool
