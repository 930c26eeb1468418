#include "models/coil_machine.h"

namespace kzb {

void CoilMachine::reset() {
    store_ = nullptr;
    circuit_ = CoilCircuit{};
    corrections_ = CoilCorrections{};
    position_ = 0.0;
}

void CoilMachine::accept() {
    circuit_.accept();
}

void CoilMachine::take_resistance(const KZB_STORE& store, const char* key) {
    if (circuit_.R_base == 0.0) {
        circuit_.R_base = get_double(store, "parameter", key);
        circuit_.R = circuit_.R_base;
    }
}

void CoilMachine::fold_corrections(const KZB_STORE& store) {
    corrections_.fold(turns_in_coil(store));
}

}  // namespace kzb
