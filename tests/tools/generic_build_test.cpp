// kzb build generic: what a description becomes in the file, and every way in which one is refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <numbers>

#include "circuit/generic/calc_eq_generic.h"
#include "fmt/format.h"
#include "kzb/build_generic.h"
#include "kzb/command.h"
#include "store/record_list.h"
#include "tools/edits.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

const std::string network = R"([[terminal]]
name = "supply"
kind = "source"
[[terminal]]
name = "mid"
[[terminal]]
name = "earth"
kind = "ground"
[[resistor]]
name = "R"
from = "supply"
to = "mid"
resistance = 4.0
)";

const std::string one_coil = network + R"([[coil]]
name = "winding"
from = "mid"
to = "earth"
resistance = 2.0
[[axis]]
coil = "winding"
column = "i_A"
[flux]
file = "map.csv"
columns = { winding = "psi_Vs" }
)";

class BuildGeneric : public testing::Test {
  protected:
    Finished build(const std::string& description, const std::vector<std::string>& more = {}) {
        write_file(folder / "d.toml", description);
        std::vector<std::string> arguments{"build", "generic", "d.toml", "--out", "m.kzb"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return run_kzb(arguments, folder.path());
    }
    OpenedStore built(const std::string& description) {
        const Finished finished = build(description);
        EXPECT_EQ(finished.code, 0) << finished.err;
        return opened(folder / "m.kzb");
    }
    // One line on stderr, nothing written.
    void refused(const std::string& description, const std::string& message) {
        const Finished finished = build(description);
        EXPECT_EQ(finished.code, tool::exit_file) << finished.err;
        EXPECT_EQ(finished.out, "");
        EXPECT_THAT(finished.err, HasSubstr(message));
        EXPECT_EQ(line_count(finished.err), 1) << finished.err;
        EXPECT_FALSE(std::filesystem::exists(folder / "m.kzb"));
    }
    void write_line_map() { write_file(folder / "map.csv", "i_A,psi_Vs\n-10,-1\n0,0\n10,1\n"); }
    Folder folder;
};

TEST_F(BuildGeneric, network_stands_in_the_lists_of_the_file_with_ports_in_order) {
    const OpenedStore store = built(network + R"([[inductor]]
name = "L"
from = "mid"
to = "earth"
inductance = 0.1
[[capacitor]]
name = "C"
from = "mid"
to = "earth"
capacitance = 1e-4
[[probe]]
name = "u"
from = "mid"
to = "earth"
)");
    EXPECT_EQ(get_int(*store, "control", "motor_type"), 10008);
    EXPECT_TRUE(has_application(*store, "Generic", ""));
    const auto terminals = records_of(*store, "terminal_list;terminal");
    ASSERT_EQ(terminals.size(), 3U);
    EXPECT_EQ(terminals[0].integer("type"), 1);
    EXPECT_EQ(terminals[1].integer("type"), 0);
    EXPECT_EQ(terminals[2].integer("type"), 2);
    EXPECT_EQ(terminals[1].text("name"), "mid");
    const auto types = records_of(*store, "element_type_list;element_type");
    ASSERT_EQ(types.size(), 4U);
    const int codes[] = {-1, -3, -2, -50};
    const char* const keys[] = {"resistance", "inductance", "capacitance", "none"};
    const double values[] = {4.0, 0.1, 1e-4, 0.0};
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(types[i].integer("type"), codes[i]);
        EXPECT_EQ(types[i].number(keys[i]), values[i]);
    }
    for (const char* list : {"resistor", "coil_const", "capacitor", "voltage_probe"}) {
        EXPECT_EQ(record_count(*store, std::string("output_port_list;") + list), 1) << list;
    }
    const auto elements = records_of(*store, "element_list;element");
    EXPECT_EQ(elements[1].integer("1st_terminal_id"), 2);
    EXPECT_EQ(elements[1].integer("2nd_terminal_id"), 3);
    Calc_Eq_generic model;
    EXPECT_EQ(model.initialize(*store), 1);
    EXPECT_TRUE(model.faults().empty());
}

