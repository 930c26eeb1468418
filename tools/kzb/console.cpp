#include "kzb/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

bool coloured() {
    const char* no_color = std::getenv("NO_COLOR");
    return isatty(STDERR_FILENO) != 0 && (no_color == nullptr || *no_color == '\0');
}

void put(std::string_view head, const char* colour, std::string_view message) {
    const std::string text = printable_line(message);  // names in it may hold anything
    const std::string line =
        coloured() ? fmt::format("kzb: {}{}\x1b[0m{}\n", colour, head, text) : fmt::format("kzb: {}{}\n", head, text);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

int terminal_width() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

void Context::print(std::string_view text) const {
    if (results == nullptr || std::fwrite(text.data(), 1, text.size(), results) != text.size() ||
        std::fflush(results) != 0) {
        throw Failure(exit_run_failed, fmt::format("standard output: cannot write: {}", std::strerror(errno)));
    }
}

void warn(std::string_view text) {
    put("warning: ", "\x1b[33m", text);
}

void tell_error(std::string_view text) {
    put("error: ", "\x1b[31m", text);
}

void tell(std::string_view text) {
    std::string line(text);
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

Progress::Progress(std::string_view what, std::uint64_t total)
    : what_(what),
      total_(std::max<std::uint64_t>(total, 1)),
      visible_(isatty(STDERR_FILENO) != 0),
      start_(std::chrono::steady_clock::now()),
      last_(start_) {}

Progress::~Progress() {
    if (drawn_) {
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
    }
}

void Progress::draw(std::uint64_t done) {
    using namespace std::chrono_literals;
    const auto now = std::chrono::steady_clock::now();
    if (now - start_ < 1s || now - last_ < 100ms) {
        return;
    }
    last_ = now;
    drawn_ = true;
    const double part = std::min(1.0, static_cast<double>(done) / static_cast<double>(total_));
    const int width = std::clamp(terminal_width() - static_cast<int>(what_.size()) - 12, 5, 50);
    const int full = static_cast<int>(part * width);
    const std::string bar =
        fmt::format("\r{} [{}{}] {:3.0f} %", what_, std::string(static_cast<std::size_t>(full), '#'),
                    std::string(static_cast<std::size_t>(width - full), '.'), 100.0 * part);
    std::fwrite(bar.data(), 1, bar.size(), stderr);
    std::fflush(stderr);
}

}  // namespace kzb::tool
