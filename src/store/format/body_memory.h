// Memory for the table bodies of one file: never more than the file can back, large bodies side by side on huge pages.
//
// Loading many large tables costs more in page faults than in copying when every array has pages of its own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "table/table.h"

namespace kzb {

// Makes the table a placeholder again whose body lies at `file_position`, for a later try.
void make_placeholder(KZB_TABLE& table, std::int64_t file_position);
// The same, and tells that memory ran out.
void put_off_body(KZB_TABLE& table, std::int64_t file_position);

class BodyMemory {
  public:
    explicit BodyMemory(std::int64_t file_size) : file_size_(file_size), unbacked_left_(file_size + small_grant) {}

    // Whether a body was put off for want of memory.
    bool ran_out() const { return ran_out_; }
    void note_shortage() { ran_out_ = true; }

    // Gives `table` the shape `sizes`; `backed` of its values stand in the file. False, with the table as it was, for a
    // shape that the file cannot back: values that it lacks are granted up to its own size and a little more, over all
    // tables. Throws bad_alloc where memory ran out, the table then has no body.
    bool shape(KZB_TABLE& table, int dim, const int* sizes, std::int64_t backed);

  private:
    bool reserve(std::int64_t count);
    void place_values(KZB_TABLE& table);

    static constexpr std::int64_t small_grant = 65536;  // bytes: a small file may hold a table without values
    std::int64_t file_size_;
    std::int64_t unbacked_left_;  // bytes
    std::shared_ptr<void> slab_;
    std::size_t slab_size_ = 0;
    std::size_t slab_used_ = 0;
    bool slab_refused_ = false;
    bool ran_out_ = false;
};

}  // namespace kzb
