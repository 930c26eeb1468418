// Runs the built kzb and holds what it said.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "support/files.h"

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

using kzb_test::Folder;
using kzb_test::read_file;
using kzb_test::write_file;

// Builds m.kzb in the folder: a wound-field machine of two pole pairs whose inductances are constant.
Finished build_linear_wound_field(const Folder& folder);

int line_count(const std::string& text);

}  // namespace kzb::test
