// What an induction machine is built from: the quantities of its equivalent circuit and of its rating, and the names
// under which parameter files have them.
#pragma once

#include "kzb/build_im.h"
#include "kzb/parameter_file.h"

namespace kzb::tool {

struct ImSource {
    ImCircuit circuit;
    ImRated rated;
    std::map<std::string, double> information;  // rated data that the source tells
};

// Failure for what is missing; the curve of `saturation` replaces a main inductance.
ImSource read_im_source(const ImOptions& options);

const std::vector<ParameterQuantity>& im_quantities(CircuitForm form);

}  // namespace kzb::tool
