// Builds KZB files byte by byte, independently of the writers, and stores to read them into.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "store/format/model_file.h"
#include "store/store.h"

namespace kzb::test {

// The binary form, field by field.
class Bytes {
  public:
    Bytes& raw(std::string_view text) {
        bytes_ += text;
        return *this;
    }
    Bytes& int32(std::int64_t value) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes_ += static_cast<char>((static_cast<std::uint64_t>(value) >> shift) & 0xffU);
        }
        return *this;
    }
    Bytes& float64(double value) {
        std::uint64_t bits = 0;
        static_assert(sizeof bits == sizeof value);
        std::memcpy(&bits, &value, sizeof bits);
        for (int shift = 0; shift < 64; shift += 8) {
            bytes_ += static_cast<char>((bits >> shift) & 0xffU);
        }
        return *this;
    }
    Bytes& text(std::string_view value) { return int32(static_cast<std::int64_t>(value.size())).raw(value); }
    Bytes& head() { return raw("$DORN-KZb,#\n"); }
    Bytes& end() { return raw("$end_of_kzb_file,#\n"); }
    Bytes& category(std::string_view name, int ints, int doubles, int strings, int tables) {
        return raw("*").text(name).int32(ints).int32(doubles).int32(strings).int32(tables).raw(",#");
    }
    Bytes& entry(std::string_view keyword, int type) { return text(keyword).int32(type); }
    Bytes& int_entry(std::string_view keyword, int value) { return entry(keyword, 0).int32(value).raw(",#"); }
    Bytes& double_entry(std::string_view keyword, double value) { return entry(keyword, 1).float64(value).raw(",#"); }
    Bytes& string_entry(std::string_view keyword, std::string_view value) {
        return entry(keyword, 2).text(value).raw(",#");
    }
    Bytes& block(const std::vector<double>& values) {
        int32(static_cast<std::int64_t>(values.size()));
        for (const double value : values) {
            float64(value);
        }
        return *this;
    }
    // A table from its sizes, flags, values and one grid per axis.
    Bytes& table_entry(std::string_view keyword, const std::vector<int>& sizes, const std::vector<int>& cyclic,
                       const std::vector<double>& values, const std::vector<std::vector<double>>& grids) {
        entry(keyword, 3).int32(static_cast<std::int64_t>(sizes.size()));
        for (const int size : sizes) {
            int32(size);
        }
        for (const int flag : cyclic) {
            int32(flag);
        }
        block(values);
        for (const auto& grid : grids) {
            block(grid);
        }
        return raw(",#");
    }
    // The table of two axes, sizes {2, 3}, axis 1 cyclic, that the tests of both forms share.
    Bytes& sample_table(std::string_view keyword) {
        return table_entry(keyword, {2, 3}, {1, 0}, {0, 1, 2, 10, 11, 12}, {{0, 360}, {1, 2, 3}});
    }
    const std::string& str() const { return bytes_; }

  private:
    std::string bytes_;
};

// The same table in the ascii form, line by line.
inline std::string sample_table_ascii(const std::string& keyword) {
    return keyword +
           ",table,2,2,3,1,0,\n"
           "         6,\n"
           "    0.0000000000e+00    1.0000000000e+00    2.0000000000e+00    1.0000000000e+01    1.1000000000e+01\n"
           "    1.2000000000e+01\n"
           "         2,\n"
           "    0.0000000000e+00    3.6000000000e+02\n"
           "         3,\n"
           "    1.0000000000e+00    2.0000000000e+00    3.0000000000e+00\n"
           ",#\n";
}

inline std::string ascii_file(const std::string& categories) {
    return "$DORN-KZa,#\n" + categories + "$end_of_kzb_file,#\n";
}

// A file of its own for each test, gone with it.
class ModelFile : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        folder_ =
            std::filesystem::temp_directory_path() / ("kzb_format_" + std::to_string(getpid()) + "_" + info->name());
        std::filesystem::create_directories(folder_);
        unsetenv("KZB_READING_ASCII");
    }
    void TearDown() override {
        unsetenv("KZB_READING_ASCII");
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    std::string path(const std::string& name = "model.kzb") const { return (folder_ / name).string(); }
    std::string write(const std::string& bytes, const std::string& name = "model.kzb") const {
        std::filesystem::remove(path(name));  // a new file costs no flush of the old one
        std::ofstream(path(name), std::ios::binary) << bytes;
        return path(name);
    }
    static std::string slurp(const std::string& file) {
        std::ostringstream out;
        out << std::ifstream(file, std::ios::binary).rdbuf();
        return out.str();
    }
    // Reads `bytes` into `store_`; what is printed is kept in `out_` and `err_`.
    int read(const std::string& bytes) { return read_path(write(bytes)); }
    int read_path(const std::string& file) {
        return captured([&] { return read_model_file(store_, file.c_str()); });
    }
    // Fetches the tables of an application, "ALL" by default.
    void load(const std::string& motor = "ALL", const std::string& application = {}) {
        store_.motor = motor;
        store_.application = application;
        captured([&] {
            read_tables(store_);
            return 0;
        });
    }
    template <class Call>
    int captured(Call call) {
        ::testing::internal::CaptureStdout();
        ::testing::internal::CaptureStderr();
        const int result = call();
        out_ = ::testing::internal::GetCapturedStdout();
        err_ = ::testing::internal::GetCapturedStderr();
        return result;
    }
    const KZB_TABLE& table(const std::string& category, const std::string& key) const {
        const KZB_TABLE* found = find_table(store_, category, key);
        EXPECT_NE(found, nullptr);
        static const KZB_TABLE absent;
        return found == nullptr ? absent : *found;
    }
    static std::vector<double> numbers(const ZeroedArray& array) {
        return array ? std::vector<double>(array.data(), array.data() + array.size()) : std::vector<double>{};
    }
    void expect_sample_table(const KZB_TABLE& found) const {
        EXPECT_EQ(found.dim, 2);
        EXPECT_EQ(found.sizes, (std::vector<int>{2, 3}));
        EXPECT_EQ(found.cyclic, (std::vector<int>{1, 0}));
        EXPECT_EQ(found.strides, (std::vector<int>{3, 1}));
        EXPECT_EQ(found.total, 6);
        EXPECT_EQ(numbers(found.values), (std::vector<double>{0, 1, 2, 10, 11, 12}));
        ASSERT_EQ(found.axes.size(), 2U);
        EXPECT_EQ(numbers(found.axes[0]), (std::vector<double>{0, 360}));
        EXPECT_EQ(numbers(found.axes[1]), (std::vector<double>{1, 2, 3}));
        EXPECT_EQ(found.loaded, 1);
        EXPECT_EQ(found.file_position, 0);
    }

    KZB_STORE store_;
    std::string out_;
    std::string err_;

  private:
    std::filesystem::path folder_;
};

}  // namespace kzb::test
