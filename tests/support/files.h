// Files and folders of a test's own.
#pragma once

#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace kzb_test {

inline std::string read_file(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline void write_file(const std::filesystem::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

// A new folder with a name that no other test has; gone with the object, whatever is in it.
class Folder {
  public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "kzb_test_XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder for the test");
        }
        path_ = name;
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    // Of all files, sorted.
    std::vector<std::string> names() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(path_)) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

  private:
    std::filesystem::path path_;
};

// The working directory for the life of the object.
class WorkingIn {
  public:
    explicit WorkingIn(const std::filesystem::path& folder) : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingIn() {
        std::error_code ignored;
        std::filesystem::current_path(before_, ignored);
    }
    WorkingIn(const WorkingIn&) = delete;
    WorkingIn& operator=(const WorkingIn&) = delete;

  private:
    std::filesystem::path before_;
};

// A new folder as the working directory.
class WorkingFolder {
  public:
    const std::filesystem::path& path() const { return folder_.path(); }

  private:
    Folder folder_;
    WorkingIn here_{folder_.path()};
};

}  // namespace kzb_test
