#include "store/measured/correction_block.h"

#include <cstdint>
#include <vector>

#include "store/measured/fields.h"

namespace kzb {

namespace {

// More values than this are created only where the rest of the file is long enough to hold them.
constexpr std::int64_t always_created = 1 << 20;

// A block of numbers of one digit and nothing but commas between them.
bool fits(int rows, int columns, std::int64_t bytes) {
    const std::int64_t line = 1 + 2 * static_cast<std::int64_t>(columns);
    return line <= bytes && (static_cast<std::int64_t>(rows) + 1) <= bytes / line;
}

bool corrupt(KZB_STORE& store) {
    store.error = corrupt_correction_file;
    return false;
}

// Rows and columns of the head line; false where one is missing.
bool take_sizes(std::string_view head, int (&sizes)[2]) {
    CommaTokens tokens(head);
    std::string_view token;
    tokens.take(token);
    for (int& size : sizes) {
        if (!tokens.take(token)) {
            return false;
        }
        size = leading_int(token);
    }
    return true;
}

// The first token of the line and the `count` numbers behind it; false where one is missing.
bool take_numbers(std::string_view line, int count, std::string_view& first, std::vector<double>& numbers) {
    CommaTokens tokens(line);
    numbers.clear();
    if (!tokens.take(first)) {
        return false;
    }
    std::string_view token;
    for (int i = 0; i < count; ++i) {
        if (!tokens.take(token)) {
            return false;
        }
        numbers.push_back(leading_double(token));
    }
    return true;
}

void set_nodes(KZB_TABLE& table, int axis, const std::vector<double>& nodes) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        table_set_axis_value(&table, axis, static_cast<int>(i), nodes[i]);
    }
}

}  // namespace

bool read_block(KZB_STORE& store, TextLines& lines, std::string_view head, const std::string& key) {
    int sizes[2] = {0, 0};
    if (!take_sizes(head, sizes)) {
        return corrupt(store);
    }
    const auto [rows, columns] = sizes;
    if (rows > 0 && columns > 0 && static_cast<std::int64_t>(rows) * columns > always_created &&
        !fits(rows, columns, lines.remaining())) {
        return corrupt(store);
    }
    if (create_table(store, correction_category, key, 2, sizes) != 0) {
        return false;
    }
    KZB_TABLE& table = *find_table(store, correction_category, key);

    BlockRoom room;
    std::string_view first;
    std::vector<double> column_nodes;
    lines.next(room);
    if (!take_numbers(lines.fields(), columns, first, column_nodes)) {
        return corrupt(store);
    }
    std::vector<double> row_nodes;
    std::vector<double> values;
    for (int row = 0; row < rows; ++row) {
        lines.next(room);
        const bool whole = take_numbers(lines.fields(), columns, first, values);
        // The numbers before a missing one are in the table.
        for (std::size_t column = 0; column < values.size(); ++column) {
            const int at[2] = {row, static_cast<int>(column)};
            table_set_value(&table, at, values[column]);
        }
        if (!whole) {
            return corrupt(store);
        }
        row_nodes.push_back(leading_double(first));
    }
    set_nodes(table, 1, row_nodes);
    set_nodes(table, 2, column_nodes);
    return true;
}

}  // namespace kzb
