// Iron loss, user copper loss, and the supply that they depend on, for permanent-magnet machines.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <string>

#include "interface/model_file.h"

namespace kzb_test::loss_options_test {
namespace {

struct Rotary : ModelFile {
    explicit Rotary(int accuracy = 1) {
        rotary_frame(*this, accuracy, 0.5);
        add_ld_lq(*this, 2e-3, 2e-3, 0.1);
    }
};

struct LossFile : Rotary {
    explicit LossFile(double loss) {
        const Point rpm{0.0, 1e6}, volts{0.0, 1000.0}, hertz{0.0, 1e5};
        table("loss_table", "iron_loss", {currents, betas, rpm, volts, hertz}, constant(loss));
    }
};

TEST(LossOptions, iron_loss_needs_loss_data) {
    Rotary without;
    Calculator calc(without);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180040);
    for (const char* const category : {"hysloss", "eddyloss"}) {
        Rotary with;
        with.integer(category, "numMat", 0);
        Calculator other(with);
        EXPECT_EQ(kzbcalcCheckIronloss(other), 1);
        EXPECT_EQ(kzbcalcSetIronlossCalc(other), 0);
    }
    LossFile table(1.0);
    Calculator with_table(table);
    EXPECT_EQ(kzbcalcCheckIronloss(with_table), 1);
    EXPECT_EQ(kzbcalcSetIronlossCalc(with_table), 0);
}

TEST(LossOptions, category_of_the_loss_table_alone_is_no_loss_data) {
    Rotary file;
    file.integer("loss_table", "other", 1);
    Calculator calc(file);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180040);
}

TEST(LossOptions, iron_loss_of_a_table_is_reported_whole) {
    // Voltage driven at rest: the loss is reported, without speed it takes no torque.
    LossFile file(100.0);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 100.0);
    EXPECT_EQ(kzbcalcGetEddyloss(calc), 0.0);
    EXPECT_EQ(kzbcalcGetHysteresisloss(calc), 0.0);
    EXPECT_EQ(kzbcalcGetTorque(calc), 0.0);
}

TEST(LossOptions, iron_loss_of_materials_is_reported_in_two_parts) {
    const Point rpm{0.0, 1e6};
    Rotary file;
    file.integer("hysloss", "numMat", 1).integer("hysloss", "matID1", 7).integer("eddyloss", "numMat", 1);
    file.table("hysloss", "hysloss7", {rpm, betas, currents}, constant(30.0))
        .table("eddyloss", "eddyloss7", {rpm, betas, currents}, constant(12.0));
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetEddyloss(calc), 12.0);
    EXPECT_EQ(kzbcalcGetHysteresisloss(calc), 30.0);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 42.0);
}

TEST(LossOptions, iron_loss_is_off_without_its_call) {
    LossFile file(100.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);
}

TEST(LossOptions, supply_can_be_set_while_iron_loss_is_on) {
    // The loss table is V + f: 300 + 4000.
    LossFile file(0.0);
    const Point rpm{0.0, 1e6}, volts{0.0, 1000.0}, hertz{0.0, 1e5};
    file.table("loss_table", "iron_loss", {currents, betas, rpm, volts, hertz},
               [](const Point& x) { return x[3] + x[4]; });
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);  // not yet bound
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 0);
    EXPECT_EQ(kzbcalcSetCarrierFrequency(4000.0, calc), 0);
    kzbcalcExecute(calc);
    EXPECT_NEAR(kzbcalcGetIronloss(calc), 4300.0, 1e-9);
}

TEST(LossOptions, losses_switched_on_after_binding_wait_for_the_next_binding) {
    LossFile file(100.0);
    const Point rpm{0.0, 1e6}, volts{0.0, 1000.0}, hertz{0.0, 1e5};
    file.table("equivalent_resistance_table", "copper_loss", {currents, betas, rpm, volts, hertz}, constant(0.25));
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), 0);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    EXPECT_EQ(kzbcalcGetResistance(calc), 0.5);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 100.0);
    EXPECT_EQ(kzbcalcGetResistance(calc), 0.75);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 0);
}

TEST(LossOptions, supply_is_not_in_use_with_losses_by_material) {
    // Iron loss is on, but from tables that know no supply.
    Rotary file;
    file.integer("hysloss", "numMat", 0);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);
    EXPECT_EQ(kzbcalcSetCarrierFrequency(300.0, calc), 180064);
}

TEST(LossOptions, environment_chooses_the_older_iron_loss) {
    // The older formula does not know the loss table, so that table alone switches nothing on.
    LossFile file(100.0);
    for (const char* const value : {"1", "0", "2", "", "x"}) {
        SCOPED_TRACE(value);
        ASSERT_EQ(::setenv("DORN_KZ_USE_OLD_IRONLOSS", value, 1), 0);
        Calculator calc(file);
        EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
        ::unsetenv("DORN_KZ_USE_OLD_IRONLOSS");
        kzbcalcSetData(calc);
        const bool old = std::string(value) == "1";
        EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), old ? 180064 : 0);
        kzbcalcExecute(calc);
        EXPECT_EQ(kzbcalcGetIronloss(calc), old ? 0.0 : 100.0);
    }
}

struct CopperFile : Rotary {
    CopperFile() {
        const Point rpm{0.0, 1e6}, volts{0.0, 1000.0}, hertz{0.0, 1e5};
        table("equivalent_resistance_table", "copper_loss", {currents, betas, rpm, volts, hertz}, constant(0.25));
    }
};

TEST(LossOptions, user_copper_loss_needs_its_table) {
    Rotary without;
    Calculator calc(without);
    EXPECT_EQ(kzbcalcCheckUserCopperloss(calc), 0);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), 180065);
    CopperFile with;
    Calculator other(with);
    EXPECT_EQ(kzbcalcCheckUserCopperloss(other), 1);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(other), 0);
}

TEST(LossOptions, user_copper_loss_adds_to_the_resistance) {
    // 0.25 Ohm at an accepted amplitude of 4 A: 0.25 * 3 * 16 * 0.5 = 6 W; resistance 0.5 + 0.25.
    CopperFile file;
    for (const bool on : {true, false}) {
        Calculator calc(file, 2);
        if (on) {
            ASSERT_EQ(kzbcalcSetUserCopperlossCalc(calc), 0);
        }
        kzbcalcSetData(calc);
        EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), on ? 0 : 180064);
        EXPECT_EQ(kzbcalcSetCarrierFrequency(300.0, calc), on ? 0 : 180064);
        for (int sample = 0; sample < 3; ++sample) {  // the first one keeps no amplitude
            kzbcalcSetCurrent(1, 4.0, calc);
            kzbcalcSetCurrent(2, -2.0, calc);
            kzbcalcSetCurrent(3, -2.0, calc);
            kzbcalcGetTorque(calc);
            kzbcalcUpdate(calc);
        }
        EXPECT_NEAR(kzbcalcGetUserCopperLoss(calc), on ? 6.0 : 0.0, 1e-12);
        EXPECT_NEAR(kzbcalcGetResistance(calc), on ? 0.75 : 0.5, 1e-15);
    }
}

}  // namespace
}  // namespace kzb_test::loss_options_test
