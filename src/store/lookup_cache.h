// Tables that the exported lookup resolved lately, found again by the addresses of the caller's texts.
//
// An address alone proves nothing: an entry counts only if the texts behind the addresses still read as they did and
// the store's revision is still the same.
#pragma once

#include <array>
#include <cstddef>
#include <string>

#include "store/resolved_table.h"
#include "table/lookup.h"

struct KZB_STORE;

namespace kzb {

class LookupCache {
  public:
    const ResolvedTable& find(const KZB_STORE& store, const char* category, const char* key);

  private:
    struct Entry {
        const char* category_address = nullptr;
        const char* key_address = nullptr;
        std::string category;
        std::string key;
        ResolvedTable resolved;
    };
    static constexpr std::size_t entry_count = 64;
    std::array<Entry, entry_count> entries_;
};

}  // namespace kzb
