// Generic models: a circuit that can be opened and driven, coils with their tables, expressions that can be read.
#include <algorithm>

#include "circuit/generic/calc_eq_generic.h"
#include "circuit/generic/expression.h"
#include "fmt/format.h"
#include "kzb/circuit_netlist.h"
#include "kzb/text.h"
#include "kzb/validate.h"
#include "store/record_list.h"

namespace kzb::tool {

namespace {

constexpr const char* flux_table = "flux_list;flux_table";
constexpr const char* inductance_table = "inductance_list;diff_inductance_table";

void check_sources(const KZB_STORE& store, const KZCircuitForGeneric& circuit, Findings& findings) {
    const auto sources = std::count_if(circuit.terminals().begin(), circuit.terminals().end(),
                                       [](const auto& terminal) { return terminal->is_source(); });
    const int ports = record_count(store, "input_port_list;source");
    if (sources != ports) {
        findings.warning("source-ports", {"input_port_list;source", "", ""},
                         fmt::format("{} input ports for {} sources: none of them would be driven", ports, sources));
    }
    if (circuit.branch_count() > 0 && !circuit.has_base_potential()) {
        findings.error("base-potential", {"terminal_list;terminal", "", ""}, "no ground and no source, expected one");
    }
}

void check_tables(const KZB_STORE& store, const KZCircuitForGeneric& circuit, bool axes_form, Findings& findings) {
    if (circuit.fem_coil_positions().empty()) {
        return;
    }
    for (const char* path : {flux_table, inductance_table}) {
        const std::string category = record_name(path, 0, 0);
        const bool needed = path == flux_table || !axes_form;
        if (needed && find_table(store, category, "table") == nullptr) {
            findings.error("table-absent", {category, "table", ""}, "absent, the FEM coils need it");
        }
    }
}

std::vector<std::string> names_in(const KZB_STORE& store, const char* path) {
    std::vector<std::string> names;
    for (const Record& record : records_of(store, path)) {
        names.push_back(record.text("name"));
    }
    return names;
}

void check_expression(const std::string& category, const char* key, std::vector<std::string> names,
                      const std::string& text, Findings& findings) {
    if (!text.empty() && !Expression(names, text).is_readable()) {
        findings.error("expression", {category, key, ""},
                       fmt::format("\"{}\" cannot be read, its value is 0", printable_line(text)));
    }
}

void check_corrections(const KZB_STORE& store, const char* path, Findings& findings) {
    const std::vector<std::string> parameters = names_in(store, "correction_parameter_list;correction_parameter");
    for (int i = 0; i < record_count(store, path); ++i) {
        const Record record = record_at(store, path, i);
        std::vector<std::string> names = parameters;
        names.push_back(record.text("correction_variable"));
        check_expression(record_name(path, 0, i), "correction_expression", names, record.text("correction_expression"),
                         findings);
    }
}

void check_definitions(const KZB_STORE& store, Findings& findings) {
    constexpr int constant_parameter = 3;
    constexpr int expression_axis = 0;
    std::vector<std::string> names;
    for (const Record& record : records_of(store, "input_parameter_list;input_parameter")) {
        if (record.integer("type") == constant_parameter) {
            names.push_back(record.text("name"));
        }
    }
    for (const std::string& name : names_in(store, "user_defined_equation_list;user_defined_equation")) {
        names.push_back(name);
    }
    constexpr const char* path = "table_axis_list;axis";
    for (int i = 0; i < record_count(store, path); ++i) {
        const Record record = record_at(store, path, i);
        if (record.integer("type") == expression_axis) {
            check_expression(record_name(path, 0, i), "definition", names, record.text("definition"), findings);
        }
    }
}

}  // namespace

void check_generic_model(const Examined& examined, Findings& findings) {
    if (examined.motor_type != generic_motor_type) {
        return;
    }
    Calc_Eq_generic model;
    model.initialize(*examined.file.store);
    for (const std::string& fault : model.faults()) {
        findings.error("circuit", {}, fault + "; the calculator refuses the model");
    }
    if (!model.faults().empty()) {
        return;
    }
    const KZB_STORE& store = examined.store;
    check_sources(store, model.circuit(), findings);
    check_tables(store, model.circuit(), model.tables().table_axes_form(), findings);
    for (const auto& type : model.circuit().element_types().all) {
        for (const CircuitMessage& message : type->messages()) {
            findings.warning("coil-group", {"", "", fmt::format("element type {}", type->id)}, message.second);
        }
    }
    if (model.tables().table_axes_form()) {
        check_definitions(store, findings);
        for (const char* path :
             {"table_axis_list;axis", "flux_list;phase_list;phase", "torque_force_list;phase_list;phase"}) {
            check_corrections(store, path, findings);
        }
    }
}

}  // namespace kzb::tool
