// Where the tables of an old file belong in the present layout.
#pragma once

#include <string_view>

namespace kzb {

// The application that an old file is made for, from its section `control`; both words empty where it tells none.
struct LegacyApplication {
    std::string_view motor;
    std::string_view application;
};

// `other` is the application of a PMSM whose accuracy type is none of 1 to 3; empty: nothing is selected. A motor type
// without an application prints "application is not found.".
LegacyApplication legacy_application(int motor_type, int accuracy_type, std::string_view other);

// Category of the table `name` with `dim` axes; its key is the old name. The result may be `name` itself.
std::string_view legacy_category(std::string_view name, const LegacyApplication& application, int dim);

}  // namespace kzb
