// Messages and progress on stderr.
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

namespace kzb::tool {

// "kzb: warning: ..." and "kzb: ..." on stderr, coloured on a terminal unless NO_COLOR is set.
void warn(std::string_view text);
void tell_error(std::string_view text);
// A plain line on stderr.
void tell(std::string_view text);

// A bar on stderr, shown on a terminal once the work has taken a second.
class Progress {
  public:
    Progress(std::string_view what, std::uint64_t total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    void at(std::uint64_t done) {
        if (visible_ && (done & 0xff) == 0) {
            draw(done);
        }
    }

  private:
    void draw(std::uint64_t done);
    std::string_view what_;
    std::uint64_t total_;
    bool visible_;
    bool drawn_ = false;
    std::chrono::steady_clock::time_point start_;
    std::chrono::steady_clock::time_point last_;
};

}  // namespace kzb::tool
