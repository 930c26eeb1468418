#include <algorithm>
#include <vector>

#include "store/format/body_frame.h"
#include "store/format/file_marks.h"
#include "store/format/table_bodies.h"

namespace kzb {
namespace {

struct BinaryForm {
    static bool take_word(FileSource& source, int& word) { return source.take(word); }

    static bool take_words(FileSource& source, int count, std::vector<int>& words) {
        const std::int64_t bytes = static_cast<std::int64_t>(count) * 4;
        if (bytes > source.remaining()) {
            return false;
        }
        words.resize(static_cast<std::size_t>(count));
        return source.read(words.data(), static_cast<std::size_t>(bytes)) == static_cast<std::size_t>(bytes);
    }

    static void end_head(FileSource& /*source*/) {}

    static bool take_count(FileSource& source, int& count) {
        count = -1;
        return source.take(count) && count >= 0;
    }

    static std::int64_t most_values(const FileSource& source) { return source.remaining() / 8; }

    static bool take_block(FileSource& source, std::int64_t count, ZeroedArray& values) {
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
};

}  // namespace

bool load_binary_table(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    const BodyState state = take_body_or_put_off<BinaryForm>(table, source, memory);
    if (state == BodyState::put_off) {
        return true;
    }
    table.loaded = state == BodyState::untouched ? 0 : 1;
    char mark[2] = {};
    const bool sound = state == BodyState::complete && source.read(mark, 2) == 2 && mark[0] == ',' && mark[1] == '#';
    if (!sound) {
        report_broken();
    }
    return sound;
}

}  // namespace kzb
