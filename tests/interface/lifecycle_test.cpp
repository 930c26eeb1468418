// Opening and closing calculators: statuses and their order, applications, version, motor type.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "interface/model_file.h"

namespace kzb_test::lifecycle_test {
namespace {

TEST(Lifecycle, good_file_opens_and_terminates_with_zero) {
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 1e-3, 1e-3, 0.1);
    for (const int mode : {1, 2}) {
        KZB_CALC* handle = nullptr;
        EXPECT_EQ(kzbcalcInitialize(file.path().c_str(), mode, &handle), 0);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(kzbcalcCheckMotorType(handle), 10000);
        EXPECT_EQ(kzbcalcTerminate(handle), 0);
    }
}

TEST(Lifecycle, terminate_after_a_run_returns_zero) {
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 1e-3, 1e-3, 0.1);
    KZB_CALC* handle = nullptr;
    ASSERT_EQ(kzbcalcInitialize(file.path().c_str(), 1, &handle), 0);
    kzbcalcSetData(handle);
    kzbcalcExecute(handle);
    EXPECT_EQ(kzbcalcTerminate(handle), 0);
}

TEST(Lifecycle, version_is_the_calculators) {
    EXPECT_STREQ(kzbcalcVersion(), "2.0.51");
}

TEST(Lifecycle, unknown_motor_types_are_refused_with_a_handle) {
    for (const int type : {10001, 10002, 10009, 0, -1, 9999, 10013}) {
        ModelFile file;
        file.integer("control", "motor_type", type);
        KZB_CALC* handle = nullptr;
        EXPECT_EQ(kzbcalcInitialize(file.path().c_str(), 1, &handle), 180001) << type;
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(kzbcalcCheckMotorType(handle), type);
        EXPECT_EQ(kzbcalcTerminate(handle), 0);
    }
}

TEST(Lifecycle, file_without_a_motor_type_is_refused) {
    ModelFile file;
    file.number("parameter", "RU", 1.0);
    Calculator calc(file);
    EXPECT_EQ(calc.status, 180001);
}

TEST(Lifecycle, missing_file_is_told_whatever_the_mode) {
    for (const int mode : {1, 2, 3, -7}) {
        Calculator calc("/nonexistent/file.kzb", mode);
        EXPECT_EQ(calc.status, 180002);
        EXPECT_NE(static_cast<KZB_CALC*>(calc), nullptr);
        EXPECT_EQ(kzbcalcCheckMotorType(calc), 0);
    }
}

TEST(Lifecycle, null_path_counts_as_a_missing_file) {
    KZB_CALC* handle = nullptr;
    EXPECT_EQ(kzbcalcInitialize(nullptr, 1, &handle), 180002);
    EXPECT_NE(handle, nullptr);
    EXPECT_EQ(kzbcalcTerminate(handle), 0);
}

TEST(Lifecycle, null_out_is_refused) {
    EXPECT_EQ(kzbcalcInitialize("file.kzb", 1, nullptr), 180039);
}

// Without a head and without a section it reads as an empty file of the older layout, which tells no motor type.
TEST(Lifecycle, file_that_is_no_model_has_no_motor_type) {
    const auto path = std::filesystem::temp_directory_path() / ("kzb_no_model_" + std::to_string(::getpid()));
    std::ofstream(path) << "this is not a model\n";
    EXPECT_EQ(Calculator(path.string()).status, 180001);
    std::ofstream(path, std::ios::trunc).close();
    EXPECT_EQ(Calculator(path.string()).status, 180001);
    std::ofstream(path) << "*parameter\nbut no count";
    EXPECT_EQ(Calculator(path.string()).status, 180002);
    std::filesystem::remove(path);
}

TEST(Lifecycle, mode_is_tested_after_the_motor_type) {
    ModelFile good;
    rotary_frame(good, 1, 0.5);
    ModelFile refused;
    refused.integer("control", "motor_type", 10009);
    for (const int mode : {3, 0, -1}) {
        Calculator calc(good, mode);
        EXPECT_EQ(calc.status, 180030);
        EXPECT_EQ(kzbcalcCheckMotorType(calc), 10000);  // the file was read
        EXPECT_EQ(Calculator(refused, mode).status, 180001);
    }
}

TEST(Lifecycle, number_of_phases_is_refused_for_three_phase_machines) {
    ModelFile rotary;
    rotary_frame(rotary, 1, 0.5);
    ModelFile linear;
    linear_machine(linear, 1e-3, 0.0, 0.1, 0.5);
    EXPECT_EQ(kzbcalcGetNumberOfPhases(Calculator(rotary)), 180039);
    EXPECT_EQ(kzbcalcGetNumberOfPhases(Calculator(linear)), 180039);
}

TEST(Lifecycle, two_handles_are_independent) {
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 1e-3, 1e-3, 0.1);
    Calculator first(file);
    Calculator second(file);
    kzbcalcSetResistance(2.0, first);
    kzbcalcSetData(first);
    kzbcalcSetData(second);
    EXPECT_EQ(kzbcalcGetResistance(first), 2.0);
    EXPECT_EQ(kzbcalcGetResistance(second), 0.5);
}

