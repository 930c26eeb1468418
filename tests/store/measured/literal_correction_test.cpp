// Random correction files, whole and damaged, read by the library and by the literal reader: the stores, the results,
// the printed texts and the counts of interpolations are the same.
#include "store/measured/literal_correction.h"

#include <random>

#include "store/measured/measured_store.h"

namespace {

using namespace kzb_test;

// One file after the other from a seed.
class Files {
  public:
    explicit Files(unsigned seed) : random_(seed) {}
    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    bool one_in(int count) { return below(count) == 0; }

    std::string file() {
        std::string text;
        if (!one_in(20)) {
            text += "$KZ_Correction_Start" + end();
        }
        if (!one_in(20)) {
            text += "$KZ_Correction_MotorType," + pick({"PMSM", " PMSM ", "PMSMX", "PMS", "IM", ""}, 3) + end();
        }
        for (int items = below(5); items > 0; --items) {
            text += item();
        }
        if (!one_in(20)) {
            text += "$KZ_Correction_End" + end();
        }
        if (one_in(10)) {
            text += item();
        }
        for (int damages = one_in(2) ? below(4) : 0; damages > 0 && !text.empty(); --damages) {
            damage(text);
        }
        return text;
    }

  private:
    std::string pick(const std::vector<std::string>& choices, int favour_first) {
        return one_in(favour_first) ? choices[static_cast<std::size_t>(below(static_cast<int>(choices.size())))]
                                    : choices[0];
    }
    std::string end() { return pick({"\n", ",\n", " \n", ", \n", ",,\n", "\t\n"}, 6); }
    std::string number() {
        static const std::vector<std::string> odd = {"",      " ",      "5x", "0x1p3", "inf", "nan",
                                                     "1e999", "1e",     ".5", "-.5e1", "+4",  " 7 ",
                                                     "\t8",   "1e-320", "x",  "1.",    "-0",  "--1"};
        if (one_in(60)) {
            return odd[static_cast<std::size_t>(below(static_cast<int>(odd.size())))];
        }
        return std::to_string((below(4000) - 1000) / 1000.0);
    }
    std::string item() {
        static const std::vector<std::string> others = {"$KZ_Correction_Version,1.0",
                                                        "$KZ_Correction_LeakageInductance_U,",
                                                        "$KZ_Correction_LeakageInductance_V,",
                                                        "$KZ_Correction_LeakageInductance_W,",
                                                        "$KZ_Correction_BackEMF",
                                                        "$KZ_Correction_Flux,1,1",
                                                        "$KZ_Correction_LdLq",
                                                        "$KZ_Correction_Unknown",
                                                        "$",
                                                        "a line between items",
                                                        "",
                                                        "10,20,30",
                                                        " $KZ_Correction_End"};
        if (one_in(3)) {
            std::string line = others[static_cast<std::size_t>(below(static_cast<int>(others.size())))];
            if (!line.empty() && line.back() == ',') {
                line += number();
            }
            return line + std::string(one_in(10) ? static_cast<std::size_t>(below(300)) : 0, 'x') + end();
        }
        static const std::vector<std::string> tables = {"Inductance", "Torque", "MagFlux", "TotalFluxLinkage",
                                                        "Ironloss"};
        return block(tables[static_cast<std::size_t>(one_in(3) ? below(5) : 1 + 3 * below(2))]);
    }
    std::string block(const std::string& name) {
        const int rows = 1 + below(5);
        const int columns = 1 + below(one_in(20) ? 40 : 5);
        std::string text =
            "$KZ_Correction_" + name + "," + std::to_string(rows) + "," + std::to_string(columns) + end();
        text += "current/phase";
        double node = -180 + below(200);
        for (int j = 0; j < columns; ++j) {
            text += "," + std::to_string(node);
            node += 0.5 + below(100);
        }
        text += end();
        node = below(100);
        for (int i = 0; i < rows; ++i) {
            text += std::to_string(node);
            node += 0.5 + below(100);
            for (int j = one_in(60) ? 1 : 0; j < columns; ++j) {
                text += "," + number();
            }
            text += end();
        }
        return text;
    }
    void damage(std::string& text) {
        static const std::string bytes("\n,$ \0\xff-0129.eE", 15);
        const auto at = static_cast<std::size_t>(below(static_cast<int>(text.size())));
        const char byte = bytes[static_cast<std::size_t>(below(static_cast<int>(bytes.size())))];
        switch (below(5)) {
            case 0:
                text[at] = byte;
                break;
            case 1:
                text.insert(at, 1, byte);
                break;
            case 2:
                text.erase(at, 1);
                break;
            case 3:
                text.erase(at, static_cast<std::size_t>(below(80)));
                break;
            default:
                if (one_in(4)) {
                    text.resize(at);
                }
        }
    }

    std::mt19937 random_;
};

class LiteralCorrection : public Measured {};

TEST_F(LiteralCorrection, random_files_read_as_the_literal_reader_reads_them) {
    int settled = 0;
    int merged = 0;
    int failures = 0;
    for (unsigned seed = 0; seed < 4000; ++seed) {
        SCOPED_TRACE(seed);
        Files files(seed);
        TestStore store;
        literal::Store plain;
        for (int reads = 1 + files.below(3); reads > 0; --reads) {
            const std::string text = files.file();
            const std::string path = file(text);
            plain.told.clear();
            const int expected = literal::read_correction_file(plain, path.c_str());
            testing::internal::CaptureStderr();
            const int result = kzb_read_correction_file(path.c_str(), store);
            const std::string printed = testing::internal::GetCapturedStderr();
            std::filesystem::remove(path);
            if (plain.unsettled) {
                break;
            }
            ++settled;
            merged += plain.linear_calls > 0 ? 1 : 0;
            failures += expected;
            ASSERT_EQ(result, expected) << text;
            ASSERT_EQ(literal::content(*store), literal::content(plain)) << text;
            ASSERT_EQ(literal::told_texts(printed, plain.told), plain.told) << text;
        }
    }
    EXPECT_GT(settled, 4000);
    EXPECT_GT(merged, 1000);
    EXPECT_GT(failures, 1000);
}

}  // namespace
