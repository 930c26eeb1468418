// User specified parameters: values of tables that the file's author added, each sent to an output port.
#pragma once

#include <cstdint>
#include <vector>

#include "store/lookup_front.h"

namespace kzb {

class UserParameters {
  public:
    bool on() const { return on_; }
    int count() const { return count_; }
    int dim() const { return dim_; }  // axes of the first table
    const std::vector<double>& values() const { return values_; }

    // Reads how many there are; the number is bounded by what the file can back.
    void bind(const KZB_STORE& store);
    void switch_off() { on_ = false; }
    void reset() { *this = UserParameters{}; }
    // Looks every parameter up at `point` [count].
    void update(KZB_STORE& store, const Method& method, const double* point, int count);

  private:
    struct Entry {
        TableRef table;
        int port;  // from 1
    };
    void resolve(const KZB_STORE& store);

    bool on_ = false;
    int count_ = 0;
    int dim_ = 0;
    std::vector<double> values_;
    std::uint64_t revision_ = 0;
    std::vector<Entry> entries_;
};

}  // namespace kzb
