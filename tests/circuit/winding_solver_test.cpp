// One solve of the winding network: hand-solved circuits, boundary conditions, failures.
#include "circuit/winding_solver.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <boost/make_shared.hpp>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "diagnostics/log.h"

namespace {

using kzb::DenseInput;
using kzb::WindingInput;
using kzb::WindingNetwork;
using kzb::WindingSolver;

constexpr double none[25] = {};
constexpr bool all_driven[16] = {true, true, true, true, true, true, true, true,
                                 true, true, true, true, true, true, true, true};

// Windings that are resistors only.
WindingInput resistive(const double* voltages, const bool* flags, const double* resistance, double dt) {
    WindingInput input;
    input.voltages = voltages;
    input.flags = flags;
    input.dt = dt;
    input.flux = input.previous_flux = input.emf = none;
    input.coupling = input.previous_coupling = none;
    input.current = input.leakage = none;
    input.resistance = resistance;
    return input;
}

TEST(WindingSolver, resistive_star_divides_the_voltage_at_its_neutral) {
    // Equal resistances of 2 Ohm: the neutral lies at the mean (12 + 6 - 6) / 3 = 4 V; i = (v - 4) / 2.
    WindingNetwork network;
    network.build(0, 2.0, 0.0);
    const double v[] = {12.0, 6.0, -6.0};
    const double r[] = {2.0, 2.0, 2.0};
    for (const bool emf : {false, true}) {
        WindingSolver solver(network);
        const WindingInput input = resistive(v, all_driven, r, 0.5);
        EXPECT_TRUE(emf ? solver.solve_emf_form(input) : solver.solve_flux_form(input));
        ASSERT_EQ(solver.element_count(), 3U);
        ASSERT_EQ(solver.terminal_count(), 4U);
        const double* x = solver.solution();
        EXPECT_DOUBLE_EQ(x[0], 4.0);
        EXPECT_DOUBLE_EQ(x[1], 1.0);
        EXPECT_DOUBLE_EQ(x[2], -5.0);
        EXPECT_DOUBLE_EQ(x[6], 4.0);
        // The terminal currents are what flows in from outside; the neutral has none (cancellation of three terms).
        EXPECT_DOUBLE_EQ(solver.terminal_currents()[0], 4.0);
        EXPECT_DOUBLE_EQ(solver.terminal_currents()[1], 1.0);
        EXPECT_DOUBLE_EQ(solver.terminal_currents()[2], -5.0);
        EXPECT_NEAR(solver.terminal_currents()[3], 0.0, 4e-15);
    }
}

TEST(WindingSolver, place_of_a_driven_terminal_holds_zero) {
    WindingNetwork network;
    network.build(0, 2.0, 0.0);
    const double v[] = {12.0, 6.0, -6.0};
    const double r[] = {2.0, 2.0, 2.0};
    WindingSolver solver(network);
    solver.solve_flux_form(resistive(v, all_driven, r, 0.5));
    for (int port = 0; port < 3; ++port) {
        EXPECT_EQ(solver.solution()[3 + port], 0.0);
        EXPECT_EQ(network.terminals[static_cast<std::size_t>(port)]->potential, v[port]);
    }
}

TEST(WindingSolver, resistive_delta_carries_the_line_differences) {
    // 1-2: (12 - 6) / 2 = 3, 2-3: (6 + 6) / 4 = 3, 3-1: (-6 - 12) / 1 = -18. Line: i12 - i31, i23 - i12, i31 - i23.
    WindingNetwork network;
    network.build(1, 2.0, 0.0);
    const double v[] = {12.0, 6.0, -6.0};
    const double r[] = {2.0, 4.0, 1.0};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(resistive(v, all_driven, r, 0.25)));
    ASSERT_EQ(solver.terminal_count(), 3U);
    EXPECT_EQ(solver.solution()[0], 3.0);
    EXPECT_EQ(solver.solution()[1], 3.0);
    EXPECT_EQ(solver.solution()[2], -18.0);
    EXPECT_EQ(solver.terminal_currents()[0], 21.0);
    EXPECT_EQ(solver.terminal_currents()[1], 0.0);
    EXPECT_EQ(solver.terminal_currents()[2], -21.0);
}

