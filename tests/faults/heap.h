// The heap of the test program, the shared library included: counted, and refusing on request.
//
// The allocation calls of the C library are replaced; those of C++ rest on them. Everything here is of one thread.
#pragma once

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KZB_OWN_HEAP 0
#elif defined(__has_feature)
#define KZB_OWN_HEAP !(__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define KZB_OWN_HEAP 1
#endif

namespace kzb_test {

// A sanitizer brings its own heap: nothing is refused there, and only the bytes in use are known.
inline constexpr bool heap_is_own = KZB_OWN_HEAP != 0;

enum class Refusal { once, from_then_on };

// While it lives, the `number`-th allocation from its making on, from 1, is refused, and all behind it with
// `from_then_on`. Number 0 refuses nothing and only counts.
class ScarceHeap {
  public:
    ScarceHeap(long number, Refusal refusal);
    ScarceHeap(const ScarceHeap&) = delete;
    ScarceHeap& operator=(const ScarceHeap&) = delete;
    ~ScarceHeap();
    long asked() const;    // allocations so far
    long refused() const;  // of them refused
};

// Blocks in use.
long live_blocks();

// Bytes in use, and the most there were since the last mark_peak().
std::size_t live_bytes();
std::size_t peak_bytes();
void mark_peak();

}  // namespace kzb_test
