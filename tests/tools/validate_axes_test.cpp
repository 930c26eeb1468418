// kzb validate: axes that are missing, fall, are no numbers, or are cyclic without closing.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;

// A clean machine with one table more, of five by two nodes, the value the number of the node of axis 1.
void write_with_extra(const Folder& folder, const std::vector<double>& nodes,
                      const std::function<void(KZB_STORE*)>& change = {}) {
    write_model(folder / "m.kzb", [&](KZB_STORE* store) {
        fill_harmonic(store);
        put_table(store, "extra", "t", {nodes, {1.0, 2.0}}, [](const auto&) { return 7.0; });
        if (change) {
            change(store);
        }
    });
}

TEST(ValidateAxes, the_first_node_that_does_not_rise_is_told) {
    const Folder folder;
    write_with_extra(folder, {0.0, 1.0, 2.0, 1.5, 1.5});
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error axis-order extra/t axis 1, node 3");
    EXPECT_EQ(finding["message"], "1.5 is not above 2 of the node before, expected nodes that rise (2 of 4 do not)");
}

TEST(ValidateAxes, equal_nodes_do_not_rise) {
    const Folder folder;
    write_with_extra(folder, {0.0, 1.0, 1.0, 2.0, 3.0});
    EXPECT_EQ(told(only_finding(folder)), "error axis-order extra/t axis 1, node 2");
}

TEST(ValidateAxes, nodes_that_are_no_numbers_are_counted) {
    const Folder folder;
    write_with_extra(folder, {0.0, std::nan(""), 2.0, INFINITY, 4.0});
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error axis-not-finite extra/t axis 1, node 1");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("2 of 5 nodes"));
}

// The ascii form keeps an axis without nodes as a block of count 0.
TEST(ValidateAxes, an_axis_without_nodes_is_missing) {
    const Folder folder;
    write_file(folder / "m.kzb",
               "$DORN-KZa,#\n*control,1,0,0,0,#\nmotor_type,int,10008,#\n*parameter,0,0,0,0,#\n*extra,0,0,0,1,#\n"
               "t,table,2,2,1,0,0,\n         2,\n   1.0000000000e+00   1.0000000000e+00\n         2,\n"
               "   1.0000000000e+00   2.0000000000e+00\n         0,\n,#\n$end_of_kzb_file,#\n");
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "error axis-missing extra/t axis 2");
    EXPECT_EQ(finding["message"], "0 nodes, expected 1");
}

TEST(ValidateAxes, ends_of_a_cyclic_axis_that_differ_are_told_with_the_worst_pair) {
    const Folder folder;
    write_with_extra(folder, {0.0, 90.0, 180.0, 270.0, 360.0}, [](KZB_STORE* store) {
        kzb_set_table_cyclic_flag("extra", "t", 1, 1, store);
        const int first[] = {0, 0};
        const int last[] = {4, 1};
        kzb_set_table_value("extra", "t", first, 6.9, store);  // 7.0 at the last node
        kzb_set_table_value("extra", "t", last, 7.5, store);   // 7.0 at the first
    });
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning cyclic-ends extra/t axis 1, value [0, 1]");
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("7 at the first node of a cyclic axis, 7.5"));
    EXPECT_THAT(finding["message"].get<std::string>(), HasSubstr("2 of 2 pairs differ"));
}

// Tolerance 0.1 % of the largest value, 7: 0.007.
TEST(ValidateAxes, ends_within_the_tolerance_are_the_same) {
    const auto write = [](const Folder& folder, double last_value) {
        write_with_extra(folder, {0.0, 90.0, 180.0, 270.0, 360.0}, [last_value](KZB_STORE* store) {
            kzb_set_table_cyclic_flag("extra", "t", 1, 1, store);
            const int last[] = {4, 0};
            kzb_set_table_value("extra", "t", last, last_value, store);
        });
    };
    const Folder folder;
    write(folder, 6.9931);
    EXPECT_EQ(findings_of(folder).size(), 0u);
    write(folder, 6.9929);
    EXPECT_EQ(told(only_finding(folder)), "warning cyclic-ends extra/t axis 1, value [0, 0]");
}

// The q component of a flux linkage along d is zero but for rounding; a thousandth of it is no measure.
TEST(ValidateAxes, ends_that_differ_by_rounding_of_another_component_are_in_order) {
    const auto write = [](const Folder& folder, double of_component) {
        write_with_extra(folder, {0.0, 1.0, 2.0, 3.0, 4.0}, [of_component](KZB_STORE* store) {
            put_table(store, "extra", "component", {{0.0, 90.0, 180.0}},
                      [of_component](const auto& p) { return p[0] == 180.0 ? of_component : 0.0; });
            kzb_set_table_cyclic_flag("extra", "component", 1, 1, store);
        });
    };
    const Folder folder;
    write(folder, 2e-16);  // beside a table of 7
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write(folder, 2e-8);
    EXPECT_EQ(told(only_finding(folder)), "warning cyclic-ends extra/component axis 1, value [0]");
}

TEST(ValidateAxes, a_cyclic_axis_of_one_node_is_in_order) {
    const Folder folder;
    write_with_extra(folder, {5.0}, [](KZB_STORE* store) { kzb_set_table_cyclic_flag("extra", "t", 1, 1, store); });
    EXPECT_EQ(findings_of(folder).size(), 0u);
}

}  // namespace
}  // namespace kzb::test
