// CoilMachine: what the switched reluctance motor, the solenoid and the stepping motor have in common.
//
// Each is a set of separate coils (CoilCircuit) with inductances, fluxes and torque or force from tables. A step never
// commits: `accept` alone moves present values to their previous fields. Phases count from 1.
//
// The order of floating-point operations is part of the definition throughout.
#pragma once

#include "models/calc.h"
#include "models/coil_circuit.h"
#include "models/turns.h"
#include "store/store.h"

namespace kzb {

class CoilMachine : public Calc, public CorrectionSetters<CoilCorrections> {
  public:
    // Back to the defaults, unbound.
    virtual void reset();

    // ---- before binding
    void set_resistance_base(double ohm) { circuit_.R_base = ohm; }

    // ---- initial conditions and inputs; a phase that the machine does not have is left alone
    void set_initial_current(int phase, double ampere) { circuit_.set_initial_current(phase, ampere); }
    void set_initial_time(double second) { circuit_.set_initial_time(second); }
    // Moves the old value to the previous one before storing.
    void set_current(int phase, double ampere) { circuit_.set_current(phase, ampere); }
    void set_position(double position) { position_ = position; }
    void set_time(double second) { circuit_.time = second; }

    // Moves present values to their previous fields.
    virtual void accept();

    // ---- results; 0.0 outside the machine's phases
    double current_output(int phase) const { return CoilCircuit::of_phase(circuit_.current_out, phase); }
    // What the magnet induced, by coil; 0.0 of a machine without one.
    virtual double voltage(int phase) const = 0;
    virtual double inductance_element(int row, int column) const { return circuit_.inductance_element(row, column); }
    double resistance() const { return circuit_.R; }  // Ohm, at the temperature of the last step
    double position() const { return position_; }     // mechanical rad or m

    // ---- all that the machine holds
    const CoilCircuit& circuit() const { return circuit_; }

    // Appends a record of every step to a text file in the current directory; off unless a developer turns it on.
    void set_debug_dump(bool on) { debug_dump_ = on; }

  protected:
    // The steps that binding has in common.
    void take_resistance(const KZB_STORE& store, const char* key);
    void fold_corrections(const KZB_STORE& store);

    KZB_STORE* store_ = nullptr;  // borrowed; null until all of `bind` is done
    CoilCircuit circuit_;
    double position_ = 0.0;
    bool debug_dump_ = false;
};

}  // namespace kzb
