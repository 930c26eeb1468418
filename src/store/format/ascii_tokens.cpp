#include "store/format/ascii_tokens.h"

#include "store/format/file_marks.h"
#include "store/format/number_scan.h"
#include "store/store.h"

namespace kzb {

bool take_token(FileSource& source, std::string& token) {
    token.clear();
    for (int byte = source.get(); byte != ','; byte = source.get()) {
        if (byte < 0 && source.failed()) {
            report_reading_error();
        }
        if (byte < 0 || byte == '*') {
            return false;
        }
        if (byte == '\n' || byte == '\0') {
            continue;
        }
        token.push_back(static_cast<char>(byte));
        if (token.size() == name_limit) {
            return false;
        }
    }
    return true;
}

bool take_int(FileSource& source, int& value) {
    std::string token;
    if (!take_token(source, token)) {
        return false;
    }
    value = 0;
    std::string_view text = token;
    scan_int(text, value);
    return true;
}

bool take_double(FileSource& source, double& value) {
    std::string token;
    if (!take_token(source, token)) {
        return false;
    }
    value = 0.0;
    std::string_view text = token;
    scan_double(text, value);
    return true;
}

int take_count(FileSource& source) {
    int count = 0;
    std::string_view text = up_to_nul(source.line(line_limit));
    scan_int(text, count);
    return count;
}

}  // namespace kzb
