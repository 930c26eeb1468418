// A step takes nothing from the heap once the first samples have been made.
#include "circuit/generic/star_model.h"
#include "support/heap_count.h"

namespace kzb_test {
namespace {

void expect_no_allocations(bool table_axes, int coils, bool index_axis, const std::string& method, int samples = 20) {
    GenericFile file;
    fill_star(file, table_axes, coils, index_axis);
    GenericRun run(file.store);
    ASSERT_TRUE(run.model.faults().empty()) << run.model.faults().front();
    run.model.set_interpolation(method);
    run.model.apply_interpolation();
    std::vector<double> inputs(static_cast<std::size_t>(coils));
    const std::vector<double> switches(inputs.size(), 1.0);
    std::vector<double> position(1);
    double sum = 0.0;
    std::size_t before = 0;
    for (int n = 0; n < samples; ++n) {
        if (n == 3) {
            before = allocations;
        }
        for (std::size_t k = 0; k < inputs.size(); ++k) {
            inputs[k] = 5.0 * std::cos(0.3 * n + static_cast<double>(k));
        }
        position[0] = 0.05 * n;
        run.model.step(inputs, position, 1e-3 * n, switches, run.status);
        sum += run.model.force(1);
        run.model.update();
    }
    EXPECT_EQ(allocations - before, 0u) << table_axes << coils << index_axis << method;
    EXPECT_TRUE(std::isfinite(sum));
    EXPECT_GT(run.model.pass_counts().passes, 0);
}

TEST(GenericHeap, steps_take_nothing_from_the_heap) {
    for (const char* const method : {"Linear", "Cubic", "Spline4"}) {
        expect_no_allocations(true, 3, true, method);
        expect_no_allocations(false, 3, true, method);
        expect_no_allocations(true, 1, true, method);
        expect_no_allocations(true, 1, false, method);
        expect_no_allocations(false, 1, true, method);
    }
}

// Four and five coils: tables of six and seven axes.
TEST(GenericHeap, steps_over_six_and_seven_axes_take_nothing_from_the_heap) {
    for (const char* const method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
        expect_no_allocations(true, 4, true, method, 6);
    }
    expect_no_allocations(true, 5, true, "Linear", 6);
}

}  // namespace
}  // namespace kzb_test
