// What an edit did to a store: which parameters and tables came, went or hold something else.
#pragma once

#include <string>
#include <vector>

#include "store/store.h"

namespace kzb::tool {

// Names as "category/key", in the order of the store.
struct StoreChanges {
    std::vector<std::string> added;
    std::vector<std::string> changed;
    std::vector<std::string> removed;
    bool empty() const { return added.empty() && changed.empty() && removed.empty(); }
    // Added or changed.
    bool touches(const std::string& name) const;
};

StoreChanges changes_between(const KZB_STORE& before, const KZB_STORE& after);

}  // namespace kzb::tool
