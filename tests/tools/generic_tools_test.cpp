// kzb info, export-info and validate with generic models.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "kzb/command.h"
#include "store/store.h"
#include "tools/models.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::Contains;
using testing::HasSubstr;

// A source, a resistor, a coil over its current and earth, written through the calls of the store.
void fill_circuit(KZB_STORE* store) {
    kzb_put_int("control", "motor_type", 10008, store);
    kzb_put_int("parameter", "number_of_coils", 1, store);
    const auto put = [&](const char* category, const std::vector<std::pair<const char*, int>>& values) {
        for (const auto& [key, value] : values) {
            kzb_put_int(category, key, value, store);
        }
    };
    put("terminal_list;0;terminal;0;", {{"id", 1}, {"type", 1}});
    kzb_put_string("terminal_list;0;terminal;0;", "name", "supply", store);
    put("terminal_list;0;terminal;1;", {{"id", 2}, {"type", 0}});
    put("terminal_list;0;terminal;2;", {{"id", 3}, {"type", 2}});
    put("input_port_list;0;source;0;", {{"id", 1}, {"terminal_id", 1}});
    put("element_type_list;0;element_type;0;", {{"id", 1}, {"type", 1}, {"group_id", 1}});
    kzb_put_string("element_type_list;0;element_type;0;", "name", "winding", store);
    kzb_put_double("element_type_list;0;element_type;0;", "resistance", 0.5, store);
    kzb_put_double("element_type_list;0;element_type;0;", "turns", 1.0, store);
    put("element_type_list;0;element_type;0;interacted_coil;0;", {{"id", 1}});
    put("element_type_list;0;element_type;1;", {{"id", 2}, {"type", -1}});
    kzb_put_double("element_type_list;0;element_type;1;", "resistance", 3.0, store);
    put("element_list;0;element;0;",
        {{"id", 7}, {"1st_terminal_id", 2}, {"2nd_terminal_id", 3}, {"element_type_id", 1}});
    put("element_list;0;element;1;",
        {{"id", 8}, {"1st_terminal_id", 1}, {"2nd_terminal_id", 2}, {"element_type_id", 2}});
    put("output_port_list;0;coil_fem;0;", {{"id", 1}, {"component_id", 7}});
    put("table_axis_list;0;axis;0;", {{"id", 1}, {"type", 1}, {"reference_id", 1}});
    put("flux_list;0;phase_list;0;phase;0;", {{"index", 0}, {"reference_id", 1}});
    put_table(store, "flux_list;0;flux_table;0;", "table", {{-1.0, 0.0, 1.0}, {0.0}},
              [](const std::vector<double>& x) { return 0.1 * x[0]; });
}

class GenericTools : public testing::Test {
  protected:
    // The findings of a circuit with something changed.
    json findings(const std::function<void(KZB_STORE*)>& change = {}) {
        write_model(folder / "m.kzb", [&](KZB_STORE* store) {
            fill_circuit(store);
            if (change) {
                change(store);
            }
        });
        const Finished finished = run_kzb({"validate", "m.kzb", "--json"}, folder.path());
        return json::parse(finished.out);
    }
    static std::vector<std::string> checks(const json& findings) {
        std::vector<std::string> names;
        for (const json& finding : findings) {
            names.push_back(finding["check"]);
        }
        return names;
    }
    static std::string all_text(const json& findings) { return findings.dump(); }
    Folder folder;
};

TEST_F(GenericTools, sound_circuit_has_no_finding) {
    EXPECT_TRUE(findings().empty()) << findings().dump();
}

TEST_F(GenericTools, validate_names_why_the_calculator_refuses) {
    const json unknown =
        findings([](KZB_STORE* store) { kzb_put_int("element_list;0;element;1;", "1st_terminal_id", 9, store); });
    EXPECT_THAT(checks(unknown), Contains("circuit"));
    EXPECT_THAT(all_text(unknown), HasSubstr("element 8: 1st_terminal_id 9 names no terminal"));
    const json type =
        findings([](KZB_STORE* store) { kzb_put_int("element_list;0;element;0;", "element_type_id", 5, store); });
    EXPECT_THAT(all_text(type), HasSubstr("element 7: element_type_id 5 names no element type"));
    const json port = findings([](KZB_STORE* store) { kzb_put_int("output_port_list;0;coil_fem;0;", "id", 2, store); });
    EXPECT_THAT(all_text(port), HasSubstr("output_port_list;coil_fem: port id 2, expected 1 to 1"));
    const json axis = findings([](KZB_STORE* store) { kzb_put_int("table_axis_list;0;axis;0;", "id", 3, store); });
    EXPECT_THAT(all_text(axis), HasSubstr("table axis: id 3, expected 1 to 1"));
}

