// What the library prints while it works, caught so that it can be worded for the user.
//
// Some calls print on standard output and stderr. While an object of this class lives, both lead into memory.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kzb::tool {

// Of the library's lines those that tell of no loss.
bool tells_no_loss(std::string_view line);

class LibraryNoise {
  public:
    LibraryNoise();
    ~LibraryNoise();
    LibraryNoise(const LibraryNoise&) = delete;
    LibraryNoise& operator=(const LibraryNoise&) = delete;

    // Ends the catch. Each distinct line once, in order of first appearance, with " (n times)" when it came again.
    std::vector<std::string> lines();

  private:
    void restore();
    int memory_ = -1;
    int kept_out_ = -1;
    int kept_err_ = -1;
};

}  // namespace kzb::tool
