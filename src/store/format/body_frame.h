// The body of a table as both forms hold it: dim, sizes, flags, the block of values, one block per axis.
//
// A Form tells how words, counts and blocks stand in its file:
//   take_word(source, word)            one number of the head
//   take_words(source, count, words)   `count` of them; false for a count that cannot be true
//   end_head(source)                   what stands behind the last of them
//   take_count(source, count)          the count in front of a block
//   most_values(source)                how many values the rest of the file can hold
//   take_block(source, count, values)  `count` values, those that the array has room for into it; false at the end
#pragma once

#include <algorithm>
#include <new>
#include <vector>

#include "store/format/body_memory.h"
#include "store/format/file_source.h"
#include "table/table.h"

namespace kzb {

// How far a body could be taken: not at all, its shape, all of it; put off for want of memory.
enum class BodyState { untouched, shaped, complete, put_off };

template <class Form>
BodyState take_body(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    int dim = -1;
    int count = 0;
    std::vector<int> sizes;
    std::vector<int> cyclic;
    if (!Form::take_word(source, dim) || dim < 0 || !Form::take_words(source, dim, sizes) ||
        !Form::take_words(source, dim, cyclic)) {
        return BodyState::untouched;
    }
    Form::end_head(source);
    if (!Form::take_count(source, count)) {
        return BodyState::untouched;
    }
    std::replace_if(
        sizes.begin(), sizes.end(), [](int size) { return size < 1; }, 0);
    if (!memory.shape(table, dim, sizes.data(), std::min<std::int64_t>(count, Form::most_values(source)))) {
        return BodyState::untouched;
    }
    std::copy_n(cyclic.begin(), std::min(cyclic.size(), table.cyclic.size()), table.cyclic.begin());
    bool complete = Form::take_block(source, count, table.values);
    ZeroedArray nowhere;
    for (std::size_t axis = 0; axis < sizes.size() && complete; ++axis) {
        complete = Form::take_count(source, count);
        const bool held = count > 0 && axis < table.axes.size() && sizes[axis] > 0;
        ZeroedArray& grid = held ? table.axes[axis] : nowhere;
        if (held && !grid && !grid.allocate(static_cast<std::size_t>(sizes[axis]))) {
            throw std::bad_alloc();
        }
        complete = complete && Form::take_block(source, count, grid);
    }
    return complete ? BodyState::complete : BodyState::shaped;
}

// The same from the table's place in the file. Where memory runs out, the table is a placeholder again, for a later
// try.
template <class Form>
BodyState take_body_or_put_off(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    const std::int64_t position = table.file_position;
    source.seek(position);
    try {
        return take_body<Form>(table, source, memory);
    } catch (const std::bad_alloc&) {
        put_off_body(table, position);
        memory.note_shortage();
        return BodyState::put_off;
    }
}

}  // namespace kzb
