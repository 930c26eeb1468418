// A text file of rows that a model writes while it is debugged. Every failure is silent.
//
// Rows read the same under every locale of the host. DORN_KZ_DEBUG_OUTPUT, a non-zero integer, asks for such files.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace kzb {

// The integer in DORN_KZ_DEBUG_OUTPUT; 0 when it is not set.
int debug_output_level();

class DebugFile {
  public:
    // Creates the file in the current directory and writes `header`.
    void create(const char* name, std::string_view header);
    bool is_open() const { return file_ != nullptr; }
    void write(std::string_view text);
    // "%20.10e" fields with commas between them and a line end.
    void row(std::initializer_list<double> fields);

  private:
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Close> file_;
    std::string line_;
};

}  // namespace kzb
