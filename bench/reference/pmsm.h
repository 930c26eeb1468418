// The plain reference of the permanent-magnet machine: one object with the calls of a sample.
//
// Every quantity comes from the store by category and key when it is needed, one lookup per component, and nothing
// is kept that the equations do not keep. Kinds: 0 SimpleHarmonic and the linear machine, 1 Harmonic, 2 LdLq,
// 3 FluxIntegralDQTheta.
#pragma once

#include <string>
#include <vector>

#include "bench/reference/lookup.h"
#include "bench/reference/winding.h"

namespace kzb_reference {

struct Dq {
    double d = 0.0;
    double q = 0.0;
    double zero = 0.0;
};

Dq park(const double* uvw, double angle);
void inverse_park_with_zero(const Dq& dq, double angle, double* uvw);
void inverse_park(const Dq& dq, double angle, double* uvw);
double amplitude_of(const Dq& dq);
double phase_of(const Dq& dq);  // degrees

// First-order lag of the loss current; takes its first value while no time is stored.
struct LossFilter {
    double time = 0.0;
    double value = 0.0;
    double step(double t, double input, double first, double speed);
};

class Pmsm {
  public:
    // Reads start values as an opened calculator does; `lookup` is the front with or without clocks.
    Pmsm(Store& store, int calc_mode, Lookup lookup);

    // Configuration, before set_data.
    void set_kind(int kind) { application = kind; }
    void set_interpolation(const std::string& method) { interpolation = method; }
    void set_connection(int type) { connection = type; }

    void set_data(bool ironloss, bool user_copperloss);
    void set_initial_current(int phase, double value);
    void set_initial_time(double value);
    void set_initial_displacement(double value);

    int set_time(double value);
    void set_displacement(double value);
    void set_voltage(int phase, double value) { voltage_[phase - 1] = value; }
    void set_current(int phase, double value);
    void set_signal(int phase, int value) { signal_[phase - 1] = value; }
    void execute();
    void update();

    double get_current(int phase) const { return current_output[phase - 1]; }
    double get_voltage(int phase) const { return induced_voltage[phase - 1]; }
    double get_induced_voltage(int phase) const { return induced_voltage_of(phase); }
    double get_torque();
    double get_force();
    double get_coil_flux(int phase) const { return coil_flux[phase - 1]; }
    double get_inductance(int row, int column) const;
    double get_d_axis_inductance() const;
    double get_q_axis_inductance() const;
    double get_mag_flux(int phase);
    double get_resistance() const { return resistance[0]; }
    double get_copperloss() const;
    double get_eddyloss() const;
    double get_hysteresisloss() const;
    double get_ironloss() const;
    double get_user_copper_loss() const;
    double get_user_parameter(int index) const { return user_parameters[static_cast<std::size_t>(index - 1)]; }
    int user_parameter_count() const { return static_cast<int>(user_parameters.size()); }

    // Corrections and temperatures, set by the caller before set_data or between samples.
    double correction_flux = 1.0;
    double correction_magnet = 1.0;
    double correction_steel = 1.0;
    double correction_inductance = 1.0;
    double correction_torque = 1.0;
    double turns1 = 0.0;
    double turns2 = 0.0;
    double resistance_base = 0.0;
    double base_coil_temperature = 293.15;
    double base_magnet_temperature = 293.15;
    double coil_coefficient = 1.0;
    double magnet_coefficient = 1.0;
    double coil_temperature = 293.15;
    double magnet_temperature = 293.15;
    double dc_voltage = 0.0;
    double carrier_frequency = 0.0;
    int use_old_ironloss = 0;

  private:
    struct AxisInductance {
        double d = 0.0;
        double q = 0.0;
    };

    double look(const char* category, const char* key, const double* values);
    double look(const char* category, const char* key, const double* values, const char* method);

    void bind_application();
    void bind_torque();
    void bind_user_parameters();

    double electrical_angle(double mechanical) const;
    double table_angle_of(double mechanical) const;
    double induced_voltage_of(int phase) const;

    // flux and inductance of the sample
    void update_correction(double amplitude, double beta);
    void update_temperature_scale();
    void update_resistance(double dt);
    void update_copper_loss();
    void update_flux(double theta_e, double angle);
    void update_inductance(double theta_e, double angle);
    double harmonic_table(const char* category, const char* key, double angle, double component);
    double flux_q(double amplitude, double beta, double angle, double theta_e);
    AxisInductance dq_from_flux(double amplitude, double beta, double angle, double theta_e);
    AxisInductance dq_of_flux_integral(double beta, double angle);
    AxisInductance quadratic_forms(double theta_e) const;
    AxisInductance leakage_forms(double theta_e) const;
    void update_axis_inductance(double theta_e, double angle);

