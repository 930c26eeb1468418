// `kzb build`: makes KZB models. build pmsm makes one from a flux map in CSV.
#pragma once

#include <string>
#include <vector>

#include "kzb/build_pmsm.h"
#include "kzb/json.h"

namespace CLI {
class App;
}

namespace kzb::tool {

struct Context;

// The account of a build, for people and for programs.
std::string text_account(const PmsmOptions& options, const PmsmBuild& build,
                         const std::vector<DeviationReport>& reports);
Json json_account(const PmsmOptions& options, const PmsmBuild& build, const std::vector<DeviationReport>& reports);

// Induction machines, from an equivalent circuit.
void add_build_im(CLI::App& build, Context& context);
// Wound-field synchronous machines, from inductances or a flux map.
void add_build_wfsm(CLI::App& build, Context& context);

// Machines of separate coils: from maps of a coil, and from a closed form.
void add_build_sr(CLI::App& build, Context& context);
void add_build_solenoid(CLI::App& build, Context& context);
void add_build_stepper(CLI::App& build, Context& context);

// Generic models, from a description of their circuit.
void add_build_generic(CLI::App& build, Context& context);

}  // namespace kzb::tool
