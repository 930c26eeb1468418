// The tables that each application looks up, with the meaning of their axes.
#pragma once

#include <string_view>
#include <vector>

namespace kzb::tool {

// One letter for each axis of a table, in the order of its axes:
//   a  current amplitude            b  current phase, degrees     i  current of one coil
//   d  current or flux of one axis of the rotor's frame           f  field current
//   p  position, seen from coils at rest                          P  position, seen from the rotor's frame
//   c  component, 0 to components - 1                             s  anything else
struct Layout {
    std::string_view axes;
    int components = 0;
};

struct TableUse {
    const char* category;
    const char* key;
    std::vector<Layout> layouts;  // any of them
    // What happens without the table; null: the application cannot work.
    const char* without = nullptr;
    bool optional = false;  // no finding where it is absent
};

struct ApplicationTables {
    const char* motor;
    const char* word;  // of kzb_has_application
    std::vector<int> motor_types;
    std::vector<TableUse> tables;
};

// The applications that the models of `motor_type` select, in the order of the documentation.
std::vector<const ApplicationTables*> applications_of(int motor_type);

// The layout among `layouts` of a table with `dim` axes; null when none has so many.
const Layout* layout_of(const TableUse& use, int dim);

}  // namespace kzb::tool
