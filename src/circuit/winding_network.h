// WindingNetwork: the small fixed circuit of a machine whose file holds none.
//
// A pattern number gives the elements (the windings) between numbered terminals: star, delta, or separate windings.
// Terminals 1 to `port_count` are those that the caller drives. Ids count from 1.
#pragma once

#include <boost/optional.hpp>
#include <boost/shared_ptr.hpp>
#include <vector>

namespace kzb {

enum ElementKind { element_unset = 0, element_coil = 1, element_resistor = -1 };
enum TerminalKind { terminal_injection = 1, terminal_base = 2, terminal_free = 3 };

struct KZelement {
    int id = 0;
    int from_terminal = 0;
    int to_terminal = 0;
    int kind = element_unset;
    int coil_index = -1;
    boost::optional<double> plain_resistance;  // Ohm, of a plain resistor
    boost::optional<double> resistance;        // Ohm, of a coil
};

struct KZterminal {
    int id = 0;
    int kind = terminal_free;
    double potential = 0.0;         // V
    double injected_current = 0.0;  // A
};

class WindingNetwork {
  public:
    int pattern = 0;
    int port_count = 0;
    std::vector<boost::shared_ptr<KZelement>> elements;
    std::vector<boost::shared_ptr<KZterminal>> terminals;

    // Makes the network of `pattern`, 0 to 14, every winding with resistance `r`, the field winding of patterns 13 and
    // 14 with `r2`. Any other pattern empties the network and leaves `port_count`. Building a pattern anew allocates
    // nothing. Throws bad_alloc with an empty network without ports.
    void build(int pattern_number, double r, double r2);

    // Resistance of the first element with this coil index; 0.0 where there is none.
    double resistance_of(int index) const;
};

}  // namespace kzb
