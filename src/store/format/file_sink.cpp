#include "store/format/file_sink.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "diagnostics/own_file.h"
#include "store/format/write_signals.h"

namespace kzb {
namespace {

// A folder, or a file system, that takes no new file although an old one may be written.
bool folder_refuses(int cause) {
    return cause == EACCES || cause == EPERM || cause == EROFS || cause == ENAMETOOLONG;
}

// A file that is mounted by itself; another's file in a folder with the sticky bit.
bool place_refuses(int cause) {
    return cause == EBUSY || cause == EPERM;
}

bool same_file(const std::string& path, const struct stat& file) {
    struct stat found {};
    return stat(path.c_str(), &found) == 0 && found.st_dev == file.st_dev && found.st_ino == file.st_ino;
}

// As the old file was, as far as the process may: only few may give a file to another owner.
bool keep_owner_and_mode(int descriptor, const struct stat& old) {
    const bool own = old.st_uid == geteuid() && old.st_gid == getegid();
    if (!own && fchown(descriptor, old.st_uid, old.st_gid) != 0) {
        [[maybe_unused]] const int group = fchown(descriptor, static_cast<uid_t>(-1), old.st_gid);
    }
    return fchmod(descriptor, old.st_mode & 0777) == 0;
}

// Some file systems know no synchronisation: nothing to wait for then.
bool on_disk(int descriptor) {
    return fsync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

}  // namespace

FileSink::FileSink(const std::string& path, Writing writing) {
    buffer_.reserve(buffer_size);  // first: without memory the file stays as it is
    try {
        open(path, writing);
        descriptor_ = above_standard_streams(descriptor_);
    } catch (...) {
        drop();
        throw;
    }
}

FileSink::~FileSink() {
    drop();
}

void FileSink::open(const std::string& path, Writing writing) {
    // Not blocking while it opens: a pipe that nobody reads counts as a file that cannot be opened.
    constexpr int flags = O_WRONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    descriptor_ = ::open(path.c_str(), flags);
    if (descriptor_ < 0) {
        if (errno == ENOENT && writing == Writing::beside) {
            open_beside(path);
        } else if (errno == ENOENT) {
            descriptor_ = ::open(path.c_str(), flags | O_CREAT, 0666);
        }
        return;
    }
    fcntl(descriptor_, F_SETFL, fcntl(descriptor_, F_GETFL) & ~O_NONBLOCK);
    if (fstat(descriptor_, &old_) != 0 || !S_ISREG(old_.st_mode)) {
        return;
    }
    replaces_ = true;
    if (writing == Writing::beside && open_beside(path)) {
        return;
    }
    if (ftruncate(descriptor_, 0) != 0) {
        drop();
    }
}

// True when the question is settled: the file stands open beside its place, or nothing may be written.
bool FileSink::open_beside(const std::string& path) {
    place_ = behind_links(path);
    if (replaces_ && !same_file(place_, old_)) {
        return false;
    }
    const int beside = create_beside(place_, replaces_ ? 0600 : 0666, temporary_);
    const int cause = errno;
    if (beside < 0 && replaces_ && folder_refuses(cause)) {
        return false;
    }
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
    descriptor_ = beside;
    errno = cause;
    return true;
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
    if (!temporary_.empty()) {
        put_in_place();
    } else {
        note(::close(descriptor_) == 0);
        descriptor_ = -1;
    }
    errno = cause_;
    return cause_ == 0;
}

void FileSink::write(std::string_view bytes) {
    const WriteSignals signals;
    while (cause_ == 0 && !bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written == 0) {
            errno = ENOSPC;
        }
        note(written > 0);
        signals.take(cause_);
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

// The old file goes only for one that is safely on the disk.
void FileSink::put_in_place() {
    if (replaces_ && cause_ == 0) {
        note(keep_owner_and_mode(descriptor_, old_) && on_disk(descriptor_));
    }
    note(::close(descriptor_) == 0);
    descriptor_ = -1;
    if (cause_ == 0) {
        if (std::rename(temporary_.c_str(), place_.c_str()) == 0) {
            temporary_.clear();
        } else if (replaces_ && place_refuses(errno)) {
            copy_into_place();
        } else {
            note(false);
        }
    }
    drop();
}

// The whole new file stands beside; should its copy fail when the old one is gone, it stays there.
void FileSink::copy_into_place() {
    const int from = above_standard_streams(::open(temporary_.c_str(), O_RDONLY | O_CLOEXEC));
    note(from >= 0);
    descriptor_ = above_standard_streams(::open(place_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    note(descriptor_ >= 0);
    note(cause_ == 0 && ftruncate(descriptor_, 0) == 0);
    const bool truncated = cause_ == 0;
    buffer_.resize(buffer_size);
    while (cause_ == 0) {
        const ssize_t count = ::read(from, buffer_.data(), buffer_size);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        note(count >= 0);
        if (count <= 0) {
            break;
        }
        write({buffer_.data(), static_cast<std::size_t>(count)});
    }
    note(cause_ == 0 && on_disk(descriptor_));
    if (from >= 0) {
        ::close(from);
    }
    if (descriptor_ >= 0) {
        note(::close(descriptor_) == 0);
        descriptor_ = -1;
    }
    if (truncated && cause_ != 0) {
        temporary_.clear();
    }
}

void FileSink::drop() {
    const int cause = errno;
    if (descriptor_ >= 0) {
        ::close(descriptor_);
        descriptor_ = -1;
    }
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        temporary_.clear();
    }
    errno = cause;
}

void FileSink::note(bool done) {
    if (!done && cause_ == 0) {
        cause_ = errno == 0 ? EIO : errno;
    }
}

}  // namespace kzb
