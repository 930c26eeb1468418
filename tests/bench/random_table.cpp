#include "random_table.h"

#include <algorithm>
#include <sstream>

#include "draw.h"

namespace kzb_bench_test {

std::vector<double> RandomTable::make_axis(std::mt19937_64& random, int rows, bool faults) const {
    std::vector<double> axis(static_cast<std::size_t>(rows));
    const int kind = pick(random, 0, 3);
    if (kind == 0) {  // a full turn, evenly
        for (int i = 0; i < rows; ++i) {
            axis[static_cast<std::size_t>(i)] = rows == 1 ? 0.0 : 360.0 * i / (rows - 1);
        }
    } else if (kind == 1) {  // a component axis
        for (int i = 0; i < rows; ++i) {
            axis[static_cast<std::size_t>(i)] = i;
        }
    } else {
        double node = uniform(random, -100.0, 100.0);
        for (double& x : axis) {
            x = node;
            node += uniform(random, 0.01, kind == 2 ? 5.0 : 100.0);
        }
    }
    if (faults && rows > 2 && pick(random, 0, 9) == 0) {
        std::swap(axis[1], axis[2]);
    }
    if (faults && rows > 1 && pick(random, 0, 19) == 0) {
        axis[1] = axis[0];
    }
    return axis;
}

RandomTable::RandomTable(std::mt19937_64& random, const TableShape& shape) {
    const int dim = pick(random, shape.least_dim, shape.most_dim);
    const int most_rows = dim >= 5 ? std::min(shape.most_rows, 7) : shape.most_rows;
    std::size_t total = 1;
    for (int a = 0; a < dim; ++a) {
        const int rows = pick(random, pick(random, 0, 3) == 0 ? 1 : 2, most_rows);
        sizes_.push_back(rows);
        total *= static_cast<std::size_t>(rows);
        const int flag = pick(random, 0, 9);
        cyclic_.push_back(flag < 5 ? 0 : (flag < 8 ? 1 : (flag == 8 ? 2 : 0)));
        std::vector<double> axis = make_axis(random, rows, shape.faults && cyclic_.back() < 1);
        if (shape.faults && pick(random, 0, 29) == 0) {
            axis.clear();
        }
        axes_.push_back(std::move(axis));
    }
    const bool flat = pick(random, 0, 19) == 0;
    for (std::size_t i = 0; i < total; ++i) {
        double value = flat ? 1.5 : uniform(random, -10.0, 10.0);
        if (shape.faults && pick(random, 0, 199) == 0) {
            value = pick(random, 0, 1) == 0 ? kzb_reference::no_value : 1e101;
        }
        values_.push_back(value);
    }
}

RandomTable::RandomTable(std::mt19937_64& random, std::vector<std::vector<double>> axes, std::vector<int> cyclic)
    : cyclic_(std::move(cyclic)), axes_(std::move(axes)) {
    std::size_t total = 1;
    for (const std::vector<double>& axis : axes_) {
        sizes_.push_back(static_cast<int>(axis.size()));
        total *= axis.size();
    }
    for (std::size_t i = 0; i < total; ++i) {
        values_.push_back(uniform(random, -10.0, 10.0));
    }
}

void RandomTable::put(const std::string& category, const std::string& key, kzb_reference::Store& store) const {
    kzb_reference::Table& table =
        kzb_reference::kzb_create_table(category.c_str(), key.c_str(), dim(), sizes_.data(), store);
    for (int a = 0; a < dim(); ++a) {
        const std::vector<double>& axis = axes_[static_cast<std::size_t>(a)];
        table.cyclic[a] = cyclic_[static_cast<std::size_t>(a)];
        for (std::size_t i = 0; i < axis.size(); ++i) {
            kzb_reference::table_set_axis_value(table, a + 1, static_cast<int>(i), axis[i]);
        }
    }
    std::copy(values_.begin(), values_.end(), table.values);
}

void RandomTable::put(KZB_TABLE& table) const {
    kzb::table_create(table, dim(), sizes_.data());
    for (int a = 0; a < dim(); ++a) {
        const std::vector<double>& axis = axes_[static_cast<std::size_t>(a)];
        kzb::table_set_cyclic_flag(&table, a + 1, cyclic_[static_cast<std::size_t>(a)]);
        for (std::size_t i = 0; i < axis.size(); ++i) {
            kzb::table_set_axis_value(&table, a + 1, static_cast<int>(i), axis[i]);
        }
    }
    std::vector<int> index(sizes_.size());
    for (std::size_t flat = 0; flat < values_.size(); ++flat) {
        std::size_t rest = flat;
        for (std::size_t a = sizes_.size(); a-- > 0;) {
            index[a] = static_cast<int>(rest % static_cast<std::size_t>(sizes_[a]));
            rest /= static_cast<std::size_t>(sizes_[a]);
        }
        kzb::table_set_value(&table, index.data(), values_[flat]);
    }
}

void RandomTable::put(const std::string& category, const std::string& key, KZB_STORE& store) const {
    kzb_create_table(category.c_str(), key.c_str(), dim(), sizes_.data(), &store);
    put(*kzb::find_table(store, category, key));
}

std::vector<double> RandomTable::point(std::mt19937_64& random) const {
    std::vector<double> x;
    for (std::size_t a = 0; a < axes_.size(); ++a) {
        const std::vector<double>& axis = axes_[a];
        if (axis.empty()) {
            x.push_back(uniform(random, -10.0, 10.0));
            continue;
        }
        const auto [least, most] = std::minmax_element(axis.begin(), axis.end());
        const double node = axis[static_cast<std::size_t>(pick(random, 0, static_cast<int>(axis.size()) - 1))];
        const double span = std::max(*most - *least, 1.0);
        switch (pick(random, 0, 9)) {
            case 0:
                x.push_back(node);
                break;
            case 1:
                x.push_back(node + (pick(random, 0, 1) == 0 ? 0.5e-10 : -0.5e-10));
                break;
            case 2:
                x.push_back(node + (pick(random, 0, 1) == 0 ? 2.5e-10 : -2.5e-10));
                break;
            case 3:
                x.push_back(uniform(random, *least - 3.0 * span, *most + 3.0 * span));
                break;
            default:
                x.push_back(uniform(random, *least, *most));
        }
    }
    return x;
}

std::string RandomTable::text() const {
    std::ostringstream out;
    out.precision(17);
    for (std::size_t a = 0; a < sizes_.size(); ++a) {
        out << "axis " << a + 1 << ": rows " << sizes_[a] << " flag " << cyclic_[a] << " nodes";
        for (const double node : axes_[a]) {
            out << ' ' << node;
        }
        out << '\n';
    }
    return out.str();
}

}  // namespace kzb_bench_test
