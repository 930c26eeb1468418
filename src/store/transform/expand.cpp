// Full tables in place of those that hold the current phases -90 to 90 degrees, half their range, so that lookups need
// not fold.
//
// Each point of a full table is a linear lookup of the compact one while its fold is still active:
//
//   phase nodes x in [-90, 0]: x + 360 and 540 - (x + 360);  x in [0, 90]: x and 180 - x;  and 0 and 360
//
// All tables are checked before the first is replaced: a failure leaves them and control/use_phase_symmetry as they
// are, so that lookups fold as before.
#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <set>
#include <vector>

#include "store/lookup_front.h"
#include "store/motor_type.h"
#include "store/store.h"
#include "store/table_calls.h"
#include "store/transform/expansion_list.h"
#include "store/transform/table_copy.h"
#include "store/transform/transforms.h"

namespace kzb {
namespace {

constexpr int no_phase_symmetry = 90030;

void add_node(std::set<double>& nodes, double node) {
    const auto above = nodes.lower_bound(node);
    const bool near_above = above != nodes.end() && *above - node < KZB_AXIS_TOL;
    const bool near_below = above != nodes.begin() && node - *std::prev(above) < KZB_AXIS_TOL;
    if (!near_above && !near_below) {
        nodes.insert(node);
    }
}

std::vector<double> widened(const std::vector<double>& phases) {
    std::set<double> nodes = {0.0, 360.0};
    for (const double x : phases) {
        if (x > -90.0000000001 && x < KZB_AXIS_TOL) {
            add_node(nodes, x + 360);
            add_node(nodes, 270 - (x + 360 - 270));
        } else if (x > -KZB_AXIS_TOL && x < 90.0000000001) {
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
        case motor_type::pmsm:
            if (application_without_folds(store)) {
                return 0;
            }
            result = store.application == "Harmonic" ? expand_all(store, expansions_of_pmsm(store)) : 0;
            break;
        case motor_type::linear_synchronous:
            result = expand_all(store, expansions_of_linear(store));
            break;
        case motor_type::wound_field:
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
    // A failure leaves the flag: compact tables still need their fold, and full ones, where memory ran out on the way,
    // stand it.
    if (result == 0) {
        put_int(store, "control", "use_phase_symmetry", 0);
    }
    return result;
}

}  // namespace kzb
