// Marks that both forms of the file share, and the messages of a faulty one.
#pragma once

#include <cstdio>
#include <string_view>

namespace kzb {

// A file that does not start so is older than this format.
inline constexpr std::string_view form_mark = "$DORN-KZ";
inline constexpr std::string_view binary_head = "$DORN-KZb,#\n";
inline constexpr std::string_view ascii_head = "$DORN-KZa,#\n";
inline constexpr std::string_view file_end = "$end_of_kzb_file,#\n";

// Type codes of the entries in the binary form.
enum EntryType { type_int = 0, type_double = 1, type_string = 2, type_table = 3 };

inline void report_broken() {
    std::perror("this file is broken\n");
}
inline void report_no_keyword() {
    std::perror("not found keyword and type");
}
inline void report_unknown_type() {
    std::perror("unknown data type");
}
// A missing end mark, on standard output; a system that refused to read, through perror.
inline void print_reading_error() {
    std::fputs("file reading error\n", stdout);
}
inline void report_reading_error() {
    std::perror("file reading error\n");
}

// The first of what a keyword or name holds up to a NUL: the store's texts end there.
inline std::string_view up_to_nul(std::string_view text) {
    return text.substr(0, text.find('\0'));
}

}  // namespace kzb
