// "Linear": 2^N corners, axis 0 most significant, reduced axis 0 first.
#include <vector>

#include "bench/reference/kernels.h"
#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

void gather_corners(const Table& table, const Pair* pairs, int dim, int* index, double* corner) {
    for (int k = 0; k < 1 << dim; ++k) {
        for (int a = dim - 1, bits = k; a >= 0; --a, bits /= 2) {
            index[a] = bits % 2 == 0 ? pairs[a].lo : pairs[a].hi;
        }
        corner[k] = table_value_at(table, index);
    }
}

// The straight-line gather: a loop per axis, the last axis of a table of four by pairs.
template <int N, int A = 0>
void gather(const Table& table, const Pair* pairs, int* index, double*& corner) {
    for (int side = 0; side < 2; ++side) {
        index[A] = side == 0 ? pairs[A].lo : pairs[A].hi;
        if constexpr (A + 1 < N) {
            if constexpr (N == 4 && A == 2) {
                if (pairs[3].hi == pairs[3].lo + 1) {
                    index[3] = pairs[3].lo;
                    table_pair_at(table, index, corner);
                    corner += 2;
                    continue;
                }
            }
            gather<N, A + 1>(table, pairs, index, corner);
        } else {
            *corner++ = table_value_at(table, index);
        }
    }
}

double reduce(const Table& table, const Pair* pairs, const double* x, int dim, double* corner, double* timing) {
    for (int a = 0; a < dim; ++a) {
        const double* node = table.axes[a];
        if (node == nullptr) {
            return no_value;
        }
        // a bracket of -1 has corners without a value, whatever nodes stand beside them
        const double x0 = pairs[a].lo < 0 ? 0.0 : node[pairs[a].lo];
        const double x1 = pairs[a].hi < 0 ? 0.0 : node[pairs[a].hi];
        const int half = 1 << (dim - 1 - a);
        for (int k = 0; k < half; ++k) {
            corner[k] = linear_segment(x0, x1, corner[k], corner[k + half], x[a], timing);
        }
    }
    return corner[0];
}

template <class Probe, int N>
double straight(const Table& table, const Point& point, double* timing) {
    double corner[1 << N];
    {
        const ClockSpan<Probe> gathering(timing[11]);
        int index[N];
        double* next = corner;
        gather<N>(table, point.pairs(), index, next);
    }
    return reduce(table, point.pairs(), point.x(), N, corner, timing);
}

template <class Probe>
double generic(const Table& table, const Point& point, double* timing) {
    std::vector<double> corner(std::size_t{1} << table.dim);
    {
        const ClockSpan<Probe> gathering(timing[11]);
        std::vector<int> index(static_cast<std::size_t>(table.dim));
        gather_corners(table, point.pairs(), table.dim, index.data(), corner.data());
    }
    return reduce(table, point.pairs(), point.x(), table.dim, corner.data(), timing);
}

}  // namespace

template <class Probe>
int table_lookup_linear(Category& category, const char* key, const double* x, double& result, double* timing) {
    const ClockSpan<Probe> whole(timing[6]);
    const Table* table = find_table(category, key);
    if (table == nullptr) {
        return 90006;
    }
    Point point(*table, x);
    if (!point.wrapped()) {
        result = no_value;
        return 0;
    }
    const int status = point.find_bracket(*table);
    if (Probe::environment("USE_GENERIC_INTERPOLATION")) {
        result = generic<Probe>(*table, point, timing);
        return status;
    }
    switch (table->dim) {
        case 1:
            result = straight<Probe, 1>(*table, point, timing);
            break;
        case 2:
            result = straight<Probe, 2>(*table, point, timing);
            break;
        case 3:
            result = straight<Probe, 3>(*table, point, timing);
            break;
        case 4:
            result = straight<Probe, 4>(*table, point, timing);
            break;
        case 5:
            result = straight<Probe, 5>(*table, point, timing);
            break;
        default:
            result = generic<Probe>(*table, point, timing);
    }
    return status;
}

template int table_lookup_linear<Bare>(Category&, const char*, const double*, double&, double*);
template int table_lookup_linear<WithClocks>(Category&, const char*, const double*, double&, double*);

}  // namespace kzb_reference
