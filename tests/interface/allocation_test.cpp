// A sample takes nothing from the heap once a run has had its first samples, in every application.
#include <gtest/gtest.h>

#include "interface/allocation_counter.h"
#include "interface/call_table.h"
#include "interface/machines.h"
#include "interface/other_machines.h"

namespace kzb_test::allocation_test {
namespace {

constexpr int most_phases = 5;  // a getter of a phase that a machine lacks answers with a status

double run_sample(KZB_CALC* calc, int k) {
    double sum = 0.0;
    kzbcalcSetTime(1e-4 * k, calc);
    kzbcalcSetDisplacement(0.3 * k, calc);
    for (int phase = 1; phase <= most_phases; ++phase) {
        kzbcalcSetVoltage(phase, 20.0 * std::cos(0.2 * k - 2.0 * phase), calc);
        kzbcalcSetSignal(phase, 1, calc);
    }
    kzbcalcExecute(calc);
    for (int phase = 1; phase <= most_phases; ++phase) {
        sum += kzbcalcGetCurrent(phase, calc) + kzbcalcGetVoltage(phase, calc) + kzbcalcGetInducedVoltage(phase, calc) +
               kzbcalcGetCoilFlux(phase, calc) + kzbcalcGetMagFlux(phase, calc) + kzbcalcGetInductance(phase, 1, calc);
    }
    for (const auto& call : getters) {
        sum += call.function(calc);
    }
    sum += kzbcalcGetUserSpecifiedParameter(1, calc);
    kzbcalcUpdate(calc);
    return sum;
}

void expect_no_allocation(ModelFile& file, const std::string& name, int interpolation, int calc_mode = 1) {
    SCOPED_TRACE(name);
    Calculator calc(file, calc_mode);
    ASSERT_EQ(calc.status, 0);
    ASSERT_EQ(kzbcalcSetInterpolationType(interpolation, calc), 0);
    kzbcalcSetIronlossCalc(calc);
    kzbcalcSetUserCopperlossCalc(calc);
    kzbcalcSetStepSize(1e-4, calc);
    kzbcalcSetData(calc);
    int k = 0;
    for (; k < 3; ++k) {
        run_sample(calc, k);
    }
    const long before = allocations;
    double sum = 0.0;
    for (; k < 53; ++k) {
        sum += run_sample(calc, k);
    }
    const long after = allocations;
    EXPECT_EQ(after, before);
    EXPECT_NE(sum, 0.0);
}

void add_losses(ModelFile& file) {
    const Point rpm{0.0, 1e6}, volts{0.0, 1000.0}, hertz{0.0, 1e5};
    file.table("loss_table", "iron_loss", {currents, betas, rpm, volts, hertz}, constant(5.0))
        .table("equivalent_resistance_table", "copper_loss", {currents, betas, rpm, volts, hertz}, constant(0.1));
}

TEST(Allocation, counter_sees_the_heap) {
    const long before = allocations;
    delete new volatile int(1);
    EXPECT_EQ(allocations - before, KZB_COUNTS_ALLOCATIONS);
}

TEST(Allocation, sample_of_every_application_allocates_nothing) {
    for (const int interpolation : {0, 1, 2, 3, 4}) {
        SCOPED_TRACE(interpolation);
        ModelFile ld_lq;
        rotary_frame(ld_lq, 1, 0.5);
        add_ld_lq(ld_lq, 2e-3, 3e-3, 0.1);
        add_losses(ld_lq);
        expect_no_allocation(ld_lq, "LdLq", interpolation);

        ModelFile simple;
        rotary_frame(simple, 2, 0.5);
        add_simple_harmonic(simple, 4e-3, -1e-3, 0.1, 1.0);
        add_losses(simple);
        expect_no_allocation(simple, "SimpleHarmonic", interpolation);

        ModelFile harmonic;
        rotary_frame(harmonic, 3, 0.5);
        add_harmonic(harmonic, 4e-3, -1e-3, 0.1, 1.0);
        add_losses(harmonic);
        harmonic.integer("num_user_specified_parameter", "num_user_specified_parameter", 1)
            .integer("user_specified_parameter1", "table_id", 1)
            .integer("user_specified_parameter1", "output_port_id", 1)
            .table("user_specified_parameter_table", "user_specified_parameter_table1",
                   {currents, betas, every(5.0, 0.0, 180.0)}, constant(7.0), {3});
        expect_no_allocation(harmonic, "Harmonic", interpolation);

        ModelFile flux_integral;
        rotary_frame(flux_integral, 5, 0.5);
        add_flux_integral(flux_integral, 4e-3, 0.1, 1.0);
        add_losses(flux_integral);
        expect_no_allocation(flux_integral, "FluxIntegralDQTheta", interpolation);

        ModelFile linear;
        linear_machine(linear, 4e-3, -1e-3, 0.1, 0.5);
        expect_no_allocation(linear, "LinearSynchronous", interpolation);
    }
}

TEST(Allocation, sample_of_every_motor_type_allocates_nothing) {
    for (const Machine& machine : machines) {
        for (const int calc_mode : {1, 2}) {
            for (const int interpolation : {0, 1, 2, 3, 4}) {
                SCOPED_TRACE(testing::Message() << "mode " << calc_mode << " interpolation " << interpolation);
                ModelFile file;
                machine.fill(file);
                expect_no_allocation(file, std::to_string(machine.code), interpolation, calc_mode);
            }
        }
    }
}

TEST(Allocation, sample_of_induction_tables_allocates_nothing) {
    for (const int calc_mode : {1, 2}) {
        ModelFile file;
        induction_tables(file);
        add_losses(file);
        expect_no_allocation(file, "10006 with tables", 0, calc_mode);
    }
}

TEST(Allocation, sample_of_a_wound_field_machine_with_iron_loss_allocates_nothing) {
    for (const int calc_mode : {1, 2}) {
        ModelFile file;
        wound_field_machine(file, 2e-3, 0.0, 0.1, 0.5, 5.0);
        const std::vector<Point> axes{{0.0, 1e6}, betas, amplitudes, {0.0, 1000.0}};
        file.integer("hysloss", "numMat", 1)
            .integer("hysloss", "matID1", 7)
            .table("hysloss", "hysloss7", axes, constant(30.0))
            .table("eddyloss", "eddyloss7", axes, constant(12.0));
        expect_no_allocation(file, "10007 with iron loss", 0, calc_mode);
    }
}

}  // namespace
}  // namespace kzb_test::allocation_test
