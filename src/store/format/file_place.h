// Names around a file that is about to be replaced.
#pragma once

#include <sys/types.h>

#include <string>

namespace kzb {

// How a file is written: beside its place, so that an old file stays until the new one is whole; or in its place, for a
// caller who puts the file where it belongs himself.
enum class Writing { beside, in_place };

// The name that `path` leads to through symbolic links at its end, whether anything stands there or not.
std::string behind_links(const std::string& path);

// Creates an empty file beside `place`, named after it. Its descriptor, with its name in `name`; -1 with the cause in
// errno, and nothing created.
int create_beside(const std::string& place, mode_t mode, std::string& name);

}  // namespace kzb
