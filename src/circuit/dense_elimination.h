// Gaussian elimination of a dense system in place, without pivoting.
//
//   forward, column i, r and c above i:  m[r][i] /= m[i][i],  m[r][c] -= m[i][c] * m[r][i],  b[r] -= b[i] * m[r][i]
//   backward, row i:                     b[i] -= b[c] * m[i][c] for c = i + 1 .. n - 1,  then b[i] /= m[i][i]
//
// Rows are never exchanged. A pivot of exactly 0.0 is replaced by 1e-20, so a singular system gives large or non-finite
// numbers and no failure. Zero entries are not skipped: 0 * inf counts as it does in the formula.
#pragma once

#include <cstddef>

namespace kzb {

inline constexpr double zero_pivot = 1e-20;

// `matrix` [n * n], row by row, is destroyed; `rhs` [n] becomes the solution.
inline void eliminate(double* __restrict matrix, double* __restrict rhs, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        const double* const pivot_row = matrix + i * n;
        if (matrix[i * n + i] == 0.0) {
            matrix[i * n + i] = zero_pivot;
        }
        const double pivot = pivot_row[i];
        for (std::size_t r = i + 1; r < n; ++r) {
            double* const row = matrix + r * n;
            const double factor = row[i] / pivot;
            row[i] = factor;
            for (std::size_t c = i + 1; c < n; ++c) {
                row[c] -= pivot_row[c] * factor;
            }
            rhs[r] -= rhs[i] * factor;
        }
    }
    for (std::size_t i = n; i-- > 0;) {
        const double* const row = matrix + i * n;
        double value = rhs[i];
        for (std::size_t c = i + 1; c < n; ++c) {
            value -= rhs[c] * row[c];
        }
        rhs[i] = value / row[i];
    }
}

// The same for `N` unknowns known beforehand, column after column unrolled: no index is left to be counted.
template <std::size_t N, std::size_t I = 0>
inline void eliminate_fixed(double (&matrix)[N][N], double (&rhs)[N]) {
    const double pivot = matrix[I][I] == 0.0 ? zero_pivot : matrix[I][I];
    for (std::size_t r = I + 1; r < N; ++r) {
        const double factor = matrix[r][I] / pivot;
        for (std::size_t c = I + 1; c < N; ++c) {
            matrix[r][c] -= matrix[I][c] * factor;
        }
        rhs[r] -= rhs[I] * factor;
    }
    if constexpr (I + 1 < N) {
        eliminate_fixed<N, I + 1>(matrix, rhs);
    }
    double value = rhs[I];
    for (std::size_t c = I + 1; c < N; ++c) {
        value -= rhs[c] * matrix[I][c];
    }
    rhs[I] = value / pivot;
}

// The same for a small system in one array: `rows` [n * stride], row r holds its n entries, then its right-hand side at
// [r][n], then zeros; `stride` is even and above n. On return column n holds the solution. Columns are taken in pairs
// from an even one on, so that a pair is never read across two writes: what stands left of the diagonal is then no
// longer the factor, and nothing reads it.
inline void eliminate_augmented(double* rows, std::size_t n, std::size_t stride) {
    for (std::size_t i = 0; i < n; ++i) {
        double* const pivot_row = rows + i * stride;
        if (pivot_row[i] == 0.0) {
            pivot_row[i] = zero_pivot;
        }
        const double pivot = pivot_row[i];
        for (std::size_t r = i + 1; r < n; ++r) {
            double* const row = rows + r * stride;
            const double factor = row[i] / pivot;
            for (std::size_t c = i & ~std::size_t{1}; c < stride; c += 2) {
                row[c] -= pivot_row[c] * factor;
                row[c + 1] -= pivot_row[c + 1] * factor;
            }
        }
    }
    for (std::size_t i = n; i-- > 0;) {
        double* const row = rows + i * stride;
        double value = row[n];
        for (std::size_t c = i + 1; c < n; ++c) {
            value -= rows[c * stride + n] * row[c];
        }
        row[n] = value / row[i];
    }
}

// The first form on uBLAS: a row-major matrix and a vector, bounded or dynamic, the size being that of `rhs`.
template <class Matrix, class Vector>
void eliminate(Matrix& matrix, Vector& rhs) {
    if (rhs.size() != 0) {
        eliminate(&matrix.data()[0], &rhs.data()[0], rhs.size());
    }
}

}  // namespace kzb
