// kzb info: every part of the document against the file that the test wrote.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

json info_of(const Folder& folder, const std::vector<std::string>& more = {}) {
    std::vector<std::string> arguments = {"info", "--json", "m.kzb"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const Finished finished = run_kzb(arguments, folder.path());
    EXPECT_EQ(finished.code, 0) << finished.err;
    return json::parse(finished.out);  // throws unless JSON stands alone on stdout
}

const json& category(const json& info, const std::string& name) {
    for (const json& entry : info["categories"]) {
        if (entry["name"] == name) {
            return entry;
        }
    }
    throw std::runtime_error("no category " + name);
}

TEST(Info, json_tells_form_motor_and_applications) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    const json info = info_of(folder);
    EXPECT_EQ(info["file"], "m.kzb");
    EXPECT_EQ(info["form"], "binary");
    EXPECT_EQ(info["layout"], "present");
    EXPECT_EQ(info["motor_type"], 10000);
    EXPECT_EQ(info["motor"], "PMSM");
    EXPECT_EQ(info["applications"], json::parse(R"([{"motor": "PMSM", "application": "LdLq"}])"));
    EXPECT_EQ(info["warnings"], json::array());
}

TEST(Info, json_tells_the_information_rows) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    const json info = info_of(folder);
    EXPECT_EQ(info["basic_information"],
              json::parse(R"([{"category": "information", "key": "title", "value": "constant machine"}])"));
    // RU, then what the reader itself adds to every file.
    EXPECT_EQ(info["motor_information"][0], json::parse(R"({"category": "parameter", "key": "RU", "value": 0.5})"));
}

TEST(Info, json_tells_scalars_and_tables_with_their_axes) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        put_table(store, "extra", "t", {{0.0, 90.0, 360.0}, {-1.0, 5.0}},
                  [](const auto& p) { return p[0] + p[1]; });  // -1 .. 365
        kzb_set_table_cyclic_flag("extra", "t", 1, 1, store);
    });
    const json info = info_of(folder, {"--grid"});
    EXPECT_EQ(category(info, "control")["ints"]["number_of_poles"], 4);
    EXPECT_EQ(category(info, "parameter")["doubles"]["RU"], 0.5);
    EXPECT_EQ(category(info, "extra")["tables"], json::parse(R"([{
        "key": "t", "dim": 2, "values": 6, "range": [-1.0, 365.0],
        "axes": [{"axis": 1, "nodes": 3, "range": [0.0, 360.0], "cyclic": true, "grid": [0.0, 90.0, 360.0]},
                 {"axis": 2, "nodes": 2, "range": [-1.0, 5.0], "cyclic": false, "grid": [-1.0, 5.0]}]}])"));
}

TEST(Info, strings_held_in_shift_jis_appear_in_utf8) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        // Shift_JIS of the three katakana U+30E2 U+30FC U+30BF
        kzb_put_string("information", "title", "\x83\x82\x81\x5b\x83\x5e", store);
    });
    const json info = info_of(folder);
    EXPECT_EQ(category(info, "information")["strings"]["title"], "\xe3\x83\xa2\xe3\x83\xbc\xe3\x82\xbf");
    EXPECT_THAT(run_kzb({"info", "m.kzb"}, folder.path()).out, HasSubstr("\xe3\x83\xa2\xe3\x83\xbc\xe3\x82\xbf"));
}

TEST(Info, a_text_that_shift_jis_cannot_express_keeps_its_utf8_and_the_librarys_remark_goes_to_stderr) {
    const Folder folder;
    const std::string emoji = "\xf0\x9f\x98\x80";  // U+1F600, in no Shift_JIS
    write_model(folder / "m.kzb", [&](KZB_STORE* store) {
        fill_constant_machine(store, {});
        kzb_put_string("information", "title", emoji.c_str(), store);
    });
    const json info = info_of(folder);
    EXPECT_EQ(category(info, "information")["strings"]["title"], emoji);
    ASSERT_EQ(info["warnings"].size(), 1u);
    EXPECT_THAT(info["warnings"][0].get<std::string>(), HasSubstr("Encoding from UTF-8 to SJIS is not performed."));
    const Finished finished = run_kzb({"info", "m.kzb"}, folder.path());
    EXPECT_THAT(finished.err, HasSubstr("Encoding from UTF-8 to SJIS is not performed."));
}

TEST(Info, bytes_that_are_no_text_are_replaced_so_that_the_json_stays_valid) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        kzb_put_string("information", "title", "\xff\xfe\x80", store);
        kzb_put_int("\xc3", "\xe3\x83", 7, store);
    });
    const json info = info_of(folder);
    EXPECT_THAT(category(info, "information")["strings"]["title"].get<std::string>(), HasSubstr("\xef\xbf\xbd"));
    EXPECT_EQ(category(info, "\xef\xbf\xbd")["ints"].begin().value(), 7);
}

TEST(Info, an_incomplete_file_is_warned_of) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        kzb_put_int("control", "incomplete", 0, store);  // presence alone counts
    });
    EXPECT_EQ(info_of(folder)["warnings"], json::parse(R"(["The specified kzb is incomplete."])"));
    EXPECT_THAT(run_kzb({"info", "m.kzb"}, folder.path()).err, HasSubstr("The specified kzb is incomplete."));
}

TEST(Info, a_file_without_applications_is_shown_all_the_same) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_int("anything", "n", 3, store); });
    const json info = info_of(folder);
    EXPECT_EQ(info["motor_type"], nullptr);
    EXPECT_EQ(info["applications"], json::array());
    EXPECT_EQ(category(info, "anything")["ints"]["n"], 3);
}

TEST(Info, a_number_that_json_does_not_know_is_null) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        kzb_put_double("anything", "x", std::numeric_limits<double>::infinity(), store);
    });
    EXPECT_EQ(category(info_of(folder), "anything")["doubles"]["x"], nullptr);
}

TEST(Info, text_names_the_axes_and_the_cyclic_ones) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        put_table(store, "extra", "t", {{0.0, 360.0}}, [](const auto& p) { return p[0]; });
        kzb_set_table_cyclic_flag("extra", "t", 1, 1, store);
    });
    EXPECT_THAT(run_kzb({"info", "m.kzb"}, folder.path()).out, HasSubstr("axis 1: 2 nodes, 0.0 to 360.0, cyclic"));
}

TEST(Info, no_escape_codes_where_stderr_is_no_terminal) {
    EXPECT_EQ(run_kzb({"info", "/none"}).err.find('\x1b'), std::string::npos);
}

}  // namespace
}  // namespace kzb::test
