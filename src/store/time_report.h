// The lookup statistics of a run, appended to "KZBtime.txt".
#pragma once

#include "store/store.h"

namespace kzb {

// Computes the linear core time and appends the report; silent where the file cannot be opened.
void append_time_report(KZB_STORE& store);

}  // namespace kzb
