// A generic model whose every number can be said by hand: each component lies between a source and the ground, so that
// none sees another.
//
//   source 1 "supply": coil 1, resistors 1 and 3, inductor, probes 1 and 3      ground: terminal 2
//   source 2 "field":  coil 2, resistor 2, capacitor, probe 2
//   coil k  psi = L_k i with L_1 = 0.1 H, L_2 = 0.2 H     R_1 = 2 Ohm, R_2 = 4 Ohm
//   torque of motion 1, which rotates: 3 i_1 + 0.5 angle in degrees     force of motion 2: 10 position + i_2
#pragma once

#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "interface/model_file.h"

namespace kzb_test {

using FieldValue = std::variant<int, double, const char*>;
using Fields = std::vector<std::pair<const char*, FieldValue>>;

// Name of a record's category: "list;0;record;3;", or with three names "a;0;b;<outer>;c;3;".
inline std::string record_name(const std::string& path, int place, int outer = 0) {
    std::vector<std::string> names{""};
    for (const char c : path) {
        if (c == ';') {
            names.emplace_back();
        } else {
            names.back() += c;
        }
    }
    std::string name;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const int index = i + 1 == names.size() ? place : i == 0 ? 0 : outer;
        name += names[i] + ';' + std::to_string(index) + ';';
    }
    return name;
}

inline void put_fields(ModelFile& file, const std::string& category, const Fields& fields) {
    for (const auto& [key, value] : fields) {
        if (const int* const number = std::get_if<int>(&value)) {
            file.integer(category.c_str(), key, *number);
        } else if (const double* const real = std::get_if<double>(&value)) {
            file.number(category.c_str(), key, *real);
        } else {
            file.text(category.c_str(), key, std::get<const char*>(value));
        }
    }
}

// Appends a record to a list; its place.
inline int add_record(ModelFile& file, const std::string& path, const Fields& fields, int outer = 0) {
    const int indices[] = {0, outer, 0};
    const int place = kzb_get_subcategory_num(path.c_str(), indices, file.store());
    put_fields(file, record_name(path, place, outer), fields);
    return place;
}

inline void add_terminal(ModelFile& file, int id, int type, const char* name) {
    add_record(file, "terminal_list;terminal", {{"id", id}, {"type", type}, {"name", name}});
}

// A terminal driven by the next input port.
inline void add_source(ModelFile& file, int id, const char* name) {
    const int indices[] = {0, 0};
    const int port = kzb_get_subcategory_num("input_port_list;source", indices, file.store()) + 1;
    add_terminal(file, id, 1, name);
    add_record(file, "input_port_list;source", {{"id", port}, {"terminal_id", id}});
}

// The next output port of a list.
inline void add_port(ModelFile& file, const char* list, int component) {
    const std::string path = std::string("output_port_list;") + list;
    const int indices[] = {0, 0};
    const int port = kzb_get_subcategory_num(path.c_str(), indices, file.store()) + 1;
    add_record(file, path, {{"id", port}, {"component_id", component}});
}

// An element type with the fields given, and a branch of the same id from `first` to `second`, with a port.
inline void add_part(ModelFile& file, int id, int first, int second, int type, const char* name, const char* list,
                     const Fields& fields) {
    Fields all{{"id", id}, {"type", type}, {"name", name}};
    all.insert(all.end(), fields.begin(), fields.end());
    add_record(file, "element_type_list;element_type", all);
    add_record(file, "element_list;element",
               {{"id", id}, {"1st_terminal_id", first}, {"2nd_terminal_id", second}, {"element_type_id", id}});
    add_port(file, list, id);
}

inline void add_resistor(ModelFile& file, int id, int first, int second, double ohm, const char* name) {
    add_part(file, id, first, second, -1, name, "resistor", {{"resistance", ohm}});
}
inline void add_inductor(ModelFile& file, int id, int first, int second, double henry, const char* name) {
    add_part(file, id, first, second, -3, name, "coil_const", {{"inductance", henry}});
}
inline void add_capacitor(ModelFile& file, int id, int first, int second, double farad, const char* name) {
    add_part(file, id, first, second, -2, name, "capacitor", {{"capacitance", farad}});
}
inline void add_probe(ModelFile& file, int id, int first, int second, const char* name) {
    add_part(file, id, first, second, -50, name, "voltage_probe", {});
}

// A coil of its own group, which has its id; `interacted` coils, those of the first ids, act on it.
inline void add_coil(ModelFile& file, int id, int first, int second, double ohm, int interacted, const char* name) {
    const int indices[] = {0, 0};
    const int place = kzb_get_subcategory_num("element_type_list;element_type", indices, file.store());
    add_part(file, id, first, second, 1, name, "coil_fem",
             {{"resistance", ohm}, {"group_id", id}, {"turns", 1.0}, {"coef_temperature", 1000.0}});
    for (int j = 0; j < interacted; ++j) {
        add_record(file, "element_type_list;element_type;interacted_coil", {{"id", j + 1}}, place);
    }
}

