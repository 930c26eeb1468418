// Full tables in place of those that hold half the range of the current phase, so that lookups need not fold.
//
// Each point of a full table is a linear lookup of the compact one while its fold is still active:
//
//   phase nodes x in [-90, 0]: x + 360 and 540 - (x + 360);  x in [0, 90]: x and 180 - x;  and 0 and 360
//
// A table is replaced only if all are as they must be: on a failure before that nothing has changed.
#include <algorithm>
#include <boost/lexical_cast/try_lexical_convert.hpp>
#include <cstdint>
#include <iterator>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "store/lookup_front.h"
#include "store/store.h"
#include "store/transform/table_copy.h"
#include "store/transform/transforms.h"

namespace kzb {
namespace {

constexpr int outside_of_table = 90010;
constexpr int no_phase_symmetry = 90030;
constexpr double node_tolerance = 1e-10;

struct Expansion {
    std::string category;
    std::string key;
    int components;  // nodes 0, 1 .. of the last axis; 0: the last axis stays
    int widened_axis;
    std::vector<int> cyclic;  // of all axes; its length is the number of axes that the table must have
};

void add_node(std::set<double>& nodes, double node) {
    const auto above = nodes.lower_bound(node);
    const bool near_above = above != nodes.end() && *above - node < node_tolerance;
    const bool near_below = above != nodes.begin() && node - *std::prev(above) < node_tolerance;
    if (!near_above && !near_below) {
        nodes.insert(node);
    }
}

std::vector<double> widened(const std::vector<double>& phases) {
    std::set<double> nodes = {0.0, 360.0};
    for (const double x : phases) {
        if (x > -90.0000000001 && x < node_tolerance) {
            add_node(nodes, x + 360);
            add_node(nodes, 270 - (x + 360 - 270));
        } else if (x > -node_tolerance && x < 90.0000000001) {
            add_node(nodes, x);
            add_node(nodes, 90 + (90 - x));
        }
    }
    return {nodes.begin(), nodes.end()};
}

std::vector<double> component_nodes(int count) {
    std::vector<double> nodes;
    for (int c = 0; c < count; ++c) {
        nodes.push_back(c);
    }
    return nodes;
}

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

std::vector<Expansion> expansions_of_pmsm(const KZB_STORE& store) {
    std::vector<Expansion> expansions = {
        {"current_flux", "flux", 3, 2, {0, 1, 1, 0}},
        {"harmonic_inductance", "inductance", 9, 2, {0, 1, 1, 0}},
        {"harmonic_torque", "torque_ibeta", 0, 1, {1, 1, 0}},
    };
    add_materials(store, {0, 1, 0}, expansions);
    return expansions;
}

std::vector<Expansion> expansions_of_linear() {
    return {
        {"distance_force", "force", 0, 1, {1, 1, 0}},
        {"distance_force", "attractive_force", 0, 1, {1, 1, 0}},
    };
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

using Grids = std::vector<std::vector<double>>;

Grids full_grids(KZB_STORE& store, const Expansion& expansion, const KZB_TABLE* compact) {
    Grids grids;
    for (int axis = 1; axis <= compact->dim; ++axis) {
        grids.push_back(nodes_of(store, compact, axis));
    }
    if (expansion.components != 0) {
        grids.back() = component_nodes(expansion.components);
    }
    std::vector<double>& phases = grids[static_cast<std::size_t>(expansion.widened_axis - 1)];
    phases = widened(phases);
    return grids;
}

// Product of the grids' lengths; 0 when an int cannot hold it.
std::int64_t points_of(const Grids& grids) {
    std::int64_t points = 1;
    for (const std::vector<double>& grid : grids) {
        points *= static_cast<std::int64_t>(grid.size());
        if (points > std::numeric_limits<int>::max()) {
            return 0;
        }
    }
    return points;
}

// 1 for a table that has other axes than it must have, lacks a grid on one of them or would grow too large.
int check(KZB_STORE& store, const Expansion& expansion) {
    const KZB_TABLE* table = find_table(store, expansion.category, expansion.key);
    if (table == nullptr) {
        return 0;
    }
    if (static_cast<std::size_t>(table->dim) != expansion.cyclic.size() || !table->values) {
        return 1;
    }
    for (const ZeroedArray& grid : table->axes) {
        if (!grid) {
            store.error = outside_of_table;
            return 1;
        }
    }
    return points_of(full_grids(store, expansion, table)) == 0 ? 1 : 0;
}

// Folded values at all points of the grids, last axis fastest.
std::vector<double> folded_values(KZB_STORE& store, const Expansion& expansion, const Grids& grids,
                                  const std::vector<int>& sizes) {
    TableRef lookup(expansion.category, expansion.key);
    const Method linear;
    std::vector<double> values;
    values.reserve(static_cast<std::size_t>(points_of(grids)));
    std::vector<int> indices(sizes.size(), 0);
    std::vector<double> point(sizes.size());
    do {
        for (std::size_t a = 0; a < sizes.size(); ++a) {
            point[a] = grids[a][static_cast<std::size_t>(indices[a])];
        }
        values.push_back(lookup.at(store, linear, point.data(), static_cast<int>(point.size())));
    } while (next_point(indices, sizes));
    return values;
}

int expand(KZB_STORE& store, const Expansion& expansion) {
    const KZB_TABLE* compact = find_table(store, expansion.category, expansion.key);
    if (compact == nullptr) {
        return 0;
    }
    const Grids grids = full_grids(store, expansion, compact);
    std::vector<int> sizes;
    for (const std::vector<double>& grid : grids) {
        sizes.push_back(static_cast<int>(grid.size()));
    }
    const std::vector<double> values = folded_values(store, expansion, grids, sizes);
    const int dim = static_cast<int>(sizes.size());
    if (create_table(store, expansion.category, expansion.key, dim, sizes.data()) != 0) {
        return 1;
    }
    KZB_TABLE* full = find_table(store, expansion.category, expansion.key);
    for (int axis = 1; axis <= dim; ++axis) {
        set_nodes(full, axis, grids[static_cast<std::size_t>(axis - 1)]);
        table_set_cyclic_flag(full, axis, expansion.cyclic[static_cast<std::size_t>(axis - 1)]);
    }
    std::copy(values.begin(), values.end(), full->values.data());
    return 0;
}

int expand_all(KZB_STORE& store, const std::vector<Expansion>& expansions) {
    for (const Expansion& expansion : expansions) {
        if (check(store, expansion) != 0) {
            return 1;
        }
    }
    for (const Expansion& expansion : expansions) {
        if (expand(store, expansion) != 0) {
            return 1;
        }
    }
    return 0;
}

// A force table that was loaded with other than 3 axes does not fold: there is nothing to expand.
std::vector<Expansion> folding_forces(const KZB_STORE& store) {
    std::vector<Expansion> expansions;
    for (Expansion& expansion : expansions_of_linear()) {
        const KZB_TABLE* table = find_table(store, expansion.category, expansion.key);
        const bool is_placeholder = table != nullptr && table->file_position != 0 && table->loaded != 1;
        if (table != nullptr && (table->dim == 3 || is_placeholder)) {
            expansions.push_back(expansion);
        }
    }
    return expansions;
}

bool application_without_folds(const KZB_STORE& store) {
    return store.application == "SimpleHarmonic" || store.application == "LdLq" ||
           store.application == "FluxIntegralDQTheta";
}

}  // namespace

int expand_table_considering_phase_symmetry(KZB_STORE& store) {
    if (get_int(store, "control", "use_phase_symmetry") == 0) {
        return 0;
    }
    int result = 0;
    switch (get_int(store, "control", "motor_type")) {
        case 10000:
            if (application_without_folds(store)) {
                return 0;
            }
            result = store.application == "Harmonic" ? expand_all(store, expansions_of_pmsm(store)) : 0;
            break;
        case 10005:
            result = expand_all(store, folding_forces(store));
            break;
        case 10007:
            if (get_int(store, "control", "current_type") != 1) {
                return 1;
            }
            result = expand_all(store, expansions_of_wound_field(store));
            break;
        default:
            store.error = no_phase_symmetry;
            put_int(store, "control", "use_phase_symmetry", 0);
            return 1;
    }
    // After a failure the compact tables that are left still need their fold; the full ones stand it.
    if (result == 0) {
        put_int(store, "control", "use_phase_symmetry", 0);
    }
    return result;
}

}  // namespace kzb
