#include "generic_models.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "bench/reference/table_formula.h"
#include "random_table.h"

namespace kzb_bench_test {

using kzb_reference::add_record;
using kzb_reference::Axis;
using kzb_reference::Field;
using kzb_reference::put_fields;
using kzb_reference::Store;

namespace {

constexpr const char* flux_table = "flux_list;0;flux_table;0;";

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

Axis places(int count) {
    Axis axis;
    for (int i = 0; i < count; ++i) {
        axis.push_back(i);
    }
    return axis;
}

struct TableAxes {
    std::vector<Axis> axes;
    std::vector<int> cyclic;
    void add(Axis axis, int flag) {
        axes.push_back(std::move(axis));
        cyclic.push_back(flag);
    }
};

class Model {
  public:
    Model(GenericDice& dice, Store& store) : dice_(dice), store_(store) {}

    GenericShape make() {
        shape_.table_axes_form = dice_.one_of(2);
        kzb_put_int("control", "motor_type", 10008, store_);
        kzb_put_int("parameter", "dummy", 0, store_);
        put_terminals();
        put_element_types();
        put_branches();
        put_motions();
        if (shape_.table_axes_form) {
            put_table_axes_form();
        } else {
            put_coil_set_form();
        }
        put_force();
        put_outputs();
        put_iron_loss();
        return shape_;
    }

  private:
    enum Part { coil, resistor, inductor, capacitor, probe, part_kinds };

    void put_terminals();
    void put_element_types();
    void put_type(Part part, int id);
    void put_branches();
    void put_branch(int id, int type_id, Part part, bool sensible);
    void put_motions();

    Axis position_axis(int motion);
    Axis current_axis();
    void put_corrections();
    std::vector<Field> correction();
    void put_factors();
    void put_table_axes_form();
    void put_coil_set_form();
    void put_set(int place, int type, int coils);
    void put_values(const char* category, const TableAxes& axes, bool smooth);
    void put_table(const char* category, TableAxes axes, int rows);
    void put_force();
    void put_outputs();
    void put_iron_loss();

