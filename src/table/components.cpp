// Lookup of all components of a table whose last axis numbers them: the other axes are searched once.
#include <algorithm>
#include <vector>

#include "table/lookup.h"
#include "table/stopwatch.h"
#include "table/straight_lookup.h"

namespace kzb {

namespace {

bool shared_search(Scheme scheme, const KZB_TABLE& table, const double* coordinates, const ComponentRange& range,
                   double* results, int& status, double* timing, const LookupSwitches& switches) {
    const ProcessWatch watch(switches.measure_time);
    switch (scheme) {
        case Scheme::linear:
            if (!straight_linear_components(table, coordinates, range, results, status, timing, switches)) {
                return false;
            }
            watch.add_to(timing[slot_linear_elapsed]);
            return true;
        case Scheme::cubic:
            if (!straight_cubic_components(table, coordinates, range, results, status, timing, switches)) {
                return false;
            }
            watch.add_to(timing[slot_cubic_elapsed]);
            return true;
        case Scheme::spline4:
        case Scheme::spline6:
            if (!straight_local_spline_components(table, coordinates, scheme == Scheme::spline4 ? 4 : 6, range, results,
                                                  status, timing, switches)) {
                return false;
            }
            watch.add_to(timing[slot_spline_elapsed]);
            return true;
        case Scheme::spline:
        case Scheme::unknown:
            return false;
    }
    return false;
}

int one_by_one(Scheme scheme, const KZB_TABLE& table, double* point, const ComponentRange& range, double* results,
               double* timing, const LookupSwitches& switches) {
    int status = 0;
    for (int k = 0; k < range.count; ++k) {
        point[table.dim - 1] = static_cast<double>(range.at(k));
        const int single = table_lookup(scheme, &table, point, results[k], timing, switches);
        status = single > 0 || status <= 0 ? single : status;
    }
    return status;
}

}  // namespace

int table_lookup_components(Scheme scheme, const KZB_TABLE* table, const double* coordinates,
                            const ComponentRange& range, double* results, double* timing,
                            const LookupSwitches& switches) {
    if (scheme == Scheme::unknown) {
        return lookup_no_scheme;
    }
    if (table == nullptr) {
        return lookup_no_table;
    }
    if (table->dim < 1) {
        double none = 0.0;
        int status = 0;
        for (int k = 0; k < range.count; ++k) {
            status = table_lookup(scheme, table, &none, results[k], timing, switches);
        }
        return status;
    }
    int status = 0;
    if (shared_search(scheme, *table, coordinates, range, results, status, timing, switches)) {
        return status;
    }
    // Of a table with no axis but that of its components there may be no coordinates at all.
    const int leading = table->dim - 1;
    if (table->dim <= 8) {
        double point[8];
        std::copy_n(coordinates, leading, point);
        return one_by_one(scheme, *table, point, range, results, timing, switches);
    }
    std::vector<double> point(coordinates, coordinates + leading);
    point.push_back(0.0);
    return one_by_one(scheme, *table, point.data(), range, results, timing, switches);
}

}  // namespace kzb
