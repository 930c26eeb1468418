// Applications: that the file offers one for its machine, and that the tables which an application looks up are there,
// have the axes that it asks for, and number their components from 0.
#include <cmath>
#include <optional>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/application_tables.h"
#include "kzb/sound_table.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

std::string name_of(const ApplicationTables& application) {
    return *application.word == '\0' ? application.motor : fmt::format("{} {}", application.motor, application.word);
}

std::string dims_of(const std::vector<Layout>& layouts) {
    std::vector<std::size_t> dims;
    for (const Layout& layout : layouts) {
        dims.push_back(layout.axes.size());
    }
    return fmt::format("{}", fmt::join(dims, " or "));
}

bool is_multiple(double span, double unit) {
    constexpr double tolerance = 1e-6;
    const double count = span / unit;
    return count > 0.5 && std::abs(count - std::round(count)) <= tolerance * std::max(count, 1.0);
}

// The travel, in axis units, after which the coils see the same machine again; nothing where the machine has none.
std::optional<double> period_of(const KZB_STORE& store, int motor_type) {
    if (motor_type == 10005) {
        const double length = get_double(store, "control", "electrical_length");
        return length > 0.0 ? std::optional<double>(length) : std::nullopt;
    }
    const int poles = get_int(store, "control", "number_of_poles");
    if (motor_type == 10004 || poles < 1) {
        return std::nullopt;
    }
    const bool is_reluctance = motor_type >= 10010;  // a pole there is a tooth of the rotor
    return is_reluctance ? 360.0 / poles : 720.0 / poles;
}

void check_components(const KZB_TABLE& table, const TableUse& use, std::size_t axis, int components,
                      Findings& findings) {
    const ZeroedArray& nodes = table.axes[axis];
    const Subject subject{use.category, use.key, axis_place(axis)};
    if (table.sizes[axis] < components) {
        findings.error("component-axis", subject,
                       fmt::format("{} components, expected {}", table.sizes[axis], components));
        return;
    }
    for (int i = 0; i < components; ++i) {
        const auto node = static_cast<std::size_t>(i);
        if (std::abs(nodes[node] - static_cast<double>(i)) > KZB_AXIS_TOL) {
            findings.error("component-axis", {use.category, use.key, node_place(axis, node)},
                           fmt::format("{:g}, expected the number of the component, {}", nodes[node], i));
            return;
        }
    }
    if (table.sizes[axis] > components) {
        findings.warning(
            "component-axis", subject,
            fmt::format("{} components, expected {}; the others are not looked up", table.sizes[axis], components));
    }
}

void check_span(const KZB_TABLE& table, const TableUse& use, std::size_t axis, char letter, const Examined& model,
                Findings& findings) {
    if (table.sizes[axis] < 2) {
        return;
    }
    const double span = table.axes[axis][rows_of(table, axis) - 1] - table.axes[axis][0];
    const bool cyclic = table.cyclic[axis] > 0;
    if (letter == 'b') {
        if (cyclic && !is_multiple(span, 360.0)) {
            findings.warning("cyclic-span", {use.category, use.key, axis_place(axis)},
                             fmt::format("a cyclic current phase of {:g} degrees, expected 360", span));
        }
        return;
    }
    const std::optional<double> period = period_of(model.store, model.motor_type);
    if (!period) {
        return;
    }
    if (!cyclic) {
        if (model.motor_type != 10005) {
            findings.warning("position-not-cyclic", {use.category, use.key, axis_place(axis)},
                             fmt::format("beyond {:g} degrees the value at the edge acts; expected a cyclic axis of a "
                                         "machine that rotates",
                                         table.axes[axis][rows_of(table, axis) - 1]));
        }
        return;
    }
    // In the rotor's frame a three-phase machine repeats after a sixth of its electrical period.
    const double unit = letter == 'P' ? *period / 6.0 : *period;
    if (!is_multiple(span, unit)) {
        findings.warning("cyclic-span", {use.category, use.key, axis_place(axis)},
                         fmt::format("a cyclic position of {:g}, expected a whole multiple of {:g}", span, unit));
    }
}

void check_layout(const KZB_TABLE& table, const TableUse& use, const Layout& layout, const Examined& model,
                  Findings& findings) {
    for (std::size_t axis = 0; axis < layout.axes.size(); ++axis) {
        if (!has_nodes(table, axis)) {
            continue;
        }
        switch (const char letter = layout.axes[axis]) {
            case 'c':
                check_components(table, use, axis, layout.components, findings);
                break;
            case 'b':
            case 'p':
            case 'P':
                check_span(table, use, axis, letter, model, findings);
                break;
            default:
                break;
        }
    }
}

void check_table(const ApplicationTables& application, const TableUse& use, const Examined& model, Findings& findings) {
    const KZB_TABLE* table = find_table(model.store, use.category, use.key);
    const Subject subject{use.category, use.key, ""};
    if (table == nullptr) {
        if (use.without != nullptr) {
            findings.warning("table-absent", subject,
                             fmt::format("absent, expected by {}; {}", name_of(application), use.without));
        } else if (!use.optional) {
            findings.error("table-absent", subject,
                           fmt::format("absent, expected by {}, which the file offers", name_of(application)));
        }
        return;
    }
    if (is_placeholder(*table)) {
        return;  // told already
    }
    const Layout* layout = layout_of(use, table->dim);
    if (layout == nullptr) {
        const std::string found =
            fmt::format("{} axes, expected {} by {}", table->dim, dims_of(use.layouts), name_of(application));
        use.without == nullptr ? findings.error("table-dim", subject, found)
                               : findings.warning("table-dim", subject, fmt::format("{}; {}", found, use.without));
        return;
    }
    if (has_values(*table)) {
        check_layout(*table, use, *layout, model, findings);
    }
}

