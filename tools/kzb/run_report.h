// What a run tells of itself beside its outputs: the passes of its iterations, and where lookups left their tables.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/json.h"
#include "kzb/lookup_exits.h"
#include "models/pass_counts.h"

namespace kzb::tool {

// How the steps of a run were solved.
struct PassReport {
    bool iterates = false;  // else each step is one pass
    int most_allowed = 1;   // passes of a step
    PassCounts counts;
};

// Of the model behind the handle, `steps` times of which were executed.
PassReport passes_of(const KZB_CALC& handle, std::uint64_t steps);

Json passes_json(const PassReport& passes);
// One line.
std::string passes_text(const PassReport& passes);
// What to warn of; empty where all steps converged.
std::string unconverged_text(const PassReport& passes);

Json exits_json(const std::vector<AxisExit>& exits);
// "current_phase/flux_u, axis 2: 12 lookups above 90, up to 93.2"
std::string exit_text(const AxisExit& exit);

}  // namespace kzb::tool
