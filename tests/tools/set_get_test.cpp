// kzb set and kzb get: values of single parameters.
#include "tools/edits.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class SetGet : public Edits {
  protected:
    SetGet() {
        write_model(folder / "m.kzb", [](KZB_STORE* store) {
            fill_constant_machine(store, {});
            kzb_put_double("c", "x", 1.0 / 3.0, store);
            kzb_put_int("c", "both", 1, store);
            kzb_put_string("c", "both", "one", store);
            kzb_put_int("a/b", "k/l", 7, store);
            kzb_put_int("c", "k=v", 8, store);
            // Shift_JIS of the three katakana U+30E2 U+30FC U+30BF
            kzb_put_string("c", "kana", "\x83\x82\x81\x5b\x83\x5e", store);
        });
    }
    const std::string kana = "\xe3\x83\xa2\xe3\x83\xbc\xe3\x82\xbf";
};

TEST_F(SetGet, get_prints_the_value_alone) {
    EXPECT_EQ(kzb({"get", "m.kzb", "control/number_of_poles"}).out, "4\n");
    EXPECT_EQ(kzb({"get", "m.kzb", "c/x"}).out, "0.3333333333333333\n");  // the shortest text of the double
    EXPECT_EQ(kzb({"get", "m.kzb", "parameter/RU"}).out, "0.5\n");
    EXPECT_EQ(kzb({"get", "m.kzb", "information/title"}).out, "constant machine\n");
    EXPECT_EQ(kzb({"get", "m.kzb", "c/kana"}).out, kana + "\n");
    EXPECT_EQ(kzb({"get", "m.kzb", "a/b/k/l"}).out, "7\n");
    EXPECT_EQ(kzb({"get", "m.kzb", "c/both", "--type", "string"}).out, "one\n");
}

TEST_F(SetGet, get_tells_name_type_and_value_as_json) {
    EXPECT_EQ(
        json::parse(kzb({"get", "m.kzb", "parameter/RU", "--json"}).out),
        json::parse(R"({"file": "m.kzb", "category": "parameter", "key": "RU", "type": "double", "value": 0.5})"));
    EXPECT_EQ(json::parse(kzb({"get", "m.kzb", "control/number_of_poles", "--json"}).out)["type"], "int");
    EXPECT_EQ(json::parse(kzb({"get", "m.kzb", "c/kana", "--json"}).out)["value"], kana);
}

TEST_F(SetGet, get_refuses_what_is_no_single_parameter) {
    refused({"get", "m.kzb", "dq_inductance/d_inductance"}, 2, "dq_inductance/d_inductance is a table");
    refused({"get", "m.kzb", "dq_inductance/d_inductance"}, 2, "kzb info --grid");
    refused({"get", "m.kzb", "control/poles"}, 2,
            "no parameter control/poles, expected one of motor_type, accuracy_type, number_of_poles");
    refused({"get", "m.kzb", "none/poles"}, 2, "no parameter none/poles, expected CATEGORY/KEY");
    refused({"get", "m.kzb", "RU"}, 2, "no parameter RU, expected CATEGORY/KEY");
    refused({"get", "m.kzb", ""}, 2, "expected CATEGORY/KEY");
    refused({"get", "m.kzb", "c/both"}, 2, "c/both is there as int and string, expected --type int or string");
    refused({"get", "m.kzb", "parameter/RU", "--type", "int"}, 2, "is there as double, expected --type double");
    refused({"get", "none.kzb", "c/x"}, 3, "none.kzb: cannot be opened");
}

