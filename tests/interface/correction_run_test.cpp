// Corrections and turns of the machines of separate coils and of the wound-field machine, by what comes out of a run.
//
// With n1, n2 the ratios of turns: magnet flux n1 n2 k_flux k_magnet k_steel, inductance n1 k_inductance k_steel,
// torque or force n1 k_torque k_magnet k_steel^2 at n2 times the current. The tables are constant or linear in the
// current, so that each factor shows as it is.
#include <gtest/gtest.h>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::correction_run_test {
namespace {

constexpr double turns_in_coil = 10.0;

struct Seen {
    double flux;  // of the magnet
    double inductance;
    double torque;  // or force
};

struct CoilMachineCase {
    const char* name;
    void (*fill)(ModelFile& file);
    int (*set_torque)(double, KZB_CALC*);
    bool has_magnet;
    Seen plain;  // without corrections, at 3 A in coil 1 alone
};

// Flux 0.01 Vs per degree in coil 1, at 10 degrees; torque 1 N*m per A. The inductance that answers is a mutual one.
void fill_stepping(ModelFile& file) {
    stepping_machine(file, 2e-3, 1e-3, 0.01, 0.5);
}
// Flux 0.1 Vs per m, at 10 m; force 2 N per A.
void fill_solenoid(ModelFile& file) {
    solenoid_machine(file, 2e-3, 0.01, 0.5);
}
// Torque 0.3 N*m per A.
void fill_reluctance(ModelFile& file) {
    reluctance_machine(file, 4, 2e-3, 0.0, 0.5);
}

const CoilMachineCase cases[] = {
    {"stepping", fill_stepping, kzbcalcSetCorrectionOfTorque, true, {0.1, 1e-3, 3.0}},
    {"solenoid", fill_solenoid, kzbcalcSetCorrectionOfForce, true, {1.0, 2e-3, 6.0}},
    {"reluctance", fill_reluctance, kzbcalcSetCorrectionOfTorque, false, {0.0, 2e-3, 0.9}},
};

class CorrectionRun : public testing::TestWithParam<CoilMachineCase> {
  protected:
    CorrectionRun() {
        GetParam().fill(file_);
        file_.number("control", "turns_in_coil", turns_in_coil);
    }
    ModelFile& file() { return file_; }

    // After kzbcalcSetData: a step without elapsed time for flux and inductance, then the evaluation at 3 A.
    Seen see(KZB_CALC* calc) const {
        step_sample(calc, 0.0, 10.0, {0.0});
        Seen seen{};
        seen.flux = GetParam().has_magnet ? kzbcalcGetMagFlux(1, calc) : 0.0;
        seen.inductance = kzbcalcGetInductance(1, 1, calc);
        kzbcalcSetCurrent(1, 3.0, calc);
        const double force = kzbcalcGetForce(calc);
        seen.torque = force == 180035.0 ? kzbcalcGetTorque(calc) : force;
        return seen;
    }

    void expect_factors(const Seen& seen, double flux, double inductance, double torque) const {
        const Seen& plain = GetParam().plain;
        // The spline of a straight line is straight to this much.
        EXPECT_NEAR(seen.flux, plain.flux * flux, 1e-10);
        EXPECT_NEAR(seen.inductance, plain.inductance * inductance, 1e-14);
        EXPECT_NEAR(seen.torque, plain.torque * torque, 1e-9);
    }

