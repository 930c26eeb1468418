#include "bench/reference/generic_circuit.h"

namespace kzb_reference::generic {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

std::shared_ptr<FEMCoil> read_fem_coil(int record, const Store& store) {
    const std::string path = "element_type_list;element_type";
    const Indices indices = {0, record};
    auto coil = std::make_shared<FEMCoil>();
    coil->type = 1;
    coil->resistance = kzb_get_subcategory_double(path, indices, "resistance", store);
    coil->group_id = kzb_get_subcategory_int(path, indices, "group_id", store);
    coil->turns = kzb_get_subcategory_double(path, indices, "turns", store);
    coil->turns2 = kzb_has_subcategory_parameter(path, indices, "coef_turns2", store) != 0
                       ? kzb_get_subcategory_double(path, indices, "coef_turns2", store)
                       : coil->turns;
    if (kzb_has_subcategory_parameter(path, indices, "coef_flux", store) != 0) {
        coil->coef_flux = kzb_get_subcategory_double(path, indices, "coef_flux", store);
    }
    if (kzb_has_subcategory_parameter(path, indices, "base_temperature", store) != 0) {
        coil->base_temperature = kzb_get_subcategory_double(path, indices, "base_temperature", store);
    }
    coil->coef_temperature = kzb_has_subcategory_parameter(path, indices, "coef_temperature", store) != 0
                                 ? kzb_get_subcategory_double(path, indices, "coef_temperature", store)
                                 : coil->base_temperature;
    const int count = kzb_get_subcategory_num("element_type_list;element_type;interacted_coil", {0, record, 0}, store);
    for (int j = 1; j <= count; ++j) {
        coil->interacted.push_back(j);
    }
    return coil;
}

std::shared_ptr<ConstantElement> read_constant(int type, const char* key, int record, const Store& store) {
    auto element = std::make_shared<ConstantElement>();
    element->type = type;
    element->key = key;
    element->value = kzb_get_subcategory_double("element_type_list;element_type", {0, record}, key, store);
    return element;
}

}  // namespace

double FEMCoil::get_parameter(const std::string& key) const {
    if (key == "resistance") {
        return resistance;
    }
    if (key == "coef_flux") {
        return coef_flux;
    }
    if (key == "turns2") {
        return turns2;
    }
    if (key == "base_coil_temp") {
        return base_temperature;
    }
    if (key == "coef_coil_temp") {
        return coef_temperature;
    }
    if (key == "flux") {
        return scaled_flux();
    }
    return 0.0;
}

void FEMCoil::set_parameter(const std::string& key, double value) {
    if (key == "resistance") {
        resistance = value;
    } else if (key == "coef_flux") {
        coef_flux = value;
    } else if (key == "turns2") {
        turns2 = value;
    } else if (key == "base_coil_temp") {
        base_temperature = value;
    } else if (key == "coef_coil_temp") {
        coef_temperature = value;
    }
}

double FEMCoil::scaled_inductance(int key) const {
    const auto found = inductances.find(key);
    return turn_ratio() * coef_flux * (found == inductances.end() ? 0.0 : found->second);
}

void Circuit::read(const Store& store) {
    const std::string types = "element_type_list;element_type";
    const int type_count = kzb_get_subcategory_num(types, {0, 0}, store);
    for (int i = 0; i < type_count; ++i) {
        const int type = kzb_get_subcategory_int(types, {0, i}, "type", store);
        std::shared_ptr<LineElementType> element_type;
        if (type == 1) {
            element_type = read_fem_coil(i, store);
            fem_positions.push_back(i);
        } else if (type == -1) {
            element_type = read_constant(type, "resistance", i, store);
        } else if (type == -2) {
            element_type = read_constant(type, "capacitance", i, store);
        } else if (type == -3) {
            element_type = read_constant(type, "inductance", i, store);
        } else {
            element_type = std::make_shared<LineElementType>();
        }
        if (type == -50) {
            element_type->type = type;
        }
        if (element_type->type != -100) {
            element_type->id = kzb_get_subcategory_int(types, {0, i}, "id", store);
            element_type->name = kzb_get_subcategory_string(types, {0, i}, "name", store);
        }
        element_types.push_back(element_type);
    }

    const std::string sources = "input_port_list;source";
    std::multimap<int, int> ports;
    const int source_count = kzb_get_subcategory_num(sources, {0, 0}, store);
    for (int i = 0; i < source_count; ++i) {
        ports.emplace(kzb_get_subcategory_int(sources, {0, i}, "terminal_id", store),
                      kzb_get_subcategory_int(sources, {0, i}, "id", store));
    }
    const std::string nodes = "terminal_list;terminal";
    const int terminal_count = kzb_get_subcategory_num(nodes, {0, 0}, store);
    for (int i = 0; i < terminal_count; ++i) {
        auto node = std::make_shared<Terminal>();
        node->id = kzb_get_subcategory_int(nodes, {0, i}, "id", store);
        const int type = kzb_get_subcategory_int(nodes, {0, i}, "type", store);
        node->name = kzb_get_subcategory_string(nodes, {0, i}, "name", store);
        if (type == 1) {
            node->type = 1;
            node->port = ports.count(node->id) == 1 ? ports.find(node->id)->second : 0;
            source_positions.push_back(i);
        } else if (type == 2) {
            node->type = 2;
        }
        terminals.push_back(node);
    }

    const std::string elements = "element_list;element";
    const int branch_count = kzb_get_subcategory_num(elements, {0, 0}, store);
    for (int i = 0; i < branch_count; ++i) {
        auto added = std::make_shared<Branch>();
        added->id = kzb_get_subcategory_int(elements, {0, i}, "id", store);
        added->first = terminal(kzb_get_subcategory_int(elements, {0, i}, "1st_terminal_id", store));
        added->second = terminal(kzb_get_subcategory_int(elements, {0, i}, "2nd_terminal_id", store));
        const int type_id = kzb_get_subcategory_int(elements, {0, i}, "element_type_id", store);
        for (const auto& element_type : element_types) {
            if (element_type->id == type_id) {
                added->element_type = element_type;
                break;
            }
        }
        added->is_probe = added->element_type->type == -50 ? 1 : 0;
        branches.push_back(added);
    }
}

