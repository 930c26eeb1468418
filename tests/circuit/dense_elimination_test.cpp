// Elimination without pivoting: hand-made systems, the replaced zero pivot, and the order of operations bit for bit.
#include "circuit/dense_elimination.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <boost/numeric/ublas/matrix.hpp>
#include <boost/numeric/ublas/vector.hpp>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

namespace ublas = boost::numeric::ublas;

// std::vector as storage: the default storage of this uBLAS doesn't build as C++20.
using Matrix = ublas::matrix<double, ublas::row_major, std::vector<double>>;
using Vector = ublas::vector<double, std::vector<double>>;

constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(DenseElimination, solves_a_two_by_two_system) {
    // 2x + y = 5, x + 3y = 10: x = 1, y = 3. All intermediate numbers are exact in binary.
    double m[] = {2, 1, 1, 3};
    double b[] = {5, 10};
    kzb::eliminate(m, b, 2);
    EXPECT_EQ(b[0], 1.0);
    EXPECT_EQ(b[1], 3.0);
}

TEST(DenseElimination, of_one_zero_entry_divides_by_the_replaced_pivot) {
    double m[] = {0.0};
    double b[] = {2.0};
    kzb::eliminate(m, b, 1);
    EXPECT_EQ(b[0], 2e20);  // 2.0 / 1e-20
}

TEST(DenseElimination, negative_zero_pivot_is_replaced_too) {
    double m[] = {-0.0};
    double b[] = {2.0};
    kzb::eliminate(m, b, 1);
    EXPECT_EQ(b[0], 2e20);
}

TEST(DenseElimination, zero_diagonal_in_the_last_row_divides_its_right_hand_side) {
    // Row 2 after elimination: m = 4 - 2 * 2 = 0, right-hand side 7 - 3 * 2 = 1.
    double m[] = {1, 2, 2, 4};
    double b[] = {3, 7};
    kzb::eliminate(m, b, 2);
    EXPECT_EQ(b[1], 1.0 / 1e-20);
    EXPECT_EQ(b[0], 3.0 - 2.0 * (1.0 / 1e-20));
}

TEST(DenseElimination, rows_are_not_exchanged) {
    // (0 1; 1 0) x = (3, 5). With a row exchange x = (5, 3) exactly. Without: the pivot 1e-20 makes the factor 1e20,
    // m[1][1] = -1e20, b[1] = 5 - 3e20 = -3e20 in double, x[1] = 3, x[0] = (3 - 3) / 1e-20 = 0.
    double m[] = {0, 1, 1, 0};
    double b[] = {3, 5};
    kzb::eliminate(m, b, 2);
    EXPECT_EQ(b[1], 3.0);
    EXPECT_EQ(b[0], 0.0);
}

TEST(DenseElimination, singular_system_gives_numbers_and_no_failure) {
    double m[] = {0, 0, 0, 0};
    double b[] = {1, 1};
    kzb::eliminate(m, b, 2);
    EXPECT_EQ(b[0], 1.0 / 1e-20);
    EXPECT_EQ(b[1], 1.0 / 1e-20);
}

TEST(DenseElimination, zeros_are_not_skipped) {
    // The pivot row is (1, inf); row 1 starts with 0.0, so 0 * inf = NaN enters it.
    double m[] = {1, infinity, 0, 1};
    double b[] = {1, 1};
    kzb::eliminate(m, b, 2);
    EXPECT_TRUE(std::isnan(b[1]));
}

TEST(DenseElimination, empty_system_is_left_alone) {
    Matrix m(0, 0);
    Vector b(0);
    kzb::eliminate(m, b);
    EXPECT_EQ(b.size(), 0U);
}

// The textbook loops on a matrix of rows, written again from the formula.
std::vector<double> by_formula(std::vector<std::vector<double>> m, std::vector<double> b) {
    const std::size_t n = b.size();
    for (std::size_t i = 0; i < n; i++) {
        if (m[i][i] == 0.0)
            m[i][i] = 1e-20;
        for (std::size_t r = i + 1; r < n; r++) {
            m[r][i] /= m[i][i];
            for (std::size_t c = i + 1; c < n; c++) m[r][c] -= m[i][c] * m[r][i];
            b[r] -= b[i] * m[r][i];
        }
    }
    for (std::size_t k = 0; k < n; k++) {
        const std::size_t i = n - 1 - k;
        for (std::size_t c = i + 1; c < n; c++) b[i] -= b[c] * m[i][c];
        b[i] /= m[i][i];
    }
    return b;
}

TEST(DenseElimination, agrees_with_the_formula_to_the_last_bit) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> number(-3.0, 3.0);
    for (std::size_t n = 1; n <= 16; ++n) {
        for (int round = 0; round < 50; ++round) {
            ublas::bounded_matrix<double, 16, 16> bounded(n, n);
            ublas::bounded_vector<double, 16> bounded_b(n);
            Matrix dynamic(n, n);
            Vector dynamic_b(n);
            std::vector<std::vector<double>> rows(n, std::vector<double>(n));
            std::vector<double> b(n);
            for (std::size_t r = 0; r < n; ++r) {
                for (std::size_t c = 0; c < n; ++c) {
                    // Sparse as a winding network is, so that zero pivots occur.
                    rows[r][c] = bounded(r, c) = dynamic(r, c) = number(random) < -1.0 ? 0.0 : number(random);
                }
                b[r] = bounded_b(r) = dynamic_b(r) = number(random);
            }
            const std::vector<double> expected = by_formula(rows, b);
            const std::size_t stride = (n + 2) / 2 * 2;
            std::vector<double> augmented(n * stride, 0.0);
            for (std::size_t r = 0; r < n; ++r) {
                std::copy(rows[r].begin(), rows[r].end(), &augmented[r * stride]);
                augmented[r * stride + n] = b[r];
            }
            kzb::eliminate_augmented(augmented.data(), n, stride);
            kzb::eliminate(bounded, bounded_b);
            kzb::eliminate(dynamic, dynamic_b);
            for (std::size_t i = 0; i < n; ++i) {
                EXPECT_EQ(std::memcmp(&expected[i], &bounded_b(i), sizeof(double)), 0) << n << " " << i;
                EXPECT_EQ(std::memcmp(&expected[i], &augmented[i * stride + n], sizeof(double)), 0) << n << " " << i;
                EXPECT_EQ(std::memcmp(&expected[i], &dynamic_b(i), sizeof(double)), 0) << n << " " << i;
            }
        }
    }
}

}  // namespace
