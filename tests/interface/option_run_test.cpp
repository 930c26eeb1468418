// Options by what they do in a run: interpolation, accuracy, skew, the losses in use and their supply.
#include <gtest/gtest.h>

#include <cstdlib>

#include "interface/machine_sample.h"
#include "interface/other_machines.h"

namespace kzb_test::option_run_test {
namespace {

constexpr double h = 1e-3;

// ---- interpolation: a table of squares at 0, 1, 2 gives 0.5 at 0.5 when linear. The natural spline has the second
// derivative 3 in the middle and so gives 0.5 + 3 (0.125 - 0.5) / 6 = 0.3125.

const Point square_nodes{0.0, 1.0, 2.0};
constexpr double half_linear = 0.5;
constexpr double half_spline = 0.3125;

std::function<double(const Point&)> square_of(std::size_t axis) {
    return [=](const Point& x) { return x[axis] * x[axis]; };
}

struct SquareCase {
    const char* name;
    void (*fill)(ModelFile& file);
    int phase;  // that carries the 0.5 A
    double (*get)(KZB_CALC*);
};

const Point angles{-3600.0, 3600.0};

void fill_stepping(ModelFile& file) {
    stepping_machine(file, 1e-3, 0.0, 0.0, 0.5);
    file.table("torque", "torque_ibeta", {square_nodes, angles, signed_currents}, square_of(0));
}
void fill_solenoid(ModelFile& file) {
    solenoid_machine(file, 1e-3, 0.0, 0.5);
    file.table("distance_force", "force", {{-1000.0, 1000.0}, square_nodes}, square_of(1));
}
void fill_reluctance(ModelFile& file) {
    reluctance_machine(file, 5, 1e-3, 0.0, 0.5);
    file.table("torque", "torque_ibeta", {angles, square_nodes}, square_of(1));
}
void fill_wound_field(ModelFile& file) {
    wound_field_machine(file, 1e-3, 0.0, 0.1, 0.5, 5.0);
    file.table("harmonic_torque", "torque_ibeta", {amplitudes, betas, square_nodes, angles}, square_of(2));
}
// The iron loss over the peak current: 0.75 A in u alone have it 0.5 A.
void fill_induction(ModelFile& file) {
    induction_tables(file);
    file.table("InductionParam_HigherAccuracy", "ironloss_table", {{-100.0, 100.0}, square_nodes}, square_of(1));
}

const SquareCase squares[] = {
    {"stepping", fill_stepping, 1, kzbcalcGetTorque},     {"solenoid", fill_solenoid, 1, kzbcalcGetForce},
    {"reluctance", fill_reluctance, 1, kzbcalcGetTorque}, {"wound_field", fill_wound_field, 4, kzbcalcGetTorque},
    {"induction", fill_induction, 1, kzbcalcGetIronloss},
};

class Interpolation : public testing::TestWithParam<SquareCase> {};
INSTANTIATE_TEST_SUITE_P(Machines, Interpolation, testing::ValuesIn(squares),
                         [](const auto& machine) { return std::string(machine.param.name); });

TEST_P(Interpolation, type_chooses_how_the_tables_are_read) {
    ModelFile file;
    GetParam().fill(file);
    const bool induction = GetParam().get == kzbcalcGetIronloss;
    for (const int type : {0, 4}) {
        Calculator calc(file, 2);
        if (induction) {
            ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
        }
        kzbcalcSetData(calc);
        ASSERT_EQ(kzbcalcSetInterpolationType(type, calc), 0);
        kzbcalcSetTime(h, calc);
        kzbcalcSetCurrent(GetParam().phase, induction ? 0.75 : 0.5, calc);
        kzbcalcGetTorque(calc);
        EXPECT_NEAR(GetParam().get(calc), type == 0 ? half_linear : half_spline, 1e-12);
    }
}

// ---- accuracy

TEST(Accuracy, number_chooses_the_model_that_is_run) {
    // One file for all three: Ld = Lq = 2e-3 H, harmonic self inductance 4e-3 H, flux integration with 8e-3 H, no
    // magnet. Phase u at 10 V of a star, the others at -5 V, 0.5 Ohm, standing. The first two are implicit, i L = h (v
    // - R i) from the third sample on; the third explicit, psi += h (v - R i) over samples 2 and 3 with the current of
    // the sample before.
    ModelFile file;
    rotary_frame(file, 7, 0.5);
    add_ld_lq(file, 2e-3, 2e-3, 0.0);
    add_harmonic(file, 4e-3, 0.0, 0.0, 0.0);
    add_flux_integral(file, 8e-3, 0.0, 0.0);
    const double implicit_sum = h * 10.0;
    const double expected[] = {implicit_sum / (h * 0.5 + 2e-3), implicit_sum / (h * 0.5 + 4e-3), h * 10.0 / 8e-3};
    for (const int accuracy : {0, 1, 2}) {
        SCOPED_TRACE(accuracy);
        Calculator calc(file);
        ASSERT_EQ(kzbcalcSetAccuracyType(accuracy, calc), 0);
        kzbcalcSetData(calc);
        for (int k = 0; k < 3; ++k) {
            step_sample(calc, h * k, 0.0, {10.0, -5.0, -5.0});
            kzbcalcUpdate(calc);
        }
        EXPECT_NEAR(kzbcalcGetCurrent(1, calc), expected[accuracy], 1e-9);
    }
}

TEST(Skew, two_steps_average_the_harmonic_flux) {
    // Two steps 10 degrees apart, electrically 20: cos(10 degrees) of the sine flux remains. The nodes stand 5 degrees
    // apart, so that both steps lie on them.
    ModelFile file;
    rotary_frame(file, 3, 0.5);
    add_harmonic(file, 1e-3, 0.0, 0.1, 0.0);
    Calculator calc(file);
    ASSERT_EQ(kzbcalcSetSkewParameter(3, 0, 10.0, 0.0, 2, 0, calc), 0);
    kzbcalcSetData(calc);
    kzbcalcExecute(calc);
    EXPECT_NEAR(kzbcalcGetCoilFlux(1, calc), 0.1 * std::cos(10.0 * rad_per_deg), 1e-12);
}

// ---- losses in use

const std::vector<Point> supply_axes{{0.0, 1000.0}, {-360.0, 1000.0}, {0.0, 1e6}, {0.0, 1000.0}, {0.0, 1e5}};

void fill_rotary_loss(ModelFile& file) {
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 2e-3, 2e-3, 0.1);
    file.integer("hysloss", "numMat", 0);  // a loss that knows no supply
}
void fill_induction_loss(ModelFile& file) {
    induction_tables(file);
    file.table("InductionParam_HigherAccuracy", "ironloss_table", {{-100.0, 100.0}, {-100.0, 100.0}}, constant(3.0));
}

TEST(LossesInUse, supply_is_taken_when_a_loss_that_depends_on_it_is_both_in_the_file_and_on) {
    for (void (*const fill)(ModelFile&) : {fill_rotary_loss, fill_induction_loss}) {
        for (int k = 0; k < 16; ++k) {
            const bool copper_table = (k & 1) != 0, copper_on = (k & 2) != 0;
            const bool iron_table = (k & 4) != 0, iron_on = (k & 8) != 0;
            SCOPED_TRACE(testing::Message() << "copper table " << copper_table << " on " << copper_on << " iron table "
                                            << iron_table << " on " << iron_on);
            ModelFile file;
            fill(file);
            if (copper_table) {
                file.table("equivalent_resistance_table", "copper_loss", supply_axes, constant(0.25));
            }
            if (iron_table) {
                file.table("loss_table", "iron_loss", supply_axes, constant(12.0));
            }
            Calculator calc(file);
            if (copper_on) {
                EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), copper_table ? 0 : 180065);
            }
            if (iron_on) {
                EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);  // both files have loss data of their own
            }
            EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 180064);  // before kzbcalcSetData nothing is on
            kzbcalcSetData(calc);
            const bool in_use = (copper_table && copper_on) || (iron_table && iron_on);
            EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), in_use ? 0 : 180064);
            EXPECT_EQ(kzbcalcSetCarrierFrequency(300.0, calc), in_use ? 0 : 180064);
        }
    }
}

