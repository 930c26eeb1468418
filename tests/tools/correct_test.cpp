// kzb correct: factors of correction files in a model.
#include "tools/edits.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string correction_start = "$KZ_Correction_Start,\n$KZ_Correction_MotorType,PMSM\n";
const std::string correction_end = "$KZ_Correction_End,\n";
// Over the current amplitude (rows) and the current phase (columns).
const std::string inductance_factors = "$KZ_Correction_Inductance,2,2\nI/beta,0,360\n0,1.5,1.5\n100,3,3.5\n";

class Correct : public Edits {
  protected:
    Correct() {
        write_constant_machine(folder / "m.kzb");
        write_file(folder / "c.txt", correction_start + inductance_factors +
                                         "$KZ_Correction_LeakageInductance_U,0.25\n" + correction_end);
    }
};

TEST_F(Correct, tables_and_leakage_of_the_file_stand_in_the_model) {
    const std::string input = read_file(folder / "m.kzb");
    const json report = done({"correct", "m.kzb", "c.txt", "--out", "n.kzb"});
    EXPECT_THAT(report["added"].get<std::vector<std::string>>(),
                testing::IsSupersetOf({"correction/inductance", "parameter/leakage_inductance_u"}));
    EXPECT_EQ(report["changed"], json::array());
    EXPECT_EQ(read_file(folder / "m.kzb"), input);
    const OpenedStore store = opened(folder / "n.kzb");
    EXPECT_THAT(nodes_of(store, "correction", "inductance", 1), ElementsAre(0.0, 100.0));
    EXPECT_THAT(nodes_of(store, "correction", "inductance", 2), ElementsAre(0.0, 360.0));
    EXPECT_EQ(value_at(store, "correction", "inductance", {0, 0}), 1.5);
    EXPECT_EQ(value_at(store, "correction", "inductance", {1, 1}), 3.5);
    EXPECT_EQ(kzb_get_double("parameter", "leakage_inductance_u", store.get()), 0.25);
    EXPECT_EQ(kzb_get_double("parameter", "RU", store.get()), 0.5);
}

TEST_F(Correct, the_factor_acts_in_a_run) {
    write_file(folder / "c.txt", correction_start + inductance_factors + correction_end);
    done({"correct", "m.kzb", "c.txt", "--out", "n.kzb"});
    write_file(folder / "s.toml", "drive = \"voltage\"\n[time]\nstep = 1e-4\nstop = 5e-4\n[sources]\nall = 0\n");
    // Without current the factor is 1.5 at every phase; the table holds 2 mH.
    EXPECT_NEAR(done({"run", "n.kzb", "s.toml"})["outputs"]["inductance_d_H"]["max"].get<double>(), 3e-3, 1e-15);
}

TEST_F(Correct, several_files_are_taken_in_their_order_and_compound) {
    write_file(folder / "d.txt",
               correction_start + "$KZ_Correction_Inductance,1,2\nI/beta,0,360\n50,2,4\n" + correction_end);
    done({"correct", "m.kzb", "c.txt", "d.txt", "--out", "n.kzb"});
    const OpenedStore store = opened(folder / "n.kzb");
    // The later grid with the earlier factors at 50 A: halfway, 2.25 and 2.5. The axis is cyclic: 360 reads as 0 in a
    // lookup, or as itself.
    EXPECT_THAT(nodes_of(store, "correction", "inductance", 1), ElementsAre(50.0));
    EXPECT_NEAR(value_at(store, "correction", "inductance", {0, 0}), 2.0 * 2.25, 1e-12);
}

TEST_F(Correct, faults_of_the_correction_file_are_exit_code_3_with_the_cause) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {correction_start + inductance_factors,
         "c.txt: The end marker [$KZ_Correction_End] was not found in the correction file. (error "
         "90016)"},
        {correction_end, "[$KZ_Correction_Start]"},
        {"$KZ_Correction_Start\n$KZ_Correction_MotorType,IM\n" + correction_end, "90018"},
        {correction_start + "$KZ_Correction_Inductance,2,2\nI/beta,0,360\n0,1.5\n" + correction_end,
         "The correction file is corrupt."},
        {correction_start + "$KZ_Correction_Inductance,0,2\nI/beta,0,360\n" + correction_end, "c.txt: "},
        {correction_start + "$KZ_Correction_BackEMF,1,1\n" + correction_end,
         "[$KZ_Correction_BackEMF] is not available"},
        {correction_start + "$KZ_Correction_Other,1\n" + correction_end, "90014"},
        {correction_start + inductance_factors + "$KZ_Correction_TotalFluxLinkage,1,1\nI/beta,0\n0,1\n" +
             correction_end,
         "90020"},
        {"", "c.txt: "},
        {std::string("\0\xff\xfe,,,\n$\n$$,\n", 12), "c.txt: "},
    };
    for (const auto& [content, fault] : cases) {
        write_file(folder / "c.txt", content);
        refused({"correct", "m.kzb", "c.txt", "--out", "n.kzb"}, 3, fault);
    }
    refused({"correct", "m.kzb", "none.txt", "--out", "n.kzb"}, 3,
            "none.txt: cannot be opened (No such file or directory), expected a correction file");
    refused({"correct", "m.kzb", ".", "--out", "n.kzb"}, 3, ".: is a directory, expected a correction file");
    refused({"correct", "m.kzb", "/dev/zero", "--out", "n.kzb"}, 3, "is no regular file");
    refused({"correct", "none.kzb", "c.txt", "--out", "n.kzb"}, 3, "none.kzb: cannot be opened");
}

