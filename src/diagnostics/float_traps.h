// The host's floating-point traps: a host may have told the processor to interrupt it at a division by zero, an
// overflow or an invalid operation. The library's arithmetic meets all of them on purpose, so inside a call they are
// masked, and at its end the host's floating-point environment is as it was, the flags of past exceptions included.
#pragma once

#include <cfenv>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace kzb {

// Whether any exception interrupts: costs about a nanosecond, so it is asked at every call.
inline bool float_traps_set() noexcept {
#if defined(__SSE2__)
    // Arithmetic on doubles obeys this register alone; a set bit masks.
    return (_mm_getcsr() & _MM_MASK_MASK) != _MM_MASK_MASK;
#elif defined(__GLIBC__)
    return fegetexcept() != 0;
#else
    return true;
#endif
}

// Masks every trap for its lifetime. The rounding mode stays the host's.
class FloatTrapsMasked {
  public:
    FloatTrapsMasked() noexcept : set_(float_traps_set()) {
        if (set_) [[unlikely]] {
            mask();
        }
    }
    ~FloatTrapsMasked() {
        if (set_) [[unlikely]] {
            restore();
        }
    }
    FloatTrapsMasked(const FloatTrapsMasked&) = delete;
    FloatTrapsMasked& operator=(const FloatTrapsMasked&) = delete;

  private:
    void mask() noexcept;
    void restore() noexcept;
    bool set_;
    std::fenv_t host_;
};

}  // namespace kzb
