// Calc_Eq_wfsm: the wound-field synchronous machine, armature phases u, v, w and a field coil f.
//
//   v = R i + d/dt psi(i, position),   psi, dpsi/di and torque from tables over the currents and the position
//
// inputs   v_u v_v v_w v_f V, signal per terminal (0: open)     states      currents A, fluxes Vs
//          position mechanical rad, time s                      parameters  tables, corrections, temperatures
// outputs  terminal_current A, torque N*m, fluxes Vs, inductances H, iron losses W
// step     implicit; Newton passes on the currents with relaxation until their change is below `tolerance`
//
// Optionally an equivalent iron loss current is split off the terminal current. A step never commits: `accept` alone
// moves present values to their previous fields. Only the iron loss current and its voltage filters run on from step to
// step, as established. Phases and coils count from 1 in the methods, 4 is the field coil.
//
// The order of floating-point operations is part of the definition throughout.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "circuit/winding_network.h"
#include "models/calc.h"
#include "models/calc_eq_wfsm_data.h"
#include "models/calc_eq_wfsm_debug.h"
#include "models/calc_eq_wfsm_losses.h"
#include "models/calc_eq_wfsm_tables.h"
#include "models/control_record.h"
#include "models/material_losses.h"
#include "models/pass_counts.h"
#include "models/user_parameters.h"
#include "store/store.h"

namespace kzb {

class Calc_Eq_wfsm : public Calc {
  public:
    // Error numbers of `step`: indices of the message table.
    static constexpr int error_infinite = 18;
    static constexpr int error_not_a_number = 19;

    // Reads the environment: DORN_KZ_DEBUG_OUTPUT, DORN_KZ_DEBUG_ITR, DORN_KZ_DEBUG_NITR, DORN_KZ_DEBUG_ACCEL.
    Calc_Eq_wfsm();
    ~Calc_Eq_wfsm() override;

    // Back to the defaults; debug files stay open and what the environment gave stays.
    void reset();

    // ---- the two start calls: corrections and turns, temperatures and coefficients of the file
    void start_corrections(const ControlRecord& record);
    void start_temperatures(const ControlRecord& record);

    // Takes tables and fixed data from `store`, which the model borrows from now on. False when the file doesn't offer
    // the application; the rest is read all the same.
    bool bind(KZB_STORE& store);
    // After `bind`: iron loss where `ironloss_flag` is 1, voltage filter where `pwm_flag` is 1 as well.
    void set_loss_mode(int ironloss_flag, int pwm_flag);
    // Stored only; no step reads it.
    void set_pwm_frequency(double hertz) { losses_.pwm_frequency = hertz; }

    // ---- before binding
    void set_connection(int connection) { machine_.connection_type = connection; }
    void set_resistance(double ohm) { machine_.R = ohm; }
    void set_field_resistance(double ohm) { machine_.Rf = ohm; }
    void set_coef_flux(double factor) { corrections_.coef_flux = factor; }
    void set_coef_flux_fieldcoil(double factor) { corrections_.coef_flux_fieldcoil = factor; }
    void set_coef_material(double factor) { corrections_.coef_material = factor; }
    void set_coef_torque(double factor) { corrections_.coef_torque = factor; }
    void set_turns_coil2(double turns) { corrections_.turns_coil2 = turns; }
    void set_turns_coil2_fieldcoil(double turns) { corrections_.turns_coil2_fieldcoil = turns; }

    // ---- the model's own temperatures, apart from those of Calc
    double own_coil_temperature() const { return temperatures_.coil_temperature; }
    double own_base_coil_temperature() const { return temperatures_.base_coil_temperature; }
    double own_coil_coefficient() const { return temperatures_.coil_coefficient; }
    double field_coil_temperature() const { return temperatures_.field_coil_temperature; }
    double base_field_coil_temperature() const { return temperatures_.base_field_coil_temperature; }
    double field_coil_coefficient() const { return temperatures_.field_coil_coefficient; }
    void set_own_coil_temperature(double kelvin) { temperatures_.coil_temperature = kelvin; }
    void set_own_base_coil_temperature(double kelvin) { temperatures_.base_coil_temperature = kelvin; }
    void set_own_coil_coefficient(double ppm_per_kelvin) { temperatures_.coil_coefficient = ppm_per_kelvin; }
    void set_field_coil_temperature(double kelvin) { temperatures_.field_coil_temperature = kelvin; }
    void set_base_field_coil_temperature(double kelvin) { temperatures_.base_field_coil_temperature = kelvin; }
    void set_field_coil_coefficient(double ppm_per_kelvin) { temperatures_.field_coil_coefficient = ppm_per_kelvin; }
    // (T - T0) * k * 1e-6 + 1, whether temperature correction is on or not.
    double own_coil_factor() const;
    double field_coil_factor() const;

    // ---- initial conditions; a coil outside 1 to 4 is left alone
    void set_initial_current(int coil, double ampere);
    void set_initial_time(double second);

    // ---- voltage driven: voltages [4], signals [4]; false with `error` set when the step failed (0 without a bound
    // store)
    bool step(const double* voltages, double position, double time, const double* signals, int& error);

    // ---- current driven: torque, fluxes, inductances and losses at currents [4]
    void evaluate(const double* currents, double position, double time);

    // Moves present values to their previous fields.
    void accept();

