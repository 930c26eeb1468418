// What the first stage of reading leaves of a table: one axis, one row, and where the body lies in the file. Throws
// bad_alloc where there is no memory even for that. Keywords that reach the limit of names do not come here.
#pragma once

#include <cstdint>
#include <new>
#include <string_view>

#include "store/store.h"

namespace kzb {

inline void put_placeholder(KZB_STORE& store, KZB_CATEGORY& category, std::string_view keyword,
                            std::int64_t file_position) {
    const int rows[1] = {1};
    int status = 1;
    KZB_TABLE* table = table_create_in_category(store, category, keyword, 1, rows, status);
    if (status != 0) {
        throw std::bad_alloc();
    }
    table->file_position = file_position;
}

}  // namespace kzb
