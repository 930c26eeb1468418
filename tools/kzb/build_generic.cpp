#include "kzb/build_generic.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "circuit/generic/calc_eq_generic.h"
#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/build_origin.h"
#include "kzb/circuit_netlist.h"
#include "kzb/command.h"
#include "kzb/generic_reader.h"
#include "kzb/library_noise.h"
#include "kzb/text.h"
#include "store/record_list.h"

namespace kzb::tool {

namespace {

constexpr const char* flux_list = "flux_list;flux_table";
constexpr const char* force_list = "torque_force_list;torque_table";
constexpr const char* inductance_list = "inductance_list;diff_inductance_table";
constexpr const char* output_list = "output_list;output_table";

struct KindRecord {
    PartKind kind;
    int type;
    const char* key;  // of its value
    const char* port_list;
};
constexpr KindRecord kind_records[part_kinds] = {
    {PartKind::coil, element_type_fem_coil, "resistance", "output_port_list;coil_fem"},
    {PartKind::resistor, element_type_resistor, "resistance", "output_port_list;resistor"},
    {PartKind::inductor, element_type_inductor, "inductance", "output_port_list;coil_const"},
    {PartKind::capacitor, element_type_capacitor, "capacitance", "output_port_list;capacitor"},
    {PartKind::probe, element_type_probe, nullptr, "output_port_list;voltage_probe"},
};

// Writes one record of a list.
class RecordWriter {
  public:
    RecordWriter(KZB_STORE& store, const std::string& path, int outer, int place)
        : store_(store), category_(record_name(path, outer, place)) {}
    RecordWriter& put(const char* key, int value) {
        put_int(store_, category_, key, value);
        return *this;
    }
    RecordWriter& put(const char* key, double value) {
        put_double(store_, category_, key, value);
        return *this;
    }
    RecordWriter& put(const char* key, const std::string& value) {
        put_string(store_, category_, key, value);
        return *this;
    }
    RecordWriter& put(const CorrectionText& correction) {
        if (!correction.expression.empty()) {
            put("correction_expression", correction.expression);
            put("correction_variable", correction.variable);
        }
        return *this;
    }

