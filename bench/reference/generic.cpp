#include "bench/reference/generic.h"

#include <cmath>
#include <cstdlib>

namespace kzb_reference {

namespace {

std::size_t at(int i) {
    return static_cast<std::size_t>(i);
}

}  // namespace

Generic::Generic(Store& store) : store_(store) {
    if (const char* const text = std::getenv("DORN_KZ_DEBUG_OUTPUT")) {
        debug_ = std::atoi(text) == 1;
    }
    if (debug_) {
        open_debug_files();
    }
    coil_ports_ = read_ports("output_port_list;coil_fem", "component_id");
    resistor_ports_ = read_ports("output_port_list;resistor", "component_id");
    inductor_ports_ = read_ports("output_port_list;coil_const", "component_id");
    capacitor_ports_ = read_ports("output_port_list;capacitor", "component_id");
    source_ports_ = read_ports("input_port_list;source", "terminal_id");
    probe_ports_ = read_ports("output_port_list;voltage_probe", "component_id");
    read_force_tables();
    read_user_params();
    circuit.read(store_);
    circuit.set_temperature_correction(temperature_correction);
    tables.read(store_, circuit, user_parameter_count());
    tables.interpolation = interpolation;
    if (debug_) {
        write_headers();
    }
    voltage_.assign(source_ports_.size(), 0.0);
    signal_.assign(source_ports_.size(), 1.0);
    user_inputs_.assign(at(kzb_get_subcategory_num("input_port_list;user_input", {0, 0}, store_)), 0.0);
    displacement_.assign(tables.motions.size(), 0.0);
    initial_displacement_.assign(tables.motions.size(), 0.0);
}

Generic::Numbers Generic::read_ports(const char* path, const char* value) const {
    const int count = kzb_get_subcategory_num(path, {0, 0}, store_);
    Numbers ports(at(count), 0);
    for (int i = 0; i < count; ++i) {
        const int id = kzb_get_subcategory_int(path, {0, i}, "id", store_);
        ports.at(at(id - 1)) = kzb_get_subcategory_int(path, {0, i}, value, store_);
    }
    return ports;
}

void Generic::read_force_tables() {
    const std::string path = "motion_condition_list;motion_condition";
    const int count = kzb_get_subcategory_num(path, {0, 0}, store_);
    for (int i = 0; i < count; ++i) {
        generic::ForceTable table;
        table.forcetable_id = kzb_get_subcategory_int(path, {0, i}, "forcetable_id", store_);
        table.motion_id = kzb_get_subcategory_int(path, {0, i}, "id", store_);
        if (kzb_has_subcategory_parameter(path, {0, i}, "coef_force", store_) != 0) {
            table.coef_force = kzb_get_subcategory_double(path, {0, i}, "coef_force", store_);
        }
        force_tables_.push_back(table);
    }
}

void Generic::read_user_params() {
    const char* const counter = "num_user_specified_parameter";
    const int count = kzb_get_int(counter, counter, store_);
    int rows[2] = {0, 0};
    for (int i = 1; i <= count; ++i) {
        const std::string category = "user_specified_parameter" + std::to_string(i);
        generic::UserParam param;
        param.table_id = kzb_get_int(category.c_str(), "table_id", store_);
        param.output_port = kzb_get_int(category.c_str(), "output_port_id", store_);
        param.resolution = kzb_get_int(category.c_str(), "reference_resolution", store_) != 0 ? 1 : 0;
        param.row = rows[param.resolution]++;
        if (kzb_has_parameter(category.c_str(), "coef_output_port", store_) != 0) {
            param.coef_output_port = kzb_get_double(category.c_str(), "coef_output_port", store_);
        }
        user_params_.push_back(param);
    }
}

void Generic::set_data() {
    circuit.set_temperature_correction(temperature_correction);
    const char* const old = std::getenv("DORN_KZ_USE_OLD_IRONLOSS");
    iron_loss_enabled_ = ironloss_flag != 0 && !(old != nullptr && std::atoi(old) == 1);
    tables.interpolation = interpolation;
}

void Generic::execute() {
    for (std::size_t i = 0; i < tables.motions.size(); ++i) {
        const generic::Motion* const motion = tables.motion(static_cast<int>(i) + 1);
        if (motion != nullptr && motion->kind == 1) {
            displacement_[i] = displacement_[i] * M_PI / 180.0;
        }
    }
    step(voltage_, displacement_, handle_time_, signal_);
}

bool Generic::step(const std::vector<double>& inputs, const std::vector<double>& displacements, double time,
                   const std::vector<double>& switches) {
    time_ = time;
    std::vector<bool> bits;
    for (const double value : switches) {
        bits.push_back(value == 1.0);
    }
    circuit.set_switches(bits);
    if (!circuit.has_base_potential()) {
        return false;
    }
    circuit.set_inputs(inputs);
    tables.set_displacements(displacements);
    const double dt = time_ - last_time_;
    tables.dt = dt;
    if (step_count_ == 1 || dt <= 0.0) {
        tables.update_coil_state(circuit);
        tables.evaluate(circuit);
    } else {
        iterate(dt);
    }
    if (iron_loss_enabled_ && tables.has_iron_loss) {
        iron_loss_ = tables.iron_loss(user_inputs_);
    }
    return true;
}

void Generic::iterate(double dt) {
    generic::Solver solver(circuit, dt, true);
    for (int iteration = 0;; ++iteration) {
        tables.update_coil_state(circuit);
        tables.evaluate(circuit);
        if (debug_) {
            write_pass(iteration);
        }
        solver.solve_once();
        ++passes;
        solver.record_best();
        const double residual = solver.residual();
        if (residual <= 0.001 || iteration == 49) {
            solver.apply_best();
            break;
        }
        solver.apply_iterate(1.0);
        solver.clear();
        if (debug_) {
            write_iterate(iteration, residual);
        }
    }
    if (debug_) {
        write_step(solver);
    }
    tables.update_coil_state(circuit);
    tables.evaluate(circuit);
}

void Generic::update() {
    ++step_count_;
    last_time_ = time_;
    circuit.update();
}

}  // namespace kzb_reference
