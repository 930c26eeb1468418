// What the calls of the generic model share: another motor type is refused first, then the value, then the id.
#pragma once

#include <utility>

#include "interface/value_calls.h"

namespace kzb {

using GenericModel = Calc_Eq_generic;

constexpr bool is_id(int id, int count) {
    return id >= 1 && id <= count;
}

// `body(model)` with a status, 180039 for another motor type.
template <class Body>
int of_generic(KZB_CALC* handle, Body&& body) {
    return guarded(status_not_applicable, [&] {
        return with_model<generic>(handle, status_not_applicable, [&](GenericModel& model) { return body(model); });
    });
}

// Sets something of the component `id` of a group of `count(model)`; `id_status` for another id.
template <class Count, class Body>
int set_of_generic(KZB_CALC* handle, int id, int id_status, Count&& count, Body&& body) {
    return of_generic(handle, [&](GenericModel& model) -> int {
        if (!is_id(id, count(model))) {
            return id_status;
        }
        body(model);
        return 0;
    });
}

// The same for a value, which is tested before the id.
template <class Count, class Body>
int set_of_generic(KZB_CALC* handle, double value, ValueTest test, int id, int id_status, Count&& count, Body&& body) {
    return of_generic(handle, [&](GenericModel& model) -> int {
        if (test.refuses(value)) {
            return test.status;
        }
        if (!is_id(id, count(model))) {
            return id_status;
        }
        body(model);
        return 0;
    });
}

// `body(model)` for an id of the group, else the status as a number.
template <class Count, class Body>
double get_of_generic(KZB_CALC* handle, int id, int id_status, Count&& count, Body&& body) {
    return get_value<generic>(
        handle, [&](GenericModel& model) { return is_id(id, count(model)) ? body(model) : as_value(id_status); });
}

// Number of ports of a group, as the calls take it.
struct CountOf {
    PortGroup group;
    int operator()(const GenericModel& model) const { return model.count(group); }
};
constexpr CountOf coils{PortGroup::coils};
constexpr CountOf resistors{PortGroup::resistors};
constexpr CountOf inductors{PortGroup::inductors};
constexpr CountOf capacitors{PortGroup::capacitors};
constexpr CountOf probes{PortGroup::probes};
constexpr CountOf sources{PortGroup::sources};
inline int motions_of(const GenericModel& model) {
    return model.motion_count();
}
inline int forces_of(const GenericModel& model) {
    return model.force_count();
}

}  // namespace kzb