// Which application a file's accuracy chooses shows in the magnet flux: kind 2 gives sqrt(2/3) times "d_flux" at angle
// 0, kind 0 the "mag_flux" table, kinds 1 and 3 give 0.0.
TEST(Lifecycle, accuracy_type_chooses_the_application_kind) {
    const double of_kind[] = {7.0, 0.0, std::sqrt(2.0 / 3.0) * 3.0, 0.0};
    const struct {
        int accuracy;
        int kind;
    } rows[] = {{0, 0}, {1, 2}, {2, 0}, {3, 1}, {4, 1}, {5, 3}, {6, 1}, {7, 1}, {8, 0}, {-1, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.accuracy);
        ModelFile file;
        rotary_frame(file, row.accuracy, 0.5);
        add_ld_lq(file, 1e-3, 1e-3, 3.0);
        add_simple_harmonic(file, 1e-3, 0.0, 7.0, 0.0);
        Calculator calc(file);
        ASSERT_EQ(calc.status, 0);
        kzbcalcSetData(calc);
        EXPECT_DOUBLE_EQ(kzbcalcGetMagFlux(1, calc), of_kind[row.kind]);
    }
}

// The choice of Initialize shows where kzbcalcSetData finds no application of the model's kind and so loads nothing:
// the tables that can be read afterwards are those of the first choice.
TEST(Lifecycle, harmonic_application_wins_over_simple_harmonic_and_ld_lq) {
    ModelFile file;
    rotary_frame(file, 5, 0.5);  // kind 3, which this file does not hold
    add_ld_lq(file, 1e-3, 1e-3, 3.0);
    add_simple_harmonic(file, 1e-3, 0.0, 7.0, 0.0);
    add_harmonic(file, 1e-3, 0.0, 9.0, 0.0);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    kzbcalcSetData(calc);
    ASSERT_EQ(kzbcalcSetAccuracyType(1, calc), 0);
    kzbcalcExecute(calc);
    // Table "current_flux" at its first corner: 9 Vs in phase u at angle 0.
    EXPECT_DOUBLE_EQ(kzbcalcGetCoilFlux(1, calc), 9.0);
}

double d_inductance_after_choice(ModelFile& file) {
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetAccuracyType(0, calc), 0);
    kzbcalcExecute(calc);
    return kzbcalcGetDAxisInductance(calc);
}

TEST(Lifecycle, simple_harmonic_application_wins_over_ld_lq) {
    ModelFile both;
    rotary_frame(both, 4, 0.5);  // kind 1, which these files do not hold
    add_ld_lq(both, 1e-3, 1e-3, 3.0);
    add_simple_harmonic(both, 1e-3, 0.0, 7.0, 0.0);
    ModelFile one;
    rotary_frame(one, 4, 0.5);
    add_ld_lq(one, 1e-3, 1e-3, 3.0);
    EXPECT_NE(d_inductance_after_choice(both), 1e-3);
    EXPECT_DOUBLE_EQ(d_inductance_after_choice(one), 1e-3);
}

TEST(Lifecycle, corrections_of_the_file_start_the_model) {
    // "coef_flux" 2 and "coef_material" 3 multiply the magnet flux of kind 2; turns 70 of 35 double it again.
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 1e-3, 1e-3, 0.1);
    file.number("control", "coef_flux", 2.0)
        .number("control", "coef_material", 3.0)
        .number("control", "turns_in_coil", 35.0)
        .number("control", "turns_coil1", 70.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_DOUBLE_EQ(kzbcalcGetMagFlux(1, calc), std::sqrt(2.0 / 3.0) * 0.1 * 12.0);
}

TEST(Lifecycle, temperatures_of_the_file_start_the_model) {
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    file.number("control", "base_coil_temperature", 300.0)
        .number("control", "coef_coil_temperature", 4000.0)
        .number("control", "base_magnet_temperature", 310.0)
        .number("control", "coef_magnet_temperature", -0.2);
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperature(calc), 300.0);
    EXPECT_EQ(kzbcalcGetCoilTemperatureCorrectionCoefficient(calc), 4000.0);
    EXPECT_EQ(kzbcalcGetMagnetBaseTemperature(calc), 310.0);
    EXPECT_EQ(kzbcalcGetMagFluxTemperatureCorrectionCoefficient(calc), -0.2);
}

TEST(Lifecycle, file_without_temperatures_starts_from_the_defaults) {
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperature(calc), 293.15);
    EXPECT_EQ(kzbcalcGetCoilTemperature(calc), 293.15);
    EXPECT_EQ(kzbcalcGetCoilTemperatureCorrectionCoefficient(calc), 3810.0);
    EXPECT_EQ(kzbcalcGetMagnetBaseTemperature(calc), 293.15);
    EXPECT_EQ(kzbcalcGetMagFluxTemperatureCorrectionCoefficient(calc), -0.11);
}

}  // namespace
}  // namespace kzb_test::lifecycle_test
