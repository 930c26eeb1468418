// Where the values of the tables stand in a description: flux, force, inductance, outputs, iron loss.
#include <algorithm>

#include "fmt/format.h"
#include "kzb/generic_table_sections.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

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

LossAxisText read_loss_axis(Section& inner, const GenericDescription& description) {
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
    return axis;
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
        description.loss_axes.push_back(read_loss_axis(inner, description));
    }
    if (description.loss_axes.empty()) {
        section->fail("axis", "missing, expected [[iron_loss.axis]]");
    }
    section->end();
}

}  // namespace

void read_value_tables(Section& root, GenericDescription& description) {
    std::vector<std::string> coils;
    for (const std::size_t place : description.coils_by_index()) {
        coils.push_back(description.parts[place].name);
    }
    description.flux = read_named_table(root, "flux", coils, "coil", "");
    description.force = read_named_table(root, "force", names_of(description.motions), "motion", description.flux.file);
    description.inductance = read_inductance(root, description);
    read_outputs(root, description);
    read_iron_loss(root, description);
}

}  // namespace kzb::tool
