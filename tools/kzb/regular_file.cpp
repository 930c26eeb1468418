#include "kzb/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

std::string start_of_regular_file(const std::string& path, std::size_t count, std::string_view expected) {
    const auto refuse = [&](std::string_view why) {
        throw Failure(exit_file, fmt::format("{}: {}, expected {}", path.empty() ? "\"\"" : path, why, expected));
    };
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        refuse(fmt::format("cannot be opened ({})", std::strerror(errno)));
    }
    struct stat status {};
    const bool regular = fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    const bool directory = S_ISDIR(status.st_mode);
    std::string start(count, '\0');
    const ssize_t length = regular ? read(fd, start.data(), count) : 0;
    close(fd);
    if (!regular) {
        refuse(directory ? "is a directory" : "is no regular file");
    }
    start.resize(static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    return start;
}

}  // namespace kzb::tool
