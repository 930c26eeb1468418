#include "store/information.h"

#include <array>
#include <span>
#include <string>

namespace kzb {

namespace {

constexpr int kind_int = 0;
constexpr int kind_double = 1;
constexpr int kind_string = 2;

constexpr std::array<KZB_INFORMATION, 6> basic_rows{{
    {"version", "version", kind_double},
    {"version", "dorn_version", kind_string},
    {"information", "title", kind_string},
    {"information", "creation_date", kind_string},
    {"information", "input_file_name", kind_string},
    {"information", "preparer", kind_string},
}};

constexpr std::array<KZB_INFORMATION, 22> motor_rows{{
    {"information", "weight", kind_double},
    {"information", "rated_power", kind_double},
    {"information", "rated_current", kind_double},
    {"information", "rated_voltage", kind_double},
    {"information", "inertia", kind_double},
    {"cotrol", "number_of_poles", kind_int},  // kept one letter short: no file has this category, the row is never seen
    {"parameter", "RU", kind_double},
    {"parameter", "RF", kind_double},
    {"information", "d_inductance", kind_double},
    {"information", "q_inductance", kind_double},
    {"information", "magflux", kind_double},
    {"control", "length", kind_double},
    {"control", "diameter", kind_double},
    {"information", "rated_speed", kind_double},
    {"information", "rated_freqency", kind_double},
    {"control", "Winding_Pattern_Flag", kind_int},
    {"InductionParam", "R1", kind_double},
    {"InductionParam", "g0", kind_double},
    {"InductionParam", "StrayLoadLoss", kind_double},
    {"information", "has_ironloss_table", kind_int},
    {"control", "turns_in_coil", kind_double},
    {"control", "turns_in_field_coil", kind_double},
}};

std::span<const KZB_INFORMATION> rows_of(InformationRows rows) {
    if (rows == InformationRows::basic) {
        return basic_rows;
    }
    return motor_rows;
}

// The parameter exists, and a "<key>_visible" beside it, if any, is the int 1.
bool visible(const KZB_STORE& store, const KZB_INFORMATION& row) {
    if (!has_parameter(store, row.first, row.second)) {
        return false;
    }
    const std::string switch_key = std::string(row.second) + "_visible";
    return !has_parameter(store, row.first, switch_key) || get_int(store, row.first, switch_key) == 1;
}

}  // namespace

int information_count(const KZB_STORE& store, InformationRows rows) {
    int count = 0;
    for (const KZB_INFORMATION& row : rows_of(rows)) {
        count += visible(store, row) ? 1 : 0;
    }
    return count;
}

KZB_INFORMATION information_at(const KZB_STORE& store, InformationRows rows, int index) {
    int position = 0;
    for (const KZB_INFORMATION& row : rows_of(rows)) {
        if (visible(store, row) && position++ == index) {
            return row;
        }
    }
    return {"", "", 0};
}

}  // namespace kzb
