#include "store/format/ascii_reader.h"

#include <string>

#include "store/format/ascii_tokens.h"
#include "store/format/file_marks.h"
#include "store/format/placeholder.h"
#include "store/format/shift_jis.h"
#include "store/store.h"

namespace kzb {
namespace {

class AsciiReader {
  public:
    AsciiReader(KZB_STORE& store, FileSource& source) : store_(store), source_(source) {}

    int read();

  private:
    bool read_category();
    bool take_category_name(std::string& name);
    bool read_entry(KZB_CATEGORY& category);
    bool read_value(KZB_CATEGORY& category, const std::string& keyword, const std::string& type);
    bool read_string(KZB_CATEGORY& category, const std::string& keyword);
    bool read_placeholder(KZB_CATEGORY& category, const std::string& keyword);
    bool skip_body();
    void check_mark();

    KZB_STORE& store_;
    FileSource& source_;
    bool refused_ = false;
};

int AsciiReader::read() {
    bool head_seen = false;
    bool end_seen = false;
    std::string token;
    for (int byte = source_.get(); byte >= 0; byte = source_.get()) {
        if (byte == '*' && !read_category() && refused_) {
            store_.error = 90009;
            return 1;
        }
        if (byte == '$' && take_token(source_, token)) {
            end_seen = end_seen || token == "end_of_kzb_file";
            head_seen = head_seen || token == "DORN-KZa";
        }
        if (!head_seen) {
            return 1;
        }
    }
    if (!end_seen) {
        print_reading_error();
    }
    return end_seen ? 0 : 1;
}

// False when the head of the category cannot be read.
bool AsciiReader::read_category() {
    std::string name;
    bool complete = take_category_name(name);
    std::int64_t total = 0;
    for (int kind = 0; kind < 4 && complete; ++kind) {
        int count = 0;
        complete = take_int(source_, count);
        total += count;
    }
    if (!complete) {
        report_broken();
        return false;
    }
    check_mark();
    KZB_CATEGORY& category = *require_category(store_, up_to_nul(name));
    while (total > 0 && read_entry(category)) {
        --total;
    }
    return true;
}

// The name may hold any bytes but a comma; one that reaches the limit makes the file a broken one.
bool AsciiReader::take_category_name(std::string& name) {
    for (int byte = source_.get(); byte != ','; byte = source_.get()) {
        refused_ = name.size() + 1 == name_limit;
        if (byte < 0 || refused_) {
            return false;
        }
        name.push_back(static_cast<char>(byte));
    }
    return true;
}

// False when the entries of the category end here.
bool AsciiReader::read_entry(KZB_CATEGORY& category) {
    std::string keyword;
    std::string type;
    if (!take_token(source_, keyword) || !take_token(source_, type)) {
        report_no_keyword();
        store_.error = 90005;
        return false;
    }
    if (!read_value(category, keyword, type)) {
        store_.error = 90005;
    }
    return true;
}

bool AsciiReader::read_value(KZB_CATEGORY& category, const std::string& keyword, const std::string& type) {
    if (type == "string") {
        return read_string(category, keyword);
    }
    if (type == "table") {
        return read_placeholder(category, keyword);
    }
    int int_value = 0;
    double double_value = 0.0;
    if (type == "int" && take_int(source_, int_value)) {
        category.ints.require(keyword).value = int_value;
    } else if (type == "double" && take_double(source_, double_value)) {
        category.doubles.require(keyword).value = double_value;
    } else {
        type == "int" || type == "double" ? report_broken() : report_unknown_type();
        return false;
    }
    check_mark();
    return true;
}

// A text ends at its first double quote, whatever its length says; a byte more than the length is looked at.
bool AsciiReader::read_string(KZB_CATEGORY& category, const std::string& keyword) {
    int length = 0;
    if (!take_int(source_, length)) {
        report_broken();
        return false;
    }
    source_.get();  // the opening quote
    std::string text;
    for (std::int64_t left = std::int64_t{length} + 1; left > 0; --left) {
        const int byte = source_.get();
        if (byte < 0 || byte == '"') {
            break;
        }
        text.push_back(static_cast<char>(byte));
    }
    category.strings.require(keyword).value = stored_text(std::move(text));
    const int comma = source_.get();
    const int mark = source_.get();
    if (comma != ',' || mark != '#') {
        report_broken();
        return false;
    }
    return true;
}

bool AsciiReader::read_placeholder(KZB_CATEGORY& category, const std::string& keyword) {
    put_placeholder(store_, category, keyword, source_.position());
    if (!skip_body()) {
        report_broken();
        return false;
    }
    source_.get();  // a comma
    check_mark();
    return true;
}

// Moves behind the blocks of a table by counting lines; false when its head cannot be read.
bool AsciiReader::skip_body() {
    int dim = 0;
    int ignored = 0;
    bool complete = take_int(source_, dim);
    for (std::int64_t left = 2 * std::int64_t{dim}; left > 0 && complete; --left) {  // sizes and flags
        complete = take_int(source_, ignored);
    }
    source_.get();  // the line feed
    for (std::int64_t block = 0; block <= dim && complete; ++block) {
        for (std::int64_t left = block_lines(take_count(source_)); left > 0; --left) {
            if (source_.line(line_limit).empty()) {
                break;
            }
        }
    }
    return complete;
}

void AsciiReader::check_mark() {
    if (source_.get() != '#') {
        report_broken();
    }
}

}  // namespace

int read_ascii(KZB_STORE& store, FileSource& source) {
    return AsciiReader(store, source).read();
}

}  // namespace kzb
