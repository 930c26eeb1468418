// The tables of a generic model and what feeds their axes: motions, coil sets, declared axes, expressions.
#pragma once

#include "bench/reference/generic_circuit.h"

namespace kzb_reference::generic {

enum Unit { degrees, radians, linear, radians_per_second, revolutions_per_minute, no_unit };
double convert(double v, Unit from, Unit to);

struct Motion {
    Unit own_unit() const { return kind == 1 ? radians : kind == 0 ? linear : no_unit; }
    Unit table_unit() const { return kind == 1 ? degrees : kind == 0 ? linear : no_unit; }
    double position_in(Unit unit) const { return convert(position, own_unit(), unit); }
    double period_in(Unit unit) const { return convert(period, own_unit(), unit); }
    double speed(double dt) const;

    int id = 0;
    int kind = 0;
    bool periodic = false;
    int axis_no = 0;
    int forcetable_id = 0;
    double position = 0.0;
    double previous_position = 0.0;
    double period = 0.0;
    std::string name;
};

struct CoilEntry {
    std::shared_ptr<Branch> branch;
    double phase_diff;
};

struct CoilSet {
    const Motion* position_motion() const;

    int id = 0;
    int kind = 0;
    bool is_reference = false;
    int reference_set_id = 0;
    int poles = 0;
    double phase_initial = 0.0;
    std::shared_ptr<Motion> motion;
    std::shared_ptr<CoilSet> reference_set;
    std::vector<CoilEntry> coils;
    int current_axis = 0;
    int phase_axis = -1;
    double amplitude = 0.0;
    double phase = 0.0;
};

struct TableAxis {
    int id = 0;
    int kind = -1;  // 0 expression, 1 coil current, 2 displacement
    int reference_id = -1;
    bool cyclic = false;
    std::string definition;
    std::vector<double> grid;
    int correction = -1;
};

struct Factor {
    std::string name;
    int kind = -1;  // 0 constant, 1 coil current, 2 displacement
    int reference_id = 0;
    double value = 0.0;
};

struct UserAxis {
    int axis_no = 0;
    int reference_id = 0;
    int reference_type = -1;
    int physical_type = -1;
};

struct ForceTable {
    int forcetable_id = 0;
    int motion_id = 0;
    double coef_force = 1.0;
};

struct UserParam {
    int table_id = 0;
    int row = 0;
    int output_port = 0;
    int resolution = 0;
    double coef_output_port = 1.0;
};

struct CorrectionSet {
    double correct(int number, double value) const;
    int add(const std::string& expression, const std::string& variable);

    std::vector<std::string> parameter_names;
    std::vector<double> parameter_values;
    std::vector<std::string> expressions;
    std::vector<std::string> variables;
};

// One parser per call; any error of it gives 0.0.
double evaluate_expression(const std::vector<std::string>& names, const std::string& expression,
                           const std::vector<double>& values);

struct PhaseOfGroup {
    int index = 0;
    int correction = 0;
};

class TableModel {
  public:
    void read(Store& store, const Circuit& circuit, int user_param_count);

    void set_displacements(const std::vector<double>& values);
    void update_coil_state(const Circuit& circuit);
    void evaluate(const Circuit& circuit);
    double force(const ForceTable& table);
    double output(const UserParam& param);
    double iron_loss(const std::vector<double>& user_inputs);
    const Motion* motion(int id) const;

    std::string interpolation = "Linear";
    std::vector<double> axes;
    bool has_iron_loss = false;
    double dt = 0.0;
    std::vector<std::shared_ptr<Motion>> motions;
    std::vector<std::shared_ptr<CoilSet>> coil_sets;

  private:
    using Currents = std::map<int, double>;

    int row_count(const char* path, int table) const;
    void read_motions();
    void read_table_axes_form(int user_param_count);
    void read_corrections(int user_param_count);
    void read_axes();
    void read_flux_phases();
    void read_factors();
    void read_coil_sets(const Circuit& circuit);
    void read_iron_loss_axes();

    double flux_at(const std::vector<double>& point);
    double inductance_at(std::vector<double> point, int pair);
    double axis_value(const TableAxis& axis, Currents& currents);
    std::vector<double> clamped_axes() const;
    void update_set_state(CoilSet& set) const;
    void evaluate_axes();
    void evaluate_fluxes(const Circuit& circuit);
    void evaluate_differences(const Circuit& circuit);
    void evaluate_inductances();
    void three_phase_inductances(std::size_t s, int offset, const std::vector<int>& ids);
    double difference_step(double x, const std::vector<double>& grid) const;

    Store* store_ = nullptr;
    int axis_count_ = 0;
    std::map<int, PhaseOfGroup> phase_of_group_;
    Currents coil_currents_;
    std::map<int, double> motion_positions_;
    bool constant_step_ = false;
    double minimum_current_ = 0.001;
    std::vector<TableAxis> table_axes_;
    std::vector<Factor> factors_;
    std::vector<UserAxis> iron_loss_axes_;
    CorrectionSet corrections_;
    std::map<int, int> force_corrections_;
    std::map<int, int> output_corrections_;
    int force_rows_ = 0;
    int output_rows_ = 0;
    int output2_rows_ = 0;
    bool single_output_table_ = false;
    bool table_axes_form_ = false;
};

}  // namespace kzb_reference::generic
