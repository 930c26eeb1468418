// The calls that configure a calculator: value tests, motor types, their order, and where the values go.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "interface/call_table.h"
#include "interface/model_file.h"

namespace {

using namespace kzb_test;

struct Rotary : ModelFile {
    explicit Rotary(int accuracy = 1) {
        rotary_frame(*this, accuracy, 0.5);
        add_ld_lq(*this, 2e-3, 2e-3, 0.1);
    }
};

struct Linear : ModelFile {
    Linear() { linear_machine(*this, 1e-3, 0.0, 0.1, 0.5); }
};

// ---- one table: call, good and bad values, what 10000 and 10005 answer to each

struct Row {
    const char* name;
    int (*set)(double, KZB_CALC*);
    std::vector<double> good;
    std::vector<double> bad;
    int rotary_good;
    int rotary_bad;
    int linear_good;
    int linear_bad;
};

#define KZB_ROW(call) #call, call

const std::vector<double> positive{1.0, 2.5, 1e-300};
const std::vector<double> zero_and_below{0.0, -0.0, -1e-300, -3.0};
const std::vector<double> from_zero{0.0, 1e-300, 293.15, 4000.0};
const std::vector<double> below_zero{-1e-300, -1.0};

const std::vector<Row> plain_rows = {
    {KZB_ROW(kzbcalcSetCorrectionOfFlux), positive, zero_and_below, 0, 180017, 0, 180017},
    {KZB_ROW(kzbcalcSetCorrectionOfFieldFlux), positive, zero_and_below, 180039, 180017, 180039, 180017},
    {KZB_ROW(kzbcalcSetCorrectionOfMagnet), positive, zero_and_below, 0, 180020, 0, 180020},
    {KZB_ROW(kzbcalcSetCorrectionOfSteel), positive, zero_and_below, 0, 180021, 0, 180021},
    {KZB_ROW(kzbcalcSetCorrectionOfInductance), positive, zero_and_below, 0, 180018, 0, 180018},
    // The type is tested after the value for the torque, before it for the force.
    {KZB_ROW(kzbcalcSetCorrectionOfTorque), positive, zero_and_below, 0, 180019, 180039, 180019},
    {KZB_ROW(kzbcalcSetCorrectionOfForce), positive, zero_and_below, 180039, 180039, 0, 180033},
    {KZB_ROW(kzbcalcSetCorrectionOfCoilTurn1), from_zero, below_zero, 0, 180016, 0, 180016},
    {KZB_ROW(kzbcalcSetCorrectionOfCoilTurn2), from_zero, below_zero, 0, 180016, 0, 180016},
    {KZB_ROW(kzbcalcSetCorrectionOfFieldCoilTurn2), from_zero, below_zero, 180039, 180016, 180039, 180016},
    {KZB_ROW(kzbcalcSetInitialTime), from_zero, below_zero, 0, 180032, 0, 180032},
    {KZB_ROW(kzbcalcSetTime), from_zero, below_zero, 0, 180032, 0, 180032},
    {KZB_ROW(kzbcalcSetInitialDisplacement), {0.0, -90.0, 1e9}, {}, 0, 0, 0, 0},
    {KZB_ROW(kzbcalcSetDisplacement), {0.0, -90.0, 1e9}, {}, 0, 0, 0, 0},
    {KZB_ROW(kzbcalcSetResistance), positive, zero_and_below, 0, 180041, 0, 180041},
    {KZB_ROW(kzbcalcSetFieldCoilResistance), positive, zero_and_below, 180039, 180041, 180039, 180041},
    {KZB_ROW(kzbcalcSetSecondaryResistance), positive, zero_and_below, 180039, 180042, 180039, 180042},
    {KZB_ROW(kzbcalcSetPWMFreq), {0.0, -1.0, 1e4}, {}, 0, 0, 0, 0},
    // No loss that depends on the supply is in use.
    {KZB_ROW(kzbcalcSetDCVoltage), {0.0, -1.0, 300.0}, {}, 180064, 0, 180039, 0},
    {KZB_ROW(kzbcalcSetCarrierFrequency), {0.0, -1.0, 1e4}, {}, 180064, 0, 180039, 0},
    {KZB_ROW(kzbcalcSetStepSize), from_zero, below_zero, 180039, 180039, 180039, 180039},
    {KZB_ROW(kzbcalcSetSlipFrequency), {0.0, -1.0, 50.0}, {}, 180039, 0, 180039, 0},
};

const std::vector<double> coefficients{-100.0, -0.11, 0.0, -0.0};
const std::vector<double> no_coefficients{-100.1, 0.1, 1e-300};

const std::vector<Row> temperature_rows = {
    {KZB_ROW(kzbcalcSetMagnetTemperature), from_zero, below_zero, 0, 180043, 0, 180043},
    {KZB_ROW(kzbcalcSetMagnetBaseTemperature), from_zero, below_zero, 0, 180043, 0, 180043},
    {KZB_ROW(kzbcalcSetMagFluxTemperatureCorrectionCoefficient), coefficients, no_coefficients, 0, 180045, 0, 180045},
    {KZB_ROW(kzbcalcSetCoilTemperature), from_zero, below_zero, 0, 180043, 0, 180043},
    {KZB_ROW(kzbcalcSetCoilBaseTemperature), from_zero, below_zero, 0, 180043, 0, 180043},
    {KZB_ROW(kzbcalcSetCoilTemperatureCorrectionCoefficient), from_zero, below_zero, 0, 180044, 0, 180044},
    {KZB_ROW(kzbcalcSetFieldCoilTemperature), from_zero, below_zero, 180039, 180043, 180039, 180043},
    {KZB_ROW(kzbcalcSetFieldCoilBaseTemperature), from_zero, below_zero, 180039, 180043, 180039, 180043},
    {KZB_ROW(kzbcalcSetFieldCoilTemperatureCorrectionCoefficient), from_zero, below_zero, 180039, 180044, 180039,
     180044},
    {KZB_ROW(kzbcalcSetSecondaryCoilTemperature), from_zero, below_zero, 180039, 180043, 180039, 180043},
    {KZB_ROW(kzbcalcSetSecondaryCoilBaseTemperature), from_zero, below_zero, 180039, 180043, 180039, 180043},
    {KZB_ROW(kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient), from_zero, below_zero, 180039, 180044, 180039,
     180044},
};

#undef KZB_ROW

void check(const std::vector<Row>& rows, KZB_CALC* rotary, KZB_CALC* linear) {
    for (const Row& row : rows) {
        for (const double value : row.good) {
            EXPECT_EQ(row.set(value, rotary), row.rotary_good) << row.name << " rotary " << value;
            EXPECT_EQ(row.set(value, linear), row.linear_good) << row.name << " linear " << value;
        }
        for (const double value : row.bad) {
            EXPECT_EQ(row.set(value, rotary), row.rotary_bad) << row.name << " rotary " << value;
            EXPECT_EQ(row.set(value, linear), row.linear_bad) << row.name << " linear " << value;
        }
    }
}

TEST(Configuration, every_setter_tests_value_and_motor_type_in_its_order) {
    Rotary rotary_file;
    Linear linear_file;
    Calculator rotary(rotary_file);
    Calculator linear(linear_file);
    check(plain_rows, rotary, linear);
}

TEST(Configuration, every_temperature_setter_tests_value_and_motor_type_in_its_order) {
    Rotary rotary_file;
    Linear linear_file;
    Calculator rotary(rotary_file);
    Calculator linear(linear_file);
    EXPECT_EQ(kzbcalcSetTemperatureCorrectionCalc(rotary), 0);
    EXPECT_EQ(kzbcalcSetTemperatureCorrectionCalc(linear), 0);
    check(temperature_rows, rotary, linear);
}

TEST(Configuration, temperature_setters_refuse_before_all_else_while_correction_is_off) {
    Rotary rotary_file;
    Linear linear_file;
    Calculator rotary(rotary_file);
    Calculator linear(linear_file);
    for (const Row& row : temperature_rows) {
        for (const double value : {1.0, -1.0, -1000.0}) {
            EXPECT_EQ(row.set(value, rotary), 180046) << row.name;
            EXPECT_EQ(row.set(value, linear), 180046) << row.name;
        }
    }
}

struct TemperatureGetter {
    const char* name;
    double (*get)(KZB_CALC*);
    int (*set)(double, KZB_CALC*);  // null: not a quantity of permanent-magnet machines
    double value;
};

const std::vector<TemperatureGetter> temperature_getters = {
    {"magnet", kzbcalcGetMagnetTemperature, kzbcalcSetMagnetTemperature, 350.0},
    {"magnet base", kzbcalcGetMagnetBaseTemperature, kzbcalcSetMagnetBaseTemperature, 351.0},
    {"magnet coefficient", kzbcalcGetMagFluxTemperatureCorrectionCoefficient,
     kzbcalcSetMagFluxTemperatureCorrectionCoefficient, -0.25},
    {"coil", kzbcalcGetCoilTemperature, kzbcalcSetCoilTemperature, 352.0},
    {"coil base", kzbcalcGetCoilBaseTemperature, kzbcalcSetCoilBaseTemperature, 353.0},
    {"coil coefficient", kzbcalcGetCoilTemperatureCorrectionCoefficient, kzbcalcSetCoilTemperatureCorrectionCoefficient,
     3900.0},
    {"field", kzbcalcGetFieldCoilTemperature, nullptr, 0.0},
    {"field base", kzbcalcGetFieldCoilBaseTemperature, nullptr, 0.0},
    {"field coefficient", kzbcalcGetFieldCoilTemperatureCorrectionCoefficient, nullptr, 0.0},
    {"secondary", kzbcalcGetSecondaryCoilTemperature, nullptr, 0.0},
    {"secondary base", kzbcalcGetSecondaryCoilBaseTemperature, nullptr, 0.0},
    {"secondary coefficient", kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient, nullptr, 0.0},
};

TEST(Configuration, temperatures_are_read_back_only_while_correction_is_on) {
    Rotary rotary_file;
    Linear linear_file;
    for (ModelFile* const file : {static_cast<ModelFile*>(&rotary_file), static_cast<ModelFile*>(&linear_file)}) {
        Calculator calc(*file);
        EXPECT_EQ(kzbcalcGetTemperatureCorrectionCalc(calc), 0);
        for (const TemperatureGetter& row : temperature_getters) {
            EXPECT_EQ(row.get(calc), 180046.0) << row.name;
        }
        EXPECT_EQ(kzbcalcSetTemperatureCorrectionCalc(calc), 0);
        EXPECT_EQ(kzbcalcGetTemperatureCorrectionCalc(calc), 1);
        for (const TemperatureGetter& row : temperature_getters) {
            if (row.set != nullptr) {
                EXPECT_EQ(row.set(row.value, calc), 0) << row.name;
            }
        }
        for (const TemperatureGetter& row : temperature_getters) {
            EXPECT_EQ(row.get(calc), row.set != nullptr ? row.value : 180039.0) << row.name;
        }
    }
}

TEST(Configuration, refused_value_changes_nothing) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetMagnetTemperature(300.0, calc);
    EXPECT_EQ(kzbcalcSetMagnetTemperature(-1.0, calc), 180043);
    EXPECT_EQ(kzbcalcGetMagnetTemperature(calc), 300.0);
    kzbcalcSetResistance(3.0, calc);
    EXPECT_EQ(kzbcalcSetResistance(0.0, calc), 180041);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetResistance(calc), 3.0);
}

