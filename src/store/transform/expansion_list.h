// Which tables of a machine are expanded when its phase symmetry is resolved, and what becomes of each.
#pragma once

#include <string>
#include <vector>

struct KZB_STORE;

namespace kzb {

struct Expansion {
    std::string category;
    std::string key;
    int components;  // nodes 0, 1 .. of the last axis; 0: the last axis stays
    int widened_axis;
    std::vector<int> cyclic;  // of all axes; its length is the number of axes that the table must have
};

// Absent tables may be among them.
std::vector<Expansion> expansions_of_pmsm(const KZB_STORE& store);
std::vector<Expansion> expansions_of_linear(const KZB_STORE& store);
std::vector<Expansion> expansions_of_wound_field(const KZB_STORE& store);

}  // namespace kzb
