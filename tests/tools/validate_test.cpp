// kzb validate: clean models, the forms of its answer, and files that cannot be read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "store/store.h"
#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

struct Clean {
    const char* name;
    void (*fill)(KZB_STORE*);
};

class CleanModel : public testing::TestWithParam<Clean> {};

TEST_P(CleanModel, gives_no_finding_in_either_form) {
    const Folder folder;
    write_model(folder / "m.kzb", GetParam().fill);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    ASSERT_EQ(run_kzb({"convert", "m.kzb", "m.kzb", "--form", "ascii"}, folder.path()).code, 0);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
}

INSTANTIATE_TEST_SUITE_P(Machines, CleanModel,
                         testing::Values(Clean{"LdLq", [](KZB_STORE* store) { fill_constant_machine(store, {}); }},
                                         Clean{"SimpleHarmonic", fill_simple}, Clean{"Harmonic", fill_harmonic},
                                         Clean{"FluxIntegral", fill_flux_integral},
                                         Clean{"WoundField", fill_wound_field}, Clean{"Induction", fill_induction}),
                         [](const auto& tested) { return std::string(tested.param.name); });

TEST(Validate, text_of_a_clean_model_is_its_summary) {
    const Folder folder;
    write_model(folder / "m.kzb", fill_harmonic);
    const Finished finished = run_kzb({"validate", "m.kzb"}, folder.path());
    EXPECT_EQ(finished.code, 0);
    EXPECT_EQ(finished.out, "m.kzb: nothing found\n");
    EXPECT_EQ(finished.err, "");
}

TEST(Validate, text_has_one_line_for_each_finding_and_a_summary) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        kzb_put_double("parameter", "RU", -1.0, store);
        kzb_put_int("control", "number_of_poles", 5, store);
        delete_table(*store, "harmonic_torque", "torque_ibeta");
    });
    const Finished finished = run_kzb({"validate", "m.kzb"}, folder.path());
    EXPECT_EQ(finished.code, 1);
    EXPECT_EQ(finished.err, "");
    EXPECT_THAT(finished.out,
                HasSubstr("warning: poles: control/number_of_poles: 5 is odd, expected an even number\n"));
    EXPECT_THAT(finished.out, HasSubstr("error: resistance: parameter/RU: -1, expected 0 or more\n"));
    EXPECT_THAT(finished.out, HasSubstr("error: table-absent: harmonic_torque/torque_ibeta: absent"));
    const int warnings = line_count(finished.out) - 3;  // of the lines, two errors and the summary are none
    EXPECT_THAT(finished.out, EndsWith("m.kzb: 2 errors, " + std::to_string(warnings) + " warnings\n"));
}

TEST(Validate, json_names_every_field_of_a_finding) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        kzb_put_double("parameter", "RU", -1.0, store);
    });
    EXPECT_EQ(findings_of(folder), nlohmann::json::parse(R"([{"severity": "error", "check": "resistance",
        "category": "parameter", "key": "RU", "place": "", "message": "-1, expected 0 or more"}])"));
}

TEST(Validate, a_file_that_cannot_be_read_ends_with_3) {
    const Folder folder;
    write_file(folder / "text.kzb", "no model\n");
    write_file(folder / "short.kzb", "$DORN-KZb,#\n*");
    for (const char* name : {"none.kzb", "text.kzb", "short.kzb", "."}) {
        const Finished finished = run_kzb({"validate", name, "--json"}, folder.path());
        EXPECT_EQ(finished.code, 3) << name;
        EXPECT_EQ(finished.out, "") << name;
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
    }
    EXPECT_EQ(run_kzb({"validate"}, folder.path()).code, 2);
}

TEST(Validate, names_that_are_no_text_leave_the_json_valid) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        kzb_put_double("\xff", "\xe3\x83", std::nan(""), store);
    });
    EXPECT_EQ(only_finding(folder)["check"], "parameter-not-finite");
}

// Nodes that are no numbers, a period of nothing, huge numbers: each finding is bounded, and nothing hangs.
TEST(Validate, hostile_tables_end_in_findings) {
    const Folder folder;
    for (const double node : std::vector<double>{std::nan(""), INFINITY, -INFINITY, 0.0, 1e308, 5e-324}) {
        write_model(folder / "m.kzb", [node](KZB_STORE* store) {
            fill_harmonic(store);
            for (const char* category : {"current_flux", "harmonic_torque", "harmonic_inductance"}) {
                const char* const key = category[0] == 'c'   ? "flux"
                                        : category[9] == 't' ? "torque_ibeta"
                                                             : "inductance";
                for (int axis = 1; axis <= 3; ++axis) {
                    kzb_set_table_axis_value(category, key, axis, 1, node, store);
                }
            }
        });
        const Finished finished = run_kzb_for({"validate", "m.kzb"}, folder.path(), 20.0);
        EXPECT_EQ(finished.code, 1) << node;
        EXPECT_GT(findings_of(folder).size(), 0u) << node;
    }
}

// 4000 axes of one node each, none of which stands in the file.
TEST(Validate, a_table_of_very_many_axes_gives_a_bounded_answer) {
    const Folder folder;
    std::string head = "t,table,4000,";
    for (int i = 0; i < 8000; ++i) {
        head += i < 4000 ? "1," : "0,";
    }
    std::string body = "         1,\n   1.0000000000e+00\n";
    for (int i = 0; i < 4000; ++i) {
        body += "         0,\n";
    }
    write_file(folder / "m.kzb", "$DORN-KZa,#\n*extra,0,0,0,1,#\n" + head + "\n" + body + ",#\n$end_of_kzb_file,#\n");
    const Finished finished = run_kzb_for({"validate", "m.kzb"}, folder.path(), 20.0);
    EXPECT_EQ(finished.code, 1);
    EXPECT_LT(line_count(run_kzb({"validate", "m.kzb"}, folder.path()).out), 100);
}

TEST(Validate, sizes_that_no_file_can_hold_end_in_an_exit_code) {
    const Folder folder;
    write_file(folder / "m.kzb",
               "$DORN-KZa,#\n*extra,0,0,0,1,#\nt,table,3,2000000000,2000000000,2,1,1,1,\n         0,\n         0,\n"
               "         0,\n         0,\n,#\n$end_of_kzb_file,#\n");
    const Finished finished = run_kzb_for({"validate", "m.kzb"}, folder.path(), 20.0);
    EXPECT_EQ(finished.signal, 0);
    EXPECT_THAT(finished.code, testing::AnyOf(1, 3));
}

}  // namespace
}  // namespace kzb::test