TEST_F(BuildGeneric, both_forms_of_the_file_hold_the_same_model) {
    write_line_map();
    const OpenedStore binary = built(one_coil);
    ASSERT_EQ(build(one_coil, {"--form", "ascii"}).code, 0);
    EXPECT_EQ(read_file(folder / "m.kzb").substr(0, 10), "$DORN-KZa,");
    const OpenedStore ascii = opened(folder / "m.kzb");
    ASSERT_EQ(binary->categories.size(), ascii->categories.size());
    for (std::size_t i = 0; i < binary->categories.size(); ++i) {
        EXPECT_EQ(binary->categories[i].name, ascii->categories[i].name);
    }
}

TEST_F(BuildGeneric, ports_can_be_numbered_and_left_out) {
    const OpenedStore store = built(network + R"(port = 2
[[resistor]]
name = "S"
from = "mid"
to = "earth"
resistance = 1.0
[[resistor]]
name = "T"
from = "mid"
to = "earth"
resistance = 1.0
port = false
)");
    const auto ports = records_of(*store, "output_port_list;resistor");
    ASSERT_EQ(ports.size(), 2U);
    EXPECT_EQ(ports[0].integer("id"), 2);
    EXPECT_EQ(ports[0].integer("component_id"), 1);
    EXPECT_EQ(ports[1].integer("id"), 1);
    EXPECT_EQ(ports[1].integer("component_id"), 2);
}

TEST_F(BuildGeneric, coil_takes_its_flux_from_the_columns_and_its_group_is_its_id) {
    write_line_map();
    const OpenedStore store = built(one_coil);
    const auto types = records_of(*store, "element_type_list;element_type");
    EXPECT_EQ(types[0].integer("type"), 1);
    EXPECT_EQ(types[0].integer("group_id"), types[0].integer("id"));
    EXPECT_EQ(types[0].number("coef_temperature"), 3810.0);
    EXPECT_EQ(record_count(*store, "element_type_list;element_type;interacted_coil", 0), 1);
    const std::string flux = record_name("flux_list;flux_table", 0, 0);
    EXPECT_EQ(value_at(store, flux.c_str(), "table", {2, 0}), 1.0);
    const auto axes = records_of(*store, "table_axis_list;axis");
    ASSERT_EQ(axes.size(), 1U);
    EXPECT_EQ(axes[0].integer("type"), 1);
    EXPECT_EQ(axes[0].integer("reference_id"), 1);
}

TEST_F(BuildGeneric, period_closes_an_axis_with_the_values_of_its_first_node) {
    write_file(folder / "map.csv",
               "i_A,a_deg,psi_Vs,t_Nm\n0,0,1,5\n0,120,2,6\n0,240,3,7\n1,0,4,8\n1,120,5,9\n1,240,6,9\n");
    const OpenedStore store = built(network + R"([[coil]]
name = "winding"
from = "mid"
to = "earth"
resistance = 2.0
[[motion]]
name = "rotor"
kind = "rotation"
periodic = true
range_deg = 90.0
[[axis]]
coil = "winding"
column = "i_A"
[[axis]]
motion = "rotor"
column = "a_deg"
scale = 0.25
period = 90.0
[flux]
file = "map.csv"
columns = { winding = "psi_Vs" }
scale = 10.0
[force]
columns = { rotor = "t_Nm" }
)");
    const std::string flux = record_name("flux_list;flux_table", 0, 0);
    EXPECT_EQ(kzb_get_table_num_rows(flux.c_str(), "table", 2, store.get()), 4);
    EXPECT_EQ(kzb_get_table_axis_value(flux.c_str(), "table", 2, 3, store.get()), 90.0);
    EXPECT_EQ(kzb_get_table_axis_value(flux.c_str(), "table", 2, 1, store.get()), 30.0);
    EXPECT_EQ(value_at(store, flux.c_str(), "table", {1, 3, 0}), 40.0);
    const std::string force = record_name("torque_force_list;torque_table", 0, 0);
    EXPECT_EQ(value_at(store, force.c_str(), "table", {1, 1, 0}), 9.0);
    const auto motions = records_of(*store, "motion_condition_list;motion_condition");
    EXPECT_EQ(motions[0].number("max_displacement"), 90.0);
    EXPECT_EQ(motions[0].integer("flg_periodic"), 1);
    EXPECT_EQ(motions[0].integer("axis_no"), 2);
}

