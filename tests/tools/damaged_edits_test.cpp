// Whatever a correction file, a loss table or a model holds: an exit code that the documentation names, one line for a
// fault, and an output that is whole or absent.
#include <random>

#include "tools/edits.h"
#include "tools/harmonic_model.h"

namespace kzb::test {
namespace {

using testing::AnyOf;

std::string damaged_text(std::string content, std::mt19937& random) {
    const auto below = [&random](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    const std::string signs = "$#,;=\"-. \n0e9\xff";
    for (std::size_t k = 0, changes = 1 + below(6); k < changes && !content.empty(); ++k) {
        const std::size_t at = below(content.size());
        switch (below(4)) {
            case 0:
                content.resize(at);
                break;
            case 1:
                content.insert(at, content.substr(below(content.size()), below(40)));
                break;
            case 2:
                content[at] = static_cast<char>(random());
                break;
            default:
                content[at] = signs[below(signs.size())];
                break;
        }
    }
    return content;
}

class DamagedEdits : public Edits {
  protected:
    void ends_well(const std::vector<std::string>& arguments, int round) {
        const Finished finished = kzb(arguments);
        EXPECT_THAT(finished.code, AnyOf(0, 1, 3)) << round << finished.err;
        EXPECT_EQ(std::filesystem::exists(folder / "n.kzb"), finished.code == 0) << round;
        if (finished.code == 0) {
            EXPECT_EQ(kzb({"info", "n.kzb"}).code, 0) << round;
        } else {
            EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        }
        std::filesystem::remove(folder / "n.kzb");
    }
    std::mt19937 random{23};  // fixed: the same files in every run
};

TEST_F(DamagedEdits, measured_files) {
    write_model(folder / "m.kzb", fill_harmonic_machine);
    const std::string correction =
        "$KZ_Correction_Start,\n$KZ_Correction_MotorType,PMSM\n$KZ_Correction_Torque,2,3\nI,0,180,360\n0,1,1,1\n"
        "10,2,3,2\n$KZ_Correction_Ironloss,1,2\nI,0,10\n0,1,1\n$KZ_Correction_LeakageInductance_V,1e-4\n"
        "$KZ_Correction_End\n";
    const std::string loss = "$ points\n0 0 0 0 0 1\n10 0 0 0 0 2\n0, 0, 5, 0, 0, 3\n10 0 5 0 0 4\n";
    const std::string model = read_file(folder / "m.kzb");
    for (int round = 0; round < 60; ++round) {
        write_file(folder / "c.txt", damaged_text(correction, random));
        ends_well({"correct", "m.kzb", "c.txt", "--out", "n.kzb"}, round);
        write_file(folder / "t.txt", damaged_text(loss, random));
        ends_well({"loss", "m.kzb", "t.txt", "--kind", round % 2 == 0 ? "iron" : "copper", "--out", "n.kzb"}, round);
    }
    EXPECT_EQ(read_file(folder / "m.kzb"), model);
}

TEST_F(DamagedEdits, models) {
    write_model(folder / "good.kzb", fill_harmonic_machine);
    for (const char* form : {"ascii", "binary"}) {
        done({"convert", "good.kzb", "good.kzb", "--form", form});
        const std::string good = read_file(folder / "good.kzb");
        for (int round = 0; round < 20; ++round) {
            write_file(folder / "bad.kzb", damaged_text(good, random));
            ends_well({"transform", "bad.kzb", "ldlq", "--out", "n.kzb"}, round);
            ends_well({"transform", "bad.kzb", "skew", "--type-a", "continuous", "--angle-a", "5", "--out", "n.kzb"},
                      round);
            EXPECT_THAT(kzb({"get", "bad.kzb", "parameter/RU"}).code, AnyOf(0, 2, 3)) << round;
        }
    }
}

}  // namespace
}  // namespace kzb::test
