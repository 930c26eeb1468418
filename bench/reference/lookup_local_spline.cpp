// "Spline4" and "Spline6": up to W nodes around the bracket, axis 0 outermost, each line a natural spline.
#include <algorithm>
#include <vector>

#include "bench/reference/kernels.h"
#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

template <int W>
struct Stencil {
    int count;  // entries that the kernels use
    int index[W];
    double node[W];
};

template <int W>
void slide(Stencil<W>& stencil, const Pair& pair, int rows) {
    const int below = W / 2 - 1;
    int first = pair.lo - below;
    if (rows <= W || pair.lo - below < 0) {
        first = 0;
    } else if (pair.hi + below >= rows) {
        first = rows - W;
    }
    for (int i = 0; i < W; ++i) {
        stencil.index[i] = std::min(first + i, rows - 1);
    }
}

// False when the axis has no grid.
template <int W>
bool make_stencil(const Table& table, int a, const Pair& pair, Stencil<W>& stencil) {
    const double* x = table.axes[a];
    if (x == nullptr) {
        return false;
    }
    const int rows = table.sizes[a];
    stencil.count = std::min(rows, W);
    if (table.cyclic[a] < 1 || rows == 1) {
        slide(stencil, pair, rows);
        for (int i = 0; i < W; ++i) {
            stencil.node[i] = x[stencil.index[i]];
        }
        return true;
    }
    const double period = x[rows - 1] - x[0];
    for (int i = 0; i < W; ++i) {
        // the lower half counts down from lo, the upper half up from hi
        int c = i < W / 2 ? pair.lo - (W / 2 - 1) + i : pair.hi + (i - W / 2);
        double d = 0.0;
        while (c < 0) {
            c = c + rows - 1;
            d = d - period;
        }
        while (c >= rows) {
            c = c + 1 - rows;
            d = d + period;
        }
        stencil.index[i] = c;
        stencil.node[i] = x[c] + d;
    }
    return true;
}

constexpr int power(int base, int exponent) {
    return exponent == 0 ? 1 : base * power(base, exponent - 1);
}

template <int W, int N, int A = 0>
void gather(const Table& table, const Stencil<W>* stencil, int* index, double* block) {
    for (int i = 0; i < stencil[A].count; ++i) {
        index[A] = stencil[A].index[i];
        if constexpr (A + 1 < N) {
            gather<W, N, A + 1>(table, stencil, index, block + i * power(W, N - 1 - A));
        } else {
            block[i] = table_value_at(table, index);
        }
    }
}

template <int W, int N>
double reduce(const Stencil<W>* stencil, const double* block, const double* x, double* timing) {
    if constexpr (N == 1) {
        return local_spline(stencil[0].count, stencil[0].node, block, x[0], timing);
    } else {
        if (stencil[0].count == 1) {
            return reduce<W, N - 1>(stencil + 1, block, x + 1, timing);
        }
        double line[W];
        for (int i = 0; i < stencil[0].count; ++i) {
            line[i] = reduce<W, N - 1>(stencil + 1, block + i * power(W, N - 1), x + 1, timing);
        }
        return local_spline(stencil[0].count, stencil[0].node, line, x[0], timing);
    }
}

template <int W>
void gather_generic(const Table& table, const Stencil<W>* stencil, int axis, int* index, double* block, int stride) {
    for (int i = 0; i < stencil[axis].count; ++i) {
        index[axis] = stencil[axis].index[i];
        if (axis + 1 < table.dim) {
            gather_generic<W>(table, stencil, axis + 1, index, block + i * stride, stride / W);
        } else {
            block[i] = table_value_at(table, index);
        }
    }
}