TEST(WindingSolver, flux_form_of_one_winding) {
    // (dt R + Ll + 2 L - Lp) i = psi_previous - psi + Ll I + L I + dt (v1 - v2)
    // dt 0.5, R 2, Ll 0.25, L 1, Lp 0.75, I 4, psi 1, psi_previous 1.5, v1 10, v2 2:
    // (1 + 0.25 + 1.25) i = 0.5 + 1 + 4 + 4 = 9.5, i = 3.8
    WindingNetwork network;
    network.build(7, 2.0, 0.0);
    const double v[] = {10.0, 2.0};
    const double r = 2.0, leakage = 0.25, l = 1.0, lp = 0.75, current = 4.0, flux = 1.0, previous_flux = 1.5;
    WindingInput input = resistive(v, all_driven, &r, 0.5);
    input.leakage = &leakage;
    input.coupling = &l;
    input.previous_coupling = &lp;
    input.current = &current;
    input.flux = &flux;
    input.previous_flux = &previous_flux;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(input));
    EXPECT_EQ(solver.solution()[0], 9.5 / 2.5);
    EXPECT_EQ(solver.terminal_currents()[0], 9.5 / 2.5);
    EXPECT_EQ(solver.terminal_currents()[1], -9.5 / 2.5);
}

TEST(WindingSolver, emf_form_of_one_winding) {
    // (dt R + Ll + L) i = -dt e + Ll I + L I + dt (v1 - v2), with e 6: (1 + 0.25 + 1) i = -3 + 1 + 4 + 4 = 6
    WindingNetwork network;
    network.build(7, 2.0, 0.0);
    const double v[] = {10.0, 2.0};
    const double r = 2.0, leakage = 0.25, l = 1.0, current = 4.0, emf = 6.0;
    WindingInput input = resistive(v, all_driven, &r, 0.5);
    input.leakage = &leakage;
    input.coupling = &l;
    input.previous_coupling = nullptr;
    input.flux = input.previous_flux = nullptr;
    input.current = &current;
    input.emf = &emf;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_emf_form(input));
    EXPECT_EQ(solver.solution()[0], 6.0 / 2.25);
}

TEST(WindingSolver, coupling_runs_row_by_row_over_pairs_of_coils) {
    // Two separate windings, dt 1, R 0, v = (v1, v2, 0, 0): L i = L I + v with L = (4 1; 2 3), I = (1, 2), v = (9, 1).
    // Right-hand side (4 + 2 + 9, 2 + 6 + 1) = (15, 9); i = (3 * 15 - 9, 4 * 9 - 2 * 15) / 10 = (3.6, 0.6).
    WindingNetwork network;
    network.build(5, 0.0, 0.0);
    const double v[] = {9.0, 1.0, 0.0, 0.0};
    const double l[] = {4.0, 1.0, 2.0, 3.0};
    const double current[] = {1.0, 2.0};
    WindingInput input = resistive(v, all_driven, none, 1.0);
    input.coupling = l;
    input.current = current;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_emf_form(input));
    EXPECT_DOUBLE_EQ(solver.solution()[0], 3.6);
    EXPECT_DOUBLE_EQ(solver.solution()[1], 0.6);

    // Flux form with previous coupling Lp = (1 2; 3 4): 2 L - Lp = (7 0; 1 2): i = (15 / 7, (9 - 15 / 7) / 2).
    const double lp[] = {1.0, 2.0, 3.0, 4.0};
    input.previous_coupling = lp;
    WindingSolver flux_solver(network);
    EXPECT_TRUE(flux_solver.solve_flux_form(input));
    EXPECT_DOUBLE_EQ(flux_solver.solution()[0], 15.0 / 7.0);
    EXPECT_DOUBLE_EQ(flux_solver.solution()[1], 24.0 / 7.0);
}

