// The body of a table in an old file: blocks of the last two axes inside the indices of the axes before them.
//
//   body(axes left) = size, then per index: node, body(one axis fewer)        while more than two axes are left
//   body(2)         = rows, columns; nodes of the last axis; per row: node, values
//
// The table is created at its first block, from the sizes met by then; beyond a moderate size memory is taken for no
// more values than the rest of the file can hold. A later block may have other sizes: what lies outside the table is
// read over and told once for that block. The walk keeps its own stack, so that the number of axes is bounded by the
// file alone.
//
// A Form tells how numbers stand in its file; each of its calls is false where the file holds none:
//   take_size(size), take_node(node)       in front of a body with more than two axes
//   take_block_sizes(rows, columns)
//   take_row(count, numbers)               `count` numbers into the array
//   most_values()                          how many values the rest of the file can hold
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "store/format/legacy_table.h"

namespace kzb {

template <class Form>
class LegacyBody {
  public:
    LegacyBody(KZB_STORE& store, std::string category, const LegacyTableHead& head, Form form)
        : store_(store), category_(std::move(category)), head_(head), form_(std::move(form)) {}

    // False for a body that ends too early or cannot be true.
    bool read() {
        if (head_.dim < 2) {
            return false;
        }
        const std::size_t outer = static_cast<std::size_t>(head_.dim) - 2;
        for (;;) {
            while (outer_.size() < outer) {
                OuterAxis axis;
                if (!form_.take_size(axis.size) || !is_size(axis.size) || !form_.take_node(axis.node)) {
                    return false;
                }
                outer_.push_back(axis);
            }
            if (!take_block()) {
                return false;
            }
            while (!outer_.empty() && ++outer_.back().index == outer_.back().size) {
                outer_.pop_back();
            }
            if (outer_.empty()) {
                return true;
            }
            placed_ = std::min(placed_, outer_.size() - 1);
            if (!form_.take_node(outer_.back().node)) {
                return false;
            }
        }
    }

  private:
    struct OuterAxis {
        int size = 0;
        int index = 0;
        double node = 0.0;
        bool inside = true;        // this index and those before it
        std::ptrdiff_t start = 0;  // of their part of the values
    };

    static constexpr std::int64_t always_created = 1 << 12;  // values

    static bool is_size(int size) {
        if (size < 1) {
            std::perror("The num of row is zero.\n");
        }
        return size >= 1;
    }

    bool take_block() {
        int rows = 0;
        int columns = 0;
        if (!form_.take_block_sizes(rows, columns) || !is_size(rows) || !is_size(columns) ||
            form_.most_values() / rows / columns == 0 || (table_ == nullptr && !create(rows, columns)) ||
            !form_.take_row(columns, numbers_)) {
            return false;
        }
        const std::size_t last = table_->sizes.size() - 1;
        const bool inside = place_outer_nodes();
        const std::ptrdiff_t start = outer_.empty() ? 0 : outer_.back().start;
        const int held_rows = inside ? std::min(rows, table_->sizes[last - 1]) : 0;
        const int held_columns = inside ? std::min(columns, table_->sizes[last]) : 0;
        for (int c = 0; c < held_columns; ++c) {
            table_set_axis_value(table_, head_.dim, c, numbers_[static_cast<std::size_t>(c)]);
        }
        for (int r = 0; r < rows; ++r) {
            if (!form_.take_row(columns + 1, numbers_)) {
                return false;
            }
            if (r < held_rows) {
                table_set_axis_value(table_, head_.dim - 1, r, numbers_[0]);
                std::copy_n(numbers_.data() + 1, held_columns, table_->values.data() + start + r * table_->sizes[last]);
            }
        }
        if (held_rows < rows || held_columns < columns) {
            std::perror("index is invalid\n");
        }
        return true;
    }

    bool create(int rows, int columns) {
        std::vector<int> sizes;
        for (const OuterAxis& axis : outer_) {
            sizes.push_back(axis.size);
        }
        sizes.push_back(rows);
        sizes.push_back(columns);
        // Later blocks may be smaller than the first: a table of moderate size need not fill the rest of the file.
        std::int64_t fitting = std::max(form_.most_values(), always_created);
        for (const int size : sizes) {
            fitting /= size;
        }
        if (fitting == 0) {
            return false;
        }
        int status = 1;
        table_ = table_create_in_category(store_, *require_category(store_, category_), head_.name, head_.dim,
                                          sizes.data(), status);
        return status == 0;
    }

    // Puts the nodes of the indices that changed since the last block; false where the block lies outside the table.
    bool place_outer_nodes() {
        for (; placed_ < outer_.size(); ++placed_) {
            OuterAxis& axis = outer_[placed_];
            const OuterAxis before = placed_ == 0 ? OuterAxis{} : outer_[placed_ - 1];
            axis.inside = before.inside && axis.index < table_->sizes[placed_];
            axis.start = before.start + static_cast<std::ptrdiff_t>(axis.index) * table_->strides[placed_];
            if (axis.inside) {
                table_set_axis_value(table_, static_cast<int>(placed_) + 1, axis.index, axis.node);
            }
        }
        return outer_.empty() || outer_.back().inside;
    }

    KZB_STORE& store_;
    std::string category_;
    const LegacyTableHead& head_;
    Form form_;
    KZB_TABLE* table_ = nullptr;
    std::vector<OuterAxis> outer_;  // the axes before the last two, as far as the walk has entered them
    std::size_t placed_ = 0;        // how many of them have their present node in the table
    std::vector<double> numbers_;
};

}  // namespace kzb
