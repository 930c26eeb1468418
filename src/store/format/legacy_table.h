// The parts of a table that stand around its body in an old file, and their places in the store.
#pragma once

#include <string>
#include <vector>

#include "store/format/legacy_mapping.h"
#include "store/store.h"

namespace kzb {

struct LegacyTableHead {
    int reading_method = 0;
    std::string name;
    int table_type = 0;
    std::string shaft_name;  // with reading_method 31000 alone
    int dim = 0;
    std::vector<int> cyclic;  // one per axis
};

inline constexpr int reading_method_with_shaft = 31000;

// Puts what the head tells into the table's category, which is appended when absent; gives the category's name.
std::string put_legacy_head(KZB_STORE& store, const LegacyTableHead& head, const LegacyApplication& application);

// What follows the body: cyclic flags, and the double that readers of `d_flux` look for.
void finish_legacy_table(KZB_STORE& store, const std::string& category, const LegacyTableHead& head);

}  // namespace kzb
