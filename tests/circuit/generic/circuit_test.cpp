// Structure of the circuit: what a file may leave out, what makes it unusable, and the rows of odd branches.
#include "circuit/generic/generic_files.h"

namespace kzb_test {
namespace {

using kzb::PortGroup;

TEST(GenericCircuit, source_without_a_port_or_with_two_is_refused) {
    for (const int records : {0, 2}) {
        GenericFile file;
        file.terminal(1, 1);
        file.terminal(2, 2);
        file.resistor(1, 1, 2, 1.0);
        for (int k = 1; k <= records; ++k) {
            file.add("input_port_list;source", {{"id", k}, {"terminal_id", 1}});
        }
        GenericRun run(file.store);
        EXPECT_FALSE(run.model.faults().empty()) << records;
        // Nothing of it is ever stepped.
        EXPECT_EQ(run.model.step({1.0, 1.0}, {}, 1.0, {1.0, 1.0}, run.status), 0);
    }
}

TEST(GenericCircuit, element_of_no_terminal_or_no_type_and_a_port_id_out_of_range_are_refused) {
    for (const int fault : {0, 1, 2}) {
        GenericFile file;
        file.source(1, 1);
        file.terminal(2, 2);
        file.resistor(1, 1, fault == 0 ? 9 : 2, 1.0);
        if (fault == 1) {
            file.element(2, 1, 2, 33);
        }
        if (fault == 2) {
            file.add("output_port_list;resistor", {{"id", 7}, {"component_id", 1}});
        }
        GenericRun run(file.store);
        EXPECT_EQ(run.model.faults().size(), 1u) << fault;
        EXPECT_EQ(run.result, 1) << "the application is offered all the same";
    }
}

TEST(GenericCircuit, more_than_2000_branches_and_terminals_are_refused) {
    for (const int terminals : {1999, 2000}) {
        GenericFile file;
        for (int id = 1; id <= terminals; ++id) {
            file.put(kzb::record_name("terminal_list;terminal", 0, id - 1), {{"id", id}, {"type", id == 1 ? 2 : 0}});
        }
        file.resistor(1, 1, 2, 1.0);
        GenericRun run(file.store);
        EXPECT_EQ(run.model.faults().empty(), terminals == 1999);
    }
}

// Types 1 and 2 alone are sources and grounds: 10 V halved by two resistors of 1 Ohm.
TEST(GenericCircuit, terminal_of_any_other_type_is_a_node) {
    for (const int type : {3, -1, 7}) {
        GenericFile file;
        file.source(1, 1);
        file.terminal(2, type);
        file.terminal(3, 2);
        file.resistor(1, 1, 2, 1.0);
        file.resistor(2, 2, 3, 1.0);
        GenericRun run(file.store);
        run.sample(0.0, {10.0});
        run.sample(1e-3, {10.0});
        EXPECT_NEAR(run.model.circuit().terminal_at(1)->potential, 5.0, 1e-12) << type;
    }
}

TEST(GenericCircuit, names_are_optional_and_an_empty_name_finds_nothing) {
    GenericFile file;
    file.add("terminal_list;terminal", {{"id", 1}, {"type", 1}});  // no name at all
    file.add("input_port_list;source", {{"id", 1}, {"terminal_id", 1}});
    file.terminal(2, 2, "earth");
    file.resistor(5, 1, 2, 1.0);
    GenericRun run(file.store);
    EXPECT_EQ(run.model.circuit().terminal_at(0)->name, "");
    EXPECT_EQ(run.model.port_by_name(PortGroup::sources, ""), 0);
    EXPECT_EQ(run.model.circuit().find_terminal_by_name("earth"), 2);
    EXPECT_EQ(run.model.port_by_name(PortGroup::sources, "earth"), 0);  // no source
}

TEST(GenericCircuit, element_type_without_a_branch_is_found_by_no_name) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.add("element_type_list;element_type",
             {{"id", 1}, {"type", -1}, {"name", std::string("spare")}, {"resistance", 1.0}});
    file.resistor(2, 1, 2, 1.0, "used");
    GenericRun run(file.store);
    EXPECT_EQ(run.model.circuit().find_branch_by_element_name("spare"), 0);
    EXPECT_EQ(run.model.circuit().find_branch_by_element_name("used"), 2);
}

TEST(GenericCircuit, list_without_records_answers_0) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.resistor(1, 1, 2, 1.0);
    GenericRun run(file.store);
    EXPECT_EQ(run.model.count(PortGroup::coils), 0);
    EXPECT_EQ(run.model.current(PortGroup::coils, 1), 0.0);
    EXPECT_EQ(run.model.probe_value(1), 0.0);
    EXPECT_EQ(run.model.coil_temperature(1), 0.0);
}

