// Scratch of doubles: on the stack up to `Fixed`, beyond that from the heap. Not initialised on the stack.
#pragma once

#include <cstddef>

#include "table/zeroed_array.h"

namespace kzb {

template <std::size_t Fixed>
class Scratch {
  public:
    // Null when memory ran out.
    double* take(std::size_t count) {
        if (count <= Fixed) {
            return fixed_;
        }
        return heap_.allocate(count) ? heap_.data() : nullptr;
    }

  private:
    double fixed_[Fixed];
    ZeroedArray heap_;
};

}  // namespace kzb
