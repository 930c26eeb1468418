// Skew of d-q-0 tables: averaged as phase quantities, so that d and q shrink by the mean cosine.
#include <gtest/gtest.h>

#include "skewed_store.h"

namespace {

using namespace synthetic;

class SkewFluxIntegral : public SkewTables {
  protected:
    SkewFluxIntegral() {
        const std::vector<double> degrees = range(0, 0.5, 360);
        make_table(store, "flux_table", "fd_noload", {degrees}, {1}, [](const Point&) { return 0.4; });
        make_table(store, "flux_table", "fq_noload", {degrees}, {1}, [](const Point&) { return 0.1; });
        make_table(store, "flux_table", "f0_noload", {degrees}, {1}, [](const Point&) { return 0.0; });
        for (const char* key : {"id", "iq"}) {
            make_table(store, "current_table", key, {{-1, 1}, {-1, 1}, degrees}, {0, 0, 1},
                       [](const Point& x) { return x[0] + 2 * x[1]; });
        }
        make_table(store, "harmonic_torque", "torque_ibeta", {{0, 360}, {0, 360}, {0, 1}}, {1, 1, 0},
                   [](const Point&) { return 7; });
        kzb::put_int(store, "control", "number_of_poles", 4);
    }
};

TEST_F(SkewFluxIntegral, runs_only_under_all_or_the_exact_application) {
    const char* others[][2] = {
        {"PMSM", "FluxIntegral"}, {"PMSM", "Harmonic"}, {"WFSM", "FluxIntegralDQTheta"}, {"", ""}};
    for (const auto& other : others) {
        store.motor = other[0];
        store.application = other[1];
        EXPECT_EQ(apply(3, 6.0, 4), 1);
        EXPECT_FALSE(kzb::has_category(store, "current_flux"));
    }
    store.motor = "ALL";
    store.application = "";
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    EXPECT_TRUE(kzb::has_parameter(store, "current_flux", "iuvw_org"));
}

// The winding sees a flux that turns: averaging over slices multiplies d and q by the mean cosine of 2 d.
TEST_F(SkewFluxIntegral, flux_and_current_shrink_by_the_mean_cosine) {
    store.motor = "PMSM";
    store.application = "FluxIntegralDQTheta";
    EXPECT_EQ(apply(3, 6.0, 4), 0);
    const double factor = mean_cosine({-6, -2, 2, 6}, false);
    for (int i = 0; i <= 720; i += 90) {
        EXPECT_NEAR(value(store, "flux_table", "fd_noload", {i}), 0.4 * factor, 1e-14);
        EXPECT_NEAR(value(store, "flux_table", "fq_noload", {i}), 0.1 * factor, 1e-14);
        EXPECT_NEAR(value(store, "current_table", "iq", {1, 0, i}), (1 - 2) * factor, 1e-14);
    }
    EXPECT_EQ(value(store, "harmonic_torque", "torque_ibeta", {0, 0, 0}), 7);
    // The no-load tables were taken out and made anew at the end of the list.
    EXPECT_EQ(kzb::find_category(store, "flux_table")->tables[0].keyword, "fd_noload");
    // f0_ibeta is absent: its kept copy is an empty table.
    EXPECT_EQ(kzb::table_dim(store, "flux_table", "f0_ibeta_org"), 0);
    EXPECT_TRUE(kzb::has_parameter(store, "flux_table", "f0_ibeta_org"));
    // Again, with another angle.
    EXPECT_EQ(apply(3, 12.0, 2), 0);
    EXPECT_NEAR(value(store, "flux_table", "fd_noload", {10}), 0.4 * cosd(12), 1e-14);
}

}  // namespace
