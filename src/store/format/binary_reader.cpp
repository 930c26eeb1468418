#include "store/format/binary_reader.h"

#include <algorithm>
#include <string>

#include "store/format/file_marks.h"
#include "store/format/placeholder.h"
#include "store/format/shift_jis.h"
#include "store/store.h"

namespace kzb {
namespace {

enum class Outcome { go_on, category_ends, refused };

class BinaryReader {
  public:
    BinaryReader(KZB_STORE& store, FileSource& source) : store_(store), source_(source) {}

    int read();

  private:
    Outcome read_category();
    Outcome read_entry(KZB_CATEGORY& category);
    template <class List>
    void make_room(List& list, int stated);
    void use_room() { room_left_ = std::min(room_left_ + 1, most_room); }
    void read_value(KZB_CATEGORY& category, std::string_view keyword, int type);
    void read_string(KZB_CATEGORY& category, std::string_view keyword);
    void read_placeholder(KZB_CATEGORY& category, std::string_view keyword);
    bool skip_body();
    bool take_text(std::size_t length, std::string& text);
    void check_terminator();

    KZB_STORE& store_;
    FileSource& source_;
    std::string name_;
    std::string keyword_;
    static constexpr int most_room = 1000;
    int room_left_ = most_room;  // for entries that the file has only told of yet
};

int BinaryReader::read() {
    std::string head;
    take_text(binary_head.size(), head);
    if (head != binary_head) {
        store_.error = 90009;
        return 1;
    }
    bool end_seen = false;
    for (int byte = source_.get(); byte >= 0; byte = source_.get()) {
        if (byte == '*' && read_category() == Outcome::refused) {
            store_.error = 90009;
            return 1;
        }
        if (byte == '$') {
            std::string mark = "$";
            take_text(file_end.size() - 1, mark);
            end_seen = end_seen || mark == file_end;
        }
    }
    if (source_.failed()) {
        report_reading_error();
        return 1;
    }
    if (!end_seen) {
        print_reading_error();
    }
    return end_seen ? 0 : 1;
}

Outcome BinaryReader::read_category() {
    int length = -1;
    source_.take(length);
    if (length >= static_cast<int>(name_limit)) {
        return Outcome::refused;
    }
    name_.clear();
    if (length < 0 || !take_text(static_cast<std::size_t>(length), name_)) {
        report_broken();
        return Outcome::go_on;
    }
    std::int64_t total = 0;  // the type code of an entry tells its kind, not the order
    int counts[4] = {};
    for (int& count : counts) {
        source_.take(count);
        total += count;
    }
    check_terminator();
    KZB_CATEGORY& category = *require_category(store_, up_to_nul(name_));
    make_room(category.ints, counts[0]);
    make_room(category.doubles, counts[1]);
    for (Outcome outcome = Outcome::go_on; total > 0 && outcome != Outcome::category_ends; --total) {
        outcome = read_entry(category);
        if (outcome == Outcome::refused) {
            return outcome;
        }
    }
    return Outcome::go_on;
}

// Room for the entries that the file says a category has.
template <class List>
void BinaryReader::make_room(List& list, int stated) {
    const int claimed = std::min(stated, room_left_);
    if (list.empty() && claimed > 0) {
        list.reserve(static_cast<std::size_t>(claimed));
        room_left_ -= claimed;
    }
}

Outcome BinaryReader::read_entry(KZB_CATEGORY& category) {
    int length = 0;
    source_.take(length);
    if (length >= static_cast<int>(name_limit)) {
        return Outcome::refused;
    }
    keyword_.clear();
    take_text(length < 1 ? 0 : static_cast<std::size_t>(length), keyword_);
    int type = -1;
    source_.take(type);
    if (length < 1 || type < 0) {
        report_no_keyword();
        return Outcome::category_ends;
    }
    read_value(category, up_to_nul(keyword_), type);
    return Outcome::go_on;
}

void BinaryReader::read_value(KZB_CATEGORY& category, std::string_view keyword, int type) {
    if (type == type_int) {
        if (int value = 0; source_.take(value)) {
            category.ints.require(keyword).value = value;
            use_room();
        }
        check_terminator();
    } else if (type == type_double) {
        if (double value = 0.0; source_.take(value)) {
            category.doubles.require(keyword).value = value;
            use_room();
        }
        check_terminator();
    } else if (type == type_string) {
        read_string(category, keyword);
    } else if (type == type_table) {
        read_placeholder(category, keyword);
    } else {
        report_unknown_type();
    }
}

void BinaryReader::read_string(KZB_CATEGORY& category, std::string_view keyword) {
    int length = -1;
    source_.take(length);
    if (length < 0) {
        report_broken();
        return;
    }
    std::string text;  // of a text longer than the file, the part that is there
    take_text(static_cast<std::size_t>(std::min<std::int64_t>(length, source_.remaining())), text);
    category.strings.require(keyword).value = stored_text(std::move(text));
    check_terminator();
}

void BinaryReader::read_placeholder(KZB_CATEGORY& category, std::string_view keyword) {
    put_placeholder(store_, category, keyword, source_.position());
    if (skip_body()) {
        check_terminator();
    } else {
        report_broken();
    }
}

// Moves behind the blocks of a table; false where a count cannot be true.
bool BinaryReader::skip_body() {
    int dim = -1;
    source_.take(dim);
    if (dim < 0) {
        return false;
    }
    source_.skip(8 * static_cast<std::int64_t>(dim));  // sizes and flags
    for (std::int64_t block = 0; block <= dim; ++block) {
        int count = -1;
        source_.take(count);
        const std::int64_t bytes = 8 * static_cast<std::int64_t>(count);
        if (count < 0 || bytes > source_.remaining()) {
            source_.skip(bytes);
            return false;
        }
        source_.skip(bytes);
    }
    return true;
}

// Appends up to `length` bytes to `text`; false when the file ends before.
bool BinaryReader::take_text(std::size_t length, std::string& text) {
    const std::size_t before = text.size();
    text.resize(before + length);
    text.resize(before + source_.read(text.data() + before, length));
    return text.size() == before + length;
}

void BinaryReader::check_terminator() {
    char bytes[2] = {};
    if (source_.read(bytes, 2) != 2 || bytes[0] != ',' || bytes[1] != '#') {
        report_broken();
    }
}

}  // namespace

int read_binary(KZB_STORE& store, FileSource& source) {
    return BinaryReader(store, source).read();
}

}  // namespace kzb
