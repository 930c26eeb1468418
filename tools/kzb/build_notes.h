// What a build assumed, continued or left out, in words.
#pragma once

#include <string>
#include <vector>

#include "kzb/build_pmsm.h"

namespace kzb::tool {

std::vector<std::string> notes_of(const SourceMap& source, const MachineMap& map, const TableGrids& grids,
                                  const FluxRange& flux_range, const PmsmOptions& options);

}  // namespace kzb::tool