TEST(WindingSolver, undriven_port_of_a_star_floats_with_the_node_balance) {
    // Port 3 is open: its current is 0, the neutral lies between ports 1 and 2 (R 2 and 2, v 12 and 4): 8 V, which is
    // also the open terminal's potential. i = (2, -2, 0).
    WindingNetwork network;
    network.build(0, 2.0, 0.0);
    const double v[] = {12.0, 4.0, 99.0};
    const bool flags[] = {true, true, false};
    const double r[] = {2.0, 2.0, 2.0};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(resistive(v, flags, r, 0.5)));
    EXPECT_DOUBLE_EQ(solver.solution()[0], 2.0);
    EXPECT_DOUBLE_EQ(solver.solution()[1], -2.0);
    EXPECT_NEAR(solver.solution()[2], 0.0, 1e-15);
    EXPECT_DOUBLE_EQ(solver.solution()[5], 8.0);
    EXPECT_DOUBLE_EQ(solver.solution()[6], 8.0);
    EXPECT_EQ(network.terminals[2]->potential, 0.0);
}

TEST(WindingSolver, all_ports_undriven_take_the_replaced_pivot) {
    // One winding, a = dt R = 1, dt = 0.5, right-hand side psi_previous - psi = 2:
    //   ( 1 -0.5 0.5 | 2 ), ( 1 0 0 | 0 ), ( -1 0 0 | 0 )
    // Column 1: (0.5 -0.5 | -2), (-0.5 0.5 | 2). Column 2: factor -1, pivot 0.5 - 0.5 = 0 -> 1e-20, right-hand side 0.
    // Back: p2 = 0 / 1e-20 = 0, p1 = -2 / 0.5 = -4, i = (2 - (-4)(-0.5) - 0) / 1 = 0.
    WindingNetwork network;
    network.build(7, 2.0, 0.0);
    const bool flags[] = {false, false};
    const double r = 2.0, previous_flux = 2.0;
    WindingInput input = resistive(none, flags, &r, 0.5);
    input.previous_flux = &previous_flux;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(input));
    EXPECT_EQ(solver.solution()[0], 0.0);
    EXPECT_EQ(solver.solution()[1], -4.0);
    EXPECT_EQ(solver.solution()[2], 0.0);
}

TEST(WindingSolver, field_winding_of_a_wound_machine_returns_to_the_base_potential) {
    // Star of 2 Ohm at 12, 6, -6 V as above; field winding 4 Ohm at 10 V against 0 V: 2.5 A.
    WindingNetwork network;
    network.build(13, 2.0, 4.0);
    const double v[] = {12.0, 6.0, -6.0, 10.0};
    const double r[] = {2.0, 2.0, 2.0, 4.0};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_emf_form(resistive(v, all_driven, r, 0.5)));
    EXPECT_DOUBLE_EQ(solver.solution()[0], 4.0);
    EXPECT_DOUBLE_EQ(solver.solution()[3], 2.5);
    EXPECT_DOUBLE_EQ(solver.solution()[4 + 4], 4.0);  // neutral
    EXPECT_EQ(solver.solution()[4 + 5], 0.0);         // base
    EXPECT_DOUBLE_EQ(solver.terminal_currents()[5], -2.5);
}

boost::shared_ptr<kzb::KZelement> element(int id, int from, int to, int kind) {
    auto made = boost::make_shared<kzb::KZelement>();
    made->id = id;
    made->from_terminal = from;
    made->to_terminal = to;
    made->kind = kind;
    return made;
}

boost::shared_ptr<kzb::KZterminal> terminal(int id, int kind) {
    auto made = boost::make_shared<kzb::KZterminal>();
    made->id = id;
    made->kind = kind;
    return made;
}

