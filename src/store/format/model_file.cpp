#include "store/format/model_file.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "store/format/ascii_reader.h"
#include "store/format/binary_reader.h"
#include "store/format/body_memory.h"
#include "store/format/file_marks.h"
#include "store/format/file_source.h"
#include "store/format/legacy_file.h"
#include "store/format/number_scan.h"
#include "store/format/table_bodies.h"
#include "store/store.h"

namespace kzb {
namespace {

// The environment decides where it says so (a text that is no number counts as 0: binary), else the head of the file.
bool is_ascii(FileSource& source) {
    if (const char* forced = std::getenv("KZB_READING_ASCII")) {
        int mode = 0;
        std::string_view text = forced;
        scan_int(text, mode);
        return mode > 0;
    }
    constexpr std::size_t compared = 11;
    return source.is_open() && source.peek(compared) == ascii_head.substr(0, compared);
}

bool has_form_mark(FileSource& source) {
    return source.peek(form_mark.size()) == form_mark;
}

// What the system refuses to read is no file of any form.
bool is_readable(FileSource& source) {
    source.peek(1);
    return source.is_open() && !source.failed();
}

int read_form(KZB_STORE& store, FileSource& source) {
    if (!is_readable(source)) {
        store.error = 90001;
        return 1;
    }
    if (!has_form_mark(source)) {
        return read_legacy_file(store, source);
    }
    if (store.input_type != "ascii") {
        return read_binary(store, source);
    }
    source.read_as_text();
    return read_ascii(store, source);
}

// Tables of an earlier file that are not loaded yet: their places mean nothing in another file. They stay empty.
void detach_placeholders(KZB_STORE& store) {
    for (KZB_CATEGORY& category : store.categories) {
        for (KZB_TABLE& table : category.tables) {
            table.file_position = 0;
        }
    }
}

// Whether the file brings iron loss, from what it holds.
void put_ironloss_mark(KZB_STORE& store) {
    constexpr int induction = 10006;
    const bool present = get_int(store, "control", "motor_type") == induction
                             ? get_double(store, "InductionParam", "g0") > 0.0
                             : has_category(store, "eddyloss") && has_category(store, "hysloss");
    put_int(store, "information", "has_ironloss_table", present ? 1 : 0);
}

}  // namespace

int read_model_file(KZB_STORE& store, const char* path) {
    FileSource source(path);
    const std::string input_type = is_ascii(source) ? "ascii" : "binary";
    const std::string input_path = path == nullptr ? "" : path;
    if (input_type != store.input_type || input_path != store.input_path) {
        detach_placeholders(store);
    }
    store.input_type = input_type;
    store.input_path = input_path;
    ++store.revision;
    int result = 1;
    try {
        result = read_form(store, source);
    } catch (const std::bad_alloc&) {
        // What was read stays, and the steps behind reading run.
    }
    ++store.revision;
    put_ironloss_mark(store);
    if (has_parameter(store, "control", "incomplete")) {
        store.warning = 90033;
    }
    return result;
}

void read_tables(KZB_STORE& store) {
    FileSource source(store.input_path.c_str());
    if (!is_readable(source)) {
        store.error = 90001;
        print_reading_error();
        return;
    }
    if (!has_form_mark(source)) {
        std::fputs("The table values have been already read in case of old formats files.\n", stdout);
        return;
    }
    const bool ascii = store.input_type == "ascii";
    if (ascii) {
        source.read_as_text();
    }
    BodyMemory memory(source.size());
    for (KZB_CATEGORY& category : store.categories) {
        if (!application_loads(store, category.name)) {
            continue;
        }
        for (KZB_TABLE& table : category.tables) {
            if (table.loaded == 1 || table.file_position == 0) {
                continue;
            }
            const std::int64_t position = table.file_position;
            const bool sound =
                ascii ? load_ascii_table(table, source, memory) : load_binary_table(table, source, memory);
            if (source.failed()) {  // the system refuses to read on: for a later call
                make_placeholder(table, position);
                break;
            }
            if (ascii && !sound) {  // kept: a fault of this form ends the stage for its category
                break;
            }
        }
    }
    if (source.failed()) {
        store.error = 90001;
        report_reading_error();
    }
    ++store.revision;
    if (memory.ran_out()) {
        throw std::bad_alloc();  // what could be loaded is
    }
}

void write_model_file(const KZB_STORE& store) {
    if (store.output_type == "ascii") {
        write_ascii(store, store.output_path);
    } else if (store.output_type == "binary") {
        write_binary(store, store.output_path);
    }
}

}  // namespace kzb
