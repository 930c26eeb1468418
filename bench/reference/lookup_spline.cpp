// "Spline": the whole table reduced axis by axis, axis 0 first, each step along full grid lines.
#include <cstdlib>
#include <cstring>

#include "bench/reference/kernels.h"
#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

// A table on the stack of the lookup.
class TemporaryTable {
  public:
    explicit TemporaryTable(const Table& source) {
        std::memset(static_cast<void*>(&table_), 0, sizeof table_);
        table_create(table_, source.dim - 1, source.sizes + 1);
        for (int a = 0; a < table_.dim; ++a) {
            table_.cyclic[a] = source.cyclic[a + 1];
        }
    }
    ~TemporaryTable() { table_free(table_); }
    TemporaryTable(const TemporaryTable&) = delete;
    TemporaryTable& operator=(const TemporaryTable&) = delete;

    Table& table() { return table_; }
    void copy_grid(const double* grid) {
        for (int i = 0; grid != nullptr && i < table_.sizes[0]; ++i) {
            table_set_axis_value(table_, 1, i, grid[i]);
        }
    }

  private:
    Table table_;
};

void keep(int code, int& status) {
    if (code > 0) {
        status = code;
    }
}

// Walks the index combinations of axes 1 .. N-1 with a loop per axis; `line` takes the values along axis 0.
template <int N, int A = 1>
void walk(const Table& source, Table& reduced, double x, int* index, double* line, int& status, double* timing) {
    if constexpr (A == N) {
        const double* grid = source.axes[0];
        if (grid == nullptr) {
            table_store_at(reduced, index + 1, no_value);
            return;
        }
        for (index[0] = 0; index[0] < source.sizes[0]; ++index[0]) {
            line[index[0]] = table_value_at(source, index);
        }
        int code = 0;
        const double value = global_spline(grid, line, source.sizes[0], x, code, source.cyclic[0], timing);
        keep(code, status);
        table_store_at(reduced, index + 1, value);
    } else {
        for (index[A] = 0; index[A] < source.sizes[A]; ++index[A]) {
            walk<N, A + 1>(source, reduced, x, index, line, status, timing);
        }
    }
}

// The same walk with the combination decoded by repeated division, last axis fastest.
void walk_generic(const Table& source, Table& reduced, double x, int* index, double* line, int& status,
                  double* timing) {
    for (int combination = 0; combination < reduced.total; ++combination) {
        int rest = combination;
        for (int a = source.dim - 1; a >= 1; --a) {
            index[a] = rest % source.sizes[a];
            rest /= source.sizes[a];
        }
        const double* grid = source.axes[0];
        if (grid == nullptr) {
            table_store_at(reduced, index + 1, no_value);
            continue;
        }
        for (index[0] = 0; index[0] < source.sizes[0]; ++index[0]) {
            line[index[0]] = table_value_at(source, index);
        }
        int code = 0;
        const double value = global_spline(grid, line, source.sizes[0], x, code, source.cyclic[0], timing);
        keep(code, status);
        table_store_at(reduced, index + 1, value);
    }
}

// `table` may be a temporary one whose first axis alone has a grid; `grids` are those of the whole lookup from there.
template <int N>
double straight(const Table& table, double* const* grids, const double* x, int& status, double* timing) {
    if constexpr (N == 1) {
        return table.axes[0] == nullptr
                   ? no_value
                   : global_spline(table.axes[0], table.values, table.sizes[0], x[0], status, table.cyclic[0], timing);
    } else {
        TemporaryTable reduced(table);
        reduced.copy_grid(grids[1]);
        double* const line =
            static_cast<double*>(std::malloc(static_cast<std::size_t>(table.sizes[0]) * sizeof(double)));
        if (line == nullptr) {
            status = 90007;
            return no_value;
        }
        int index[N];
        walk<N>(table, reduced.table(), x[0], index, line, status, timing);
        std::free(line);
        if constexpr (N == 2) {
            int code = 0;
            const double value = straight<1>(reduced.table(), grids + 1, x + 1, code, timing);
            keep(code, status);
            return value;
        } else {
            return straight<N - 1>(reduced.table(), grids + 1, x + 1, status, timing);
        }
    }
}

double generic(const Table& table, double* const* grids, const double* x, int& status, double* timing) {
    if (table.dim == 1) {
        return straight<1>(table, grids, x, status, timing);
    }
    TemporaryTable reduced(table);
    reduced.copy_grid(grids[1]);
    double* const line = static_cast<double*>(std::malloc(static_cast<std::size_t>(table.sizes[0]) * sizeof(double)));
    int* const index = static_cast<int*>(std::malloc(static_cast<std::size_t>(table.dim) * sizeof(int)));
    if (line == nullptr || index == nullptr) {
        std::free(line);
        std::free(index);
        status = 90007;
        return no_value;
    }
    walk_generic(table, reduced.table(), x[0], index, line, status, timing);
    std::free(line);
    std::free(index);
    if (reduced.table().dim == 1) {
        int code = 0;
        const double value = straight<1>(reduced.table(), grids + 1, x + 1, code, timing);
        keep(code, status);
        return value;
    }
    return generic(reduced.table(), grids + 1, x + 1, status, timing);
}

}  // namespace

template <class Probe>
int table_lookup_spline(Category& category, const char* key, const double* x, double& result, double* timing) {
    const Table* table = find_table(category, key);
    if (table == nullptr) {
        return 90006;
    }
    int status = 90006;  // kept where a lookup of more than one axis stays in range
    const Point point(*table, x);
    if (!point.wrapped()) {
        result = no_value;
        return status;
    }
    if (Probe::environment("USE_GENERIC_INTERPOLATION")) {
        result = generic(*table, table->axes, point.x(), status, timing);
        return status;
    }
    switch (table->dim) {
        case 1:
            result = straight<1>(*table, table->axes, point.x(), status, timing);
            break;
        case 2:
            result = straight<2>(*table, table->axes, point.x(), status, timing);
            break;
        case 3:
            result = straight<3>(*table, table->axes, point.x(), status, timing);
            break;
        case 4:
            result = straight<4>(*table, table->axes, point.x(), status, timing);
            break;
        case 5:
            result = straight<5>(*table, table->axes, point.x(), status, timing);
            break;
        default:
            result = generic(*table, table->axes, point.x(), status, timing);
    }
    return status;
}

template int table_lookup_spline<Bare>(Category&, const char*, const double*, double&, double*);
template int table_lookup_spline<WithClocks>(Category&, const char*, const double*, double&, double*);

}  // namespace kzb_reference
