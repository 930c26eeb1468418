#include "diagnostics/own_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>

namespace kzb {

int above_standard_streams(int descriptor) {
    if (descriptor < 0 || descriptor > STDERR_FILENO) {
        return descriptor;
    }
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int cause = errno;
    ::close(descriptor);
    errno = cause;
    return moved;
}

std::FILE* open_own_file(const char* path, const char* mode) {
    std::FILE* const file = std::fopen(path, (std::string(mode) + 'e').c_str());
    if (file == nullptr || ::fileno(file) > STDERR_FILENO) {
        return file;
    }
    const int apart = ::fcntl(::fileno(file), F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    std::fclose(file);
    std::FILE* const moved = apart < 0 ? nullptr : ::fdopen(apart, mode);
    if (moved == nullptr && apart >= 0) {
        ::close(apart);
    }
    return moved;
}

}  // namespace kzb