// ---- calls of other machines

TEST(Configuration, calls_of_other_machines_are_refused) {
    Rotary rotary_file;
    Linear linear_file;
    for (ModelFile* const file : {static_cast<ModelFile*>(&rotary_file), static_cast<ModelFile*>(&linear_file)}) {
        Calculator calc(*file);
        EXPECT_EQ(kzbcalcCheckInductionMotorInductanceType(calc), 180039);
        EXPECT_EQ(kzbcalcGetNumberOfUserInputParameters(calc), 180039);
        EXPECT_EQ(kzbcalcSetUserInputParameter(1, 1.0, calc), 180039);
        for (double (*const get)(KZB_CALC*) :
             {kzbcalcGetSlipFrequency, kzbcalcGetSecondaryResistance, kzbcalcGetPrimaryCopperLoss,
              kzbcalcGetSecondaryCopperLoss, kzbcalcGetSecondaryFluxD, kzbcalcGetSecondaryFluxQ,
              kzbcalcGetFieldCoilResistance, kzbcalcGetUpperLimitDisplacement, kzbcalcGetLowerLimitDisplacement}) {
            EXPECT_EQ(get(calc), 180039.0);
        }
    }
}

// ---- where corrections go: kind 2, Ld = Lq = 2e-3 H, d_flux 0.1 Vs