    // the step of kinds 0, 1, 2
    bool step(const double* v, double at_position, double at_time, double* signal);
    void prepare_first_step();
    bool solve(const double* v, const double* signal, double dt, double theta_e);
    void lagged_voltage(double dt, double* e) const;
    double temperature_torque(double theta_e, double q) const;
    void update_torque(double angle, double theta_e, double tq, double dt);
    double ldlq_torque(double theta_e);
    void update_force(double angle, double tq);
    double loss_torque(double at_position, double dt);
    void update_user_parameters(double angle);

    // kind 3
    void flux_derivative(double at_position, double at_time);
    void flux_update(double at_time, double at_position);
    Dq noload_flux_at(double angle);
    Dq table_current_at(const Dq& flux, double angle);

    // current-driven evaluation
    double torque_from_currents();
    void dq_inductances_from_currents(double at_position);

    Store& store_;
    Lookup lookup_;
    int motor_type_;
    int calc_mode_;
    double time_ = 0.0;
    double previous_time_ = 0.0;
    double displacement_ = 0.0;
    double initial_displacement_ = 0.0;
    double voltage_[3] = {};
    double signal_[3] = {1.0, 1.0, 1.0};
    double state_[3] = {};
    double derivative_[3] = {};
    bool user_copperloss_flag_ = false;

    std::string interpolation = "Linear";
    int number_of_poles = 0;
    double beta_zero = 0.0;
    double angle_offset = 0.0;
    double electrical_length = 0.0;
    bool is_linear = false;
    int connection = -1;
    int application = 0;
    int inductance_dim = 0;
    int torque_dim = 0;
    std::string torque_category;
    std::string torque_table;
    double minimum_current = 0.0;
    double d_flux = 0.0;
    double leakage_inductance[3] = {};
    double resistance[3] = {};
    Network winding;

    double flux_multiplier = 1.0;
    double inductance_multiplier = 1.0;
    double torque_multiplier = 1.0;
    double flux_multiplier_previous = 1.0;
    double inductance_multiplier_previous = 1.0;
    double temperature_scale = 1.0;
    double magnet_factor = 1.0;
    double magnet_temperature_previous = 293.15;
    double correction_ironloss = 1.0;

    double current[3] = {};
    double current_previous[3] = {};
    double current_older[3] = {};
    double current_output[3] = {};
    double current_amplitude = 0.0;
    double current_amplitude_previous = 0.0;
    double current_phase = 0.0;
    double current_phase_previous = 0.0;
    double torque = 0.0;
    double force = 0.0;
    double position = 0.0;
    double position_previous = 0.0;
    double coenergy = 0.0;
    double coenergy_previous = 0.0;
    double magnet_flux[3] = {};
    double magnet_flux_previous[3] = {};
    double total_flux[3] = {};
    double total_flux_previous[3] = {};
    double flux_temperature_delta[3] = {};
    double induced_voltage[3] = {};
    double induced_voltage_previous[3] = {};
    double neutral_voltage = 0.0;
    double inductance[9] = {};
    double inductance_previous[9] = {};
    int step_count = 1;
    double time = 0.0;
    double time_previous = 0.0;
    double time_older = 0.0;
    double coil_flux[3] = {};
    double coil_flux_previous[3] = {};
    double d_inductance = 0.0;
    double q_inductance = 0.0;
    bool initial_current_set[3] = {};
    bool initial_time_set = false;

    bool ironloss_on = false;
    bool user_copperloss_on = false;
    double eddy_loss = 0.0;
    double hysteresis_loss = 0.0;
    double ac_resistance = 0.0;
    double dc_copper_loss = 0.0;
    double ac_copper_loss = 0.0;

    bool user_parameters_on = false;
    int user_parameter_dim = 0;
    std::vector<double> user_parameters;

    Dq current_dq0;
    Dq current_dq0_previous;
    Dq flux_derivative_dq0;
    Dq air_gap_flux_dq0;
    Dq table_current_dq0;
    LossFilter loss_current_filter_d;
    LossFilter loss_current_filter_q;
    double loss_filter_output_d = 0.0;
    double loss_filter_output_q = 0.0;
    double noload_flux[3] = {};
    double noload_flux_previous[3] = {};
    double zero_voltage = 0.0;
    double d_inductance_kept = 0.0;
    double q_inductance_kept = 0.0;
};

}  // namespace kzb_reference
