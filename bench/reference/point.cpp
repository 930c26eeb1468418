// Cyclic wrap by repeated addition of the period, and the bracket by a linear scan upward.
#include <cstdlib>

#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

// False where the repeated addition would never end: on a limit to the last bit, a not-a-number, a period that is not
// positive or too small to move the value.
bool wrap(double low, double high, double& value) {
    const double period = high - low;
    const double lo_limit = low - axis_tol;
    const double hi_limit = high + axis_tol;
    bool up = false;
    bool down = false;
    for (;;) {
        const double before = value;
        if (lo_limit > value) {
            value += period;
            up = true;
        } else if (value > hi_limit) {
            value -= period;
            down = true;
        } else if (lo_limit < value && value < hi_limit) {
            return true;
        } else {
            if (up && down) {
                std::perror("The cyclic value is not found\n");
            }
            return false;
        }
        if (value == before || !(period > 0.0) || std::isinf(value)) {
            return false;
        }
    }
}

}  // namespace

Point::Point(const Table& table, const double* x)
    : x_(static_cast<double*>(std::calloc(static_cast<std::size_t>(table.dim), sizeof(double)))), wrapped_(true) {
    double low = 0.0;
    double high = 0.0;
    for (int a = 0; a < table.dim; ++a) {
        x_[a] = x[a];
        if (table.axes[a] == nullptr || table.cyclic[a] < 1) {
            continue;
        }
        const int rows = table.sizes[a];
        if (rows == 1) {
            x_[a] = table.axes[a][0];
            continue;
        }
        const double first = table.axes[a][0];
        const double last = table.axes[a][rows - 1];
        if (last > first || first > last) {
            low = first;
            high = last;
        } else {
            std::perror("The axis values are not in ascending order\n");
        }
        wrapped_ = wrap(low, high, x_[a]) && wrapped_;
    }
}

Point::~Point() {
    std::free(x_);
    std::free(pairs_);
}

int Point::find_bracket(const Table& table) {
    pairs_ = static_cast<Pair*>(std::calloc(static_cast<std::size_t>(table.dim), sizeof(Pair)));
    int status = 0;
    for (int a = 0; a < table.dim; ++a) {
        Pair& pair = pairs_[a];
        pair = {-1, -1};
        const double* node = table.axes[a];
        if (node == nullptr) {
            continue;
        }
        const int rows = table.sizes[a];
        if (rows == 1) {
            pair = {0, 0};
        } else if (x_[a] < node[0] - axis_tol) {
            pair = {0, 1};
            status = 80001;
        } else if (x_[a] > node[rows - 1] + axis_tol) {
            pair = {rows - 2, rows - 1};
            status = 80002;
        } else {
            for (int i = 0; i <= rows - 2; ++i) {
                if (x_[a] > node[i] - axis_tol && node[i + 1] + axis_tol > x_[a]) {
                    pair = {i, i + 1};
                    break;
                }
            }
        }
    }
    return status;
}

}  // namespace kzb_reference
