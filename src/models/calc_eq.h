// Calc_Eq: the three-phase permanent-magnet synchronous machine, rotary or linear.
//
//   v = R i + d/dt (L i + psi_magnet),   torque from a table, from Ld and Lq, or from the coenergy
//
// inputs   v_u v_v v_w V, signal per terminal (0: open)    states      currents A or fluxes Vs, by application
//          position mechanical rad or m, time s            parameters  tables of the file, corrections, temperatures
// outputs  current_output A, torque N*m or force N, fluxes Vs, inductances H, losses W
// step     implicit in the current, one linear solve per sample, tables taken at the previous current
//
// One application kind is active: 0 SimpleHarmonic and LinearSynchronous, 1 Harmonic, 2 LdLq, 3 FluxIntegralDQTheta.
// A step never commits: `accept` alone moves present values to their previous fields, so one sample may be stepped any
// number of times (kind 3, whose state the caller integrates, excepted). Phases count from 1 in the methods.
//
// The order of floating-point operations is part of the definition throughout.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "circuit/winding_network.h"
#include "models/calc.h"
#include "models/material_losses.h"
#include "models/pmsm_data.h"
#include "models/pmsm_debug.h"
#include "models/pmsm_tables.h"
#include "models/turns.h"
#include "models/user_parameters.h"
#include "store/store.h"

namespace kzb {

struct FluxInputs;

class Calc_Eq : public Calc, public CorrectionSetters<PmsmCorrections> {
  public:
    // Error numbers of `step`: indices of the message table.
    static constexpr int error_infinite = 18;
    static constexpr int error_not_a_number = 19;
    static constexpr int error_old_correction = 20;

    Calc_Eq();
    ~Calc_Eq() override;

    // Back to the defaults; debug files stay open.
    void reset();
    // Takes tables and fixed data from `store`, which the model borrows from now on.
    void bind(KZB_STORE& store, int ironloss_flag);

    // ---- before binding
    void set_application(int kind) { machine_.application = kind; }
    void set_connection(int connection) { machine_.connection = connection; }
    void set_resistance_base(double ohm) { machine_.resistance_base = ohm; }
    void set_skew(const SkewParameters& skew) { skew_ = skew; }

    // ---- the model's own temperatures, apart from those of Calc
    double own_coil_temperature() const { return temperatures_.coil_temperature; }
    double own_base_coil_temperature() const { return temperatures_.base_coil_temperature; }
    double own_coil_coefficient() const { return temperatures_.coil_coefficient; }
    double own_magnet_temperature() const { return temperatures_.magnet_temperature; }
    double own_base_magnet_temperature() const { return temperatures_.base_magnet_temperature; }
    double own_magnet_coefficient() const { return temperatures_.magnet_coefficient; }
    void set_own_coil_temperature(double kelvin) { temperatures_.coil_temperature = kelvin; }
    void set_own_base_coil_temperature(double kelvin) { temperatures_.base_coil_temperature = kelvin; }
    void set_own_coil_coefficient(double ppm_per_kelvin) { temperatures_.coil_coefficient = ppm_per_kelvin; }
    void set_own_magnet_temperature(double kelvin) { temperatures_.magnet_temperature = kelvin; }
    void set_own_base_magnet_temperature(double kelvin) { temperatures_.base_magnet_temperature = kelvin; }
    void set_own_magnet_coefficient(double percent_per_kelvin) {
        temperatures_.magnet_coefficient = percent_per_kelvin;
    }

    // ---- losses
    void set_user_copperloss_on(bool on) { losses_.user_copperloss_on = on; }
    void set_dc_voltage(double volt) { losses_.dc_voltage = volt; }
    void set_carrier_frequency(double hertz) { losses_.carrier_frequency = hertz; }

    // ---- initial conditions and inputs; a phase outside 1 to 3 is left alone
    void set_initial_current(int phase, double ampere);
    void set_initial_time(double second);
    // Moves the old value to the previous one before storing.
    void set_current(int phase, double ampere);
    void set_position(double position) { step_.position = position; }
    void set_time(double second) { step_.time = second; }

    // ---- voltage driven, kinds 0 to 2; false with `error` set when the step failed (0 without a bound store)
    bool step(double v_u, double v_v, double v_w, double position, double time, double signal_u, double signal_v,
              double signal_w, int& error);

