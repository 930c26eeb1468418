// The places of a circuit: KZCircuitTerminal, and KZLineElement, a component between two of them.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>

#include "circuit/generic/line_element_type.h"

namespace kzb {

enum CircuitTerminalType {
    terminal_node = 0,
    terminal_voltage_source = 1,
    terminal_ground = 2,
    terminal_current_source = 3,
};

struct KZCircuitTerminal {
    // A source that is switched off floats; a current source never fixes its potential.
    bool is_unknown() const { return !switch_on || type == terminal_node || type == terminal_current_source; }
    bool is_source() const { return type == terminal_voltage_source || type == terminal_current_source; }

    int id = 0;
    int equation = -1;  // place of its potential in the unknowns, -1 when fixed
    int type = terminal_node;
    bool switch_on = true;
    int port = 0;                     // of a source, from 1
    double potential = 0.0;           // V
    double previous_potential = 0.0;  // V, of the accepted step
    double source_current = 0.0;      // A, into the node; stays when switched off
    std::string name;
};

struct KZLineElement {
    double temperature_factor() const {
        return element_type->temperature_correction ? element_type->temperature_factor(temperature) : 1.0;
    }

    int id = 0;
    int is_probe = 0;
    int equation = -1;  // place of its current in the unknowns, -1 for a probe
    boost::shared_ptr<KZCircuitTerminal> first_terminal;
    boost::shared_ptr<KZCircuitTerminal> second_terminal;
    boost::shared_ptr<KZLineElementType> element_type;
    double current = 0.0;           // A, positive from the first to the second terminal
    double previous_current = 0.0;  // A, of the accepted step
    double temperature = 293.15;    // K
};

}  // namespace kzb
