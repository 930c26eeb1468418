// Old files in binary: little-endian words of 32 bits and doubles of 64, texts between an opening and a closing byte.
#include <algorithm>
#include <array>
#include <cstdio>
#include <string>

#include "store/format/file_marks.h"
#include "store/format/legacy_body.h"
#include "store/format/legacy_file.h"
#include "store/format/quote_search.h"

namespace kzb {
namespace {

constexpr std::array<std::string_view, 5> control_ints{"motor_type", "number_of_poles", "number_of_splinetables",
                                                       "accuracy_type", "number_of_tables"};
constexpr std::array<std::string_view, 12> control_doubles{
    "beta_zero",   "coef_inertia1", "coef_inertia2", "coef_inductance", "coef_flux",  "coef_torque",
    "coef_magnet", "coef_material", "coef_mass1",    "coef_mass2",      "coef_force", "electrical_length"};
constexpr std::array<std::string_view, 3> control_turns{"turns_in_coil", "turns_coil2", "turns_coil1"};
constexpr double version_with_double_turns = 901.0;  // older files count turns in a word

template <std::size_t Count>
bool holds(const std::array<std::string_view, Count>& keys, std::string_view key) {
    return std::find(keys.begin(), keys.end(), key) != keys.end();
}

struct BinaryForm {
    FileSource& source;

    bool take_size(int& size) { return source.take(size); }
    bool take_node(double& node) { return source.take(node); }
    bool take_block_sizes(int& rows, int& columns) { return source.take(rows) && source.take(columns); }
    bool take_row(int count, std::vector<double>& numbers) {
        const auto size = static_cast<std::size_t>(count);
        if (count > most_values()) {
            return false;
        }
        numbers.resize(size);
        return source.read(numbers.data(), sizeof(double) * size) == sizeof(double) * size;
    }
    std::int64_t most_values() const { return source.remaining() / static_cast<std::int64_t>(sizeof(double)); }
};

class LegacyBinaryReader {
  public:
    LegacyBinaryReader(KZB_STORE& store, FileSource& source) : store_(store), source_(source), quotes_(source) {}

    int read();

  private:
    bool read_section(const std::string& word);
    bool read_version();
    bool read_control();
    bool read_control_value(const std::string& key);
    bool read_parameter();
    bool read_settings();
    bool read_setting();
    bool read_table();
    bool take_count(int& count);
    bool take_delimited(char open, char close, std::string& text);
    bool take_quoted(std::string& text) { return take_delimited('"', '"', text); }

