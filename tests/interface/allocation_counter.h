// Counts what the program takes from the heap, the shared library included: the allocation calls of the C library are
// replaced by counting ones.
#pragma once

#include <atomic>

// A sanitizer brings its own allocator: nothing to replace there.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KZB_COUNTS_ALLOCATIONS 0
#elif defined(__has_feature)
#define KZB_COUNTS_ALLOCATIONS !(__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define KZB_COUNTS_ALLOCATIONS 1
#endif

namespace kzb_test {

extern std::atomic<long> allocations;

}  // namespace kzb_test