TEST_F(GenericTools, validate_tells_of_what_would_not_work_as_meant) {
    EXPECT_THAT(checks(findings([](KZB_STORE* store) {
                    kzb_put_int("terminal_list;0;terminal;0;", "type", 0, store);
                    kzb_put_int("terminal_list;0;terminal;2;", "type", 0, store);
                })),
                Contains("base-potential"));
    EXPECT_THAT(checks(findings([](KZB_STORE* store) {
                    kzb_put_int("input_port_list;0;source;1;", "id", 2, store);
                    kzb_put_int("input_port_list;0;source;1;", "terminal_id", 77, store);
                })),
                Contains("source-ports"));
    EXPECT_THAT(checks(findings([](KZB_STORE* store) { delete_table(*store, "flux_list;0;flux_table;0;", "table"); })),
                Contains("table-absent"));
    EXPECT_THAT(checks(findings([](KZB_STORE* store) {
                    kzb_put_int("table_axis_list;0;axis;0;", "type", 0, store);
                    kzb_put_string("table_axis_list;0;axis;0;", "definition", "2 * (", store);
                })),
                Contains("expression"));
    EXPECT_THAT(checks(findings([](KZB_STORE* store) {
                    kzb_put_int("element_type_list;0;element_type;0;", "group_id", 0, store);
                    kzb_put_int("flux_list;0;phase_list;0;phase;0;", "reference_id", 0, store);
                })),
                Contains("coil-group"));
}

TEST_F(GenericTools, info_shows_the_circuit_as_a_netlist) {
    write_model(folder / "m.kzb", fill_circuit);
    const Finished text = run_kzb({"info", "m.kzb"}, folder.path());
    EXPECT_EQ(text.code, 0);
    EXPECT_THAT(text.out, HasSubstr("  W7 2 3 0.5 Ohm \"winding\"\n  R8 1 2 3.0 Ohm\n"));
    EXPECT_THAT(text.out, HasSubstr("  1 source port 1 \"supply\"\n  2 node\n  3 ground\n"));
    const json circuit = json::parse(run_kzb({"info", "m.kzb", "--json"}, folder.path()).out)["circuit"];
    EXPECT_EQ(circuit["elements"][0]["from"], 2);
    EXPECT_EQ(circuit["elements"][1]["value"], 3.0);
    EXPECT_EQ(circuit["terminals"][0]["port"], 1);
    EXPECT_TRUE(circuit["faults"].empty());
}

TEST_F(GenericTools, export_info_writes_the_document_of_the_library) {
    write_model(folder / "m.kzb", fill_circuit);
    const Finished finished = run_kzb({"export-info", "m.kzb", "m.xml"}, folder.path());
    EXPECT_EQ(finished.code, 0) << finished.err;
    const std::string document = read_file(folder / "m.xml");
    EXPECT_THAT(document, HasSubstr("<GenericModelInfo>\n\t<filename><![CDATA[m.kzb]]></filename>"));
    EXPECT_THAT(document, HasSubstr("<parameter type=\"total_input_ports\">2</parameter>"));
    EXPECT_THAT(document, HasSubstr("<entry type=\"FEMCoil_res\">"));
    EXPECT_THAT(document, HasSubstr("<![CDATA[winding]]>"));

    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    const std::string model = folder / "m.kzb";
    const std::string path = folder / "library.xml";
    kzb_reader(model.c_str(), store);
    EXPECT_EQ(kzb_export_information(store, path.c_str()), 0);
    kzb_finish(store);
    std::string expected = read_file(path);
    const std::string name = "<![CDATA[" + model + "]]>";
    ASSERT_NE(expected.find(name), std::string::npos) << expected;
    expected.replace(expected.find(name), name.size(), "<![CDATA[m.kzb]]>");
    EXPECT_EQ(document, expected);
}

TEST_F(GenericTools, export_info_refuses_other_models_and_leaves_the_output_as_it_is) {
    write_constant_machine(folder / "p.kzb");
    write_file(folder / "m.xml", "old");
    const Finished pmsm = run_kzb({"export-info", "p.kzb", "m.xml"}, folder.path());
    EXPECT_EQ(pmsm.code, tool::exit_file);
    EXPECT_THAT(pmsm.err, HasSubstr("p.kzb: motor type 10000, expected a generic model (10008)"));
    EXPECT_EQ(read_file(folder / "m.xml"), "old");
    write_model(folder / "q.kzb", [](KZB_STORE* store) { kzb_put_int("control", "motor_type", 10008, store); });
    EXPECT_THAT(run_kzb({"export-info", "q.kzb", "m.xml"}, folder.path()).err, HasSubstr("no category \"parameter\""));
    write_model(folder / "m.kzb", fill_circuit);
    EXPECT_EQ(run_kzb({"export-info", "m.kzb", "m.kzb"}, folder.path()).code, tool::exit_usage);
    EXPECT_EQ(run_kzb({"export-info", "none.kzb", "m.xml"}, folder.path()).code, tool::exit_file);
    EXPECT_NE(run_kzb({"export-info", "m.kzb", "no/where.xml"}, folder.path()).code, 0);
}

}  // namespace
}  // namespace kzb::test
