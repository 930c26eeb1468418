// Ld and Lq of kind 3: where they are formed anew, and where the kept values stand.
#include <gtest/gtest.h>

#include "pmsm_flux_integral_file.h"

namespace kzb_test::pmsm_flux_integral_dq_test {
namespace {

// Lq is the chord of the flux, not formed on the d axis, where the last value stands; the first step has none.
TEST(pmsm_flux_integral_dq, q_inductance_is_kept_on_the_d_axis) {
    KZB_STORE store;
    integral_file(store);
    constant(store, "flux_table", "fq_noload", {nodes(0, 360, 5, true)}, 0.0);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    EXPECT_EQ(run.model.q_inductance(), 0.0);
    run.accept(0.0);
    const auto at_flux = [&](double d, double q, double time) {
        run.state[0] = d;
        run.state[1] = q;
        run.execute({}, 0.0, time);
        run.accept(time);
    };
    at_flux(psi, 0.05, 1e-3);  // i = (0, 10) A: beta 0, Lq = 0.05 / 10
    EXPECT_NEAR(run.model.q_inductance(), lq, 1e-15);
    table(store, "current_table", "iq", {nodes(-1, 1, 5), nodes(-1, 1, 5), nodes(0, 360, 5, true)},
          [](const std::vector<double>& x) { return 2.0 * x[1] / lq; });
    at_flux(psi - 0.1, 0.001, 2e-3);  // i = (-50, 0.4) A: beta 89.5 degrees
    EXPECT_NEAR(run.model.q_inductance(), lq, 1e-15);
    at_flux(psi, 0.05, 3e-3);  // i = (0, 20) A
    EXPECT_NEAR(run.model.q_inductance(), lq / 2.0, 1e-15);
}

// Ld = 2 dh / (difference of the table's current); a jump of it at an unmoved current is not believed.
TEST(pmsm_flux_integral_dq, d_inductance_is_kept_without_current_or_when_it_jumps_alone) {
    KZB_STORE store;
    integral_file(store);
    Host run;
    bind(run.model, store, kzb::flux_integral);
    run.execute({}, 0.0, 0.0);
    run.accept(0.0);
    EXPECT_EQ(run.model.d_inductance(), 0.0);  // no current yet
    const Axis flux = nodes(-1.0, 1.0, 5);
    const auto at_flux = [&](double d, double slope, double offset, double time) {
        table(store, "current_table", "id", {flux, flux, nodes(0, 360, 5, true)},
              [=](const std::vector<double>& x) { return (x[0] - offset) / slope; });
        run.state[0] = d;
        run.state[1] = 0.05;
        run.execute({}, 0.0, time);
        run.accept(time);
    };
    at_flux(0.2, 0.002, 0.15, 1e-3);  // i_d = 25 A
    EXPECT_NEAR(run.model.d_inductance(), 0.002, 1e-12);
    at_flux(0.2, 0.004, 0.1, 2e-3);  // 25 A again, twice the slope
    EXPECT_NEAR(run.model.d_inductance(), 0.002, 1e-12);
    at_flux(0.24, 0.004, 0.1, 3e-3);  // 35 A
    EXPECT_NEAR(run.model.d_inductance(), 0.004, 1e-12);
}

}  // namespace
}  // namespace kzb_test::pmsm_flux_integral_dq_test
