#include "kzb/findings.h"

#include <algorithm>

#include "fmt/format.h"
#include "kzb/text.h"

namespace kzb::tool {

std::string_view name_of(Severity severity) {
    return severity == Severity::error ? "error" : "warning";
}

void Findings::error(std::string_view check, const Subject& subject, std::string_view message) {
    add(Severity::error, check, subject, message);
}

void Findings::warning(std::string_view check, const Subject& subject, std::string_view message) {
    add(Severity::warning, check, subject, message);
}

void Findings::add(Severity severity, std::string_view check, const Subject& subject, std::string_view message) {
    list_.push_back({severity, std::string(check), valid_utf8(subject.category), valid_utf8(subject.key), subject.place,
                     valid_utf8(message)});
}

std::size_t Findings::count(Severity severity) const {
    return static_cast<std::size_t>(std::count_if(
        list_.begin(), list_.end(), [&](const Finding& finding) { return finding.severity == severity; }));
}

std::string axis_place(std::size_t axis) {
    return fmt::format("axis {}", axis + 1);
}

std::string node_place(std::size_t axis, std::size_t node) {
    return fmt::format("axis {}, node {}", axis + 1, node);
}

std::string value_place(const KZB_TABLE& table, std::size_t position) {
    constexpr std::size_t most = 16;  // of a table with more axes the first ones
    const std::size_t shown = std::min(table.strides.size(), most);
    std::string text = "value [";
    for (std::size_t axis = 0; axis < shown; ++axis) {
        const auto stride = static_cast<std::size_t>(std::max(table.strides[axis], 1));
        text += fmt::format("{}{}", axis == 0 ? "" : ", ", position / stride);
        position %= stride;
    }
    return text + (shown < table.strides.size() ? ", ...]" : "]");
}

}  // namespace kzb::tool
