#include "diagnostics/float_traps.h"

namespace kzb {

void FloatTrapsMasked::mask() noexcept {
    std::feholdexcept(&host_);
}

void FloatTrapsMasked::restore() noexcept {
    std::fesetenv(&host_);
}

}  // namespace kzb
