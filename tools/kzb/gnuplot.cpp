#include "kzb/gnuplot.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/output_file.h"
#include "kzb/text.h"

extern char** environ;

namespace kzb::tool {

namespace {

// File in memory that ends with its object.
class Memory {
  public:
    explicit Memory(std::string_view content = {}) : fd_(memfd_create("gnuplot", MFD_CLOEXEC)) {
        while (fd_ >= 0 && !content.empty()) {
            const ssize_t written = write(fd_, content.data(), content.size());
            if (written <= 0) {
                throw Failure(exit_run_failed,
                              fmt::format("gnuplot: no memory for its data: {}", std::strerror(errno)));
            }
            content.remove_prefix(static_cast<std::size_t>(written));
        }
        lseek(fd_, 0, SEEK_SET);
    }
    ~Memory() { close(fd_); }
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    int fd() const { return fd_; }
    std::string start() const {
        std::array<char, 400> block{};
        const ssize_t count = pread(fd_, block.data(), block.size(), 0);
        return count > 0 ? std::string(block.data(), static_cast<std::size_t>(count)) : std::string();
    }

  private:
    int fd_;
};

// Runs gnuplot on the three files; its exit status.
int spawn_gnuplot(int in, int out, int err) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, in, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, out, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&files, err, STDERR_FILENO);
    std::string name = "gnuplot";
    std::array<char*, 2> arguments = {name.data(), nullptr};
    pid_t child = 0;
    const int failed = posix_spawnp(&child, name.c_str(), &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (failed != 0) {
        throw Failure(exit_run_failed, fmt::format("gnuplot cannot be started: {}", std::strerror(failed)));
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string terminal(ImageForm form, int width, int height) {
    return form == ImageForm::png
               ? fmt::format("set terminal pngcairo noenhanced size {},{} font 'sans,10'\n", width, height)
               : fmt::format("set terminal svg noenhanced size {},{} font 'sans,12' background 'white'\n", width,
                             height);
}

}  // namespace

ImageForm image_form_of(const std::string& path) {
    const std::string ending = std::filesystem::path(path).extension().string();
    if (ending == ".png") {
        return ImageForm::png;
    }
    if (ending == ".svg") {
        return ImageForm::svg;
    }
    throw Failure(exit_usage,
                  fmt::format("{}: cannot tell the image form, expected a name that ends in .png or .svg", path));
}

void require_gnuplot() {
    const char* path = std::getenv("PATH");
    std::string_view folders = path == nullptr ? "/usr/bin:/bin" : path;
    while (!folders.empty()) {
        const std::size_t end = std::min(folders.find(':'), folders.size());
        const std::string candidate = fmt::format("{}/gnuplot", end == 0 ? "." : folders.substr(0, end));
        if (access(candidate.c_str(), X_OK) == 0) {
            return;
        }
        folders.remove_prefix(std::min(end + 1, folders.size()));
    }
    throw Failure(exit_run_failed, "gnuplot is not installed (not found in PATH), it is needed for plots");
}

void run_gnuplot(const std::string& path, int width, int height, std::string_view script) {
    const ImageForm form = image_form_of(path);
    require_gnuplot();
    OutputFile output(path);
    const Memory input(terminal(form, width, height) + std::string(script));
    const Memory said;
    const int image = open(output.temporary_path().c_str(), O_WRONLY | O_CLOEXEC);
    const int status = spawn_gnuplot(input.fd(), image, said.fd());
    const off_t size = lseek(image, 0, SEEK_END);
    close(image);
    if (status != 0 || size <= 0) {
        throw Failure(exit_run_failed,
                      fmt::format("{}: gnuplot could not draw it: {}", path, printable_line(said.start())));
    }
    output.commit();
}

std::string gnuplot_text(std::string_view text) {
    std::string result = "'";
    for (const char c : printable_line(text)) {
        result += c;
        if (c == '\'') {
            result += c;
        }
    }
    return result + "'";
}

GnuplotData::GnuplotData(std::string_view name) : text_(fmt::format("${} << EOD\n", name)) {}

void GnuplotData::row(const std::vector<double>& cells) {
    for (const double cell : cells) {
        if (std::isfinite(cell)) {
            fmt::format_to(std::back_inserter(text_), "{} ", cell);
        } else {
            text_ += "nan ";
        }
    }
    text_ += '\n';
}

}  // namespace kzb::tool
