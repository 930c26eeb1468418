// The ascii form of the store. Doubles keep eleven digits.
#include <string>

#include "diagnostics/number_text.h"
#include "store/format/ascii_tokens.h"
#include "store/format/file_marks.h"
#include "store/format/file_sink.h"
#include "store/format/model_file.h"
#include "store/store.h"

namespace kzb {
namespace {

constexpr std::string_view terminator = ",#\n";

std::string entry_head(std::string_view keyword, std::string_view type) {
    std::string line(keyword);
    line.append(",").append(type).append(",");
    return line;
}

void append_field(std::string& line, std::size_t value) {
    append_integer(line, static_cast<long long>(value), 0);
    line.append(",");
}

// A missing array has no values to count.
void put_block(FileSink& sink, int count, const double* values) {
    const auto held = values != nullptr && count > 0 ? static_cast<std::size_t>(count) : 0;
    std::string line;
    append_integer(line, static_cast<long long>(held), 10);
    line.append(",\n");
    sink.put(line);
    for (std::size_t first = 0; first < held; first += values_per_line) {
        line.clear();
        for (std::size_t i = first; i < held && i < first + values_per_line; ++i) {
            append_scientific(line, values[i], 20, 10);
        }
        line.append("\n");
        sink.put(line);
    }
}

void put_table(FileSink& sink, const KZB_TABLE& table) {
    std::string line = entry_head(table.keyword, "table");
    append_integer(line, table.dim, 0);
    line.append(",");
    for (const auto* fields : {&table.sizes, &table.cyclic}) {
        for (const int field : *fields) {
            append_integer(line, field, 0);
            line.append(",");
        }
    }
    line.append("\n");
    sink.put(line);
    put_block(sink, table.total, table.values.data());
    for (std::size_t axis = 0; axis < table.sizes.size(); ++axis) {
        put_block(sink, table.sizes[axis], axis < table.axes.size() ? table.axes[axis].data() : nullptr);
    }
    sink.put(terminator);
}

void put_category(FileSink& sink, const KZB_CATEGORY& category) {
    std::string line = "*" + category.name + ",";
    append_field(line, category.ints.size());
    append_field(line, category.doubles.size());
    append_field(line, category.strings.size());
    append_field(line, category.tables.size());
    sink.put(line.append("#\n"));
    for (const auto& entry : category.ints) {
        line = entry_head(entry.keyword, "int");
        append_integer(line, entry.value, 0);
        sink.put(line.append(terminator));
    }
    for (const auto& entry : category.doubles) {
        line = entry_head(entry.keyword, "double");
        append_scientific(line, entry.value, 20, 10);
        sink.put(line.append(terminator));
    }
    for (const auto& entry : category.strings) {
        line = entry_head(entry.keyword, "string");
        append_field(line, entry.value.size());
        line.append("\"").append(entry.value).append("\"");
        sink.put(line.append(terminator));
    }
    for (const auto& table : category.tables) {
        put_table(sink, table);
    }
}

}  // namespace

bool write_ascii(const KZB_STORE& store, const std::string& path, Writing writing) {
    FileSink sink(path, writing);
    if (!sink.is_open()) {
        return false;
    }
    sink.put(ascii_head);
    for (const KZB_CATEGORY& category : store.categories) {
        put_category(sink, category);
    }
    sink.put(file_end);
    return sink.close();
}

}  // namespace kzb
