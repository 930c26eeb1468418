// The plain reference of the induction machine: one object with the calls of a sample.
//
// Two three-phase windings in one stationary two-axis frame. Constants of an equivalent circuit (type 0): one implicit
// solve of the four currents. Tables over slip frequency and current (type 1): explicit steps of two currents and two
// secondary fluxes. Every quantity comes from the store by category and key when it is needed, one lookup per value.
#pragma once

#include <string>
#include <vector>

#include "bench/reference/lookup.h"

namespace kzb_reference {

struct TwoAxis {
    double a = 0.0;
    double b = 0.0;
};

TwoAxis clarke(const double* phases);
void inverse_clarke(const TwoAxis& x, double* phases);
TwoAxis rotor_to_two_axis(const double* phases, double angle);
void two_axis_to_rotor(const TwoAxis& x, double angle, double* phases);

class Induction {
  public:
    // Reads start values as an opened calculator does; `lookup` is the front with or without clocks.
    Induction(Store& store, int calc_mode, Lookup lookup);

    // Configuration. A status as the calls of the library give it.
    void set_interpolation(const std::string& method) { interpolation = method; }
    void set_connection(int type) { connection_type = type; }
    void set_torque_type(int type) { torque_type = type; }
    void set_resistance(double value) { Rs_DC = value; }
    int set_secondary_resistance(double value);
    int set_slip_frequency(double value);
    int set_step_size(double value);
    int set_ironloss_calc(bool old_formula);
    int set_user_copperloss_calc();
    int set_dc_voltage(double value);
    int set_carrier_frequency(double value);
    int check_inductance_type() const;

    void set_data();
    void set_initial_current(int phase, double value);
    void set_initial_time(double value);
    void set_initial_displacement(double value);

    int set_time(double value);
    void set_displacement(double value);
    void set_voltage(int phase, double value) { voltage_[phase - 1] = value; }
    void set_current(int phase, double value);
    void execute();
    void update();

    double get_current(int phase) const { return current_out[phase - 1]; }
    double get_voltage(int phase) const;
    double get_torque();
    double get_resistance() const { return Rs + R_equivalent; }
    double get_copperloss() const;
    double get_ironloss() const { return iron_loss; }
    double get_primary_copper_loss() const { return primary_copper_loss; }
    double get_secondary_copper_loss() const { return secondary_copper_loss; }
    double get_user_copper_loss() const;
    double get_secondary_flux_d() const { return secondary_flux_d; }
    double get_secondary_flux_q() const { return secondary_flux_q; }
    double get_slip_frequency() const;
    double get_secondary_resistance() const { return Rr; }
    double state(int i) const { return state_[i]; }
    void set_state(int i, double value) { state_[i] = value; }

    // Temperatures, set by the caller.
    bool temperature_correction = false;
    double coil_temperature = 293.15;
    double base_coil_temperature = 293.15;
    double coil_temperature_coefficient = 3810.0;
    double secondary_coil_temperature = 293.15;
    double base_secondary_coil_temperature = 293.15;
    double secondary_coil_coefficient = 3810.0;

  private:
    struct Pair {
        double time;
        double theta;
    };

    double look(const char* category, const char* key, const double* values);
    double coil_factor() const;
    static double heat_term(double a, double b, double c, double d) { return a * b * (c - d); }

    void make_constant_tables();
    bool in_use() const;

    void parameter_update();
    void update_from_tables();
    double slip_hz() const;
    double equivalent_resistance();
    double electrical_speed() const;
    void push_angle(double t, double displacement);
    void first_step_rule();
    TwoAxis source_voltage() const;

    void step_voltage_driven(double displacement, double at_time);
    void step_current_driven(const double* currents, double displacement, double at_time);
    void observe_state(double at_time, double displacement, const double* x);
    void voltage_derivative(double at_time, double displacement, double* out, const double* x);
    void current_derivative(const double* currents, double at_time, double displacement, double* out, const double* x);

    enum class Path { voltage_implicit, current_implicit, explicit_state };
    void output_stage(const TwoAxis& i1, const TwoAxis& i2, Path path);
    double compute_iron_loss();
    void compute_torque();
    void compute_secondary_flux();
    void compute_total_flux();

    Store& store_;
    Lookup lookup_;
    int calc_mode_;
    double time_ = 0.0;
    double displacement_ = 0.0;
    double initial_displacement_ = 0.0;
    double voltage_[3] = {};
    double current_[3] = {};
    double state_[4] = {};
    double step_size_ = 0.0;
    bool ironloss_flag_ = false;
    bool user_copperloss_flag_ = false;

    std::string interpolation = "Linear";
    int use_old_ironloss = 0;
    int torque_type = 0;
    int inductance_type = -1;
    double current_latest[6] = {};
    double current_accepted[6] = {};
    double current_out[6] = {};
    int initial_set[6] = {};
    double primary_current = 0.0;
    double secondary_current = 0.0;
    double torque = 0.0;
    double theta = 0.0;
    double theta_prev = 0.0;
    double slip_omega = 0.0;
    double flux_angle = 0.0;
    int step_count = 1;
    double time = 0.0;
    double time_prev = 0.0;
    bool initial_time_set = false;
    double Rs_DC = 0.0;
    double Rs = 0.0;
    double R_equivalent = 0.0;
    double Rr_base = 0.0;
    double Rr = 0.0;
    double m_Ls = 0.0;
    double m_Msr = 0.0;
    double m_Lr = 0.0;
    double m_Mrs = 0.0;
    double m_Ls_prev = 0.0;
    double m_Msr_prev = 0.0;
    double m_Lr_prev = 0.0;
    double m_Mrs_prev = 0.0;
    int number_of_poles = 0;
    int connection_type = -1;
    bool ironloss_enabled = false;
    bool user_copper_loss_enabled = false;
    double iron_loss = 0.0;
    double primary_copper_loss = 0.0;
    double user_copper_loss = 0.0;
    double secondary_copper_loss = 0.0;
    double secondary_flux_d = 0.0;
    double secondary_flux_q = 0.0;
    double flux_total[3] = {};
    double flux_total_prev[3] = {};
    double voltage_induced[3] = {};
    double dc_voltage = 0.0;
    double carrier_frequency = 0.0;
    std::vector<Pair> angle_history;  // oldest first, at most three
};

}  // namespace kzb_reference