TEST_F(SetGet, set_changes_the_named_values_and_nothing_else) {
    const std::string input = read_file(folder / "m.kzb");
    const json report = done({"set", "m.kzb", "control/number_of_poles=8", "parameter/RU=-2.5e-3",
                              "information/title=new = title", "c/k=v=9", "a/b/k/l=-1", "--out", "n.kzb"});
    EXPECT_EQ(report["changed"], json::parse(R"(["control/number_of_poles", "parameter/RU", "information/title",
                                                "c/k=v", "a/b/k/l"])"));
    EXPECT_EQ(report["added"], json::array());
    EXPECT_EQ(report["removed"], json::array());
    EXPECT_EQ(report["form"], "binary");
    EXPECT_EQ(read_file(folder / "m.kzb"), input);
    const OpenedStore store = opened(folder / "n.kzb");
    EXPECT_EQ(kzb_get_int("control", "number_of_poles", store.get()), 8);
    EXPECT_EQ(kzb_get_double("parameter", "RU", store.get()), -2.5e-3);
    EXPECT_STREQ(kzb_get_string("information", "title", store.get()), "new = title");
    EXPECT_EQ(kzb_get_int("c", "k=v", store.get()), 9);
    EXPECT_EQ(kzb_get_int("a/b", "k/l", store.get()), -1);
    EXPECT_EQ(kzb_get_double("c", "x", store.get()), 1.0 / 3.0);
    EXPECT_EQ(value_at(store, "dq_inductance", "d_inductance", {1, 1}), 2e-3);
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb", "n.kzb"));
}

TEST_F(SetGet, set_back_gives_the_same_file) {
    done({"convert", "m.kzb", "m.kzb", "--form", "binary"});
    const std::string first = read_file(folder / "m.kzb");
    done({"set", "m.kzb", "parameter/RU=2", "--out", "m.kzb"});
    EXPECT_NE(read_file(folder / "m.kzb"), first);
    done({"set", "m.kzb", "parameter/RU=0.5", "--out", "m.kzb"});
    EXPECT_EQ(read_file(folder / "m.kzb"), first);
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb"));
}

TEST_F(SetGet, a_new_parameter_takes_the_type_that_is_asked_for) {
    const json report = done({"set", "m.kzb", "c/y=3", "new/z=4", "--type", "double", "--out", "n.kzb"});
    EXPECT_EQ(report["added"], json::parse(R"(["c/y", "new/z"])"));
    done({"set", "n.kzb", "c/n=3", "--type", "int", "--out", "n.kzb"});
    done({"set", "n.kzb", "c/s=3", "--type", "string", "--out", "n.kzb"});
    const OpenedStore store = opened(folder / "n.kzb");
    EXPECT_EQ(kzb_get_double("c", "y", store.get()), 3.0);
    EXPECT_EQ(kzb_get_double("new", "z", store.get()), 4.0);
    EXPECT_EQ(kzb_get_int("c", "n", store.get()), 3);
    EXPECT_STREQ(kzb_get_string("c", "s", store.get()), "3");
}

TEST_F(SetGet, a_string_is_kept_in_shift_jis_and_shown_in_utf8) {
    done({"set", "m.kzb", "information/title=" + kana, "--out", "n.kzb"});
    EXPECT_STREQ(kzb_get_string("information", "title", opened(folder / "n.kzb").get()), "\x83\x82\x81\x5b\x83\x5e");
    EXPECT_EQ(kzb({"get", "n.kzb", "information/title"}).out, kana + "\n");
}

TEST_F(SetGet, the_form_of_the_model_stays_unless_another_is_asked_for) {
    done({"convert", "m.kzb", "a.kzb", "--form", "ascii"});
    EXPECT_EQ(done({"set", "a.kzb", "parameter/RU=2", "--out", "b.kzb"})["form"], "ascii");
    EXPECT_EQ(read_file(folder / "b.kzb").substr(0, 9), "$DORN-KZa");
    EXPECT_EQ(done({"set", "a.kzb", "parameter/RU=2", "--out", "b.kzb", "--form", "binary"})["form"], "binary");
    EXPECT_EQ(read_file(folder / "b.kzb").substr(0, 9), "$DORN-KZb");
}

