#include "store/format/file_source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace kzb {

FileSource::FileSource(const char* path) {
    if (path == nullptr) {
        return;
    }
    // Not blocking: a pipe that nobody writes must not hold up the caller. It is refused below.
    descriptor_ = open(path, O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK);
    struct stat status {};
    if (descriptor_ >= 0 && (fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode))) {
        close(descriptor_);
        descriptor_ = -1;
    }
    size_ = descriptor_ >= 0 ? status.st_size : 0;
}

FileSource::~FileSource() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

std::string_view FileSource::peek(std::size_t count) {
    fill(count);
    return {buffer_.data() + begin_, std::min(count, end_ - begin_)};
}

std::size_t FileSource::read(void* to, std::size_t count) {
    char* target = static_cast<char*>(to);
    if (count <= first_read) {
        fill(count);
    }
    const std::size_t buffered = std::min(count, end_ - begin_);
    if (buffered != 0) {
        std::memcpy(target, buffer_.data() + begin_, buffered);
        begin_ += buffered;
    }
    if (buffered == count || count <= first_read) {
        return buffered;
    }
    const std::size_t direct = read_at(position(), target + buffered, count - buffered);
    seek(position() + static_cast<std::int64_t>(direct));
    return buffered + direct;
}

std::string_view FileSource::line(std::size_t limit) {
    // In a text the line's own two bytes count as one: it may be a byte longer in the file.
    const std::string_view ahead = peek(limit + (text_ ? 1 : 0));
    const std::size_t feed = ahead.find('\n');
    if (text_ && feed != std::string_view::npos && feed > 0 && ahead[feed - 1] == '\r') {
        translated_.assign(ahead.substr(0, feed - 1)).push_back('\n');
        begin_ += feed + 1;
        return translated_;
    }
    const std::string_view taken = ahead.substr(0, std::min(limit, feed == std::string_view::npos ? limit : feed + 1));
    begin_ += taken.size();
    return taken;
}

// What a carriage return in a text stands for: itself, or with the line feed behind it the end of a line.
int FileSource::get_behind_return() {
    if (peek(1) != "\n") {
        return '\r';
    }
    ++begin_;
    return '\n';
}

void FileSource::skip(std::int64_t count) {
    seek(position() + std::min(std::max<std::int64_t>(count, 0), remaining()));
}

void FileSource::seek(std::int64_t position) {
    const std::int64_t offset = position - buffer_position_;
    if (offset >= 0 && offset <= static_cast<std::int64_t>(end_)) {
        begin_ = static_cast<std::size_t>(offset);
        return;
    }
    buffer_position_ = std::max<std::int64_t>(position, 0);
    begin_ = 0;
    end_ = 0;
    next_read_ = first_read;
}

// True when at least `wanted` bytes stand in the buffer.
bool FileSource::fill(std::size_t wanted) {
    if (end_ - begin_ >= wanted) {
        return true;
    }
    if (begin_ != 0) {
        std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
        buffer_position_ += static_cast<std::int64_t>(begin_);
        end_ -= begin_;
        begin_ = 0;
    }
    const std::size_t room = std::min(buffer_size - end_, std::max(next_read_, wanted));
    next_read_ = std::min(2 * next_read_, buffer_size);
    end_ += read_at(buffer_position_ + static_cast<std::int64_t>(end_), buffer_.data() + end_, room);
    return end_ - begin_ >= wanted;
}

std::size_t FileSource::read_at(std::int64_t position, char* to, std::size_t count) {
    std::size_t done = 0;
    count = static_cast<std::size_t>(std::clamp<std::int64_t>(size_ - position, 0, static_cast<std::int64_t>(count)));
    while (done < count) {
        const ssize_t got = pread(descriptor_, to + done, count - done, position + static_cast<std::int64_t>(done));
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {  // refused, or the file became shorter: it ends here
            failed_ = failed_ || got < 0;
            size_ = position + static_cast<std::int64_t>(done);
            break;
        }
        done += static_cast<std::size_t>(got);
    }
    return done;
}

}  // namespace kzb
