// The files that a generic model writes while it is debugged: DORN_KZ_DEBUG_OUTPUT read as 1 asks for them.
//
// Files of the steps (IV, Axis, L, Flux) have a row per solved step, those of the passes (Itr, Itr_L, Itr_Flux,
// Itr_Axis) a row per pass.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "circuit/generic/generic_circuit.h"
#include "models/debug_file.h"

namespace kzb {

class GenericDebug {
  public:
    // Creates the files when the environment asks for them.
    void open();
    bool is_on() const { return on_; }
    void write_headers(const KZCircuitForGeneric& circuit);

    void pass_tables(const KZCircuitForGeneric& circuit, const std::vector<double>& axes, double time, int iteration);
    void pass_solution(const KZCircuitForGeneric& circuit, double time, int iteration, double residual);
    void step(const KZCircuitForGeneric& circuit, const std::vector<double>& axes, double time, int iterations,
              int best_iteration);

  private:
    // FEM coils that a branch uses, with their position in the element types plus 1.
    struct Coil {
        const KZFEMCoil* coil;
        int key;
    };
    static std::vector<Coil> used_coils(const KZCircuitForGeneric& circuit);

    void begin(double time) { line_.clear(), number(time); }
    void begin(double time, int iteration) { begin(time), integer(iteration); }
    void number(double value);
    void integer(int value);
    void solution(const KZCircuitForGeneric& circuit);
    void inductances(const std::vector<Coil>& coils);
    void end(DebugFile& file);

    bool on_ = false;
    DebugFile iv_, axis_, l_, flux_, itr_, itr_l_, itr_flux_, itr_axis_;
    std::string line_;
};

}  // namespace kzb
