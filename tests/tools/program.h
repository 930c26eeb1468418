// Runs the built kzb and holds what it said; a folder of its own for each test.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace kzb::test {

struct Finished {
    int code = -1;   // exit code; -1 when the program did not end by itself
    int signal = 0;  // that ended it, else 0
    std::string out;
    std::string err;
};

// `environment` is added to the caller's; stdin is empty, nothing is a terminal. The program runs in `folder`.
Finished run_kzb(const std::vector<std::string>& arguments, const std::filesystem::path& folder = ".",
                 const std::map<std::string, std::string>& environment = {});

// The same, ended by SIGTERM when it has not ended by itself after `seconds`.
Finished run_kzb_for(const std::vector<std::string>& arguments, const std::filesystem::path& folder, double seconds);

// With a terminal for stderr; `err` holds what appeared on it. Ended by SIGTERM once that holds `until`, if given.
Finished run_kzb_on_terminal(const std::vector<std::string>& arguments, const std::filesystem::path& folder = ".",
                             const std::map<std::string, std::string>& environment = {}, const std::string& until = {});

// An empty folder that goes away with its object.
class Folder {
  public:
    Folder();
    ~Folder();
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    const std::filesystem::path& path() const { return path_; }
    std::string operator/(const std::string& name) const { return (path_ / name).string(); }
    std::vector<std::string> names() const;  // of all files, sorted

  private:
    std::filesystem::path path_;
};

std::string read_file(const std::string& path);
void write_file(const std::string& path, const std::string& content);

int line_count(const std::string& text);

}  // namespace kzb::test
