// Inductance tables: matrices of coupled coils are symmetric and positive semidefinite, single inductances not
// negative.
//
// The matrix of incremental inductances is the second derivative of the coenergy, so it is symmetric; a direction of
// current with a negative inductance would give energy away. Tables hold the matrix by columns along their last axis.
#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "fmt/format.h"
#include "kzb/application_tables.h"
#include "kzb/sound_table.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

// Of the largest element of the table; what field computation and resampling leave.
constexpr double symmetry_tolerance = 0.10;
constexpr double definite_tolerance = 0.01;

constexpr std::size_t most_coils = 5;
using Matrix = std::array<double, most_coils * most_coils>;

// True when S + shift I has a Cholesky factor, S the symmetric part of the n x n matrix at `columns`: every eigenvalue
// of S then lies above -shift.
bool is_positive(const double* columns, std::size_t n, double shift) {
    Matrix factor{};
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = 0.5 * (columns[i * n + j] + columns[j * n + i]) + (i == j ? shift : 0.0);
            for (std::size_t k = 0; k < j; ++k) {
                sum -= factor[i * n + k] * factor[j * n + k];
            }
            if (i != j) {
                factor[i * n + j] = sum / factor[j * n + j];
            } else if (sum > 0.0) {
                factor[i * n + i] = std::sqrt(sum);
            } else {
                return false;
            }
        }
    }
    return true;
}

// Elements on the diagonal of every matrix, all elements where n is 1.
void check_diagonal(const KZB_TABLE& table, const char* category, std::size_t n, double tolerance, Findings& findings) {
    std::size_t negative = 0;
    std::size_t worst = 0;
    double lowest = 0.0;
    for (std::size_t matrix = 0; matrix + n * n <= table.values.size(); matrix += n * n) {
        for (std::size_t k = 0; k < n; ++k) {
            const std::size_t at = matrix + k * (n + 1);
            if (table.values[at] < -tolerance) {
                ++negative;
                if (table.values[at] < lowest) {
                    lowest = table.values[at];
                    worst = at;
                }
            }
        }
    }
    if (negative > 0) {
        findings.warning(
            "inductance-negative", {category, table.keyword, value_place(table, worst)},
            fmt::format("{:.6g} H, expected no negative self inductance ({} values are)", lowest, negative));
    }
}

void check_symmetry(const KZB_TABLE& table, const char* category, std::size_t n, double largest, Findings& findings) {
    std::size_t off = 0;
    std::size_t worst = 0;
    std::size_t partner = 0;
    double worst_gap = 0.0;
    for (std::size_t matrix = 0; matrix + n * n <= table.values.size(); matrix += n * n) {
        bool symmetric = true;
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                const std::size_t a = matrix + j * n + i;
                const std::size_t b = matrix + i * n + j;
                const double gap = std::abs(table.values[a] - table.values[b]);
                symmetric = symmetric && gap <= symmetry_tolerance * largest;
                if (gap > worst_gap) {
                    worst_gap = gap;
                    worst = a;
                    partner = b;
                }
            }
        }
        off += symmetric ? 0 : 1;
    }
    if (off > 0) {
        findings.warning("inductance-symmetry", {category, table.keyword, value_place(table, worst)},
                         fmt::format("{:.6g} H, but {:.6g} H at {}; expected the same within {:g} % of the largest, "
                                     "{:.6g} H ({} of {} matrices are not symmetric)",
                                     table.values[worst], table.values[partner], value_place(table, partner),
                                     100.0 * symmetry_tolerance, largest, off, table.values.size() / (n * n)));
    }
}

void check_definite(const KZB_TABLE& table, const char* category, std::size_t n, double largest, Findings& findings) {
    std::size_t off = 0;
    std::size_t first = 0;
    for (std::size_t matrix = 0; matrix + n * n <= table.values.size(); matrix += n * n) {
        if (largest > 0.0 && !is_positive(table.values.data() + matrix, n, definite_tolerance * largest)) {
            first = off == 0 ? matrix : first;
            ++off;
        }
    }
    if (off > 0) {
        findings.warning("inductance-indefinite", {category, table.keyword, value_place(table, first)},
                         fmt::format("the matrix that begins here gives some direction of current an inductance below "
                                     "-{:g} % of the largest, {:.6g} H; expected none ({} of {} matrices)",
                                     100.0 * definite_tolerance, largest, off, table.values.size() / (n * n)));
    }
}

void check_table(const KZB_STORE& store, const TableUse& use, Findings& findings) {
    const KZB_TABLE* table = sound_table(store, use.category, use.key);
    const Layout* layout = table == nullptr ? nullptr : layout_of(use, table->dim);
    if (layout == nullptr) {
        return;
    }
    const double largest = largest_magnitude(*table);
    if (layout->components == 0) {
        check_diagonal(*table, use.category, 1, definite_tolerance * largest, findings);
        return;
    }
    const auto n = static_cast<std::size_t>(std::lround(std::sqrt(layout->components)));
    if (table->sizes.back() != layout->components || n > most_coils) {
        return;
    }
    check_diagonal(*table, use.category, n, definite_tolerance * largest, findings);
    // Other tables than this one hold secants, or a row for each coil's own current.
    if (std::string_view(use.category) == "harmonic_inductance") {
        check_symmetry(*table, use.category, n, largest, findings);
        check_definite(*table, use.category, n, largest, findings);
    }
}

// The model divides by L11, L22 and by the leakage 1 - M12 M21 / (L11 L22).
void check_induction(const KZB_STORE& store, Findings& findings) {
    constexpr const char* category = "InductionParam_HigherAccuracy";
    for (const char* key : {"L11_table", "L22_table"}) {
        const KZB_TABLE* table = sound_table(store, category, key);
        const double* const values = table == nullptr ? nullptr : table->values.data();
        for (std::size_t i = 0; values != nullptr && i < table->values.size(); ++i) {
            if (!(values[i] > 0.0)) {
                findings.error("inductance-negative", {category, key, value_place(*table, i)},
                               fmt::format("{:.6g} H, expected an inductance above 0", values[i]));
                return;
            }
        }
    }
    std::array<const KZB_TABLE*, 4> tables{};
    constexpr std::array<const char*, 4> keys = {"L11_table", "L22_table", "M12_table", "M21_table"};
    for (std::size_t k = 0; k < keys.size(); ++k) {
        tables[k] = sound_table(store, category, keys[k]);
        if (tables[k] == nullptr || tables[k]->sizes != tables[0]->sizes) {
            return;
        }
    }
    const auto value = [&](std::size_t k, std::size_t i) { return tables[k]->values[i]; };
    for (std::size_t i = 0; i < tables[0]->values.size(); ++i) {
        const double self = value(0, i) * value(1, i);
        const double mutual = value(2, i) * value(3, i);
        if (mutual >= self) {
            findings.error("inductance-indefinite", {category, "M12_table", value_place(*tables[0], i)},
                           fmt::format("M12 M21 = {:.6g} H^2, expected less than L11 L22 = {:.6g} H^2", mutual, self));
            return;
        }
    }
}

}  // namespace

void check_inductance(const Examined& model, Findings& findings) {
    for (const ApplicationTables* application : applications_of(model.motor_type)) {
        if (!has_application(model.store, application->motor, application->word)) {
            continue;
        }
        for (const TableUse& use : application->tables) {
            if (std::string_view(use.key).find("inductance") != std::string_view::npos) {
                check_table(model.store, use, findings);
            }
        }
    }
    if (model.motor_type == 10006) {
        check_induction(model.store, findings);
    }
}

}  // namespace kzb::tool