  private:
    ModelFile file_;
};

INSTANTIATE_TEST_SUITE_P(Machines, CorrectionRun, testing::ValuesIn(cases),
                         [](const auto& machine) { return std::string(machine.param.name); });

struct Row {
    const char* name;
    int (*set)(double, KZB_CALC*);
    double value;
    double before[3];  // factors of flux, inductance, torque when set before kzbcalcSetData
    double after[3];   // and when set behind it, where nothing is folded any more
};

TEST_P(CorrectionRun, corrections_and_turns_scale_flux_inductance_and_torque) {
    const Row rows[] = {
        {"flux", kzbcalcSetCorrectionOfFlux, 2.0, {2, 1, 1}, {2, 1, 1}},
        {"magnet", kzbcalcSetCorrectionOfMagnet, 2.0, {2, 1, 2}, {1, 1, 1}},
        {"steel", kzbcalcSetCorrectionOfSteel, 2.0, {2, 2, 4}, {1, 1, 1}},
        {"inductance", kzbcalcSetCorrectionOfInductance, 2.0, {1, 2, 1}, {1, 2, 1}},
        {"torque", GetParam().set_torque, 2.0, {1, 1, 2}, {1, 1, 2}},
        {"turns 1", kzbcalcSetCorrectionOfCoilTurn1, 20.0, {2, 2, 2}, {1, 1, 1}},
        {"turns 2", kzbcalcSetCorrectionOfCoilTurn2, 20.0, {2, 1, 2}, {1, 1, 20}},
        // 0 turns stand for the file's, while they are folded.
        {"no turns 1", kzbcalcSetCorrectionOfCoilTurn1, 0.0, {1, 1, 1}, {1, 1, 1}},
        {"no turns 2", kzbcalcSetCorrectionOfCoilTurn2, 0.0, {1, 1, 1}, {1, 1, 0}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Calculator before(file(), 2);
        ASSERT_EQ(row.set(row.value, before), 0);
        kzbcalcSetData(before);
        expect_factors(see(before), row.before[0], row.before[1], row.before[2]);
        Calculator after(file(), 2);
        kzbcalcSetData(after);
        ASSERT_EQ(row.set(row.value, after), 0);
        expect_factors(see(after), row.after[0], row.after[1], row.after[2]);
    }
}

TEST_P(CorrectionRun, file_starts_the_second_turns_and_of_the_reluctance_machine_the_factors) {
    // Turns 20 of 10 in "turns_coil2" alone: "turns_coil1" is never taken. Factors 2, 3, 5, 7, 11.
    file()
        .number("control", "turns_coil1", 70.0)
        .number("control", "turns_coil2", 20.0)
        .number("control", "coef_flux", 2.0)
        .number("control", "coef_magnet", 3.0)
        .number("control", "coef_material", 5.0)
        .number("control", "coef_inductance", 7.0)
        .number("control", "coef_torque", 11.0)
        .number("control", "coef_force", 11.0);
    Calculator calc(file(), 2);
    kzbcalcSetData(calc);
    if (GetParam().has_magnet) {
        expect_factors(see(calc), 2.0, 1.0, 2.0);
    } else {
        expect_factors(see(calc), 0.0, 5.0 * 7.0, 2.0 * 3.0 * 11.0 * 25.0);
    }
}

// ---- wound-field machine

TEST(WoundFieldCorrection, armature_and_field_are_scaled_apart) {
    // Rows of the armature by n2 k_flux k_steel, the field's row by its own; torque is 1 N*m per A of armature current,
    // 2 A in u alone: d = sqrt(2/3) 2 A, amplitude 2/3 2 A.
    const struct {
        const char* name;
        int (*set)(double, KZB_CALC*);
        double value;
        double armature;
        double field;
        double torque;
    } rows[] = {
        {"flux", kzbcalcSetCorrectionOfFlux, 3.0, 3, 1, 1},
        {"field flux", kzbcalcSetCorrectionOfFieldFlux, 3.0, 1, 3, 1},
        {"steel", kzbcalcSetCorrectionOfSteel, 3.0, 3, 3, 3},
        {"torque", kzbcalcSetCorrectionOfTorque, 3.0, 1, 1, 3},
        {"turns 2", kzbcalcSetCorrectionOfCoilTurn2, 20.0, 2, 1, 2},
        {"field turns 2", kzbcalcSetCorrectionOfFieldCoilTurn2, 100.0, 1, 5, 1},
        {"no turns 2", kzbcalcSetCorrectionOfCoilTurn2, 0.0, 1, 1, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ModelFile file;
        wound_field_machine(file, 2e-3, 0.0, 0.1, 0.5, 5.0);
        file.number("control", "turns_in_coil", turns_in_coil)
            .number("control", "turns_in_field_coil", 20.0)
            .table("harmonic_torque", "torque_ibeta", {amplitudes, betas, amplitudes, {-3600.0, 3600.0}},
                   [](const Point& x) { return x[0]; });
        Calculator calc(file, 2);
        ASSERT_EQ(row.set(row.value, calc), 0);
        kzbcalcSetData(calc);
        kzbcalcSetCurrent(1, 2.0, calc);
        EXPECT_NEAR(kzbcalcGetTorque(calc), 4.0 / 3.0 * row.torque, 1e-12);
        EXPECT_NEAR(kzbcalcGetInductance(1, 1, calc), 2e-3 * row.armature, 1e-15);
        EXPECT_NEAR(kzbcalcGetInductance(4, 4, calc), 0.1 * row.field, 1e-14);
    }
}

// ---- induction machine

TEST(InductionCorrection, corrections_of_the_file_reach_no_equation) {
    ModelFile plain, corrected;
    induction_constants(plain);
    induction_constants(corrected);
    for (const char* const key : {"coef_flux", "coef_magnet", "coef_material", "coef_inductance", "coef_torque",
                                  "turns_coil1", "turns_coil2", "turns_in_coil"}) {
        corrected.number("control", key, 3.0);
    }
    Calculator first(plain), second(corrected);
    for (KZB_CALC* const calc : {static_cast<KZB_CALC*>(first), static_cast<KZB_CALC*>(second)}) {
        kzbcalcSetData(calc);
        for (int k = 0; k < 4; ++k) {
            step_sample(calc, 1e-3 * k, 2.0 * k, {30.0, -10.0, -20.0});
            kzbcalcUpdate(calc);
        }
    }
    EXPECT_NE(kzbcalcGetTorque(first), 0.0);
    EXPECT_EQ(kzbcalcGetTorque(second), kzbcalcGetTorque(first));
    EXPECT_EQ(kzbcalcGetCurrent(1, second), kzbcalcGetCurrent(1, first));
}

}  // namespace
}  // namespace kzb_test::correction_run_test
