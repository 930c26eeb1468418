// Corrections and temperature data of a generic model as arrays: which counts are refused, what is set and in which
// order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "interface/generic_arrays.h"

namespace kzb_test::generic_correction_arrays_test {
namespace {

using testing::ElementsAre;

class GenericCorrections : public GenericArrays {
  protected:
    struct Counts {
        int flux = 2, force = 2, user = 2, turns = 2, base = 2, coefficient = 2;
    };
    int set_corrections(const Counts& counts) {
        return kzbcalcSetCorrectionFactorsForGenericModel(flux_, counts.flux, force_, counts.force, user_, counts.user,
                                                          turns_, counts.turns, base_, counts.base, coefficient_,
                                                          counts.coefficient, calc_);
    }
    std::vector<double> factors() {
        std::vector<double> all;
        for (const auto get :
             {kzbcalcGetCorrectionOfFluxForGenericModel, kzbcalcGetCorrectionOfForceForGenericModel,
              kzbcalcGetCorrectionOfCoilTurn2ForGenericModel, kzbcalcGetCoilBaseTemperatureForGenericModel,
              kzbcalcGetCoilTemperatureCorrectionCoefficientForGenericModel}) {
            all.push_back(get(1, calc_));
            all.push_back(get(2, calc_));
        }
        return all;
    }

    double flux_[2] = {1.5, 1.6};
    double force_[2] = {2.5, 2.6};
    double user_[2] = {3.5, 3.6};
    double turns_[2] = {4.5, 4.6};
    double base_[2] = {305.0, 306.0};
    double coefficient_[2] = {500.0, 600.0};
};

TEST_F(GenericCorrections, nothing_is_set_nor_refused_unless_asked_for) {
    EXPECT_EQ(set_corrections({}), 0);
    EXPECT_EQ(set_corrections({3, 3, 3, 3, 3, 3}), 0);
    EXPECT_THAT(factors(), ElementsAre(1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 293.15, 293.15, 1000.0, 1000.0));
}

TEST_F(GenericCorrections, factors_alone) {
    choose(0, 0, 1, 0);
    EXPECT_EQ(set_corrections({2, 2, 2, 2, 99, 99}), 0);
    EXPECT_THAT(factors(), ElementsAre(1.5, 1.6, 2.5, 2.6, 4.5, 4.6, 293.15, 293.15, 1000.0, 1000.0));
}

TEST_F(GenericCorrections, temperature_data_alone) {
    choose(0, 0, 0, 1);
    EXPECT_EQ(set_corrections({99, 99, 99, 99, 2, 2}), 0);
    EXPECT_THAT(factors(), ElementsAre(1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 305.0, 306.0, 500.0, 600.0));
}

TEST_F(GenericCorrections, counts_too_large_stop_at_their_group) {
    choose(0, 0, 1, 1);
    EXPECT_EQ(set_corrections({2, 3, 2, 2, 2, 2}), 180062);
    EXPECT_THAT(factors(), ElementsAre(1.0, 1.0, 1.0, 1.0, 1.0, 1.0, 293.15, 293.15, 1000.0, 1000.0));
    for (const Counts& counts : {Counts{2, 2, 3, 2, 2, 2}, {3, 2, 2, 2, 2, 2}, {2, 2, 2, most, 2, 2}}) {
        EXPECT_EQ(set_corrections(counts), 180062);
        EXPECT_THAT(factors(), ElementsAre(1.0, 1.0, 2.5, 2.6, 1.0, 1.0, 293.15, 293.15, 1000.0, 1000.0));
    }
    for (const Counts& counts : {Counts{2, 2, 2, 2, 3, 2}, {2, 2, 2, 2, 2, 3}}) {
        EXPECT_EQ(set_corrections(counts), 180062);
        EXPECT_THAT(factors(), ElementsAre(1.5, 1.6, 2.5, 2.6, 4.5, 4.6, 293.15, 293.15, 1000.0, 1000.0));
    }
}

TEST_F(GenericCorrections, shorter_and_null_arrays_end_early) {
    choose(0, 0, 1, 1);
    EXPECT_EQ(set_corrections({1, 1, 1, 0, 1, -1}), 0);
    EXPECT_THAT(factors(), ElementsAre(1.5, 1.0, 2.5, 1.0, 1.0, 1.0, 305.0, 293.15, 1000.0, 1000.0));
    EXPECT_EQ(kzbcalcSetCorrectionFactorsForGenericModel(nullptr, 2, nullptr, 2, nullptr, 2, nullptr, 2, nullptr, 2,
                                                         nullptr, 2, calc_),
              0);
    EXPECT_THAT(factors(), ElementsAre(1.5, 1.0, 2.5, 1.0, 1.0, 1.0, 305.0, 293.15, 1000.0, 1000.0));
}

// Those of the forces are taken as they are.
TEST_F(GenericCorrections, factors_of_0_and_below_are_passed_over_but_for_the_forces) {
    choose(0, 0, 1, 1);
    flux_[0] = 0.0;
    flux_[1] = -1.0;
    force_[0] = 0.0;
    force_[1] = -2.0;
    turns_[0] = -4.0;
    base_[0] = -1.0;
    coefficient_[1] = -1.0;
    EXPECT_EQ(set_corrections({}), 0);
    EXPECT_THAT(factors(), ElementsAre(1.0, 1.0, 0.0, -2.0, 1.0, 4.6, 293.15, 306.0, 500.0, 1000.0));
}

// One user input, two user-specified values: the second factor isn't taken, as established.
TEST_F(GenericCorrections, user_factors_reach_as_far_as_there_are_user_inputs) {
    choose(0, 0, 1, 0);
    EXPECT_EQ(kzbcalcGetNumberOfUserInputParameters(calc_), 1);
    EXPECT_EQ(set_corrections({}), 0);
    kzbcalcSetData(calc_);
    sample(0.0, {0.0, 0.0, 300.0, 300.0, 0.0, 0.0});
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(1, calc_), 3.5 * 7.0, 1e-9);
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(2, calc_), 100.0, 1e-9);
    // The single call sets it.
    EXPECT_EQ(kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(2, 3.6, calc_), 0);
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(2, calc_), 360.0, 1e-9);
    user_[0] = 0.0;
    EXPECT_EQ(set_corrections({}), 0);
    EXPECT_NEAR(kzbcalcGetUserSpecifiedParameter(1, calc_), 3.5 * 7.0, 1e-9);
}

}  // namespace
}  // namespace kzb_test::generic_correction_arrays_test
