#include "bench/reference/table_formula.h"

namespace kzb_reference {

void fill(Store& store, const char* category, const char* key, const std::vector<Axis>& axes,
          const std::vector<int>& cyclic, const Formula& formula) {
    const int dim = static_cast<int>(axes.size());
    std::vector<int> sizes;
    for (const Axis& axis : axes) {
        sizes.push_back(static_cast<int>(axis.size()));
    }
    Table& table = kzb_create_table(category, key, dim, sizes.data(), store);
    for (int a = 0; a < dim; ++a) {
        table.cyclic[a] = cyclic[static_cast<std::size_t>(a)];
        for (int i = 0; i < table.sizes[a]; ++i) {
            table_set_axis_value(table, a + 1, i, axes[static_cast<std::size_t>(a)][static_cast<std::size_t>(i)]);
        }
    }
    std::vector<double> point(axes.size());
    for (int flat = 0; flat < table.total; ++flat) {
        for (int a = 0; a < dim; ++a) {
            point[static_cast<std::size_t>(a)] = table.axes[a][flat / table.strides[a] % table.sizes[a]];
        }
        table.values[flat] = formula(point.data());
    }
}

}  // namespace kzb_reference