TEST_F(SetGet, set_refuses_wrong_values_and_names) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"control/number_of_poles=4.5"}, "control/number_of_poles: \"4.5\" is no integer"},
        {{"control/number_of_poles=8.0"}, "is no integer"},
        {{"control/number_of_poles="}, "is no integer"},
        {{"control/number_of_poles=2147483648"}, "expected one from -2147483648 to 2147483647"},
        {{"parameter/RU=0,5"}, "parameter/RU: \"0,5\" is not a finite number"},
        {{"parameter/RU=inf"}, "is not a finite number"},
        {{"parameter/RU=nan"}, "is not a finite number"},
        {{"parameter/RU=1e999"}, "is not a finite number"},
        {{"parameter/RU"}, "\"parameter/RU\" has no value, expected CATEGORY/KEY=VALUE"},
        {{"parameter/R=1"}, "no parameter parameter/R, expected one of RU; --type int, double or string makes"},
        {{"none/R=1"}, "no parameter none/R"},
        {{"R=1", "--type", "int"}, "\"R\" is no name of a parameter"},
        {{"/R=1", "--type", "int"}, "\"/R\" is no name of a parameter"},
        {{"c/=1", "--type", "int"}, "\"c/\" is no name of a parameter"},
        {{"=1", "--type", "int"}, "is no name of a parameter"},
        {{"parameter/RU=1", "--type", "int"}, "parameter/RU is there as double, expected --type double"},
        {{"c/both=1"}, "c/both is there as int and string"},
        {{"dq_inductance/d_inductance=1"}, "is a table"},
        {{"parameter/RU=1", "parameter/RU=2"}, "parameter/RU twice"},
        {{"c/" + std::string(256, 'k') + "=1", "--type", "int"}, "expected names of less than 256 bytes"},
    };
    for (const auto& [more, fault] : cases) {
        std::vector<std::string> arguments = {"set", "m.kzb"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.insert(arguments.end(), {"--out", "n.kzb"});
        refused(arguments, 2, fault);
    }
    refused({"set", "m.kzb", "parameter/RU=1"}, 2, "--out");
    refused({"set", "m.kzb", "--out", "n.kzb"}, 2, "assignments");
    refused({"set", "m.kzb", "parameter/RU=1", "--type", "table", "--out", "n.kzb"}, 2, "table");
    refused({"set", "none.kzb", "parameter/RU=1", "--out", "n.kzb"}, 3, "none.kzb: cannot be opened");
    refused({"set", "m.kzb", "parameter/RU=1", "--out", "none/n.kzb"}, 1, "none/n.kzb: cannot write");
}

TEST_F(SetGet, a_value_that_the_form_cannot_hold_is_refused_and_the_old_output_stays) {
    done({"convert", "m.kzb", "a.kzb", "--form", "ascii"});
    refused({"set", "a.kzb", "information/title=half \" inch", "--out", "a.kzb"}, 1,
            "a.kzb: the ascii form cannot hold a.kzb: string information/title would read back changed");
    done({"set", "a.kzb", "information/title=half \" inch", "--out", "n.kzb", "--form", "binary"});
    EXPECT_EQ(kzb({"get", "n.kzb", "information/title"}).out, "half \" inch\n");
    // A name with the separator of the form.
    refused({"set", "a.kzb", "c,#/k=1", "--type", "int", "--out", "a.kzb"}, 1, "the ascii form cannot hold");
}

TEST_F(SetGet, a_damaged_model_is_not_edited) {
    const std::string whole = read_file(folder / "m.kzb");
    write_file(folder / "m.kzb", whole.substr(0, whole.size() - 40));
    refused({"set", "m.kzb", "parameter/RU=1", "--out", "m.kzb"}, 3, "m.kzb: ");
}

TEST_F(SetGet, the_text_report_names_what_changed) {
    const Finished finished = kzb({"set", "m.kzb", "parameter/RU=1", "--out", "n.kzb"});
    EXPECT_EQ(finished.err,
              "kzb: warning: n.kzb: written as Shift_JIS, which a reader takes for UTF-8: string c/kana\n");
    EXPECT_EQ(finished.out, "n.kzb: binary form, 0 added, 1 changed, 0 removed\n  changed  parameter/RU\n");
}

}  // namespace
}  // namespace kzb::test