  private:
    KZB_STORE& store_;
    std::string category_;
};

// A record at the end of a list.
RecordWriter append(KZB_STORE& store, const std::string& path) {
    return {store, path, 0, record_count(store, path)};
}

void put_terminals(KZB_STORE& store, const GenericDescription& description) {
    int id = 0;
    for (const TerminalText& terminal : description.terminals) {
        append(store, "terminal_list;terminal").put("id", ++id).put("type", terminal.type).put("name", terminal.name);
    }
    id = 0;
    for (const TerminalText& terminal : description.terminals) {
        ++id;
        if (terminal.type == 1) {
            append(store, "input_port_list;source").put("id", terminal.port).put("terminal_id", id);
        }
    }
}

void put_coil(KZB_STORE& store, RecordWriter type, const PartText& part, int place) {
    type.put("group_id", part.id).put("turns", part.turns).put("coef_flux", part.flux_factor);
    if (part.turns2) {
        type.put("coef_turns2", *part.turns2);
    }
    type.put("base_temperature", part.base_temperature).put("coef_temperature", part.temperature_coefficient);
    for (int i = 0; i < part.interacted; ++i) {
        RecordWriter(store, "element_type_list;element_type;interacted_coil", place, i).put("id", i + 1);
    }
}

void put_parts(KZB_STORE& store, const GenericDescription& description) {
    int place = 0;
    for (const PartText& part : description.parts) {
        const KindRecord& kind = kind_records[static_cast<int>(part.kind)];
        RecordWriter type = append(store, "element_type_list;element_type");
        type.put("id", part.id).put("type", kind.type).put("name", part.name);
        if (kind.key != nullptr) {
            type.put(kind.key, part.value);
        }
        if (part.kind == PartKind::coil) {
            put_coil(store, type, part, place);
        }
        ++place;
    }
    for (const PartText& part : description.parts) {
        append(store, "element_list;element")
            .put("id", part.id)
            .put("1st_terminal_id", part.from)
            .put("2nd_terminal_id", part.to)
            .put("element_type_id", part.id);
        if (part.port > 0) {
            append(store, kind_records[static_cast<int>(part.kind)].port_list)
                .put("id", part.port)
                .put("component_id", part.id);
        }
    }
}

// Number of the axis with this feed, from 1; 0 for none.
int axis_number(const GenericDescription& description, Feed feed, int reference) {
    int number = 0;
    for (const AxisText& axis : description.axes) {
        ++number;
        if (axis.feed == feed && axis.reference == reference) {
            return number;
        }
    }
    return 0;
}

// Where no range is told, it reaches to the end of the motion's axis.
double range_of(const GenericDescription& description, const MotionText& motion, int axis, const GenericBuild& build) {
    if (motion.range > 0.0) {
        return motion.range;
    }
    const auto place = static_cast<std::size_t>(axis) - 1;
    if (axis == 0 || place >= build.axes.size()) {
        throw_at(motion.place, fmt::format("no {} and no axis over the motion, expected one of them",
                                           motion.rotation ? "range_deg" : "range"));
    }
    const double last = build.axes[place].nodes.back();
    if (!(last > 0.0)) {
        throw_at(motion.place, fmt::format("its axis ends at {:g} in {}, expected {} above 0", last, description.file,
                                           motion.rotation ? "range_deg" : "range"));
    }
    return last;
}

void put_motions(KZB_STORE& store, const GenericDescription& description, const GenericBuild& build) {
    int id = 0;
    for (const MotionText& motion : description.motions) {
        ++id;
        const int axis = axis_number(description, Feed::displacement, id);
        append(store, "motion_condition_list;motion_condition")
            .put("id", id)
            .put("type", motion.rotation ? 1 : 0)
            .put("flg_periodic", motion.periodic ? 1 : 0)
            .put("forcetable_id", id)
            .put("axis_no", axis)
            .put("max_displacement", range_of(description, motion, axis, build))
            .put("name", motion.name)
            .put("coef_force", motion.force_factor.value_or(1.0));
        if (!motion.correction.expression.empty()) {
            append(store, "torque_force_list;phase_list;phase").put("index", id - 1).put(motion.correction);
        }
    }
}

void put_sets(KZB_STORE& store, const GenericDescription& description) {
    int id = 0;
    for (const CoilSetText& set : description.coil_sets) {
        ++id;
        RecordWriter record = append(store, "element_set_list;coil_set");
        record.put("id", id)
            .put("name", set.name)
            .put("type", set.moving() ? 1 : 0)
            .put("flg_ref_coil", set.reference > 0 ? 1 : 0)
            .put("ref_coil_set_id", set.reference)
            .put("number_of_poles", set.poles)
            .put("phase_initial", set.phase_initial)
            .put("current_axis_no", axis_number(description, Feed::amplitude, id));
        if (set.moving()) {
            record.put("phase_axis_no", axis_number(description, Feed::phase, id)).put("motion_id", set.motion);
        }
        for (std::size_t i = 0; i < set.coils.size(); ++i) {
            RecordWriter(store, "element_set_list;coil_set;coil", id - 1, static_cast<int>(i))
                .put("coil_id", description.parts[set.coils[i]].id)
                .put("phase_diff", set.phases[i]);
        }
    }
}

void put_axes(KZB_STORE& store, const GenericDescription& description) {
    int id = 0;
    for (const AxisText& axis : description.axes) {
        RecordWriter record = append(store, "table_axis_list;axis");
        record.put("id", ++id).put("type", static_cast<int>(axis.feed));
        if (axis.feed == Feed::expression) {
            record.put("definition", axis.definition);
        } else {
            record.put("reference_id", axis.reference);
        }
        record.put(axis.correction);
    }
    int index = 0;
    for (const std::size_t place : description.coils()) {
        const PartText& coil = description.parts[place];
        append(store, "flux_list;phase_list;phase")
            .put("index", index++)
            .put("reference_id", coil.id)
            .put(coil.correction);
    }
    constexpr int constant = 3;
    for (const VariableText& variable : description.variables) {
        if (variable.reference == 0) {
            append(store, "input_parameter_list;input_parameter")
                .put("type", constant)
                .put("name", variable.name)
                .put("value", variable.value);
        } else {
            append(store, "user_defined_equation_list;user_defined_equation")
                .put("name", variable.name)
                .put("type", static_cast<int>(variable.feed))
                .put("reference_id", variable.reference);
        }
    }
    for (const auto& [name, value] : description.correction_parameters) {
        append(store, "correction_parameter_list;correction_parameter").put("name", name).put("value", value);
    }
}

void put_built(KZB_STORE* store, const std::string& category, const BuiltTable& table) {
    put_table(store, category.c_str(), "table", table.axes, table.values);
}

std::vector<TableColumns> columns_of(const GenericDescription& description) {
    std::vector<TableColumns> columns;
    for (const AxisText& axis : description.axes) {
        columns.push_back({axis.column, axis.period});
    }
    return columns;
}

// Pair indices that the coils read: of a set of three coils a row of pairs each, at the place of the set.
std::size_t pairs_of(const GenericDescription& description) {
    const std::size_t total = description.coils_by_index().size();
    std::size_t pairs = 0;
    std::size_t offset = 0;
    for (std::size_t s = 0; s < description.coil_sets.size(); ++s) {
        const CoilSetText& set = description.coil_sets[s];
        pairs = std::max(pairs, (s + 1) * total);
        if (set.moving() && set.coils.size() == 3) {
            pairs = std::max(pairs, 3 + offset + total * (description.coil_sets.size() - 1));
        }
        offset += set.coils.size();
    }
    return pairs;
}

void put_flux(KZB_STORE* store, const GenericDescription& description, GenericBuild& build) {
    if (description.flux.file.empty()) {
        return;
    }
    const std::vector<TableColumns> columns = columns_of(description);
    const BuiltTable flux = read_table(description, description.flux, columns);
    build.axes.assign(flux.axes.begin(), flux.axes.end() - 1);
    put_built(store, record_name(flux_list, 0, 0), flux);
    if (!description.set_form()) {
        return;
    }
    if (description.inductance.file.empty()) {
        build.notes.emplace_back("no [inductance]; the differential inductances are differences of the flux table");
        put_built(store, record_name(inductance_list, 0, 0), derive_inductances(description, flux));
        return;
    }
    const std::size_t pairs = pairs_of(description);
    if (description.inductance.columns.size() != pairs) {
        throw_at(
            description.inductance.columns.front().place,
            fmt::format("{} columns, expected one for each of {} pairs", description.inductance.columns.size(), pairs));
    }
    put_built(store, record_name(inductance_list, 0, 0), read_table(description, description.inductance, columns));
}

void put_outputs(KZB_STORE* store, const GenericDescription& description) {
    constexpr const char* count_name = "num_user_specified_parameter";
    put_int(*store, count_name, count_name, static_cast<int>(description.outputs.size()));
    TableText tables[2] = {description.output_table, description.fine_output_table};
    int number = 0;
    for (const OutputText& output : description.outputs) {
        const std::string category = "user_specified_parameter" + std::to_string(++number);
        put_int(*store, category, "table_id", number);
        put_int(*store, category, "output_port_id", output.port);
        put_int(*store, category, "reference_resolution", output.fine ? 1 : 0);
        put_string(*store, category, "title", output.name);
        put_double(*store, category, "coef_output_port", output.factor.value_or(1.0));
        if (!output.correction.expression.empty()) {
            put_string(*store, category, "correction_expression", output.correction.expression);
            put_string(*store, category, "correction_variable", output.correction.variable);
        }
        tables[output.fine ? 1 : 0].columns.push_back(output.column);
    }
    for (int i = 0; i < 2; ++i) {
        if (!tables[i].columns.empty()) {
            put_built(store, record_name(output_list, 0, i),
                      read_table(description, tables[i], columns_of(description)));
        }
    }
}

void put_iron_loss(KZB_STORE* store, const GenericDescription& description) {
    if (description.iron_loss.file.empty()) {
        return;
    }
    std::vector<TableColumns> columns;
    int number = 0;
    int inputs = 0;
    for (const LossAxisText& axis : description.loss_axes) {
        ++number;
        columns.push_back({axis.column, axis.period});
        constexpr int from_input = 0, from_set = 1, from_motion = 2;
        constexpr int no_quantity = 0, amplitude = 1, phase = 2, speed = 3;
        const int type = axis.feed == LossFeed::input   ? from_input
                         : axis.feed == LossFeed::speed ? from_motion
                                                        : from_set;
        const int quantity = axis.feed == LossFeed::amplitude ? amplitude
                             : axis.feed == LossFeed::phase   ? phase
                             : axis.feed == LossFeed::speed   ? speed
                                                              : no_quantity;
        append(*store, "ironloss;axis_list;axis")
            .put("axis_no", number)
            .put("physical_type", quantity)
            .put("reference_type", type)
            .put("reference_id", axis.feed == LossFeed::input ? ++inputs : axis.reference);
        if (axis.feed == LossFeed::input) {
            append(*store, "input_port_list;user_input").put("id", inputs).put("loss_axis_no", number);
        }
    }
    BuiltTable table = read_table(description, description.iron_loss, columns);
    table.axes.pop_back();  // one value each
    put_built(store, "ironloss", table);
}

// What the calculator would refuse.
void refuse_faults(KZB_STORE& store, const std::string& file) {
    const LibraryNoise noise;  // the store has no file behind it yet, of which it complains
    Calc_Eq_generic model;
    model.initialize(store);
    if (!model.faults().empty()) {
        throw Failure(exit_file, fmt::format("{}: {}", file, model.faults().front()));
    }
}

}  // namespace

GenericBuild build_generic(const GenericDescription& description) {
    GenericBuild build;
    build.store = open_store();
    KZB_STORE* const store = build.store.get();
    put_version(store);
    kzb_put_int("control", "motor_type", generic_motor_type, store);
    // The application is offered by a file with this category.
    kzb_put_int("parameter", "number_of_coils", static_cast<int>(description.coils().size()), store);
    const std::string name = std::filesystem::path(description.file).filename().string();
    put_origin(store, {description.title.empty() ? name : description.title, description.preparer, name,
                       description.information});
    put_terminals(*store, description);
    put_parts(*store, description);
    put_flux(store, description, build);
    put_motions(*store, description, build);
    if (description.set_form()) {
        put_sets(*store, description);
    } else {
        put_axes(*store, description);
    }
    if (!description.force.file.empty() && !description.motions.empty()) {
        put_built(store, record_name(force_list, 0, 0),
                  read_table(description, description.force, columns_of(description)));
    } else if (!description.motions.empty()) {
        build.notes.emplace_back("no [force]; the model has no force of its motions");
    }
    put_outputs(store, description);
    put_iron_loss(store, description);
    refuse_faults(*store, description.file);
    return build;
}

}  // namespace kzb::tool
