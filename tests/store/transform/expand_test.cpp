// Expansion of compact tables: the full table against the function that has the symmetry, grids and flags by hand.
#include <gtest/gtest.h>

#include "store/transform/transforms.h"
#include "symmetric_machine.h"

namespace {

using namespace synthetic;

class Expansion : public testing::Test {
  protected:
    void expect_full(const char* category, const char* key, int widened_axis, const std::vector<int>& cyclic,
                     const Function& f) {
        EXPECT_EQ(cyclic_flags(store, category, key), cyclic) << category << ' ' << key;
        EXPECT_EQ(nodes(store, category, key, widened_axis), range(0, 15, 360)) << category << ' ' << key;
        std::vector<std::vector<double>> grids;
        for (int axis = 1; axis <= kzb::table_dim(store, category, key); ++axis) {
            grids.push_back(nodes(store, category, key, axis));
        }
        for_each(grids, [&](const std::vector<int>& at, const Point& x) {
            ASSERT_NEAR(value(store, category, key, at), f(x), 1e-11) << category << ' ' << key;
        });
    }
    int flag() { return kzb::get_int(store, "control", "use_phase_symmetry"); }
    int expand() { return kzb::expand_table_considering_phase_symmetry(store); }
    std::vector<double> widened(const std::vector<double>& phases) {
        machine.linear(store);
        make_table(store, "distance_force", "force", {phases, machine.positions, {0, 1}}, {0, 1, 0},
                   SymmetricMachine::force);
        EXPECT_EQ(expand(), 0);
        return nodes(store, "distance_force", "force", 1);
    }

