// Stand-ins for functions of the runtime that would take most of a run's time and give it nothing; the linker puts them
// in place (--wrap), and only where libFuzzer searches.
#include <cstdint>
#include <cstdlib>
#include <cstring>

#define KZB_NOT_WATCHED __attribute__((no_sanitize("coverage")))

// A table with odd sizes reports each of thousands of lookups. The text is read to its end, as the message would be.
extern "C" KZB_NOT_WATCHED void __wrap_perror(const char* text) {
    if (text != nullptr && std::strlen(text) == SIZE_MAX) {
        std::abort();
    }
}

// Operands of comparisons tell libFuzzer which bytes to try. Where an input is choices, not text, hardly any byte of it
// comes to be compared, but the tables' axes are, all the time.
#define KZB_NOT_COMPARED(name, type) \
    extern "C" KZB_NOT_WATCHED void __wrap___sanitizer_cov_trace_##name(type, type) {}
KZB_NOT_COMPARED(cmp1, std::uint8_t)
KZB_NOT_COMPARED(cmp2, std::uint16_t)
KZB_NOT_COMPARED(cmp4, std::uint32_t)
KZB_NOT_COMPARED(cmp8, std::uint64_t)
KZB_NOT_COMPARED(const_cmp1, std::uint8_t)
KZB_NOT_COMPARED(const_cmp2, std::uint16_t)
KZB_NOT_COMPARED(const_cmp4, std::uint32_t)
KZB_NOT_COMPARED(const_cmp8, std::uint64_t)
