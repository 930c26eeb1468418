// The plain reference of the generic model: a circuit read from the file, solved by a Newton iteration at every step.
//
// One object with the calls of a sample; everything comes from the store by path, index and key when it is needed, one
// lookup per coil, and every expression is parsed at every evaluation.
#pragma once

#include <cstdio>

#include "bench/reference/generic_solver.h"
#include "bench/reference/generic_tables.h"

namespace kzb_reference {

class Generic {
  public:
    explicit Generic(Store& store);
    ~Generic();
    Generic(const Generic&) = delete;
    Generic& operator=(const Generic&) = delete;

    void set_data();
    int set_time(double value);
    int set_displacement(int id, double value);
    int set_power_supply(int id, double value);
    int set_power_supply_switch(int id, int on);
    int set_power_supply_type(int id, int type);
    int set_user_input(int index, double value);
    int set_initial_position(int id, double value);
    int set_coil_temperature(int id, double value);
    void execute();
    void update();

    // Ports of the calls: 0 coil, 1 resistor, 2 inductor, 3 capacitor.
    int port_count(int kind) const;
    double current(int kind, int id) const;
    void set_initial_current(int kind, int id, double value);
    double parameter(int kind, int id, const char* key) const;
    void set_parameter(int kind, int id, const char* key, double value);
    double resistance(int kind, int id) const;  // at temperature
    double coil_temperature(int id) const;
    double probe(int id) const;
    int probe_count() const { return static_cast<int>(probe_ports_.size()); }
    int source_count() const { return static_cast<int>(circuit.source_positions.size()); }
    int power_supply_type(int id) const;
    int force_count() const { return static_cast<int>(force_tables_.size()); }
    double force(int id);
    void set_coef_force(int id, double value);
    double coef_force(int id) const;
    int user_parameter_count() const { return static_cast<int>(user_params_.size()); }
    double user_parameter(int id);
    void set_coef_output(int id, double value);
    double ironloss() const { return iron_loss_; }

    generic::Circuit circuit;
    generic::TableModel tables;
    std::string interpolation = "Linear";
    bool temperature_correction = false;
    int ironloss_flag = 0;
    int passes = 0;  // of all steps

  private:
    using Numbers = std::vector<int>;

    Numbers read_ports(const char* path, const char* value) const;
    void read_force_tables();
    void read_user_params();
    const Numbers& ports(int kind) const;
    int component(int kind, int id) const;
    generic::ForceTable* force_table(int id);
    bool step(const std::vector<double>& inputs, const std::vector<double>& displacements, double time,
              const std::vector<double>& switches);
    void iterate(double dt);

    void open_debug_files();
    void write_headers() const;
    void write_inductances(std::FILE* file) const;
    void write_pass(int iteration) const;
    void write_iterate(int iteration, double residual) const;
    void write_step(const generic::Solver& solver) const;
    void write_state(std::FILE* file) const;

    Store& store_;
    std::vector<generic::UserParam> user_params_;
    std::vector<generic::ForceTable> force_tables_;
    int step_count_ = 1;
    double time_ = 0.0;
    double last_time_ = 0.0;
    bool iron_loss_enabled_ = false;
    double iron_loss_ = 0.0;
    Numbers coil_ports_;
    Numbers resistor_ports_;
    Numbers inductor_ports_;
    Numbers capacitor_ports_;
    Numbers source_ports_;
    Numbers probe_ports_;
    std::vector<double> user_inputs_;
    bool debug_ = false;
    std::FILE* files_[8] = {};  // IV, Axis, L, Flux, Itr, Itr_L, Itr_Flux, Itr_Axis

    double handle_time_ = 0.0;
    std::vector<double> voltage_;
    std::vector<double> signal_;
    std::vector<double> displacement_;
    std::vector<double> initial_displacement_;
};

}  // namespace kzb_reference
