// Subcategories: categories whose flat name is made of a path and indices, `<name0>;<idx0>;<name1>;<idx1>;`.
#pragma once

#include <string>
#include <vector>

#include "store/store.h"

namespace kzb {

// The flat name; empty for an empty path or null indices.
std::string subcategory_name(const char* path, const int* indices);

// The name without the last element's index and what follows it; empty for an empty path.
std::string subcategory_front(const char* path, const int* indices);

// Distinct first pieces behind `text`, where it first occurs in the names of the categories, sorted by byte value.
std::vector<std::string> pieces_behind(const KZB_STORE& store, const std::string& text);

// Distinct first pieces behind the name without the last element's index, sorted by byte value.
std::vector<std::string> subcategory_indices(const KZB_STORE& store, const char* path, const int* indices);

// Distinct first pieces behind the whole name, sorted by byte value.
std::vector<std::string> child_subcategories(const KZB_STORE& store, const char* path, const int* indices);

}  // namespace kzb
