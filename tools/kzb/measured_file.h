// Text files of measured data that a model takes in: what a refusal of the library means for the user.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "kzb/library_call.h"

namespace kzb::tool {

// Calls the library for the file at `path`, which is `expected` ("a correction file"). Failure when it refuses:
// exit_file for a file that is not valid, exit_run_failed for one that does not suit the model.
void take_in(KZB_STORE& store, const std::string& path, std::string_view expected,
             const std::function<int(const char*, KZB_STORE*)>& call);

}  // namespace kzb::tool
