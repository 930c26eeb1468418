// The ports that a block sees of a generic model: groups of input and output ports, their labels and their counts.
#pragma once

#include "interface/generic_calls.h"

namespace kzb {

// A group's code.
enum GroupCode {
    group_terminals = 0,
    group_coil_currents = 1,
    group_resistors = 2,
    group_inductors = 3,
    group_capacitors = 4,
    group_probes = 5,
    group_forces = 6,
    group_iron_loss = 7,
    group_coil_fluxes = 8,
    group_user_values = 9,
    group_motions = 10,
};

// One group in port order; the label has "%d" where the number within the group goes.
struct LabelledGroup {
    GroupCode code;
    const char* label;
};

inline constexpr LabelledGroup input_groups[] = {
    {group_terminals, "Electrical Terminal%d [V]/[A]"},
    {group_coil_currents, "Temperature Terminal%d [K]"},
    {group_motions, "Displacement%d [deg]/[m]"},
};
inline constexpr LabelledGroup output_groups[] = {
    {group_coil_currents, "I_FEMCoil%d [A]"},
    {group_resistors, "I_Constant_Resitance%d [A]"},
    {group_inductors, "I_Constant_Inductance%d [A]"},
    {group_capacitors, "I_Constant_Capacitance%d [A]"},
    {group_probes, "V_Probe%d [V]"},
    {group_forces, "Torque%d [Nm]/Force%d [N]"},
    {group_iron_loss, "P_Ironloss%d [W]"},
    {group_coil_fluxes, "Flux_FEMCoil%d [wb]"},
    {group_user_values, "User_Specifed_Value%d"},
};
inline constexpr int label_size = 128;  // bytes of a caller's buffer

int group_count(const KZB_CALC& handle, const GenericModel& model, GroupCode code);
int input_port_count(const KZB_CALC& handle, const GenericModel& model);
int output_port_count(const KZB_CALC& handle, const GenericModel& model);

void write_label(const char* pattern, int number, char* buffer);
// Writes the labels of all ports in their order, each into its buffer; a null buffer is passed over.
template <std::size_t groups>
void write_labels(const LabelledGroup (&list)[groups], const KZB_CALC& handle, const GenericModel& model,
                  char** labels) {
    for (const LabelledGroup& group : list) {
        for (int number = 1, count = group_count(handle, model, group.code); number <= count; ++number, ++labels) {
            write_label(group.label, number, *labels);
        }
    }
}

}  // namespace kzb
