// kzb convert: what a copy holds, what its report tells, and that its output appears whole or not at all.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tools/edits.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string ascii_head = "$DORN-KZa,#\n";
const std::string binary_head = "$DORN-KZb,#\n";

json convert(const Folder& folder, const std::string& from, const std::string& to, const std::string& form) {
    const Finished finished = run_kzb({"convert", from, to, "--form", form, "--json"}, folder.path());
    EXPECT_EQ(finished.code, 0) << finished.err;
    return json::parse(finished.out);
}

TEST(Convert, ascii_and_back_keeps_values_of_eleven_digits) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        put_table(store, "any;0;", "t", {{0.0, 0.5}, {1.0, 2.0, 4.0}}, [](const auto& p) { return p[0] * 3.0 - p[1]; });
        kzb_set_table_cyclic_flag("any;0;", "t", 2, 1, store);
    });
    EXPECT_EQ(convert(folder, "m.kzb", "a.kzb", "ascii")["values_changed"], 0);
    EXPECT_EQ(read_file(folder / "a.kzb").substr(0, 12), ascii_head);
    convert(folder, "a.kzb", "b.kzb", "binary");
    const OpenedStore store = opened(folder / "b.kzb");
    const int at[] = {1, 2};
    EXPECT_EQ(kzb_get_table_value("any;0;", "t", at, store.get()), 0.5 * 3.0 - 4.0);
    EXPECT_EQ(kzb_get_table_axis_value("any;0;", "t", 2, 2, store.get()), 4.0);
    EXPECT_EQ(kzb_get_table_cyclic_flag("any;0;", "t", 2, store.get()), 1);
    EXPECT_EQ(kzb_get_double("parameter", "RU", store.get()), 0.5);
}

TEST(Convert, a_binary_copy_of_a_binary_file_is_exact) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_double("c", "x", 1.0 / 3.0, store); });
    const json report = convert(folder, "m.kzb", "b.kzb", "binary");
    EXPECT_EQ(report["values_changed"], 0);
    const OpenedStore store = opened(folder / "b.kzb");
    EXPECT_EQ(kzb_get_double("c", "x", store.get()), 1.0 / 3.0);
}

TEST(Convert, ascii_report_counts_the_values_that_lose_digits) {
    const Folder folder;
    // 1/3 and 2/3 have no end in decimal; 0.25 and the two nodes are exact in eleven digits.
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        kzb_put_double("c", "x", 1.0 / 3.0, store);
        put_table(store, "c", "t", {{0.0, 1.0}}, [](const auto& p) { return p[0] == 0.0 ? 2.0 / 3.0 : 0.25; });
    });
    const json report = convert(folder, "m.kzb", "a.kzb", "ascii");
    EXPECT_EQ(report["values"], 5);
    EXPECT_EQ(report["values_changed"], 2);
    // Eleven digits: half a unit of the eleventh, at most 0.5e-10 of the leading digit 3.
    EXPECT_LE(report["largest_relative_change"].get<double>(), 0.5e-10);
    EXPECT_GT(report["largest_relative_change"].get<double>(), 0.0);
    const Finished text = run_kzb({"convert", "m.kzb", "a.kzb", "--form", "ascii"}, folder.path());
    EXPECT_THAT(text.err, HasSubstr("2 of 5 values lose digits"));
}

TEST(Convert, input_and_output_may_be_the_same_file) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    convert(folder, "m.kzb", "m.kzb", "ascii");
    EXPECT_EQ(read_file(folder / "m.kzb").substr(0, 12), ascii_head);
    convert(folder, "m.kzb", "m.kzb", "binary");
    EXPECT_EQ(read_file(folder / "m.kzb").substr(0, 12), binary_head);
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb"));
}

TEST(Convert, a_string_with_a_quote_is_reported_for_the_ascii_form) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_string("c", "s", "half \" inch", store); });
    const Finished finished = run_kzb({"convert", "m.kzb", "a.kzb", "--form", "ascii", "--json"}, folder.path());
    EXPECT_EQ(finished.code, 0) << finished.err;
    const json report = json::parse(finished.out);
    EXPECT_EQ(report["strings_with_quotes"], json::parse(R"(["c/s"])"));
    EXPECT_EQ(report["strings_changed"], json::parse(R"(["c/s"])"));
    EXPECT_THAT(finished.err, HasSubstr("string c/s holds a double quote"));
}

