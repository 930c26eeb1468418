// A step of the induction model takes nothing from the heap once the first samples have been made.
#include <gtest/gtest.h>

#include "im_files.h"
#include "support/heap_count.h"

namespace kzb_test::im_allocation_test {
namespace {

void put_losses(KZB_STORE& store) {
    const std::vector<Axis> axes(5, nodes(0.0, 20000.0, 4));
    constant(store, "loss_table", "iron_loss", axes, 3.0);
    constant(store, "equivalent_resistance_table", "copper_loss", axes, 0.25);
}

TEST(im_allocation, steps_take_nothing_from_the_heap) {
    for (const bool tables : {false, true}) {
        for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
            KZB_STORE store;
            tables ? im_tables_file(store) : im_constants_file(store);
            put_losses(store);
            Calc_Eq_im_transient model;
            model.set_interpolation(method);
            model.set_user_copper_loss_enabled(true);
            model.bind(store, 1);
            double state[4] = {1.0, 2.0, 0.3, 0.4};
            const auto run = [&](int n) {
                const double v[3] = {10.0, -5.0, -5.0 + 0.1 * n};
                const double i[3] = {3.0, -1.0, -2.0 + 0.1 * n};
                model.execute(v, n * 0.01, n * 1e-3, im_all_driven, 1e-4, state);
                model.torque_from_currents(i, n * 0.01, n * 1e-3, 1e-4, state);
                model.accept();
            };
            for (int n = 1; n < 4; ++n) {
                run(n);
            }
            const std::size_t before = allocations;
            for (int n = 4; n < 20; ++n) {
                run(n);
            }
            EXPECT_EQ(allocations - before, 0U) << method << (tables ? ", tables" : ", constants");
            EXPECT_EQ(model.iron_loss(), 3.0);
        }
    }
}

}  // namespace
}  // namespace kzb_test::im_allocation_test