template <int W>
double reduce_generic(int dim, const Stencil<W>* stencil, const double* block, const double* x, double* timing) {
    if (dim == 1) {
        return spline_core(stencil[0].count, stencil[0].node, block, x[0], timing);
    }
    if (stencil[0].count == 1) {
        return reduce_generic<W>(dim - 1, stencil + 1, block, x + 1, timing);
    }
    double line[W];
    for (int i = 0; i < stencil[0].count; ++i) {
        line[i] = reduce_generic<W>(dim - 1, stencil + 1, block + i * power(W, dim - 1), x + 1, timing);
    }
    return spline_core(stencil[0].count, stencil[0].node, line, x[0], timing);
}

template <class Probe, int W, int N>
double straight(const Table& table, const Point& point, double* timing) {
    Stencil<W> stencil[N];
    double block[power(W, N)];
    {
        const ClockSpan<Probe> gathering(timing[10]);
        for (int a = 0; a < N; ++a) {
            if (!make_stencil(table, a, point.pairs()[a], stencil[a])) {
                return no_value;
            }
        }
        int index[N];
        gather<W, N>(table, stencil, index, block);
    }
    const TimerSpan<Probe> reducing(timing[14]);
    return reduce<W, N>(stencil, block, point.x(), timing);
}

template <class Probe, int W>
double generic(const Table& table, const Point& point, double* timing) {
    const std::size_t dim = static_cast<std::size_t>(table.dim);
    std::vector<Stencil<W>> stencil(dim);
    const int stride = power(W, table.dim - 1);
    std::vector<double> block(static_cast<std::size_t>(stride) * W);
    {
        const ClockSpan<Probe> gathering(timing[10]);
        for (int a = 0; a < table.dim; ++a) {
            if (!make_stencil(table, a, point.pairs()[a], stencil[static_cast<std::size_t>(a)])) {
                return no_value;
            }
        }
        std::vector<int> index(dim);
        gather_generic<W>(table, stencil.data(), 0, index.data(), block.data(), stride);
    }
    const TimerSpan<Probe> reducing(timing[14]);
    return reduce_generic<W>(table.dim, stencil.data(), block.data(), point.x(), timing);
}

template <class Probe, int W>
int lookup(Category& category, const char* key, const double* x, double& result, double* timing) {
    const ClockSpan<Probe> whole(timing[8]);
    const Table* table = find_table(category, key);
    if (table == nullptr) {
        return 90006;
    }
    Point point(*table, x);
    if (!point.wrapped()) {
        result = no_value;
        return 9999;
    }
    const int status = point.find_bracket(*table);
    if (W == 6 && Probe::environment("USE_GENERIC_INTERPOLATION")) {
        result = generic<Probe, W>(*table, point, timing);
        return result > 1e100 ? 9999 : status;
    }
    switch (table->dim) {
        case 1:
            result = straight<Probe, W, 1>(*table, point, timing);
            break;
        case 2:
            result = straight<Probe, W, 2>(*table, point, timing);
            break;
        case 3:
            result = straight<Probe, W, 3>(*table, point, timing);
            break;
        case 4:
            result = straight<Probe, W, 4>(*table, point, timing);
            break;
        case 5:
            result = straight<Probe, W, 5>(*table, point, timing);
            break;
        default:
            result = generic<Probe, W>(*table, point, timing);
    }
    return result > 1e100 ? 9999 : status;
}

}  // namespace

template <class Probe>
int table_lookup_spline4(Category& category, const char* key, const double* x, double& result, double* timing) {
    return lookup<Probe, 4>(category, key, x, result, timing);
}

template <class Probe>
int table_lookup_spline6(Category& category, const char* key, const double* x, double& result, double* timing) {
    return lookup<Probe, 6>(category, key, x, result, timing);
}

template int table_lookup_spline4<Bare>(Category&, const char*, const double*, double&, double*);
template int table_lookup_spline4<WithClocks>(Category&, const char*, const double*, double&, double*);
template int table_lookup_spline6<Bare>(Category&, const char*, const double*, double&, double*);
template int table_lookup_spline6<WithClocks>(Category&, const char*, const double*, double&, double*);

}  // namespace kzb_reference
