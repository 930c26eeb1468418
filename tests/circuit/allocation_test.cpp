// A solve, and building the same pattern anew, take nothing from the heap.
#include <gtest/gtest.h>

#include "circuit/winding_network.h"
#include "circuit/winding_solver.h"
#include "support/heap_count.h"

namespace {

using kzb_test::allocations;

TEST(WindingSolver, solve_allocates_nothing) {
    kzb::WindingNetwork network;
    network.build(10, 1.0, 0.0);
    const double zero[25] = {};
    const double one[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1};
    const bool flags[] = {true, true, true, true, true, true, true, true, true, true};
    kzb::WindingInput input;
    input.voltages = one;
    input.flags = flags;
    input.dt = 1.0;
    input.flux = input.previous_flux = input.emf = input.coupling = input.previous_coupling = zero;
    input.current = input.leakage = zero;
    input.resistance = one;
    const std::size_t before = allocations;
    network.build(10, 2.0, 0.0);
    kzb::WindingSolver solver(network);
    const bool flux_ok = solver.solve_flux_form(input);
    const bool emf_ok = solver.solve_emf_form(input);
    const std::size_t after = allocations;
    EXPECT_TRUE(flux_ok && emf_ok);
    EXPECT_EQ(solver.order(), 15U);
    EXPECT_EQ(after, before);
}

}  // namespace
