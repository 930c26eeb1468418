// An owned array of doubles that starts as zeros, or is null.
//
// Memory comes from calloc: a large array costs no pages before it is written. A reader of many large arrays may place
// them in one slab, which lives until the last array in it is gone.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <utility>

namespace kzb {

class ZeroedArray {
  public:
    ZeroedArray() = default;

    // Replaces the array by `count` zeros; false, with the array null, when memory ran out.
    bool allocate(std::size_t count) {
        data_ = Owned(static_cast<double*>(std::calloc(count == 0 ? 1 : count, sizeof(double))), Release{});
        size_ = data_ ? count : 0;
        return data_ != nullptr;
    }
    // Replaces the array by `count` zeros at `data`, which is part of `slab`.
    void place(std::shared_ptr<void> slab, double* data, std::size_t count) {
        data_ = Owned(data, Release{std::move(slab)});
        size_ = count;
    }
    void reset() {
        data_ = Owned();
        size_ = 0;
    }

    explicit operator bool() const { return data_ != nullptr; }
    std::size_t size() const { return size_; }
    double* data() { return data_.get(); }
    const double* data() const { return data_.get(); }
    double& operator[](std::size_t i) { return data_[i]; }
    double operator[](std::size_t i) const { return data_[i]; }

  private:
    struct Release {
        std::shared_ptr<void> slab;  // null: from calloc
        void operator()(double* p) const {
            if (!slab) {
                std::free(p);
            }
        }
    };
    using Owned = std::unique_ptr<double[], Release>;
    Owned data_;
    std::size_t size_ = 0;
};

}  // namespace kzb
