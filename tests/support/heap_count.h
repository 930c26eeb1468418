// How often the test program took memory from the heap by operator new; heap_count.cpp replaces it.
#pragma once

#include <cstddef>

namespace kzb_test {

extern std::size_t allocations;

}  // namespace kzb_test
