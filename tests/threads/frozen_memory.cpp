#include "threads/frozen_memory.h"

#include <link.h>
#include <setjmp.h>
#include <signal.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

constexpr std::size_t arena_size = std::size_t{1} << 32;  // address space only
constexpr std::size_t head = 16;                          // holds the size of the block behind it

char* arena = nullptr;
std::size_t arena_used = 0;
bool collecting = false;

bool in_arena(const void* block) {
    const char* const at = static_cast<const char*>(block);
    return arena != nullptr && at >= arena && at < arena + arena_size;
}

void* take(std::size_t alignment, std::size_t size) {
    const std::size_t step = alignment < head ? head : alignment;
    const std::size_t at = (arena_used + head + step - 1) / step * step;
    if (at + size > arena_size) {
        return nullptr;
    }
    arena_used = at + size;
    std::memcpy(arena + at - head, &size, sizeof size);
    return arena + at;
}

std::size_t size_of(const void* block) {
    std::size_t size = 0;
    std::memcpy(&size, static_cast<const char*>(block) - head, sizeof size);
    return size;
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
    return collecting ? take(head, size) : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    if (!collecting) {
        return __libc_calloc(count, size);
    }
    // Fresh pages are zeros, and no block is given twice.
    return size != 0 && count > arena_size / size ? nullptr : take(head, count * size);
}

void free(void* block) {
    if (!in_arena(block)) {
        __libc_free(block);
    }
}

void* realloc(void* block, std::size_t size) {
    if (!collecting && !in_arena(block)) {
        return __libc_realloc(block, size);
    }
    void* const moved = malloc(size);
    if (moved != nullptr && block != nullptr) {
        const std::size_t old_size = in_arena(block) ? size_of(block) : size;
        std::memcpy(moved, block, old_size < size ? old_size : size);
        free(block);
    }
    return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
    return collecting ? take(alignment, size) : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block == nullptr ? ENOMEM : 0;
}
}

namespace kzb_test {
namespace {

struct Span {
    char* first;
    std::size_t size;
};

// The writable part of the library: its variables, without what the loader has made read-only already.
std::vector<Span> library_data() {
    std::vector<Span> spans;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* out) {
            if (std::strstr(info->dlpi_name, "libKZBCalculator") == nullptr) {
                return 0;
            }
            const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
            std::uintptr_t read_only_end = 0;
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                if (info->dlpi_phdr[i].p_type == PT_GNU_RELRO) {
                    read_only_end =
                        (info->dlpi_addr + info->dlpi_phdr[i].p_vaddr + info->dlpi_phdr[i].p_memsz) / page * page;
                }
            }
            for (int i = 0; i < info->dlpi_phnum; ++i) {
                const auto& segment = info->dlpi_phdr[i];
                if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) == 0) {
                    continue;
                }
                std::uintptr_t first = (info->dlpi_addr + segment.p_vaddr) / page * page;
                const std::uintptr_t end =
                    (info->dlpi_addr + segment.p_vaddr + segment.p_memsz + page - 1) / page * page;
                first = read_only_end > first ? read_only_end : first;
                if (first < end) {
                    static_cast<std::vector<Span>*>(out)->push_back({reinterpret_cast<char*>(first), end - first});
                }
            }
            return 0;
        },
        &spans);
    return spans;
}

sigjmp_buf caught;

void on_write(int) {
    siglongjmp(caught, 1);
}

void protect(const std::vector<Span>& spans, int rights) {
    for (const Span& span : spans) {
        if (::mprotect(span.first, span.size, rights) != 0) {
            std::abort();
        }
    }
}

}  // namespace

void collect_allocations(bool on) {
    if (arena == nullptr) {
        void* const space =
            ::mmap(nullptr, arena_size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (space == MAP_FAILED) {
            std::abort();
        }
        arena = static_cast<char*>(space);
    }
    collecting = on;
}

bool leaves_frozen_memory_alone(const std::function<void()>& body) {
    std::vector<Span> spans = library_data();
    spans.push_back({arena, (arena_used + 4095) / 4096 * 4096});
    struct sigaction action = {};
    struct sigaction before = {};
    action.sa_handler = on_write;
    ::sigaction(SIGSEGV, &action, &before);
    volatile bool alone = true;
    if (sigsetjmp(caught, 1) == 0) {
        protect(spans, PROT_READ);
        body();
    } else {
        alone = false;
    }
    protect(spans, PROT_READ | PROT_WRITE);
    ::sigaction(SIGSEGV, &before, nullptr);
    return alone;
}

}  // namespace kzb_test
