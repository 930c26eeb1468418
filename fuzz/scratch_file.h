// Files of the process's own, in memory where the system has such a place, for calls that want a path. Their names hold
// the process id; they go with their objects.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace kzb_fuzz {

inline std::string memory_folder() {
    std::error_code ignored;
    const char* const memory = "/dev/shm";
    return std::filesystem::is_directory(memory, ignored) ? memory
                                                          : std::filesystem::temp_directory_path(ignored).string();
}

// A name for a file or folder; what stands there goes with the object.
class ScratchPath {
  public:
    explicit ScratchPath(const char* name)
        : path_(memory_folder() + "/kzb_fuzz_" + name + "_" + std::to_string(getpid())) {}
    ~ScratchPath() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ScratchPath(const ScratchPath&) = delete;
    ScratchPath& operator=(const ScratchPath&) = delete;

    const std::string& name() const { return path_; }
    const char* path() const { return path_.c_str(); }

  private:
    std::string path_;
};

// Replaces what the file holds.
inline void hold(const std::string& path, std::string_view bytes) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file >= 0) {
        const bool whole = write(file, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size());
        static_cast<void>(whole);  // of a place without room
        close(file);
    }
}

inline std::string_view text_of(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

}  // namespace kzb_fuzz
