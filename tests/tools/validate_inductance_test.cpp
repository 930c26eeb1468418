// kzb validate: inductances that no set of coils has.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "store/store.h"
#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;

constexpr const char* harmonic = "harmonic_inductance";

void write_matrix_change(const Folder& folder, void (*fill)(KZB_STORE*), std::vector<std::vector<int>> places,
                         double value) {
    write_model(folder / "m.kzb", [&](KZB_STORE* store) {
        fill(store);
        for (const auto& place : places) {
            kzb_set_table_value(harmonic, "inductance", place.data(), value, store);
        }
    });
}

// Largest element: 2/3 * 2 mH + 1/3 mH = 1.6667 mH; a tenth of it is the tolerance of symmetry. Component 5 is row 2,
// column 1, whose partner is component 7.
TEST(ValidateInductance, a_matrix_that_is_not_symmetric_is_told) {
    const Folder folder;
    const double kept = phase_inductance(30.0, 2, 1);
    write_matrix_change(folder, fill_harmonic, {{1, 2, 2, 5}}, kept + 0.15e-3);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write_matrix_change(folder, fill_harmonic, {{1, 2, 2, 5}}, kept + 0.18e-3);
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning inductance-symmetry harmonic_inductance/inductance value [1, 2, 2, 5]");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("at value [1, 2, 2, 7]"));
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("1 of 351 matrices"));  // 3 * 9 * 13
}

// A mutual inductance of 5 mH between two coils of less than 2 mH each, the same in both directions.
TEST(ValidateInductance, a_matrix_with_a_negative_direction_is_told) {
    const Folder folder;
    write_matrix_change(folder, fill_harmonic, {{0, 1, 4, 1}, {0, 1, 4, 3}}, 5e-3);
    EXPECT_EQ(told(only_finding(folder)),
              "warning inductance-indefinite harmonic_inductance/inductance value [0, 1, 4, 0]");
}

TEST(ValidateInductance, a_negative_self_inductance_is_told_with_its_place) {
    const Folder folder;
    write_matrix_change(folder, fill_harmonic, {{2, 1, 4, 4}}, -1e-3);
    const auto findings = findings_of(folder);
    ASSERT_EQ(findings.size(), 2u) << findings.dump(2);  // the matrix is not semidefinite then, either
    EXPECT_EQ(told(findings[0]), "warning inductance-negative harmonic_inductance/inductance value [2, 1, 4, 4]");
    EXPECT_EQ(findings[1]["check"], "inductance-indefinite");
}

// Without zero-sequence inductance the matrix has an eigenvalue of exactly zero, and rounding puts it on either side.
TEST(ValidateInductance, a_semidefinite_matrix_is_in_order) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        KZB_TABLE& table = *find_table(*store, harmonic, "inductance");
        for (std::size_t i = 0; i < table.values.size(); ++i) {
            table.values[i] -= 1e-3 / 3.0;
        }
    });
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
}

// Component 3 of a wound-field machine is row 3, column 0: the field coil and phase U.
TEST(ValidateInductance, the_field_coil_of_a_wound_field_machine_counts) {
    const Folder folder;
    write_matrix_change(folder, fill_wound_field, {{1, 2, 0, 2, 3}}, 0.03);
    EXPECT_EQ(told(findings_of(folder)[0]),
              "warning inductance-symmetry harmonic_inductance/inductance value [1, 2, 0, 2, 3]");
}

TEST(ValidateInductance, single_inductances_are_not_negative) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        const int place[] = {1, 1};
        kzb_set_table_value("dq_inductance", "q_inductance", place, -1e-3, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "warning inductance-negative dq_inductance/q_inductance value [1, 1]");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_simple(store);
        const int place[] = {0, 3, 8};
        kzb_set_table_value("inductance", "inductance", place, -1e-4, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "warning inductance-negative inductance/inductance value [0, 3, 8]");
}

TEST(ValidateInductance, an_induction_machine_keeps_a_leakage) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_induction(store);
        const int place[] = {1, 0};
        kzb_set_table_value("InductionParam_HigherAccuracy", "L22_table", place, 0.0, store);
    });
    EXPECT_EQ(told(findings_of(folder)[0]),
              "error inductance-negative InductionParam_HigherAccuracy/L22_table value [1, 0]");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_induction(store);
        const int place[] = {0, 1};
        kzb_set_table_value("InductionParam_HigherAccuracy", "M12_table", place, 0.07, store);  // 0.07 * 0.04 > 0.05^2
    });
    EXPECT_EQ(told(only_finding(folder)),
              "error inductance-indefinite InductionParam_HigherAccuracy/M12_table value [0, 1]");
}

}  // namespace
}  // namespace kzb::test
