// Folders of a test's own, and processes in which a test may spoil what belongs to the process.
#pragma once

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <stdexcept>
#include <string>

namespace kzb_test {

// A new folder, gone with the object.
class Folder {
  public:
    Folder() {
        std::string name = (std::filesystem::temp_directory_path() / "kzb_host_XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no folder for the test");
        }
        path_ = name;
    }
    ~Folder() {
        std::error_code error;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, error);
        std::filesystem::remove_all(path_, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::filesystem::path& path() const { return path_; }

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
        std::error_code error;
        std::filesystem::current_path(before_, error);
    }
    WorkingIn(const WorkingIn&) = delete;
    WorkingIn& operator=(const WorkingIn&) = delete;

  private:
    std::filesystem::path before_;
};

// A variable of the environment for the life of the object.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) { ::setenv(name, value, 1); }
    ~Variable() { ::unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    const char* name_;
};

inline std::string contents(const std::filesystem::path& path) {
    std::ostringstream all;
    all << std::ifstream(path, std::ios::binary).rdbuf();
    return all.str();
}

// Runs `body` in a process of its own; its result, or -1 for one that did not return.
inline int in_a_process(const std::function<int()>& body) {
    const pid_t child = ::fork();
    if (child == 0) {
        int result = 127;
        try {
            result = body();
        } catch (...) {
        }
        ::_exit(result);
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

}  // namespace kzb_test
