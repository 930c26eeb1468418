// KZMotionCondition: a moving part, linear or rotating, and the units of its position.
//
// A rotating part's position is kept in radians and reaches the tables in degrees; a linear part's keeps the caller's
// unit; a part of another kind reaches the tables as 0.0.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <vector>

#include "store/store.h"

namespace kzb {

enum MotionKind { motion_linear = 0, motion_rotation = 1, motion_other = 2 };

enum MotionUnit {
    unit_degrees = 0,
    unit_radians = 1,
    unit_linear = 2,
    unit_radians_per_second = 3,
    unit_revolutions_per_minute = 4,
    unit_none = 5,
};

double convert_unit(MotionUnit from, MotionUnit to, double value);

struct KZMotionCondition {
    MotionUnit own_unit() const;
    MotionUnit table_unit() const;
    double position_in(MotionUnit unit) const { return convert_unit(own_unit(), unit, position); }
    double period_in(MotionUnit unit) const { return convert_unit(own_unit(), unit, period); }
    // In the linear unit per second, of a rotating part in revolutions per minute; 0.0 when no time has passed.
    double speed(double dt) const;
    // 0.0 for a periodic motion.
    double upper_limit() const { return periodic ? 0.0 : period; }

    int id = 0;
    int kind = motion_other;
    bool periodic = false;
    int axis_no = 0;  // from 1; of the coil set form
    int forcetable_id = 0;
    double position = 0.0;
    double previous_position = 0.0;
    double period = 0.0;  // or limit
    std::string name;
};

using MotionList = std::vector<boost::shared_ptr<KZMotionCondition>>;

// The motions of the file. An id that is no number from 1 to their count is a fault: it has no place in the caller's
// displacements.
MotionList read_motions(const KZB_STORE& store, std::vector<std::string>& faults);
// The first of this id; null where there is none.
KZMotionCondition* find_motion(const MotionList& motions, int id);

}  // namespace kzb
