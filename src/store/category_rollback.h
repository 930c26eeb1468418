// Takes categories away again that were appended for something that then failed.
#pragma once

#include "store/store.h"

namespace kzb {

class CategoryRollback {
  public:
    explicit CategoryRollback(KZB_STORE& store) : store_(store), count_(store.categories.size()) {}
    CategoryRollback(const CategoryRollback&) = delete;
    CategoryRollback& operator=(const CategoryRollback&) = delete;
    // Without keep(): what came since goes.
    ~CategoryRollback() {
        while (!kept_ && store_.categories.size() > count_) {
            store_.category_index.erase(store_.category_index.find(store_.categories.back().name));
            store_.categories.pop_back();
            ++store_.revision;
        }
    }
    void keep() { kept_ = true; }

  private:
    KZB_STORE& store_;
    std::size_t count_;
    bool kept_ = false;
};

}  // namespace kzb
