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

// After take_in(): Failure(exit_file) where a number of that table is none that can be looked up, or the nodes of an
// axis do not rise. An absent table is in order.
void require_usable_table(const KZB_STORE& store, const char* category, const char* key, const std::string& path);

}  // namespace kzb::tool
