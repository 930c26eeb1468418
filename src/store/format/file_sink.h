// Bytes on their way into a file, gathered in a buffer.
//
// The file appears whole or not at all: it is written beside its place and put there by close(), which leaves an old
// file as it was when anything fails. The file behind a symbolic link is replaced, not the link; mode and owner stay.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <string>
#include <string_view>

#include "store/format/file_place.h"

namespace kzb {

class FileSink {
  public:
    // Written in place all the same: what is no regular file, or has no name, and a file in a folder that takes no
    // other or does not let a name be exchanged.
    explicit FileSink(const std::string& path, Writing writing = Writing::beside);
    // Without close() before: what was put is dropped.
    ~FileSink();
    FileSink(const FileSink&) = delete;
    FileSink& operator=(const FileSink&) = delete;

    bool is_open() const { return descriptor_ >= 0; }
    void put(std::string_view bytes);
    // One word as it stands in memory: little-endian.
    template <class Word>
    void put_word(Word word) {
        put({reinterpret_cast<const char*>(&word), sizeof word});
    }
    // Writes the rest and closes; true when the file holds everything, else errno tells why not.
    bool close();

  private:
    void open(const std::string& path, Writing writing);
    bool open_beside(const std::string& path);
    void write(std::string_view bytes);
    void put_in_place();
    void copy_into_place();
    void drop();
    void note(bool done);

    static constexpr std::size_t buffer_size = 65536;
    std::string buffer_;
    std::string place_;      // where the file belongs, behind symbolic links
    std::string temporary_;  // where it is being written, empty: in its place
    struct stat old_ {};     // the file that is replaced
    bool replaces_ = false;
    int descriptor_ = -1;
    int cause_ = 0;  // errno of the first failure
};

}  // namespace kzb