TEST_F(BuildGeneric, range_of_a_motion_reaches_to_the_end_of_its_axis_unless_told) {
    write_file(folder / "map.csv", "i_A,x_m,psi_Vs\n0,0,0\n0,0.02,0\n1,0,1\n1,0.02,2\n");
    const OpenedStore store = built(network + R"([[coil]]
name = "winding"
from = "mid"
to = "earth"
resistance = 2.0
[[motion]]
name = "plunger"
kind = "linear"
[[axis]]
coil = "winding"
column = "i_A"
[[axis]]
motion = "plunger"
column = "x_m"
[flux]
file = "map.csv"
columns = { winding = "psi_Vs" }
)");
    EXPECT_EQ(records_of(*store, "motion_condition_list;motion_condition")[0].number("max_displacement"), 0.02);
}

TEST_F(BuildGeneric, expressions_variables_and_corrections_stand_in_the_file) {
    write_line_map();
    const OpenedStore store = built(one_coil.substr(0, one_coil.find("[[axis]]")) + R"(correction = "k * x + 0.5"
[[variable]]
name = "i"
coil = "winding"
[[variable]]
name = "two"
value = 2.0
[[correction_parameter]]
name = "k"
value = 1.5
[[axis]]
definition = "two * i / 2"
column = "i_A"
correction = "y"
correction_variable = "y"
[flux]
file = "map.csv"
columns = { winding = "psi_Vs" }
)");
    const auto axes = records_of(*store, "table_axis_list;axis");
    EXPECT_EQ(axes[0].text("definition"), "two * i / 2");
    EXPECT_EQ(axes[0].text("correction_variable"), "y");
    const auto phases = records_of(*store, "flux_list;phase_list;phase");
    EXPECT_EQ(phases[0].text("correction_expression"), "k * x + 0.5");
    EXPECT_EQ(phases[0].text("correction_variable"), "x");
    // psi(5 A) = 0.5 Vs of the table, 1.5 * 0.5 + 0.5 corrected.
    Calc_Eq_generic model;
    model.initialize(*store);
    model.set_current(PortGroup::coils, 1, 5.0);
    int status = 0;
    model.step({0.0}, {}, 0.0, {1.0}, status);
    EXPECT_DOUBLE_EQ(model.coil_flux(1), 1.25);
}

TEST_F(BuildGeneric, outputs_and_iron_loss_stand_in_tables_of_their_own) {
    write_file(folder / "map.csv", "i_A,psi_Vs,b_T,h\n-10,-1,0.5,1\n0,0,0.25,2\n10,1,0.75,3\n");
    write_file(folder / "loss.csv", "u,p_W\n0,0\n2,8\n");
    const OpenedStore store = built(one_coil + R"([[output]]
name = "induction"
column = "b_T"
[[output]]
name = "field"
column = "h"
table = "fine"
[iron_loss]
file = "loss.csv"
column = "p_W"
[[iron_loss.axis]]
user_input = true
column = "u"
)");
    EXPECT_EQ(value_at(store, record_name("output_list;output_table", 0, 0).c_str(), "table", {2, 0}), 0.75);
    EXPECT_EQ(value_at(store, record_name("output_list;output_table", 0, 1).c_str(), "table", {0, 0}), 1.0);
    EXPECT_EQ(value_at(store, "ironloss", "table", {1}), 8.0);
    EXPECT_EQ(record_count(*store, "input_port_list;user_input"), 1);
    EXPECT_EQ(std::string(get_string(*store, "user_specified_parameter2", "title")), "field");
    EXPECT_EQ(get_int(*store, "user_specified_parameter2", "reference_resolution"), 1);
}

