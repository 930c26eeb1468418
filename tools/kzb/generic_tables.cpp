// What a description says of its tables: coil sets, axes, variables, columns, outputs, iron loss.
#include <algorithm>

#include "circuit/generic/expression.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/generic_reader.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

ColumnText read_column(Section& section) {
    ColumnText column;
    column.header = section.required("column", section.text("column"));
    column.scale = section.number("scale").value_or(1.0);
    column.place = section.place("column");
    if (column.scale == 0.0) {
        section.fail("scale", "0, expected another number");
    }
    return column;
}

// A variable of an expression.
void require_variable(const Section& section, std::string_view key, const std::string& name) {
    if (!Expression({name}, "0").is_readable()) {
        section.fail(
            key, fmt::format("\"{}\" is no name of a variable, expected letters, digits and _", printable_line(name)));
    }
}

void require_expression(const Section& section, std::string_view key, const std::vector<std::string>& names,
                        const std::string& text) {
    if (!Expression(names, text).is_readable()) {
        section.fail(key, fmt::format("\"{}\" cannot be read as an expression of {}", printable_line(text),
                                      names.empty() ? "no variable" : fmt::format("{}", fmt::join(names, ", "))));
    }
}

void read_coil_sets(Section& root, GenericDescription& description) {
    std::vector<Section> sections = tables_of(root, "coil_set");
    const GroupList coils = coil_list(description);
    std::vector<std::string> set_names;
    std::vector<bool> used(description.parts.size(), false);
    for (Section& section : sections) {
        CoilSetText set;
        set.name = new_name(section, set_names, "coil set");
        set_names.push_back(set.name);
        set.place = section.place("name");
        const toml::array* names = section.array("coils");
        if (names == nullptr || names->empty()) {
            section.missing("coils");
        }
        for (const toml::node& node : *names) {
            const int group = reference_of(section, "coils", node, coils, "coil");
            const auto at = std::find_if(description.parts.begin(), description.parts.end(),
                                         [group](const PartText& part) { return part.id == group; });
            const auto place = static_cast<std::size_t>(at - description.parts.begin());
            if (used[place]) {
                section.fail("coils", fmt::format("coil {} a second time, expected each coil in one set",
                                                  printable_line(at->name)));
            }
            used[place] = true;
            set.coils.push_back(place);
        }
        if (section.has("motion")) {
            set.motion = required_reference(section, "motion", description.motions, "motion");
        }
        if (section.node("refers_to") != nullptr && set.motion > 0) {
            section.fail("refers_to", "beside motion, expected one of the two");
        }
        set.phases = section.numbers("phases_deg");
        set.poles = section.integer("poles", 0).value_or(0);
        set.phase_initial = section.number("phase_initial_deg").value_or(0.0);
        description.coil_sets.push_back(std::move(set));
    }
    for (std::size_t i = 0; i < sections.size(); ++i) {
        Section& section = sections[i];
        CoilSetText& set = description.coil_sets[i];
        if (section.has("refers_to")) {
            const std::string name = section.required("refers_to", section.text("refers_to"));
            set.reference = static_cast<int>(place_of_name(section, "refers_to", name, set_names, "coil set")) + 1;
        }
        section.end();
        if (set.phases.empty()) {
            set.phases.assign(set.coils.size(), 0.0);
            if (set.moving() && set.coils.size() > 1) {
                section.missing("phases_deg");
            }
        }
        if (set.phases.size() != set.coils.size()) {
            section.fail("phases_deg", fmt::format("{} angles for {} coils, expected one for each", set.phases.size(),
                                                   set.coils.size()));
        }
        if (set.moving() && set.coils.size() != 1 && set.coils.size() != 3) {
            section.fail("coils", fmt::format("{} coils in a set with a motion, expected 1 or 3", set.coils.size()));
        }
    }
    if (description.set_form()) {
        for (const std::size_t place : description.coils()) {
            if (!used[place]) {
                throw_at(description.parts[place].place, "the coil is in no [[coil_set]], expected it in one");
            }
        }
    }
}

