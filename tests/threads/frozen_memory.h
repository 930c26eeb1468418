// Memory that can be frozen: what is allocated while collecting, and the library's own writable data, become
// unwritable, so that a call that writes to any of it is caught in the act.
//
// The program that links this takes its allocations from here; no sanitizer can be in it.
#pragma once

#include <functional>

namespace kzb_test {

// Allocations of any library go to the collected memory from now on, or no longer.
void collect_allocations(bool on);

// Runs `body` with all collected memory frozen; false when it tried to write there. What it allocates itself is free.
bool leaves_frozen_memory_alone(const std::function<void()>& body);

}  // namespace kzb_test
