#include "store/format/scarce_memory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <limits>
#include <new>

namespace {

std::size_t refused_least = std::numeric_limits<std::size_t>::max();
std::size_t refused_most = 0;
int refused_count = 0;

}  // namespace

void* operator new(std::size_t size) {
    if (size >= refused_least && size <= refused_most) {
        ++refused_count;
        throw std::bad_alloc();
    }
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace kzb::test {

RefusedSizes::RefusedSizes(std::size_t least, std::size_t most) {
    refused_least = least;
    refused_most = most;
    refused_count = 0;
}

RefusedSizes::~RefusedSizes() {
    refused_least = std::numeric_limits<std::size_t>::max();
    refused_most = 0;
}

int RefusedSizes::count() const {
    return refused_count;
}

LimitedSpace::LimitedSpace(std::size_t bytes) : before_(0) {
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    before_ = limit.rlim_cur;
    limit.rlim_cur = pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE)) + bytes;
    setrlimit(RLIMIT_AS, &limit);
}

LimitedSpace::~LimitedSpace() {
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    limit.rlim_cur = before_;
    setrlimit(RLIMIT_AS, &limit);
}

bool LimitedSpace::possible() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
    return false;
#else
    return true;
#endif
#else
    return true;
#endif
}

}  // namespace kzb::test