    GenericDice& dice_;
    Store& store_;
    GenericShape shape_;
    std::vector<int> terminals_;
    int fem_count_ = 0;
    int ports_[part_kinds] = {};
    int branches_ = 0;
    std::vector<std::pair<int, Part>> types_;
    std::vector<int> groups_;
    struct Motion {
        int id;
        int type;
        double limit;
    };
    std::vector<Motion> motions_;
    struct Set {
        int id;
        int type;
        int coils;
        bool reference;
        bool leads;  // to a motion with an axis
    };
    std::vector<Set> sets_;
    int next_coil_ = 0;
    TableAxes main_;
};

void Model::put_terminals() {
    shape_.sources = dice_.pick(dice_.one_of(6) ? 0 : 1, 3);
    const std::vector<int> ports = dice_.order(shape_.sources);
    int id = 0;
    for (int k = 0; k < shape_.sources; ++k) {
        terminals_.push_back(++id);
        add_record("terminal_list;terminal", {{"id", id}, {"type", 1}}, store_);
        add_record("input_port_list;source", {{"id", ports[at(k)]}, {"terminal_id", id}}, store_);
    }
    if (shape_.sources > 0 && dice_.one_of(25)) {  // a port of no terminal
        add_record("input_port_list;source", {{"id", shape_.sources + 1}, {"terminal_id", 77}}, store_);
        ++shape_.sources;
    }
    const int grounds = dice_.one_of(4) ? 0 : dice_.pick(1, 2);
    for (int k = 0; k < grounds; ++k) {
        terminals_.push_back(++id);
        add_record("terminal_list;terminal", {{"id", id}, {"type", 2}}, store_);
    }
    const int nodes = dice_.pick(terminals_.size() < 2 ? 1 : 0, 3);
    for (int k = 0; k < nodes; ++k) {
        // A repeated id is found at its first place; the node stays without branches.
        const int own = dice_.one_of(20) ? 1 : ++id;
        terminals_.push_back(own);
        add_record("terminal_list;terminal", {{"id", own}, {"type", dice_.one_of(4) ? 5 : 0}}, store_);
    }
}

void Model::put_type(Part part, int id) {
    static constexpr int codes[] = {1, -1, -3, -2, -50};
    std::vector<Field> fields = {{"id", id}, {"type", codes[part]}};
    switch (part) {
        case coil: {
            const int group = dice_.one_of(shape_.table_axes_form ? 10 : 3) ? dice_.pick(1, 5) : id;
            groups_.push_back(group);
            fields.push_back({"group_id", group});
            fields.push_back({"resistance", dice_.uniform(0.1, 3.0)});
            fields.push_back({"turns", dice_.uniform(9.0, 11.0)});
            if (dice_.one_of(3)) {
                fields.push_back({"coef_turns2", dice_.uniform(9.0, 11.0)});
            }
            if (dice_.one_of(3)) {
                fields.push_back({"coef_flux", dice_.uniform(0.9, 1.1)});
            }
            if (dice_.one_of(3)) {
                fields.push_back({"base_temperature", dice_.uniform(270.0, 320.0)});
            }
            if (dice_.one_of(2)) {
                fields.push_back({"coef_temperature", dice_.uniform(3000.0, 4000.0)});
            }
            break;
        }
        case resistor:
            fields.push_back({"resistance", dice_.one_of(20) ? 0.0 : dice_.uniform(0.1, 20.0)});
            break;
        case inductor:
            fields.push_back({"inductance", dice_.uniform(1e-4, 1e-1)});
            break;
        case capacitor:
            fields.push_back({"capacitance", dice_.one_of(20) ? 0.0 : dice_.uniform(1e-6, 1e-3)});
            break;
        default:
            break;
    }
    const int place = add_record("element_type_list;element_type", fields, store_);
    types_.emplace_back(id, part);
    if (part == coil) {
        const int interacted = dice_.one_of(4) ? dice_.pick(0, 5) : fem_count_;
        for (int j = 0; j < interacted; ++j) {
            add_record("element_type_list;element_type;interacted_coil", {{"id", j + 1}}, store_, place);
        }
    }
}

void Model::put_element_types() {
    fem_count_ = dice_.one_of(8) ? 0 : dice_.one_of(4) ? 4 : dice_.pick(1, 3);
    std::vector<Part> parts(at(fem_count_), coil);
    for (const Part part : {resistor, inductor, capacitor, probe}) {
        parts.insert(parts.end(), at(dice_.pick(0, 2)), part);
    }
    std::vector<int> ids = dice_.one_of(4) ? dice_.order(static_cast<int>(parts.size())) : std::vector<int>();
    for (std::size_t i = 0; i < parts.size(); ++i) {
        int id = ids.empty() ? static_cast<int>(i) + 1 : ids[i];
        if (dice_.one_of(40)) {
            id = 1;
        }
        put_type(parts[i], id);
        if (dice_.one_of(30)) {  // a record of no known type
            add_record("element_type_list;element_type", {{"id", 50}, {"type", 17}}, store_);
            types_.emplace_back(0, probe);
        }
    }
}

void Model::put_branch(int id, int type_id, Part part, bool sensible) {
    const int count = static_cast<int>(terminals_.size());
    int first = dice_.pick(0, count - 1);
    int second = dice_.pick(0, count - 1);
    if (sensible && count > 1) {
        // The parts follow each other round the terminals, so that most nodes are tied.
        first = id % count;
        second = (id + dice_.pick(1, count - 1)) % count;
    }
    add_record("element_list;element",
               {{"id", id},
                {"1st_terminal_id", terminals_[at(first)]},
                {"2nd_terminal_id", terminals_[at(second)]},
                {"element_type_id", type_id}},
               store_);
    static constexpr const char* lists[] = {"coil_fem", "resistor", "coil_const", "capacitor", "voltage_probe"};
    const int component = dice_.one_of(30) ? 99 : id;
    add_record(std::string("output_port_list;") + lists[part], {{"id", ++ports_[part]}, {"component_id", component}},
               store_);
}

void Model::put_branches() {
    for (const auto& [id, part] : types_) {
        // A single set without its coil is refused.
        if (dice_.one_of(25) && (part != coil || shape_.table_axes_form)) {
            continue;
        }
        const int count = dice_.one_of(20) ? 2 : 1;
        for (int i = 0; i < count; ++i) {
            put_branch(++branches_, id, part, !dice_.one_of(10));
        }
    }
}

void Model::put_motions() {
    shape_.motions = dice_.pick(shape_.table_axes_form ? 0 : 1, 2);
    const std::vector<int> ids = dice_.order(shape_.motions);
    shape_.limits.assign(at(shape_.motions), 1.0);
    for (int k = 0; k < shape_.motions; ++k) {
        const int type = dice_.one_of(10) ? 4 : dice_.pick(0, 1);
        const double limit = dice_.one_of(25) ? 0.0 : type == 1 ? 360.0 / dice_.pick(1, 4) : dice_.uniform(0.01, 0.1);
        const int id = dice_.one_of(25) ? 1 : ids[at(k)];
        motions_.push_back({id, type, limit});
        shape_.limits[at(id - 1)] = limit == 0.0 ? 1.0 : limit;
        std::vector<Field> fields = {{"id", id},
                                     {"type", type},
                                     {"flg_periodic", dice_.pick(0, 1)},
                                     {"forcetable_id", dice_.one_of(5) ? dice_.pick(0, 3) : k + 1},
                                     {"max_displacement", limit}};
        if (!shape_.table_axes_form) {
            fields.push_back({"axis_no", k + 1});  // the first axes are those of the motions
        }
        if (dice_.one_of(3)) {
            fields.push_back({"coef_force", dice_.uniform(0.8, 1.2)});
        }
        add_record("motion_condition_list;motion_condition", fields, store_);
    }
}

Axis Model::position_axis(int motion) {
    const double limit = motion < 0 || motions_[at(motion)].limit == 0.0 ? 1.0 : motions_[at(motion)].limit;
    return kzb_reference::evenly(dice_.one_of(5) ? -limit : 0.0, limit, dice_.pick(2, 4));
}

Axis Model::current_axis() {
    if (dice_.one_of(15)) {
        return {dice_.uniform(-1.0, 1.0)};
    }
    const double most = dice_.uniform(5.0, 50.0);
    switch (dice_.pick(0, 3)) {
        case 0:
            return kzb_reference::evenly(0.0, most, dice_.pick(2, 4));
        case 1:
            return kzb_reference::evenly(dice_.uniform(0.5, 4.0), most, dice_.pick(2, 4));
        default:
            return kzb_reference::evenly(-most, most, dice_.pick(2, 5));
    }
}

void Model::put_corrections() {
    const int parameters = dice_.pick(0, 2);
    for (int i = 0; i < parameters; ++i) {
        add_record("correction_parameter_list;correction_parameter",
                   {{"name", std::string(dice_.one_of(20) ? "1bad"
                                         : i == 0         ? "gain"
                                                          : "shift")},
                    {"value", dice_.uniform(0.9, 1.1)}},
                   store_);
    }
}

// Fields of a correction; often none.
std::vector<Field> Model::correction() {
    static constexpr const char* texts[] = {
        "x * 1.01", "x * gain + shift", "x + 0.001",     "gain * x",    "",           "sqrt(x)",        "x +", "x / 0",
        "0 / 0",    "x = 2 * x, x + 1", "x > 0 ? x : 0", "unknown * x", "sin(x) + x", "x^3 / (1 + x^2)"};
    if (dice_.one_of(2)) {
        return {};
    }
    std::vector<Field> fields = {
        {"correction_expression", std::string(texts[dice_.pick(0, static_cast<int>(std::size(texts)) - 1)])}};
    if (!dice_.one_of(20)) {
        fields.push_back({"correction_variable", std::string(dice_.one_of(15) ? "gain" : "x")});
    }
    return fields;
}

void Model::put_factors() {
    add_record("input_parameter_list;input_parameter",
               {{"type", 3}, {"name", std::string("k")}, {"value", dice_.uniform(0.5, 2.0)}}, store_);
    add_record("input_parameter_list;input_parameter", {{"type", 1}, {"name", std::string("unused")}, {"value", 1.0}},
               store_);
    for (int j = 1; j <= 3; ++j) {
        const int group = groups_.empty() || dice_.one_of(15) ? 9 : groups_[at(dice_.pick(0, fem_count_ - 1))];
        add_record("user_defined_equation_list;user_defined_equation",
                   {{"name", std::string("i").append(std::to_string(j))},
                    {"type", dice_.one_of(20) ? 0 : 1},
                    {"reference_id", group}},
                   store_);
    }
    const int motion = motions_.empty() ? 7 : motions_[0].id;
    add_record("user_defined_equation_list;user_defined_equation",
               {{"name", std::string("th")}, {"type", 2}, {"reference_id", motion}}, store_);
}

// Random values, or such that the coils are inductors that saturate a little: then most steps converge.
void Model::put_values(const char* category, const TableAxes& axes, bool smooth) {
    if (!smooth) {
        RandomTable(dice_.engine(), axes.axes, axes.cyclic).put(category, "table", store_);
        return;
    }
    const std::size_t leading = axes.axes.size() - 1;
    kzb_reference::fill(store_, category, "table", axes.axes, axes.cyclic, [&](const double* x) {
        double value = dice_.uniform(-1e-4, 1e-4);
        for (std::size_t a = 0; a < leading; ++a) {
            const double share = static_cast<double>(a) == x[leading] ? 5e-3 : 5e-4;
            value += share * x[a] / (1.0 + 0.01 * std::fabs(x[a]));
        }
        return value;
    });
}

void Model::put_table(const char* category, TableAxes axes, int rows) {
    if (dice_.one_of(40)) {
        return;
    }
    // A table of the wrong number of axes. No cyclic axis ever sees a current: the reference's wrap by repeated
    // addition would take forever where a current runs away.
    if (dice_.one_of(30)) {
        axes.add(kzb_reference::evenly(-1.0, 1.0, 2), 0);
    } else if (dice_.one_of(30) && !axes.axes.empty()) {
        axes.axes.pop_back();
        axes.cyclic.pop_back();
    }
    if (!(rows == 1 && dice_.one_of(2))) {
        axes.add(places(std::max(rows, 1)), 0);
    }
    if (axes.axes.empty()) {
        axes.add({0.0}, 0);
    }
    put_values(category, axes, !dice_.one_of(4));
}

void Model::put_table_axes_form() {
    put_corrections();
    struct Made {
        int type;
        int reference;
        std::string definition;
        Axis grid;
        int cyclic;
    };
    std::vector<Made> made;
    const bool expressions = dice_.one_of(3);
    static constexpr const char* texts[] = {
        "i1 + i2", "i1 - k * i2", "sin(th * 0.01)",     "k * i1",   "i1 * i1",          "bad(",        "0 / 0",
        "i1 / i2", "th * k",      "i1 + i2 + i3 + 0*k", "sqrt(i1)", "th > 1 ? i1 : i2", "k = 2, k*i1", "unused + 1"};
    const int currents = std::min(fem_count_, 3);
    for (int j = 0; j < currents; ++j) {
        if (expressions && dice_.one_of(2)) {
            made.push_back({0, 0, texts[dice_.pick(0, static_cast<int>(std::size(texts)) - 1)], current_axis(), 0});
        } else {
            made.push_back({dice_.one_of(30) ? 6 : 1, groups_[at(j)], "", current_axis(), 0});
        }
    }
    for (std::size_t m = 0; m < motions_.size(); ++m) {
        made.push_back({2, dice_.one_of(30) ? 9 : motions_[m].id, "", position_axis(static_cast<int>(m)),
                        dice_.one_of(2) ? 1 : 0});
    }
    if (made.empty() || dice_.one_of(10)) {
        made.push_back({0, 0, "k", current_axis(), 0});
    }
    const int count = static_cast<int>(made.size());
    const std::vector<int> ids = dice_.order(count);
    const bool shuffled = dice_.one_of(4);
    std::vector<const Made*> by_number(at(count), nullptr);
    for (int i = 0; i < count; ++i) {
        const Made& axis = made[at(i)];
        const int id = shuffled ? ids[at(i)] : i + 1;
        by_number[at(id - 1)] = &axis;
        std::vector<Field> fields = {{"id", id}, {"type", axis.type}, {"reference_id", axis.reference}};
        if (!axis.definition.empty()) {
            fields.push_back({"definition", axis.definition});
        }
        if (dice_.one_of(4)) {
            for (const Field& field : correction()) {
                fields.push_back(field);
            }
        }
        add_record("table_axis_list;axis", fields, store_);
    }
    for (const Made* const axis : by_number) {
        main_.add(axis->grid, axis->cyclic);
    }
    const std::vector<int> indices = dice_.order(fem_count_);
    const bool permuted = dice_.one_of(4);
    for (int j = 0; j < fem_count_; ++j) {
        if (dice_.one_of(30)) {
            continue;
        }
        std::vector<Field> fields = {{"index", permuted ? indices[at(j)] - 1 : j}, {"reference_id", groups_[at(j)]}};
        for (const Field& field : correction()) {
            fields.push_back(field);
        }
        put_fields("flux_list;0;phase_list;0;phase;" + std::to_string(j) + ";", fields, store_);
    }
    put_factors();
    put_table(flux_table, main_, fem_count_);
}

void Model::put_set(int place, int type, int coils) {
    Set set{place + 1, type, coils, false, false};
    std::vector<Field> fields = {{"id", set.id},
                                 {"type", type},
                                 {"number_of_poles", 4},
                                 {"phase_initial", dice_.one_of(3) ? dice_.uniform(-90.0, 90.0) : 0.0}};
    if (type == 1) {
        std::vector<int> leaders;
        for (const Set& other : sets_) {
            if (other.leads) {
                leaders.push_back(other.id);
            }
        }
        set.leads = true;
        set.reference = !leaders.empty() && dice_.one_of(2);
        if (set.reference) {
            fields.push_back({"flg_ref_coil", 1});
            fields.push_back({"ref_coil_set_id", leaders[at(dice_.pick(0, static_cast<int>(leaders.size()) - 1))]});
        }
        fields.push_back({"motion_id", motions_[at(dice_.pick(0, shape_.motions - 1))].id});
    }
    main_.add(current_axis(), 0);
    fields.push_back({"current_axis_no", dice_.one_of(20) ? 0 : static_cast<int>(main_.axes.size())});
    if (type == 1 && !set.reference) {
        main_.add(kzb_reference::evenly(-180.0, 180.0, dice_.pick(2, 4)), dice_.pick(0, 1));
    }
    // A set that refers to another takes the phase axis of the last one that has it.
    fields.push_back({"phase_axis_no", dice_.one_of(20) ? -1 : static_cast<int>(main_.axes.size())});
    add_record("element_set_list;coil_set", fields, store_);
    const double first = dice_.one_of(3) ? dice_.uniform(-30.0, 30.0) : 0.0;
    for (int c = 0; c < coils; ++c) {
        put_fields("element_set_list;0;coil_set;" + std::to_string(place) + ";coil;" + std::to_string(c) + ";",
                   {{"coil_id", groups_[at(next_coil_++)]}, {"phase_diff", first + 120.0 * c}}, store_);
    }
    sets_.push_back(set);
}

void Model::put_coil_set_form() {
    for (int m = 0; m < shape_.motions; ++m) {
        main_.add(position_axis(m), dice_.pick(0, 1));
    }
    int place = 0;
    while (next_coil_ < fem_count_ && place < 2) {
        const int left = fem_count_ - next_coil_;
        const int coils = left >= 3 && dice_.one_of(2) ? 3 : dice_.pick(1, std::min(left, 2));
        put_set(place++, coils == 3 ? 1 : dice_.pick(0, 1), coils);
    }
    if (dice_.one_of(8)) {
        put_set(place, 1, 0);
    }
    int total = 0;
    for (const Set& set : sets_) {
        total += set.coils;
    }
    put_table(flux_table, main_, total);
    const int pairs = std::max(1, static_cast<int>(sets_.size()) * total);
    put_table("inductance_list;0;diff_inductance_table;0;", main_, pairs);
}

void Model::put_force() {
    put_table("torque_force_list;0;torque_table;0;", main_, shape_.motions);
    const int phases = dice_.pick(0, 2);
    for (int i = 0; i < phases; ++i) {
        std::vector<Field> fields = {{"index", i}};
        for (const Field& field : correction()) {
            fields.push_back(field);
        }
        put_fields("torque_force_list;0;phase_list;0;phase;" + std::to_string(i) + ";", fields, store_);
    }
}

void Model::put_outputs() {
    const int count = dice_.pick(0, 3);
    kzb_put_int("num_user_specified_parameter", "num_user_specified_parameter", count, store_);
    for (int i = 1; i <= count; ++i) {
        std::vector<Field> fields = {{"table_id", dice_.one_of(8) ? dice_.pick(-1, 5) : i},
                                     {"output_port_id", dice_.one_of(8) ? dice_.pick(0, 4) : i},
                                     {"reference_resolution", dice_.one_of(3) ? dice_.pick(1, 2) : 0}};
        if (dice_.one_of(3)) {
            fields.push_back({"coef_output_port", dice_.uniform(0.5, 2.0)});
        }
        for (const Field& field : correction()) {
            fields.push_back(field);
        }
        put_fields("user_specified_parameter" + std::to_string(i), fields, store_);
    }
    const int rows = std::max(count - dice_.pick(0, 1), 1);
    if (!dice_.one_of(5)) {
        put_table("output_list;0;output_table;0;", main_, rows);
    }
    if (dice_.one_of(3)) {
        put_table("output_list;0;output_table;1;", main_, rows);
    }
}

void Model::put_iron_loss() {
    shape_.user_inputs = dice_.pick(0, 2);
    const std::vector<int> order = dice_.order(shape_.user_inputs);
    for (int i = 0; i < shape_.user_inputs; ++i) {
        add_record("input_port_list;user_input", {{"id", order[at(i)]}, {"loss_axis_no", i + 1}}, store_);
    }
    if (dice_.one_of(2)) {
        return;
    }
    const int count = dice_.pick(1, 3);
    TableAxes axes;
    for (int i = 0; i < count; ++i) {
        const int reference_type = dice_.one_of(10) ? dice_.pick(-1, 4) : dice_.pick(0, 2);
        const int physical_type = dice_.one_of(4) ? dice_.pick(-1, 5) : reference_type == 2 ? 3 : dice_.pick(1, 2);
        put_fields("ironloss;0;axis_list;0;axis;" + std::to_string(i) + ";",
                   {{"axis_no", dice_.one_of(15) ? dice_.pick(-1, 6) : i + 1},
                    {"physical_type", physical_type},
                    {"reference_type", reference_type},
                    {"reference_id", dice_.one_of(8) ? dice_.pick(-1, 9) : dice_.pick(1, 2)}},
                   store_);
        axes.add(kzb_reference::evenly(-100.0, 2000.0, dice_.pick(2, 4)), dice_.one_of(5) ? 1 : 0);
    }
    if (dice_.one_of(10)) {
        axes.add(kzb_reference::evenly(-1.0, 1.0, 3), 0);
    }
    RandomTable(dice_.engine(), axes.axes, axes.cyclic).put("ironloss", "table", store_);
}

}  // namespace

double GenericDice::number(double size) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    switch (pick(0, 59)) {
        case 0:
            return 0.0;
        case 1:
            return -0.0;
        case 2:
            return one_of(6) ? 1e300 : -1e5;
        case 3:
            return one_of(6) ? -1e155 : 1e-300;
        case 4:
            return one_of(6) ? infinity : 1e4;
        case 5:
            return one_of(6) ? std::numeric_limits<double>::quiet_NaN() : -1e-300;
        default:
            return uniform(-size, size);
    }
}

std::vector<int> GenericDice::order(int count) {
    std::vector<int> numbers(at(count));
    for (int i = 0; i < count; ++i) {
        numbers[at(i)] = i + 1;
    }
    std::shuffle(numbers.begin(), numbers.end(), random_);
    return numbers;
}

GenericShape make_random_generic(GenericDice& dice, Store& store) {
    return Model(dice, store).make();
}

}  // namespace kzb_bench_test