TEST(WindingSolver, row_of_a_base_terminal_keeps_its_entries_beyond_the_terminal_count) {
    // Three coils from terminal 1 (driven, 6 V) to base terminal 2: M 3, N 2. The base row loses columns 0 and 1 only;
    // -1 in column 2 stays: p2 - i3 = 0. The currents don't see p2: 6 / 1, 6 / 2, 6 / 3.
    WindingNetwork network;
    network.port_count = 1;
    network.elements = {element(1, 1, 2, 1), element(2, 1, 2, 1), element(3, 1, 2, 1)};
    network.terminals = {terminal(1, 3), terminal(2, 2)};
    const double v = 6.0;
    const double r[] = {1.0, 2.0, 3.0};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(resistive(&v, all_driven, r, 1.0)));
    EXPECT_EQ(solver.solution()[0], 6.0);
    EXPECT_EQ(solver.solution()[1], 3.0);
    EXPECT_EQ(solver.solution()[2], 2.0);
    EXPECT_EQ(solver.solution()[4], 2.0);
    EXPECT_EQ(solver.terminal_currents()[0], 11.0);
    EXPECT_EQ(solver.terminal_currents()[1], -11.0);
}

TEST(WindingSolver, injected_current_flows_through_a_plain_resistor) {
    // 2 A into terminal 1, resistor of 3 Ohm to terminal 2, which is driven to 1 V: p1 = 1 + 6 = 7 V.
    WindingNetwork network;
    network.port_count = 2;
    network.elements = {element(1, 1, 2, -1)};
    network.elements[0]->plain_resistance = 3.0;
    network.terminals = {terminal(1, 1), terminal(2, 3)};
    network.terminals[0]->injected_current = 2.0;
    const double v[] = {0.0, 1.0};
    const bool flags[] = {false, true};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_emf_form(resistive(v, flags, none, 0.5)));
    EXPECT_DOUBLE_EQ(solver.solution()[0], 2.0);
    EXPECT_DOUBLE_EQ(solver.solution()[1], 7.0);
}

TEST(WindingSolver, plain_resistor_takes_no_coil_number) {
    // Resistor of 2 Ohm in front of a coil: the coil's flux is entry 0, its current and resistance entry 1.
    WindingNetwork network;
    network.port_count = 4;
    network.elements = {element(1, 1, 3, -1), element(2, 2, 4, 1)};
    network.elements[0]->plain_resistance = 2.0;
    network.terminals = {terminal(1, 3), terminal(2, 3), terminal(3, 3), terminal(4, 3)};
    const double v[] = {8.0, 0.0, 0.0, 0.0};
    const double resistance[] = {100.0, 4.0};
    const double previous_flux[] = {6.0, 100.0};
    const double coupling[] = {2.0, 100.0, 100.0, 100.0};
    const double current[] = {100.0, 3.0};
    WindingInput input = resistive(v, all_driven, resistance, 1.0);
    input.previous_flux = previous_flux;
    input.coupling = coupling;
    input.previous_coupling = coupling;
    input.current = current;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(input));
    EXPECT_EQ(solver.solution()[0], 4.0);
    EXPECT_EQ(solver.solution()[1], 2.0);  // (4 + 2 * 2 - 2) i = 6 + 3 * 2
}

TEST(WindingSolver, element_with_both_ends_on_one_terminal_keeps_the_arriving_entry) {
    // Pattern 12, element 4: node row entry -1, element row entry +dt, by assignment. All ports driven to 0 but port 4
    // at 5 V: element 4 sees dt R i + dt p4 = 0, i4 = -5 / 2; elements 1 to 3 end at terminal 4: i = -5 / 1.
    WindingNetwork network;
    network.build(12, 1.0, 0.0);
    const double v[] = {0.0, 0.0, 0.0, 5.0};
    const double r[] = {1.0, 1.0, 1.0, 2.0};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(resistive(v, all_driven, r, 0.5)));
    EXPECT_EQ(solver.solution()[0], -5.0);
    EXPECT_EQ(solver.solution()[3], -2.5);
    EXPECT_EQ(solver.terminal_currents()[3], 17.5);  // -(-5) * 3 - (-2.5)
}

