// Old files in ascii: sections of lines.
#include <algorithm>
#include <cstdio>
#include <limits>
#include <string>

#include "store/format/legacy_body.h"
#include "store/format/legacy_file.h"
#include "store/format/legacy_lines.h"
#include "store/format/number_scan.h"

namespace kzb {
namespace {

constexpr int least_dim = 2;
constexpr int most_dim = 5;

struct AsciiForm {
    FileSource& source;
    std::string line = {};

    bool take_size(int& size) { return take_line_of(source, size); }
    bool take_node(double& node) { return take_line_of(source, node); }
    bool take_block_sizes(int& rows, int& columns) {
        take_line(source, line);
        std::string_view text = line;
        return scan_int(text, rows) && scan_int(text, columns);
    }
    // Each row is a line of its own, in a later block with more columns than the first as well.
    bool take_row(int count, std::vector<double>& numbers) {
        const auto size = static_cast<std::size_t>(count);
        if (count > most_values() + 1 || !take_wide_line(source, value_bytes * size, line)) {
            return false;
        }
        numbers.resize(size);
        for (std::size_t i = 0; i < size; ++i) {
            if (!value_field(line, i, numbers[i])) {
                return false;
            }
        }
        return true;
    }
    std::int64_t most_values() const { return source.remaining() / static_cast<std::int64_t>(value_bytes); }

    static constexpr std::size_t value_bytes = 20;
};

// As a conversion of the processor does it: what no int holds gives the lowest one.
int truncated(double value) {
    constexpr double limit = 2147483648.0;
    return value > -limit - 1.0 && value < limit ? static_cast<int>(value) : std::numeric_limits<int>::min();
}

class LegacyAsciiReader {
  public:
    LegacyAsciiReader(KZB_STORE& store, FileSource& source) : store_(store), source_(source) {}

    int read();

  private:
    bool read_section(std::string_view line);
    void read_version();
    bool read_control();
    bool read_control_entry(std::string_view text);
    void read_parameter();
    void read_settings();
    void read_setting(std::string_view text);
    bool read_table();
    bool take_table_head(LegacyTableHead& head);
    int take_count();

    KZB_STORE& store_;
    FileSource& source_;
    std::string line_;
    LegacyApplication application_;  // of this file; not the one selected in the store
};

int LegacyAsciiReader::read() {
    while (take_line(source_, line_)) {
        if (!read_section(line_)) {
            std::perror("reading error in ReadCategoryParameterByAsciiModeForOldFileFormat");
            return 1;
        }
    }
    if (source_.failed()) {
        store_.error = 90004;
        return 1;
    }
    return 0;
}

// False when the rest of the file cannot be read; a line that starts no section is passed over.
bool LegacyAsciiReader::read_section(std::string_view line) {
    line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
    if (line == "*version") {
        read_version();
    } else if (line == "*control") {
        return read_control();
    } else if (line == "*parameter") {
        read_parameter();
    } else if (line == "*settings") {
        read_settings();
    } else if (line == "*table") {
        return read_table();
    }
    return true;
}

void LegacyAsciiReader::read_version() {
    double version = 0.0;
    if (take_line_of(source_, version) && version >= 0.0 && version <= 1000.0) {
        store_.version = version;
        put_double(store_, "version", "version", version);
    }
}

bool LegacyAsciiReader::read_control() {
    take_line(source_, line_);  // means nothing
    int entries = 0;
    while (take_entry_line(source_, line_)) {
        if (line_.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        if (++entries > legacy_control_limit) {
            store_.error = 90003;
            return false;
        }
        if (!read_control_entry(line_)) {
            return false;
        }
    }
    application_ =
        legacy_application(get_int(store_, "control", "motor_type"), get_int(store_, "control", "accuracy_type"), {});
    return true;
}

bool LegacyAsciiReader::read_control_entry(std::string_view text) {
    std::string key;
    if (!RemoveDoubleQuatation(take_word(text), key)) {
        return false;
    }
    if (key == "coef_file_torque" || key == "coef_file_force") {
        std::string value;
        RemoveDoubleQuatation(take_word(text), value);
        put_string(store_, "control", key, value);
        return true;
    }
    double value = 0.0;
    scan_double(text, value);
    if (key == "motor_type" || key == "number_of_poles" || key == "accuracy_type") {
        put_int(store_, "control", key, truncated(value));
    } else {
        put_double(store_, "control", key, value);
    }
    return true;
}

// An entry whose key cannot be told is passed over; so is one of the settings of no known type.
void LegacyAsciiReader::read_parameter() {
    std::string key;
    for (int left = take_count(); left > 0 && take_entry_line(source_, line_); --left) {
        std::string_view text = line_;
        double value = 0.0;
        if (RemoveDoubleQuatation(take_word(text), key)) {
            scan_double(text, value);
            put_double(store_, "parameter", key, value);
        }
    }
}

void LegacyAsciiReader::read_settings() {
    for (int left = take_count(); left > 0 && take_entry_line(source_, line_); --left) {
        read_setting(line_);
    }
}

void LegacyAsciiReader::read_setting(std::string_view text) {
    std::string key;
    if (!RemoveDoubleQuatation(take_word(text), key)) {
        return;
    }
    const std::string_view type = take_word(text);
    if (type.starts_with('i')) {
        int value = 0;
        scan_int(text, value);
        put_int(store_, "settings", key, value);
    } else if (type.starts_with('s')) {
        std::string value;
        RemoveDoubleQuatation(take_word(text), value);
        put_string(store_, "settings", key, value);
    } else if (type.starts_with('d')) {
        double value = 0.0;
        scan_double(text, value);
        put_double(store_, "settings", key, value);
    }
}

bool LegacyAsciiReader::read_table() {
    LegacyTableHead head;
    if (!take_table_head(head)) {
        return false;
    }
    const std::string category = put_legacy_head(store_, head, application_);
    if (head.dim < least_dim || head.dim > most_dim) {
        std::perror("The values can not be read for this dimension table.");
        return true;
    }
    if (!LegacyBody<AsciiForm>(store_, category, head, AsciiForm{source_}).read()) {
        return false;
    }
    finish_legacy_table(store_, category, head);
    return true;
}

bool LegacyAsciiReader::take_table_head(LegacyTableHead& head) {
    if (!take_line_of(source_, head.reading_method) || !take_line(source_, line_)) {
        return false;
    }
    std::string_view text = line_;
    head.name = take_word(text);
    std::erase(head.name, '*');
    if (head.name.empty() || !take_line_of(source_, head.table_type)) {
        return false;
    }
    if (head.reading_method == reading_method_with_shaft) {
        take_line(source_, line_);
        text = line_;
        RemoveDoubleQuatation(take_word(text), head.shaft_name);
    }
    if (!take_line_of(source_, head.dim) || !take_line(source_, line_)) {
        return false;
    }
    for (int axis = 0; axis < std::min(head.dim, most_dim); ++axis) {
        head.cyclic.push_back(flag_field(line_, static_cast<std::size_t>(axis)));
    }
    return true;
}

// The count in the second of two lines; 0 where there is none.
int LegacyAsciiReader::take_count() {
    int count = 0;
    take_line(source_, line_);
    take_line_of(source_, count);
    return count;
}

}  // namespace

int ReadCategoryParameterByAsciiModeForOldFileFormat(KZB_STORE& store, FileSource& source) {
    source.read_as_text();
    return LegacyAsciiReader(store, source).read();
}

}  // namespace kzb
