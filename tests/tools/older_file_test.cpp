// kzb on files of the older layout, which say nothing of their form: binary ones, and ascii ones without any setting.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

std::string word(int value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}
std::string number(double value) {
    return {reinterpret_cast<const char*>(&value), sizeof value};
}
std::string quoted(std::string text) {
    text.insert(text.begin(), '"');
    return text + '"';
}

// A linear solenoid with one table, `flux`, of sizes 2 and 1, values 3 and 4.
std::string binary_file() {
    std::string file = "*version\n" + number(900.5) + "*control\n" + word(0) + quoted("motor_type") + word(10004);
    file += "*parameter\n" + word(0) + word(1) + quoted("RU") + number(1.5) + "*settings\n" + word(0) + word(1);
    file += quoted("t") + "s" + quoted("text") + "*table\n" + word(1) + "*flux\n" + word(0) + word(2) + word(0);
    return file + word(1) + word(2) + word(1) + number(10) + number(1) + number(3) + number(2) + number(4);
}
std::string ascii_file() {
    return "*version\n900.5\n*control\n0\n\"motor_type\" 10004\n*parameter\n0\n1\n\"RU\" 1.5\n*settings\n0\n1\n"
           "\"t\" s \"text\"\n*table\n1\n*flux\n0\n2\n         0         1\n2 1\n                  10\n"
           "                   1                   3\n                   2                   4\n";
}

class OlderFile : public testing::TestWithParam<bool> {
  protected:
    void SetUp() override { write_file(folder_ / "old.kzb", GetParam() ? ascii_file() : binary_file()); }
    json run_json(const std::vector<std::string>& arguments) const {
        const Finished finished = run_kzb(arguments, folder_.path());
        EXPECT_EQ(finished.code, 0) << finished.err;
        EXPECT_EQ(finished.err, "");
        return json::parse(finished.out, nullptr, false);
    }
    Folder folder_;
};
INSTANTIATE_TEST_SUITE_P(Forms, OlderFile, testing::Bool());

TEST_P(OlderFile, info_shows_it_without_any_setting) {
    const json info = run_json({"info", "--json", "old.kzb"});
    EXPECT_EQ(info["form"], GetParam() ? "ascii" : "binary");
    EXPECT_EQ(info["layout"], "older");
    EXPECT_EQ(info["motor"], "LinearSolenoid");
    EXPECT_EQ(info["warnings"], json::array());
    const Finished text = run_kzb({"info", "old.kzb"}, folder_.path());
    EXPECT_THAT(text.out, HasSubstr("(older layout)"));
    EXPECT_THAT(text.out, HasSubstr("distance_flux"));
}

TEST_P(OlderFile, copy_is_of_the_present_layout_and_holds_everything) {
    for (const char* form : {"binary", "ascii"}) {
        const json report = run_json({"convert", "old.kzb", "new.kzb", "--form", form, "--json"});
        EXPECT_EQ(report["values_changed"], 0);
        EXPECT_EQ(report["lost"], json::array());
        json before = run_json({"info", "--json", "--grid", "old.kzb"});
        json after = run_json({"info", "--json", "--grid", "new.kzb"});
        EXPECT_EQ(after["layout"], "present");
        EXPECT_EQ(after["form"], form);
        EXPECT_EQ(before["categories"], after["categories"]);
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        EXPECT_EQ(kzb_reader((folder_ / "new.kzb").c_str(), store), 0);
        kzb_set_application("ALL", "", store);
        const int last[] = {1, 0};
        EXPECT_EQ(kzb_get_table_value("distance_flux", "flux", last, store), 4.0);
        EXPECT_EQ(kzb_get_table_cyclic_flag("distance_flux", "flux", 2, store), 1);
        EXPECT_EQ(kzb_get_double("parameter", "RU", store), 1.5);
        EXPECT_STREQ(kzb_get_string("settings", "t", store), "text");
        kzb_finish(store);
    }
}

TEST_P(OlderFile, setting_of_the_environment_has_the_say) {
    const Finished wrong =
        run_kzb({"info", "old.kzb"}, folder_.path(), {{"KZB_READING_ASCII", GetParam() ? "0" : "1"}});
    EXPECT_EQ(wrong.code, 3);
    EXPECT_THAT(wrong.err, HasSubstr("older layout"));
    const Finished right =
        run_kzb({"info", "old.kzb"}, folder_.path(), {{"KZB_READING_ASCII", GetParam() ? "1" : "0"}});
    EXPECT_EQ(right.code, 0);
}

TEST_P(OlderFile, cut_table_is_told) {
    const std::string whole = read_file(folder_ / "old.kzb");
    write_file(folder_ / "cut.kzb", whole.substr(0, whole.size() - 10));
    const Finished finished = run_kzb({"info", "cut.kzb"}, folder_.path());
    EXPECT_EQ(finished.code, 3);
    EXPECT_THAT(finished.err, HasSubstr("reading error"));
    EXPECT_THAT(finished.err, HasSubstr("a whole file of the older layout"));
}

}  // namespace
}  // namespace kzb::test
