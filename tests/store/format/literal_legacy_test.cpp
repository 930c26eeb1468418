// Random old files in both forms, read by the library and by the literal reader: the stores, the results and the
// printed texts are the same. Some files have what the layout forbids or allows just so.
#include "store/format/literal_legacy.h"

#include <random>

#include "store/format/legacy_bytes.h"

namespace kzb::test {
namespace {

namespace literal = kzb_test::literal;

// One old file from a seed: the same content in the form asked for.
class OldFile {
  public:
    OldFile(unsigned seed, bool ascii) : random_(seed), ascii_(ascii) {}

    std::string make() {
        const double version = pick<double>({900.5, 901.0, 900.0, 0.0, 1000.0, 1000.5, -1.0}, 10);
        int_turns_ = version < 901.0;
        if (one_in(20)) {
            int_turns_ = true;  // a file that tells no version counts as an old one
        } else {
            ascii_ ? static_cast<void>(text_.version(number(version))) : static_cast<void>(bytes_.version(version));
        }
        control();
        if (one_in(4)) {
            unknown_section();
        }
        parameter();
        settings();
        for (int tables = below(5); tables > 0; --tables) {
            table();
        }
        if (one_in(40)) {
            parameter();
        }
        return ascii_ ? text_.str() : bytes_.str();
    }
    bool odd_shapes() const { return odd_shapes_; }

  private:
    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    bool one_in(int count) { return below(count) == 0; }
    template <class Value>
    Value pick(const std::vector<Value>& choices, int mostly_first = 0) {
        return mostly_first > 0 && !one_in(mostly_first)
                   ? choices[0]
                   : choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))];
    }
    static std::string number(double value) {
        char text[40];
        std::snprintf(text, sizeof text, "%.12g", value);
        return text;
    }
    double value() { return (below(200000) - 100000) / 128.0; }

    void control() {
        ascii_ ? static_cast<void>(text_.control()) : static_cast<void>(bytes_.control());
        const int motor = pick<int>({10000, 10001, 10002, 10003, 10004, 10005, 10006, 10007, 0}, 2);
        int_entry("motor_type", motor);
        int_entry("accuracy_type", pick<int>({3, 2, 1, 0, 4}, 2));
        const int many = one_in(60) ? 996 + below(10) : 0;
        for (int i = 0; i < many; ++i) {
            double_entry("coef_flux", value());
        }
        for (int i = below(8); i > 0; --i) {
            switch (below(5)) {
                case 0:
                    int_entry("number_of_poles", 2 * below(10));
                    break;
                case 1:
                    turns_entry(pick<std::string>({"turns_in_coil", "turns_coil1", "turns_coil2"}));
                    break;
                case 2:
                    if (ascii_) {
                        text_.line(
                            pick<std::string>({"\"coef_file_torque\" \"factors.csv\"", "\"coef_file_force\"  \"\"",
                                               "\"coef_file_force\" \"open", "  \"any_key\"   -1.5e-3",
                                               "\"number_of_tables\" 3", "\"number_of_poles\" 4.9"}));
                    } else {
                        int_entry(pick<std::string>({"number_of_splinetables", "number_of_tables"}), below(9));
                    }
                    break;
                default:
                    double_entry(pick<std::string>({"beta_zero", "coef_inertia1", "coef_inertia2", "coef_inductance",
                                                    "coef_torque", "coef_magnet", "coef_material", "coef_mass1",
                                                    "coef_mass2", "coef_force", "electrical_length"}),
                                 value());
            }
        }
    }
    void int_entry(const std::string& key, int entry) {
        ascii_ ? static_cast<void>(text_.line("\"" + key + "\" " + std::to_string(entry)))
               : static_cast<void>(bytes_.key(key).int32(entry));
    }
    void double_entry(const std::string& key, double entry) {
        ascii_ ? static_cast<void>(text_.line("\"" + key + "\"\t" + number(entry)))
               : static_cast<void>(bytes_.key(key).float64(entry));
    }
    void turns_entry(const std::string& key) {
        const int turns = below(100);
        // The version that counts is the one kept, 0 where the file told none that can be true.
        ascii_ || !int_turns_ ? double_entry(key, turns + 0.5) : int_entry(key, turns);
    }
    void parameter() {
        const int count = one_in(60) ? -1 : below(4);
        ascii_ ? static_cast<void>(text_.parameter(count)) : static_cast<void>(bytes_.parameter(count));
        for (int i = 0; i < count; ++i) {
            double_entry(pick<std::string>({"RU", "RF", "p1", "DispLimitMax"}), value());
        }
    }
    void settings() {
        const int count = one_in(60) ? -1 : below(4);
        ascii_ ? static_cast<void>(text_.settings(count)) : static_cast<void>(bytes_.settings(count));
        for (int i = 0; i < count; ++i) {
            const std::string key = "s" + std::to_string(below(3));
            const int entry = below(2000) - 1000;
            const std::string text = pick<std::string>({"a", "long.word", "", "x=1"});
            if (ascii_) {
                text_.line(pick<std::string>({"\"" + key + "\" int " + std::to_string(entry),
                                              "\"" + key + "\"  i  " + std::to_string(entry) + ".5",
                                              "\"" + key + "\" double " + number(entry / 4.0),
                                              "\"" + key + "\" string \"" + text + "\"",
                                              "\"" + key + "\" s \"" + text + "\" behind"}));
                continue;
            }
            bytes_.key(key);
            switch (below(3)) {
                case 0:
                    bytes_.raw("i").int32(entry);
                    break;
                case 1:
                    bytes_.raw("d").float64(entry / 4.0);
                    break;
                default:
                    bytes_.raw("s").key(text);
            }
        }
    }
    void unknown_section() {
        ascii_ ? static_cast<void>(text_.line("*remarks").line("a text").line(""))
               : static_cast<void>(bytes_.raw("*remarks\na text"));
    }
    void table() {
        const std::string name =
            pick<std::string>({"d_inductance", "q_inductance", "inductance", "flux", "magflux", "torque",
                               "torque_ibeta", "force", "attractive_force", "d_flux", "hysloss1", "anything"});
        const int dim = one_in(60) ? pick<int>({0, -1}) : ascii_ && one_in(40) ? 6 : 2 + below(ascii_ ? 4 : 5);
        const int method = pick<int>({1, 31000, 0, 30999}, 3);
        const int type = below(5);
        const std::string shaft = pick<std::string>({"Shaft1", "s"});
        std::vector<int> flags;
        for (int a = 0; a < dim; ++a) {
            flags.push_back(pick<int>({0, 1, -1, 7}));
        }
        if (ascii_) {
            text_.line("*table").line(std::to_string(method)).line("*" + name).line(std::to_string(type));
            if (method == 31000) {
                text_.line("\"" + shaft + "\"");
            }
            std::string fields;
            for (const int flag : flags) {
                const std::string digits = std::to_string(flag);
                fields += std::string(10 - digits.size(), ' ') + digits;
            }
            text_.line(std::to_string(dim)).line(fields);
        } else {
            bytes_.section("table").int32(method).section(name).int32(type);
            if (method == 31000) {
                bytes_.key(shaft);
            }
            bytes_.int32(dim);
            for (const int flag : flags) {
                bytes_.int32(flag);
            }
        }
        if (dim >= 2 && (!ascii_ || dim <= 5)) {
            std::vector<int> sizes;
            for (int a = 0; a < dim; ++a) {
                sizes.push_back(1 + below(dim > 3 ? 2 : 4));
            }
            nested(dim, sizes, one_in(10));
        }
    }
    // The last two sizes of an odd body change from block to block; ascii keeps its columns.
    void nested(int left, const std::vector<int>& sizes, bool odd) {
        const auto axis = sizes.size() - static_cast<std::size_t>(left);
        if (left > 2) {
            ascii_ ? static_cast<void>(text_.line("  " + std::to_string(sizes[axis])))
                   : static_cast<void>(bytes_.int32(sizes[axis]));
            for (int i = 0; i < sizes[axis]; ++i) {
                const double node = i + below(3) / 4.0;
                ascii_ ? static_cast<void>(text_.line(number(node))) : static_cast<void>(bytes_.float64(node));
                nested(left - 1, sizes, odd);
            }
            return;
        }
        int rows = sizes[axis];
        int columns = sizes[axis + 1];
        if (odd && one_in(2)) {
            rows = 1 + below(4);
            columns = ascii_ ? columns : 1 + below(4);
            odd_shapes_ = true;
        }
        std::vector<double> nodes;
        for (int c = 0; c < columns; ++c) {
            nodes.push_back(c + below(4) / 8.0);
        }
        std::vector<std::vector<double>> lines;
        for (int r = 0; r < rows; ++r) {
            lines.push_back({r + below(4) / 8.0});
            for (int c = 0; c < columns; ++c) {
                lines.back().push_back(value());
            }
        }
        ascii_ ? static_cast<void>(text_.block(nodes, lines)) : static_cast<void>(bytes_.block(nodes, lines));
    }

    std::mt19937 random_;
    bool ascii_;
    bool int_turns_ = true;
    bool odd_shapes_ = false;
    LegacyBytes bytes_;
    LegacyText text_;
};

