// Fields of the ascii form: texts that end at a comma.
#pragma once

#include <cstdint>
#include <string>

#include "store/format/file_source.h"

namespace kzb {

// Takes the text up to the next comma, across line ends; line feeds and NUL bytes are left out. False at "*" (which is
// taken), at the end of the file and at the 256th character.
bool take_token(FileSource& source, std::string& token);

// A token as a number: false when the token fails; a token that is no number gives 0.
bool take_int(FileSource& source, int& value);
bool take_double(FileSource& source, double& value);

// Takes the line of a block's count, "%d,\n"; 0 where there is no number.
int take_count(FileSource& source);

inline constexpr std::size_t line_limit = 127;  // a longer line counts as several
inline constexpr int values_per_line = 5;
// Lines that a block of `count` values fills behind the line of its count.
inline std::int64_t block_lines(int count) {
    return count / values_per_line + (count % values_per_line > 0 ? 1 : 0);
}

}  // namespace kzb
