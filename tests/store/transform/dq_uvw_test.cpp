// Tables of phase and d-q-0 quantities: shapes, grids, flags, and values against the frame written out.
#include <gtest/gtest.h>

#include "store/transform/transforms.h"
#include "synthetic_store.h"

namespace {

using namespace synthetic;

class DqUvw : public testing::Test {
  protected:
    DqUvw() {
        fill_control(store, 10000, 4, 15.0);
        for (const char* category : {"current_table", "flux_table", "harmonic_torque"}) {
            kzb::require_category(store, category);
        }
    }
    // Electrical angle of a position: 4 poles, zero of the angle 15 degrees.
    static double angle(double position) { return position * 2 + 15.0; }

    KZB_STORE store;
    const std::vector<double> positions = range(0, 30, 180);
    const std::vector<double> phases = {0, 1, 2};
};

TEST_F(DqUvw, a_flux_fixed_to_the_rotor_is_constant_in_d_q_0) {
    make_table(store, "current_flux", "mag_flux", {positions, phases}, {1, 0}, [](const Point& x) {
        const double t = angle(x[0]) - 120 * x[1];
        return std::sqrt(2.0 / 3.0) * (0.4 * cosd(t) - 0.1 * sind(t)) + 0.05 / std::sqrt(3.0);
    });
    EXPECT_EQ(kzb::make_dq0_from_UVW(store), 0);
    const double expected[] = {0.4, 0.1, 0.05};
    const char* keys[] = {"fd_noload", "fq_noload", "f0_noload"};
    for (int c = 0; c < 3; ++c) {
        EXPECT_EQ(kzb::table_dim(store, "flux_table", keys[c]), 1);
        EXPECT_EQ(nodes(store, "flux_table", keys[c], 1), positions);
        EXPECT_EQ(cyclic_flags(store, "flux_table", keys[c]), std::vector<int>{1});
        for (int i = 0; i < 7; ++i) {
            EXPECT_NEAR(value(store, "flux_table", keys[c], {i}), expected[c], 1e-15);
        }
    }
}

TEST_F(DqUvw, phase_flux_from_d_q_0_is_the_inverse_matrix) {
    const char* keys[] = {"fd_noload", "fq_noload", "f0_noload"};
    for (int c = 0; c < 3; ++c) {
        make_table(store, "flux_table", keys[c], {positions}, {1}, [c](const Point& x) { return c + x[0] / 100; });
    }
    EXPECT_EQ(kzb::make_UVW_from_dq0(store), 0);
    EXPECT_EQ(nodes(store, "current_flux", "mag_flux", 1), positions);
    EXPECT_EQ(nodes(store, "current_flux", "mag_flux", 2), phases);
    EXPECT_EQ(cyclic_flags(store, "current_flux", "mag_flux"), (std::vector<int>{1, 0}));
    for (int i = 0; i < 7; ++i) {
        const double p = positions[static_cast<std::size_t>(i)];
        for (int n = 0; n < 3; ++n) {
            const double t = angle(p) - 120 * n;
            const double expected = std::sqrt(2.0 / 3.0) * ((0 + p / 100) * cosd(t) - (1 + p / 100) * sind(t)) +
                                    (2 + p / 100) / std::sqrt(3.0);
            EXPECT_NEAR(value(store, "current_flux", "mag_flux", {i, n}), expected, 4e-15);
        }
    }
}

TEST_F(DqUvw, currents_there_and_back_are_the_same) {
    const std::vector<std::vector<double>> grids = {{-1, 0, 1}, {-2, 2}, positions};
    const Function id = [](const Point& x) { return x[0] + 0.1 * x[1] + 0.001 * x[2]; };
    const Function iq = [](const Point& x) { return x[1] - 0.2 * x[0]; };
    make_table(store, "current_table", "id", grids, {0, 0, 0}, id);
    make_table(store, "current_table", "iq", grids, {0, 0, 0}, iq);
    EXPECT_EQ(kzb::make_UVW_from_dq0_current(store), 0);
    EXPECT_EQ(kzb::find_table(store, "current_flux", "iuvw")->sizes, (std::vector<int>{3, 2, 7, 3}));
    EXPECT_EQ(cyclic_flags(store, "current_flux", "iuvw"), (std::vector<int>{0, 0, 1, 0}));
    EXPECT_EQ(nodes(store, "current_flux", "iuvw", 1), grids[0]);
    EXPECT_EQ(nodes(store, "current_flux", "iuvw", 3), positions);
    EXPECT_EQ(nodes(store, "current_flux", "iuvw", 4), phases);
    // Currents without a zero part add up to 0; phase u at (0, 1, 0): x = {-1, 2, 0}, angle 15.
    const double u = std::sqrt(2.0 / 3.0) * ((-1 + 0.2) * cosd(15) - (2 + 0.2) * sind(15));
    EXPECT_NEAR(value(store, "current_flux", "iuvw", {0, 1, 0, 0}), u, 1e-15);

    kzb::delete_table(store, "current_table", "id");
    kzb::delete_table(store, "current_table", "iq");
    EXPECT_EQ(kzb::make_dq0_from_UVW_current(store), 0);
    EXPECT_EQ(cyclic_flags(store, "current_table", "id"), (std::vector<int>{0, 0, 1}));
    EXPECT_EQ(cyclic_flags(store, "current_table", "iq"), (std::vector<int>{0, 0, 1}));
    EXPECT_EQ(nodes(store, "current_table", "iq", 2), grids[1]);
    for_each(grids, [&](const std::vector<int>& at, const Point& x) {
        EXPECT_NEAR(value(store, "current_table", "id", at), id(x), 1e-14);
        EXPECT_NEAR(value(store, "current_table", "iq", at), iq(x), 1e-14);
    });
}

TEST_F(DqUvw, nothing_happens_without_the_application) {
    kzb::put_int(store, "control", "motor_type", 10007);
    EXPECT_EQ(kzb::make_dq0_from_UVW(store), 0);
    EXPECT_EQ(kzb::make_dq0_from_UVW_current(store), 0);
    EXPECT_EQ(kzb::make_UVW_from_dq0(store), 0);
    EXPECT_EQ(kzb::make_UVW_from_dq0_current(store), 0);
    EXPECT_FALSE(kzb::has_category(store, "current_flux"));
    EXPECT_EQ(kzb::find_category(store, "flux_table")->tables.size(), 0U);
}

TEST_F(DqUvw, an_absent_source_gives_a_table_without_rows) {
    EXPECT_EQ(kzb::make_dq0_from_UVW(store), 0);
    EXPECT_EQ(kzb::make_UVW_from_dq0(store), 0);
    EXPECT_EQ(kzb::make_dq0_from_UVW_current(store), 0);
    EXPECT_EQ(kzb::make_UVW_from_dq0_current(store), 0);
    EXPECT_EQ(kzb::table_rows(store, "flux_table", "fd_noload", 1), 0);
    EXPECT_EQ(kzb::table_rows(store, "current_flux", "iuvw", 1), 0);
}

// A component that the table lacks reads as 1.0, the result of every invalid index.
TEST_F(DqUvw, a_source_of_two_phases_reads_one_for_the_third) {
    make_table(store, "current_flux", "mag_flux", {{0}, {0, 1}}, {1, 0}, [](const Point&) { return 0.0; });
    kzb::make_dq0_from_UVW(store);
    EXPECT_DOUBLE_EQ(value(store, "flux_table", "f0_noload", {0}), 1 / std::sqrt(3.0));
}

TEST_F(DqUvw, sources_of_fewer_or_more_axes_are_read_within_their_bounds) {
    make_table(store, "current_flux", "mag_flux", {{0, 90}}, {1}, [](const Point&) { return 2.0; });
    kzb::make_dq0_from_UVW(store);
    EXPECT_NEAR(value(store, "flux_table", "f0_noload", {1}), 6 / std::sqrt(3.0), 1e-15);
    make_table(store, "current_flux", "mag_flux", {{0, 90}, phases, {0, 1}, {0, 1}}, {1, 0, 0, 0},
               [](const Point& x) { return x[2] + x[3] == 0 ? 1.0 : 1e9; });
    kzb::make_dq0_from_UVW(store);
    EXPECT_NEAR(value(store, "flux_table", "f0_noload", {1}), 3 / std::sqrt(3.0), 1e-15);
}

TEST_F(DqUvw, a_position_axis_without_grid_sets_the_error_of_a_missing_node) {
    const int sizes[] = {2, 3};
    kzb::create_table(store, "current_flux", "mag_flux", 2, sizes);
    EXPECT_EQ(kzb::make_dq0_from_UVW(store), 0);
    EXPECT_EQ(store.error, 90010);
    EXPECT_EQ(nodes(store, "flux_table", "fd_noload", 1), (std::vector<double>(2, kzb::KZB_NO_VALUE)));
}

TEST_F(DqUvw, a_kept_reference_sees_the_new_table) {
    make_table(store, "current_flux", "mag_flux", {positions, phases}, {1, 0}, [](const Point&) { return 1.0; });
    kzb::TableRef noload("flux_table", "f0_noload");
    EXPECT_FALSE(noload.exists(store));
    const auto before = store.revision;
    kzb::make_dq0_from_UVW(store);
    EXPECT_GT(store.revision, before);
    EXPECT_TRUE(noload.exists(store));
}

}  // namespace
