// Lines of a text file in pieces of bounded length, as fgets hands them out.
//
// A piece ends behind a line feed ("\r\n" counts as one), after `limit` bytes, or at the end of the file. Its text ends
// at the first NUL, the rest of the piece is lost. The end of the file is noticed only by reading against it: a last
// line without line feed has `ended` set, a last line with one has not.
#pragma once

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "store/format/file_source.h"

namespace kzb {

// Room for the lines of one table block: the longest line from the block's start to the end of the file, but no less
// than 99 bytes. A byte 0xFF counts as the end of the file here, so only lines from that byte on can be longer than the
// room. Up to there the room is not known and not needed: nothing is read in advance.
struct BlockRoom {
    static constexpr std::size_t not_known = std::numeric_limits<std::size_t>::max();
    std::size_t limit = not_known;
    std::size_t longest = 0;
};

class TextLines {
  public:
    explicit TextLines(const char* path) : source_(path) { source_.read_as_text(); }

    bool is_open() const { return source_.is_open(); }
    std::int64_t size() const { return source_.size(); }
    std::int64_t remaining() const { return source_.remaining(); }

    // Takes the next piece. False, with an empty line, when nothing is left.
    bool next(std::size_t limit) {
        BlockRoom room{limit};
        return next(room);
    }
    bool next(BlockRoom& room);
    // The piece, with its line feed.
    const std::string& line() const { return line_; }
    // As `line`, without its line feed and a comma that stands just before it.
    std::string_view fields() const;
    // True once the system refused to read.
    bool failed() const { return source_.failed(); }
    // True once reading ran against the end of the file.
    bool ended() const { return ended_; }
    void rewind();

  private:
    FileSource source_;
    std::string line_;
    bool ended_ = false;
};

}  // namespace kzb
