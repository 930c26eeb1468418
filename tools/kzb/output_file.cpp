#include "kzb/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t buffer_limit = 1U << 16;

// Temporary files to take away when the process is interrupted; fixed storage, since a signal handler reads it.
constexpr std::size_t doomed_count = 8;
constexpr std::size_t doomed_length = 4096;
std::array<std::array<char, doomed_length>, doomed_count> doomed{};

void on_interrupt(int signal) {
    for (const auto& path : doomed) {
        if (path[0] != '\0') {
            unlink(path.data());
        }
    }
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

void remember(const std::string& path) {
    static const bool installed = [] {
        for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
            std::signal(signal, on_interrupt);
        }
        return true;
    }();
    static_cast<void>(installed);
    for (auto& slot : doomed) {
        if (slot[0] == '\0' && path.size() < doomed_length) {
            std::memcpy(slot.data() + 1, path.c_str() + 1, path.size());
            slot[0] = path[0];  // last, so that the handler never sees half a name
            return;
        }
    }
}

void forget(const std::string& path) {
    for (auto& slot : doomed) {
        if (path == slot.data()) {
            slot[0] = '\0';
        }
    }
}

[[noreturn]] void fail(const std::string& path, const std::string& why) {
    throw Failure(exit_run_failed, fmt::format("{}: cannot write: {}", path, why));
}

[[noreturn]] void fail(const std::string& path) {
    fail(path, std::strerror(errno));
}

void write_all(int fd, std::string_view bytes, const std::string& path) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            fail(path);
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

// Mode of the file that will be replaced, else what the user's mask leaves of rw-rw-rw-.
mode_t mode_for(const std::string& place) {
    struct stat old {};
    if (stat(place.c_str(), &old) == 0) {
        return old.st_mode & 07777;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

void copy_straight(const std::string& from, const std::string& to) {
    const int in = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = open(to.c_str(), O_WRONLY | O_CLOEXEC);
    if (in < 0 || out < 0) {
        const int cause = errno;
        close(in);
        close(out);
        errno = cause;
        fail(to);
    }
    std::array<char, buffer_limit> block{};
    ssize_t length = 0;
    do {
        length = read(in, block.data(), block.size());
        write_all(out, {block.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))}, to);
    } while (length > 0);
    const int cause = errno;
    close(in);
    if (close(out) != 0 || length < 0) {
        errno = length < 0 ? cause : errno;
        fail(to);
    }
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : path_(path), place_(path) {
    if (path.empty()) {
        fail("output file", "the name is empty");
    }
    std::error_code ignored;
    const fs::file_status status = fs::status(path, ignored);
    if (fs::is_directory(status)) {
        fail(path, "it is a directory, expected a file name");
    }
    straight_ = fs::exists(status) && !fs::is_regular_file(status);
    if (fs::is_regular_file(status)) {
        // The file behind a symbolic link is replaced, not the link. A file that may not be written stays.
        place_ = fs::canonical(path).string();
        if (access(place_.c_str(), W_OK) != 0) {
            fail(path);
        }
    }
    const fs::path folder = straight_ ? fs::temp_directory_path() : fs::path(place_).parent_path();
    const std::string name = fs::path(place_).filename().string().substr(0, 200);
    temporary_ = ((folder.empty() ? fs::path(".") : folder) / fmt::format(".{}.XXXXXX", name)).string();
    fd_ = mkostemp(temporary_.data(), O_CLOEXEC);
    if (fd_ < 0) {
        temporary_.clear();
        fail(path);
    }
    remember(temporary_);
}

OutputFile::~OutputFile() {
    if (fd_ >= 0) {
        close(fd_);
    }
    if (!temporary_.empty()) {
        unlink(temporary_.c_str());
        forget(temporary_);
    }
}

void OutputFile::write(std::string_view bytes) {
    buffer_ += bytes;
    if (buffer_.size() >= buffer_limit) {
        flush();
    }
}

void OutputFile::flush() {
    write_all(fd_, buffer_, path_);
    buffer_.clear();
}

void OutputFile::commit() {
    flush();
    if (close(std::exchange(fd_, -1)) != 0) {
        fail(path_);
    }
    // Opened anew: a writer that took the path may have replaced the file.
    fd_ = open(temporary_.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd_ < 0 || fchmod(fd_, mode_for(place_)) != 0 || fsync(fd_) != 0) {
        fail(path_);
    }
    if (straight_) {
        copy_straight(temporary_, place_);
        return;  // the destructor takes the temporary file away
    }
    if (rename(temporary_.c_str(), place_.c_str()) != 0) {
        fail(path_);
    }
    forget(temporary_);
    temporary_.clear();
    const fs::path folder = fs::path(place_).parent_path();
    const int directory = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (directory >= 0) {
        fsync(directory);  // the new name too; not all file systems offer it
        close(directory);
    }
}

void refuse_same_file(const std::string& output, const std::string& other, std::string_view what) {
    std::error_code ignored;
    const bool same = fs::path(output).lexically_normal() == fs::path(other).lexically_normal() ||
                      fs::equivalent(output, other, ignored);
    if (same) {
        throw Failure(exit_usage, fmt::format("--out {}: is {} itself, expected another file", output, what));
    }
}

}  // namespace kzb::tool
