// `kzb build`: makes KZB models. build pmsm makes one from a flux map in CSV.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "kzb/build_pmsm.h"

namespace kzb::tool {

// The account of a build, for people and for programs.
std::string text_account(const PmsmOptions& options, const PmsmBuild& build,
                         const std::vector<DeviationReport>& reports);
nlohmann::ordered_json json_account(const PmsmOptions& options, const PmsmBuild& build,
                                    const std::vector<DeviationReport>& reports);

}  // namespace kzb::tool