void expect_same_dim(const KZB_STORE& store, const TableUse& of, const TableUse& as, Findings& findings) {
    const KZB_TABLE* table = find_table(store, of.category, of.key);
    const KZB_TABLE* other = find_table(store, as.category, as.key);
    if (table != nullptr && other != nullptr && layout_of(of, table->dim) != nullptr &&
        layout_of(as, other->dim) != nullptr && table->dim != other->dim) {
        findings.error("table-dim", {of.category, of.key, ""},
                       fmt::format("{} axes, expected {} as {}/{} has", table->dim, other->dim, as.category, as.key));
    }
}

// The torque of Harmonic lies in one of two categories; the category decides what it is looked up with.
void check_harmonic_torque(const ApplicationTables& application, const Examined& model, Findings& findings) {
    const bool by_phase = has_category(model.store, "harmonic_torque");
    const TableUse use = by_phase ? TableUse{"harmonic_torque", "torque_ibeta", {{"bPa"}}}
                                  : TableUse{"pmsm_torque", "torque_ibeta", {{"iipi"}}};
    check_table(application, use, model, findings);
}

// What one table cannot show alone.
void check_together(const ApplicationTables& application, const Examined& model, Findings& findings) {
    const std::string_view word = application.word;
    const KZB_STORE& store = model.store;
    if (model.motor_type == 10000 && word == "Harmonic") {
        expect_same_dim(store, application.tables[0], application.tables[1], findings);
        check_harmonic_torque(application, model, findings);
    } else if (word == "FluxIntegralDQTheta") {
        expect_same_dim(store, application.tables[1], application.tables[0], findings);
        if (table_dim(store, "current_table", "id") == 4) {
            check_table(application, {"current_table", "i0", {{"dddP"}}}, model, findings);
        }
    } else if (word == "LdLq") {
        const KZB_CATEGORY* category = find_category(store, "d_flux");
        if (category == nullptr || category->doubles.find("d_flux") == nullptr) {
            findings.warning("table-absent", {"d_flux", "d_flux", ""},
                             "no double of that name: the magnet flux linkage is read as 0; expected it by PMSM LdLq");
        }
    }
}

// The tables of a machine with tables of its own; without them its constants make them.
void check_induction(const ApplicationTables& application, const Examined& model, Findings& findings) {
    constexpr const char* category = "InductionParam_HigherAccuracy";
    if (!has_category(model.store, category)) {
        return;
    }
    for (const char* key : {"R2_table", "L11_table", "M12_table", "M21_table", "L22_table"}) {
        check_table(application, {category, key, {{"sa"}}}, model, findings);
    }
    check_table(application, {category, "ironloss_table", {{"sa"}}, nullptr, true}, model, findings);
}

// The table of magnet flux in files of four simple tables stands under another name.
TableUse as_stored(const TableUse& use, const Examined& model) {
    const bool four_tables = model.motor_type == 10000 && get_int(model.store, "control", "accuracy_type") == 0 &&
                             get_int(model.store, "control", "number_of_tables") == 4;
    TableUse stored = use;
    if (four_tables && std::string_view(use.category) == "mag_flux") {
        stored.category = "magflux";
        stored.key = "magflux";
    }
    return stored;
}

const char* word_of_accuracy(int accuracy_type) {
    switch (accuracy_type) {
        case 1:
            return "LdLq";
        case 3:
        case 4:
        case 6:
        case 7:
            return "Harmonic";
        case 5:
            return "FluxIntegralDQTheta";
        default:
            return "SimpleHarmonic";
    }
}

void check_accuracy(const Examined& model, Findings& findings) {
    const int accuracy = get_int(model.store, "control", "accuracy_type");
    const char* const word = word_of_accuracy(accuracy);
    if (model.motor_type == 10000 && !has_application(model.store, "PMSM", word)) {
        findings.error("accuracy-type", {"control", "accuracy_type", ""},
                       fmt::format("{} selects PMSM {}, which the file does not offer; expected one that it offers",
                                   accuracy, word));
    }
}

}  // namespace

void check_applications(const Examined& model, Findings& findings) {
    std::vector<std::string> expected;
    bool any = false;
    for (const ApplicationTables* application : applications_of(model.motor_type)) {
        expected.push_back(name_of(*application));
        if (!has_application(model.store, application->motor, application->word)) {
            continue;
        }
        any = true;
        for (const TableUse& use : application->tables) {
            check_table(*application, as_stored(use, model), model, findings);
        }
        check_together(*application, model, findings);
        if (model.motor_type == 10006) {
            check_induction(*application, model, findings);
        }
    }
    if (!any && !expected.empty()) {
        std::string missing;
        for (const char* category : {"control", "parameter"}) {
            missing += has_category(model.store, category) ? "" : fmt::format("; no category {}", category);
        }
        findings.error("application", {},
                       fmt::format("the categories offer none for motor type {}, expected {}{}", model.motor_type,
                                   fmt::join(expected, " or "), missing));
    }
    if (any) {
        check_accuracy(model, findings);
    }
}

}  // namespace kzb::tool
