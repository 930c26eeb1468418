#include "bench/reference/im_machine.h"

#include <cmath>

#include "bench/reference/table_formula.h"

namespace kzb_reference {

namespace {

constexpr const char* tables = "InductionParam_HigherAccuracy";

double mutual(double current) {
    return 0.143 / (1.0 + current / 60.0);
}

void put_tables(Store& store) {
    const std::vector<Axis> axes = {evenly(-50.0, 50.0, 21), evenly(0.0, 60.0, 16)};
    const std::vector<int> plain = {0, 0};
    fill(store, tables, "L11_table", axes, plain, [](const double* p) { return mutual(p[1]) + 0.0052; });
    fill(store, tables, "M12_table", axes, plain, [](const double* p) { return mutual(p[1]); });
    fill(store, tables, "M21_table", axes, plain, [](const double* p) { return 0.995 * mutual(p[1]); });
    fill(store, tables, "L22_table", axes, plain,
         [](const double* p) { return mutual(p[1]) + 0.005 / (1.0 + 0.002 * std::fabs(p[0])); });
    fill(store, tables, "R2_table", axes, plain,
         [](const double* p) { return 1.05 * (1.0 + 0.003 * std::fabs(p[0])); });
}

void put_losses(const SampleInduction& machine, Store& store) {
    if (machine.tables && machine.ironloss_table) {
        fill(store, tables, "ironloss_table", {evenly(-50.0, 50.0, 11), evenly(0.0, 60.0, 7)}, {0, 0},
             [](const double* p) { return 60.0 + 0.4 * std::fabs(p[0]) + 0.5 * p[1]; });
    }
    const std::vector<Axis> axes = {evenly(0.0, 60.0, 7), evenly(0.0, 50.0, 6), evenly(0.0, 200.0, 9),
                                    evenly(0.0, 600.0, 4), evenly(0.0, 20000.0, 3)};
    const std::vector<int> plain = {0, 0, 0, 0, 0};
    if (machine.loss_table) {
        fill(store, "loss_table", "iron_loss", axes, plain, [](const double* p) {
            return 0.5 * p[0] + 0.3 * p[1] + 0.01 * p[2] * p[2] + 0.02 * p[3] + 1e-4 * p[4] + 5.0;
        });
    }
    if (machine.copper_loss_table) {
        fill(store, "equivalent_resistance_table", "copper_loss", axes, plain, [](const double* p) {
            return 0.02 + 1e-4 * p[0] + 2e-4 * p[1] + 1e-6 * p[2] * p[2] + 1e-5 * p[3] + 1e-7 * p[4];
        });
    }
}

}  // namespace

void make_sample_induction(const SampleInduction& machine, Store& store) {
    kzb_put_int("control", "motor_type", 10006, store);
    kzb_put_int("control", "number_of_poles", machine.poles, store);
    kzb_put_int("control", "Winding_Pattern_Flag", machine.connection, store);
    kzb_put_double("control", "turns_in_coil", 40.0, store);
    if (machine.temperature_data) {
        kzb_put_double("control", "base_coil_temperature", 290.0, store);
        kzb_put_double("control", "coef_coil_temperature", 3000.0, store);
        kzb_put_double("control", "base_1st_coil_temperature", 313.15, store);
        kzb_put_double("control", "coef_1st_coil_temperature", 3931.0, store);
        kzb_put_double("control", "base_2nd_coil_temperature", 333.15, store);
        kzb_put_double("control", "coef_2nd_coil_temperature", 4029.0, store);
    }
    kzb_put_double("parameter", "RU", 0.9, store);
    kzb_put_double("information", "rated_freqency", 50.0, store);
    kzb_put_double("InductionParam", "R1", machine.r1, store);
    kzb_put_double("InductionParam", "g0", machine.g0, store);
    kzb_put_double("InductionParam", "R2", 1.05, store);
    kzb_put_double("InductionParam", "X1", 1.6, store);
    kzb_put_double("InductionParam", "X2", 1.7, store);
    kzb_put_double("InductionParam", "b0", 1.0 / 45.0, store);
    if (machine.tables) {
        put_tables(store);
    }
    put_losses(machine, store);
}

}  // namespace kzb_reference
