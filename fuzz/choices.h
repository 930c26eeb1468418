// The fuzz input as a source of choices and numbers; 0 and 0.0 once it has run out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace kzb_fuzz {

class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    bool is_empty() const { return at_ == size_; }
    unsigned byte() { return at_ < size_ ? data_[at_++] : 0U; }
    unsigned choice(unsigned count) { return byte() % count; }
    bool flag() { return (byte() & 1U) != 0; }
    // Mostly 0 to 7, now and then far out.
    int index() {
        const unsigned b = byte();
        return b < 0xf0 ? static_cast<int>(b % 8) : static_cast<int>(word());
    }

    // By its first byte: one that is likely to be refused or to overflow, any bits, or an ordinary size.
    double number() {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        constexpr double special[] = {0.0,
                                      -0.0,
                                      std::numeric_limits<double>::quiet_NaN(),
                                      infinity,
                                      -infinity,
                                      std::numeric_limits<double>::max(),
                                      -std::numeric_limits<double>::max(),
                                      std::numeric_limits<double>::denorm_min(),
                                      1e100,
                                      -1e100,
                                      1e-20,
                                      1e16,
                                      2147483648.0,
                                      -2147483649.0,
                                      180039.0,
                                      -1e-300};
        const unsigned b = byte();
        if (b < 16) {
            return special[b];
        }
        if (b == 16) {
            return bits();
        }
        return ordinary(b);
    }
    double ordinary() { return ordinary(byte()); }

  private:
    static double ordinary(unsigned b) {
        constexpr double scale[] = {1e-4, 1e-2, 1.0, 30.0, 300.0};
        return (static_cast<double>(b) - 64.0) / 32.0 * scale[b % 5];
    }
    std::uint32_t word() {
        std::uint32_t value = 0;
        for (int k = 0; k < 4; ++k) {
            value = value << 8U | byte();
        }
        return value;
    }
    double bits() {
        const std::uint64_t value = std::uint64_t{word()} << 32U | word();
        double number = 0.0;
        std::memcpy(&number, &value, sizeof number);
        return number;
    }

    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

}  // namespace kzb_fuzz