std::shared_ptr<Branch> Circuit::branch(int id) const {
    for (const auto& candidate : branches) {
        if (candidate->id == id) {
            return candidate;
        }
    }
    return nullptr;
}

std::shared_ptr<Branch> Circuit::branch_of_element_type(int id) const {
    for (const auto& candidate : branches) {
        if (candidate->element_type->id == id) {
            return candidate;
        }
    }
    return nullptr;
}

std::shared_ptr<Terminal> Circuit::terminal(int id) const {
    for (const auto& candidate : terminals) {
        if (candidate->id == id) {
            return candidate;
        }
    }
    return nullptr;
}

std::shared_ptr<FEMCoil> Circuit::fem_coil_at(int position) const {
    return std::dynamic_pointer_cast<FEMCoil>(element_types[at(position)]);
}

double Circuit::branch_current(int id) const {
    const auto found = branch(id);
    return found ? found->current : 0.0;
}

double Circuit::first_terminal_potential(int id) const {
    const auto found = branch(id);
    return found ? found->first->potential : 0.0;
}

double Circuit::branch_temperature(int id) const {
    const auto found = branch(id);
    return found ? found->temperature : 0.0;
}

void Circuit::set_branch_current(int id, double value) const {
    if (const auto found = branch(id)) {
        found->current = value;
    }
}

int Circuit::set_branch_temperature(int id, double value) const {
    const auto found = branch(id);
    if (value <= 0.0 || !found) {
        return 0;
    }
    found->temperature = value;
    return 1;
}

double Circuit::get_element_parameter(int id, const std::string& key) const {
    const auto found = branch(id);
    return found ? found->element_type->get_parameter(key) : 0.0;
}

int Circuit::set_element_parameter(int id, const std::string& key, double value) const {
    const auto found = branch(id);
    if (value <= 0.0 || !found) {
        return 0;
    }
    found->element_type->set_parameter(key, value);
    return 1;
}

double Circuit::effective_resistance(int id) const {
    const auto found = branch(id);
    return found ? found->element_type->get_parameter("resistance") * found->temperature_factor() : 0.0;
}

void Circuit::set_source_type(int terminal_id, bool is_current) const {
    const auto found = terminal(terminal_id);
    if (found && (found->type == 1 || found->type == 3)) {
        found->type = is_current ? 3 : 1;
    }
}

bool Circuit::is_current_source(int terminal_id) const {
    const auto found = terminal(terminal_id);
    return found && found->type == 3;
}

void Circuit::set_switches(const std::vector<bool>& bits) const {
    if (bits.size() != source_positions.size() || source_positions.empty()) {
        return;
    }
    for (const int position : source_positions) {
        Terminal& source = *terminals[at(position)];
        source.switch_on = bits[at(source.port - 1)];
    }
}

void Circuit::set_inputs(const std::vector<double>& values) const {
    if (values.size() != source_positions.size() || source_positions.empty()) {
        return;
    }
    for (const int position : source_positions) {
        Terminal& source = *terminals[at(position)];
        if (source.switch_on) {
            const double value = values[at(source.port - 1)];
            if (source.type == 3) {
                source.source_current = value;
            } else if (source.type == 1) {
                source.potential = value;
            }
        }
    }
}

bool Circuit::has_base_potential() const {
    for (const auto& node : terminals) {
        if (node->type == 2 || (node->type == 1 && node->switch_on)) {
            return true;
        }
    }
    return false;
}

void Circuit::set_temperature_correction(bool flag) const {
    for (const int position : fem_positions) {
        element_types[at(position)]->temperature_correction = flag;
    }
}

void Circuit::update() const {
    for (const auto& element : branches) {
        element->previous_current = element->current;
        element->element_type->update();
    }
    for (const auto& node : terminals) {
        node->previous_potential = node->potential;
    }
}

}  // namespace kzb_reference::generic
