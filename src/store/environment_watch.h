// The environment variables that act on lookups, tested at every exported call that looks up.
//
// The environment is an array of pointers, and every setenv, putenv and unsetenv changes one of them. The watch keeps a
// copy of the array: while the pointers are the same, so are the variables, and no text need be read. The limit: a name
// that the host rewrites inside a buffer it once gave to putenv, at the same address, is not seen.
#pragma once

#include <vector>

namespace kzb {

class EnvironmentWatch {
  public:
    // Looks at the environment as it is now.
    void refresh() {
        if (!unchanged()) {
            read();
        }
    }
    bool generic_path() const { return generic_path_; }  // USE_GENERIC_INTERPOLATION is set
    bool debug_lines() const { return debug_lines_; }    // KZBFILEHANDLER_DEBUG_MODE is set

  private:
    bool unchanged() const;
    void read();

    char** array_ = nullptr;
    std::vector<char*> entries_;  // the array's pointers, the closing null among them
    bool seen_ = false;
    bool generic_path_ = false;
    bool debug_lines_ = false;
};

}  // namespace kzb
