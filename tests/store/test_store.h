// A store that finishes itself, and short ways to fill it.
#pragma once

#include <initializer_list>
#include <vector>

#include "KZBCalculator/kzb_store.h"

namespace kzb_test {

class TestStore {
  public:
    TestStore() { kzb_initialize(&handle_); }
    TestStore(const TestStore&) = delete;
    TestStore& operator=(const TestStore&) = delete;
    ~TestStore() { kzb_finish(handle_); }
    operator KZB_STORE*() const { return handle_; }

    // A table of one axis.
    void line(const char* category, const char* key, std::initializer_list<double> nodes,
              std::initializer_list<double> values) {
        const int size = static_cast<int>(nodes.size());
        kzb_create_table(category, key, 1, &size, handle_);
        int index = 0;
        for (const double node : nodes) {
            kzb_set_table_axis_value(category, key, 1, index++, node, handle_);
        }
        index = 0;
        for (const double value : values) {
            kzb_set_table_value(category, key, &index, value, handle_);
            ++index;
        }
    }

  private:
    KZB_STORE* handle_ = nullptr;
};

}  // namespace kzb_test
