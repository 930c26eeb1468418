#include "interface/allocation_counter.h"

#include <cstddef>

std::atomic<long> kzb_test::allocations{0};

#if KZB_COUNTS_ALLOCATIONS
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);

void* malloc(std::size_t size) {
    ++kzb_test::allocations;
    return __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) {
    ++kzb_test::allocations;
    return __libc_calloc(count, size);
}
void* realloc(void* block, std::size_t size) {
    ++kzb_test::allocations;
    return __libc_realloc(block, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) {
    ++kzb_test::allocations;
    return __libc_memalign(alignment, size);
}
void free(void* block) {
    __libc_free(block);
}
}
#endif
