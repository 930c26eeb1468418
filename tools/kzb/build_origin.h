// What every built model tells of itself: version, title, date, source, preparer, rated data.
#pragma once

#include <map>
#include <string>

#include "KZBCalculator/kzb_store.h"

namespace kzb::tool {

struct Origin {
    std::string title;
    std::string preparer;  // empty: not told
    std::string input_file_name;
    std::map<std::string, double> information;  // rated_power, inertia, ..
};

void put_version(KZB_STORE* store);
// The date is that of SOURCE_DATE_EPOCH where that is set, else today.
void put_origin(KZB_STORE* store, const Origin& origin);

// category/key, unless the value is 0: not told.
void put_if_told(KZB_STORE* store, const char* category, const char* key, double value);

}  // namespace kzb::tool
