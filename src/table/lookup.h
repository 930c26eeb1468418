// Lookup of one table at one point: scheme by name, cyclic wrap, bracket search, gather and reduction.
//
// A lookup changes no value, node or flag. It writes the result, the counters of `timing` and the table's search memos,
// on which no result depends; so one thread per store.
#pragma once

#include "table/table.h"

namespace kzb {

// Entries of the store's statistics, by index.
enum TimingSlot {
    slot_spline_calls = 1,
    slot_linear_calls = 3,
    slot_cubic_calls = 5,
    slot_linear_elapsed = 6,
    slot_cubic_elapsed = 7,
    slot_spline_elapsed = 8,
    slot_total_elapsed = 9,
    slot_spline_gather = 10,
    slot_linear_gather = 11,
    slot_cubic_gather = 12,
    slot_spline_core = 14,
    slot_linear_core = 15,
    slot_cubic_core = 16,
    timing_slots = 20
};

enum class Scheme { linear, spline, cubic, spline6, spline4, unknown };

// Status of a lookup.
inline constexpr int lookup_below_range = 80001;
inline constexpr int lookup_above_range = 80002;
inline constexpr int lookup_no_table = 90006;
inline constexpr int lookup_no_memory = 90007;
inline constexpr int lookup_beyond_limit = 9999;
inline constexpr int lookup_no_scheme = -1;

// What acts on every lookup of one exported call.
struct LookupSwitches {
    bool generic_path = false;  // USE_GENERIC_INTERPOLATION stands in the environment
    bool measure_time = false;  // elapsed times are kept beside the call counters
};

// "Linear", "Spline", "Cubic", "Spline6", "Spline4"; any other text, or null, is unknown.
Scheme scheme_of(const char* method);

// Value of `table` (null: 90006, result untouched) at `coordinates` [table->dim]. Returns the status; an unknown scheme
// gives -1 and leaves `result`.
int table_lookup(Scheme scheme, const KZB_TABLE* table, const double* coordinates, double& result, double* timing,
                 const LookupSwitches& switches);

// The coordinates first, first + stride .. of `count` components along a last axis; a plain number means all from 0 on.
struct ComponentRange {
    // NOLINTNEXTLINE(google-explicit-constructor)
    constexpr ComponentRange(int components, int from = 0, int by = 1) : count(components), first(from), stride(by) {}
    constexpr int at(int k) const { return first + k * stride; }
    int count;
    int first;
    int stride;
};

// Lookups that differ in the last coordinate alone, which takes the numbers of `range`: results, counters and messages
// are those of single lookups in this order, the axes are searched once where that is possible. `coordinates` holds
// dim - 1 numbers. Returns the last status above 0, else the last status.
int table_lookup_components(Scheme scheme, const KZB_TABLE* table, const double* coordinates,
                            const ComponentRange& range, double* results, double* timing,
                            const LookupSwitches& switches);

// Whether both tables have the same axes: sizes, nodes to the bit, none of them cyclic.
bool table_has_same_axes(const KZB_TABLE& table, const KZB_TABLE& other);
// Lookups of one point in `count` tables with the same axes: results, counters and messages are those of single lookups
// in this order. `statuses` holds what each of them would return. False, with nothing done, where they have to be made
// one by one.
bool table_lookup_siblings(Scheme scheme, const KZB_TABLE* const* tables, int count, const double* coordinates,
                           double* results, int* statuses, double* timing, const LookupSwitches& switches);

// Coordinates brought into the period of each cyclic axis; false when a coordinate has no place there (the addition of
// periods would never end), the lookup then yields KZB_NO_VALUE.
bool table_wrap_cyclic_axes(const KZB_TABLE& table, const double* coordinates, double* wrapped);

struct Bracket {
    int lo = -1;
    int hi = -1;
};
// The pair of nodes around each wrapped coordinate, (-1, -1) where there is none. Returns 0, 80001 or 80002.
int table_find_bracket(const KZB_TABLE& table, const double* wrapped, Bracket* brackets);

}  // namespace kzb
