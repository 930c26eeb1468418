#include "store/format/file_place.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <climits>

#include "diagnostics/number_text.h"

namespace kzb {
namespace {

// Length of the part of a path that names the folder, its slash included.
std::size_t folder_length(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? 0 : slash + 1;
}

}  // namespace

std::string behind_links(const std::string& path) {
    constexpr int most_links = 40;  // as many as the system follows
    std::string place = path;
    std::array<char, PATH_MAX> target{};
    for (int link = 0; link < most_links; ++link) {
        const ssize_t length = readlink(place.c_str(), target.data(), target.size());
        if (length <= 0) {
            break;
        }
        place.resize(target[0] == '/' ? 0 : folder_length(place));
        place.append(target.data(), static_cast<std::size_t>(length));
    }
    return place;
}

int create_beside(const std::string& place, mode_t mode, std::string& name) {
    constexpr std::size_t most_kept = 200;  // of the name, to stay within what a file system takes
    constexpr int most_tries = 100;
    const std::size_t folder = folder_length(place);
    if (folder == place.size()) {
        errno = EISDIR;
        return -1;
    }
    const std::string stem = place.substr(0, folder) + '.' + place.substr(folder, most_kept) + '.';
    std::string candidate;
    for (int left = most_tries; left > 0; --left) {
        candidate = stem;
        append_integer(candidate, getpid(), 0);
        candidate += '-';
        append_integer(candidate, std::chrono::steady_clock::now().time_since_epoch().count(), 0);
        const int descriptor = open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOCTTY, mode);
        if (descriptor >= 0 || errno != EEXIST) {
            if (descriptor >= 0) {
                name.swap(candidate);  // takes no memory, which would leave a file that nobody knows of
            }
            return descriptor;
        }
    }
    return -1;
}

}  // namespace kzb