// A salient machine without magnet: psi_k = L_d i_d cos(theta + phi_k) - L_q i_q sin(theta + phi_k), so
//   d psi_u / d i_k = 2/3 (L_d cos(theta) cos(theta + phi_k) + L_q sin(theta) sin(theta + phi_k)).
// Central differences over a phase of h = 5 degrees keep sin(h)/h = 0.9987 of the slope: the bound is 0.15 % of L_q.
TEST_F(BuildGeneric, inductances_of_a_three_phase_set_are_slopes_of_its_flux) {
    constexpr double ld = 1e-3, lq = 3e-3;
    constexpr double phases[3] = {0.0, -120.0, 120.0};
    std::string map = "amp_A,phase_deg,theta_deg,u,v,w\n";
    for (const double amplitude : {0.0, 10.0, 20.0}) {
        for (int phase = -180; phase <= 180; phase += 5) {
            for (int theta = 0; theta < 360; theta += 60) {
                const double id = -amplitude * std::sin(phase * radians_of_degree),
                             iq = amplitude * std::cos(phase * radians_of_degree);
                map += fmt::format("{},{},{}", amplitude, phase, theta);
                for (const double phi : phases) {
                    map += fmt::format(",{}", ld * id * std::cos((theta + phi) * radians_of_degree) -
                                                  lq * iq * std::sin((theta + phi) * radians_of_degree));
                }
                map += '\n';
            }
        }
    }
    write_file(folder / "map.csv", map);
    std::string text = "[[terminal]]\nname = \"n\"\nkind = \"ground\"\n";
    for (const char* name : {"u", "v", "w"}) {
        text += fmt::format(
            "[[terminal]]\nname = \"t{0}\"\nkind = \"source\"\n[[coil]]\nname = \"{0}\"\nfrom = "
            "\"t{0}\"\nto = \"n\"\nresistance = 1.0\n",
            name);
    }
    const OpenedStore store = built(text + R"([[motion]]
name = "rotor"
kind = "rotation"
periodic = true
range_deg = 360.0
[[coil_set]]
name = "stator"
coils = ["u", "v", "w"]
phases_deg = [0.0, -120.0, 120.0]
motion = "rotor"
[[axis]]
coil_set = "stator"
quantity = "amplitude"
column = "amp_A"
[[axis]]
coil_set = "stator"
quantity = "phase"
column = "phase_deg"
period = 360.0
[[axis]]
motion = "rotor"
column = "theta_deg"
period = 360.0
[flux]
file = "map.csv"
columns = { u = "u", v = "v", w = "w" }
)");
    const std::string category = record_name("inductance_list;diff_inductance_table", 0, 0);
    for (const int amplitude : {0, 1, 2}) {
        for (const int phase : {0, 7, 36, 72}) {
            for (int theta = 0; theta < 6; ++theta) {
                const double own = theta * 60.0 * radians_of_degree;
                for (int k = 0; k < 3; ++k) {
                    const double other = own + phases[k] * radians_of_degree;
                    const double expected =
                        2.0 / 3.0 * (ld * std::cos(own) * std::cos(other) + lq * std::sin(own) * std::sin(other));
                    EXPECT_NEAR(value_at(store, category.c_str(), "table", {amplitude, phase, theta, k}), expected,
                                0.0015 * lq)
                        << amplitude << ' ' << phase << ' ' << theta << ' ' << k;
                }
            }
        }
    }
}

// psi_1 = 0.05 i_1 + 0.02 i_2, psi_2 = 0.02 i_1 + 0.04 i_2: differences of linear values are exact but for rounding.
TEST_F(BuildGeneric, inductances_of_single_coils_are_slopes_by_each_current) {
    std::string map = "a,b,p1,p2\n";
    for (const int a : {-2, 0, 5}) {
        for (const int b : {-3, 1, 4}) {
            map += fmt::format("{},{},{},{}\n", a, b, 0.05 * a + 0.02 * b, 0.02 * a + 0.04 * b);
        }
    }
    write_file(folder / "map.csv", map);
    const OpenedStore store = built(network + R"([[coil]]
name = "one"
from = "mid"
to = "earth"
resistance = 2.0
[[coil]]
name = "two"
from = "mid"
to = "earth"
resistance = 2.0
[[coil_set]]
name = "first"
coils = ["one"]
[[coil_set]]
name = "second"
coils = ["two"]
[[axis]]
coil_set = "first"
quantity = "amplitude"
column = "a"
[[axis]]
coil_set = "second"
quantity = "amplitude"
column = "b"
[flux]
file = "map.csv"
columns = { one = "p1", two = "p2" }
)");
    const std::string category = record_name("inductance_list;diff_inductance_table", 0, 0);
    const double expected[] = {0.05, 0.02, 0.02, 0.04};
    for (int a = 0; a < 3; ++a) {
        for (int b = 0; b < 3; ++b) {
            for (int pair = 0; pair < 4; ++pair) {
                EXPECT_NEAR(value_at(store, category.c_str(), "table", {a, b, pair}), expected[pair], 1e-12);
            }
        }
    }
}

