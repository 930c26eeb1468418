#include "models/coil_solve.h"

#include <cmath>

namespace kzb {
namespace {

// Far from overflow whatever is multiplied with what in so small a system.
constexpr double tame = 1e30;

bool is_tame(double value) {
    return std::fabs(value) < tame;
}

bool is_plain(double value) {
    return std::isfinite(value) && value != 0.0;
}

template <std::size_t N>
struct System {
    double a[N][N];
    double b[N];

    bool assemble(const DrivenCoils& coils) {
        for (std::size_t r = 0; r < N; ++r) {
            const double* const l = coils.inductance + r * N;
            const double* const l_prev = coils.inductance_prev + r * N;
            if (!is_tame(coils.voltage[r])) {
                return false;
            }
            double sum = 0.0;
            for (std::size_t c = 0; c < N; ++c) {
                sum += coils.current_prev[c] * l[c];
                a[r][c] = (c == r ? coils.dt * coils.resistance[r] : 0.0) + (2 * l[c] - l_prev[c]);
            }
            b[r] = sum - coils.voltage[r] * -coils.dt;
            if (!is_plain(b[r])) {
                return false;
            }
        }
        return true;
    }

    bool eliminate() {
        for (std::size_t i = 0; i < N; ++i) {
            if (a[i][i] == 0.0) {
                return false;
            }
            for (std::size_t r = i + 1; r < N; ++r) {
                const double factor = a[r][i] / a[i][i];
                if (!is_tame(factor)) {
                    return false;
                }
                for (std::size_t c = i + 1; c < N; ++c) {
                    a[r][c] -= a[i][c] * factor;
                }
                b[r] -= b[i] * factor;
            }
        }
        return true;
    }

    bool substitute(double* current) const {
        for (std::size_t i = N; i-- > 0;) {
            double value = b[i];
            for (std::size_t c = i + 1; c < N; ++c) {
                value -= current[c] * a[i][c];
            }
            current[i] = value / a[i][i];
            if (value == 0.0 || !is_plain(current[i])) {
                return false;
            }
        }
        return true;
    }
};

template <std::size_t N>
bool solve(const DrivenCoils& coils, double* current) {
    System<N> system;
    return system.assemble(coils) && system.eliminate() && system.substitute(current);
}

}  // namespace

bool solve_driven_coils(const DrivenCoils& coils, double* current) {
    if (!is_tame(coils.dt)) {
        return false;
    }
    switch (coils.count) {
        case 1:
            return solve<1>(coils, current);
        case 3:
            return solve<3>(coils, current);
        case 4:
            return solve<4>(coils, current);
        case 5:
            return solve<5>(coils, current);
        default:
            return false;
    }
}

}  // namespace kzb
