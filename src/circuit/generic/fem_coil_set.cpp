#include "circuit/generic/fem_coil_set.h"

#include <boost/make_shared.hpp>
#include <cmath>

#include "models/park.h"
#include "store/record_list.h"

namespace kzb {
namespace {

constexpr const char* path = "element_set_list;coil_set";

// Types of the file.
constexpr int file_type_single = 0;
constexpr int file_type_moving = 1;

int kind_of(int file_type, std::size_t coils) {
    if (file_type == file_type_single) {
        return set_single;
    }
    return coils == 1 ? set_one_coil : coils == 3 ? set_three_phases : set_other;
}

// Every FEM branch of the coil's group, in the order of the branches.
void add_coils(const KZB_STORE& store, int place, const KZCircuitForGeneric& circuit, KZFEMCoilSet& set) {
    for (const Record& record : records_of(store, "element_set_list;coil_set;coil", place)) {
        const int group = record.integer("coil_id");
        for (const auto& branch : circuit.branches()) {
            const KZFEMCoil* const coil = as_fem_coil(branch->element_type.get());
            if (coil != nullptr && coil->group_id == group) {
                set.coils.push_back({branch, record.number("phase_diff")});
            }
        }
    }
}

void read_axes(const Record& record, KZFEMCoilSet& set) {
    set.current_axis = record.integer("current_axis_no");
    if (set.kind == set_one_coil || set.kind == set_three_phases) {
        set.phase_axis = record.integer("phase_axis_no");
    }
}

void resolve_references(CoilSetList& sets, std::vector<std::string>& faults) {
    for (const auto& set : sets) {
        if (!set->is_reference) {
            continue;
        }
        for (const auto& other : sets) {
            if (set->reference_set == nullptr && other->id == set->reference_set_id) {
                set->reference_set = other.get();
            }
        }
        if (set->reference_set == nullptr) {
            faults.push_back("coil set " + std::to_string(set->id) + ": ref_coil_set_id " +
                             std::to_string(set->reference_set_id) + " names no coil set");
        }
    }
}

void check_motions(const CoilSetList& sets, std::vector<std::string>& faults) {
    for (const auto& set : sets) {
        const KZFEMCoilSet* last = set.get();
        for (std::size_t steps = 0; last != nullptr && last->is_reference && steps <= sets.size(); ++steps) {
            last = last->reference_set;
        }
        const std::string where = "coil set " + std::to_string(set->id) + ": ";
        if (last != nullptr && last->is_reference) {
            faults.push_back(where + "its references lead in a circle");
        } else if (set->kind != set_single && set->kind != set_other && last != nullptr && !last->motion) {
            faults.push_back(where + "has no motion condition");
        }
        if (set->kind == set_single && set->coils.empty()) {
            faults.push_back(where + "has no coil of the circuit");
        }
    }
}

}  // namespace

CoilSetList read_coil_sets(const KZB_STORE& store, const KZCircuitForGeneric& circuit, const MotionList& motions,
                           int& axis_count, std::vector<std::string>& faults) {
    CoilSetList sets;
    const int count = record_count(store, path);
    for (int place = 0; place < count; ++place) {
        const Record record = record_at(store, path, place);
        auto set = boost::make_shared<KZFEMCoilSet>();
        set->id = record.integer("id");
        const int type = record.integer("type");
        if (type != file_type_single && type != file_type_moving) {
            faults.push_back("coil set " + std::to_string(set->id) + ": type " + std::to_string(type) +
                             ", expected 0 or 1");
            continue;
        }
        add_coils(store, place, circuit, *set);
        set->kind = kind_of(type, set->coils.size());
        set->is_reference = record.integer("flg_ref_coil") == 1;
        set->reference_set_id = record.integer("ref_coil_set_id");
        set->poles = record.integer("number_of_poles");
        set->phase_initial = record.number("phase_initial");
        read_axes(record, *set);
        if (type == file_type_moving) {
            const int motion_id = record.integer("motion_id");
            for (const auto& motion : motions) {
                if (!set->motion && motion->id == motion_id) {
                    set->motion = motion;
                }
            }
        }
        axis_count += type == file_type_single || set->is_reference ? 1 : 2;
        sets.push_back(std::move(set));
    }
    resolve_references(sets, faults);
    check_motions(sets, faults);
    return sets;
}

const KZMotionCondition* KZFEMCoilSet::leading_motion() const {
    const KZFEMCoilSet* set = this;
    while (set->is_reference) {
        set = set->reference_set;
    }
    return set->motion.get();
}

void KZFEMCoilSet::update_state() {
    switch (kind) {
        case set_single:
            amplitude = coils.front().branch->current * coils.front().coil().turn_ratio();
            phase = 0;
            break;
        case set_one_coil:
        case set_three_phases:
            update_phasor();
            break;
        default:
            break;
    }
}

void KZFEMCoilSet::update_phasor() {
    const KZMotionCondition& leading = *leading_motion();
    const double theta = leading.position * 2 * pi / leading.period;
    double cosines = 0.0;
    double sines = 0.0;
    for (const Entry& entry : coils) {
        const double current = entry.branch->current * entry.coil().turn_ratio();
        const double angle = entry.phase_diff * pi / 180 + theta;
        cosines += current * std::cos(angle);
        sines += current * std::sin(angle);
    }
    const double a = sqrt_two_thirds * cosines;
    const double b = -sqrt_two_thirds * sines;
    amplitude = std::sqrt((a * a + b * b) * 2 / 3);
    if (b != 0) {
        phase = std::atan2(-a, b) * 180 / pi;
    } else {
        phase = a > 0 ? 90.0 : a < 0 ? -90.0 : 0.0;
    }
}

}  // namespace kzb
