// Text for people and for JSON: always valid UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace kzb::tool {

bool is_utf8(std::string_view bytes);
bool is_ascii(std::string_view bytes);

// Invalid bytes become U+FFFD.
std::string valid_utf8(std::string_view bytes);

// valid_utf8 with control characters (the line feed excepted) made visible as '?', fit for a terminal.
std::string printable(std::string_view bytes);

// printable on one line: line feeds become spaces.
std::string printable_line(std::string_view bytes);

// A string value of the store in UTF-8. The store holds Shift_JIS, except for a text that Shift_JIS cannot express,
// which stays in the UTF-8 of its file.
std::string from_store(std::string_view bytes);

}  // namespace kzb::tool
