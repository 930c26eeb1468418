#include "table/spline_memo.h"

#include <cstring>
#include <exception>

#include "table/natural_spline.h"
#include "table/table.h"

namespace kzb {

// The axis of the first lookup is the one whose lines are kept.
bool SplineMemo::make_room(const KZB_TABLE& table, std::size_t a) {
    const int rows = table.sizes[a];
    if (rows == rows_ && table.total == total_) {
        return a == axis_ && !formed_.empty();
    }
    axis_ = a;
    rows_ = rows;
    total_ = table.total;
    formed_.clear();
    if (rows < 2 || rows > most_rows || total_ > most_values) {
        return false;
    }
    const auto lines = static_cast<std::size_t>(total_ / rows);
    try {
        store_.resize(3 * lines * static_cast<std::size_t>(rows));
        formed_.resize(lines, 0);
    } catch (const std::exception&) {
        formed_.clear();
        return false;
    }
    return true;
}

const double* SplineMemo::coefficients(const KZB_TABLE& table, std::size_t a, const double* first,
                                       const double* values) {
    if (!make_room(table, a)) {
        return nullptr;
    }
    const std::ptrdiff_t stride = table.strides[a];
    const std::ptrdiff_t place = first - table.values.data();
    const auto line = static_cast<std::size_t>(place / (stride * rows_) * stride + place % stride);
    const auto rows = static_cast<std::size_t>(rows_);
    const std::size_t bytes = rows * sizeof(double);
    const double* const nodes = table.axes[a].data();
    double* const kept_nodes = store_.data() + 3 * line * rows;
    double* const kept_values = kept_nodes + rows;
    double* const kept = kept_values + rows;
    if (formed_[line] == 0 || std::memcmp(kept_nodes, nodes, bytes) != 0 ||
        std::memcmp(kept_values, values, bytes) != 0) {
        double work[2 * most_rows];
        natural_spline_coefficients(rows_ - 1, nodes, values, 1, work, kept);
        std::memcpy(kept_nodes, nodes, bytes);
        std::memcpy(kept_values, values, bytes);
        formed_[line] = 1;
    }
    return kept;
}

double* SplineMemo::work(std::size_t count) {
    return work_.size() >= count || work_.allocate(count) ? work_.data() : nullptr;
}

}  // namespace kzb
