// Initial positions and currents of a generic model as arrays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface/generic_arrays.h"

namespace kzb_test::generic_initial_arrays_test {
namespace {

using testing::Each;
using testing::ElementsAre;

class GenericInitialValues : public GenericArrays {
  protected:
    struct Counts {
        int rotary = 1, linear = 1, coils = 2, resistors = 3, inductors = 1, capacitors = 1;
    };
    int set_initial(const Counts& counts) {
        const double rotary[] = {30.0, 31.0, 32.0};
        const double linear[] = {0.5, 0.75, 0.8};
        const double coils[] = {1.5, 1.6, 1.7};
        const double resistors[] = {2.5, 2.6, 2.7};
        const double inductors[] = {3.5};
        const double capacitors[] = {4.5};
        return kzbcalcSetInitialValuesForGenericModel(rotary, counts.rotary, linear, counts.linear, coils, counts.coils,
                                                      resistors, counts.resistors, inductors, counts.inductors,
                                                      capacitors, counts.capacitors, calc_);
    }
    std::vector<double> currents() {
        return {kzbcalcGetCoilCurrentForGenericModel(1, calc_),     kzbcalcGetCoilCurrentForGenericModel(2, calc_),
                kzbcalcGetResistorCurrentForGenericModel(1, calc_), kzbcalcGetResistorCurrentForGenericModel(2, calc_),
                kzbcalcGetResistorCurrentForGenericModel(3, calc_), kzbcalcGetInductorCurrentForGenericModel(1, calc_),
                kzbcalcGetCapacitorCurrentForGenericModel(1, calc_)};
    }
    // Positions as the tables see them, in degrees and the linear unit.
    std::vector<double> positions() {
        kzbcalcSetData(calc_);
        sample(0.0, {0.0, 0.0, 300.0, 300.0, 0.0, 0.0});
        return {(kzbcalcGetForceForGenericModel(1, calc_) - 3.0 * kzbcalcGetCoilCurrentForGenericModel(1, calc_)) / 0.5,
                (kzbcalcGetForceForGenericModel(2, calc_) - kzbcalcGetCoilCurrentForGenericModel(2, calc_)) / 10.0};
    }
};

TEST_F(GenericInitialValues, positions_and_currents_reach_their_components) {
    EXPECT_EQ(set_initial({}), 0);
    EXPECT_THAT(currents(), ElementsAre(1.5, 1.6, 2.5, 2.6, 2.7, 3.5, 4.5));
    const std::vector<double> at = positions();
    EXPECT_NEAR(at[0], 30.0, 1e-9);
    EXPECT_NEAR(at[1], 0.5, 1e-9);
}

TEST_F(GenericInitialValues, counts_too_large_set_nothing) {
    for (const Counts& counts : {Counts{2, 1},
                                 {1, 2},
                                 {3, 0},
                                 {0, 3},
                                 {most, most},
                                 {1, 1, 3},
                                 {1, 1, 2, 4},
                                 {1, 1, 2, 3, 2},
                                 {1, 1, 2, 3, 1, 2},
                                 {1, 1, most}}) {
        EXPECT_EQ(set_initial(counts), 180062);
    }
    EXPECT_THAT(currents(), Each(0.0));
    const std::vector<double> at = positions();
    EXPECT_NEAR(at[0], 0.0, 1e-12);
    EXPECT_NEAR(at[1], 0.0, 1e-12);
}

TEST_F(GenericInitialValues, each_kind_of_motion_takes_from_its_own_array) {
    EXPECT_EQ(set_initial({0, 2, 0, 0, 0, 0}), 0);
    std::vector<double> at = positions();
    EXPECT_NEAR(at[0], 0.0, 1e-12);
    EXPECT_NEAR(at[1], 0.5, 1e-9);
    EXPECT_THAT(currents(), Each(0.0));
    EXPECT_EQ(set_initial({1, 0, -1, 1, 0, least}), 0);
    at = positions();
    EXPECT_NEAR(at[0], 30.0, 1e-9);
    EXPECT_NEAR(at[1], 0.5, 1e-9);  // as before
    EXPECT_EQ(kzbcalcSetInitialValuesForGenericModel(nullptr, 1, nullptr, 1, nullptr, 2, nullptr, 3, nullptr, 1,
                                                     nullptr, 1, calc_),
              0);
    EXPECT_NEAR(positions()[0], 30.0, 1e-9);
}

}  // namespace
}  // namespace kzb_test::generic_initial_arrays_test
