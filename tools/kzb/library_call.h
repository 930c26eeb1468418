// A store call whose cause of failure stands partly in its result, partly in the store and partly in what it prints.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "store/store.h"

namespace kzb::tool {

struct LibraryAnswer {
    int result = 0;
    int error = 0;                  // the store's code after the call
    std::vector<std::string> said;  // what it printed, but for lines that tell of no loss
};

// The store's error is 0 before the call.
LibraryAnswer ask_library(KZB_STORE& store, const std::function<int(KZB_STORE*)>& call);

// Text and code of the error, else what was printed, else "the library tells no cause".
std::string cause_of(const LibraryAnswer& answer);

}  // namespace kzb::tool