// A residual above the limit in the first pass needs a second one that confirms.
TEST(GenericCircuit, resistor_is_solved_in_one_pass_and_confirmed_in_a_second) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.resistor(1, 1, 2, 4.0);
    GenericRun run(file.store);
    run.sample(0.0, {8.0});
    run.sample(1e-3, {8.0});
    EXPECT_EQ(run.model.pass_counts().passes, 2);
    run.sample(2e-3, {8.001});  // moves by 0.25 mA
    EXPECT_EQ(run.model.pass_counts().passes, 3);
}

// Both terminals fixed: the row is the law alone, L (i - i_prev) = u dt.
TEST(GenericCircuit, branch_between_fixed_terminals_follows_its_law_alone) {
    GenericFile file;
    file.source(1, 1);
    file.source(2, 2);
    file.inductor(1, 1, 2, 0.5);
    GenericRun run(file.store);
    run.sample(0.0, {3.0, 1.0});
    run.sample(1e-2, {3.0, 1.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::inductors, 1), 2.0 * 1e-2 / 0.5);
}

// The previous potential of a capacitor's terminal is 0 until a step with a potential was accepted: the whole of the
// source's first voltage is a jump, i = C u / dt.
TEST(GenericCircuit, capacitor_starts_from_a_potential_of_0) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.capacitor(1, 1, 2, 1e-3);
    GenericRun run(file.store);
    run.sample(0.0, {0.0});
    run.sample(1e-2, {5.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::capacitors, 1), 1e-3 * 5.0 / 1e-2);
    run.sample(2e-2, {5.0});
    EXPECT_NEAR(run.model.current(PortGroup::capacitors, 1), 0.0, 1e-15);
}

// A probe has no row: the node between two resistors is found as without it, U R2 / (R1 + R2).
TEST(GenericCircuit, probe_carries_no_current) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.terminal(3, 0);
    file.terminal(4, 0);
    file.resistor(1, 1, 3, 1.0);
    file.resistor(2, 3, 2, 3.0);
    file.resistor(3, 1, 4, 3.0);
    file.resistor(4, 4, 2, 1.0);
    file.probe(5, 3, 4);
    GenericRun run(file.store);
    run.sample(0.0, {8.0});
    run.sample(1e-3, {8.0});
    EXPECT_NEAR(run.model.probe_value(1), 6.0, 1e-12);
    EXPECT_NEAR(run.model.circuit().terminal_at(3)->potential, 2.0, 1e-12);
    EXPECT_EQ(run.model.circuit().branch_at(4)->equation, -1);
    EXPECT_EQ(run.model.circuit().branch_at(4)->current, 0.0);
}

// A free node that only a current source feeds: its row has a zero diagonal, the right-hand side goes over 1e-20.
TEST(GenericCircuit, node_without_a_branch_divides_by_1e_minus_20) {
    GenericFile file;
    file.terminal(2, 2);
    file.source(1, 1);
    GenericRun run(file.store);
    run.model.set_source_type(1, true);
    run.sample(0.0, {2.0});
    run.sample(1e-3, {2.0});
    EXPECT_DOUBLE_EQ(run.model.circuit().terminal_at(1)->potential, 2.0 / 1e-20);
}

// The setter takes 1 for a current source, the getter answers 1 for a voltage source.
TEST(GenericCircuit, source_type_reads_reversed) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    GenericRun run(file.store);
    EXPECT_EQ(run.model.source_type(1), 1);
    run.model.set_source_type(1, true);
    EXPECT_EQ(run.model.source_type(1), 0);
    EXPECT_EQ(run.model.source_type(2), 0);
}

}  // namespace
}  // namespace kzb_test
