// Files of the library's own, kept away from the host's standard streams.
//
// A host may have closed its standard output or error; the next file that is opened then gets that number, and what
// anybody prints later would land in it.
#pragma once

#include <cstdio>

namespace kzb {

// As std::fopen, above the numbers of the standard streams and not handed on to programs that the host starts.
std::FILE* open_own_file(const char* path, const char* mode);

// The same for a descriptor: the one given, or another in its place; -1 stays.
int above_standard_streams(int descriptor);

}  // namespace kzb
