#include "same_bits/plain_mathematics.h"

#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <string_view>

#include "same_bits/bits.h"

namespace kzb_test {

void use_plain_mathematics(char** argv) {
    constexpr const char* name = "GLIBC_TUNABLES";
    constexpr const char* plain = "glibc.cpu.hwcaps=-FMA,-FMA4,-AVX2,-FMA_Usable,-FMA4_Usable,-AVX2_Usable";
    const char* const now = std::getenv(name);
    if (now != nullptr && std::string_view(now) == plain) {
        return;
    }
    ::setenv(name, plain, 1);
    ::execv("/proc/self/exe", argv);  // returns only when it can't
}

std::uint64_t mathematics_hash() {
    Bits bits;
    for (int i = 1; i < 20000; ++i) {
        const double x = 1.3e-3 * i;
        for (const double value : {std::sin(x), std::cos(x), std::tan(x), std::atan(x), std::exp(-x), std::log(x),
                                   std::pow(x, 0.37), std::atan2(x, 3.3), std::asin(1.0 / (1.0 + x)), std::sinh(x)}) {
            bits.add(value);
        }
    }
    return bits.hash();
}

}  // namespace kzb_test
