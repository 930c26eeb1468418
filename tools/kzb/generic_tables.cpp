// What a description says of its tables, and whether its parts fit each other.
#include <algorithm>

#include "circuit/generic/expression.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/generic_table_sections.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

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
    read_value_tables(root, description);
    check_corrections(description);
    require_tables(root, description);
}

}  // namespace kzb::tool
