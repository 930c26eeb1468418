// Calc_Eq_generic: what it takes from the file.
#include <algorithm>
#include <boost/make_shared.hpp>

#include "circuit/generic/calc_eq_generic.h"
#include "store/record_list.h"

namespace kzb {
namespace {

struct PortList {
    PortGroup group;
    const char* path;
    const char* key;
};
constexpr PortList port_lists[] = {
    {PortGroup::coils, "output_port_list;coil_fem", "component_id"},
    {PortGroup::resistors, "output_port_list;resistor", "component_id"},
    {PortGroup::inductors, "output_port_list;coil_const", "component_id"},
    {PortGroup::capacitors, "output_port_list;capacitor", "component_id"},
    {PortGroup::sources, "input_port_list;source", "terminal_id"},
    {PortGroup::probes, "output_port_list;voltage_probe", "component_id"},
};

// A count above this must have a category per parameter behind it.
constexpr std::size_t unbacked_parameters = 4096;

}  // namespace

int Calc_Eq_generic::initialize(KZB_STORE& store) {
    const bool offered = has_application(store, "Generic", "");
    if (offered) {
        set_application(store, "ALL", "");
    }
    read_ports(store);
    read_force_tables(store);
    read_user_params(store);
    circuit_->read(store, faults_);
    apply_temperature_correction();
    std::vector<KZUserSpecifiedParam> params;
    for (const auto& param : user_params_) {
        params.push_back(*param);
    }
    if (faults_.empty()) {
        tables_.read(store, *circuit_, params, faults_);
    }
    if (!faults_.empty()) {
        // Nothing of it is ever used.
        circuit_ = boost::make_shared<KZCircuitForGeneric>();
        tables_ = KZFEMTableModel();
        force_tables_.clear();
        user_params_.clear();
        user_param_of_port_.clear();
        return offered ? 1 : 0;
    }
    tables_.set_interpolation(method());
    solver_.bind(*circuit_);
    debug_.write_headers(*circuit_);
    return offered ? 1 : 0;
}

// A port without a record has component 0.
void Calc_Eq_generic::read_ports(const KZB_STORE& store) {
    for (const PortList& list : port_lists) {
        const std::vector<Record> records = records_of(store, list.path);
        std::vector<int>& components = ports_[static_cast<std::size_t>(list.group)];
        components.assign(records.size(), 0);
        for (const Record& record : records) {
            const int id = record.integer("id");
            if (id < 1 || static_cast<std::size_t>(id) > components.size()) {
                faults_.push_back(std::string(list.path) + ": port id " + std::to_string(id) + ", expected 1 to " +
                                  std::to_string(components.size()));
                continue;
            }
            components[static_cast<std::size_t>(id - 1)] = record.integer(list.key);
        }
    }
}

void Calc_Eq_generic::read_force_tables(const KZB_STORE& store) {
    for (const Record& record : records_of(store, "motion_condition_list;motion_condition")) {
        auto table = boost::make_shared<KZForceTable>();
        table->forcetable_id = record.integer("forcetable_id");
        table->motion_id = record.integer("id");
        table->coef_force = record.optional_number("coef_force").value_or(table->coef_force);
        force_tables_.push_back(std::move(table));
    }
}

void Calc_Eq_generic::read_user_params(const KZB_STORE& store) {
    constexpr const char* count_name = "num_user_specified_parameter";
    const auto stated = static_cast<std::size_t>(std::max(get_int(store, count_name, count_name), 0));
    const std::size_t count = std::min(stated, std::max(store.categories.size(), unbacked_parameters));
    int rows[2] = {0, 0};
    for (std::size_t i = 1; i <= count; ++i) {
        const Record record(find_category(store, "user_specified_parameter" + std::to_string(i)));
        auto param = boost::make_shared<KZUserSpecifiedParam>();
        param->table_id = record.integer("table_id");
        param->output_port = record.integer("output_port_id");
        param->resolution = record.integer("reference_resolution") != 0 ? 1 : 0;
        param->row = rows[param->resolution]++;
        param->coef_output_port = record.optional_number("coef_output_port").value_or(param->coef_output_port);
        user_param_of_port_.emplace(param->output_port, param.get());
        user_params_.push_back(std::move(param));
    }
}

}  // namespace kzb
