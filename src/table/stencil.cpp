// Stencils along one axis. A bracket of (-1, -1) is allowed everywhere: nodes that cannot be read count as 0.
#include "table/stencil.h"

#include <algorithm>

namespace kzb {

namespace {

double node_at(const double* nodes, int i) {
    return i >= 0 ? nodes[i] : 0.0;
}

// Indices first, first + 1 .. of a stencil that lies inside the grid.
void run_of_nodes(const double* nodes, int first, int count, Stencil& stencil) {
    for (int k = 0; k < count; ++k) {
        stencil.index[k] = first + k;
        stencil.node[k] = nodes[first + k];
    }
}

}  // namespace

void cubic_stencil(const double* nodes, int rows, bool cyclic, Bracket bracket, Stencil& stencil) {
    const int before = bracket.lo - 1;
    const int after = bracket.hi + 1;
    double* p = stencil.node;
    stencil.count = 4;
    p[1] = node_at(nodes, bracket.lo);
    p[2] = node_at(nodes, bracket.hi);
    if (rows < 2) {
        p[0] = p[1];
        p[3] = p[2];
    } else {
        const double first_span = nodes[1] - nodes[0];
        const double last_span = nodes[rows - 1] - nodes[rows - 2];
        p[0] = before >= 0 ? nodes[before] : nodes[0] - (cyclic ? last_span : 0.1 * first_span);
        p[3] = after < rows ? nodes[after] : nodes[rows - 1] + (cyclic ? first_span : 0.1 * last_span);
    }
    stencil.index[0] = before >= 0 ? before : (cyclic ? rows - 2 : 0);
    stencil.index[1] = bracket.lo;
    stencil.index[2] = bracket.hi;
    stencil.index[3] = after < rows ? after : (cyclic ? 1 : rows - 1);
}

void spline_stencil(const double* nodes, int rows, bool cyclic, Bracket bracket, int width, Stencil& stencil) {
    const int reach = width / 2 - 1;
    stencil.count = std::min(rows, width);
    if (!cyclic || rows == 1) {
        // One cyclic node would be folded for ever: it stands for itself.
        int first = bracket.lo - reach;
        if (rows <= width || first < 0) {
            first = 0;
        } else if (bracket.hi + reach >= rows) {
            first = rows - width;
        }
        run_of_nodes(nodes, first, stencil.count, stencil);
        return;
    }
    const double period = nodes[rows - 1] - nodes[0];
    // With fewer rows than the stencil is wide the first entries stand, however they fold: established behaviour.
    for (int k = 0; k < stencil.count; ++k) {
        int c = k <= reach ? bracket.lo - reach + k : bracket.hi + k - reach - 1;
        double offset = 0.0;
        while (c < 0) {
            c = c + rows - 1;
            offset = offset - period;
        }
        while (c >= rows) {
            c = c + 1 - rows;
            offset = offset + period;
        }
        stencil.index[k] = c;
        stencil.node[k] = nodes[c] + offset;
    }
}

}  // namespace kzb
