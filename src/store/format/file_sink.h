// Bytes on their way into a file, gathered in a buffer.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kzb {

class FileSink {
  public:
    // Creates or empties the file.
    explicit FileSink(const std::string& path);
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
    // Writes the rest and closes; true when the file holds everything.
    bool close();

  private:
    void write(std::string_view bytes);

    static constexpr std::size_t buffer_size = 65536;
    std::string buffer_;
    int descriptor_ = -1;
    bool whole_ = true;
};

}  // namespace kzb
