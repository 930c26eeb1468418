// A CSV file in memory: one header line with the names of the columns, then one line per row.
//
// Comma separated, decimal point, UTF-8 with or without a byte order mark, lines ending in LF or CRLF; blank lines are
// passed over. Cells stay text until a column is asked for as numbers, so other columns may hold anything.
// Every fault is a Failure(exit_file) of one line: file:line, what stands there, what was expected.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kzb::tool {

class CsvTable {
  public:
    static CsvTable read(const std::string& path);
    // `name` stands for the file in messages.
    static CsvTable parse(std::string text, const std::string& name);

    const std::string& name() const { return name_; }
    const std::vector<std::string>& header() const { return header_; }
    std::size_t row_count() const { return lines_.size(); }
    // Line of the file that holds the row, from 1.
    int line_of(std::size_t row) const { return lines_[row]; }
    // "file:line"
    std::string place_of(std::size_t row) const;
    std::optional<std::size_t> column(std::string_view header_name) const;
    const std::string& cell(std::size_t row, std::size_t column) const { return cells_[row * header_.size() + column]; }
    // The column as finite numbers, each multiplied by `scale`.
    std::vector<double> numbers(std::size_t column, double scale = 1.0) const;

  private:
    std::string name_;
    std::vector<std::string> header_;
    std::vector<int> lines_;
    std::vector<std::string> cells_;  // row by row
};

// A finite number in C notation, a leading plus sign allowed; nothing for any other text. The same under every locale.
std::optional<double> finite_number(std::string_view text);

}  // namespace kzb::tool
