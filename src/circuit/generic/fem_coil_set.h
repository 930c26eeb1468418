// KZFEMCoilSet: coils that share amplitude and phase axes of the tables.
//
//   a = sqrt(2/3) sum I_k cos(delta_k + theta),  b = -sqrt(2/3) sum I_k sin(delta_k + theta)
//   amplitude = sqrt(2/3 (a^2 + b^2)),  phase = atan2(-a, b) in degrees,  theta = 2 pi position / period
//
// I_k is the coil's current times its turn ratio, delta_k its phase. At b = 0 the phase is 90 degrees for a above 0,
// -90 below: not the sign of the formula's limit, as established. A single coil's amplitude is its current, its phase
// 0.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "circuit/generic/generic_circuit.h"
#include "circuit/generic/motion_condition.h"

namespace kzb {

enum CoilSetKind { set_single = 0, set_one_coil = 1, set_three_phases = 2, set_other = 3 };

struct KZFEMCoilSet {
    struct Entry {
        boost::shared_ptr<KZLineElement> branch;
        double phase_diff = 0.0;  // degrees

        KZFEMCoil& coil() const { return static_cast<KZFEMCoil&>(*branch->element_type); }
    };

    // The motion of the set that the references lead to.
    const KZMotionCondition* leading_motion() const;
    // Amplitude and phase of the present currents and position.
    void update_state();

    int id = 0;
    int kind = set_other;
    bool is_reference = false;  // refers to another set
    int reference_set_id = 0;
    int poles = 0;
    double phase_initial = 0.0;  // degrees
    boost::shared_ptr<KZMotionCondition> motion;
    const KZFEMCoilSet* reference_set = nullptr;
    std::vector<Entry> coils;
    int current_axis = 0;    // from 1
    int phase_axis = -1;     // from 1
    double amplitude = 0.0;  // A
    double phase = 0.0;      // degrees

  private:
    void update_phasor();
};

using CoilSetList = std::vector<boost::shared_ptr<KZFEMCoilSet>>;

// The sets of the file. `axis_count` grows by the axes that they use. Faults: a set of an unknown type, without coils
// where one is needed, without a motion, or whose references lead nowhere.
CoilSetList read_coil_sets(const KZB_STORE& store, const KZCircuitForGeneric& circuit, const MotionList& motions,
                           int& axis_count, std::vector<std::string>& faults);

}  // namespace kzb
