// The texts of the log: the two formatters, and what a comment may hold.
#pragma once

#include <cstdarg>
#include <string>

namespace kzb {

// The runtime's formatting.
std::string format_runtime(const char* format, std::va_list arguments);

// The log's own format language. "\n", "\t", "\r" written as backslash and letter give the control character, a
// backslash before anything else gives nothing. A "%" begins a specifier that runs up to the next blank, "%" or end
// and is named by its last character: c d i an int, s a text, e f E F a double; any other gives nothing and takes no
// argument. The runtime formats the whole specifier ("%drad" gives "7rad"); one whose conversion doesn't go with that
// argument ("%sd") takes it and gives nothing.
std::string format_own(const char* format, std::va_list arguments);

// Replaces each pair of hyphens by two blanks: an XML comment may not hold one. A lone hyphen stays.
void purify_comment(std::string& text);

}  // namespace kzb