class LiteralLegacy : public LegacyFile {
  protected:
    void compare(bool ascii) {
        int failures = 0;
        for (unsigned seed = 0; seed < 1500; ++seed) {
            SCOPED_TRACE(seed);
            OldFile file(seed, ascii);
            const std::string bytes = file.make();
            literal::Store plain;
            const std::string at = write(bytes, "literal.kzb");
            literal::LegacyReader reader(plain, at.c_str());
            const int expected = ascii ? reader.ascii() : reader.binary();
            // What the reading of every file ends with: whether the losses of the iron are there.
            plain.put_int("information", "has_ironloss_table",
                          plain.category("eddyloss") != nullptr && plain.category("hysloss") != nullptr ? 1 : 0);
            store_ = KZB_STORE();
            const int result = ascii ? read_ascii_file(bytes) : read(bytes);
            ASSERT_EQ(result, expected) << err_ << bytes;
            ASSERT_EQ(literal::content(store_), literal::content(plain)) << bytes;
            if (!file.odd_shapes()) {  // what lies outside a table is told once a block, not once a number
                ASSERT_EQ(literal::told_texts(err_, plain.told), plain.told) << bytes;
            }
            failures += result;
        }
        EXPECT_GT(failures, 10);
        EXPECT_LT(failures, 500);
    }
};

TEST_F(LiteralLegacy, random_binary_files_are_read_as_the_literal_reader_reads_them) {
    compare(false);
}

TEST_F(LiteralLegacy, random_ascii_files_are_read_as_the_literal_reader_reads_them) {
    compare(true);
}

}  // namespace
}  // namespace kzb::test