AxisText read_axis(Section& section, const GenericDescription& description) {
    AxisText axis;
    axis.place = section.place("column");
    const char* const feeds[] = {"coil", "motion", "definition", "coil_set"};
    std::size_t told = 0;
    for (const char* feed : feeds) {
        told += section.has(feed) ? 1 : 0;
    }
    if (told != 1) {
        section.fail("column", fmt::format("fed by {} of {}, expected one of them", told, fmt::join(feeds, ", ")));
    }
    if (const toml::node* coil = section.node("coil")) {
        axis.feed = Feed::current;
        axis.reference = reference_of(section, "coil", *coil, coil_list(description), "coil");
    } else if (section.has("motion")) {
        axis.feed = Feed::displacement;
        axis.reference = required_reference(section, "motion", description.motions, "motion");
    } else if (section.has("coil_set")) {
        axis.reference = required_reference(section, "coil_set", description.coil_sets, "coil set");
        const auto quantity = section.required("quantity", section.choice("quantity", {"amplitude", "phase"}));
        axis.feed = quantity == 0 ? Feed::amplitude : Feed::phase;
    } else {
        axis.feed = Feed::expression;
        axis.definition = section.required("definition", section.text("definition"));
    }
    axis.column = read_column(section);
    axis.period = section.positive("period");
    axis.correction = read_correction(section);
    return axis;
}

void refuse_repeated_axes(const Section& section, const AxisText& axis, const std::vector<AxisText>& axes) {
    for (const AxisText& other : axes) {
        if (axis.feed != Feed::expression && other.feed == axis.feed && other.reference == axis.reference) {
            section.fail("column", "fed as the axis before it, expected another feed for each axis");
        }
        if (other.column.header == axis.column.header) {
            section.fail("column",
                         fmt::format("\"{}\" is the column of another axis", printable_line(axis.column.header)));
        }
    }
}

std::vector<std::string> variable_names(const GenericDescription& description) {
    return names_of(description.variables);
}

void read_axes(Section& root, GenericDescription& description) {
    for (Section& section : tables_of(root, "axis")) {
        AxisText axis = read_axis(section, description);
        section.end();
        const bool of_sets = axis.feed == Feed::amplitude || axis.feed == Feed::phase;
        if (description.set_form() && !of_sets && axis.feed != Feed::displacement) {
            section.fail("column",
                         "fed by a coil or an expression in a model of coil sets, expected a coil set or a "
                         "motion");
        }
        if (axis.feed == Feed::expression) {
            require_expression(section, "definition", variable_names(description), axis.definition);
        }
        refuse_repeated_axes(section, axis, description.axes);
        description.axes.push_back(std::move(axis));
    }
}

void read_variables(Section& root, GenericDescription& description) {
    for (Section& section : tables_of(root, "variable")) {
        VariableText variable;
        variable.name = new_name(section, variable_names(description), "variable");
        require_variable(section, "name", variable.name);
        const std::optional<double> value = section.number("value");
        const toml::node* coil = section.node("coil");
        const bool moves = section.has("motion");
        if ((value ? 1 : 0) + (coil != nullptr ? 1 : 0) + (moves ? 1 : 0) != 1) {
            section.fail("name", "expected one of value, coil and motion");
        }
        if (coil != nullptr) {
            variable.reference = reference_of(section, "coil", *coil, coil_list(description), "coil");
        } else if (moves) {
            variable.feed = Feed::displacement;
            variable.reference = required_reference(section, "motion", description.motions, "motion");
        }
        variable.value = value.value_or(0.0);
        section.end();
        description.variables.push_back(std::move(variable));
    }
    for (Section& section : tables_of(root, "correction_parameter")) {
        std::vector<std::string> known;
        for (const auto& [name, ignored] : description.correction_parameters) {
            known.push_back(name);
        }
        const std::string name = new_name(section, known, "correction parameter");
        require_variable(section, "name", name);
        description.correction_parameters.emplace_back(name, section.required("value", section.number("value")));
        section.end();
    }
}

// file and the columns by name, for all of `names`.
TableText read_named_table(Section& root, const char* key, const std::vector<std::string>& names, const char* what,
                           const std::string& file) {
    TableText table;
    std::optional<Section> section = root.section(key);
    if (!section) {
        return table;
    }
    table.place = root.place(key);
    table.file = section->text("file").value_or(file);
    if (table.file.empty()) {
        section->missing("file");
    }
    const double scale = section->number("scale").value_or(1.0);
    std::optional<Section> columns = section->section("columns");
    if (!columns) {
        section->missing("columns");
    }
    for (const std::string& name : columns->keys()) {
        static_cast<void>(place_of_name(*columns, name, name, names, what));
    }
    for (const std::string& name : names) {
        table.columns.push_back({columns->required(name, columns->text(name)), scale, columns->place(name)});
    }
    section->end();
    return table;
}

