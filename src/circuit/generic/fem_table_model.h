// KZFEMTableModel: the tables of a generic model: what feeds their axes, flux and inductance of the coils, and the
// outputs that are not flux: force, user-specified values, iron loss.
//
// A file has one of two forms. In the table axes form each axis says what feeds it, and the differential inductances
// are finite differences of the flux table; in the coil set form sets of coils give amplitude and phase axes, and the
// inductances have a table of their own.
//
//   table axes form   m_kj = (psi_k(x + step along coil j) - psi_k(x)) / step
//   coil set form     m_kj = table(axes, pair of j and k), of a three-phase set at a position shifted by the phase
//
// The flux table's last dimension is the coil's index.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "circuit/generic/correction_set.h"
#include "circuit/generic/fem_coil_set.h"
#include "circuit/generic/generic_circuit.h"
#include "circuit/generic/motion_condition.h"
#include "circuit/generic/table_axis.h"
#include "store/lookup_front.h"

namespace kzb {

// One force table; the coefficient acts in the coil set form.
struct KZForceTable {
    int forcetable_id = 0;
    int motion_id = 0;
    double coef_force = 1.0;
};

// One user-specified output value; likewise.
struct KZUserSpecifiedParam {
    int table_id = 0;
    int row = 0;  // of the output table, from 0
    int output_port = 0;
    int resolution = 0;  // 0 or 1
    double coef_output_port = 1.0;
};

class KZFEMTableModel {
  public:
    // `circuit` is kept. What makes the model unusable is added to `faults`, one text each.
    void read(KZB_STORE& store, const KZCircuitForGeneric& circuit, const std::vector<KZUserSpecifiedParam>& params,
              std::vector<std::string>& faults);
    void set_interpolation(const Method& method) { method_ = method; }

    // One value per motion by its id, in its own unit; nothing when the number is not that of the motions.
    void set_displacements(const std::vector<double>& values);
    void set_dt(double dt) { dt_ = dt; }
    // Takes the coils' present currents, or each set's amplitude and phase.
    void update_coil_state();
    // Axes, then inductances, then fluxes, at the coil state and positions.
    void evaluate();

    double force(const KZForceTable& table);
    double output(const KZUserSpecifiedParam& param);
    double iron_loss(const std::vector<double>& user_inputs);

    const MotionList& motions() const { return motions_; }
    const KZMotionCondition* motion(int id) const { return find_motion(motions_, id); }
    int find_motion_by_name(std::string_view name) const;  // id, 0 where no name matches
    const std::vector<double>& axes() const { return axes_; }
    bool has_iron_loss() const { return has_iron_loss_; }
    bool table_axes_form() const { return table_axes_form_; }

  private:
    struct Phase {
        int index = 0;
        int correction = 0;
    };
    struct UserAxis {
        int axis_no = 0;
        int reference_id = 0;
        int reference_type = 0;
        int physical_type = 0;
    };

    void read_flags();
    void read_corrections(const std::vector<KZUserSpecifiedParam>& params);
    void read_phases(std::vector<std::string>& faults);
    void read_table_axes_form(const std::vector<KZUserSpecifiedParam>& params, std::vector<std::string>& faults);
    void read_coil_set_form(std::vector<std::string>& faults);
    void check_axis_numbers(std::vector<std::string>& faults) const;
    void read_iron_loss_axes();
    int last_axis_rows(TableRef& table) const;

    double look_up(TableRef& table, const std::vector<double>& point);
    void evaluate_axes();
    void evaluate_set_axes();
    void evaluate_fluxes();
    void evaluate_set_fluxes();
    // `fluxes_`: of indices 0 .. count - 1 at `axes` [axis_count]; of the coils in their order at `point_`.
    void look_up_fluxes(const double* axes, int count);
    void look_up_coil_fluxes();
    bool indices_in_order();

    void evaluate_difference_inductances();
    void clamp_axes();
    void base_fluxes();
    double perturb(const KZFEMCoil& coil);
    void set_differences(const KZFEMCoil& moved, double step);
    int correction_of_index(int index) const;
    double difference_step(double x, const std::vector<double>& grid) const;

    void evaluate_set_inductances();
    void set_three_phase_inductances(const KZFEMCoilSet& set, int place, int offset);
    void set_other_inductances(const KZFEMCoilSet& set, int place);
    // `pairs_`: of the pairs first, first + 1 .. at the axes of `point_`.
    void look_up_pairs(int first, int count);

    KZB_STORE* store_ = nullptr;
    const KZCircuitForGeneric* circuit_ = nullptr;
    Method method_;
    std::vector<KZFEMCoil*> fem_coils_;  // in the order of the element types
    CoilSetList coil_sets_;
    int axis_count_ = 0;  // the coil index not counted
    std::vector<double> axes_;
    std::map<int, Phase> phase_of_group_;
    AxisSources sources_;
    bool constant_step_ = false;
    std::string diff_interpolation_ = "Linear";  // kept; no lookup reads it
    double minimum_current_ = 0.001;             // A
    MotionList motions_;
    std::vector<KZTableAxis> table_axes_;
    std::vector<KZFactor> factors_;
    std::vector<UserAxis> iron_loss_axes_;
    KZCorrectionSet corrections_;
    std::map<int, int> force_corrections_;   // by "index" + 1
    std::map<int, int> output_corrections_;  // by "table_id"
    int force_rows_ = 0;
    int output_rows_ = 0;
    int output2_rows_ = 0;
    bool single_output_table_ = false;
    bool has_iron_loss_ = false;
    bool table_axes_form_ = false;
    double dt_ = 0.0;  // s

    std::vector<int> coil_ids_;  // element type ids of the coils, set after set

    TableRef flux_table_;
    TableRef inductance_table_;
    TableRef force_table_;
    TableRef output_tables_[2];
    TableRef iron_loss_table_;

    // Kept from pass to pass for their memory.
    std::vector<double> point_;      // axes and the coil index
    std::vector<double> clamped_;    // base of the differences
    std::vector<double> fluxes_;     // of one point
    std::vector<double> base_flux_;  // by coil index
    std::vector<double> pairs_;      // inductances of one point
};

}  // namespace kzb
