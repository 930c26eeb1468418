// Memory that runs out on request.
#pragma once

#include <cstddef>

namespace kzb::test {

// While it lives, operator new refuses every size from `least` to `most` bytes.
class RefusedSizes {
  public:
    RefusedSizes(std::size_t least, std::size_t most);
    RefusedSizes(const RefusedSizes&) = delete;
    RefusedSizes& operator=(const RefusedSizes&) = delete;
    ~RefusedSizes();
    // How often memory was refused so far.
    int count() const;
};

// While it lives, the process gets no more than `bytes` of further address space.
class LimitedSpace {
  public:
    explicit LimitedSpace(std::size_t bytes);
    LimitedSpace(const LimitedSpace&) = delete;
    LimitedSpace& operator=(const LimitedSpace&) = delete;
    ~LimitedSpace();
    // False where the process cannot be limited: a memory checker maps far more than it uses.
    static bool possible();

  private:
    unsigned long before_;
};

}  // namespace kzb::test
