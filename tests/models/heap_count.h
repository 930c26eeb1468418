// How often this test program took memory from the heap; the counting allocator stands in pmsm_allocation_test.cpp.
#pragma once

#include <cstddef>

namespace kzb_test {

extern std::size_t allocations;

}  // namespace kzb_test