inline void add_motion(ModelFile& file, int id, int type, int periodic, int axis_no, double limit, const char* name) {
    add_record(file, "motion_condition_list;motion_condition",
               {{"id", id},
                {"type", type},
                {"flg_periodic", periodic},
                {"forcetable_id", id},
                {"axis_no", axis_no},
                {"max_displacement", limit},
                {"name", name}});
}

// A set of one coil, whose current feeds an axis of the tables.
inline void add_single_set(ModelFile& file, int id, int coil, const char* name) {
    const int place = add_record(file, "element_set_list;coil_set",
                                 {{"id", id}, {"type", 0}, {"current_axis_no", id}, {"name", name}});
    add_record(file, "element_set_list;coil_set;coil", {{"coil_id", coil}, {"phase_diff", 0.0}}, place);
}

namespace generic_model {

inline const Point currents{-1000.0, 1000.0};
inline const Point angles{-3600.0, 3600.0};
inline const Point travels{-10.0, 10.0};
// Axes of the tables: currents of both coils, angle, position, then rows.
inline std::vector<Point> axes(int rows) {
    return {currents, currents, angles, travels, every(1.0, 0.0, rows - 1.0)};
}

inline double flux(const Point& x) {
    return x[4] == 0.0 ? 0.1 * x[0] : 0.2 * x[1];
}
// By pair: 0 and 3 are those of a coil with itself.
inline double inductance(const Point& x) {
    return x[4] == 0.0 ? 0.1 : x[4] == 3.0 ? 0.2 : 0.0;
}
inline double force(const Point& x) {
    return x[4] == 0.0 ? 3.0 * x[0] + 0.5 * x[2] : 10.0 * x[3] + x[1];
}
inline double output(const Point& x) {
    return x[4] == 0.0 ? 7.0 + x[0] : 100.0 + x[2];
}

}  // namespace generic_model

inline void generic_machine(ModelFile& file) {
    using namespace generic_model;
    file.integer("control", "motor_type", 10008).number("parameter", "RU", 0.0);
    add_source(file, 1, "supply");
    add_terminal(file, 2, 2, "ground");
    add_source(file, 3, "field");
    add_coil(file, 1, 1, 2, 2.0, 2, "winding");
    add_coil(file, 2, 3, 2, 4.0, 2, "rotor");
    add_resistor(file, 11, 1, 2, 4.0, "load");
    add_resistor(file, 12, 3, 2, 5.0, "bleeder");
    add_resistor(file, 13, 1, 2, 8.0, "heater");
    add_inductor(file, 21, 1, 2, 0.1, "choke");
    add_capacitor(file, 31, 3, 2, 1e-3, "filter");
    add_probe(file, 41, 1, 2, "gauge");
    add_probe(file, 42, 3, 2, "second gauge");
    add_probe(file, 43, 1, 3, "third gauge");
    add_motion(file, 1, 1, 0, 3, 90.0, "shaft");
    add_motion(file, 2, 0, 1, 4, 0.5, "slide");
    add_single_set(file, 1, 1, "winding set");
    add_single_set(file, 2, 2, "rotor set");
    file.table(record_name("flux_list;flux_table", 0).c_str(), "table", axes(2), flux)
        .table(record_name("inductance_list;diff_inductance_table", 0).c_str(), "table", axes(4), inductance)
        .table(record_name("torque_force_list;torque_table", 0).c_str(), "table", axes(2), force);
}

// Two user-specified values: 7 + i_1, and 100 + angle.
inline void add_generic_outputs(ModelFile& file) {
    constexpr const char* count = "num_user_specified_parameter";
    file.integer(count, count, 2)
        .table(record_name("output_list;output_table", 0).c_str(), "table", generic_model::axes(2),
               generic_model::output);
    for (const int i : {1, 2}) {
        const std::string category = "user_specified_parameter" + std::to_string(i);
        put_fields(file, category, {{"table_id", i}, {"output_port_id", i}, {"title", i == 1 ? "first" : "second"}});
    }
}

// Iron loss 5 + 2 v + 3 i_1 + 0.01 n over a user input v, the current of coil 1 and the speed n of motion 1.
inline double generic_iron_loss(double input, double current, double rpm) {
    return 5.0 + 2.0 * input + 3.0 * current + 0.01 * rpm;
}
inline void add_generic_iron_loss(ModelFile& file) {
    const Point inputs{0.0, 1000.0};
    file.table("ironloss", "table", {inputs, generic_model::currents, {-1e5, 1e5}},
               [](const Point& x) { return generic_iron_loss(x[0], x[1], x[2]); });
    const int sources[][3] = {{0, 0, -1}, {1, 1, 1}, {2, 3, 1}};  // reference and physical type, reference
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& [reference, physical, id] = sources[axis - 1];
        add_record(
            file, "ironloss;axis_list;axis",
            {{"axis_no", axis}, {"reference_type", reference}, {"physical_type", physical}, {"reference_id", id}});
    }
    add_record(file, "input_port_list;user_input", {{"id", 1}, {"loss_axis_no", 1}});
}

}  // namespace kzb_test