    KZB_STORE& store_;
    FileSource& source_;
    QuoteSearch quotes_;
    LegacyApplication application_;  // of this file; not the one selected in the store
};

int LegacyBinaryReader::read() {
    std::string word;
    while (source_.remaining() > 0) {
        if (!take_delimited('*', '\n', word)) {
            store_.error = 90004;
            return 1;
        }
        if (!read_section(word)) {
            std::perror("reading error in ReadCategoryParameterByBinaryModeForOldFileFormat");
            return 1;
        }
    }
    return 0;
}

// False when a known section cannot be true; another word is no section.
bool LegacyBinaryReader::read_section(const std::string& word) {
    if (word == "version") {
        return read_version();
    }
    if (word == "control") {
        return read_control();
    }
    if (word == "parameter") {
        return read_parameter();
    }
    if (word == "settings") {
        return read_settings();
    }
    return word != "table" || read_table();
}

bool LegacyBinaryReader::read_version() {
    double version = 0.0;
    if (!source_.take(version) || !(version >= 0.0 && version <= 1000.0)) {
        return false;
    }
    store_.version = version;
    put_double(store_, "version", "version", version);
    return true;
}

// The section has no count: it ends before what is none of its keys, which may be any bytes of a later section.
bool LegacyBinaryReader::read_control() {
    int ignored = 0;
    source_.take(ignored);
    std::string key;
    for (int entries = 0;; ++entries) {
        const std::int64_t start = source_.position();
        const bool is_key =
            take_quoted(key) && (holds(control_ints, key) || holds(control_doubles, key) || holds(control_turns, key));
        if (source_.failed()) {
            return false;
        }
        if (!is_key) {
            source_.seek(start);
            break;
        }
        if (entries == legacy_control_limit) {
            store_.error = 90003;
            return false;
        }
        if (!read_control_value(key)) {
            return false;
        }
    }
    application_ = legacy_application(get_int(store_, "control", "motor_type"),
                                      get_int(store_, "control", "accuracy_type"), "SimpleHarmonic");
    return true;
}

bool LegacyBinaryReader::read_control_value(const std::string& key) {
    const bool turns_in_word = holds(control_turns, key) && store_.version < version_with_double_turns;
    if (turns_in_word || holds(control_ints, key)) {
        int value = 0;
        if (!source_.take(value)) {
            return false;
        }
        turns_in_word ? put_double(store_, "control", key, value) : put_int(store_, "control", key, value);
        return true;
    }
    double value = 0.0;
    return source_.take(value) && put_double(store_, "control", key, value) == 0;
}

bool LegacyBinaryReader::read_parameter() {
    int count = 0;
    if (!take_count(count)) {
        return false;
    }
    std::string key;
    for (; count > 0; --count) {
        double value = 0.0;
        if (!take_quoted(key) || !source_.take(value)) {
            return false;
        }
        put_double(store_, "parameter", key, value);
    }
    return true;
}

bool LegacyBinaryReader::read_settings() {
    int count = 0;
    if (!take_count(count)) {
        return false;
    }
    for (; count > 0; --count) {
        if (!read_setting()) {
            return false;
        }
    }
    return true;
}

bool LegacyBinaryReader::read_setting() {
    std::string key;
    if (!take_quoted(key)) {
        return false;
    }
    int int_value = 0;
    double double_value = 0.0;
    std::string text;
    switch (source_.get()) {
        case 'i':
            return source_.take(int_value) && put_int(store_, "settings", key, int_value) == 0;
        case 'd':
            return source_.take(double_value) && put_double(store_, "settings", key, double_value) == 0;
        case 's':
            return take_quoted(text) && put_string(store_, "settings", key, text) == 0;
        default:
            return false;
    }
}

bool LegacyBinaryReader::read_table() {
    LegacyTableHead head;
    if (!source_.take(head.reading_method) || !take_delimited('*', '\n', head.name) || !source_.take(head.table_type) ||
        (head.reading_method == reading_method_with_shaft && !take_quoted(head.shaft_name)) ||
        !source_.take(head.dim)) {
        return false;
    }
    // A body of one axis has no block of rows and columns: there is no such table. Nor can one be kept without a name.
    const std::int64_t flag_bytes = static_cast<std::int64_t>(sizeof(int)) * head.dim;
    if (head.name.empty() || head.dim < 2 || flag_bytes > source_.remaining()) {
        return false;
    }
    head.cyclic.resize(static_cast<std::size_t>(head.dim));
    source_.read(head.cyclic.data(), static_cast<std::size_t>(flag_bytes));
    const std::string category = put_legacy_head(store_, head, application_);
    if (!LegacyBody<BinaryForm>(store_, category, head, BinaryForm{source_}).read()) {
        return false;
    }
    finish_legacy_table(store_, category, head);
    return true;
}

// The count behind a word that means nothing; false for one below 0.
bool LegacyBinaryReader::take_count(int& count) {
    int ignored = 0;
    return source_.take(ignored) && source_.take(count) && count >= 0;
}

// Skips to behind `open` and takes what stands before `close`, up to its first NUL. False at a star, at the byte that
// reaches the limit of names and where the system refuses to read; the end of the file ends the text like `close`.
bool LegacyBinaryReader::take_delimited(char open, char close, std::string& text) {
    text.clear();
    if (open == '"') {
        quotes_.skip_to_next();
    }
    int byte = source_.get();
    while (byte >= 0 && byte != open) {
        byte = source_.get();
    }
    for (byte = source_.get(); byte >= 0 && byte != close; byte = source_.get()) {
        text.push_back(static_cast<char>(byte));
        if (byte == '*' || text.size() == name_limit) {
            return false;
        }
    }
    if (byte < 0 && source_.failed()) {
        report_reading_error();
        return false;
    }
    text.resize(std::min(text.find('\0'), text.size()));
    return true;
}

}  // namespace

int ReadCategoryParameterByBinaryModeForOldFileFormat(KZB_STORE& store, FileSource& source) {
    return LegacyBinaryReader(store, source).read();
}

}  // namespace kzb
