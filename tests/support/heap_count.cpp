#include "support/heap_count.h"

#include <cstdlib>
#include <new>

std::size_t kzb_test::allocations = 0;

void* operator new(std::size_t size) {
    ++kzb_test::allocations;
    if (void* const memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
