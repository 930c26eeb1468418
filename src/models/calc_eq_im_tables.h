// The tables that the induction model looks up, and what of the file decides between them.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

#include "models/calc_eq_im_flat.h"
#include "store/lookup_front.h"

namespace kzb {

inline constexpr const char* im_constants = "InductionParam";
inline constexpr const char* im_tables = "InductionParam_HigherAccuracy";

// What the lookups of one point of a sample left in the store, so that a second look at the same point within the
// sample leaves the same without searching: the values are those that the model has already.
class ImLastPoint {
  public:
    // Around a sample of observation and derivative: nothing is kept beyond it.
    void open() {
        open_ = true;
        known_ = false;
    }
    void close() { open_ = known_ = false; }
    void begin(KZB_STORE& store) {
        for (std::size_t k = 0; k < slots.size(); ++k) {
            calls_[k] = store.timing[slots[k]];
        }
        error_before_ = store.error;
        store.error = 0;
    }
    // `ordinary`: nothing of the lookups can have shown but values, counters and the error.
    void end(KZB_STORE& store, const double* point, bool ordinary) {
        for (std::size_t k = 0; k < slots.size(); ++k) {
            calls_[k] = store.timing[slots[k]] - calls_[k];
        }
        error_ = store.error;
        if (error_ == 0) {
            store.error = error_before_;
        }
        point_ = {bits(point[0]), bits(point[1])};
        known_ = open_ && ordinary && !store.keep_time && !store.debug_lines;
    }
    // True when `point` is the last one: then counters and error have been brought forward.
    bool repeat(KZB_STORE& store, const double* point) const {
        if (!known_ || point_ != std::array{bits(point[0]), bits(point[1])}) {
            return false;
        }
        for (std::size_t k = 0; k < slots.size(); ++k) {
            store.timing[slots[k]] += calls_[k];
        }
        if (error_ != 0) {
            store.error = error_;
        }
        return true;
    }

  private:
    static std::uint64_t bits(double value) { return std::bit_cast<std::uint64_t>(value); }
    static constexpr std::array<int, 3> slots = {slot_spline_calls, slot_linear_calls, slot_cubic_calls};
    bool open_ = false;
    bool known_ = false;
    int error_ = 0;
    int error_before_ = 0;
    std::array<std::uint64_t, 2> point_{};
    std::array<double, 3> calls_{};
};

struct ImTables {
    ImLastPoint last_point;
    ImFlatTables flat;
    ImFlatTables::Siblings siblings;
    TableRef l11{im_tables, "L11_table"};
    TableRef m12{im_tables, "M12_table"};
    TableRef m21{im_tables, "M21_table"};
    TableRef l22{im_tables, "L22_table"};
    TableRef r2{im_tables, "R2_table"};
    TableRef ironloss{im_tables, "ironloss_table"};
    TableRef iron_loss{"loss_table", "iron_loss"};
    TableRef copper_loss{"equivalent_resistance_table", "copper_loss"};

    // The tables of a point, in the order of their lookups.
    ImFlatTables::Refs of_point() { return {&l11, &m12, &m21, &l22, &r2}; }

    bool has_equivalent_resistance(const KZB_STORE& store) {
        refresh(store);
        return has_equivalent_resistance_;
    }
    // "R2_table" for writing; null where absent.
    KZB_TABLE* secondary_resistance(KZB_STORE& store) {
        refresh(store);
        if (secondary_revision_ != store.revision) {
            secondary_revision_ = store.revision;
            secondary_ = find_table(store, im_tables, "R2_table");
        }
        return secondary_;
    }

    // The five tables of a point are there with all their axes, none of them cyclic: no lookup has a message to print
    // as long as it forms a value.
    bool plain(const KZB_STORE& store) {
        refresh(store);
        return plain_;
    }

  private:
    static bool is_plain(const KZB_TABLE* table) {
        if (table == nullptr) {
            return false;
        }
        for (int a = 0; a < table->dim; ++a) {
            const auto at = static_cast<std::size_t>(a);
            if (table->cyclic[at] >= 1 || !table->axes[at]) {
                return false;
            }
        }
        return true;
    }
    void refresh(const KZB_STORE& store) {
        if (revision_ != store.revision) {
            revision_ = store.revision;
            plain_ = is_plain(l11.table(store)) && is_plain(m12.table(store)) && is_plain(m21.table(store)) &&
                     is_plain(l22.table(store)) && is_plain(r2.table(store));
            has_equivalent_resistance_ = has_category(store, "equivalent_resistance_table");
        }
    }

    std::uint64_t revision_ = 0;
    std::uint64_t secondary_revision_ = 0;
    bool has_equivalent_resistance_ = false;
    bool plain_ = false;
    KZB_TABLE* secondary_ = nullptr;
};

}  // namespace kzb
