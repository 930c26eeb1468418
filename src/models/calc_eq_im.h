// Calc_Eq_im_transient: the induction machine as two three-phase windings, primary (stator) and secondary (rotor), in a
// two-axis stationary frame.
//
//   v1 = R1 i1 + d(psi1)/dt                 psi1 = L11 i1 + M12 i2
//   0  = R2 i2 + d(psi2)/dt - j w psi2      psi2 = M21 i1 + L22 i2        torque = p/2 M12 (i2a i1b - i2b i1a)
//
// inputs   v_u v_v v_w V or i_u i_v i_w A, position mechanical rad, time s, slip_omega rad/s
// states   currents A (constants), or the caller's i1a, i1b, psi2a, psi2b (tables)
// outputs  six currents A, torque N*m, fluxes Vs, losses W
// parameters  constants of an equivalent circuit or tables over (slip frequency Hz, peak current A), temperatures
// step     constants: implicit, one linear solve of four currents; tables: explicit Euler of the caller's step size
//
// The file decides between the two: inductance_type 0 (constants) has step_voltage_driven and step_current_driven, 1
// (tables) has observe_state with voltage_derivative or current_derivative. Every one of them starts with the parameter
// update. A step of type 0 never commits: `accept` alone moves present values to their previous fields. Without a bound
// store a step does nothing and a derivative is 0.0.
//
// The order of floating-point operations is part of the definition throughout.
#pragma once

#include <memory>
#include <string>

#include "circuit/winding_network.h"
#include "models/calc.h"
#include "models/calc_eq_im_data.h"
#include "models/calc_eq_im_debug.h"
#include "models/calc_eq_im_speed.h"
#include "models/calc_eq_im_tables.h"
#include "models/turns.h"
#include "store/store.h"

namespace kzb {

// The corrections are folded, yet read by no equation of this model, as established.
class Calc_Eq_im_transient : public Calc, public CorrectionSetters<CoilCorrections> {
  public:
    Calc_Eq_im_transient();
    ~Calc_Eq_im_transient() override;

    // Back to the defaults; debug files stay open, and what the environment asked for stays.
    void reset();
    // Takes tables and fixed data from `store`, which the model borrows from now on. A file of constants gets the
    // category of tables, so that a second call finds it there and takes the file for one of tables, as established.
    void bind(KZB_STORE& store, int ironloss_flag);

    // ---- before binding
    // The model word handed to the store beside "IM"; empty by default.
    void set_application(std::string word) { machine_.application = std::move(word); }
    void set_connection(int connection) { machine_.connection_type = connection; }
    // Primary resistance Rs_DC (Ohm); 0.0 takes the file's "R1".
    void set_resistance(double ohm) { resistances_.Rs_DC = ohm; }

    // ---- secondary coil; the primary coil's temperatures are those of Calc
    double secondary_coil_temperature() const { return temperatures_.secondary_coil_temperature; }
    double base_secondary_coil_temperature() const { return temperatures_.base_secondary_coil_temperature; }
    double secondary_coil_coefficient() const { return temperatures_.secondary_coil_coefficient; }
    void set_secondary_coil_temperature(double kelvin) { temperatures_.secondary_coil_temperature = kelvin; }
    void set_base_secondary_coil_temperature(double kelvin) { temperatures_.base_secondary_coil_temperature = kelvin; }
    void set_secondary_coil_coefficient(double ppm_per_kelvin) {
        temperatures_.secondary_coil_coefficient = ppm_per_kelvin;
    }
    // Rr_base and Rr (Ohm), the latter at the secondary coil's temperature.
    void set_secondary_resistance(double ohm);

    // ---- losses
    void set_user_copper_loss_enabled(bool on) { machine_.user_copper_loss_enabled = on; }
    void set_dc_voltage(double volt) { machine_.dc_voltage = volt; }
    void set_carrier_frequency(double hertz) { machine_.carrier_frequency = hertz; }

    // ---- initial conditions and inputs; `phase` 1 to 3 of the primary, 4 to 6 of the secondary, others are left alone
    void set_initial_current(int phase, double ampere);
    void set_initial_time(double second);
    void set_current(int phase, double ampere);
    void set_slip_omega(double rad_per_second) { step_.slip_omega = rad_per_second; }
    void set_time(double second) { step_.time = second; }
    // Kept beside; a step takes its own displacement.
    void set_position(double radian) { step_.position = radian; }
    // Takes resistances and inductances from "./parameters.txt" in place of the tables, at every step. No exported call
    // asks for it.
    void set_read_parameter_file(bool on) { read_parameter_file_ = on; }

    // ---- a whole sample, by inductance_type: what kzbcalcExecute and a current-driven kzbcalcGetTorque do.
    // `voltages`, `signals`, `currents` [3], `state` [4], moved only with tables: state += step_size * derivative.
    void execute(const double* voltages, double displacement, double time, const double* signals, double step_size,
                 double* state);
    double torque_from_currents(const double* currents, double displacement, double time, double step_size,
                                double* state);

    // ---- the steps of type 0, mechanical rad and s; a signal above 0 marks a driven terminal
    void step_voltage_driven(const double* voltages, double displacement, double time, const double* signals);
    void step_current_driven(const double* currents, double displacement, double time);