struct Fault {
    const char* what;
    std::string description;
    std::string message;
};

TEST_F(BuildGeneric, refuses_with_one_line_that_names_place_and_expectation) {
    write_line_map();
    write_file(folder / "hole.csv", "i_A,j_A,psi_Vs\n0,0,0\n0,1,0\n1,0,0\n");
    const std::string resistor = "[[resistor]]\nname = \"S\"\nfrom = \"mid\"\nto = \"earth\"\n";
    const std::string head = one_coil.substr(0, one_coil.find("[[axis]]"));
    const Fault faults[] = {
        {"TOML", "[[terminal\n", "d.toml:1: not valid TOML"},
        {"letter beyond ASCII", "[[terminal\xc3\x9c ]]\n", "d.toml:1: not valid TOML"},
        {"empty", "", "d.toml: no terminal of kind"},
        {"unknown key", network + "ohm = 3\n", "d.toml:14: resistor 1.ohm: unknown key"},
        {"unknown section", network + "[windings]\n", "windings: unknown key"},
        {"no name", "[[terminal]]\nkind = \"ground\"\n", "terminal 1.name: missing"},
        {"empty name", "[[terminal]]\nname = \"\"\n", "d.toml:2: terminal 1.name: expected 1 to 100"},
        {"same name", network + "[[terminal]]\nname = \"mid\"\n", "d.toml:15: terminal 4.name: \"mid\" a second time"},
        {"kind", "[[terminal]]\nname = \"a\"\nkind = \"battery\"\n", "d.toml:3: terminal 1.kind: expected one of"},
        {"not a list", "terminal = 3\n", "d.toml:1: terminal: expected an array"},
        {"not tables", "terminal = [3]\n", "d.toml:1: terminal: expected tables"},
        {"unknown terminal", network + "[[resistor]]\nname = \"S\"\nfrom = \"nowhere\"\nto = \"mid\"\n",
         "d.toml:16: resistor 2.from: \"nowhere\" names no terminal, expected one of \"supply\", \"mid\", \"earth\""},
        {"no value", network + resistor, "resistor 2.resistance: missing"},
        {"value 0", network + resistor + "resistance = 0\n", "d.toml:18: resistor 2.resistance: 0 is not above 0"},
        {"not finite", network + resistor + "resistance = inf\n", "resistor 2.resistance: expected a finite number"},
        {"port too great", network + "port = 2\n", "port 2, expected 1 to 1"},
        {"port of a node", "[[terminal]]\nname = \"a\"\nport = 1\n", "d.toml:3: terminal 1.port: the terminal is no"},
        {"port twice", network + "port = 1\n" + resistor + "resistance = 1\nport = 1\n", "port 1 a second time"},
        {"no flux", head, "a coil needs the table [flux]"},
        {"no axis", head + "[flux]\nfile = \"map.csv\"\ncolumns = { winding = \"psi_Vs\" }\n", "axis: missing"},
        {"no coil", network + "[flux]\nfile = \"map.csv\"\ncolumns = { }\n", "flux: no [[coil]] needs it"},
        {"unknown coil", one_coil + "[[coil_set]]\nname = \"s\"\ncoils = [\"w\"]\n", "\"w\" names no coil"},
        {"flux of an unknown coil",
         head + "[[axis]]\ncoil = \"winding\"\ncolumn = \"i_A\"\n[flux]\nfile = "
                "\"map.csv\"\ncolumns = { w = \"psi_Vs\" }\n",
         "\"w\" names no coil, expected one of \"winding\""},
        {"no such file",
         head + "[[axis]]\ncoil = \"winding\"\ncolumn = \"i_A\"\n[flux]\nfile = \"none.csv\"\ncolumns "
                "= { winding = \"psi_Vs\" }\n",
         "d.toml:22: flux: none.csv"},
        {"no such column",
         head + "[[axis]]\ncoil = \"winding\"\ncolumn = \"j_A\"\n[flux]\nfile = \"map.csv\"\ncolumns "
                "= { winding = \"psi_Vs\" }\n",
         "d.toml:21: axis 1.column: map.csv has no column \"j_A\", expected one of \"i_A\", \"psi_Vs\""},
        {"two feeds", head + "[[axis]]\ncoil = \"winding\"\ndefinition = \"1\"\ncolumn = \"i_A\"\n",
         "axis 1.column: fed by 2 of"},
        {"unreadable definition", head + "[[axis]]\ndefinition = \"3 * * i\"\ncolumn = \"i_A\"\n",
         "d.toml:20: axis 1.definition: \"3 * * i\" cannot be read as an expression of no variable"},
        {"unreadable correction", one_coil + "[[correction_parameter]]\nname = \"1k\"\nvalue = 1\n",
         "\"1k\" is no name of a variable"},
        {"hole in the grid",
         head + "[[axis]]\ncoil = \"winding\"\ncolumn = \"i_A\"\n[[axis]]\ndefinition = "
                "\"1\"\ncolumn = \"j_A\"\n[flux]\nfile = \"hole.csv\"\ncolumns = { winding = "
                "\"psi_Vs\" }\n",
         "hole.csv: no row for i_A 1 , j_A 1"},
        {"interacts", one_coil.substr(0, one_coil.find("[[axis]]")) + "interacts_with = [\"x\"]\n",
         "interacts_with: \"x\" names no coil"},
        {"interacts with nothing", one_coil.substr(0, one_coil.find("[[axis]]")) + "interacts_with = []\n",
         "interacts_with: without winding itself"},
        {"group twice", head + "[[coil]]\nname = \"b\"\nfrom = \"mid\"\nto = \"earth\"\nresistance = 1\ngroup = 1\n",
         "1 is the group of coil winding too"},
        {"factor in the table axes form", one_coil + "[[motion]]\nname = \"m\"\nkind = \"linear\"\nforce_factor = 2\n",
         "a factor has no effect in a model of table axes"},
        {"periodic without range", network + "[[motion]]\nname = \"m\"\nkind = \"rotation\"\nperiodic = true\n",
         "motion 1.range_deg: missing"},
        {"motion without range and axis", network + "[[motion]]\nname = \"m\"\nkind = \"linear\"\n",
         "no range and no axis over the motion"},
        {"output port", one_coil + "[[output]]\nname = \"b\"\ncolumn = \"psi_Vs\"\nport = 2\n",
         "port 2, expected 1 to 1"},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.what);
        refused(fault.description, fault.message);
    }
}

