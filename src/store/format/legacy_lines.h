// Lines of the old ascii form and the fields in them.
//
// A line has at most 127 bytes; what is longer counts as several. Fields follow the conversions of the C library: a
// number ends where it can go on no more, a word at white space.
#pragma once

#include <string>
#include <string_view>

#include "store/format/file_source.h"

namespace kzb {

// The next line without its line feed, up to its first NUL. False at the end of the file.
bool take_line(FileSource& source, std::string& line);
// The same, but a line that starts with a star belongs to the next section: it is left, with false.
bool take_entry_line(FileSource& source, std::string& line);

// A line with a number in front; false, with `value` as it was, without one.
bool take_line_of(FileSource& source, int& value);
bool take_line_of(FileSource& source, double& value);

// The next line whole, up to its first `limit` bytes and its first NUL: rows of a block may be long.
bool take_wide_line(FileSource& source, std::size_t limit, std::string& line);

// Takes a word from the front of `text`, empty where there is none.
std::string_view take_word(std::string_view& text);

// Number `index` of the fields of ten columns each; 0 where there is none.
int flag_field(std::string_view line, std::size_t index);
// Number `index` of the fields of twenty columns each; false where there is none.
bool value_field(std::string_view line, std::size_t index, double& value);

// The text between the first pair of double quotes. Without a second one within 256 characters `result` is what was
// there so far, "error at RemoveDoubleQuatation" is printed and the call false.
bool RemoveDoubleQuatation(std::string_view text, std::string& result);

}  // namespace kzb
