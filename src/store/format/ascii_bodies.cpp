#include <algorithm>
#include <cstdio>
#include <vector>

#include "store/format/ascii_tokens.h"
#include "store/format/file_marks.h"
#include "store/format/number_text.h"
#include "store/format/table_bodies.h"

namespace kzb {
namespace {

bool take_words(FileSource& source, int count, std::vector<int>& words) {
    for (int i = 0; i < count; ++i) {
        int word = 0;
        if (!take_int(source, word)) {
            return false;
        }
        words.push_back(word);
    }
    return true;
}

// Reads the lines of a block of `count` values, those that the array has room for into it. A value keeps its place
// where the line before it was short.
void take_values(FileSource& source, int count, ZeroedArray& values) {
    std::int64_t stored = 0;
    for (std::int64_t first = 0; first < count; first += values_per_line) {
        const std::string_view line = source.line(line_limit);
        if (line.empty()) {
            break;
        }
        std::string_view text = up_to_nul(line);
        const std::int64_t behind = std::min<std::int64_t>({count, first + values_per_line});
        double value = 0.0;
        for (std::int64_t i = first; i < behind && scan_double(text, value); ++i) {
            if (i < static_cast<std::int64_t>(values.size())) {
                values[static_cast<std::size_t>(i)] = value;
                ++stored;
            }
        }
    }
    if (stored != count) {
        std::perror("reading table values is faiied\n");
    }
}

bool take_body(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    int dim = -1;
    std::vector<int> sizes;
    std::vector<int> cyclic;
    if (!take_int(source, dim) || dim < 0 || !take_words(source, dim, sizes) || !take_words(source, dim, cyclic)) {
        return false;
    }
    std::replace_if(
        sizes.begin(), sizes.end(), [](int size) { return size < 1; }, 0);
    source.get();  // the line feed
    int count = take_count(source);
    // A value takes two bytes or more: a digit and what parts it from the next.
    if (!memory.shape(table, dim, sizes.data(), std::min<std::int64_t>(count, (source.remaining() + 1) / 2))) {
        return false;
    }
    std::copy_n(cyclic.begin(), std::min(cyclic.size(), table.cyclic.size()), table.cyclic.begin());
    take_values(source, count, table.values);
    ZeroedArray nowhere;
    for (std::size_t axis = 0; axis < sizes.size(); ++axis) {
        count = take_count(source);
        const bool held = count > 0 && axis < table.axes.size() && sizes[axis] > 0;
        ZeroedArray& grid = held ? table.axes[axis] : nowhere;
        if (held && !grid) {
            grid.allocate(static_cast<std::size_t>(sizes[axis]));
        }
        take_values(source, count, grid);
    }
    return true;
}

}  // namespace

bool load_ascii_table(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    source.seek(table.file_position);
    const bool taken = take_body(table, source, memory);
    const bool sound = taken && source.get() >= 0 && source.get() == '#' && !source.failed();
    if (!sound) {
        report_broken();
    }
    table.loaded = sound ? 1 : 0;
    return sound;
}

}  // namespace kzb
