// Random model files of the machines with separate windings: switched reluctance, solenoid, stepping motor.
#pragma once

#include <memory>
#include <random>
#include <string>

#include "bench/reference/coil_machine.h"

namespace kzb_bench_test {

enum class TableForm {
    plausible,  // the model's own axes, inductances of a machine, saturating
    random,     // the model's own axes, values at random
    foreign,    // tables of any number of axes, some absent
};

struct CoilModel {
    int motor_type = 10010;  // 10003, 10004, 10010 to 10012
    TableForm form = TableForm::plausible;
};

std::string name_of(TableForm form);
int coils_of(int motor_type);

// Fills `store` with a model whose corrections, turns, temperatures and axes are drawn from `random`.
void make_random_coil_model(const CoilModel& model, std::mt19937_64& random, kzb_reference::Store& store);

std::unique_ptr<kzb_reference::CoilMachine> make_coil_reference(int motor_type, int calc_mode,
                                                                kzb_reference::Store& store);

}  // namespace kzb_bench_test
