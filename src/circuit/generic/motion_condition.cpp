#include "circuit/generic/motion_condition.h"

#include <boost/make_shared.hpp>

#include "models/park.h"
#include "store/record_list.h"

namespace kzb {
namespace {

KZMotionCondition read_motion(const Record& record) {
    KZMotionCondition motion;
    motion.id = record.integer("id");
    const int type = record.integer("type");
    motion.kind = type == motion_linear || type == motion_rotation ? type : motion_other;
    motion.periodic = record.integer("flg_periodic") == 1;
    motion.axis_no = record.integer("axis_no");
    motion.forcetable_id = record.integer("forcetable_id");
    const double displacement = record.number("max_displacement");
    motion.period = motion.kind == motion_linear     ? displacement
                    : motion.kind == motion_rotation ? pi * displacement / 180
                                                     : 0.0;
    motion.name = record.text("name");
    return motion;
}

}  // namespace

double convert_unit(MotionUnit from, MotionUnit to, double value) {
    switch (from) {
        case unit_degrees:
            return to == unit_radians ? pi * value / 180 : value;
        case unit_radians:
            return to == unit_degrees ? value * 180 / pi : value;
        case unit_linear:
            return value;
        case unit_radians_per_second:
            return to == unit_revolutions_per_minute ? value / (2 * pi) * 60 : 0.0;
        default:
            return 0.0;
    }
}

MotionUnit KZMotionCondition::own_unit() const {
    return kind == motion_rotation ? unit_radians : kind == motion_linear ? unit_linear : unit_none;
}

MotionUnit KZMotionCondition::table_unit() const {
    return kind == motion_rotation ? unit_degrees : kind == motion_linear ? unit_linear : unit_none;
}

double KZMotionCondition::speed(double dt) const {
    double value = 0.0;
    if (dt > 0) {
        value = (position - previous_position) / dt;
    }
    return kind == motion_linear ? value : value / (2 * pi) * 60;
}

MotionList read_motions(const KZB_STORE& store, std::vector<std::string>& faults) {
    MotionList motions;
    for (const Record& record : records_of(store, "motion_condition_list;motion_condition")) {
        motions.push_back(boost::make_shared<KZMotionCondition>(read_motion(record)));
    }
    for (const auto& motion : motions) {
        if (motion->id < 1 || static_cast<std::size_t>(motion->id) > motions.size()) {
            faults.push_back("motion condition: id " + std::to_string(motion->id) + ", expected 1 to " +
                             std::to_string(motions.size()));
        }
    }
    return motions;
}

KZMotionCondition* find_motion(const MotionList& motions, int id) {
    for (const auto& motion : motions) {
        if (motion->id == id) {
            return motion.get();
        }
    }
    return nullptr;
}

}  // namespace kzb
