#include "store/environment_watch.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#if defined(__GNUC__)
#define KZB_NO_ADDRESS_SANITIZER __attribute__((no_sanitize("address")))
#else
#define KZB_NO_ADDRESS_SANITIZER
#endif

extern char** environ;

namespace kzb {

namespace {

bool names_variable(const char* entry, std::string_view name) {
    return std::strncmp(entry, name.data(), name.size()) == 0 && entry[name.size()] == '=';
}

constexpr std::size_t block_bytes = 64;
constexpr std::size_t block = block_bytes / sizeof(char*);

#if defined(__SSE2__)
// Whether Pairs * 2 pointers are equal in both arrays; `now` is aligned to 16 bytes.
template <int Pairs>
inline bool same_pairs(char* const* now, char* const* kept) {
    __m128i equal = _mm_set1_epi32(-1);
    for (int i = 0; i < 2 * Pairs; i += 2) {
        const __m128i a = _mm_load_si128(reinterpret_cast<const __m128i*>(now + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(kept + i));
        equal = _mm_and_si128(equal, _mm_cmpeq_epi32(a, b));
    }
    return _mm_movemask_epi8(equal) == 0xffff;
}
#endif

inline std::size_t offset_in_block(char* const* pointer) {
    return reinterpret_cast<std::uintptr_t>(pointer) % block_bytes;
}

}  // namespace

// Pointer after pointer in the array's order: where all before are equal, the next one exists. The aligned block of 64
// bytes that starts with it lies in one page, so that it can be read as a whole even where the array grew shorter.
KZB_NO_ADDRESS_SANITIZER bool EnvironmentWatch::unchanged() const {
    char* const* const now = environ;
    if (!seen_ || now != array_) {
        return false;
    }
    if (now == nullptr) {
        return true;
    }
    char* const* const kept = entries_.data();
    const std::size_t count = entries_.size();
    std::size_t i = 0;
#if defined(__SSE2__)
    if (offset_in_block(now) % 16 != 0) {
        if (now[0] != kept[0]) {
            return false;
        }
        i = 1;
    }
    while (i + 2 <= count) {
        const bool whole = offset_in_block(now + i) == 0 && i + block <= count;
        if (!(whole ? same_pairs<4>(now + i, kept + i) : same_pairs<1>(now + i, kept + i))) {
            return false;
        }
        i += whole ? block : 2;
    }
#endif
    for (; i < count; ++i) {
        if (now[i] != kept[i]) {
            return false;
        }
    }
    return true;
}

void EnvironmentWatch::read() {
    seen_ = false;
    array_ = environ;
    entries_.clear();
    generic_path_ = false;
    debug_lines_ = false;
    if (array_ != nullptr) {
        for (char** entry = array_; *entry != nullptr; ++entry) {
            generic_path_ = generic_path_ || names_variable(*entry, "USE_GENERIC_INTERPOLATION");
            debug_lines_ = debug_lines_ || names_variable(*entry, "KZBFILEHANDLER_DEBUG_MODE");
            entries_.push_back(*entry);
        }
        entries_.push_back(nullptr);
    }
    seen_ = true;
}

}  // namespace kzb