struct Evaluated {
    double magnet_flux;  // flux multiplier times sqrt(2/3) d_flux
    double coil_flux;    // the same with the magnet's own factors
    double d_inductance;
    double torque;
};

Evaluated evaluate(ModelFile& file, int (*set)(double, KZB_CALC*), double value) {
    Calculator calc(file, 2);
    if (set != nullptr) {
        EXPECT_EQ(set(value, calc), 0);
    }
    kzbcalcSetData(calc);
    // A q current of sqrt(3/2) * 4 A.
    kzbcalcSetCurrent(2, -4.0 * std::cos(150.0 * rad_per_deg), calc);
    kzbcalcSetCurrent(3, 4.0 * std::cos(150.0 * rad_per_deg), calc);
    const double torque = kzbcalcGetTorque(calc);
    return {kzbcalcGetMagFlux(1, calc), kzbcalcGetCoilFlux(1, calc), kzbcalcGetDAxisInductance(calc), torque};
}

TEST(Configuration, corrections_reach_the_model) {
    // Factors of (magnet flux, coil flux, inductance, torque) for each call. Torque of kind 2 takes flux over turns and
    // flux correction, so only the steel stays in it; the magnet correction acts on the coil flux and on the torque.
    Rotary file;
    file.number("control", "turns_in_coil", 35.0);
    const Evaluated plain = evaluate(file, nullptr, 0.0);
    EXPECT_NEAR(plain.magnet_flux, std::sqrt(2.0 / 3.0) * 0.1, 1e-15);
    EXPECT_NEAR(plain.torque, 2.0 * 0.1 * std::sqrt(1.5) * 4.0, 1e-12);
    const struct {
        const char* name;
        int (*set)(double, KZB_CALC*);
        double value;
        double factors[4];
    } rows[] = {
        {"flux", kzbcalcSetCorrectionOfFlux, 3.0, {3, 3, 1, 1}},
        {"magnet", kzbcalcSetCorrectionOfMagnet, 3.0, {1, 3, 1, 3}},
        {"steel", kzbcalcSetCorrectionOfSteel, 3.0, {3, 3, 3, 3}},
        {"inductance", kzbcalcSetCorrectionOfInductance, 3.0, {1, 1, 3, 1}},
        {"torque", kzbcalcSetCorrectionOfTorque, 3.0, {1, 1, 1, 3}},
        {"turns 1", kzbcalcSetCorrectionOfCoilTurn1, 70.0, {2, 2, 4, 1}},
        {"turns 2", kzbcalcSetCorrectionOfCoilTurn2, 70.0, {1, 1, 1, 2}},
        // 0.0 turns stand for the file's.
        {"no turns 1", kzbcalcSetCorrectionOfCoilTurn1, 0.0, {1, 1, 1, 1}},
        {"no turns 2", kzbcalcSetCorrectionOfCoilTurn2, 0.0, {1, 1, 1, 1}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const Evaluated got = evaluate(file, row.set, row.value);
        EXPECT_NEAR(got.magnet_flux, plain.magnet_flux * row.factors[0], 1e-14);
        EXPECT_NEAR(got.coil_flux, plain.coil_flux * row.factors[1], 1e-14);
        EXPECT_NEAR(got.d_inductance, plain.d_inductance * row.factors[2], 1e-16);
        EXPECT_NEAR(got.torque, plain.torque * row.factors[3], 1e-12);
    }
}

TEST(Configuration, force_correction_scales_the_force) {
    Linear file;
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetCorrectionOfForce(2.5, calc), 0);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetForce(calc), 30.0);
}