// The library takes these in, and a lookup gives what is no number, or goes astray.
TEST_F(Correct, numbers_that_cannot_be_looked_up_are_exit_code_3) {
    const std::string head = "$KZ_Correction_Torque,2,2\nI/beta,0,360\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {head + "0,1,1\n100,1,nan\n", "c.txt: table correction/torque: value [1, 1]: nan, expected a finite number"},
        {head + "0,inf,1\n100,1,1\n", "value [0, 0]: inf, expected a finite number"},
        {head + "0,1,1\nnan,1,1\n", "axis 1, node 1: nan, expected a finite number"},
        {head + "0,1,1\n-100,1,1\n", "axis 1, node 1: -100 behind 0, expected nodes that rise"},
        {"$KZ_Correction_Torque,1,2\nI/beta,0,0\n0,1,1\n", "axis 2, node 1: 0 behind 0, expected nodes that rise"},
        {"$KZ_Correction_LeakageInductance_V,nan\n", "parameter/leakage_inductance_v: nan, expected a finite number"},
    };
    for (const auto& [content, fault] : cases) {
        write_file(folder / "c.txt", correction_start + content + correction_end);
        refused({"correct", "m.kzb", "c.txt", "--out", "n.kzb"}, 3, fault);
    }
}

TEST_F(Correct, factors_of_zero_and_below_are_warned_of) {
    for (const std::string factor : {"0", "-0.5", "none"}) {  // a word reads as 0
        write_file(folder / "c.txt",
                   correction_start + "$KZ_Correction_Torque,1,2\nI/beta,0,360\n0,1," + factor + "\n" + correction_end);
        const Finished finished = kzb({"correct", "m.kzb", "c.txt", "--out", "n.kzb"});
        EXPECT_EQ(finished.code, 0);
        EXPECT_EQ(line_count(finished.err), 1);
        EXPECT_THAT(finished.err, HasSubstr("n.kzb: correction/torque: value [0, 1]: factor " +
                                            (factor == "none" ? "0" : factor) + ", expected factors above 0"));
    }
}

TEST_F(Correct, a_correction_that_does_not_suit_an_earlier_one_is_exit_code_1) {
    write_file(folder / "t.txt",
               correction_start + "$KZ_Correction_TotalFluxLinkage,1,1\nI/beta,0\n0,1\n" + correction_end);
    refused({"correct", "m.kzb", "c.txt", "t.txt", "--out", "n.kzb"}, 1, "t.txt: The correction of total flux linkage");
    refused({"correct", "m.kzb", "t.txt", "c.txt", "--out", "n.kzb"}, 1, "(error 90022)");
}

TEST_F(Correct, a_fault_in_the_second_file_leaves_the_old_output) {
    write_file(folder / "n.kzb", "old");
    write_file(folder / "bad.txt", correction_start);
    refused({"correct", "m.kzb", "c.txt", "bad.txt", "--out", "n.kzb"}, 3, "bad.txt: ");
}

TEST_F(Correct, the_model_may_be_the_output_and_a_correction_file_not) {
    done({"correct", "m.kzb", "c.txt", "--out", "m.kzb"});
    EXPECT_EQ(value_at(opened(folder / "m.kzb"), "correction", "inductance", {1, 0}), 3.0);
    refused({"correct", "m.kzb", "c.txt", "--out", "./c.txt"}, 2, "is a correction file itself");
    refused({"correct", "m.kzb", "--out", "n.kzb"}, 2, "corrections");
    EXPECT_THAT(folder.names(), ElementsAre("c.txt", "m.kzb"));
}

TEST_F(Correct, a_file_without_factors_and_another_machine_are_warned_of) {
    write_file(folder / "c.txt", correction_start + correction_end);
    EXPECT_THAT(kzb({"correct", "m.kzb", "c.txt", "--out", "n.kzb"}).err, HasSubstr("nothing is corrected"));
    write_model(folder / "im.kzb", [](KZB_STORE* store) { kzb_put_int("control", "motor_type", 10006, store); });
    EXPECT_THAT(kzb({"correct", "im.kzb", "c.txt", "--out", "n.kzb"}).err,
                HasSubstr("motor type 10006 (IM) makes no use of corrections"));
}

}  // namespace
}  // namespace kzb::test
