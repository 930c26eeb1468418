// Networks without tables against their closed form.
#include "circuit/generic/generic_files.h"

namespace kzb_test {
namespace {

using kzb::PortGroup;

// Source 1, ground 2, node 3: R from 1 to 3, then L or C to ground.
struct TwoParts : GenericFile {
    TwoParts() {
        source(1, 1, "supply");
        terminal(2, 2);
        terminal(3, 0);
    }
};

TEST(GenericNetwork, resistor_follows_ohm) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.resistor(7, 1, 2, 4.0);
    GenericRun run(file.store);
    ASSERT_EQ(run.result, 1);
    EXPECT_EQ(run.sample(0.0, {0.0}), 1);
    run.sample(1e-3, {12.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 3.0);
}

// i(t) = U / R (1 - exp(-t R / L)); backward Euler: i_n = U / R (1 - (1 + dt R / L)^-n).
TEST(GenericNetwork, current_of_an_inductor_rises_as_backward_euler_says) {
    TwoParts file;
    file.resistor(1, 1, 3, 2.0);
    file.inductor(2, 3, 2, 0.1);
    GenericRun run(file.store);
    run.sample(0.0, {10.0});
    EXPECT_EQ(run.model.current(PortGroup::inductors, 1), 0.0);
    const double dt = 1e-3;
    for (int n = 1; n <= 50; ++n) {
        run.sample(n * dt, {10.0});
        const double expected = 5.0 * (1.0 - std::pow(1.0 + dt * 2.0 / 0.1, -n));
        EXPECT_NEAR(run.model.current(PortGroup::inductors, 1), expected, 1e-12 * 5.0) << n;
    }
    EXPECT_NEAR(run.model.current(PortGroup::inductors, 1), 5.0 * (1.0 - std::exp(-1.0)), 0.02 * 5.0);
}

// u_C,n = U (1 - (1 + dt / (R C))^-n).
TEST(GenericNetwork, capacitor_charges_as_backward_euler_says) {
    TwoParts file;
    file.resistor(1, 1, 3, 100.0);
    file.capacitor(2, 3, 2, 1e-4);
    file.probe(3, 3, 2);
    GenericRun run(file.store);
    run.sample(0.0, {10.0});
    const double dt = 1e-3;
    for (int n = 1; n <= 30; ++n) {
        run.sample(n * dt, {10.0});
        const double expected = 10.0 * (1.0 - std::pow(1.0 + dt / 1e-2, -n));
        EXPECT_NEAR(run.model.probe_value(1), expected, 1e-11) << n;
    }
}

// 10 V, 1 Ohm to a node, 1 Ohm to ground, and on the node both ends of an inductor with 2 A, which counts there once,
// as leaving by its second end: i_2 = i_1 + 2 A, 10 V - p + 2 A * 1 Ohm = p.
TEST(GenericNetwork, branch_with_both_ends_on_one_node_counts_its_second_end) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 0);
    file.terminal(3, 2);
    file.resistor(1, 1, 2, 1.0);
    file.resistor(2, 2, 3, 1.0);
    file.inductor(3, 2, 2, 0.5);
    GenericRun run(file.store);
    run.model.set_current(PortGroup::inductors, 1, 2.0);
    run.sample(0.0, {10.0});
    run.sample(1e-3, {10.0});
    EXPECT_NEAR(run.model.current(PortGroup::inductors, 1), 2.0, 1e-9);
    EXPECT_NEAR(run.model.current(PortGroup::resistors, 1), 4.0, 1e-9);
    EXPECT_NEAR(run.model.current(PortGroup::resistors, 2), 6.0, 1e-9);
}

TEST(GenericNetwork, current_source_drives_its_current_and_keeps_it_when_switched_off) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.resistor(1, 1, 2, 3.0);
    GenericRun run(file.store);
    run.model.set_source_type(1, true);
    run.sample(0.0, {2.0});
    run.sample(1e-3, {2.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
    run.sample(2e-3, {5.0}, {}, {0.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
}

TEST(GenericNetwork, switched_off_source_floats) {
    TwoParts file;
    file.resistor(1, 1, 3, 1.0);
    file.resistor(2, 3, 2, 1.0);
    GenericRun run(file.store);
    run.sample(0.0, {6.0});
    run.sample(1e-3, {6.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 3.0);
    // 0.5 counts as off.
    run.sample(2e-3, {6.0}, {}, {0.5});
    EXPECT_EQ(run.model.current(PortGroup::resistors, 1), 0.0);
}

TEST(GenericNetwork, no_base_potential_is_status_24_and_changes_nothing) {
    GenericFile file;
    file.source(1, 1);
    file.source(2, 2);
    file.resistor(1, 1, 2, 2.0);
    GenericRun run(file.store);
    run.sample(0.0, {4.0, 0.0});
    run.sample(1e-3, {4.0, 0.0});
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
    EXPECT_EQ(run.sample(2e-3, {40.0, 0.0}, {}, {0.0, 0.0}), 0);
    EXPECT_EQ(run.status, 24);
    EXPECT_DOUBLE_EQ(run.model.current(PortGroup::resistors, 1), 2.0);
}

// A coil of constant inductance: psi = L i from a table over one current axis.
TEST(GenericNetwork, coil_of_a_linear_table_is_an_inductor) {
    TwoParts file;
    file.coil(1, 1, 2, 2.0, 1, 1, "winding");
    file.add("table_axis_list;axis", {{"id", 1}, {"type", 1}, {"reference_id", 1}});
    file.add("flux_list;phase_list;phase", {{"index", 0}, {"reference_id", 1}});
    file.record_table("flux_list;flux_table", {{{-20.0, -10.0, 0.0, 10.0, 20.0}, false}, places(1)},
                      [](const auto& x) { return 0.1 * x[0]; });
    GenericRun run(file.store);
    ASSERT_TRUE(run.model.faults().empty()) << run.model.faults().front();
    run.sample(0.0, {10.0});
    const double dt = 1e-3;
    for (int n = 1; n <= 50; ++n) {
        run.sample(n * dt, {10.0});
        const double expected = 5.0 * (1.0 - std::pow(1.0 + dt * 2.0 / 0.1, -n));
        EXPECT_NEAR(run.model.current(PortGroup::coils, 1), expected, 1e-9) << n;
    }
    EXPECT_EQ(run.model.pass_counts().unconverged_steps, 0);
    EXPECT_EQ(run.model.port_by_name(PortGroup::coils, "winding"), 1);
    EXPECT_EQ(run.model.port_by_name(PortGroup::sources, "supply"), 1);
    EXPECT_EQ(run.model.port_by_name(PortGroup::coils, ""), 0);
}

}  // namespace
}  // namespace kzb_test