TEST(Configuration, coil_temperature_scales_the_resistance) {
    // 100 K above base at 3810 ppm per K: 1.381.
    Rotary file;
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetData(calc);
    kzbcalcSetCoilBaseTemperature(300.0, calc);
    kzbcalcSetCoilTemperature(400.0, calc);
    kzbcalcExecute(calc);
    EXPECT_NEAR(kzbcalcGetResistance(calc), 0.5 * 1.381, 1e-15);
}

TEST(Configuration, magnet_temperature_scales_the_coil_flux) {
    // 100 K above base at -0.11 percent per K: 0.89; the magnet flux that is reported alone has no temperature.
    Rotary file;
    Calculator calc(file);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    kzbcalcSetData(calc);
    kzbcalcSetMagnetBaseTemperature(300.0, calc);
    kzbcalcSetMagnetTemperature(400.0, calc);
    kzbcalcExecute(calc);
    EXPECT_NEAR(kzbcalcGetCoilFlux(1, calc), std::sqrt(2.0 / 3.0) * 0.1 * 0.89, 1e-15);
    EXPECT_NEAR(kzbcalcGetMagFlux(1, calc), std::sqrt(2.0 / 3.0) * 0.1, 1e-15);
}

// ---- options

TEST(Configuration, interpolation_types_are_zero_to_four) {
    Rotary file;
    Linear linear;
    for (ModelFile* const each : {static_cast<ModelFile*>(&file), static_cast<ModelFile*>(&linear)}) {
        Calculator calc(*each);
        for (int type = 0; type <= 4; ++type) {
            EXPECT_EQ(kzbcalcSetInterpolationType(type, calc), 0);
        }
        for (const int type : {-1, 5, 100, -2147483647 - 1}) {
            EXPECT_EQ(kzbcalcSetInterpolationType(type, calc), 180047);
        }
    }
}

