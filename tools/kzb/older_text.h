// A file of the older layout does not tell its form, and the library takes it for a binary one. One that is text is
// read as ascii while an object of this class lives, unless the environment already says how to read.
#pragma once

#include <string>

namespace kzb::tool {

class OlderText {
  public:
    // Failure(exit_file) when the file cannot be opened or is no regular file.
    explicit OlderText(const std::string& path);
    ~OlderText();
    OlderText(const OlderText&) = delete;
    OlderText& operator=(const OlderText&) = delete;

  private:
    bool set_ = false;
};

}  // namespace kzb::tool
