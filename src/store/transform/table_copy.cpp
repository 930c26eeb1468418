// Whole-table operations of the transforms.
#include "store/transform/table_copy.h"

#include <algorithm>

#include "store/store.h"
#include "store/table_calls.h"

namespace kzb {

int filled_rows(const KZB_TABLE* table, int axis) {
    // A record whose creation failed may hold sizes without values: it has nothing to read.
    const bool filled = table != nullptr && table->values && axis >= 1 && axis <= table->dim;
    return filled ? table->sizes[static_cast<std::size_t>(axis - 1)] : 0;
}

std::vector<double> nodes_of(KZB_STORE& store, const KZB_TABLE* table, int axis) {
    std::vector<double> nodes(static_cast<std::size_t>(filled_rows(table, axis)));
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        nodes[i] = axis_value_or_error(store, table, axis, static_cast<int>(i));
    }
    return nodes;
}

void set_nodes(KZB_TABLE* table, int axis, const std::vector<double>& nodes) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        table_set_axis_value(table, axis, static_cast<int>(i), nodes[i]);
    }
}

void copy_axis(KZB_STORE& store, const KZB_TABLE* from, int from_axis, KZB_TABLE* to, int to_axis) {
    set_nodes(to, to_axis, nodes_of(store, from, from_axis));
}

void set_cyclic_flags(KZB_TABLE* table, std::initializer_list<int> flags) {
    int axis = 0;
    for (const int flag : flags) {
        table_set_cyclic_flag(table, ++axis, flag);
    }
}

Cells::Cells(KZB_TABLE* table, std::size_t given)
    : table_(table != nullptr && table->values ? table : nullptr),
      indices_(std::max(given, table_ == nullptr ? 0 : table_->sizes.size()), 0) {}

const int* Cells::padded(std::initializer_list<int> indices) {
    std::copy(indices.begin(), indices.end(), indices_.begin());
    return indices_.data();
}

double Cells::get(std::initializer_list<int> indices) {
    return table_get_value(table_, padded(indices));
}

void Cells::set(std::initializer_list<int> indices, double value) {
    table_set_value(table_, padded(indices), value);
}

void Cells::set(const std::vector<int>& indices, double value) {
    std::copy(indices.begin(), indices.end(), indices_.begin());
    table_set_value(table_, indices_.data(), value);
}

int copy_table(KZB_STORE& store, std::string_view category, std::string_view from, std::string_view to) {
    const KZB_TABLE* source = find_table(store, category, from);
    const bool filled = source != nullptr && source->values;
    const std::vector<int> sizes = filled ? source->sizes : std::vector<int>{};
    const int none = 0;
    if (create_table(store, category, to, static_cast<int>(sizes.size()), sizes.empty() ? &none : sizes.data()) != 0) {
        return 1;
    }
    source = find_table(store, category, from);
    KZB_TABLE* copy = find_table(store, category, to);
    if (!filled || source == nullptr || copy == nullptr) {
        return 0;
    }
    std::copy_n(source->values.data(), std::min(source->values.size(), copy->values.size()), copy->values.data());
    for (int axis = 1; axis <= source->dim; ++axis) {
        copy_axis(store, source, axis, copy, axis);
    }
    copy->cyclic = source->cyclic;
    return 0;
}

bool next_point(std::vector<int>& indices, const std::vector<int>& sizes) {
    for (std::size_t a = sizes.size(); a-- > 0;) {
        if (++indices[a] < sizes[a]) {
            return true;
        }
        indices[a] = 0;
    }
    return false;
}

}  // namespace kzb