TableText read_inductance(Section& root, const GenericDescription& description) {
    TableText table;
    std::optional<Section> section = root.section("inductance");
    if (!section) {
        return table;
    }
    if (!description.set_form()) {
        root.fail("inductance", "in a model without coil sets, which takes differences of the flux; expected none");
    }
    table.place = root.place("inductance");
    table.file = section->text("file").value_or(description.flux.file);
    const double scale = section->number("scale").value_or(1.0);
    const toml::array* columns = section->array("columns");
    if (columns == nullptr || columns->empty()) {
        section->missing("columns");
    }
    for (const toml::node& node : *columns) {
        if (!node.is_string()) {
            section->fail("columns", "expected names of columns in quotes, by the index of the pair");
        }
        table.columns.push_back({*node.value<std::string>(), scale, section->place("columns")});
    }
    section->end();
    return table;
}

TableText read_file_only(Section& root, const char* key, const std::string& file, bool wanted) {
    TableText table;
    if (std::optional<Section> section = root.section(key)) {
        table.place = root.place(key);
        table.file = section->text("file").value_or(file);
        section->end();
        if (!wanted) {
            root.fail(key, "no [[output]] stands in it, expected one");
        }
    } else if (wanted) {
        table.place = root.place(key);
        table.file = file;
    }
    if (wanted && table.file.empty()) {
        root.fail(key, "missing, expected the file of the outputs");
    }
    return table;
}

void read_outputs(Section& root, GenericDescription& description) {
    std::vector<std::string> places;
    for (Section& section : tables_of(root, "output")) {
        OutputText output;
        output.name = new_name(section, names_of(description.outputs), "output");
        output.column = read_column(section);
        output.fine = section.choice("table", {"coarse", "fine"}).value_or(0) == 1;
        output.port = section.integer("port", 1).value_or(static_cast<int>(description.outputs.size()) + 1);
        for (const OutputText& other : description.outputs) {
            if (other.port == output.port) {
                section.fail("port", fmt::format("{} is the port of \"{}\" too, expected another", output.port,
                                                 printable_line(other.name)));
            }
        }
        output.factor = section.positive("factor");
        output.correction = read_correction(section);
        section.end();
        description.outputs.push_back(std::move(output));
    }
    for (const OutputText& output : description.outputs) {
        if (static_cast<std::size_t>(output.port) > description.outputs.size()) {
            throw_at(output.column.place,
                     fmt::format("port {}, expected 1 to {}", output.port, description.outputs.size()));
        }
    }
    const auto any = [&](bool fine) {
        return std::any_of(description.outputs.begin(), description.outputs.end(),
                           [fine](const OutputText& output) { return output.fine == fine; });
    };
    description.output_table = read_file_only(root, "outputs", description.flux.file, any(false));
    description.fine_output_table = read_file_only(root, "fine_outputs", description.flux.file, any(true));
    if (any(true) && !any(false)) {
        throw_at(root.place("output"), "all outputs are of the fine table, expected one of the coarse table");
    }
}

void read_iron_loss(Section& root, GenericDescription& description) {
    std::optional<Section> section = root.section("iron_loss");
    if (!section) {
        return;
    }
    description.iron_loss.place = root.place("iron_loss");
    description.iron_loss.file = section->required("file", section->text("file"));
    description.iron_loss.columns.push_back(read_column(*section));
    for (Section& inner : tables_of(*section, "axis")) {
        LossAxisText axis;
        if (inner.has("motion")) {
            axis.feed = LossFeed::speed;
            axis.reference = required_reference(inner, "motion", description.motions, "motion");
        } else if (inner.has("coil_set")) {
            axis.reference = required_reference(inner, "coil_set", description.coil_sets, "coil set");
            const auto quantity = inner.required("quantity", inner.choice("quantity", {"amplitude", "phase"}));
            axis.feed = quantity == 0 ? LossFeed::amplitude : LossFeed::phase;
        } else if (!inner.flag("user_input").value_or(false)) {
            inner.fail("column", "expected one of motion, coil_set and user_input = true");
        }
        axis.column = read_column(inner);
        axis.period = inner.positive("period");
        inner.end();
        description.loss_axes.push_back(std::move(axis));
    }
    if (description.loss_axes.empty()) {
        section->fail("axis", "missing, expected [[iron_loss.axis]]");
    }
    section->end();
}

