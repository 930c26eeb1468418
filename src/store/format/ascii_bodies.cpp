#include <algorithm>
#include <cstdio>
#include <vector>

#include "store/format/ascii_tokens.h"
#include "store/format/body_frame.h"
#include "store/format/file_marks.h"
#include "store/format/number_scan.h"
#include "store/format/table_bodies.h"

namespace kzb {
namespace {

struct AsciiForm {
    static bool take_word(FileSource& source, int& word) { return take_int(source, word); }

    static bool take_words(FileSource& source, int count, std::vector<int>& words) {
        for (int i = 0; i < count; ++i) {
            int word = 0;
            if (!take_int(source, word)) {
                return false;
            }
            words.push_back(word);
        }
        return true;
    }

    static void end_head(FileSource& source) { source.get(); }  // the line feed

    static bool take_count(FileSource& source, int& count) {
        count = kzb::take_count(source);
        return true;
    }

    // A value takes two bytes or more: a digit and what parts it from the next.
    static std::int64_t most_values(const FileSource& source) { return (source.remaining() + 1) / 2; }

    // Reads the lines of a block of `count` values, those that the array has room for into it. A value keeps its place
    // where the line before it was short.
    static bool take_block(FileSource& source, int count, ZeroedArray& values) {
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
        return true;
    }
};

}  // namespace

bool load_ascii_table(KZB_TABLE& table, FileSource& source, BodyMemory& memory) {
    const BodyState state = take_body_or_put_off<AsciiForm>(table, source, memory);
    if (state == BodyState::put_off) {
        return true;
    }
    const bool sound = state == BodyState::complete && source.get() >= 0 && source.get() == '#' && !source.failed();
    if (!sound) {
        report_broken();
    }
    table.loaded = sound ? 1 : 0;
    return sound;
}

}  // namespace kzb