// What only the calculator knows: its system of equations is dense, and bounded.
TEST_F(BuildGeneric, refuses_what_the_calculator_refuses) {
    std::string text = network;
    for (int i = 0; i < 2000; ++i) {
        text += fmt::format("[[resistor]]\nname = \"r{}\"\nfrom = \"mid\"\nto = \"earth\"\nresistance = 1\n", i);
    }
    refused(text, "circuit: 2001 branches and 3 terminals, expected at most 2000 together");
}

TEST_F(BuildGeneric, refused_description_leaves_the_old_file_as_it_is) {
    write_file(folder / "m.kzb", "old");
    EXPECT_NE(build("[[terminal]]\n").code, 0);
    EXPECT_EQ(read_file(folder / "m.kzb"), "old");
    write_file(folder / "d.toml", network);
    const Finished over = run_kzb({"build", "generic", "d.toml", "--out", "d.toml"}, folder.path());
    EXPECT_EQ(over.code, tool::exit_usage);
    EXPECT_EQ(read_file(folder / "d.toml"), network);
}

TEST_F(BuildGeneric, account_tells_axes_and_circuit) {
    write_line_map();
    const Finished text = build(one_coil);
    EXPECT_THAT(text.out, HasSubstr("Generic, table axes"));
    EXPECT_THAT(text.out, HasSubstr("-10 to 10, 3 nodes, current"));
    EXPECT_THAT(text.out, HasSubstr("W1 2 3 2.0 Ohm \"winding\""));
    const json account = json::parse(build(one_coil, {"--json"}).out);
    EXPECT_EQ(account["axes"][0]["nodes"], 3);
    EXPECT_EQ(account["circuit"]["elements"].size(), 2U);
}

}  // namespace
}  // namespace kzb::test
