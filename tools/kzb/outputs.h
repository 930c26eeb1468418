// The quantities that a run can record, each with its unit and the library call that reads it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/machine.h"
#include "kzb/scenario.h"

namespace kzb::tool {

// What the run itself knows of a sample.
struct Sample {
    double time = 0.0;
    double displacement = 0.0;    // degrees, or metres
    double speed = 0.0;           // rpm, or m/s
    double torque = 0.0;          // or force; read once per sample, since reading it can be the evaluation
    std::vector<double> applied;  // input of each phase, or source
    // Of each motion of a generic model.
    std::vector<double> displacements;
    std::vector<double> speeds;
    std::vector<double> forces;
};

struct Output {
    std::string name;   // "i_u"
    std::string group;  // "i": names all phases in a scenario
    std::string unit;   // "A"; empty when the KZB file does not tell it
    bool by_default = true;
    std::function<double(const Sample&, KZB_CALC*)> read;
    bool ends_sample = false;  // reading it moves the history of the machine on: after all others
    std::string label = {};    // of the library's own list of ports; names the output too

    // Unit in the last part: "i_u_A".
    std::string column() const { return unit.empty() ? name : name + '_' + unit; }
};

// What this model offers, in the order of the columns; the time is the first.
std::vector<Output> outputs_of(const Machine& machine, bool current_driven, KZB_CALC* handle);

// Those that the scenario wishes, the time first. Failure(exit_file) for a name that is not offered.
std::vector<Output> chosen_outputs(const std::vector<Output>& offered, const Scenario& scenario);

}  // namespace kzb::tool
