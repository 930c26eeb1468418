#include "interface/machines.h"

#include "interface/generic_machine.h"
#include "interface/other_machines.h"

namespace kzb_test {
namespace {

void fill_rotary(ModelFile& file) {
    rotary_frame(file, 1, 0.5);
    add_ld_lq(file, 2e-3, 2e-3, 0.1);
}

void fill_linear(ModelFile& file) {
    linear_machine(file, 1e-3, 0.0, 0.1, 0.5);
}

void fill_stepping(ModelFile& file) {
    stepping_machine(file, 2e-3, 0.0, 0.01, 0.5);
}

void fill_solenoid(ModelFile& file) {
    solenoid_machine(file, 2e-3, 0.01, 0.5);
}

void fill_induction(ModelFile& file) {
    induction_constants(file);
}

void fill_wound_field(ModelFile& file) {
    wound_field_machine(file, 2e-3, 0.0, 0.1, 0.5, 5.0);
}

void fill_generic(ModelFile& file) {
    generic_machine(file);
}

template <int phases>
void fill_reluctance(ModelFile& file) {
    reluctance_machine(file, phases, 2e-3, 0.0, 0.5);
}

}  // namespace

const std::vector<Machine> machines = {
    {10000, rotary_pm, 3, fill_rotary},         {10003, stepping, 4, fill_stepping},
    {10004, solenoid, 1, fill_solenoid},        {10005, linear_pm, 3, fill_linear},
    {10006, induction, 3, fill_induction},      {10007, wound_field, 4, fill_wound_field},
    {10008, generic, 0, fill_generic},          {10010, reluctance, 3, fill_reluctance<3>},
    {10011, reluctance, 4, fill_reluctance<4>}, {10012, reluctance, 5, fill_reluctance<5>},
};

}  // namespace kzb_test
