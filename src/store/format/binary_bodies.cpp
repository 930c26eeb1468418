#include <algorithm>
#include <vector>

#include "store/format/file_marks.h"
#include "store/format/table_bodies.h"

namespace kzb {
namespace {

bool take_words(FileSource& source, int count, std::vector<int>& words) {
    const std::int64_t bytes = static_cast<std::int64_t>(count) * 4;
    if (count < 0 || bytes > source.remaining()) {
        return false;
    }
    words.resize(static_cast<std::size_t>(count));
    return source.read(words.data(), static_cast<std::size_t>(bytes)) == static_cast<std::size_t>(bytes);
}

// Reads `count` doubles, those that the array has room for into it. False when the file ends before.
bool take_values(FileSource& source, std::int64_t count, ZeroedArray& values) {
    const std::int64_t bytes = 8 * count;
    const bool backed = bytes <= source.remaining();
    const std::int64_t stored = 8 * std::min(count, static_cast<std::int64_t>(values.size()));
    const std::int64_t end = source.position() + bytes;
    if (stored > 0) {
        source.read(values.data(), static_cast<std::size_t>(stored));
    }
    source.skip(end - source.position());
    return backed;
}

bool take_body(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    int dim = -1;
    int count = -1;
    std::vector<int> sizes;
    std::vector<int> cyclic;
    source.take(dim);
    if (!take_words(source, dim, sizes) || !take_words(source, dim, cyclic) || !source.take(count) || count < 0) {
        return false;
    }
    std::replace_if(
        sizes.begin(), sizes.end(), [](int size) { return size < 1; }, 0);
    if (!memory.shape(table, dim, sizes.data(), std::min<std::int64_t>(count, source.remaining() / 8))) {
        return false;
    }
    std::copy_n(cyclic.begin(), std::min(cyclic.size(), table.cyclic.size()), table.cyclic.begin());
    bool complete = take_values(source, count, table.values);
    ZeroedArray nowhere;
    for (std::size_t axis = 0; axis < sizes.size() && complete; ++axis) {
        count = -1;
        source.take(count);
        const bool held = count > 0 && axis < table.axes.size() && sizes[axis] > 0;
        ZeroedArray& grid = held ? table.axes[axis] : nowhere;
        if (held && !grid) {
            grid.allocate(static_cast<std::size_t>(sizes[axis]));
        }
        complete = count >= 0 && take_values(source, count, grid);
    }
    table.loaded = 1;
    return complete;
}

}  // namespace

bool load_binary_table(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    source.seek(table.file_position);
    char mark[2] = {};
    const bool sound =
        take_body(table, source, memory) && source.read(mark, 2) == 2 && mark[0] == ',' && mark[1] == '#';
    if (!sound) {
        report_broken();
    }
    return sound;
}

}  // namespace kzb
