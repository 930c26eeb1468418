// Calc_Eq_generic: what the caller reaches by port number, motion id or table id.
#include <algorithm>

#include "circuit/generic/calc_eq_generic.h"

namespace kzb {

int Calc_Eq_generic::component(PortGroup group, int port) const {
    return has_port(group, port) ? ports(group)[static_cast<std::size_t>(port - 1)] : 0;
}

int Calc_Eq_generic::port_by_name(PortGroup group, std::string_view name) const {
    if (name.empty()) {
        return 0;
    }
    const int id = group == PortGroup::sources ? circuit_->find_terminal_by_name(name)
                                               : circuit_->find_branch_by_element_name(name);
    const std::vector<int>& components = ports(group);
    const auto at = std::find(components.begin(), components.end(), id);
    return id == 0 || at == components.end() ? 0 : static_cast<int>(at - components.begin()) + 1;
}

double Calc_Eq_generic::current(PortGroup group, int port) const {
    return has_port(group, port) ? circuit_->branch_current(component(group, port)) : 0.0;
}

void Calc_Eq_generic::set_current(PortGroup group, int port, double value) {
    if (has_port(group, port)) {
        circuit_->set_branch_current(component(group, port), value);
    }
}

double Calc_Eq_generic::value(PortGroup group, int port, std::string_view key) const {
    return has_port(group, port) ? circuit_->get_element_parameter(component(group, port), key) : 0.0;
}

int Calc_Eq_generic::set_value(PortGroup group, int port, std::string_view key, double value) {
    const int taken = has_port(group, port) ? circuit_->set_element_parameter(component(group, port), key, value) : 0;
    return key == "capacitance" || key == "coef_flux" ? 0 : taken;
}

double Calc_Eq_generic::resistance(PortGroup group, int port) const {
    return has_port(group, port) ? circuit_->effective_resistance(component(group, port)) : 0.0;
}

double Calc_Eq_generic::coil_temperature(int port) const {
    return has_port(PortGroup::coils, port) ? circuit_->branch_temperature(component(PortGroup::coils, port)) : 0.0;
}

int Calc_Eq_generic::set_coil_temperature(int port, double kelvin) {
    return has_port(PortGroup::coils, port)
               ? circuit_->set_branch_temperature(component(PortGroup::coils, port), kelvin)
               : 0;
}

double Calc_Eq_generic::probe_value(int port) const {
    return has_port(PortGroup::probes, port) ? circuit_->first_terminal_potential(component(PortGroup::probes, port))
                                             : 0.0;
}

int Calc_Eq_generic::source_type(int port) const {
    return has_port(PortGroup::sources, port) && !circuit_->is_current_source(component(PortGroup::sources, port)) ? 1
                                                                                                                   : 0;
}

void Calc_Eq_generic::set_source_type(int port, bool is_current) {
    if (has_port(PortGroup::sources, port)) {
        circuit_->set_source_type(component(PortGroup::sources, port), is_current);
    }
}

bool Calc_Eq_generic::motion_is_rotation(int id) const {
    const KZMotionCondition* const motion = tables_.motion(id);
    return motion != nullptr && motion->kind == motion_rotation;
}

bool Calc_Eq_generic::motion_is_periodic(int id) const {
    const KZMotionCondition* const motion = tables_.motion(id);
    return motion != nullptr && motion->periodic;
}

double Calc_Eq_generic::motion_upper_limit(int id) const {
    const KZMotionCondition* const motion = tables_.motion(id);
    return motion == nullptr ? 0.0 : motion->upper_limit();
}

int Calc_Eq_generic::motion_table_id(int id) const {
    const KZMotionCondition* const motion = tables_.motion(id);
    return motion == nullptr ? 0 : motion->forcetable_id;
}

KZForceTable* Calc_Eq_generic::force_table(int id) const {
    KZForceTable* last = nullptr;
    for (const auto& table : force_tables_) {
        last = table->forcetable_id == id ? table.get() : last;
    }
    return last;
}

KZUserSpecifiedParam* Calc_Eq_generic::user_param(int port) const {
    const auto at = user_param_of_port_.find(port);
    return at == user_param_of_port_.end() ? nullptr : at->second;
}

double Calc_Eq_generic::force(int table_id) {
    const KZForceTable* const table = force_table(table_id);
    return table == nullptr ? 0.0 : tables_.force(*table);
}

double Calc_Eq_generic::force_correction(int table_id) const {
    const KZForceTable* const table = force_table(table_id);
    return table == nullptr ? 0.0 : table->coef_force;
}

void Calc_Eq_generic::set_force_correction(int table_id, double factor) {
    if (KZForceTable* const table = force_table(table_id)) {
        table->coef_force = factor;
    }
}

double Calc_Eq_generic::user_parameter(int port) {
    const KZUserSpecifiedParam* const param = user_param(port);
    return param == nullptr ? 0.0 : tables_.output(*param);
}

void Calc_Eq_generic::set_user_parameter_correction(int port, double factor) {
    if (KZUserSpecifiedParam* const param = user_param(port)) {
        param->coef_output_port = factor;
    }
}

}  // namespace kzb