TEST(WindingSolver, dense_form_of_four_currents) {
    // Diagonal system: l = diag(1, 2, 4, 8), l_prev = diag(1, 1, 1, 1), r = diag(2, 4, 6, 8), dt 0.5.
    // Matrix 2 l + dt r - l_prev = (2, 5, 10, 19); the right-hand side has the diagonal entries l[0] and l[5] in rows 1
    // and 2, l[10] and l[15] in rows 3 and 4: (x0 + v0/2, 2 x1 + v1/2, 4 x2 + v2/2, 8 x3 + v3/2).
    WindingNetwork network;
    network.build(12, 0.0, 0.0);
    double l[16] = {}, l_previous[16] = {}, r[16] = {};
    for (std::size_t k = 0; k < 4; ++k) {
        l[5 * k] = static_cast<double>(1 << k);
        l_previous[5 * k] = 1.0;
        r[5 * k] = 2.0 * static_cast<double>(k + 1);
    }
    const double x[] = {1.0, 2.0, 3.0, 4.0};
    const double v[] = {2.0, 12.0, 16.0, 12.0};
    WindingInput input;
    input.voltages = none;
    input.flags = all_driven;
    input.dt = 0.5;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_dense(input, DenseInput{l, l_previous, r, x, v}));
    EXPECT_EQ(solver.order(), 4U);
    EXPECT_EQ(solver.solution()[0], 2.0 / 2.0);
    EXPECT_EQ(solver.solution()[1], 10.0 / 5.0);
    EXPECT_EQ(solver.solution()[2], 20.0 / 10.0);
    EXPECT_EQ(solver.solution()[3], 38.0 / 19.0);
}

TEST(WindingSolver, dense_form_takes_its_right_hand_side_from_eight_entries) {
    // Unit matrix: 2 l + dt r - l_prev with l_prev = 2 l and dt r = 1 on the diagonal. So y is the right-hand side:
    // row 1: l[0] x0 + dt v0 + l[2] x2, row 2: l[5] x1 + dt v1 + l[7] x3, row 3: l[8] x0 + dt v2 + l[10] x2,
    // row 4: l[13] x1 + dt v3 + l[15] x3; l[k] = k + 1, x = (1, 10, 100, 1000), dt 0.5, v = (2, 4, 6, 8).
    WindingNetwork network;
    network.build(12, 0.0, 0.0);
    double l[16], l_previous[16], r[16] = {};
    for (int k = 0; k < 16; ++k) {
        l[k] = k + 1.0;
        l_previous[k] = 2.0 * l[k];
    }
    r[0] = r[5] = r[10] = r[15] = 2.0;
    const double x[] = {1.0, 10.0, 100.0, 1000.0};
    const double v[] = {2.0, 4.0, 6.0, 8.0};
    WindingInput input;
    input.voltages = none;
    input.flags = all_driven;
    input.dt = 0.5;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_dense(input, DenseInput{l, l_previous, r, x, v}));
    EXPECT_EQ(solver.solution()[0], 1.0 + 1.0 + 300.0);
    EXPECT_EQ(solver.solution()[1], 60.0 + 2.0 + 8000.0);
    EXPECT_EQ(solver.solution()[2], 9.0 + 3.0 + 1100.0);
    EXPECT_EQ(solver.solution()[3], 140.0 + 4.0 + 16000.0);
}

TEST(WindingSolver, dense_form_of_another_network_stays_inside_its_order) {
    WindingNetwork network;
    network.build(7, 0.0, 0.0);
    const double unit[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    const double x[] = {3.0, 3.0, 3.0, 3.0};
    WindingInput input;
    input.voltages = none;
    input.flags = all_driven;
    input.dt = 1.0;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_dense(input, DenseInput{unit, unit, none, x, none}));
    EXPECT_EQ(solver.order(), 1U);
    EXPECT_EQ(solver.solution()[0], 3.0);  // (2 - 1) y = 1 * 3
}

