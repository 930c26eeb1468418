// What a run tells of itself beside its outputs: the passes of its iterations, and where lookups left their tables.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "circuit/generic/calc_eq_generic.h"
#include "kzb/json.h"
#include "kzb/lookup_exits.h"

namespace kzb::tool {

// Of a generic model; nothing for another.
std::optional<PassCounts> passes_of(const KZB_CALC& handle);

Json passes_json(const std::optional<PassCounts>& passes);
// One line; empty for a model without passes.
std::string passes_text(const std::optional<PassCounts>& passes);

Json exits_json(const std::vector<AxisExit>& exits);
// "current_phase/flux_u, axis 2: 12 lookups above 90, up to 93.2"
std::string exit_text(const AxisExit& exit);

}  // namespace kzb::tool
