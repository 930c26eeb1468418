// Dispatch of a lookup to its scheme, and the statistics of whole lookups.
#include "table/lookup.h"

#include <cstring>
#include <exception>

#include "table/plain_lookup.h"
#include "table/stopwatch.h"
#include "table/straight_lookup.h"

namespace kzb {

namespace {

int checked(const StraightResult& straight, double& result) {
    result = straight.value;
    return straight.value > 1e100 ? lookup_beyond_limit : straight.status;
}

int lookup_linear(const KZB_TABLE& table, const double* coordinates, double& result, double* timing,
                  const LookupSwitches& switches) {
    StraightResult straight;
    if (!straight_linear(table, coordinates, straight, timing, switches)) {
        return plain_linear(table, coordinates, result, timing, switches);
    }
    result = straight.value;
    return straight.status;
}

int lookup_cubic(const KZB_TABLE& table, const double* coordinates, double& result, double* timing,
                 const LookupSwitches& switches) {
    StraightResult straight;
    if (!straight_cubic(table, coordinates, straight, timing, switches)) {
        return plain_cubic(table, coordinates, result, timing, switches);
    }
    return checked(straight, result);
}

int lookup_local_spline(const KZB_TABLE& table, const double* coordinates, int width, double& result, double* timing,
                        const LookupSwitches& switches) {
    StraightResult straight;
    if (!straight_local_spline(table, coordinates, width, straight, timing, switches)) {
        return plain_local_spline(table, coordinates, width, result, timing, switches);
    }
    return checked(straight, result);
}

int lookup_spline(const KZB_TABLE& table, const double* coordinates, double& result, double* timing) {
    StraightResult straight;
    if (!straight_spline(table, coordinates, straight, timing)) {
        return plain_spline(table, coordinates, result, timing);
    }
    result = straight.value;
    // Kept: with two or more axes a lookup in range still returns the status it started with.
    return straight.status > 0 || table.dim == 1 ? straight.status : lookup_no_table;
}

}  // namespace

Scheme scheme_of(const char* method) {
    if (method == nullptr) {
        return Scheme::unknown;
    }
    // The first letter tells which names can be meant.
    if (method[0] == 'L') {
        return std::strcmp(method, "Linear") == 0 ? Scheme::linear : Scheme::unknown;
    }
    if (method[0] == 'C') {
        return std::strcmp(method, "Cubic") == 0 ? Scheme::cubic : Scheme::unknown;
    }
    if (std::strncmp(method, "Spline", 6) == 0) {
        const char* rest = method + 6;
        if (rest[0] == '\0') {
            return Scheme::spline;
        }
        if (rest[1] == '\0') {
            return rest[0] == '6' ? Scheme::spline6 : (rest[0] == '4' ? Scheme::spline4 : Scheme::unknown);
        }
    }
    return Scheme::unknown;
}

int table_lookup(Scheme scheme, const KZB_TABLE* table, const double* coordinates, double& result, double* timing,
                 const LookupSwitches& switches) {
    if (scheme == Scheme::unknown) {
        return lookup_no_scheme;
    }
    if (table == nullptr) {
        return lookup_no_table;
    }
    const ProcessWatch watch(switches.measure_time);
    int status = lookup_no_scheme;
    try {
        switch (scheme) {
            case Scheme::linear:
                status = lookup_linear(*table, coordinates, result, timing, switches);
                watch.add_to(timing[slot_linear_elapsed]);
                break;
            case Scheme::cubic:
                status = lookup_cubic(*table, coordinates, result, timing, switches);
                watch.add_to(timing[slot_cubic_elapsed]);
                break;
            case Scheme::spline4:
            case Scheme::spline6:
                status = lookup_local_spline(*table, coordinates, scheme == Scheme::spline4 ? 4 : 6, result, timing,
                                             switches);
                watch.add_to(timing[slot_spline_elapsed]);
                break;
            case Scheme::spline:
                status = lookup_spline(*table, coordinates, result, timing);
                break;
            case Scheme::unknown:
                break;
        }
    } catch (const std::exception&) {
        // Scratch of a table of very many axes.
        result = KZB_NO_VALUE;
        status = lookup_no_memory;
    }
    return status;
}

}  // namespace kzb
