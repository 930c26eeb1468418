#include "kzb/input_text.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

class Descriptor {
  public:
    explicit Descriptor(const std::string& path) : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

}  // namespace

std::string read_input_text(const std::string& path, std::string_view expected) {
    const auto refuse = [&](std::string_view why) {
        throw Failure(exit_file, fmt::format("{}: {}, expected {}", path.empty() ? "\"\"" : path, why, expected));
    };
    const Descriptor file(path);
    if (file.get() < 0) {
        refuse(fmt::format("cannot be opened ({})", std::strerror(errno)));
    }
    struct stat status {};
    if (fstat(file.get(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) {
        refuse(S_ISDIR(status.st_mode) ? "is a directory" : "is neither a file nor a pipe");
    }
    std::string text;
    char block[1U << 16];
    for (ssize_t count = 1; count != 0;) {
        count = read(file.get(), block, sizeof block);
        if (count > 0) {
            text.append(block, static_cast<std::size_t>(count));
        } else if (count < 0 && errno != EINTR) {
            refuse(fmt::format("cannot be read ({})", std::strerror(errno)));
        }
    }
    return text;
}

}  // namespace kzb::tool