    // ---- results; 0.0 outside coils 1 to 4
    double induced_voltage(int coil) override;
    double terminal_current(int coil) const { return of_coil(step_.terminal_current, coil); }
    double stored_induced_voltage(int coil) const { return of_coil(step_.induced, coil); }
    double coil_flux(int coil) const { return of_coil(step_.flux, coil); }
    // Element of the 4 by 4 matrix, row and column from 1.
    double inductance(int row, int column) const;
    double d_inductance() const { return step_.d_inductance; }
    double q_inductance() const { return step_.q_inductance; }
    double field_inductance() const { return step_.field_inductance; }
    double torque() const { return step_.torque; }
    double resistance() const { return machine_.R; }         // at base temperature
    double field_resistance() const { return machine_.Rf; }  // at base temperature
    double eddy_loss() const { return losses_.eddy_loss; }
    double hysteresis_loss() const { return losses_.hysteresis_loss; }
    int connection() const { return machine_.connection_type; }
    int user_parameter_count() const { return user_parameters_.count(); }
    const std::vector<double>& user_parameters() const { return user_parameters_.values(); }
    double pwm_frequency() const { return losses_.pwm_frequency; }
    bool ironloss_on() const { return losses_.iron_loss_on; }

    // ---- all that the model holds
    double tolerance() const { return tolerance_; }
    int max_iterations() const { return max_iterations_; }
    double acceleration() const { return acceleration_; }
    const WfsmMachine& machine() const { return machine_; }
    const WfsmCorrections& corrections() const { return corrections_; }
    const WfsmTemperatures& temperatures() const { return temperatures_; }
    const WfsmStep& state() const { return step_; }
    const WfsmLosses& losses() const { return losses_; }
    const WindingNetwork& network() const { return network_; }
    // Of the steps that solve; a step whose currents are not finite did not converge.
    const PassCounts& pass_counts() const { return pass_counts_; }

  private:
    static bool is_coil(int coil) { return coil >= 1 && coil <= 4; }
    static double of_coil(const WfsmCoils& values, int coil) {
        return is_coil(coil) ? values[static_cast<std::size_t>(coil - 1)] : 0.0;
    }

    // What the tables are looked up at: the present currents on their axes.
    struct Point {
        std::array<double, 4> x{};
        int count = 0;  // 0 where the file doesn't tell what the axes are
    };
    // The inputs of a step.
    struct Drive {
        WfsmCoils voltages;    // V
        bool flags[4];         // driven ports
        WfsmCoils resistance;  // Ohm, at the present temperatures
        double dt;             // s
    };
    struct LossCurrent {
        double amplitude = 0.0;   // A
        double resistance = 0.0;  // Ohm
    };

    // calc_eq_wfsm_bind.cpp
    void read_machine();
    void read_field_axis();
    void build_network();

    // calc_eq_wfsm_lookup.cpp
    double electrical_angle(double position) const;
    double table_angle(double position) const;
    Point point_of(double a1, double a2, double field, double angle);
    Point axis_vector(const WfsmCoils& i, double position, const PhaseAngles& at);
    void update_scales();
    void update_flux(const Point& point);
    void update_inductance(const Point& point);
    double compute_torque(const PhaseAngles& at);
    void update_user_parameters(const Point& point);

    // calc_eq_wfsm_dq.cpp
    double probed_q_flux(double a1, double a2, double field, double angle, const PhaseAngles& at);
    double probed_q_inductance(double amplitude, double beta, double field, double angle, double noload,
                               const PhaseAngles& at);
    void update_dq_inductance(double amplitude, double beta, double field, double angle, const PhaseAngles& at);

    // calc_eq_wfsm_step.cpp
    void first_step();
    WfsmCoils coil_resistances() const;
    bool solves(const Drive& drive) const { return !(drive.dt <= 0.0) && step_.step_count != 1; }
    bool iterate(const Drive& drive, const PhaseAngles& at, bool& ok, int& error);
    void count_passes(const Drive& drive, int passes, bool converged);
    double relax(const WfsmCoils& x);
    bool solve_currents(const Drive& drive, const WfsmCoils& x, const PhaseAngles& at, bool& ok, int& error);
    bool solve_network(const Drive& drive, const WfsmCoils& e, const WfsmCoils& x, bool& ok, int& error);
    static bool all_finite(const double* values, std::size_t count, int& error);
    bool finish_currents(const Drive& drive, const PhaseAngles& at, int& error);
    void take_polar_current(const PhaseAngles& at);

    // calc_eq_wfsm_losses.cpp
    double speed_rpm(double dt) const;
    bool iron_step(const Drive& drive, const PhaseAngles& at, int& error);
    Phases seen_voltages(const Drive& drive, double rpm);
    LossCurrent compute_iron_loss(const DqPair& i, double field, double rpm, double voltage);
    LossCurrent loss_current(double total, double voltage);

    // calc_eq_wfsm_evaluate.cpp
    void evaluate_lookups(const PhaseAngles& at);
    void split_loss_current(const PhaseAngles& at);

    // calc_eq_wfsm_debug.cpp
    void write_pass_rows(int pass, const Drive& drive);
    void write_pass_polar_row(int pass, const PhaseAngles& at);
    void write_step_rows(const Drive& drive, const PhaseAngles& at, int pass, int kept_pass);
    void write_inductance_row();
    void write_torque_row(const PhaseAngles& at, double torque);

    KZB_STORE* store_ = nullptr;  // borrowed
    double tolerance_ = 0.001;    // A, sum of the changes of the four currents in a pass
    int max_iterations_ = 200;
    double acceleration_ = 1.0;
    WfsmMachine machine_;
    WfsmCorrections corrections_;
    WfsmTemperatures temperatures_;
    WfsmStep step_;
    WfsmLosses losses_;
    WfsmTables tables_;
    MaterialLosses material_losses_;
    UserParameters user_parameters_;
    WindingNetwork network_;
    WfsmDebug debug_;
    PassCounts pass_counts_;
};

}  // namespace kzb