    // ---- the steps of type 1: x = i1a, i1b, psi2a, psi2b
    void observe_state(double time, double displacement, const double* x);
    void voltage_derivative(const double* voltages, double time, double displacement, double* out, const double* x);
    // x [2] = psi2a, psi2b; `out` [4], the last two 0.0.
    void current_derivative(const double* currents, double time, double displacement, double* out, const double* x);

    // Torque of the present currents; also stored.
    double compute_torque();

    // Moves present values to their previous fields.
    void accept();

    // ---- results; 0.0 outside phases 1 to 3
    double induced_voltage(int phase) override { return of_phase(step_.voltage_induced, phase); }
    double current_output(int phase) const;
    double flux_total(int phase) const { return of_phase(step_.flux_total, phase); }
    double torque() const { return step_.torque; }
    double iron_loss() const { return losses_.iron_loss; }
    double primary_copper_loss() const { return losses_.primary_copper_loss; }
    double secondary_copper_loss() const { return losses_.secondary_copper_loss; }
    double user_copper_loss() const { return losses_.user_copper_loss; }
    double secondary_flux_d() const { return step_.secondary_flux_d; }
    double secondary_flux_q() const { return step_.secondary_flux_q; }
    double secondary_resistance() const { return resistances_.Rr; }
    // Of the primary: its own and that of the additional copper loss (Ohm).
    double resistance() const { return resistances_.Rs + resistances_.R_equivalent; }
    // What the sum of copper losses takes for the secondary: a vector that nothing writes, as established.
    double copper_loss_secondary_current() const { return 0.0; }
    // Hz; 0.0 below 1e-20 rad/s.
    double slip_frequency() const;
    // Electrical rad/s at the present time and angle.
    double electrical_speed() const { return angles_.speed(step_.time, step_.theta); }

    // 1 tables, 0 constants, -1 not bound yet.
    int inductance_type() const { return machine_.inductance_type; }
    // The same, asking `store` while the model is not bound.
    int inductance_type(const KZB_STORE& store) const;
    bool ironloss_enabled() const { return machine_.ironloss_enabled; }
    bool user_copper_loss_enabled() const { return machine_.user_copper_loss_enabled; }
    int connection() const { return machine_.connection_type; }
    int torque_type() const { return torque_type_; }

    // ---- all that the model holds
    const ImMachine& machine() const { return machine_; }
    const ImResistances& resistances() const { return resistances_; }
    const ImTemperatures& temperatures() const { return temperatures_; }
    const ImStep& state() const { return step_; }
    const ImLosses& losses() const { return losses_; }
    const WindingNetwork* network() const { return network_.get(); }

  private:
    // Currents of both windings in the stationary frame.
    struct Currents {
        TwoAxis primary;
        TwoAxis secondary;
    };

    static bool is_phase(int phase) { return phase >= 1 && phase <= 3; }
    static double of_phase(const Phases& values, int phase) {
        return is_phase(phase) ? values[static_cast<std::size_t>(phase - 1)] : 0.0;
    }

    // calc_eq_im_bind.cpp
    void make_constant_tables();
    void make_constant_table(const char* key, double value);
    void read_resistances();
    void read_ironloss(int ironloss_flag);
    void read_control();

    // calc_eq_im_parameters.cpp
    double theta_of(double displacement) const { return machine_.number_of_poles * 0.5 * displacement; }
    void start_step(double time, double displacement);
    void update_parameters();
    void update_from_tables();
    void look_up_parameters(const double* point);
    void look_up_tables(const double* point, ImFlatTables::Values& values);
    void hold_secondary_resistance();
    double secondary_factor() const;
    double equivalent_resistance();
    void apply_first_step_rule();

    // calc_eq_im_implicit.cpp
    template <class Solve>
    Currents implicit_currents(double time, double displacement, Solve solve);
    TwoAxis terminal_voltage(const double* voltages) const;
    void finish_from_currents(const Currents& currents, const double* voltages);
    Currents accepted_currents() const;
    Currents solve_currents(const double* voltages, const double* signals, double dt);
    Currents solve_secondary(const double* currents, double dt) const;

    // calc_eq_im_output.cpp
    void take_currents(const Currents& currents, const double* voltages);
    Currents currents_out() const;
    void update_secondary_flux(const Currents& currents);
    void update_total_flux(const Currents& currents);

    // calc_eq_im_losses.cpp
    void update_losses(const Currents& currents);
    double compute_iron_loss();
    double torque_of(const Currents& currents);
    double power_torque() const;

    // calc_eq_im_debug.cpp
    void write_step_rows(const double* voltages);

    KZB_STORE* store_ = nullptr;  // borrowed
    int torque_type_ = 0;         // DORN_KZ_TORQUE_TYPE
    bool read_parameter_file_ = false;
    ImMachine machine_;
    ImResistances resistances_;
    ImTemperatures temperatures_;
    ImStep step_;
    ImLosses losses_;
    ImTables tables_;
    AngleHistory angles_;
    RotorAngles at_theta_;
    RotorAngles at_theta_prev_;
    std::unique_ptr<WindingNetwork> network_;
    ImDebug debug_;
};

}  // namespace kzb
