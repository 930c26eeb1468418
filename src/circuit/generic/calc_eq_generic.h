// Calc_Eq_generic: a machine told by its file: a circuit of resistors, coils, capacitors, coils of tables, probes and
// sources, with moving parts.
//
//   unknowns  branch currents i, free potentials p; laws of the elements under backward Euler (circuit_solver.h)
//   pass      tables at i: flux and differential inductance of each coil; one linear solve
//   end       sum |i_new - i| <= 0.001 A, or 50 passes; the solution of the pass that moved least stands
//
// inputs   V or A per source, switch per source, position per motion   states      i, p, flux of the accepted step
// outputs  currents, potentials, fluxes, force, user values, iron loss  parameters  the file, corrections
// step     implicit; a step that doesn't converge is no error; no solve before the first acceptance, nor while no time
//          has passed
//
// Ports are numbered from 1 in each group, and reach a component through the file's port lists.
#pragma once

#include <array>
#include <boost/shared_ptr.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "circuit/generic/circuit_solver.h"
#include "circuit/generic/fem_table_model.h"
#include "circuit/generic/generic_circuit.h"
#include "circuit/generic/generic_debug.h"
#include "models/calc.h"
#include "models/pass_counts.h"

namespace kzb {

// Groups of ports that have a list in the file.
enum class PortGroup { coils, resistors, inductors, capacitors, sources, probes };
inline constexpr std::size_t port_groups = 6;

// Index of the message for a circuit without a base potential.
inline constexpr int no_base_potential = 24;

class Calc_Eq_generic : public Calc {
  public:
    static constexpr int most_passes = 50;  // of a step

    Calc_Eq_generic();
    ~Calc_Eq_generic() override = default;

    double induced_voltage(int) override { return 0.0; }
    std::vector<CircuitMessage> messages() override { return circuit_->messages(); }

    // Reads the model; 1, or 0 when the store doesn't offer the application "Generic". A model with faults is empty.
    int initialize(KZB_STORE& store);
    // What makes the file's model unusable, one text each.
    const std::vector<std::string>& faults() const { return faults_; }

    void set_iron_loss_enabled(bool on);
    bool iron_loss_enabled() const { return iron_loss_enabled_; }
    // Hand what the base holds to the parts.
    void apply_temperature_correction() { circuit_->set_temperature_correction(temperature_correction()); }
    void apply_interpolation() { tables_.set_interpolation(method()); }

    // 1, or 0 with `status` 24 without a base potential. `displacements` in radians or the linear unit.
    int step(const std::vector<double>& inputs, const std::vector<double>& displacements, double time,
             const std::vector<double>& switches, int& status);
    void update();
    void set_user_inputs(const std::vector<double>& values) { user_inputs_ = values; }

    double iron_loss() const { return iron_loss_; }
    bool has_iron_loss() const { return tables_.has_iron_loss(); }
    const PassCounts& pass_counts() const { return pass_counts_; }
    const KZCircuitForGeneric& circuit() const { return *circuit_; }
    const KZFEMTableModel& tables() const { return tables_; }

    // Ports. A number that is none gives 0.0 or 0.
    int count(PortGroup group) const { return static_cast<int>(ports(group).size()); }
    bool has_port(PortGroup group, int port) const { return port >= 1 && port <= count(group); }
    // Port of the first component of this name; 0 for an empty name or where none matches.
    int port_by_name(PortGroup group, std::string_view name) const;
    double current(PortGroup group, int port) const;
    void set_current(PortGroup group, int port, double value);
    double value(PortGroup group, int port, std::string_view key) const;
    // Values of 0 or below are refused with 0, else 1; capacitance and flux correction give 0 all the same.
    int set_value(PortGroup group, int port, std::string_view key, double value);
    double resistance(PortGroup group, int port) const;  // at temperature (Ohm)
    double coil_flux(int port) const { return value(PortGroup::coils, port, "flux"); }
    double coil_temperature(int port) const;
    int set_coil_temperature(int port, double kelvin);
    double probe_value(int port) const;
    int source_type(int port) const;  // 1 voltage source, 0 current source
    void set_source_type(int port, bool is_current);

    int motion_count() const { return static_cast<int>(tables_.motions().size()); }
    bool motion_is_rotation(int id) const;
    bool motion_is_periodic(int id) const;
    double motion_upper_limit(int id) const;
    int motion_table_id(int id) const;
    int motion_by_name(std::string_view name) const { return name.empty() ? 0 : tables_.find_motion_by_name(name); }

    // Force tables by their id, the last of an id; user-specified values by their output port, the first of one.
    int force_count() const { return static_cast<int>(force_tables_.size()); }
    double force(int table_id);
    double force_correction(int table_id) const;
    void set_force_correction(int table_id, double factor);
    int user_parameter_count() const { return static_cast<int>(user_params_.size()); }
    double user_parameter(int port);
    void set_user_parameter_correction(int port, double factor);

  private:
    const std::vector<int>& ports(PortGroup group) const { return ports_[static_cast<std::size_t>(group)]; }
    // Component of a port, 0 where the number is none.
    int component(PortGroup group, int port) const;
    void read_ports(const KZB_STORE& store);
    void read_force_tables(const KZB_STORE& store);
    void read_user_params(const KZB_STORE& store);
    KZForceTable* force_table(int id) const;
    KZUserSpecifiedParam* user_param(int port) const;

    void evaluate_tables();
    void update_iron_loss();
    void solve(double dt);

    boost::shared_ptr<KZCircuitForGeneric> circuit_;
    KZFEMTableModel tables_;
    std::vector<boost::shared_ptr<KZUserSpecifiedParam>> user_params_;
    std::unordered_map<int, KZUserSpecifiedParam*> user_param_of_port_;  // the first of a port
    std::vector<boost::shared_ptr<KZForceTable>> force_tables_;
    KZCircuitSolverForGeneric solver_;
    int step_count_ = 1;      // 1 until the first update
    double time_ = 0.0;       // s
    double last_time_ = 0.0;  // s, of the accepted step
    bool track_best_iteration_ = true;
    bool iron_loss_enabled_ = false;
    double iron_loss_ = 0.0;                           // W
    std::array<std::vector<int>, port_groups> ports_;  // components by port
    std::vector<double> user_inputs_;
    GenericDebug debug_;
    PassCounts pass_counts_;
    std::vector<std::string> faults_;
};

}  // namespace kzb
