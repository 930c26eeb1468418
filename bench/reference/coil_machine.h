// What the plain references of the machines with separate windings share: switched reluctance, solenoid, stepper.
//
// Every coil is a branch of its own, terminals 1 to n on one side and n + 1 to 2 n on the other. The calls carry the
// names and answers of an opened calculator; statuses come back as numbers.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "bench/reference/lookup.h"
#include "bench/reference/winding.h"

namespace kzb_reference {

class CoilMachine {
  public:
    CoilMachine(Store& store, int coils, int calc_mode, Lookup lookup);
    virtual ~CoilMachine() = default;
    CoilMachine(const CoilMachine&) = delete;
    CoilMachine& operator=(const CoilMachine&) = delete;

    virtual void set_data() = 0;
    virtual void execute() = 0;
    virtual void update() = 0;
    virtual double get_torque() = 0;  // 180034.0 of a machine without torque
    virtual double get_force() = 0;   // 180035.0 of a machine without force
    virtual double get_voltage(int phase) const = 0;
    virtual double get_induced_voltage(int phase) const = 0;
    virtual double get_inductance(int row, int column) = 0;
    virtual double get_mag_flux(int phase) const = 0;

    int set_time(double value);
    virtual int set_displacement(double value);
    int set_voltage(int phase, double value);
    int set_signal(int phase, int value);
    int set_current(int phase, double value);
    int set_initial_current(int phase, double value);
    int set_initial_time(double value);
    int set_initial_displacement(double value);
    double get_current(int phase) const;
    double get_resistance() const { return R; }
    double get_copperloss() const;

    // Configuration.
    std::string interpolation = "Linear";
    bool temperature_correction = false;
    double coil_temperature = 293.15;
    double base_coil_temperature = 293.15;
    double magnet_temperature = 293.15;
    double base_magnet_temperature = 293.15;
    double coil_temperature_coefficient = 3810.0;
    double magnet_temperature_coefficient = -0.11;
    double correction_flux = 1.0;
    double correction_magnet = 1.0;
    double correction_steel = 1.0;
    double correction_inductance = 1.0;
    double correction_torque = 1.0;  // of the solenoid: of its force
    double turns1 = 0.0;
    double turns2 = 0.0;
    double R_base = 0.0;

  protected:
    double control_value(const char* key, double absent) const;
    double coil_factor() const;
    double magnet_factor() const;
    double look(const char* category, const char* key, double a, double b, double c);
    double look(const char* category, const char* key, double a, double b, double c, const char* method);
    bool has_phase(int phase) const { return phase >= 1 && phase <= coils_; }

    void bind_resistance(const char* key);
    void bind_corrections();
    void build_network(double resistance);
    void size_vectors();
    void prepare_first_step();
    void read_element_resistance();
    // dt R i + (2 L - Lp) i - dt p_from + dt p_to = L I; writes current and current_out
    void solve(const std::vector<double>& port_voltage, double dt);

    Store& store_;
    Lookup lookup_;
    int coils_;
    int calc_mode_;
    std::vector<double> voltage_;
    std::vector<double> signal_;
    double time_ = 0.0;
    double previous_time_ = 0.0;
    double displacement_ = 0.0;
    double initial_displacement_ = 0.0;

    Network network;
    int element_count = 0;
    std::vector<double> element_resistance;
    double R = 0.0;
    std::vector<double> current;
    std::vector<double> current_prev;
    std::vector<double> current_out;
    std::vector<int> initial_set;
    std::vector<double> inductance;
    std::vector<double> inductance_prev;
    double position = 0.0;
    int step_count = 1;
    double time = 0.0;
    double time_prev = 0.0;
    bool initial_time_set = false;
};

}  // namespace kzb_reference
