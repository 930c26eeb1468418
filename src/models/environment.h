// Numbers and texts from the environment, read the same under every locale of the host.
#pragma once

#include <string>

namespace kzb {

// The number that the text of a variable begins with, 0 where it begins with none; `unset` when the variable isn't set.
double environment_double(const char* name, double unset);
// Likewise; out of range gives the end of the range.
int environment_int(const char* name, int unset);
std::string environment_text(const char* name, const std::string& unset);

}  // namespace kzb
