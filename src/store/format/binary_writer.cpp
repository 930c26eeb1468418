// The binary form of the store.
#include <string>

#include "store/format/file_marks.h"
#include "store/format/file_sink.h"
#include "store/format/model_file.h"
#include "store/store.h"

namespace kzb {
namespace {

constexpr std::string_view terminator = ",#";

void put_count(FileSink& sink, std::size_t count) {
    sink.put_word(static_cast<std::uint32_t>(count));
}

void put_text(FileSink& sink, std::string_view text) {
    put_count(sink, text.size());
    sink.put(text);
}

void put_entry_head(FileSink& sink, std::string_view keyword, EntryType type) {
    put_text(sink, keyword);
    sink.put_word(static_cast<std::int32_t>(type));
}

// The count stands even where the array is missing; no doubles follow then.
void put_block(FileSink& sink, int count, const double* values) {
    sink.put_word(count);
    if (values != nullptr) {
        sink.put({reinterpret_cast<const char*>(values), 8 * static_cast<std::size_t>(count)});
    }
}

void put_table(FileSink& sink, const KZB_TABLE& table) {
    put_entry_head(sink, table.keyword, type_table);
    sink.put_word(table.dim);
    for (const int size : table.sizes) {
        sink.put_word(size);
    }
    for (const int flag : table.cyclic) {
        sink.put_word(flag);
    }
    put_block(sink, table.total, table.values.data());
    for (std::size_t axis = 0; axis < table.sizes.size(); ++axis) {
        put_block(sink, table.sizes[axis], axis < table.axes.size() ? table.axes[axis].data() : nullptr);
    }
    sink.put(terminator);
}

void put_category(FileSink& sink, const KZB_CATEGORY& category) {
    sink.put("*");
    put_text(sink, category.name);
    put_count(sink, category.ints.size());
    put_count(sink, category.doubles.size());
    put_count(sink, category.strings.size());
    put_count(sink, category.tables.size());
    sink.put(terminator);
    for (const auto& entry : category.ints) {
        put_entry_head(sink, entry.keyword, type_int);
        sink.put_word(entry.value);
        sink.put(terminator);
    }
    for (const auto& entry : category.doubles) {
        put_entry_head(sink, entry.keyword, type_double);
        sink.put_word(entry.value);
        sink.put(terminator);
    }
    for (const auto& entry : category.strings) {
        put_entry_head(sink, entry.keyword, type_string);
        put_text(sink, entry.value);
        sink.put(terminator);
    }
    for (const auto& table : category.tables) {
        put_table(sink, table);
    }
}

}  // namespace

bool write_binary(const KZB_STORE& store, const std::string& path, Writing writing) {
    FileSink sink(path, writing);
    if (!sink.is_open()) {
        return false;
    }
    sink.put(binary_head);
    for (const KZB_CATEGORY& category : store.categories) {
        put_category(sink, category);
    }
    sink.put(file_end);
    return sink.close();
}

}  // namespace kzb
