// The work of `kzb build im`: equivalent circuit and magnetizing curve in, KZB model of an induction machine out.
//
// InductionParam                  R1, R2, X1, X2, b0, g0 of a circuit with equal leakages, at the rated frequency:
//                                 k = sqrt(Ls / Lr) brings any linear circuit to it, M' = k M, Lr' = Ls, R2' = k^2 R2,
//                                 without a change at the terminals
// InductionParam_HigherAccuracy   also L11_table, L22_table, M12_table, M21_table, R2_table and, with an iron loss,
//                                 ironloss_table over (slip frequency Hz, peak primary current A): at each node the
//                                 magnetizing current of the circuit in steady state
#pragma once

#include <map>
#include <string>
#include <vector>

#include "kzb/build_grids.h"
#include "kzb/build_model.h"
#include "kzb/im_circuit.h"

namespace kzb::tool {

enum class CircuitForm { t, gamma, inverse_gamma };
enum class ImApplication { constants, tables };

struct ImOptions {
    std::string parameter_path;  // empty: all by `parameters`
    std::string saturation_path;
    std::string operating_point_path;
    std::string out_path;
    std::string form = "binary";
    std::vector<std::string> parameters;  // QUANTITY=NUMBER or QUANTITY=NAME
    CircuitForm circuit = CircuitForm::t;
    ImApplication application = ImApplication::tables;
    int connection = 0;
    double slip_max = 0.0;     // Hz; 0: twice the rated frequency
    int slip_nodes = 41;       // from 0 to slip_max, as many below 0
    double current_max = 0.0;  // A peak; 0: from the rated voltage
    int current_nodes = 121;
    double base_primary_temperature = 0.0;  // K; 0: not told
    double base_secondary_temperature = 0.0;
    double primary_coefficient = 0.0;  // ppm/K; 0: not told
    double secondary_coefficient = 0.0;
    std::string title;
    std::string preparer;
    std::map<std::string, double> information;
};

// Peak phase values, SI; 0 where the source does not tell.
struct ImRated {
    double frequency = 0.0;
    double voltage = 0.0;
    double iron_loss = 0.0;  // W at iron_flux, at the rated frequency
    double iron_flux = 0.0;  // Vs peak
};

struct ImBuild {
    ImCircuit circuit;
    ImRated rated;
    ImCircuit constants;  // of InductionParam: linear, equal leakages
    TableAxis slip;
    TableAxis current;
    StorePointer store;
    std::vector<std::string> notes;  // what was assumed, continued or left out
};

// All in memory: nothing is written.
ImBuild build_im(const ImOptions& options);

// The linear circuit with equal leakages and the same terminal behaviour; `inductance` is the main one.
ImCircuit equal_leakage_circuit(const ImCircuit& circuit, double inductance);

}  // namespace kzb::tool