TEST(Convert, strings_that_are_written_as_shift_jis_are_reported) {
    const Folder folder;
    write_model(folder / "m.kzb",
                [](KZB_STORE* store) { kzb_put_string("c", "s", "\xe3\x83\xa2", store); });  // U+30E2 in UTF-8
    EXPECT_EQ(convert(folder, "m.kzb", "b.kzb", "binary")["strings_in_shift_jis"], json::parse(R"(["c/s"])"));
    // The copy holds the two bytes 0x83 0x82 where the original held three.
    EXPECT_THAT(read_file(folder / "b.kzb"), HasSubstr(std::string("\x02\0\0\0\x83\x82,#", 8)));
}

TEST(Convert, an_axis_without_nodes_is_refused_for_the_binary_form_and_the_old_output_stays) {
    const Folder folder;
    // The second axis has the count 0 and no nodes.
    write_file(folder / "a.kzb", ascii_head +
                                     "*c,0,0,0,1,#\nt,table,1,2,0,\n         2,\n    1.0000000000e+00    "
                                     "2.0000000000e+00\n         0,\n,#\n$end_of_kzb_file,#\n");
    write_file(folder / "b.kzb", "old");
    const Finished finished = run_kzb({"convert", "a.kzb", "b.kzb", "--form", "binary"}, folder.path());
    EXPECT_EQ(finished.code, 1);
    EXPECT_THAT(finished.err, HasSubstr("c/t: axis 1 has no nodes"));
    EXPECT_EQ(read_file(folder / "b.kzb"), "old");
    EXPECT_THAT(folder.names(), ElementsAre("a.kzb", "b.kzb"));
}

TEST(Convert, a_truncated_file_is_not_copied) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    const std::string whole = read_file(folder / "m.kzb");
    write_file(folder / "m.kzb", whole.substr(0, whole.size() - 40));
    write_file(folder / "b.kzb", "old");
    const Finished finished = run_kzb({"convert", "m.kzb", "b.kzb", "--form", "binary"}, folder.path());
    EXPECT_EQ(finished.code, 3);
    EXPECT_EQ(read_file(folder / "b.kzb"), "old");
    EXPECT_THAT(folder.names(), ElementsAre("b.kzb", "m.kzb"));
}

TEST(Convert, an_entry_fault_in_an_ascii_file_is_not_copied_as_if_nothing_were_lost) {
    const Folder folder;
    write_file(folder / "a.kzb", ascii_head + "*c,1,0,0,0,#\nn,integer,5,#\n$end_of_kzb_file,#\n");
    const Finished finished = run_kzb({"convert", "a.kzb", "b.kzb", "--form", "binary"}, folder.path());
    EXPECT_EQ(finished.code, 3);
    EXPECT_THAT(finished.err, HasSubstr("damaged"));
    EXPECT_EQ(line_count(finished.err), 1) << finished.err;
    EXPECT_THAT(folder.names(), ElementsAre("a.kzb"));
}

TEST(Convert, an_output_that_cannot_be_written_is_exit_code_1) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    for (const std::string place : {".", "none/b.kzb", ""}) {
        const Finished finished = run_kzb({"convert", "m.kzb", place, "--form", "binary"}, folder.path());
        EXPECT_EQ(finished.code, 1) << place << finished.err;
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
    }
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb"));
}

TEST(Convert, the_reading_switch_of_the_environment_does_not_reach_the_copy) {
    const Folder folder;
    write_constant_machine(folder / "m.kzb");
    convert(folder, "m.kzb", "a.kzb", "ascii");
    const Finished finished =
        run_kzb({"convert", "a.kzb", "b.kzb", "--form", "binary"}, folder.path(), {{"KZB_READING_ASCII", "1"}});
    EXPECT_EQ(finished.code, 0) << finished.err;
    EXPECT_EQ(read_file(folder / "b.kzb").substr(0, 12), binary_head);
}

}  // namespace
}  // namespace kzb::test
