// What the plain and the subcategory table calls share: the operation on a category and key that may be absent.
#pragma once

#include "store/store.h"

namespace kzb {

inline constexpr int outside_of_table = 90010;  // error: no such node

// The node of an axis from 1. Where there is none: KZB_NO_VALUE and error 90010.
double axis_value_or_error(KZB_STORE& store, const KZB_TABLE* table, int axis, int index);

// The node, with error 90010 for anything invalid inside an existing category; 0.0 without the category.
double axis_value_or_error(KZB_STORE& store, std::string_view category, std::string_view key, int axis, int index);

// 0.0 for an absent table or null indices.
double value_or_absent(const KZB_STORE& store, std::string_view category, std::string_view key, const int* indices);

// 1 for an absent table or null indices.
int set_value(KZB_STORE& store, std::string_view category, std::string_view key, const int* indices, double value);

}  // namespace kzb
