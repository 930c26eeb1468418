// Tables that hold half the range of the current phase, in the order in which they are expanded, and the shapes that
// they take then.
#include "store/transform/expansion_list.h"

#include <boost/lexical_cast/try_lexical_convert.hpp>
#include <map>
#include <set>

#include "store/store.h"

namespace kzb {
namespace {

// Ids of the materials of a loss category by rising number m, each once. A number without an entry matID<m> has id 0,
// as any absent int.
std::vector<int> material_ids(const KZB_CATEGORY& category) {
    const auto* count = category.ints.find("numMat");
    std::map<int, int> id_of_number;
    for (const auto& entry : category.ints) {
        int m = 0;
        const bool names_material = entry.keyword.starts_with("matID") &&
                                    boost::conversion::try_lexical_convert(entry.keyword.substr(5), m) &&
                                    entry.keyword == "matID" + std::to_string(m);
        if (count != nullptr && names_material && m >= 1 && m <= count->value) {
            id_of_number.emplace(m, entry.value);
        }
    }
    std::vector<int> ids;
    std::set<int> seen;
    for (const auto& [m, id] : id_of_number) {
        if (seen.insert(id).second) {
            ids.push_back(id);
        }
    }
    const bool some_absent = count != nullptr && static_cast<int>(id_of_number.size()) < count->value;
    if (some_absent && seen.insert(0).second) {
        ids.push_back(0);
    }
    return ids;
}

void add_materials(const KZB_STORE& store, const std::vector<int>& cyclic, std::vector<Expansion>& expansions) {
    for (const char* category : {"eddyloss", "hysloss"}) {
        const KZB_CATEGORY* found = find_category(store, category);
        if (found == nullptr) {
            continue;
        }
        for (const int id : material_ids(*found)) {
            expansions.push_back({category, category + std::to_string(id), 0, 2, cyclic});
        }
    }
}

}  // namespace

std::vector<Expansion> expansions_of_pmsm(const KZB_STORE& store) {
    std::vector<Expansion> expansions = {
        {"current_flux", "flux", 3, 2, {0, 1, 1, 0}},
        {"harmonic_inductance", "inductance", 9, 2, {0, 1, 1, 0}},
        {"harmonic_torque", "torque_ibeta", 0, 1, {1, 1, 0}},
    };
    add_materials(store, {0, 1, 0}, expansions);
    return expansions;
}

std::vector<Expansion> expansions_of_linear(const KZB_STORE& store) {
    std::vector<Expansion> expansions;
    for (const char* key : {"force", "attractive_force"}) {
        // A table that was loaded with other than 3 axes does not fold: there is nothing to expand.
        const KZB_TABLE* table = find_table(store, "distance_force", key);
        const bool is_placeholder = table != nullptr && table->file_position != 0 && table->loaded != 1;
        if (table != nullptr && (table->dim == 3 || is_placeholder)) {
            expansions.push_back({"distance_force", key, 0, 1, {1, 1, 0}});
        }
    }
    return expansions;
}

std::vector<Expansion> expansions_of_wound_field(const KZB_STORE& store) {
    std::vector<Expansion> expansions = {
        {"current_flux", "flux", 3, 2, {0, 1, 0, 1, 0}},
        {"harmonic_inductance", "inductance", 16, 2, {0, 1, 0, 1, 0}},
        {"harmonic_torque", "torque_ibeta", 0, 2, {0, 1, 0, 1}},
    };
    add_materials(store, {0, 1, 0, 0}, expansions);
    return expansions;
}

}  // namespace kzb
