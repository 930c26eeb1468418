#include "faults/heap.h"

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <limits>

namespace {

constexpr long never = std::numeric_limits<long>::max();

std::atomic<bool> counting{false};
std::atomic<long> asked_count{0};
std::atomic<long> refused_count{0};
std::atomic<long> first_refused{never};
std::atomic<long> last_refused{never};

std::atomic<long> blocks{0};
std::atomic<std::size_t> bytes{0};
std::atomic<std::size_t> most_bytes{0};

void took(std::size_t size) {
    ++blocks;
    const std::size_t now = bytes += size;
    if (now > most_bytes) {
        most_bytes = now;
    }
}

void gave(std::size_t size) {
    --blocks;
    bytes -= size;
}

}  // namespace

// Seen by the shared library, so not hidden as the rest of the program is.
#pragma GCC visibility push(default)
#if KZB_OWN_HEAP
namespace {

bool refuses() {
    if (!counting) {
        return false;
    }
    const long number = ++asked_count;
    if (number < first_refused || number > last_refused) {
        return false;
    }
    ++refused_count;
    errno = ENOMEM;
    return true;
}

void* counted(void* block) {
    if (block != nullptr) {
        took(malloc_usable_size(block));
    }
    return block;
}

}  // namespace

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    return refuses() ? nullptr : counted(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
    return refuses() ? nullptr : counted(__libc_calloc(count, size));
}
void* realloc(void* block, std::size_t size) {
    if (refuses()) {
        return nullptr;
    }
    const std::size_t before = block == nullptr ? 0 : malloc_usable_size(block);
    void* const moved = __libc_realloc(block, size);
    if (block != nullptr && (moved != nullptr || size == 0)) {
        gave(before);
    }
    return counted(moved);
}
void* memalign(std::size_t alignment, std::size_t size) {
    return refuses() ? nullptr : counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}
int posix_memalign(void** out, std::size_t alignment, std::size_t size) {
    void* const block = memalign(alignment, size);
    if (block == nullptr) {
        return ENOMEM;
    }
    *out = block;
    return 0;
}
void free(void* block) {
    if (block != nullptr) {
        gave(malloc_usable_size(block));
        __libc_free(block);
    }
}
}
#else
extern "C" {
std::size_t __sanitizer_get_allocated_size(const volatile void* block);
// Called by the sanitizer's heap.
void __sanitizer_malloc_hook(const volatile void* /*block*/, std::size_t size) {
    took(size);
}
void __sanitizer_free_hook(const volatile void* block) {
    if (block != nullptr) {
        gave(__sanitizer_get_allocated_size(block));
    }
}
}
#endif
#pragma GCC visibility pop

namespace kzb_test {

ScarceHeap::ScarceHeap(long number, Refusal refusal) {
    asked_count = 0;
    refused_count = 0;
    first_refused = number == 0 ? never : number;
    last_refused = refusal == Refusal::once ? first_refused.load() : never;
    counting = true;
}

ScarceHeap::~ScarceHeap() {
    counting = false;
}

long ScarceHeap::asked() const {
    return asked_count;
}

long ScarceHeap::refused() const {
    return refused_count;
}

long live_blocks() {
    return blocks;
}

std::size_t live_bytes() {
    return bytes;
}

std::size_t peak_bytes() {
    return most_bytes;
}

void mark_peak() {
    most_bytes = bytes.load();
}

}  // namespace kzb_test
