// kzb loss: loss tables in a model.
#include "tools/edits.h"
#include "tools/harmonic_model.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;

// Two amplitudes and two speeds; the points in no order.
const std::string points =
    "$ amplitude phase speed voltage carrier loss\n"
    "10, 0, 3000, 300, 5000, 7.5\n"
    "0 0 3000 300 5000 2.5\n"
    "\n"
    "10 0 0 300 5000 5e-1\n"
    "0 0 0 300 5000 -1\n";

class Loss : public Edits {
  protected:
    Loss() {
        write_model(folder / "m.kzb", fill_harmonic_machine);
        write_file(folder / "t.txt", points);
    }
};

TEST_F(Loss, iron_and_copper_tables_stand_in_the_model) {
    const std::vector<std::pair<std::string, std::pair<const char*, const char*>>> cases = {
        {"iron", {"loss_table", "iron_loss"}}, {"copper", {"equivalent_resistance_table", "copper_loss"}}};
    const std::string input = read_file(folder / "m.kzb");
    for (const auto& [kind, name] : cases) {
        const json report = done({"loss", "m.kzb", "t.txt", "--kind", kind, "--out", "n.kzb"});
        EXPECT_EQ(report["added"], json::array({std::string(name.first) + '/' + name.second}));
        EXPECT_EQ(report["changed"], json::array());
        const OpenedStore store = opened(folder / "n.kzb");
        EXPECT_THAT(nodes_of(store, name.first, name.second, 1), ElementsAre(0.0, 10.0));
        EXPECT_THAT(nodes_of(store, name.first, name.second, 3), ElementsAre(0.0, 3000.0));
        EXPECT_THAT(nodes_of(store, name.first, name.second, 5), ElementsAre(5000.0));
        EXPECT_EQ(value_at(store, name.first, name.second, {1, 0, 1, 0, 0}), 7.5);
        EXPECT_EQ(value_at(store, name.first, name.second, {0, 0, 1, 0, 0}), 2.5);
        EXPECT_EQ(value_at(store, name.first, name.second, {1, 0, 0, 0, 0}), 0.5);
        EXPECT_EQ(value_at(store, name.first, name.second, {0, 0, 0, 0, 0}), -1.0);
    }
    EXPECT_EQ(read_file(folder / "m.kzb"), input);
}

TEST_F(Loss, a_second_table_takes_the_place_of_the_first) {
    done({"loss", "m.kzb", "t.txt", "--kind", "iron", "--out", "m.kzb"});
    write_file(folder / "t.txt", "0 0 0 0 0 9\n");
    EXPECT_EQ(done({"loss", "m.kzb", "t.txt", "--kind", "iron", "--out", "m.kzb"})["changed"],
              json::array({"loss_table/iron_loss"}));
    EXPECT_EQ(value_at(opened(folder / "m.kzb"), "loss_table", "iron_loss", {0, 0, 0, 0, 0}), 9.0);
}

TEST_F(Loss, faults_of_the_table_are_exit_code_3_with_the_cause) {
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"0 0 0 0 0 1\n10 0 0 0 5 1\n", "t.txt: The number of points on the table is not enough. (error 90024)"},
        {"0 0 0 0 1\n", "The number of axis does not match"},
        {"0 0 0 0 0 1.0abc\n", "The value of the table contains a character string."},
        {"0 0 0 0 nan 1\n", "t.txt: "},
        {"0 0 0 0 0 1\n10 0 0 0 0 nan\n",
         "t.txt: table loss_table/iron_loss: value [1, 0, 0, 0, 0]: nan, expected a finite number"},
        {"0 0 0 0 0 1\n10 0 0 0 0 -inf\n", "-inf, expected a finite number"},
        // As many lines as the grid has points, but one twice: the corner that is missing would hold 0.
        {"0 0 0 0 0 1\n10 0 5 0 0 1\n\n$\n0 0 5 0 0 1\n0,0,5,0,0,2\n",
         "t.txt: line 6: the point of line 5 once more, expected each point of the grid once"},
        {points.substr(0, points.size() - 1), "; the last line has no line end and is not read"},
    };
    for (const auto& [content, fault] : cases) {
        write_file(folder / "t.txt", content);
        refused({"loss", "m.kzb", "t.txt", "--kind", "iron", "--out", "n.kzb"}, 3, fault);
    }
    refused({"loss", "m.kzb", "none.txt", "--kind", "iron", "--out", "n.kzb"}, 3,
            "none.txt: cannot be opened (No such file or directory), expected a loss table");
    refused({"loss", "m.kzb", ".", "--kind", "copper", "--out", "n.kzb"}, 3, "is a directory, expected a loss table");
}

TEST_F(Loss, a_machine_that_takes_no_such_table_is_exit_code_1) {
    write_constant_machine(folder / "ldlq.kzb");
    for (const char* kind : {"iron", "copper"}) {
        refused({"loss", "ldlq.kzb", "t.txt", "--kind", kind, "--out", "n.kzb"}, 1,
                "t.txt: This table cannot be added to the kzb file. (error 90025)");
    }
}

TEST_F(Loss, wrong_usage_is_exit_code_2) {
    refused({"loss", "m.kzb", "t.txt", "--out", "n.kzb"}, 2, "--kind");
    refused({"loss", "m.kzb", "t.txt", "--kind", "gold", "--out", "n.kzb"}, 2, "gold");
    refused({"loss", "m.kzb", "t.txt", "--kind", "iron"}, 2, "--out");
    refused({"loss", "m.kzb", "t.txt", "--kind", "iron", "--out", "t.txt"}, 2, "is the loss table itself");
}

}  // namespace
}  // namespace kzb::test
