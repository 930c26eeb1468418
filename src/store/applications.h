// Applications of a file: a motor word and, for some motors, a model word.
#pragma once

#include <array>
#include <string_view>

#include "store/store.h"

namespace kzb {

struct ApplicationName {
    const char* motor = nullptr;
    const char* application = nullptr;  // null for motors of one word
};

// How many of the twelve applications the file offers.
int application_count(const KZB_STORE& store);

// The `index`-th offered application, in an order of its own; both null beyond the last.
ApplicationName application_at(const KZB_STORE& store, int index);

}  // namespace kzb
