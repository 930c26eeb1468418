// Subcategories of the plain store: categories whose flat name is made of a path and one index per path element.
//
//   "a;b" with {0, 3}  ->  "a;0;b;3;"
#pragma once

#include <string>
#include <vector>

#include "bench/reference/lookup.h"

namespace kzb_reference {

using Indices = std::vector<int>;

std::string subcategory_name(const std::string& path, const Indices& indices);
int kzb_get_subcategory_num(const std::string& path, const Indices& indices, const Store& store);
int kzb_has_subcategory(const std::string& path, const Indices& indices, const Store& store);
int kzb_has_subcategory_parameter(const std::string& path, const Indices& indices, const char* key, const Store& store);
int kzb_get_subcategory_int(const std::string& path, const Indices& indices, const char* key, const Store& store);
double kzb_get_subcategory_double(const std::string& path, const Indices& indices, const char* key, const Store& store);
// Empty where absent.
std::string kzb_get_subcategory_string(const std::string& path, const Indices& indices, const char* key,
                                       const Store& store);
std::string kzb_get_string(const char* category, const char* key, const Store& store);
int kzb_get_table_cyclic_flag(const char* category, const char* key, int axis, const Store& store);

// Lookups at a coordinate that is no number or too far off to be wrapped, since the start of the program: these end
// before their reduction.
int unplaced_lookups();
void count_unplaced(const std::vector<double>& values);

// One lookup in a table of a subcategory: no folding, no factor. Coordinates that are not given count as 0.0.
double kzb_get_subcategory_table_interpolated_value(const std::string& path, const Indices& indices, const char* key,
                                                    const std::vector<double>& values, const std::string& method,
                                                    Store& store);

}  // namespace kzb_reference