    SymmetricMachine machine;
    KZB_STORE store;
};

TEST_F(Expansion, pmsm_harmonic) {
    machine.pmsm(store);
    store.motor = "PMSM";
    store.application = "Harmonic";
    EXPECT_EQ(expand(), 0);
    EXPECT_EQ(flag(), 0);
    expect_full("current_flux", "flux", 2, {0, 1, 1, 0}, SymmetricMachine::flux3);
    expect_full("harmonic_inductance", "inductance", 2, {0, 1, 1, 0}, SymmetricMachine::inductance3);
    expect_full("harmonic_torque", "torque_ibeta", 1, {1, 1, 0}, SymmetricMachine::torque3);
    for (const char* key : {"eddyloss7", "eddyloss12"}) {
        expect_full("eddyloss", key, 2, {0, 1, 0}, SymmetricMachine::loss3);
    }
    for (const char* key : {"hysloss7", "hysloss12"}) {
        expect_full("hysloss", key, 2, {0, 1, 0}, SymmetricMachine::loss3);
    }
    EXPECT_EQ(nodes(store, "harmonic_inductance", "inductance", 4), range(0, 1, 8));
    // A lookup in the full table, now without fold.
    EXPECT_NEAR(look_up(store, "harmonic_torque", "torque_ibeta", {195, 40, 1}),
                SymmetricMachine::torque3({195, 40, 1}), 1e-11);
}

TEST_F(Expansion, wound_field) {
    machine.wound_field(store);
    EXPECT_EQ(expand(), 0);
    EXPECT_EQ(flag(), 0);
    expect_full("current_flux", "flux", 2, {0, 1, 0, 1, 0}, SymmetricMachine::flux4);
    expect_full("harmonic_inductance", "inductance", 2, {0, 1, 0, 1, 0}, SymmetricMachine::inductance4);
    expect_full("harmonic_torque", "torque_ibeta", 2, {0, 1, 0, 1}, SymmetricMachine::torque4);
    expect_full("hysloss", "hysloss3", 2, {0, 1, 0, 0}, SymmetricMachine::loss4);
}

TEST_F(Expansion, linear) {
    machine.linear(store);
    EXPECT_EQ(expand(), 0);
    EXPECT_EQ(flag(), 0);
    expect_full("distance_force", "force", 1, {1, 1, 0}, SymmetricMachine::force);
    expect_full("distance_force", "attractive_force", 1, {1, 1, 0}, SymmetricMachine::attraction);
}

TEST_F(Expansion, linear_without_attractive_force) {
    machine.linear(store);
    kzb::delete_table(store, "distance_force", "attractive_force");
    EXPECT_EQ(expand(), 0);
    EXPECT_FALSE(kzb::has_parameter(store, "distance_force", "attractive_force"));
}

TEST_F(Expansion, phase_zero_gives_360_which_is_there_and_180) {
    EXPECT_EQ(widened({0}), (std::vector<double>{0, 180, 360}));
}

TEST_F(Expansion, negative_phases_give_their_turn_and_its_mirror) {
    // -30: 330 and 270 - 60 = 210. -90: 270 twice.
    EXPECT_EQ(widened({-90, -30}), (std::vector<double>{0, 210, 270, 330, 360}));
}

TEST_F(Expansion, positive_phases_give_themselves_and_their_mirror) {
    EXPECT_EQ(widened({30, 90}), (std::vector<double>{0, 30, 90, 150, 360}));
}

TEST_F(Expansion, phases_beyond_90_degrees_are_dropped) {
    EXPECT_EQ(widened({-90.1, 30, 90.1, 200, 330}), (std::vector<double>{0, 30, 150, 360}));
}

TEST_F(Expansion, nodes_closer_than_the_tolerance_are_one) {
    EXPECT_EQ(widened({30, 30 + 5e-11}), (std::vector<double>{0, 30, 150, 360}));
}

TEST_F(Expansion, without_the_flag_nothing_is_touched) {
    machine.pmsm(store);
    store.application = "Harmonic";
    kzb::put_int(store, "control", "use_phase_symmetry", 0);
    const auto revision = store.revision;
    EXPECT_EQ(expand(), 0);
    EXPECT_EQ(store.revision, revision);
    KZB_STORE empty;
    EXPECT_EQ(kzb::expand_table_considering_phase_symmetry(empty), 0);
    EXPECT_TRUE(empty.categories.empty());
}

TEST_F(Expansion, other_pmsm_applications_leave_the_flag) {
    machine.pmsm(store);
    for (const char* word : {"SimpleHarmonic", "LdLq", "FluxIntegralDQTheta"}) {
        store.application = word;
        EXPECT_EQ(expand(), 0);
        EXPECT_EQ(flag(), 1);
    }
    EXPECT_EQ(nodes(store, "harmonic_torque", "torque_ibeta", 1), machine.betas);
}

TEST_F(Expansion, any_other_word_clears_the_flag_without_expansion) {
    machine.pmsm(store);
    store.application = "";
    EXPECT_EQ(expand(), 0);
    EXPECT_EQ(flag(), 0);
    EXPECT_EQ(nodes(store, "harmonic_torque", "torque_ibeta", 1), machine.betas);
}

TEST_F(Expansion, wound_field_of_another_current_type_fails) {
    machine.wound_field(store);
    kzb::put_int(store, "control", "current_type", 2);
    EXPECT_EQ(expand(), 1);
    EXPECT_EQ(flag(), 1);
    EXPECT_EQ(store.error, 0);
}

TEST_F(Expansion, other_motor_types_are_an_error_and_clear_the_flag) {
    for (const int other : {0, 10003, 10004, 10006, 10008, 10010}) {
        KZB_STORE another;
        fill_control(another, other, 4, 0);
        kzb::put_int(another, "control", "use_phase_symmetry", 2);
        EXPECT_EQ(kzb::expand_table_considering_phase_symmetry(another), 1);
        EXPECT_EQ(another.error, 90030);
        EXPECT_EQ(kzb::get_int(another, "control", "use_phase_symmetry"), 0);
    }
}

TEST_F(Expansion, absent_tables_and_categories_are_skipped) {
    machine.pmsm(store);
    store.application = "Harmonic";
    kzb::delete_table(store, "current_flux", "flux");
    kzb::put_int(store, "eddyloss", "matID2", 99);
    EXPECT_EQ(expand(), 0);
    EXPECT_FALSE(kzb::has_parameter(store, "current_flux", "flux"));
    EXPECT_FALSE(kzb::has_parameter(store, "eddyloss", "eddyloss99"));
    EXPECT_EQ(nodes(store, "eddyloss", "eddyloss12", 2), machine.betas);
    expect_full("eddyloss", "eddyloss7", 2, {0, 1, 0}, SymmetricMachine::loss3);
}

// A second expansion of one table would lose its nodes beyond 90 degrees.
TEST_F(Expansion, a_material_named_twice_is_expanded_once) {
    machine.pmsm(store);
    store.application = "Harmonic";
    kzb::put_int(store, "eddyloss", "matID2", 7);
    EXPECT_EQ(expand(), 0);
    expect_full("eddyloss", "eddyloss7", 2, {0, 1, 0}, SymmetricMachine::loss3);
}

TEST_F(Expansion, a_huge_number_of_materials_ends) {
    machine.pmsm(store);
    store.application = "Harmonic";
    kzb::put_int(store, "eddyloss", "numMat", 2147483647);
    kzb::put_int(store, "hysloss", "numMat", -5);
    EXPECT_EQ(expand(), 0);
    expect_full("eddyloss", "eddyloss12", 2, {0, 1, 0}, SymmetricMachine::loss3);
    EXPECT_EQ(nodes(store, "hysloss", "hysloss7", 2), machine.betas);
}

TEST_F(Expansion, a_table_of_other_axes_fails_and_nothing_changes) {
    machine.pmsm(store);
    store.application = "Harmonic";
    make_table(store, "eddyloss", "eddyloss12", {{0, 1}, machine.betas}, {0, 0}, [](const Point&) { return 1; });
    EXPECT_EQ(expand(), 1);
    EXPECT_EQ(flag(), 1);
    EXPECT_EQ(nodes(store, "current_flux", "flux", 2), machine.betas);
}

TEST_F(Expansion, a_table_without_grid_fails_and_nothing_changes) {
    machine.pmsm(store);
    store.application = "Harmonic";
    const int sizes[] = {2, 3, 2};
    kzb::create_table(store, "harmonic_torque", "torque_ibeta", 3, sizes);
    EXPECT_EQ(expand(), 1);
    EXPECT_EQ(store.error, 90010);
    EXPECT_EQ(nodes(store, "current_flux", "flux", 2), machine.betas);
}

TEST_F(Expansion, a_force_of_other_than_three_axes_has_no_fold_to_expand) {
    machine.linear(store);
    make_table(store, "distance_force", "force", {{0, 1}, {0, 1}}, {0, 0}, [](const Point&) { return 1; });
    EXPECT_EQ(expand(), 0);
    EXPECT_EQ(kzb::table_dim(store, "distance_force", "force"), 2);
    expect_full("distance_force", "attractive_force", 1, {1, 1, 0}, SymmetricMachine::attraction);
}

}  // namespace
