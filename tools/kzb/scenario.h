// A scenario: everything that `kzb run` needs to know beside the KZB file. Read from TOML; docs/scenario.md lists the
// keys.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/machine.h"
#include "kzb/mechanics.h"
#include "kzb/scenario_generic.h"
#include "kzb/scenario_slip.h"
#include "kzb/scenario_supply.h"
#include "kzb/waveform.h"

namespace kzb::tool {

// One configuration call of the library, with the place in the scenario that asked for it.
struct ModelCall {
    std::string name;   // "kzbcalcSetCorrectionOfFlux"
    std::string place;  // "file:line: corrections.flux"
    std::function<int(KZB_CALC*)> call;
};

struct RecordWish {
    std::string name;
    std::string place;
};

struct Scenario {
    std::string file;
    bool current_driven = false;
    double start = 0.0;
    double step = 0.0;
    std::uint64_t samples = 0;  // at start, start + step, ... up to stop
    double time_of(std::uint64_t sample) const { return start + static_cast<double>(sample) * step; }

    std::vector<Waveform> sources;                                   // one per phase, or none with a supply
    SupplyData supply;                                               // monostate: the sources
    std::vector<std::vector<std::pair<double, double>>> open_phase;  // per phase: [from, to) without a connection
    MotionData motion;
    SlipData slip;                       // of an induction machine with tables over it
    GenericScenario generic;             // of a generic model
    std::vector<ModelCall> before_data;  // calls before kzbcalcSetData
    std::vector<ModelCall> after_data;   // and after it

    std::vector<RecordWish> record;  // empty: all outputs
    std::uint64_t record_every = 1;
    double record_from = 0.0;
};

// Failure(exit_file) with the line for anything that is wrong in the file.
Scenario read_scenario(const std::string& file, const Machine& machine);

}  // namespace kzb::tool