TEST(WindingSolver, empty_network_gives_an_empty_solution) {
    const WindingNetwork network;
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(resistive(none, all_driven, none, 1.0)));
    EXPECT_EQ(solver.order(), 0U);
}

TEST(WindingSolver, network_beyond_the_bound_is_refused) {
    WindingNetwork network;
    for (int k = 1; k <= 9; ++k) {
        network.elements.push_back(element(k, k, k, 1));
        network.terminals.push_back(terminal(k, 3));
    }
    const double one[81] = {};
    WindingInput input = resistive(none, all_driven, one, 1.0);
    WindingSolver solver(network);
    EXPECT_FALSE(solver.solve_flux_form(input));
    EXPECT_EQ(solver.order(), 0U);
}

TEST(WindingSolver, element_to_a_terminal_that_is_not_there_stays_inside_the_matrix) {
    WindingNetwork network;
    network.port_count = 1;
    network.elements = {element(1, 1, 7, 1), element(2, 0, -3, 1)};
    network.terminals = {terminal(1, 3)};
    const double v = 6.0;
    const double r[] = {2.0, 2.0};
    WindingSolver solver(network);
    EXPECT_TRUE(solver.solve_flux_form(resistive(&v, all_driven, r, 1.0)));
    EXPECT_EQ(solver.solution()[0], 3.0);
    EXPECT_EQ(solver.solution()[1], 0.0);
}

class WindingSolverLog : public testing::Test {
  protected:
    void SetUp() override {
        path_ = std::filesystem::temp_directory_path() / ("kzb_solver_log_" + std::to_string(::getpid()) + ".xml");
        kzb::LogSettings settings;
        settings.path = path_.string();
        kzb::log_create(settings);
    }
    void TearDown() override {
        kzb::log_finish();
        std::filesystem::remove(path_);
    }
    std::string text() {
        std::ostringstream all;
        all << std::ifstream(path_).rdbuf();
        return all.str();
    }
    std::filesystem::path path_;
};

TEST_F(WindingSolverLog, port_without_a_terminal_is_reported_and_the_solve_still_runs) {
    WindingNetwork network;
    network.build(7, 2.0, 0.0);
    network.port_count = 3;
    const double v[] = {6.0, 2.0, 1.0};
    const double r = 2.0;
    WindingSolver solver(network);
    EXPECT_FALSE(solver.solve_flux_form(resistive(v, all_driven, &r, 1.0)));
    EXPECT_EQ(solver.solution()[0], 2.0);
    EXPECT_NE(text().find("\t<code>180000</code>\n\t<status>Warning</status>\n\t<category>Condition</category>\n"
                          "\t<text>incorrect input(V) information</text>\n"),
              std::string::npos);
}

TEST_F(WindingSolverLog, element_of_unknown_kind_is_reported_and_the_solve_still_runs) {
    WindingNetwork network;
    network.build(5, 2.0, 0.0);
    network.elements[0]->kind = 0;
    const double v[] = {6.0, 6.0, 2.0, 2.0};
    const double r[] = {2.0, 2.0};
    WindingSolver solver(network);
    EXPECT_FALSE(solver.solve_flux_form(resistive(v, all_driven, r, 1.0)));
    EXPECT_EQ(solver.solution()[1], 2.0);
    EXPECT_NE(text().find("\t<code>100</code>\n\t<status>Warning</status>\n"
                          "\t<category>KZ circuit solver error</category>\n"
                          "\t<text>incorrect element information</text>\n"),
              std::string::npos);
}

TEST(WindingSolverDeathTest, report_without_a_logger_ends_the_process) {
    WindingNetwork network;
    network.build(7, 2.0, 0.0);
    network.elements[0]->kind = 5;
    EXPECT_EXIT(
        {
            WindingSolver solver(network);
            solver.solve_flux_form(resistive(none, all_driven, none, 1.0));
        },
        testing::ExitedWithCode(1), "Logger not initialised");
}

}  // namespace