// Factors act in the coil set form, corrections in the table axes form.
void refuse_idle(const GenericDescription& description, const std::string& place, bool factor,
                 const CorrectionText& correction) {
    if (description.set_form() && !correction.expression.empty()) {
        throw_at(place, "a correction has no effect in a model of coil sets, expected a factor");
    }
    if (!description.set_form() && factor) {
        throw_at(place, "a factor has no effect in a model of table axes, expected a correction");
    }
}

void check_corrections(const GenericDescription& description) {
    std::vector<std::string> parameters;
    for (const auto& [name, ignored] : description.correction_parameters) {
        parameters.push_back(name);
    }
    const auto check = [&](const std::string& place, bool factor, const CorrectionText& correction) {
        refuse_idle(description, place, factor, correction);
        std::vector<std::string> names = parameters;
        names.push_back(correction.variable);
        if (!correction.expression.empty() && !Expression(names, correction.expression).is_readable()) {
            throw_at(place, fmt::format("the correction \"{}\" cannot be read as an expression of {}",
                                        printable_line(correction.expression), fmt::join(names, ", ")));
        }
    };
    for (const PartText& part : description.parts) {
        check(part.place, false, part.correction);
    }
    for (const MotionText& motion : description.motions) {
        check(motion.place, motion.force_factor.has_value(), motion.correction);
    }
    for (const AxisText& axis : description.axes) {
        check(axis.place, false, axis.correction);
    }
    for (const OutputText& output : description.outputs) {
        check(output.column.place, output.factor.has_value(), output.correction);
    }
}

// Every set has its amplitude, a set with a motion of its own its phase, every motion its position.
void require_set_axes(const Section& root, const GenericDescription& description) {
    const auto require = [&](Feed feed, std::size_t place, const std::string& where, const char* what) {
        const int number = static_cast<int>(place) + 1;
        if (std::none_of(description.axes.begin(), description.axes.end(),
                         [&](const AxisText& axis) { return axis.feed == feed && axis.reference == number; })) {
            throw_at(where, fmt::format("no [[axis]] with {}, expected one", what));
        }
    };
    std::size_t expected = description.motions.size();
    for (std::size_t i = 0; i < description.coil_sets.size(); ++i) {
        const CoilSetText& set = description.coil_sets[i];
        require(Feed::amplitude, i, set.place, "its amplitude");
        if (set.motion > 0) {
            require(Feed::phase, i, set.place, "its phase");
        }
        expected += set.motion > 0 ? 2U : 1U;
    }
    for (std::size_t i = 0; i < description.motions.size(); ++i) {
        require(Feed::displacement, i, description.motions[i].place, "its position");
    }
    if (description.axes.size() != expected) {
        root.fail("axis", fmt::format("{} axes, expected {}: amplitude and phase of each set with a motion, amplitude "
                                      "of each other set, position of each motion",
                                      description.axes.size(), expected));
    }
}

void require_tables(const Section& root, const GenericDescription& description) {
    const std::vector<std::size_t> coils = description.coils();
    if (description.set_form()) {
        require_set_axes(root, description);
    }
    if (coils.empty()) {
        if (!description.flux.file.empty()) {
            throw_at(description.flux.place, "no [[coil]] needs it, expected a coil");
        }
    } else if (description.flux.file.empty()) {
        throw_at(description.parts[coils.front()].place, "a coil needs the table [flux], which is missing");
    }
    const bool has_table =
        !description.flux.file.empty() || !description.force.file.empty() || !description.output_table.file.empty();
    if (has_table && description.axes.empty()) {
        throw_at(root.place("axis"), "missing, the tables need [[axis]]");
    }
}

}  // namespace

void read_generic_tables(Section& root, GenericDescription& description) {
    read_coil_sets(root, description);
    read_variables(root, description);
    read_axes(root, description);
    std::vector<std::string> coils;
    for (const std::size_t place : description.coils_by_index()) {
        coils.push_back(description.parts[place].name);
    }
    description.flux = read_named_table(root, "flux", coils, "coil", "");
    description.force = read_named_table(root, "force", names_of(description.motions), "motion", description.flux.file);
    description.inductance = read_inductance(root, description);
    read_outputs(root, description);
    read_iron_loss(root, description);
    check_corrections(description);
    require_tables(root, description);
}

}  // namespace kzb::tool
