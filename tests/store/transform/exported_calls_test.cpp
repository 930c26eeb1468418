// The transforms as users call them.
#include <gtest/gtest.h>

#include "KZBCalculator/kzb_store.h"
#include "symmetric_machine.h"

namespace {

using namespace synthetic;

using Call = int (*)(KZB_STORE*);

TEST(exported_transforms, a_null_handle_gives_the_result_for_nothing_done) {
    for (const Call call : {kzb_make_dq0_from_UVW, kzb_make_dq0_from_UVW_current, kzb_make_UVW_from_dq0,
                            kzb_make_UVW_from_dq0_current, kzb_make_LdLq}) {
        EXPECT_EQ(call(nullptr), 0);
    }
    EXPECT_EQ(kzb_apply_skew(3, 0, 6.0, 0.0, 2, 0, "Linear", nullptr), 1);
    EXPECT_EQ(kzb_expand_table_considering_phase_symmetry(nullptr), 1);
}

TEST(exported_transforms, an_empty_store_stays_empty) {
    KZB_STORE store;
    for (const Call call :
         {kzb_make_dq0_from_UVW, kzb_make_dq0_from_UVW_current, kzb_make_UVW_from_dq0, kzb_make_UVW_from_dq0_current,
          kzb_make_LdLq, kzb_expand_table_considering_phase_symmetry}) {
        EXPECT_EQ(call(&store), 0);
    }
    EXPECT_EQ(kzb_apply_skew(1, 1, 1.0, 1.0, 1, 1, "Linear", &store), 1);
    EXPECT_TRUE(store.categories.empty());
}

class ExportedSkew : public testing::Test {
  protected:
    ExportedSkew() {
        fill_control(store, 10000, 4, 0.0);
        kzb::require_category(store, "harmonic_inductance");
        kzb::require_category(store, "harmonic_torque");
        make_table(store, "current_flux", "mag_flux", {{0, 10, 20}}, {0}, [](const Point& x) { return x[0] * x[0]; });
    }
    KZB_STORE store;
};

TEST_F(ExportedSkew, a_null_method_changes_nothing) {
    const auto revision = store.revision;
    EXPECT_EQ(kzb_apply_skew(3, 0, 6.0, 0.0, 2, 0, nullptr, &store), 1);
    EXPECT_EQ(store.revision, revision);
    EXPECT_EQ(store.error, 0);
    EXPECT_EQ(value(store, "current_flux", "mag_flux", {1}), 100);
    EXPECT_EQ(kzb_has_parameter("current_flux", "mag_flux_org", &store), 0);
    EXPECT_EQ(kzb_has_parameter("harmonic_torque", "torque_ibeta_org", &store), 0);
}

// Slices at 7 and 13, linear between 0, 100 and 400: 70 and 190.
TEST_F(ExportedSkew, averages_the_table) {
    EXPECT_EQ(kzb_apply_skew(3, 0, 6.0, 0.0, 2, 0, "Linear", &store), 0);
    EXPECT_NEAR(value(store, "current_flux", "mag_flux", {1}), 130, 1e-12);
    const int index = 1;
    EXPECT_EQ(kzb_get_table_value("current_flux", "mag_flux_org", &index, &store), 100);
}

TEST(exported_transforms, expansion_replaces_the_compact_table) {
    KZB_STORE store;
    SymmetricMachine().linear(store);
    EXPECT_EQ(kzb_expand_table_considering_phase_symmetry(&store), 0);
    EXPECT_EQ(kzb_get_int("control", "use_phase_symmetry", &store), 0);
    EXPECT_EQ(nodes(store, "distance_force", "force", 1), range(0, 15, 360));
}

TEST(exported_transforms, frame_change_there_and_back) {
    KZB_STORE store;
    fill_control(store, 10000, 4, 0.0);
    kzb::require_category(store, "current_table");
    kzb::require_category(store, "flux_table");
    kzb::require_category(store, "harmonic_torque");
    make_table(store, "current_flux", "mag_flux", {{0, 30}, {0, 1, 2}}, {1, 0},
               [](const Point& x) { return 1 + x[0] + 7 * x[1] * x[1]; });
    ASSERT_EQ(kzb_has_application("PMSM", "FluxIntegralDQTheta", &store), 1);
    EXPECT_EQ(kzb_make_dq0_from_UVW(&store), 0);
    kzb::delete_table(store, "current_flux", "mag_flux");
    EXPECT_EQ(kzb_make_UVW_from_dq0(&store), 0);
    for (const int phase : {0, 1, 2}) {
        EXPECT_NEAR(value(store, "current_flux", "mag_flux", {1, phase}), 31 + 7 * phase * phase, 1e-13);
    }
}

}  // namespace
