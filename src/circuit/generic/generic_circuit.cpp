#include "circuit/generic/generic_circuit.h"

#include <boost/make_shared.hpp>

#include "store/record_list.h"

namespace kzb {
namespace {

// The system is dense: beyond this a step would take minutes and gigabytes.
constexpr int most_unknowns = 2000;

double value_of(const std::vector<double>& values, int port) {
    return port >= 1 && static_cast<std::size_t>(port) <= values.size() ? values[static_cast<std::size_t>(port - 1)]
                                                                        : 0.0;
}

template <class Pointer>
Pointer at_or_null(const std::vector<Pointer>& list, int position) {
    return position >= 0 && static_cast<std::size_t>(position) < list.size() ? list[static_cast<std::size_t>(position)]
                                                                             : Pointer();
}

}  // namespace

void KZCircuitForGeneric::read(const KZB_STORE& store, std::vector<std::string>& faults) {
    element_types_.read(store);
    terminals_.read(store);
    read_branches(store, faults);
    check_sources(faults);
    if (branch_count() + terminal_count() > most_unknowns) {
        faults.push_back("circuit: " + std::to_string(branch_count()) + " branches and " +
                         std::to_string(terminal_count()) + " terminals, expected at most " +
                         std::to_string(most_unknowns) + " together");
    }
}

void KZCircuitForGeneric::read_branches(const KZB_STORE& store, std::vector<std::string>& faults) {
    for (const Record& record : records_of(store, "element_list;element")) {
        auto element = boost::make_shared<KZLineElement>();
        element->id = record.integer("id");
        const std::string where = "element " + std::to_string(element->id) + ": ";
        const auto terminal = [&](const char* key) {
            auto found = terminals_.find(record.integer(key));
            if (!found) {
                faults.push_back(where + key + ' ' + std::to_string(record.integer(key)) + " names no terminal");
            }
            return found;
        };
        element->first_terminal = terminal("1st_terminal_id");
        element->second_terminal = terminal("2nd_terminal_id");
        const int type_id = record.integer("element_type_id");
        element->element_type = element_types_.find(type_id);
        if (element->element_type) {
            element->is_probe = element->element_type->type == element_type_probe ? 1 : 0;
            branch_by_element_type_.add(type_id, branches_.size());
        } else {
            faults.push_back(where + "element_type_id " + std::to_string(type_id) + " names no element type");
        }
        branch_by_id_.add(element->id, branches_.size());
        branches_.push_back(std::move(element));
    }
}

void KZCircuitForGeneric::check_sources(std::vector<std::string>& faults) const {
    for (const int position : terminals_.sources) {
        const KZCircuitTerminal& terminal = *terminal_at(position);
        if (terminal.port < 1) {
            faults.push_back("terminal " + std::to_string(terminal.id) + ": a source without an input port of its own");
        }
    }
}

boost::shared_ptr<KZLineElement> KZCircuitForGeneric::branch_at(int position) const {
    return at_or_null(branches_, position);
}

boost::shared_ptr<KZCircuitTerminal> KZCircuitForGeneric::terminal_at(int position) const {
    return at_or_null(terminals_.all, position);
}

boost::shared_ptr<KZLineElementType> KZCircuitForGeneric::element_type_at(int position) const {
    return at_or_null(element_types_.all, position);
}

KZLineElement* KZCircuitForGeneric::branch_of_element_type(int id) const {
    const std::ptrdiff_t place = branch_by_element_type_.find(id);
    return place < 0 ? nullptr : branches_[static_cast<std::size_t>(place)].get();
}

KZLineElement* KZCircuitForGeneric::branch(int id) const {
    const std::ptrdiff_t place = branch_by_id_.find(id);
    return place < 0 ? nullptr : branches_[static_cast<std::size_t>(place)].get();
}

int KZCircuitForGeneric::find_branch_by_element_name(std::string_view name) const {
    for (const auto& element : branches_) {
        if (element->element_type->name == name) {
            return element->id;
        }
    }
    return 0;
}

int KZCircuitForGeneric::find_terminal_by_name(std::string_view name) const {
    for (const auto& terminal : terminals_.all) {
        if (terminal->name == name) {
            return terminal->id;
        }
    }
    return 0;
}

double KZCircuitForGeneric::branch_current(int id) const {
    const KZLineElement* const found = branch(id);
    return found == nullptr ? 0.0 : found->current;
}

double KZCircuitForGeneric::first_terminal_potential(int id) const {
    const KZLineElement* const found = branch(id);
    return found == nullptr ? 0.0 : found->first_terminal->potential;
}

double KZCircuitForGeneric::branch_temperature(int id) const {
    const KZLineElement* const found = branch(id);
    return found == nullptr ? 0.0 : found->temperature;
}

double KZCircuitForGeneric::get_element_parameter(int id, std::string_view key) const {
    const KZLineElement* const found = branch(id);
    return found == nullptr ? 0.0 : found->element_type->get_parameter(key);
}

double KZCircuitForGeneric::effective_resistance(int id) const {
    const KZLineElement* const found = branch(id);
    return found == nullptr ? 0.0 : found->element_type->get_parameter("resistance") * found->temperature_factor();
}

void KZCircuitForGeneric::set_branch_current(int id, double value) {
    if (KZLineElement* const found = branch(id)) {
        found->current = value;
    }
}

int KZCircuitForGeneric::set_branch_temperature(int id, double value) {
    KZLineElement* const found = branch(id);
    if (value <= 0.0 || found == nullptr) {
        return 0;
    }
    found->temperature = value;
    return 1;
}

int KZCircuitForGeneric::set_element_parameter(int id, std::string_view key, double value) {
    KZLineElement* const found = branch(id);
    if (value <= 0.0 || found == nullptr) {
        return 0;
    }
    found->element_type->set_parameter(key, value);
    return 1;
}

void KZCircuitForGeneric::set_source_type(int terminal_id, bool is_current) {
    const auto terminal = terminals_.find(terminal_id);
    if (terminal && terminal->is_source()) {
        terminal->type = is_current ? terminal_current_source : terminal_voltage_source;
    }
}

bool KZCircuitForGeneric::is_current_source(int terminal_id) const {
    return terminals_.has_type(terminal_id, terminal_current_source);
}

void KZCircuitForGeneric::set_switches(const std::vector<double>& switches) {
    if (!serves_sources(switches.size())) {
        return;
    }
    for (const int position : terminals_.sources) {
        KZCircuitTerminal& terminal = *terminals_.all[static_cast<std::size_t>(position)];
        // Anything but 1.0 is off.
        terminal.switch_on = value_of(switches, terminal.port) == 1.0;
    }
}

void KZCircuitForGeneric::set_inputs(const std::vector<double>& values) {
    if (!serves_sources(values.size())) {
        return;
    }
    for (const int position : terminals_.sources) {
        KZCircuitTerminal& terminal = *terminals_.all[static_cast<std::size_t>(position)];
        if (terminal.switch_on) {
            (terminal.type == terminal_current_source ? terminal.source_current : terminal.potential) =
                value_of(values, terminal.port);
        }
    }
}

bool KZCircuitForGeneric::has_base_potential() const {
    for (const auto& terminal : terminals_.all) {
        if (terminal->type == terminal_ground || (terminal->type == terminal_voltage_source && terminal->switch_on)) {
            return true;
        }
    }
    return false;
}

void KZCircuitForGeneric::set_temperature_correction(bool on) {
    for (const int position : element_types_.fem_coils) {
        element_types_.all[static_cast<std::size_t>(position)]->temperature_correction = on;
    }
}

void KZCircuitForGeneric::update() {
    for (const auto& element : branches_) {
        element->previous_current = element->current;
        element->element_type->update();
    }
    for (const auto& terminal : terminals_.all) {
        terminal->previous_potential = terminal->potential;
    }
}

std::vector<CircuitMessage> KZCircuitForGeneric::messages() const {
    std::vector<CircuitMessage> all;
    for (const auto& type : element_types_.all) {
        for (CircuitMessage& message : type->messages()) {
            all.push_back(std::move(message));
        }
    }
    return all;
}

}  // namespace kzb
