// "Cubic": four nodes per axis, one below and one above the bracket, reduced from the last axis.
#include <vector>

#include "bench/reference/kernels.h"
#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

struct Stencil {
    int index[4];
    double node[4];
};

// False when the axis has no grid or the coordinate no bracket.
bool make_stencil(const Table& table, int a, const Pair& pair, Stencil& stencil) {
    const double* x = table.axes[a];
    if (x == nullptr || pair.lo < 0) {
        return false;
    }
    const int rows = table.sizes[a];
    const bool cyclic = table.cyclic[a] >= 1;
    const int below = pair.lo - 1;
    const int above = pair.hi + 1;
    stencil.node[1] = x[pair.lo];
    stencil.node[2] = x[pair.hi];
    if (rows < 2) {
        stencil.node[0] = stencil.node[1];
        stencil.node[3] = stencil.node[2];
    } else {
        if (below >= 0) {
            stencil.node[0] = x[below];
        } else if (cyclic) {
            stencil.node[0] = x[0] - (x[rows - 1] - x[rows - 2]);
        } else {
            stencil.node[0] = x[0] - 0.1 * (x[1] - x[0]);
        }
        if (above < rows) {
            stencil.node[3] = x[above];
        } else if (cyclic) {
            stencil.node[3] = x[rows - 1] + (x[1] - x[0]);
        } else {
            stencil.node[3] = x[rows - 1] + 0.1 * (x[rows - 1] - x[rows - 2]);
        }
    }
    stencil.index[0] = below >= 0 ? below : (cyclic ? rows - 2 : 0);
    stencil.index[1] = pair.lo;
    stencil.index[2] = pair.hi;
    stencil.index[3] = above < rows ? above : (cyclic ? 1 : rows - 1);
    return true;
}

template <int N, int A = 0>
void gather(const Table& table, const Stencil* stencil, int* index, double*& block) {
    for (int i = 0; i < 4; ++i) {
        index[A] = stencil[A].index[i];
        if constexpr (A + 1 < N) {
            gather<N, A + 1>(table, stencil, index, block);
        } else {
            *block++ = table_value_at(table, index);
        }
    }
}

void gather_generic(const Table& table, const Stencil* stencil, int axis, int* index, double*& block) {
    for (int i = 0; i < 4; ++i) {
        index[axis] = stencil[axis].index[i];
        if (axis + 1 < table.dim) {
            gather_generic(table, stencil, axis + 1, index, block);
        } else {
            *block++ = table_value_at(table, index);
        }
    }
}

double reduce(const Stencil* stencil, const double* x, int dim, double* block, double* timing) {
    for (int a = dim - 1; a >= 0; --a) {
        const int count = 1 << (2 * a);
        for (int k = 0; k < count; ++k) {
            block[k] = hermite_segment(block + 4 * k, stencil[a].node, x[a], timing);
        }
    }
    return block[0];
}

template <class Probe, int N>
double straight(const Table& table, const Point& point, double* timing) {
    Stencil stencil[N];
    double block[1 << (2 * N)];
    {
        const ClockSpan<Probe> gathering(timing[12]);
        for (int a = 0; a < N; ++a) {
            if (!make_stencil(table, a, point.pairs()[a], stencil[a])) {
                return no_value;
            }
        }
        int index[N];
        double* next = block;
        gather<N>(table, stencil, index, next);
    }
    const TimerSpan<Probe> reducing(timing[16]);
    return reduce(stencil, point.x(), N, block, timing);
}

template <class Probe>
double generic(const Table& table, const Point& point, double* timing) {
    const std::size_t dim = static_cast<std::size_t>(table.dim);
    std::vector<Stencil> stencil(dim);
    std::vector<double> block(std::size_t{1} << (2 * dim));
    {
        const ClockSpan<Probe> gathering(timing[12]);
        for (int a = 0; a < table.dim; ++a) {
            if (!make_stencil(table, a, point.pairs()[a], stencil[static_cast<std::size_t>(a)])) {
                return no_value;
            }
        }
        std::vector<int> index(dim);
        double* next = block.data();
        gather_generic(table, stencil.data(), 0, index.data(), next);
    }
    const TimerSpan<Probe> reducing(timing[16]);
    return reduce(stencil.data(), point.x(), table.dim, block.data(), timing);
}

}  // namespace

template <class Probe>
int table_lookup_cubic(Category& category, const char* key, const double* x, double& result, double* timing) {
    const ClockSpan<Probe> whole(timing[7]);
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
    if (Probe::environment("USE_GENERIC_INTERPOLATION")) {
        result = generic<Probe>(*table, point, timing);
        return result > 1e100 ? 9999 : status;
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
    return result > 1e100 ? 9999 : status;
}

template int table_lookup_cubic<Bare>(Category&, const char*, const double*, double&, double*);
template int table_lookup_cubic<WithClocks>(Category&, const char*, const double*, double&, double*);

}  // namespace kzb_reference
