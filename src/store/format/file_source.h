// The bytes of a regular file, read through a small buffer, with skips that read nothing.
//
// Listing a large file touches little more than the heads between the table bodies; bodies go straight into the
// caller's memory.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kzb {

class FileSource {
  public:
    // Opens a regular file; anything else, or null, leaves the source closed.
    explicit FileSource(const char* path);
    ~FileSource();
    FileSource(const FileSource&) = delete;
    FileSource& operator=(const FileSource&) = delete;

    bool is_open() const { return descriptor_ >= 0; }
    // True once the system refused to read.
    bool failed() const { return failed_; }
    std::int64_t size() const { return size_; }
    std::int64_t position() const { return buffer_position_ + static_cast<std::int64_t>(begin_); }
    std::int64_t remaining() const { return size_ > position() ? size_ - position() : 0; }

    // From now on get and line take the two bytes "\r\n" as one line feed. Positions and counts stay those of the file.
    void read_as_text() { text_ = true; }

    // Next byte, or -1 at the end of the file.
    int get() {
        if (begin_ == end_ && !fill(1)) {
            return -1;
        }
        const int byte = static_cast<unsigned char>(buffer_[begin_++]);
        return byte == '\r' && text_ ? get_behind_return() : byte;
    }
    // Up to `count` bytes (at most 4096) from here on, without taking them; shorter at the end of the file only.
    std::string_view peek(std::size_t count);
    // The number of bytes read; less than `count` at the end of the file only.
    std::size_t read(void* to, std::size_t count);
    // One little-endian word; false, with `word` as it was, when the file ends before or inside it.
    template <class Word>
    bool take(Word& word) {
        Word read_word;
        if (read(&read_word, sizeof read_word) != sizeof read_word) {
            return false;
        }
        word = read_word;
        return true;
    }
    // What fgets takes with room for `limit` bytes: a line with its line feed, or its next piece. Empty at the end of
    // the file. Valid until the next call.
    std::string_view line(std::size_t limit);

    // Moves on, to the end of the file at most.
    void skip(std::int64_t count);
    void seek(std::int64_t position);

  private:
    int get_behind_return();
    bool fill(std::size_t wanted);
    std::size_t read_at(std::int64_t position, char* to, std::size_t count);

    static constexpr std::size_t first_read = 4096;  // after a skip; doubles as long as reading goes on
    static constexpr std::size_t buffer_size = 65536;
    std::array<char, buffer_size> buffer_;
    std::int64_t buffer_position_ = 0;  // of buffer_[0] in the file
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
    std::size_t next_read_ = first_read;
    std::int64_t size_ = 0;
    int descriptor_ = -1;
    bool failed_ = false;
    bool text_ = false;
    std::string translated_;  // a line whose end is not as in the file
};

}  // namespace kzb