TEST(Configuration, interpolation_type_changes_the_lookup) {
    // Ld over the amplitude: nodes 0, 1, 2 A hold 0, 1, 4 H, so linear gives 0.5 H at 0.5 A. A natural spline through
    // them has the second derivative 3 at the middle node, so at 0.5: 0.5 + 3 (0.125 - 0.5) / 6 = 0.3125.
    ModelFile file;
    rotary_frame(file, 1, 0.5);
    file.table("dq_inductance", "d_inductance", {betas, {0.0, 1.0, 2.0}}, [](const Point& x) { return x[1] * x[1]; })
        .table("dq_inductance", "q_inductance", {betas, {0.0, 1.0, 2.0}}, constant(1.0))
        .number("d_flux", "d_flux", 0.1);
    for (const int type : {0, 4}) {
        Calculator calc(file, 2);
        kzbcalcSetInterpolationType(type, calc);
        kzbcalcSetData(calc);
        for (int sample = 0; sample < 3; ++sample) {  // the first one keeps no amplitude
            for (int phase = 1; phase <= 3; ++phase) {
                kzbcalcSetCurrent(phase, 0.5 * std::cos((90.0 - 120.0 * (phase - 1)) * rad_per_deg), calc);
            }
            kzbcalcGetTorque(calc);
            kzbcalcUpdate(calc);
        }
        EXPECT_NEAR(kzbcalcGetDAxisInductance(calc), type == 0 ? 0.5 : 0.3125, 1e-12);
    }
}

struct AccuracyCase {
    bool flux_table;
    bool pmsm_torque;
};

TEST(Configuration, accuracy_type_is_granted_by_the_file) {
    for (const AccuracyCase& extra : {AccuracyCase{false, false}, {true, false}, {true, true}, {false, true}}) {
        for (int offered = -1; offered <= 9; ++offered) {
            SCOPED_TRACE(testing::Message() << "offered " << offered << " flux_table " << extra.flux_table
                                            << " pmsm_torque " << extra.pmsm_torque);
            Rotary file(offered);
            if (extra.flux_table) {
                file.integer("flux_table", "present", 1);
            }
            if (extra.pmsm_torque) {
                file.integer("pmsm_torque", "present", 1);
            }
            Calculator calc(file);
            const bool zero = offered == 1 || offered == 4 || offered == 7;
            EXPECT_EQ(kzbcalcSetAccuracyType(0, calc), zero ? 0 : 180036);
            EXPECT_EQ(kzbcalcSetAccuracyType(1, calc), offered >= 3 && offered <= 7 ? 0 : 180037);
            const int two = offered < 5 || offered > 7 ? 180067
                            : !extra.flux_table        ? 180068
                            : extra.pmsm_torque        ? 180067
                                                       : 0;
            EXPECT_EQ(kzbcalcSetAccuracyType(2, calc), two);
            for (const int unknown : {-1, 3, 100}) {
                EXPECT_EQ(kzbcalcSetAccuracyType(unknown, calc), 180038);
            }
        }
    }
}

TEST(Configuration, accuracy_type_chooses_the_kind_that_is_bound) {
    // The file's accuracy 7 means kind 1, whose magnet flux call gives 0.0; accuracy 0 asks for kind 2.
    Rotary file(7);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetAccuracyType(0, calc), 0);
    kzbcalcSetData(calc);
    EXPECT_DOUBLE_EQ(kzbcalcGetMagFlux(1, calc), std::sqrt(2.0 / 3.0) * 0.1);
}

TEST(Configuration, accuracy_and_skew_are_for_the_rotary_machine) {
    Linear file;
    Calculator calc(file);
    for (const int type : {0, 1, 2, 3, -1}) {
        EXPECT_EQ(kzbcalcSetAccuracyType(type, calc), 180039);
    }
    EXPECT_EQ(kzbcalcSetSkewParameter(0, 0, 0.0, 0.0, 0, 0, calc), 180039);
}

