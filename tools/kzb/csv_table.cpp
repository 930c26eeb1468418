#include "kzb/csv_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>
#include <utility>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/input_text.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blank = " \t\r";
    const std::size_t first = text.find_first_not_of(blank);
    if (first == std::string_view::npos) {
        return {};
    }
    text = text.substr(first, text.find_last_not_of(blank) - first + 1);
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
        text = text.substr(1, text.size() - 2);
    }
    return text;
}

std::vector<std::string_view> split_cells(std::string_view line) {
    std::vector<std::string_view> cells;
    std::size_t start = 0;
    for (std::size_t comma = line.find(','); comma != std::string_view::npos; comma = line.find(',', start)) {
        cells.push_back(trimmed(line.substr(start, comma - start)));
        start = comma + 1;
    }
    cells.push_back(trimmed(line.substr(start)));
    return cells;
}

// A cell as it may stand in a message.
std::string shown(std::string_view cell) {
    constexpr std::size_t limit = 40;
    return printable_line(cell.size() > limit ? std::string(cell.substr(0, limit)) + "..." : std::string(cell));
}

}  // namespace

std::optional<double> finite_number(std::string_view text) {
    if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
        text.remove_prefix(1);
    }
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

CsvTable CsvTable::read(const std::string& path) {
    return parse(read_input_text(path, "a CSV file"), path);
}

CsvTable CsvTable::parse(std::string text, const std::string& name) {
    constexpr std::string_view byte_order_mark = "\xef\xbb\xbf";
    std::string_view rest = text;
    if (rest.substr(0, byte_order_mark.size()) == byte_order_mark) {
        rest.remove_prefix(byte_order_mark.size());
    }
    CsvTable table;
    table.name_ = name;
    for (int line_number = 1; !rest.empty(); ++line_number) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const std::string_view line = rest.substr(0, end);
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (trimmed(line).empty()) {
            continue;
        }
        const std::vector<std::string_view> cells = split_cells(line);
        if (table.header_.empty()) {
            table.header_.assign(cells.begin(), cells.end());
            continue;
        }
        if (cells.size() != table.header_.size()) {
            throw Failure(exit_file, fmt::format("{}:{}: {} cells, expected {} as in the header", name, line_number,
                                                 cells.size(), table.header_.size()));
        }
        table.cells_.insert(table.cells_.end(), cells.begin(), cells.end());
        table.lines_.push_back(line_number);
    }
    if (table.header_.empty()) {
        throw Failure(exit_file, fmt::format("{}: empty, expected a header line with the names of the columns", name));
    }
    if (table.lines_.empty()) {
        throw Failure(exit_file, fmt::format("{}: no row of numbers after the header", name));
    }
    return table;
}

std::string CsvTable::place_of(std::size_t row) const {
    return fmt::format("{}:{}", name_, lines_[row]);
}

std::optional<std::size_t> CsvTable::column(std::string_view header_name) const {
    const auto at = std::find(header_.begin(), header_.end(), header_name);
    if (at == header_.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(at - header_.begin());
}

std::vector<double> CsvTable::numbers(std::size_t column, double scale) const {
    std::vector<double> values;
    values.reserve(row_count());
    for (std::size_t row = 0; row < row_count(); ++row) {
        const std::string& cell = cells_[row * header_.size() + column];
        const std::optional<double> value = finite_number(cell);
        if (!value) {
            throw Failure(exit_file,
                          fmt::format("{}: column \"{}\": \"{}\" is not a finite number with a decimal point",
                                      place_of(row), shown(header_[column]), shown(cell)));
        }
        values.push_back(*value * scale);
    }
    return values;
}

}  // namespace kzb::tool