    // ---- voltage driven, kind 3: d, q and zero flux are the caller's `state` [3]; `derivative` [3]
    void flux_derivative(double v_u, double v_v, double v_w, double position, double time, const double* state,
                         double* derivative, int signal_u, int signal_v, int signal_w);
    void flux_update(double time, double position, double* state);

    // ---- current driven
    double torque_from_currents();
    void dq_inductances_from_currents(double position);

    // Moves present values to their previous fields.
    void accept();

    // ---- results; 0.0 outside phases 1 to 3
    double induced_voltage(int phase) override;
    double stored_induced_voltage(int phase) const { return of_phase(step_.induced_voltage, phase); }
    double current_output(int phase) const { return of_phase(step_.current_output, phase); }
    double coil_flux(int phase) const { return of_phase(step_.coil_flux, phase); }
    double resistance(int phase) const { return of_phase(step_.resistance, phase); }
    // Element of the 3 by 3 matrix; the interface's exchange of row 1 column 3 is not made here.
    double inductance(int row, int column) const;
    double d_inductance() const { return step_.d_inductance; }
    double q_inductance() const { return step_.q_inductance; }
    double torque() const { return step_.torque; }
    double force() const { return step_.force; }
    double eddy_loss() const { return losses_.eddy_loss[0]; }
    double hysteresis_loss() const { return losses_.hysteresis_loss[0]; }
    double ac_copper_loss() const { return losses_.ac_copper_loss; }
    double dc_copper_loss() const { return losses_.dc_copper_loss; }
    bool ironloss_on() const { return losses_.ironloss_on; }
    bool user_copperloss_on() const { return losses_.user_copperloss_on; }
    int application() const { return machine_.application; }
    int connection() const { return machine_.connection; }
    double position() const { return step_.position; }
    double flux_multiplier() const { return corrections_.flux_multiplier; }
    int user_parameter_count() const { return user_parameters_.count(); }
    const std::vector<double>& user_parameters() const { return user_parameters_.values(); }
    // Magnet flux at the present position times `flux_multiplier`, without temperature (Vs): kind 2 reads "d_flux"
    // afresh, kind 0 looks up by "Spline", other kinds give 0.0. Kind 0 looks up whatever `phase` is.
    double magnet_flux_at_position(int phase);

    // ---- all that the model holds
    const PmsmMachine& machine() const { return machine_; }
    const PmsmTemperatures& temperatures() const { return temperatures_; }
    const PmsmStep& state() const { return step_; }
    const PmsmLosses& losses() const { return losses_; }
    const FluxIntegralState& flux_integral_state() const { return integral_; }

  private:
    static bool is_phase(int phase) { return phase >= 1 && phase <= 3; }
    static double of_phase(const Phases& values, int phase) {
        return is_phase(phase) ? values[static_cast<std::size_t>(phase - 1)] : 0.0;
    }

    // calc_eq_bind.cpp
    bool select_application();
    void set_torque_table(const char* category, const char* table);
    void select_torque_table();
    void read_d_flux();
    void read_ironloss(int ironloss_flag);
    void bind_user_parameters(bool linear_application);
    void build_winding(bool linear_application);
    double element_resistance(std::size_t k) const;
    void read_geometry();
    void read_turns();
    void read_leakage();
    void apply_skew();

    // calc_eq_flux.cpp
    double electrical_angle(double position) const;
    double table_angle(double position) const;
    double magnet_factor_of_step() const;
    double temperature_scale() const;
    void update_corrections(double amplitude, double beta);
    void update_flux(const PhaseAngles& at, double angle);
    void update_magnet_flux_simple(double angle);
    void update_magnet_flux_ld_lq(const PhaseAngles& at);
    void update_flux_harmonic(double angle);
    void update_coil_flux();
    double flux_per_inductance_previous() const;

    // calc_eq_inductance.cpp
    void update_inductance(const PhaseAngles& at, double angle);
    void update_inductance_harmonic(double angle);
    void update_inductance_simple(double angle);
    void blend_inductance(double amplitude, double angle, double shifted, double* elements);
    void choose_inductance(double amplitude, double angle, double shifted, double* elements);
    double inductance_element(double amplitude, double angle, int element);
    void inductance_elements(double amplitude, double angle, int count, double* elements);
    DqPair look_up_ld_lq(double beta, double amplitude);
    void update_ld_lq();
    void update_inductance_ld_lq(const PhaseAngles& at);

