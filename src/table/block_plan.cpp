// Evaluation of a block plan.
#include "table/block_plan.h"

#include <type_traits>

namespace kzb {

namespace {

constexpr int most_lines = 6 * 6 * 6 * 6;
constexpr int in_sequence[6] = {0, 1, 2, 3, 4, 5};

// Reduces `lines` lines; start(l) is where line l begins, offset[i] where its entries lie from there. `out` may be the
// block itself: a line is written behind all that is still to be read.
template <class Start, class Kernel>
inline void reduce_lines(int lines, Start start, Kernel kernel, double* out) {
    int l = 0;
    for (; l + 1 < lines; l += 2) {
        const double* p = start(l);
        const double* q = start(l + 1);
        const LanePair r = kernel([p, q](int i) { return load_pair(p + i, q + i); }, LanePair{});
        out[l] = r[0];
        out[l + 1] = r[1];
    }
    if (l < lines) {
        const double* p = start(l);
        out[l] = kernel([p](int i) { return p[i]; }, 0.0);
    }
}

template <class V>
inline V doubled_if(bool doubled, V y) {
    return doubled ? (y + y) * 0.5 : y;
}

template <LineKind Kind, class Start>
void reduce_hermite(const HermiteFactors& f, const int* o, bool doubled, int lines, Start start, double* out) {
    const HermiteFactors factors = f;
    const int o0 = o[0], o1 = o[1], o2 = o[2], o3 = o[3];
    if (doubled) {
        reduce_lines(
            lines, start,
            [=](auto y, auto lane) {
                using V = decltype(lane);
                return hermite_line<Kind, V>(factors, doubled_if<V>(true, y(o0)), doubled_if<V>(true, y(o1)),
                                             doubled_if<V>(true, y(o2)), doubled_if<V>(true, y(o3)));
            },
            out);
        return;
    }
    reduce_lines(
        lines, start,
        [=](auto y, auto lane) {
            using V = decltype(lane);
            return hermite_line<Kind, V>(factors, y(o0), y(o1), y(o2), y(o3));
        },
        out);
}

// One step over all its lines, by the kind of the step. `doubled`: its entries are handed on by a single-node axis.
template <class Start>
void reduce_step(const LineStep& step, const int* o, bool doubled, int lines, Start start, double* out) {
    switch (step.kind) {
        case LineKind::lerp:
            reduce_lines(
                lines, start,
                [&](auto y, auto lane) {
                    lane = y(o[0]);
                    return lane + step.t * (y(o[1]) - lane);
                },
                out);
            return;
        case LineKind::hermite_edge:
            reduce_hermite<LineKind::hermite_edge>(step.hermite, o, doubled, lines, start, out);
            return;
        case LineKind::hermite_inner:
            reduce_hermite<LineKind::hermite_inner>(step.hermite, o, doubled, lines, start, out);
            return;
        case LineKind::hermite_exact:
            reduce_hermite<LineKind::hermite_exact>(step.hermite, o, doubled, lines, start, out);
            return;
        case LineKind::spline:
            break;
    }
    const auto spline = [&](auto segments) {
        reduce_lines(
            lines, start,
            [&](auto y, auto lane) {
                using V = decltype(lane);
                return spline_line<decltype(segments)::value, V>(step.spline, [&](int i) { return y(o[i]); });
            },
            out);
    };
    switch (step.count) {
        case 3:
            return spline(std::integral_constant<int, 2>{});
        case 4:
            return spline(std::integral_constant<int, 3>{});
        case 5:
            return spline(std::integral_constant<int, 4>{});
        default:
            return spline(std::integral_constant<int, 5>{});
    }
}

// Where the lines along the last step begin, first step outermost; the number of lines.
int line_starts(const BlockPlan& plan, int* starts) {
    int lines = 1;
    starts[0] = 0;
    for (int k = 0; k + 1 < plan.steps; ++k) {
        const LineStep& step = plan.step[k];
        // From the back: line l gives lines l * count .. and is read before it is overwritten.
        for (int l = lines - 1; l >= 0; --l) {
            const int start = starts[l];
            for (int i = step.count - 1; i >= 0; --i) {
                starts[l * step.count + i] = start + step.offset[i];
            }
        }
        lines *= step.count;
    }
    return lines;
}

}  // namespace

double evaluate(const BlockPlan& plan) {
    const auto doubled = [&](int k) { return (plan.doubled >> k & 1U) != 0; };
    if (plan.steps == 0) {
        return doubled_if(doubled(0), *plan.base);
    }
    int starts[most_lines];
    double block[most_lines];
    int lines = line_starts(plan, starts);
    int k = plan.steps - 1;
    const LineStep& last = plan.step[k];
    const double* base = plan.base;
    reduce_step(
        last, last.offset, doubled(k + 1), lines, [&](int l) { return base + starts[l]; }, block);
    while (--k >= 0) {
        const LineStep& step = plan.step[k];
        const int length = step.count;
        lines /= length;
        reduce_step(
            step, in_sequence, doubled(k + 1), lines, [&](int l) { return block + l * length; }, block);
    }
    return doubled_if(doubled(0), block[0]);
}

}  // namespace kzb
