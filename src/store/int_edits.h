// Int parameters that are put into the store all together or, for want of memory, not at all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "store/store.h"

namespace kzb {

class IntEdits {
  public:
    void add(std::string category, const char* key, int value);
    // Runs `last` behind the edits: an operation that is done or leaves the store as it was, but for a new category.
    // Throws bad_alloc with the store as it was.
    void apply(KZB_STORE& store, const std::function<void()>& last) const;

  private:
    struct Edit {
        std::string category;
        const char* key;  // static
        int value;
    };
    std::vector<Edit> edits_;
};

}  // namespace kzb
