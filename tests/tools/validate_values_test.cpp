// kzb validate: values and parameters that are no usable numbers, and parameters that no machine has.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "store/store.h"
#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;

TEST(ValidateValues, values_that_are_no_numbers_are_counted_with_the_first_place) {
    const Folder folder;
    write_changed(folder, fill_harmonic, [](KZB_STORE* store) {
        const int places[][3] = {{2, 1, 0}, {1, 3, 2}, {4, 0, 0}};
        const double values[] = {std::nan(""), -INFINITY, std::numeric_limits<double>::max()};
        for (int k = 0; k < 3; ++k) {
            kzb_set_table_value("harmonic_torque", "torque_ibeta", places[k], values[k], store);
        }
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error value-not-finite harmonic_torque/torque_ibeta value [1, 3, 2]");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("3 of 351 values"));  // 9 * 13 * 3
}

TEST(ValidateValues, a_parameter_that_is_no_number_is_told) {
    const Folder folder;
    write_changed(folder, fill_harmonic,
                  [](KZB_STORE* store) { kzb_put_double("information", "inertia", std::nan(""), store); });
    EXPECT_EQ(told(only_finding(folder)), "error parameter-not-finite information/inertia");
}

TEST(ValidateParameters, a_motor_type_that_is_absent_of_another_kind_or_unknown_is_told) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_int("parameter", "n", 1, store); });
    EXPECT_EQ(told(only_finding(folder)), "error motor-type control/motor_type");
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_double("control", "motor_type", 10000.0, store); });
    EXPECT_THAT(only_finding(folder)["message"].get<std::string>(), HasSubstr("stands as another kind"));
    for (const int type : {10009, 10001, 0, -1}) {
        write_model(folder / "m.kzb", [type](KZB_STORE* store) { kzb_put_int("control", "motor_type", type, store); });
        EXPECT_EQ(told(only_finding(folder)), "error motor-type control/motor_type") << type;
    }
}

TEST(ValidateParameters, poles_are_even_and_from_two) {
    const Folder folder;
    for (const auto& [poles, severity] : {std::pair{0, "error"}, std::pair{-4, "error"}, std::pair{1, "error"}}) {
        write_changed(folder, fill_ldlq,
                      [p = poles](KZB_STORE* store) { kzb_put_int("control", "number_of_poles", p, store); });
        EXPECT_EQ(told(only_finding(folder)), std::string(severity) + " poles control/number_of_poles") << poles;
    }
    write_changed(folder, fill_ldlq, [](KZB_STORE* store) { kzb_put_int("control", "number_of_poles", 7, store); });
    EXPECT_EQ(told(only_finding(folder)), "warning poles control/number_of_poles");
}

TEST(ValidateParameters, poles_of_another_kind_are_read_as_none) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        kzb_put_int("control", "motor_type", 10006, store);
        kzb_put_double("control", "number_of_poles", 4.0, store);
        kzb_put_double("InductionParam", "R1", 0.2, store);
        kzb_put_double("parameter", "RU", 0.2, store);
        kzb_put_double("InductionParam", "R2", 0.2, store);
        kzb_put_double("InductionParam", "X1", 0.2, store);
        kzb_put_double("InductionParam", "X2", 0.2, store);
        kzb_put_double("InductionParam", "b0", 0.05, store);
        kzb_put_double("information", "rated_freqency", 50.0, store);
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error poles control/number_of_poles");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("stands as another kind"));
}

TEST(ValidateParameters, a_resistance_below_zero_is_an_error_and_an_absent_one_a_warning) {
    const Folder folder;
    write_changed(folder, fill_wound_field, [](KZB_STORE* store) { kzb_put_double("parameter", "RF", -0.1, store); });
    EXPECT_EQ(told(only_finding(folder)), "error resistance parameter/RF");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_induction(store);
        kzb_put_double("InductionParam", "R1", -0.1, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "error resistance InductionParam/R1");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_simple(store);
        find_category(*store, "parameter")->doubles.erase("RU");
    });
    EXPECT_EQ(told(only_finding(folder)), "warning resistance parameter/RU");
}

TEST(ValidateParameters, a_connection_is_star_or_delta) {
    const Folder folder;
    write_changed(folder, fill_harmonic,
                  [](KZB_STORE* store) { kzb_put_int("control", "Winding_Pattern_Flag", 2, store); });
    EXPECT_EQ(told(only_finding(folder)), "error connection control/Winding_Pattern_Flag");
}

TEST(ValidateParameters, a_wound_field_machine_tells_what_its_axes_are) {
    const Folder folder;
    write_changed(folder, fill_wound_field, [](KZB_STORE* store) { kzb_put_int("control", "current_type", 2, store); });
    const auto findings = findings_of(folder);
    ASSERT_FALSE(findings.empty());
    EXPECT_EQ(told(findings[0]), "error current-type control/current_type");
}

TEST(ValidateParameters, a_linear_machine_has_an_electrical_length) {
    const Folder folder;
    for (const double length : {0.0, -0.1}) {
        write_model(folder / "m.kzb", [length](KZB_STORE* store) {
            fill_machine(store, 10005, 0);
            kzb_put_double("control", "electrical_length", length, store);
        });
        EXPECT_EQ(told(findings_of(folder)[0]), "error electrical-length control/electrical_length") << length;
    }
}

TEST(ValidateParameters, constants_that_inductances_are_divided_by_are_above_zero) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_machine(store, 10006, 0);
        for (const char* key : {"R1", "R2", "X1", "X2"}) {
            kzb_put_double("InductionParam", key, 0.2, store);
        }
        kzb_put_double("InductionParam", "b0", 0.05, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "error circuit-constants information/rated_freqency");
}

}  // namespace
}  // namespace kzb::test
