// kzb validate: what the file itself shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>

#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;

const std::string generic = "*control,1,0,0,0,#\nmotor_type,int,10008,#\n*parameter,0,0,0,0,#\n";

std::string ascii_file(const std::string& categories) {
    return "$DORN-KZa,#\n" + categories + "$end_of_kzb_file,#\n";
}

TEST(ValidateFile, a_small_generic_file_is_clean) {
    const Folder folder;
    write_file(folder / "m.kzb", ascii_file(generic));
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
}

TEST(ValidateFile, a_key_that_stands_twice_is_told_once) {
    const Folder folder;
    write_file(folder / "m.kzb", ascii_file(generic + "*extra,2,0,2,0,#\nn,int,1,#\nn,int,2,#\ns,string,3,\"a,b\",#\n"
                                                      "other,string,1,\"x\",#\n*extra,1,0,0,0,#\nn,int,3,#\n"));
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning duplicate-key extra/n");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("3 times as int"));
}

// The bytes of a binary file written out: a store holds no name twice.
TEST(ValidateFile, a_key_that_stands_twice_in_the_binary_form_is_told) {
    std::string bytes = "$DORN-KZb,#\n";
    const auto add_word = [&](std::uint32_t value) { bytes.append(reinterpret_cast<const char*>(&value), 4); };
    const auto add_name = [&](const std::string& text) {
        add_word(static_cast<std::uint32_t>(text.size()));
        bytes.append(text);
    };
    const auto add_category = [&](const std::string& category, std::uint32_t ints) {
        bytes.append("*");
        add_name(category);
        for (const std::uint32_t count : {ints, 0U, 0U, 0U}) {
            add_word(count);
        }
        bytes.append(",#");
    };
    add_category("control", 2);
    for (const std::uint32_t type : {10000U, 10008U}) {
        add_name("motor_type");
        add_word(0);  // an int
        add_word(type);
        bytes.append(",#");
    }
    add_category("parameter", 0);
    bytes.append("$end_of_kzb_file,#\n");
    const Folder folder;
    write_file(folder / "m.kzb", bytes);
    EXPECT_EQ(told(only_finding(folder)), "warning duplicate-key control/motor_type");
}

TEST(ValidateFile, a_key_of_two_kinds_is_told) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        kzb_put_double("control", "number_of_poles", 4.0, store);
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning duplicate-key control/number_of_poles");
    EXPECT_EQ(finding["message"], "stands as int and as double, expected one kind");
}

// A table whose values were not loaded when the file was written: one axis, one row, the value 0, no node.
TEST(ValidateFile, a_placeholder_written_as_a_body_is_told_in_the_ascii_form) {
    const Folder folder;
    write_file(folder / "m.kzb", ascii_file(generic + "*extra,0,0,0,1,#\nt,table,1,1,0,\n         1,\n"
                                                      "   0.0000000000e+00\n         0,\n,#\n"));
    EXPECT_EQ(told(only_finding(folder)), "error placeholder extra/t");
}

// The binary form counts a node that is not there: everything behind it is misread.
TEST(ValidateFile, a_placeholder_in_the_binary_form_is_named) {
    const Folder folder;
    write_model(folder / "good.kzb", fill_harmonic);
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    ASSERT_EQ(kzb_reader((folder / "good.kzb").c_str(), store), 0);
    kzb_writer((folder / "m.kzb").c_str(), store);  // no table was loaded
    kzb_finish(store);
    const Finished finished = run_kzb({"validate", "m.kzb", "--json"}, folder.path());
    if (finished.code == 3) {
        EXPECT_THAT(finished.err, HasSubstr("table current_flux/flux, harmonic_inductance/inductance, "
                                            "harmonic_torque/torque_ibeta holds one value 0 and no node"));
    } else {
        EXPECT_THAT(finished.out, HasSubstr("\"placeholder\""));
    }
}

TEST(ValidateFile, a_table_of_one_value_is_no_placeholder) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        put_table(store, "extra", "t", {{0.0}}, [](const auto&) { return 0.0; });
    });
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
}

TEST(ValidateFile, an_incomplete_file_is_told) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        kzb_put_int("control", "incomplete", 0, store);
    });
    EXPECT_EQ(told(only_finding(folder)), "warning incomplete control/incomplete");
}

// The mark behind the value of the last entry is another.
TEST(ValidateFile, a_broken_entry_is_told) {
    const Folder folder;
    write_file(folder / "m.kzb", ascii_file(generic + "*extra,1,0,0,0,#\nn,int,1,!\n"));
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error damage /");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("this file is broken"));
}

}  // namespace
}  // namespace kzb::test
