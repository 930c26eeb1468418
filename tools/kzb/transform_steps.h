// What the kinds of kzb transform do to a store: each asks first whether the model allows it, since the library's calls
// quietly do nothing, or half of it, where it does not.
#pragma once

#include <optional>
#include <string>

#include "kzb/model_rewrite.h"

namespace kzb::tool {

struct SkewSideOptions {
    std::string type = "none";
    std::optional<double> angle_deg;
    std::optional<int> steps;
};

struct SkewOptions {
    SkewSideOptions a;
    SkewSideOptions b;
    std::string interpolation = "linear";
};

// `kind` is skew, expand, ldlq, dq0 or uvw. Failure(exit_usage) for skew options that do not fit together; the edit
// throws Failure(exit_run_failed) where the model does not allow the kind or a value could not be formed.
Edit transform_edit(const std::string& kind, const SkewOptions& skew, const RewriteOptions& options);

}  // namespace kzb::tool
