#include "store/format/body_memory.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <new>

#include "table/table_shape.h"

namespace kzb {
namespace {

constexpr std::size_t huge_page = std::size_t{2} << 20;
constexpr std::int64_t least_file = 4 * static_cast<std::int64_t>(huge_page);  // a smaller one needs no slab
constexpr std::int64_t least_count = 8192;  // of doubles; smaller arrays come from the heap

std::size_t slab_bytes(std::int64_t count) {
    constexpr std::size_t alignment = 64;
    return (static_cast<std::size_t>(count) * sizeof(double) + alignment - 1) / alignment * alignment;
}

// `size` zero bytes at a huge page's boundary, without any page yet; null where the system has none.
std::shared_ptr<void> map_slab(std::size_t size) {
    const std::size_t reserved = size + huge_page;
    void* mapped = mmap(nullptr, reserved, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (mapped == MAP_FAILED) {
        return nullptr;
    }
    std::shared_ptr<void> owner(mapped, [reserved](void* p) { munmap(p, reserved); });
    void* start = mapped;
    std::size_t space = reserved;
    std::align(huge_page, size, start, space);
    madvise(start, size, MADV_HUGEPAGE);  // advice: small pages serve as well
    return {std::move(owner), start};
}

// Product of the sizes, 0 where one is below 1, held at a number that no file can back.
std::int64_t value_count(int dim, const int* sizes) {
    constexpr std::int64_t highest = std::numeric_limits<int>::max();
    std::int64_t count = 1;
    for (int axis = 0; axis < dim; ++axis) {
        if (sizes[axis] < 1) {
            return 0;
        }
        count = std::min(count * sizes[axis], 2 * highest);
    }
    return count;
}

}  // namespace

void make_placeholder(KZB_TABLE& table, std::int64_t file_position) {
    const int rows[1] = {1};
    try {
        table_create(table, 1, rows);
    } catch (const std::bad_alloc&) {
        table_free(table);  // not even that: a later try makes it anew
    }
    table.file_position = file_position;
}

void put_off_body(KZB_TABLE& table, std::int64_t file_position) {
    std::perror("memory allocation error");
    make_placeholder(table, file_position);
}

bool BodyMemory::shape(KZB_TABLE& table, int dim, const int* sizes, std::int64_t backed) {
    constexpr std::int64_t bytes_per_value = sizeof(double);
    const std::int64_t count = value_count(dim, sizes);
    const std::int64_t unbacked = bytes_per_value * (count - std::clamp<std::int64_t>(backed, 0, count));
    if (unbacked > unbacked_left_) {
        return false;
    }
    unbacked_left_ -= unbacked;
    const bool large = count >= least_count && count <= std::numeric_limits<int>::max() && reserve(count);
    if (large ? table_shape(table, dim, sizes) : table_create(table, dim, sizes) == 0) {
        if (large) {
            place_values(table);
        }
        return true;
    }
    // A size below 1 stops the creation; the record then stays as far as it had come, and its blocks are read over.
    if (count == 0 && table.dim > 0) {
        return true;
    }
    throw std::bad_alloc();
}

// True when the slab has room for `count` doubles.
bool BodyMemory::reserve(std::int64_t count) {
    if (!slab_ && !slab_refused_ && file_size_ >= least_file) {
        const auto file_size = static_cast<std::size_t>(file_size_);
        slab_size_ = (file_size + file_size / 64 + huge_page) / huge_page * huge_page;
        slab_ = map_slab(slab_size_);
        slab_refused_ = !slab_;
    }
    return slab_ && slab_bytes(count) <= slab_size_ - slab_used_;
}

// Gives the record its values in the slab.
void BodyMemory::place_values(KZB_TABLE& table) {
    auto* start = reinterpret_cast<double*>(static_cast<char*>(slab_.get()) + slab_used_);
    slab_used_ += slab_bytes(table.total);
    table.values.place(slab_, start, static_cast<std::size_t>(table.total));
}

}  // namespace kzb