    // calc_eq_dq.cpp
    DqPair dq_from_flux(double amplitude, double beta, double angle, const PhaseAngles& at);
    DqPair dq_from_flux_integral(double beta, double angle);
    double probed_q_flux(double amplitude, double beta, double angle, const PhaseAngles& at);
    double probed_q_inductance(double amplitude, double beta, double angle, const PhaseAngles& at);
    double d_inductance_from_current(double noload_d, double beta, double angle);
    double table_d_current(double d_flux, double angle);
    DqPair quadratic_dq(const PhaseAngles& at) const;
    DqPair leakage_dq(const PhaseAngles& at) const;
    DqPair harmonic_dq(double angle, const PhaseAngles& at);
    void update_dq_inductances(double angle, const PhaseAngles& at);

    // calc_eq_step.cpp
    void take_start();
    void take_first_multipliers();
    void take_first_fluxes();
    bool solve_currents(double dt, const double* voltages, const bool* driven, const PhaseAngles& at, int& error);
    void take_voltage_of_flux(double dt, const double* voltages, const bool* driven, const double* x,
                              std::size_t elements, std::size_t terminals);
    Phases lagged_voltage(double dt) const;
    double update_polar_current(const PhaseAngles& at);

    // calc_eq_torque.cpp
    double temperature_torque(double theta_e, double q) const;
    void update_torque(const PhaseAngles& at, double angle, double dt, double tq);
    double ibeta_value(TableRef& table, double angle);
    double ld_lq_torque(const PhaseAngles& at);
    double coenergy_gradient();
    void update_force(double angle, double tq);

    // calc_eq_losses.cpp
    double speed_rpm(double position, double dt) const;
    void update_resistance(double dt);
    void update_copper_loss();
    double iron_loss(double rpm);
    void reduce_torque_by_iron_loss(double dt);
    void update_user_parameters(double angle);

    // calc_eq_flux_integral.cpp, calc_eq_flux_update.cpp
    void feed_open_phase(FluxInputs& in) const;
    void voltage_balance(const FluxInputs& in, const Dq0& v, double zero_flux, double* derivative) const;
    Dq0 noload_derivative(const FluxInputs& in, double* derivative);
    Dq0 terminal_voltage_dq0(const FluxInputs& in) const;
    Dq0 noload_flux_at(double angle);
    double noload_scale() const;
    Dq0 scaled_noload_flux(double angle);
    Dq0 air_gap_flux(const FluxInputs& in);
    Dq0 table_current(const FluxInputs& in, const Dq0& flux);
    double star_zero_flux(const FluxInputs& in, const Dq0& table, Dq0& flux);
    DqPair loss_current(double loss) const;
    void step_loss_filters(const FluxInputs& in, const double* derivative);
    Phases phases_by_connection(const Dq0& x, const PhaseAngles& at) const;
    void take_fluxes_of_state(const double* state, const PhaseAngles& at, double dt);
    void write_flux_integral_row(const FluxInputs& in, const Dq0& v, double loss, const DqPair& loss_part,
                                 const Dq0& table, const double* derivative);

    // calc_eq_debug.cpp
    void write_step_rows(const double* voltages, double dt);
    void write_iron_loss_row(double loss, double omega, double loss_torque);

    static double row_times(const Matrix3& m, std::size_t row, const Phases& x) {
        return m[row * 3] * x[0] + m[row * 3 + 1] * x[1] + m[row * 3 + 2] * x[2];
    }

    KZB_STORE* store_ = nullptr;  // borrowed
    PmsmMachine machine_;
    PmsmTemperatures temperatures_;
    PmsmStep step_;
    PmsmLosses losses_;
    FluxIntegralState integral_;
    SkewParameters skew_;
    PmsmTables tables_;
    MaterialLosses material_losses_;
    UserParameters user_parameters_;
    std::unique_ptr<WindingNetwork> winding_;
    PmsmDebug debug_;
};

}  // namespace kzb