TEST(LossesInUse, older_iron_loss_of_an_induction_machine_is_that_of_its_own_table) {
    for (const bool old : {false, true}) {
        ModelFile file;
        fill_induction_loss(file);
        file.table("loss_table", "iron_loss", supply_axes, [](const Point& x) { return 12.0 + x[3] + x[4]; });
        Calculator calc(file);
        if (old) {
            ASSERT_EQ(::setenv("DORN_KZ_USE_OLD_IRONLOSS", "1", 1), 0);
        }
        EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
        ::unsetenv("DORN_KZ_USE_OLD_IRONLOSS");
        kzbcalcSetData(calc);
        EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 0);  // the table is there and iron loss is on
        EXPECT_EQ(kzbcalcSetCarrierFrequency(4000.0, calc), 0);
        step_sample(calc, h, 0.0, {1.0, 0.0, 0.0});
        EXPECT_NEAR(kzbcalcGetIronloss(calc), old ? 3.0 : 12.0 + 300.0 + 4000.0, 1e-9);
    }
}

TEST(LossesInUse, wound_field_machine_filters_its_voltages_for_the_iron_loss_once_a_pulse_frequency_is_set) {
    // One turn per sample of 1 ms: 1000 Hz, so that the filter takes V / (1 + a / h), a = 1 / (5 * 1000 Hz) = 0.2 h.
    // The loss current is A = 2 (P / 3) / V; with 42 W and 20 V its amplitude is 28 / 20 A, at the filtered voltage 1.2
    // times that. Torque is 1 N*m per A of coil current: in the sample without voltage the loss current of the sample
    // before is all that is left.
    const std::vector<Point> loss_axes{{0.0, 1e6}, betas, amplitudes, amplitudes};
    for (const bool iron : {false, true}) {
        for (const bool pulses : {false, true}) {
            ModelFile file;
            wound_field_machine(file, 2e-3, 0.0, 0.1, 0.5, 5.0);
            file.table("harmonic_torque", "torque_ibeta", {amplitudes, betas, amplitudes, angles},
                       [](const Point& x) { return x[0]; })
                .integer("hysloss", "numMat", 1)
                .integer("hysloss", "matID1", 7)
                .table("hysloss", "hysloss7", loss_axes, constant(30.0))
                .table("eddyloss", "eddyloss7", loss_axes, constant(12.0));
            Calculator calc(file);
            if (iron) {
                ASSERT_EQ(kzbcalcSetIronlossCalc(calc), 0);
            }
            if (pulses) {
                ASSERT_EQ(kzbcalcSetPWMFreq(8000.0, calc), 0);
            }
            kzbcalcSetData(calc);
            step_sample(calc, h, 360.0, {20.0, -10.0, -10.0, 0.0});
            EXPECT_NEAR(kzbcalcGetIronloss(calc), iron ? 42.0 : 0.0, 1e-12);
            kzbcalcUpdate(calc);
            step_sample(calc, 2.0 * h, 720.0, {0.0, 0.0, 0.0, 0.0});
            const double amplitude = 28.0 / 20.0 * (pulses ? 1.2 : 1.0);
            EXPECT_NEAR(kzbcalcGetTorque(calc), iron ? amplitude : 0.0, 1e-9);
        }
    }
}

}  // namespace
}  // namespace kzb_test::option_run_test
