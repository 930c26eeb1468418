#include "bench/reference/generic_machine.h"

#include <cmath>

#include "bench/reference/table_formula.h"

namespace kzb_reference {

namespace {

constexpr int coil_count = 3;
constexpr double self_inductance = 3e-3;    // H
constexpr double mutual_inductance = 1e-3;  // H
constexpr double saturation = 40.0;         // A
constexpr double magnet_flux = 0.05;        // Vs
constexpr double most_current = 30.0;       // A
constexpr const char* flux_table = "flux_list;0;flux_table;0;";
constexpr const char* force_table = "torque_force_list;0;torque_table;0;";

double delta(int k) {
    return 2.0 * M_PI / 3.0 * k;
}

double flux(const double* i, double theta, int k) {
    double linked =
        self_inductance * i[k] / (1.0 + std::fabs(i[k]) / saturation) + magnet_flux * std::cos(delta(k) + theta);
    for (int j = 0; j < coil_count; ++j) {
        linked -= j == k ? 0.0 : mutual_inductance * i[j];
    }
    return linked;
}

double torque(const double* i, double theta, int pole_pairs) {
    double sum = 0.0;
    for (int k = 0; k < coil_count; ++k) {
        sum += i[k] * std::sin(delta(k) + theta);
    }
    return -pole_pairs * magnet_flux * sum;
}

struct Currents {
    double i[coil_count];
    // amplitude, phase in degrees
    Currents(double amplitude, double phase, double theta) {
        for (int k = 0; k < coil_count; ++k) {
            i[k] = -amplitude * std::sin(phase * M_PI / 180.0 + delta(k) + theta);
        }
    }
};

void put_circuit(const GenericMachine& machine, Store& store) {
    kzb_put_int("control", "motor_type", 10008, store);
    kzb_put_int("parameter", "dummy", 0, store);
    for (int k = 1; k <= coil_count; ++k) {
        add_record("terminal_list;terminal", {{"id", k}, {"type", 1}}, store);
        add_record("input_port_list;source", {{"id", k}, {"terminal_id", k}}, store);
    }
    add_record("terminal_list;terminal", {{"id", coil_count + 1}, {"type", 0}}, store);
    for (int k = 1; k <= coil_count; ++k) {
        const int place = add_record(
            "element_type_list;element_type",
            {{"id", k}, {"type", 1}, {"resistance", machine.resistance}, {"group_id", k}, {"turns", 10.0}}, store);
        for (int j = 1; j <= coil_count; ++j) {
            add_record("element_type_list;element_type;interacted_coil", {{"id", j}}, store, place);
        }
        add_record("element_list;element",
                   {{"id", k}, {"1st_terminal_id", k}, {"2nd_terminal_id", coil_count + 1}, {"element_type_id", k}},
                   store);
        add_record("output_port_list;coil_fem", {{"id", k}, {"component_id", k}}, store);
    }
}

void put_table_axes(const GenericMachine& machine, Store& store) {
    const double turn = 360.0;
    add_record("motion_condition_list;motion_condition",
               {{"id", 1}, {"type", 1}, {"flg_periodic", 1}, {"forcetable_id", 1}, {"max_displacement", turn}}, store);
    std::vector<Axis> axes;
    for (int k = 1; k <= coil_count; ++k) {
        add_record("table_axis_list;axis", {{"id", k}, {"type", 1}, {"reference_id", k}}, store);
        put_fields("flux_list;0;phase_list;0;phase;" + std::to_string(k - 1) + ";",
                   {{"index", k - 1}, {"reference_id", k}}, store);
        axes.push_back(evenly(-most_current, most_current, machine.current_nodes));
    }
    add_record("table_axis_list;axis", {{"id", 4}, {"type", 2}, {"reference_id", 1}}, store);
    axes.push_back(evenly(0.0, turn, machine.position_nodes));
    const auto theta = [&machine](double position) { return machine.pole_pairs * position * M_PI / 180.0; };
    fill(store, force_table, "table", axes, {0, 0, 0, 1},
         [&](const double* x) { return torque(x, theta(x[3]), machine.pole_pairs); });
    axes.push_back({0.0, 1.0, 2.0});
    fill(store, flux_table, "table", axes, {0, 0, 0, 1, 0},
         [&](const double* x) { return flux(x, theta(x[3]), static_cast<int>(x[4])); });
}

void put_coil_set(const GenericMachine& machine, Store& store) {
    const double period = 360.0 / machine.pole_pairs;
    add_record("motion_condition_list;motion_condition",
               {{"id", 1},
                {"type", 1},
                {"flg_periodic", 1},
                {"forcetable_id", 1},
                {"axis_no", 3},
                {"max_displacement", period}},
               store);
    add_record("element_set_list;coil_set",
               {{"id", 1},
                {"type", 1},
                {"number_of_poles", 2 * machine.pole_pairs},
                {"phase_initial", 0.0},
                {"current_axis_no", 1},
                {"phase_axis_no", 2},
                {"motion_id", 1}},
               store);
    for (int k = 1; k <= coil_count; ++k) {
        put_fields("element_set_list;0;coil_set;0;coil;" + std::to_string(k - 1) + ";",
                   {{"coil_id", k}, {"phase_diff", 120.0 * (k - 1)}}, store);
    }
    const Axis amplitudes = evenly(0.0, most_current, machine.current_nodes);
    const Axis phases = evenly(-180.0, 180.0, 2 * machine.current_nodes + 1);
    const Axis positions = evenly(0.0, period, machine.position_nodes);
    const auto theta = [&machine](double position) { return machine.pole_pairs * position * M_PI / 180.0; };
    fill(store, force_table, "table", {amplitudes, phases, positions}, {0, 1, 1},
         [&](const double* x) { return torque(Currents(x[0], x[1], theta(x[2])).i, theta(x[2]), machine.pole_pairs); });
    fill(store, flux_table, "table", {amplitudes, phases, positions, {0.0, 1.0, 2.0}}, {0, 1, 1, 0},
         [&](const double* x) {
             return flux(Currents(x[0], x[1], theta(x[2])).i, theta(x[2]), static_cast<int>(x[3]));
         });
    // Pair 0 is the coil with itself.
    fill(store, "inductance_list;0;diff_inductance_table;0;", "table", {amplitudes, phases, positions, {0.0, 1.0, 2.0}},
         {0, 1, 1, 0}, [&](const double* x) {
             const double mean = 1.0 + x[0] / saturation;
             return x[3] == 0.0 ? self_inductance / mean : -mutual_inductance;
         });
}

}  // namespace

void put_fields(const std::string& category, const std::vector<Field>& fields, Store& store) {
    kzb_require_category(category.c_str(), store);
    for (const Field& field : fields) {
        if (const int* const number = std::get_if<int>(&field.value)) {
            kzb_put_int(category.c_str(), field.key, *number, store);
        } else if (const double* const real = std::get_if<double>(&field.value)) {
            kzb_put_double(category.c_str(), field.key, *real, store);
        } else {
            kzb_put_string(category.c_str(), field.key, std::get<std::string>(field.value).c_str(), store);
        }
    }
}

int add_record(const std::string& path, const std::vector<Field>& fields, Store& store, int outer) {
    Indices indices = {0};
    for (const char c : path) {
        if (c == ';') {
            indices.push_back(outer);
        }
    }
    const int place = kzb_get_subcategory_num(path, indices, store);
    indices.back() = place;
    put_fields(subcategory_name(path, indices), fields, store);
    return place;
}

void make_generic_machine(const GenericMachine& machine, Store& store) {
    put_circuit(machine, store);
    if (machine.table_axes_form) {
        put_table_axes(machine, store);
    } else {
        put_coil_set(machine, store);
    }
}

}  // namespace kzb_reference
