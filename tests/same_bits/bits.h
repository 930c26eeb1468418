// The results of a run as words, one per number: equal words are equal results to the last bit.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <vector>

namespace kzb_test {

class Bits {
  public:
    void add(double value) {
        // What a not-a-number carries along depends on the compiler's order of operands and means nothing.
        constexpr std::uint64_t not_a_number = 0x7ff8000000000000U;
        words_.push_back(std::isnan(value) ? not_a_number : std::bit_cast<std::uint64_t>(value));
    }
    void add(int value) { words_.push_back(static_cast<std::uint32_t>(value)); }

    const std::vector<std::uint64_t>& words() const { return words_; }

    // FNV-1a over the bytes of the words, the low byte first.
    std::uint64_t hash() const {
        std::uint64_t hash = 0xcbf29ce484222325U;
        for (std::uint64_t word : words_) {
            for (int byte = 0; byte < 8; ++byte, word >>= 8) {
                hash = (hash ^ (word & 0xff)) * 0x100000001b3U;
            }
        }
        return hash;
    }
    bool operator==(const Bits&) const = default;

  private:
    std::vector<std::uint64_t> words_;
};

}  // namespace kzb_test
