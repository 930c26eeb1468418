// kzb plot: images by form, values by the table, faults by name.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kzb/command.h"
#include "kzb/table_view.h"
#include "store/store.h"
#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

// t(a, b, c) = a + 10 b + 100 c
void fill(KZB_STORE* store) {
    put_table(store, "cat/with", "t", {{0.0, 1.0, 3.0}, {0.0, 5.0}, {2.0, 4.0}},
              [](const auto& p) { return p[0] + 10.0 * p[1] + 100.0 * p[2]; });
    put_table(store, "c", "line", {{0.0, 1.0, 2.0}}, [](const auto& p) { return p[0] * p[0]; });
}

class Plot : public testing::Test {
  protected:
    Plot() { write_model(folder / "m.kzb", fill); }
    Finished plot(const std::vector<std::string>& more, const std::map<std::string, std::string>& environment = {}) {
        std::vector<std::string> arguments = {"plot", "m.kzb"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_kzb(arguments, folder.path(), environment);
    }
    Folder folder;
};

TEST_F(Plot, writes_png_and_svg_by_the_ending) {
    ASSERT_EQ(plot({"cat/with/t", "--out", "p.png"}).code, 0);
    EXPECT_EQ(read_file(folder / "p.png").substr(0, 8), "\x89PNG\r\n\x1a\n");
    ASSERT_EQ(plot({"cat/with/t", "--out", "p.svg", "--axes", "1,3", "--at", "2=2.5"}).code, 0);
    const std::string svg = read_file(folder / "p.svg");
    EXPECT_THAT(svg, HasSubstr("<svg"));
    EXPECT_THAT(svg, HasSubstr("cat/with/t, axis 2 = 2.5"));
    EXPECT_THAT(svg, HasSubstr("axis 3 = 4"));
}

TEST_F(Plot, draws_one_axis_and_heat_maps) {
    EXPECT_EQ(plot({"c/line", "--out", "p.svg"}).code, 0);
    EXPECT_EQ(plot({"cat/with/t", "--out", "h.png", "--kind", "heatmap", "--at", "3=#1"}).code, 0);
    EXPECT_THAT(folder.names(), ElementsAre("h.png", "m.kzb", "p.svg"));
}

TEST_F(Plot, faults_say_what_was_expected_and_write_nothing) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"c/none"}, "no table c/none, expected one of cat/with/t, c/line"},
        {{"line"}, "expected CATEGORY/KEY"},
        {{"c/line", "--axes", "2"}, "\"2\" is no axis of c/line, expected 1 to 1"},
        {{"c/line", "--axes", "x"}, "\"x\" is no axis"},
        {{"cat/with/t", "--axes", "1,1"}, "axis 1 twice"},
        {{"cat/with/t", "--at", "1=0"}, "axis 1 is one of the axes drawn"},
        {{"cat/with/t", "--at", "3=1"}, "1 is outside axis 3, expected 2 to 4"},
        {{"cat/with/t", "--at", "3=#2"}, "axis 3 has no node #2, expected #0 to #1"},
        {{"cat/with/t", "--at", "3=2", "--at", "3=4"}, "axis 3 twice"},
        {{"cat/with/t", "--at", "3=two"}, "\"two\" is not a number"},
        {{"cat/with/t", "--at", "3"}, "expected AXIS=VALUE or AXIS=#INDEX"},
        {{"c/line", "--kind", "heatmap"}, "two axes"},
    };
    for (auto [arguments, wording] : cases) {
        arguments.insert(arguments.end(), {"--out", "p.png"});
        const Finished finished = plot(arguments);
        EXPECT_EQ(finished.code, 2) << wording << finished.err;
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_THAT(finished.err, HasSubstr(wording));
    }
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb"));
}

TEST_F(Plot, a_missing_gnuplot_is_told) {
    const Finished finished = plot({"c/line", "--out", "p.png"}, {{"PATH", "/nowhere"}});
    EXPECT_EQ(finished.code, 1);
    EXPECT_THAT(finished.err, HasSubstr("gnuplot is not installed"));
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb"));
}

TEST(TableView, holds_the_other_axes_at_a_node_or_between_nodes) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    fill(store);
    const KZB_TABLE& table = *find_table(*store, "cat/with", "t");
    const tool::TableView first = tool::view_of(table, "t", "", {});
    EXPECT_EQ(first.at(2, 1), 3.0 + 50.0 + 200.0);  // axis 3 at its first node, 2
    const tool::TableView index = tool::view_of(table, "t", "1,2", {"3=#1"});
    EXPECT_EQ(index.at(1, 0), 1.0 + 400.0);
    const tool::TableView between = tool::view_of(table, "t", "3", {"1=2.0", "2=2.5"});
    EXPECT_NEAR(between.at(1, 0), 2.0 + 25.0 + 400.0, 1e-12);  // linear in each coordinate, so exact
    kzb_finish(store);
}

}  // namespace
}  // namespace kzb::test
