// A step takes nothing from the heap once the first samples have been made.
#include <gtest/gtest.h>

#include "pmsm_files.h"
#include "support/heap_count.h"

namespace kzb_test::pmsm_allocation_test {
namespace {

using kzb::Calc_Eq;

TEST(pmsm_allocation, steps_take_nothing_from_the_heap) {
    for (const int kind : {kzb::harmonic, kzb::ld_lq}) {
        KZB_STORE store;
        kind == kzb::ld_lq ? ld_lq_file(store) : harmonic_file(store);
        constant(store, "loss_table", "iron_loss", {nodes(0, 100, 2), nodes(-180, 180, 2)}, 1.0);
        constant(store, "correction", "total-flux", {nodes(0, 100, 2), nodes(0, 360, 2)}, 1.0);
        Calc_Eq model;
        bind(model, store, kind, 1);
        for (int n = 0; n < 4; ++n) {
            sample(model, {10.0, -5.0, -5.0}, n * 0.01, n * 1e-3);
        }
        const std::size_t before = allocations;
        for (int n = 4; n < 20; ++n) {
            sample(model, {10.0, -5.0, -5.0}, n * 0.01, n * 1e-3);
        }
        EXPECT_EQ(allocations - before, 0U) << kind;
    }
}

}  // namespace
}  // namespace kzb_test::pmsm_allocation_test
