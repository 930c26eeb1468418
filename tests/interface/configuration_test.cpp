// The calls that configure a permanent-magnet machine: where the values go, and what binding takes from them.
#include <gtest/gtest.h>

#include <cmath>

#include "interface/model_file.h"

namespace kzb_test::configuration_test {
namespace {

struct Rotary : ModelFile {
    explicit Rotary(int accuracy = 1) {
        rotary_frame(*this, accuracy, 0.5);
        add_ld_lq(*this, 2e-3, 2e-3, 0.1);
    }
};

struct Linear : ModelFile {
    Linear() { linear_machine(*this, 1e-3, 0.0, 0.1, 0.5); }
};

TEST(Configuration, refused_value_changes_nothing) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetResistance(3.0, calc);
    EXPECT_EQ(kzbcalcSetResistance(0.0, calc), 180041);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcGetResistance(calc), 3.0);
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

// ---- before and after kzbcalcSetData

// Magnet flux of phase u, in parts of sqrt(2/3) d_flux.
double magnet_flux_ratio(KZB_CALC* calc) {
    kzbcalcExecute(calc);
    return kzbcalcGetMagFlux(1, calc) / (std::sqrt(2.0 / 3.0) * 0.1);
}

TEST(Configuration, what_binding_reads_waits_for_the_next_binding) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetResistance(3.0, calc), 0);
    EXPECT_EQ(kzbcalcSetSkewParameter(3, 0, 10.0, 0.0, 2, 0, calc), 0);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetResistance(calc), 0.5);
    EXPECT_NEAR(magnet_flux_ratio(calc), 1.0, 1e-15);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_EQ(kzbcalcGetResistance(calc), 3.0);
    // Two steps 10 degrees apart stand 5 degrees, electrically 10, on either side: the mean is cos(10 degrees).
    EXPECT_NEAR(magnet_flux_ratio(calc), std::cos(10.0 * rad_per_deg), 1e-12);
}

TEST(Configuration, corrections_act_at_once_also_after_binding) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetData(calc);
    EXPECT_NEAR(magnet_flux_ratio(calc), 1.0, 1e-15);
    kzbcalcSetCorrectionOfFlux(3.0, calc);
    EXPECT_NEAR(magnet_flux_ratio(calc), 3.0, 1e-14);
}

TEST(Configuration, turns_become_a_ratio_by_binding_alone) {
    // Binding divides the turns by the file's 35; a number that comes later is a ratio as it stands.
    Rotary file;
    file.number("control", "turns_in_coil", 35.0);
    Calculator calc(file);
    kzbcalcSetCorrectionOfCoilTurn1(70.0, calc);
    kzbcalcSetData(calc);
    EXPECT_NEAR(magnet_flux_ratio(calc), 2.0, 1e-14);
    kzbcalcSetCorrectionOfCoilTurn1(5.0, calc);
    EXPECT_NEAR(magnet_flux_ratio(calc), 5.0, 1e-14);
    kzbcalcSetCorrectionOfCoilTurn1(0.0, calc);
    EXPECT_EQ(magnet_flux_ratio(calc), 0.0);
}

TEST(Configuration, file_without_turns_has_the_ratio_one_whatever_was_set) {
    Rotary file;
    Calculator calc(file);
    kzbcalcSetCorrectionOfCoilTurn1(70.0, calc);
    kzbcalcSetData(calc);
    EXPECT_NEAR(magnet_flux_ratio(calc), 1.0, 1e-15);
}

TEST(Configuration, connection_after_binding_changes_what_is_reported_alone) {
    // The axis inductances of a delta count a third; the windings stay the star that binding built, whose currents
    // at balanced voltages are those of a star.
    Rotary file;
    Calculator star(file);
    Calculator late(file);
    for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(star), static_cast<KZB_CALC*>(late)}) {
        kzbcalcSetData(calc);
    }
    ASSERT_EQ(kzbcalcSetConnectionType(1, late), 0);
    for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(star), static_cast<KZB_CALC*>(late)}) {
        for (int k = 0; k < 4; ++k) {
            kzbcalcSetTime(1e-4 * k, calc);
            kzbcalcSetVoltage(1, 10.0, calc);
            kzbcalcExecute(calc);
            kzbcalcUpdate(calc);
        }
    }
    EXPECT_NE(kzbcalcGetCurrent(1, star), 0.0);
    EXPECT_EQ(kzbcalcGetCurrent(1, late), kzbcalcGetCurrent(1, star));
    EXPECT_EQ(kzbcalcGetDAxisInductance(late), kzbcalcGetDAxisInductance(star) * 0.3333333333333333);
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
}  // namespace kzb_test::configuration_test
