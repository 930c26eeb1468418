#include "kzb/entry_name.h"

namespace kzb::tool {

std::optional<EntryName> find_entry(const std::string& name, const std::function<bool(const EntryName&)>& exists) {
    for (std::size_t slash = name.find('/'); slash != std::string::npos; slash = name.find('/', slash + 1)) {
        EntryName entry{name.substr(0, slash), name.substr(slash + 1)};
        if (exists(entry)) {
            return entry;
        }
    }
    return std::nullopt;
}

}  // namespace kzb::tool
