// A step of the machines of separate coils takes nothing from the heap once the first samples have been made.
#include "coil_files.h"
#include "support/heap_count.h"

namespace kzb_test::coil_allocation_test {
namespace {

// Allocations of 16 steps behind the first four; `step` gets the number of the sample.
std::size_t allocations_of(const std::function<void(int)>& step) {
    for (int n = 1; n < 5; ++n) {
        step(n);
    }
    const std::size_t before = allocations;
    for (int n = 5; n < 21; ++n) {
        step(n);
    }
    return allocations - before;
}

TEST(coil_allocation, steps_take_nothing_from_the_heap) {
    KZB_STORE sr_store;
    sr_file(sr_store, 5, coupled(5, 0.02, 0.001), always(1.0));
    kzb::Calc_Eq_sr sr;
    sr.bind(sr_store, 5);
    const double ones[5] = {1.0, 1.0, 1.0, 1.0, 1.0};
    EXPECT_EQ(allocations_of([&](int n) {
                  sr.step(ones, n * 0.01, n * 1e-3, ones);
                  sr.evaluate_torque();
                  sr.accept();
              }),
              0U);

    KZB_STORE solenoid_store;
    solenoid_file(solenoid_store, always(0.02), always(0.4), always(1.0), nodes(-1.0, 1.0, 30));
    kzb::Calc_Eq_solenoid solenoid;
    solenoid.bind(solenoid_store);
    EXPECT_EQ(allocations_of([&](int n) {
                  solenoid.step(1.0, n * 0.001, n * 1e-3, 1.0);
                  solenoid.evaluate_force();
                  solenoid.accept();
              }),
              0U);

    KZB_STORE stepper_store;
    stepper_file(stepper_store, coupled(4, 0.02, 0.001), always(0.4), always(1.0), nodes(0.0, 360.0, 91, true));
    kzb::Calc_Eq_sm stepper;
    stepper.bind(stepper_store);
    EXPECT_EQ(allocations_of([&](int n) {
                  stepper.step(1.0, 2.0, 3.0, 4.0, n * 0.01, n * 1e-3, 1.0, 1.0, 1.0, 1.0);
                  stepper.evaluate_torque();
                  stepper.accept();
              }),
              0U);
}

}  // namespace
}  // namespace kzb_test::coil_allocation_test
