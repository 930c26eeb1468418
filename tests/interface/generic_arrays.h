// A generic model with two sources, two coils and two motions, for tests of the calls that take whole arrays.
#pragma once

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "interface/generic_machine.h"

namespace kzb_test {

inline constexpr int most = std::numeric_limits<int>::max();
inline constexpr int least = std::numeric_limits<int>::min();

class GenericArrays : public testing::Test {
  protected:
    GenericArrays()
        : calc_((generic_machine(file_), add_generic_outputs(file_), add_generic_iron_loss(file_), file_)) {}

    // The six switches: table values kept, temperature on, corrections and temperature data applied, interpolation.
    void choose(int keep, int temperature, int corrections, int data, int set = 0, int type = 0) {
        const int values[] = {keep, temperature, corrections, data, set, type};
        ASSERT_EQ(kzbcalcSetParametersForGenericModel(values, 6, calc_), 0);
    }
    std::vector<double> resistances() {
        return {kzbcalcGetCoilResistanceForGenericModel(1, calc_), kzbcalcGetCoilResistanceForGenericModel(2, calc_),
                kzbcalcGetResistanceForGenericModel(1, calc_),     kzbcalcGetResistanceForGenericModel(2, calc_),
                kzbcalcGetResistanceForGenericModel(3, calc_),     kzbcalcGetInductanceForGenericModel(1, calc_),
                kzbcalcGetCapacitanceForGenericModel(1, calc_)};
    }
    int set_table_values(int count1, int count2, int count3, int count4, int count5) {
        const int types[] = {1, 1};
        const double coils[] = {21.0, 22.0};
        const double resistors[] = {31.0, 32.0, 33.0};
        const double inductors[] = {41.0};
        const double capacitors[] = {51.0};
        return kzbcalcSetTableValuesForGenericModel(types, count1, coils, count2, resistors, count3, inductors, count4,
                                                    capacitors, count5, calc_);
    }
    void sample(double time, const std::vector<double>& inputs) {
        kzbcalcSetTime(time, calc_);
        kzbcalcSetInputValuesForGenericModel(inputs.data(), static_cast<int>(inputs.size()), calc_);
        kzbcalcExecute(calc_);
        kzbcalcUpdate(calc_);
    }

    ModelFile file_;
    Calculator calc_;
};

}  // namespace kzb_test