TEST(Configuration, skew_is_applied_when_the_data_are_set) {
    // What the store's own transform makes of "d_flux" is what the model then uses.
    Rotary file;
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    ASSERT_EQ(kzb_reader(file.path().c_str(), store), 0);
    kzb_set_application("PMSM", "LdLq", store);
    kzb_apply_skew(1, 0, 10.0, 0.0, 2, 0, "Linear", store);
    const double skewed = kzb_get_double("d_flux", "d_flux", store);
    kzb_finish(store);
    ASSERT_NE(skewed, 0.1);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetSkewParameter(1, 0, 10.0, 0.0, 2, 0, calc), 0);
    kzbcalcSetData(calc);
    EXPECT_DOUBLE_EQ(kzbcalcGetMagFlux(1, calc), std::sqrt(2.0 / 3.0) * skewed);
}

TEST(Configuration, connection_types_are_zero_and_one) {
    Rotary rotary;
    Linear linear;
    for (ModelFile* const file : {static_cast<ModelFile*>(&rotary), static_cast<ModelFile*>(&linear)}) {
        Calculator calc(*file);
        EXPECT_EQ(kzbcalcSetConnectionType(0, calc), 0);
        EXPECT_EQ(kzbcalcSetConnectionType(1, calc), 0);
        for (const int type : {-1, 2, 100, -2147483647 - 1}) {
            EXPECT_EQ(kzbcalcSetConnectionType(type, calc), 180048);
        }
    }
}

// ---- losses

struct LossFile : Rotary {
    explicit LossFile(double loss) {
        const Point rpm{0.0, 1e6}, volts{0.0, 1000.0}, hertz{0.0, 1e5};
        table("loss_table", "iron_loss", {currents, betas, rpm, volts, hertz}, constant(loss));
    }
};

TEST(Configuration, iron_loss_needs_loss_data) {
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

TEST(Configuration, category_of_the_loss_table_alone_is_no_loss_data) {
    Rotary file;
    file.integer("loss_table", "other", 1);
    Calculator calc(file);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180040);
}

TEST(Configuration, loss_calls_are_refused_for_the_linear_machine) {
    Linear file;
    file.integer("hysloss", "numMat", 0);
    Calculator calc(file);
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 180039);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180039);
    EXPECT_EQ(kzbcalcCheckUserCopperloss(calc), 180039);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), 180039);
}

TEST(Configuration, iron_loss_of_a_table_is_reported_whole) {
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

TEST(Configuration, iron_loss_of_materials_is_reported_in_two_parts) {
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

TEST(Configuration, iron_loss_is_off_without_its_call) {
    LossFile file(100.0);
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetIronloss(calc), 0.0);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);
}

TEST(Configuration, supply_can_be_set_while_iron_loss_is_on) {
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

TEST(Configuration, environment_chooses_the_older_iron_loss) {
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

TEST(Configuration, user_copper_loss_needs_its_table) {
    Rotary without;
    Calculator calc(without);
    EXPECT_EQ(kzbcalcCheckUserCopperloss(calc), 0);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), 180065);
    CopperFile with;
    Calculator other(with);
    EXPECT_EQ(kzbcalcCheckUserCopperloss(other), 1);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(other), 0);
}

TEST(Configuration, user_copper_loss_adds_to_the_resistance) {
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

TEST(Configuration, user_specified_parameters_are_counted_and_read) {
    // Two outputs of a Harmonic machine; the first category names table 1 and output 2, the second table 2 and
    // output 1.
    ModelFile file;
    rotary_frame(file, 3, 0.5);
    add_harmonic(file, 1e-3, 0.0, 0.1, 1.0);
    const Point angles = every(5.0, 0.0, 180.0);
    file.integer("num_user_specified_parameter", "num_user_specified_parameter", 2)
        .integer("user_specified_parameter_table", "num_user_specified_parameter", 2);
    for (const int n : {1, 2}) {
        const std::string category = "user_specified_parameter" + std::to_string(n);
        file.integer(category.c_str(), "table_id", n).integer(category.c_str(), "output_port_id", 3 - n);
        const std::string table = "user_specified_parameter_table" + std::to_string(n);
        file.table("user_specified_parameter_table", table.c_str(), {currents, betas, angles}, constant(10.0 * n), {3});
    }
    Calculator calc(file);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetNumberOfUserSpecifiedParameters(calc), 2);
    EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(1, calc), 20.0);
    EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(2, calc), 10.0);
    EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(0, calc), 180062.0);
    EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(3, calc), 180062.0);
}

}  // namespace
