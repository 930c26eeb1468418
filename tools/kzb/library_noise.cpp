#include "kzb/library_noise.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <utility>

#include "fmt/format.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

constexpr off_t read_limit = 1 << 20;  // of a broken file that makes the library print without end

void flush_all() {
    std::cout.flush();
    std::fflush(stdout);
    std::fflush(stderr);
}

std::string content(int fd) {
    std::string text;
    std::array<char, 4096> block{};
    lseek(fd, 0, SEEK_SET);
    for (ssize_t n = read(fd, block.data(), block.size()); n > 0; n = read(fd, block.data(), block.size())) {
        text.append(block.data(), static_cast<std::size_t>(n));
        if (static_cast<off_t>(text.size()) > read_limit) {
            break;
        }
    }
    return text;
}

// perror appends ": Success" where the fault was none of the system's.
std::string without_success(std::string line) {
    const std::string tail = fmt::format(": {}", std::strerror(0));
    if (line.size() > tail.size() && line.compare(line.size() - tail.size(), tail.size(), tail) == 0) {
        line.resize(line.size() - tail.size());
    }
    return line;
}

// perror appends ": " and the system's error text to a text that often ends its own line first.
bool is_perror_tail(std::string_view line) {
    return line.substr(0, 2) == ": ";
}

}  // namespace

bool tells_no_loss(std::string_view line) {
    return line.find("Encoding from UTF-8 to SJIS is not performed.") != std::string_view::npos ||
           line.find("The table values have been already read in case of old formats files.") !=
               std::string_view::npos ||
           line.find("application is not found.") != std::string_view::npos;
}

LibraryNoise::LibraryNoise() {
    flush_all();
    memory_ = memfd_create("noise", MFD_CLOEXEC);
    kept_out_ = dup(STDOUT_FILENO);
    kept_err_ = dup(STDERR_FILENO);
    if (memory_ >= 0 && kept_out_ >= 0 && kept_err_ >= 0) {
        dup2(memory_, STDOUT_FILENO);
        dup2(memory_, STDERR_FILENO);
    }
}

LibraryNoise::~LibraryNoise() {
    restore();
    for (const int fd : {memory_, kept_out_, kept_err_}) {
        if (fd >= 0) {
            close(fd);
        }
    }
}

void LibraryNoise::restore() {
    flush_all();
    if (kept_out_ >= 0 && kept_err_ >= 0) {
        dup2(kept_out_, STDOUT_FILENO);
        dup2(kept_err_, STDERR_FILENO);
    }
}

std::vector<std::string> LibraryNoise::lines() {
    restore();
    const std::string text = printable(memory_ >= 0 ? content(memory_) : std::string());
    std::vector<std::pair<std::string, int>> counted;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = without_success(text.substr(start, end - start));
        start = end + 1;
        if (line.empty() || is_perror_tail(line)) {
            continue;
        }
        const auto known =
            std::find_if(counted.begin(), counted.end(), [&line](const auto& entry) { return entry.first == line; });
        if (known == counted.end()) {
            counted.emplace_back(line, 1);
        } else {
            ++known->second;
        }
    }
    std::vector<std::string> result;
    for (const auto& [line, count] : counted) {
        result.push_back(count == 1 ? line : fmt::format("{} ({} times)", line, count));
    }
    return result;
}

}  // namespace kzb::tool
