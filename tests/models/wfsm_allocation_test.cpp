// A step of the wound-field model takes nothing from the heap once the first samples have been made.
#include <gtest/gtest.h>

#include "support/heap_count.h"
#include "wfsm_files.h"

namespace kzb_test::wfsm_allocation_test {
namespace {

TEST(wfsm_allocation, steps_take_nothing_from_the_heap) {
    for (const int type : {0, 1}) {
        for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
            const Environment few("DORN_KZ_DEBUG_NITR", "3");
            KZB_STORE store;
            linear_file(store, {.current_type = type, .connection = type, .positions = 9});
            for (const char* category : {"eddyloss", "hysloss"}) {
                kzb::put_int(store, category, "numMat", 1);
                kzb::put_int(store, category, "matID1", 1);
                constant(store, category, category + std::string("1"), std::vector<Axis>(4, nodes(0, 6000, 9)), 3.0);
            }
            Calc_Eq_wfsm model;
            model.set_interpolation(method);
            model.bind(store);
            model.set_loss_mode(1, 1);
            const auto run = [&](int n) {
                sample(model, {10.0, -5.0, -7.0, 4.0}, n * 0.01, n * 1e-3);
                const Four i{1.0, 2.0, -3.0, n % 2 == 0 ? 4.0 : -4.0};
                model.evaluate(i.data(), n * 0.01, n * 1e-3);
            };
            for (int n = 0; n < 4; ++n) {
                run(n);
            }
            const std::size_t before = allocations;
            for (int n = 4; n < 12; ++n) {
                run(n);
            }
            EXPECT_EQ(allocations - before, 0U) << method;
        }
    }
}

}  // namespace
}  // namespace kzb_test::wfsm_allocation_test
