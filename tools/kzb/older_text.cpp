#include "kzb/older_text.h"

#include <cstdlib>
#include <string_view>

#include "kzb/regular_file.h"

namespace kzb::tool {

namespace {

constexpr const char* variable = "KZB_READING_ASCII";

// Sections without a head and without a NUL byte: every binary file has counts and flags, and NUL bytes in them.
bool is_older_text(std::string_view start) {
    constexpr std::string_view head = "$DORN-KZ";
    return start.substr(0, head.size()) != head && start.find('*') != std::string_view::npos &&
           start.find('\0') == std::string_view::npos;
}

}  // namespace

OlderText::OlderText(const std::string& path) {
    constexpr std::size_t looked_at = 4096;
    set_ = std::getenv(variable) == nullptr && is_older_text(start_of_regular_file(path, looked_at, "a KZB file"));
    if (set_) {
        setenv(variable, "1", 1);
    }
}

OlderText::~OlderText() {
    if (set_) {
        unsetenv(variable);
    }
}

}  // namespace kzb::tool
