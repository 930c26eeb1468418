// Builds old files, the ones without a head, byte by byte and line by line.
#pragma once

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "store/format/model_bytes.h"

namespace kzb::test {

constexpr std::int64_t ignored_word = 0x2a22;  // holds a quote and a star: it must be read over as a word

// The binary form.
class LegacyBytes {
  public:
    LegacyBytes& section(std::string_view word) { return raw("*").raw(word).raw("\n"); }
    LegacyBytes& version(double value) { return section("version").float64(value); }
    LegacyBytes& control() { return section("control").int32(ignored_word); }
    LegacyBytes& control(int motor_type, int accuracy_type) {
        return control().key("motor_type").int32(motor_type).key("accuracy_type").int32(accuracy_type);
    }
    LegacyBytes& parameter(int count) { return section("parameter").int32(ignored_word).int32(count); }
    LegacyBytes& settings(int count) { return section("settings").int32(ignored_word).int32(count); }
    LegacyBytes& key(std::string_view text) { return raw("\"").raw(text).raw("\""); }
    // A table up to its body, reading method 1 and type 2.
    LegacyBytes& table(std::string_view name, const std::vector<int>& cyclic) {
        section("table").int32(1).section(name).int32(2).int32(static_cast<std::int64_t>(cyclic.size()));
        for (const int flag : cyclic) {
            int32(flag);
        }
        return *this;
    }
    // Rows and columns; the nodes of the columns; per row its node and values.
    LegacyBytes& block(const std::vector<double>& columns, const std::vector<std::vector<double>>& rows) {
        int32(static_cast<std::int64_t>(rows.size())).int32(static_cast<std::int64_t>(columns.size()));
        numbers(columns);
        for (const auto& row : rows) {
            numbers(row);
        }
        return *this;
    }
    LegacyBytes& numbers(const std::vector<double>& values) {
        for (const double value : values) {
            float64(value);
        }
        return *this;
    }
    LegacyBytes& raw(std::string_view text) {
        bytes_.raw(text);
        return *this;
    }
    LegacyBytes& int32(std::int64_t value) {
        bytes_.int32(value);
        return *this;
    }
    LegacyBytes& float64(double value) {
        bytes_.float64(value);
        return *this;
    }
    const std::string& str() const { return bytes_.str(); }

  private:
    Bytes bytes_;
};

// The ascii form.
class LegacyText {
  public:
    LegacyText& line(std::string_view text) {
        text_.append(text).append("\n");
        return *this;
    }
    LegacyText& version(std::string_view value) { return line("*version").line(value); }
    LegacyText& control() { return line("*control").line("a line that means nothing"); }
    LegacyText& control(int motor_type, int accuracy_type) {
        return control()
            .line("\"motor_type\"   " + std::to_string(motor_type))
            .line("\"accuracy_type\" " + std::to_string(accuracy_type));
    }
    LegacyText& parameter(int count) { return line("*parameter").line("x").line(std::to_string(count)); }
    LegacyText& settings(int count) { return line("*settings").line("x").line(std::to_string(count)); }
    LegacyText& table(std::string_view name, const std::vector<int>& cyclic) {
        line("*table").line("1").line(std::string("*").append(name)).line("2").line(std::to_string(cyclic.size()));
        std::string flags;
        for (const int flag : cyclic) {
            flags += right(std::to_string(flag), 10);
        }
        return line(flags);
    }
    LegacyText& block(const std::vector<double>& columns, const std::vector<std::vector<double>>& rows) {
        line(std::to_string(rows.size()) + " " + std::to_string(columns.size())).numbers(columns);
        for (const auto& row : rows) {
            numbers(row);
        }
        return *this;
    }
    // Fields of twenty columns; the tests use numbers that %g prints whole.
    LegacyText& numbers(const std::vector<double>& values) {
        std::string fields;
        for (const double value : values) {
            char field[32];
            std::snprintf(field, sizeof field, "%20.10g", value);
            fields += field;
        }
        return line(fields);
    }
    const std::string& str() const { return text_; }

  private:
    static std::string right(const std::string& text, std::size_t width) {
        return std::string(width - std::min(width, text.size()), ' ') + text;
    }
    std::string text_;
};

// Reads files of either form; a table is looked up by category and key.
class LegacyFile : public ModelFile {
  protected:
    int read_ascii_file(const std::string& text) {
        setenv("KZB_READING_ASCII", "1", 1);
        const int result = read(text);
        unsetenv("KZB_READING_ASCII");
        return result;
    }
    std::vector<std::string> category_names() const {
        std::vector<std::string> names;
        for (const KZB_CATEGORY& category : store_.categories) {
            names.push_back(category.name);
        }
        return names;
    }
    // What std::perror printed: the texts, and how often each came.
    std::size_t told(const std::string& text) const {
        std::size_t count = 0;
        for (std::size_t at = err_.find(text); at != std::string::npos; at = err_.find(text, at + 1)) {
            ++count;
        }
        return count;
    }
    // Axes {1, 2} and {10, 20, 30}, values 100 * first node + second node: shape, nodes and values.
    void expect_two_axes(const KZB_TABLE& found) const {
        EXPECT_EQ(found.sizes, (std::vector<int>{2, 3}));
        ASSERT_EQ(found.axes.size(), 2U);
        EXPECT_EQ(numbers(found.axes[0]), (std::vector<double>{1, 2}));
        EXPECT_EQ(numbers(found.axes[1]), (std::vector<double>{10, 20, 30}));
        EXPECT_EQ(numbers(found.values), (std::vector<double>{110, 120, 130, 210, 220, 230}));
        EXPECT_EQ(found.loaded, 0);
        EXPECT_EQ(found.file_position, 0);
    }
    // The same block, for a body of either form.
    template <class File>
    static File& two_axes(File& file) {
        return file.block({10, 20, 30}, {{1, 110, 120, 130}, {2, 210, 220, 230}});
    }
    template <class File>
    static File& two_axes(File&& file) {
        return two_axes(file);
    }
};

inline const std::string binary_fault = "reading error in ReadCategoryParameterByBinaryModeForOldFileFormat";
inline const std::string ascii_fault = "reading error in ReadCategoryParameterByAsciiModeForOldFileFormat";

}  // namespace kzb::test
