// A table as one revision of the store knows it: what name resolution finds, so that it need not be repeated.
#pragma once

#include <cstdint>
#include <string_view>

#include "store/transform/phase_fold.h"
#include "table/table.h"

struct KZB_STORE;

namespace kzb {

struct ResolvedTable {
    std::uint64_t revision = 0;  // of the store at resolution; 0: never resolved
    bool category_exists = false;
    bool key_exists = false;  // a parameter of any kind has this key
    const KZB_TABLE* table = nullptr;
    PhaseFold fold;
};

ResolvedTable resolve_table(const KZB_STORE& store, std::string_view category, std::string_view key);

}  // namespace kzb
