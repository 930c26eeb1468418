// What feeds the axes of the tables in a description: variables, expressions, axes.
#include <algorithm>

#include "circuit/generic/expression.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/generic_table_sections.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

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

std::vector<std::string> variable_names(const GenericDescription& description) {
    return names_of(description.variables);
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

void read_expression_variables(Section& root, GenericDescription& description) {
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
}

void read_correction_parameters(Section& root, GenericDescription& description) {
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

}  // namespace

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

void read_variables(Section& root, GenericDescription& description) {
    read_expression_variables(root, description);
    read_correction_parameters(root, description);
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

}  // namespace kzb::tool
