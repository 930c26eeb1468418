// The tables of an induction machine of constants: two nodes an axis, the one value on all four of them.
//
// A lookup strictly inside such a table gives that value by any scheme that interpolates between neighbours, and counts
// as many calls wherever it lies. So a lookup made once tells what all others leave behind. Nodes stay as binding sets
// them; all else that a lookup could notice is tested every time: names, scheme, environment and values.
#pragma once

#include <array>

#include "store/sibling_tables.h"

namespace kzb {

class ImFlatTables {
  public:
    static constexpr std::size_t count = 5;
    using Siblings = SiblingTables<count>;
    static constexpr double lower_end = -100.0;  // of both axes
    static constexpr double upper_end = 100.0;
    using Refs = Siblings::Refs;
    using Values = Siblings::Values;

    // Values at `point` [2], as five lookups would give and count them; false where these have to be made.
    bool look_up(KZB_STORE& store, Scheme scheme, const double* point, Values& values);
    // Around five lookups of `tables` at `point`; they are known from then on where they are of the kind described.
    void begin(const KZB_STORE& store);
    void end(KZB_STORE& store, Scheme scheme, const double* point, const Refs& tables, const Values& values);

  private:
    static constexpr std::array<int, 3> slots = {slot_spline_calls, slot_linear_calls, slot_cubic_calls};
    static bool has_flat_shape(const KZB_TABLE& table);
    static bool is_inside(const double* point);
    bool read(Values& values) const;

    bool known_ = false;
    bool generic_path_ = false;
    Scheme scheme_ = Scheme::unknown;
    std::uint64_t revision_ = 0;
    std::array<const KZB_TABLE*, count> tables_{};
    std::array<double, slots.size()> calls_{};
};

}  // namespace kzb
