// The plain reference of the wound-field machine: phases U, V, W and the field coil F, one object with its calls.
//
//   R i + d(flux)/dt = v, a Newton step around the estimate x in every pass until the currents settle:
//   dt R_k i_k + sum of L_kj i_j - dt p_from + dt p_to = -dt e_k + sum of L_kj x_j,  e = (flux(x) - flux_prev) / dt
//
// Every quantity comes from the store by category and key when it is needed, one lookup per component, and nothing
// is kept that the equations do not keep.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "bench/reference/lookup.h"
#include "bench/reference/wfsm_winding.h"

namespace kzb_reference {

struct WfsmAxes {
    double d = 0.0;
    double q = 0.0;
};

WfsmAxes wfsm_park(const double* uvw, double theta);
void wfsm_inverse_park(const WfsmAxes& dq, double theta, double* uvw);
double wfsm_amplitude(const WfsmAxes& dq);
double wfsm_current_phase(double d, double q);  // degrees

// First-order lag of a terminal voltage; time 0 clears it.
struct VoltageFilter {
    double output = 0.0;
    double last_time = 0.0;
    double filter(double x, double t, double c);
};

// What three environment variables replace.
struct WfsmIteration {
    double tolerance = 0.001;
    int max_iterations = 200;
    double acceleration = 1.0;
};

class Wfsm {
  public:
    Wfsm(Store& store, int calc_mode, Lookup lookup, const WfsmIteration& iteration = {});

    void set_interpolation(const std::string& method) { interpolation = method; }
    void set_ironloss() { ironloss_flag_ = 1; }
    void set_pwm_frequency(double value) {
        pwm_frequency_ = value;
        pwm_flag_ = 1;
    }
    void set_data();
    void set_initial_current(int phase, double value);
    void set_initial_time(double value);
    void set_initial_displacement(double value);

    int set_time(double value);
    void set_displacement(double value);
    void set_voltage(int phase, double value) { voltage_[phase - 1] = value; }
    void set_current(int phase, double value) { current_[phase - 1] = value; }
    void set_signal(int phase, int value) { signal_[phase - 1] = value; }
    void execute();
    void update();

    double get_current(int phase) const { return terminal_current[phase - 1]; }
    double get_voltage(int phase) const { return induced[phase - 1]; }
    double get_induced_voltage(int phase) const;
    double get_torque();
    double get_coil_flux(int phase) const { return flux[phase - 1]; }
    double get_inductance(int row, int column) const { return inductance[4 * (row - 1) + column - 1]; }
    double get_d_axis_inductance() const;
    double get_q_axis_inductance() const;
    double get_resistance() const { return R; }
    double get_field_resistance() const;
    double get_coil_factor() const;
    double get_field_coil_factor() const;
    double get_copperloss() const;
    double get_eddyloss() const { return eddy_loss; }
    double get_hysteresisloss() const { return hysteresis_loss; }
    double get_ironloss() const { return eddy_loss + hysteresis_loss; }
    double get_user_parameter(int index) const { return user_parameters[static_cast<std::size_t>(index - 1)]; }
    int user_parameter_count() const { return static_cast<int>(user_parameters.size()); }

    // Corrections and temperatures, set by the caller before set_data or between samples.
    double coef_flux = 1.0;
    double coef_flux_fieldcoil = 1.0;
    double coef_torque = 1.0;
    double coef_material = 1.0;
    double turns_coil2 = 1.0;
    double turns_coil2_fieldcoil = 1.0;
    double R = 0.0;
    double Rf = 0.0;
    int connection_type = -1;
    bool temperature_correction = false;
    double coil_temperature = 293.15;
    double field_coil_temperature = 293.15;
    double base_coil_temperature = 293.15;
    double base_field_coil_temperature = 293.15;
    double coil_coefficient = 1.0;
    double field_coil_coefficient = 1.0;
    int passes = 0;    // of all steps, for the measurements
    int unplaced = 0;  // lookups at a coordinate that is no number

  private:
    using Vector = std::vector<double>;

    struct Loss {
        double resistance = 0.0;
        double current = 0.0;
    };

    void bind();
    double look(const std::string& category, const std::string& key, const Vector& at);
    double theta() const;
    Vector axis_vector(double iu, double iv, double iw, double field, double at_position);
    Vector vector_of(double first, double second, double field, double angle);
    void update_scales();
    void update_flux(const Vector& at);
    void update_inductance(const Vector& at);
    double flux_q(double first, double second, double field, double angle, double th);
    void update_dq_inductance(double amplitude, double b, double field, double angle, double th);
    void update_user_parameters(const Vector& at);
    double compute_torque(const double* i, double at_position);
    Loss compute_iron_loss(const WfsmAxes& terminal, double field, double speed, double v_amplitude);

    void first_step();
    bool step(const double* v, double at_position, double at_time, const double* signal);
    bool iterate(const double* v, double dt, const double* resistance, const bool* flags);
    bool iron_step(const double* v, double dt);
    double speed_rpm(double dt) const;
    void evaluate(const double* currents, double at_position, double at_time);

    Store& store_;
    Lookup lookup_;
    int calc_mode_;
    double time_ = 0.0;
    double displacement_ = 0.0;
    double initial_displacement_ = 0.0;
    double voltage_[4] = {};
    double current_[4] = {};
    double signal_[4] = {1.0, 1.0, 1.0, 1.0};
    int ironloss_flag_ = 0;
    int pwm_flag_ = 0;
    bool bound_ = false;
    double pwm_frequency_ = 0.0;

    std::string interpolation = "Linear";
    double tolerance;
    int max_iterations;
    double acceleration;
    int current_type = -1;
    WfsmNetwork network;
    double beta_zero = 0.0;
    double angle_offset = 0.0;
    double number_of_poles = 0.0;
    double field_axis_floor = 0.0;
    bool mirrored = false;
    double time = 0.0;
    double time_prev = 0.0;
    double position = 0.0;
    double position_prev = 0.0;
    double Iamp = 0.0;
    double Iamp_prev = 0.0;
    double beta = 0.0;
    double beta_prev = 0.0;
    double current[4] = {};
    double current_prev[4] = {};
    double Id = 0.0;
    double Iq = 0.0;
    double flux[4] = {};
    double flux_prev[4] = {};
    double inductance[16] = {};
    bool initial_set[5] = {};
    double torque = 0.0;
    double terminal_current[4] = {};
    double neutral_voltage = 0.0;
    double induced[4] = {};
    double d_inductance = 0.0;
    double q_inductance = 0.0;
    double field_inductance = 0.0;
    double flux_scale = 1.0;
    double field_flux_scale = 1.0;
    double torque_scale = 1.0;
    bool iron_loss_on = false;
    bool voltage_filter_on = false;
    bool loss_started = false;
    double pwm_frequency = 0.0;
    double eddy_loss = 0.0;
    double hysteresis_loss = 0.0;
    VoltageFilter filter_u;
    VoltageFilter filter_v;
    VoltageFilter filter_w;
    double iron_current[3] = {};
    double loss_resistance = 0.0;
    double loss_current = 0.0;
    int step_count = 1;
    std::vector<double> user_parameters;
};

}  // namespace kzb_reference
