// Names of the form CATEGORY/KEY, as the user types them.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace kzb::tool {

struct EntryName {
    std::string category;
    std::string key;
    std::string text() const { return category + '/' + key; }
};

// Category and key may both hold a slash, so every one of them is tried as the border: the first for which `exists`
// holds; nothing when there is none.
std::optional<EntryName> find_entry(const std::string& name, const std::function<bool(const EntryName&)>& exists);

}  // namespace kzb::tool
