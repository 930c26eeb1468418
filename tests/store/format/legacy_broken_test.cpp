// Every truncation and every changed bit of small old files, and files made to cost time: no crash, no hang, no memory
// beyond what the file can back. Run under the address sanitizer as well.
#include <algorithm>
#include <chrono>

#include "store/format/legacy_bytes.h"

namespace kzb::test {
namespace {

class LegacyBroken : public LegacyFile {
  protected:
    static std::string binary_file() {
        LegacyBytes file;
        file.version(900.5).control(10000, 3).key("turns_in_coil").int32(12).key("coef_flux").float64(1.0);
        file.parameter(1).key("RU").float64(0.5);
        file.settings(3).key("i").raw("i").int32(1).key("d").raw("d").float64(2.0).key("s").raw("s").key("text");
        file.section("table").int32(31000).section("flux").int32(1).key("shaft").int32(4);
        file.int32(0).int32(1).int32(0).int32(0).int32(2);
        for (const double a : {1.0, 2.0}) {
            file.float64(a).int32(1).float64(3.0).block({1, 2}, {{1, 5, 6}});
        }
        return file.table("torque", {1, 1}).block({1}, {{1, 2}, {2, 3}}).str();
    }
    static std::string ascii_bytes() {
        LegacyText file;
        file.version("900.5").control(10000, 3).line("\"coef_flux\" 1.0").line("\"coef_file_force\" \"f\"");
        file.parameter(1).line("\"RU\" 0.5");
        file.settings(3).line("\"i\" i 1").line("\"d\" d 2.0").line("\"s\" s \"text\"");
        file.line("*table").line("31000").line("*flux").line("1").line("\"shaft\"").line("4");
        file.line("         0         1         0         0").line("2");
        for (const char* a : {"1", "2"}) {
            file.line(a).line("1").line("3").block({1, 2}, {{1, 5, 6}});
        }
        return file.table("torque", {1, 1}).block({1}, {{1, 2}, {2, 3}}).str();
    }
    // Reads, selects, looks at what is held and writes.
    int survive(const std::string& bytes) {
        KZB_STORE store;
        const std::string file = write(bytes);
        int result = 0;
        captured([&] {
            result = read_model_file(store, file.c_str());
            store.motor = "ALL";
            read_tables(store);
            return 0;
        });
        for (const KZB_CATEGORY& category : store.categories) {
            EXPECT_LT(category.name.size(), name_limit);
            for (const KZB_TABLE& found : category.tables) {
                // Beyond a moderate size each value stood in the file.
                EXPECT_LE(found.values.size(), std::max<std::size_t>(4096, bytes.size() / 8));
                EXPECT_FALSE(found.keyword.empty());
                EXPECT_EQ(found.values.size(), static_cast<std::size_t>(found.total));
                for (std::size_t axis = 0; axis < found.axes.size(); ++axis) {
                    EXPECT_TRUE(!found.axes[axis] ||
                                found.axes[axis].size() == static_cast<std::size_t>(found.sizes[axis]));
                }
            }
        }
        EXPECT_TRUE(write_binary(store, path("out")));
        std::filesystem::remove(path("out"));
        return result;
    }
    void survive_truncations(const std::string& bytes) {
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            survive(bytes.substr(0, length));
        }
        EXPECT_EQ(survive(bytes), 0);
    }
    void survive_changed_bits(const std::string& bytes) {
        for (std::size_t bit = 0; bit < 8 * bytes.size() && !HasFailure(); ++bit) {
            std::string changed = bytes;
            changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << bit % 8));
            survive(changed);
        }
    }
    double seconds_to_survive(const std::string& bytes) {
        const auto start = std::chrono::steady_clock::now();
        survive(bytes);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
};

constexpr double long_time = 20.0;  // s; a search of the rest of the file at each section would take minutes

TEST_F(LegacyBroken, cut_binary_file_does_no_harm) {
    survive_truncations(binary_file());
}
TEST_F(LegacyBroken, cut_ascii_file_does_no_harm) {
    setenv("KZB_READING_ASCII", "1", 1);
    survive_truncations(ascii_bytes());
}
TEST_F(LegacyBroken, cut_table_fails_in_both_forms) {
    const std::string binary = binary_file();
    const std::string ascii = ascii_bytes();
    for (std::size_t length = binary.rfind("torque"); length < binary.size(); ++length) {
        EXPECT_EQ(survive(binary.substr(0, length)), 1) << length;
    }
    setenv("KZB_READING_ASCII", "1", 1);
    // A column less in the last field is another number, not a missing one.
    for (std::size_t length = ascii.rfind("*torque"); length < ascii.size() - 2; ++length) {
        EXPECT_EQ(survive(ascii.substr(0, length)), 1) << length;
    }
}
TEST_F(LegacyBroken, changed_bit_of_a_binary_file_does_no_harm) {
    survive_changed_bits(binary_file());
}
TEST_F(LegacyBroken, changed_bit_of_an_ascii_file_does_no_harm) {
    setenv("KZB_READING_ASCII", "1", 1);
    survive_changed_bits(ascii_bytes());
}

TEST_F(LegacyBroken, many_control_sections_search_the_file_once) {
    std::string bytes;
    for (int i = 0; i < 50000; ++i) {
        bytes += "*control\nabcd";
    }
    EXPECT_LT(seconds_to_survive(bytes), long_time);
    EXPECT_LT(seconds_to_survive(bytes + "\"key\""), long_time);
}

TEST_F(LegacyBroken, deep_nesting_costs_no_more_than_the_file_is_long) {
    constexpr int outer = 20000;
    LegacyBytes file;
    file.table("t", std::vector<int>(outer + 2, 0));
    for (int a = 0; a < outer - 1; ++a) {
        file.int32(1).float64(a);
    }
    file.int32(outer);
    for (int i = 0; i < outer; ++i) {
        file.float64(i).block({1}, {{1, 2}});
    }
    EXPECT_LT(seconds_to_survive(file.str()), long_time);
}

TEST_F(LegacyBroken, section_that_ends_with_the_file_alone_ends) {
    setenv("KZB_READING_ASCII", "1", 1);
    EXPECT_EQ(survive(LegacyText().parameter(0x7fffffff).str()), 0);
    EXPECT_EQ(survive(LegacyText().settings(0x7fffffff).str()), 0);
    EXPECT_EQ(survive(LegacyText().control().str()), 0);
    EXPECT_EQ(survive(LegacyText().control().str() + std::string(100000, '\n')), 0);
}

}  // namespace
}  // namespace kzb::test
