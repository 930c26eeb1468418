#include "store/format/legacy_lines.h"

#include <algorithm>
#include <cstdio>

#include "store/format/file_marks.h"
#include "store/format/number_scan.h"
#include "store/store.h"

namespace kzb {
namespace {

constexpr std::size_t line_bytes = 127;
constexpr std::size_t flag_width = 10;
constexpr std::size_t value_width = 20;
constexpr std::string_view white_space = " \t\n\v\f\r";

void assign_text(std::string& line, std::string_view bytes) {
    if (bytes.ends_with('\n')) {
        bytes.remove_suffix(1);
    }
    line = up_to_nul(bytes);
}

std::string_view behind_blanks(std::string_view text) {
    return text.substr(std::min(text.find_first_not_of(white_space), text.size()));
}

std::string_view field(std::string_view line, std::size_t index, std::size_t width) {
    return line.substr(std::min(index * width, line.size()));
}

}  // namespace

bool take_line(FileSource& source, std::string& line) {
    const std::string_view bytes = source.line(line_bytes);
    assign_text(line, bytes);
    return !bytes.empty();
}

bool take_entry_line(FileSource& source, std::string& line) {
    if (source.peek(1) == "*") {
        return false;
    }
    return take_line(source, line);
}

bool take_line_of(FileSource& source, int& value) {
    std::string line;
    take_line(source, line);
    std::string_view text = line;
    return scan_int(text, value);
}

bool take_line_of(FileSource& source, double& value) {
    std::string line;
    take_line(source, line);
    std::string_view text = line;
    return scan_double(text, value);
}

bool take_wide_line(FileSource& source, std::size_t limit, std::string& line) {
    constexpr std::size_t piece_bytes = 4095;
    std::string bytes;
    for (std::string_view piece = source.line(piece_bytes); !piece.empty(); piece = source.line(piece_bytes)) {
        bytes.append(piece.substr(0, limit - std::min(bytes.size(), limit)));
        if (piece.ends_with('\n')) {
            assign_text(line, bytes);
            return true;
        }
    }
    assign_text(line, bytes);
    return !bytes.empty();
}

std::string_view take_word(std::string_view& text) {
    text = behind_blanks(text);
    const std::string_view word = text.substr(0, text.find_first_of(white_space));
    text.remove_prefix(word.size());
    return word;
}

int flag_field(std::string_view line, std::size_t index) {
    // "%10d": the blanks in front do not count, ten characters may follow them.
    std::string_view text = behind_blanks(field(line, index, flag_width)).substr(0, flag_width);
    int flag = 0;
    scan_int(text, flag);
    return flag;
}

bool value_field(std::string_view line, std::size_t index, double& value) {
    std::string_view text = field(line, index, value_width).substr(0, value_width);
    return scan_double(text, value);
}

bool RemoveDoubleQuatation(std::string_view text, std::string& result) {
    const std::size_t first = text.find('"');
    const std::string_view behind = first == std::string_view::npos ? std::string_view() : text.substr(first + 1);
    const std::size_t second = behind.substr(0, name_limit).find('"');
    result = behind.substr(0, std::min(second, name_limit - 1));
    if (second == std::string_view::npos) {
        std::perror("error at RemoveDoubleQuatation");
        return false;
    }
    return true;
}

}  // namespace kzb
