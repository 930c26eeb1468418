// The checks of kzb validate. Each looks at a whole file and adds what it finds; one entry of the list in validate.cpp
// per check, so that a check for another machine is one function there.
#pragma once

#include <string>

#include "kzb/findings.h"
#include "kzb/model_file.h"

namespace kzb::tool {

struct Examined {
    std::string path;
    const ModelFile& file;
    const KZB_STORE& store;
    int motor_type = 0;  // 0 when the file does not tell
};

// validate_file.cpp: damage, incomplete, placeholder, duplicate-key
void check_damage(const Examined& model, Findings& findings);
void check_entries(const Examined& model, Findings& findings);
// validate_axes.cpp: axis-missing, axis-not-finite, axis-order, cyclic-ends
void check_axes(const Examined& model, Findings& findings);
void check_cyclic_ends(const Examined& model, Findings& findings);
// validate_values.cpp: values-missing, value-not-finite, parameter-not-finite
void check_values(const Examined& model, Findings& findings);
void check_scalars(const Examined& model, Findings& findings);
// validate_parameters.cpp: motor-type, poles, resistance, connection, electrical-length, circuit-constants
void check_motor_type(const Examined& model, Findings& findings);
void check_machine_parameters(const Examined& model, Findings& findings);
// validate_applications.cpp: application, accuracy-type, table-absent, table-dim, component-axis, cyclic-span,
// position-not-cyclic
void check_applications(const Examined& model, Findings& findings);
// validate_losses.cpp: loss-tables, user-parameters, and of their tables table-absent and table-dim
void check_loss_tables(const Examined& model, Findings& findings);
void check_user_parameters(const Examined& model, Findings& findings);
// validate_torque.cpp: torque-balance
void check_torque(const Examined& model, Findings& findings);
// validate_inductance.cpp: inductance-symmetry, inductance-indefinite, inductance-negative
void check_inductance(const Examined& model, Findings& findings);
// validate_generic.cpp: circuit, base-potential, source-ports, coil-group, expression, table-absent
void check_generic_model(const Examined& model, Findings& findings);

// The message behind a table that holds one zero and no node, as one that was written before its values were loaded.
inline constexpr const char* placeholder_text =
    "holds one value 0 and no node, as a table that was written before its values were loaded; expected the table";

// True for such a table.
bool is_placeholder(const KZB_TABLE& table);

// The tables that a file which cannot be read holds as placeholders, "category/key" each; empty where that is not what
// is wrong with it.
std::vector<std::string> placeholders_of_file(const std::string& path);

}  // namespace kzb::tool
