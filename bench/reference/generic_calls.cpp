// The calls of a generic model by port number.
#include <cmath>

#include "bench/reference/generic.h"

namespace kzb_reference {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

bool within(int id, std::size_t count) {
    return id >= 1 && at(id) <= count;
}

}  // namespace

const Generic::Numbers& Generic::ports(int kind) const {
    return kind == 0 ? coil_ports_ : kind == 1 ? resistor_ports_ : kind == 2 ? inductor_ports_ : capacitor_ports_;
}

int Generic::component(int kind, int id) const {
    return within(id, ports(kind).size()) ? ports(kind)[at(id - 1)] : 0;
}

int Generic::port_count(int kind) const {
    return static_cast<int>(ports(kind).size());
}

int Generic::set_time(double value) {
    if (value < 0.0) {
        return 180032;
    }
    handle_time_ = value;
    return 0;
}

int Generic::set_displacement(int id, double value) {
    if (!within(id, tables.motions.size())) {
        return 180055;
    }
    displacement_[at(id - 1)] = value + initial_displacement_[at(id - 1)];
    return 0;
}

int Generic::set_initial_position(int id, double value) {
    if (!within(id, tables.motions.size())) {
        return 180055;
    }
    initial_displacement_[at(id - 1)] = value;
    return 0;
}

int Generic::set_power_supply(int id, double value) {
    if (!within(id, source_ports_.size())) {
        return 180054;
    }
    voltage_[at(id - 1)] = value;
    return 0;
}

int Generic::set_power_supply_switch(int id, int on) {
    if (!within(id, source_ports_.size())) {
        return 180054;
    }
    signal_[at(id - 1)] = static_cast<double>(on);
    return 0;
}

int Generic::set_power_supply_type(int id, int type) {
    if (!within(id, source_ports_.size())) {
        return 180054;
    }
    circuit.set_source_type(source_ports_[at(id - 1)], type == 1);
    return 0;
}

int Generic::power_supply_type(int id) const {
    if (!within(id, source_ports_.size())) {
        return 180054;
    }
    return circuit.is_current_source(source_ports_[at(id - 1)]) ? 0 : 1;
}

int Generic::set_user_input(int index, double value) {
    if (!within(index, user_inputs_.size())) {
        return 180065;
    }
    if (!(tables.has_iron_loss && iron_loss_enabled_)) {
        return 180064;
    }
    user_inputs_[at(index - 1)] = value;
    return 0;
}

int Generic::set_coil_temperature(int id, double value) {
    if (!temperature_correction) {
        return 180046;
    }
    if (value <= 0.0) {
        return 180043;
    }
    if (!within(id, coil_ports_.size())) {
        return 180049;
    }
    circuit.set_branch_temperature(component(0, id), value);
    return 0;
}

double Generic::current(int kind, int id) const {
    return within(id, ports(kind).size()) ? circuit.branch_current(component(kind, id)) : 0.0;
}

void Generic::set_initial_current(int kind, int id, double value) {
    if (within(id, ports(kind).size())) {
        circuit.set_branch_current(component(kind, id), value);
    }
}

double Generic::parameter(int kind, int id, const char* key) const {
    return circuit.get_element_parameter(component(kind, id), key);
}

void Generic::set_parameter(int kind, int id, const char* key, double value) {
    circuit.set_element_parameter(component(kind, id), key, value);
}

double Generic::resistance(int kind, int id) const {
    return circuit.effective_resistance(component(kind, id));
}

double Generic::coil_temperature(int id) const {
    return circuit.branch_temperature(component(0, id));
}

double Generic::probe(int id) const {
    return within(id, probe_ports_.size()) ? circuit.first_terminal_potential(probe_ports_[at(id - 1)]) : 0.0;
}

generic::ForceTable* Generic::force_table(int id) {
    generic::ForceTable* found = nullptr;
    for (generic::ForceTable& table : force_tables_) {
        if (table.forcetable_id == id) {
            found = &table;
        }
    }
    return found;
}

double Generic::force(int id) {
    const generic::ForceTable* const table = force_table(id);
    return table == nullptr ? 0.0 : tables.force(*table);
}

void Generic::set_coef_force(int id, double value) {
    if (generic::ForceTable* const table = force_table(id)) {
        table->coef_force = value;
    }
}

double Generic::coef_force(int id) const {
    const generic::ForceTable* const table = const_cast<Generic*>(this)->force_table(id);
    return table == nullptr ? 0.0 : table->coef_force;
}

double Generic::user_parameter(int id) {
    for (const generic::UserParam& param : user_params_) {
        if (param.output_port == id) {
            return tables.output(param);
        }
    }
    return 0.0;
}

void Generic::set_coef_output(int id, double value) {
    for (generic::UserParam& param : user_params_) {
        if (param.output_port == id) {
            param.coef_output_port = value;
            return;
        }
    }
}

}  // namespace kzb_reference
