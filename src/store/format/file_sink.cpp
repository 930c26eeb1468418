#include "store/format/file_sink.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace kzb {

FileSink::FileSink(const std::string& path) {
    buffer_.reserve(buffer_size);  // first: without memory the file stays as it is
    // Not blocking while it opens: a pipe that nobody reads counts as a file that cannot be opened.
    descriptor_ = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (descriptor_ >= 0) {
        fcntl(descriptor_, F_SETFL, fcntl(descriptor_, F_GETFL) & ~O_NONBLOCK);
    }
}

FileSink::~FileSink() {
    close();
}

void FileSink::put(std::string_view bytes) {
    if (buffer_.size() + bytes.size() > buffer_size) {
        write(buffer_);
        buffer_.clear();
    }
    if (bytes.size() > buffer_size) {
        write(bytes);
    } else {
        buffer_.append(bytes);
    }
}

bool FileSink::close() {
    if (descriptor_ < 0) {
        return false;
    }
    write(buffer_);
    buffer_.clear();
    whole_ = ::close(descriptor_) == 0 && whole_;
    descriptor_ = -1;
    return whole_;
}

void FileSink::write(std::string_view bytes) {
    while (whole_ && !bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        whole_ = written > 0;
        bytes.remove_prefix(whole_ ? static_cast<std::size_t>(written) : 0);
    }
}

}  // namespace kzb
