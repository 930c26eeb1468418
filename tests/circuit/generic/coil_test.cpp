// FEM coils and coil sets: factors, difference steps, clamped axes, amplitude and phase, the rows of the pair table.
#include <cstdlib>

#include "circuit/generic/generic_files.h"

namespace kzb_test {
namespace {

using kzb::PortGroup;

const kzb::KZFEMCoil& coil_of(const kzb::Calc_Eq_generic& model, int position) {
    return *kzb::as_fem_coil(model.circuit().element_type_at(position).get());
}

// One coil between source and ground whose flux is `flux(i)` over `grid`.
struct CoilFile : GenericFile {
    CoilFile(const std::vector<double>& grid, const GenericFormula& flux, bool index_axis = true) {
        source(1, 1);
        terminal(2, 2);
        coil(1, 1, 2, 2.0, 1, 1);
        add("table_axis_list;axis", {{"id", 1}, {"type", 1}, {"reference_id", 1}});
        add("flux_list;phase_list;phase", {{"index", 0}, {"reference_id", 1}});
        std::vector<GenericAxis> axes = {{grid, false}};
        if (index_axis) {
            axes.push_back(places(1));
        }
        record_table("flux_list;flux_table", axes, flux);
    }
};

// The inductance at a current, which the first step evaluates.
double inductance_at(CoilFile& file, double current) {
    GenericRun run(file.store);
    run.model.set_current(PortGroup::coils, 1, current);
    run.model.step({0.0}, {}, 0.0, {1.0}, run.status);
    return coil_of(run.model, 0).scaled_inductance(1);
}

double square(const std::vector<double>& x) {
    return x[0] * x[0];
}

TEST(GenericCoil, single_coil_needs_no_index_axis) {
    CoilFile file(
        {-10.0, 0.0, 10.0}, [](const auto& x) { return 0.2 * x[0]; }, false);
    GenericRun run(file.store);
    run.sample(0.0, {10.0});
    run.sample(1e-3, {10.0});
    EXPECT_NEAR(run.model.current(PortGroup::coils, 1), 10.0 * 1e-3 / (0.2 + 2.0 * 1e-3), 1e-9);
}

// x = 0 on {0, 1, 3}: w = 1 (least non-zero), lo = 0, hi = 3: u = 2/3, v = 1/3,
// step = ((1 - 2/3) 0.05 + (1 - 1/3) 0.1) * 1 = 1/60 + 1/15 = 1/12; between nodes 0 and 1 the table has slope 1.
TEST(GenericCoil, zero_current_is_moved_by_a_part_of_the_least_node) {
    CoilFile file({0.0, 1.0, 3.0}, square);
    EXPECT_NEAR(inductance_at(file, 0.0), 1.0, 1e-12);
    // On {0, 0.05, 3}: w = 0.05, step = (0.05/3 * 0.05 + (1 - 0.05/3) * 0.1) * 0.05 < 0.05: slope 0.05.
    CoilFile fine({0.0, 0.05, 3.0}, square);
    EXPECT_NEAR(inductance_at(fine, 0.0), 0.05, 1e-12);
}

// On {-10, 0, 0.4} the nodes are walked from the first: only -10 is a least one so far that is not 0, so w = 10 and
// step = 0.05 * 10, which leaves the grid: the flux there is that of 0.4.
TEST(GenericCoil, least_node_is_that_of_a_walk_from_the_first) {
    CoilFile file({-10.0, 0.0, 0.4}, square);
    EXPECT_NEAR(inductance_at(file, 0.0), 0.16 / 0.5, 1e-12);
}

// x = 2 on {1, 2, 3}: lo 1, hi 3, u = v = 1/2, step = (0.025 + 0.05) * 2 = 0.15, upwards: slope of 2 .. 3 is 5.
// x = -2 on {-3, -2, -1}: the step is positive too: slope of -2 .. -1 is -3.
TEST(GenericCoil, step_is_positive_on_both_sides) {
    CoilFile up({1.0, 2.0, 3.0}, square);
    EXPECT_NEAR(inductance_at(up, 2.0), 5.0, 1e-9);
    CoilFile down({-3.0, -2.0, -1.0}, square);
    EXPECT_NEAR(inductance_at(down, -2.0), -3.0, 1e-9);
}

// One node: the axis comes back to 0.99 times it, the step is a hundredth; the table is constant there.
// A node at 0 makes the step 0: the inductance stays absent.
TEST(GenericCoil, axis_of_one_node_is_moved_by_a_hundredth) {
    CoilFile file({4.0}, square);
    EXPECT_EQ(inductance_at(file, 4.0), 0.0);
    CoilFile none({0.0}, square);
    GenericRun run(none.store);
    run.model.step({0.0}, {}, 0.0, {1.0}, run.status);
    EXPECT_TRUE(coil_of(run.model, 0).inductances.empty());
}

class ConstantStep : public testing::Test {
  protected:
    void SetUp() override { setenv("DORN_KZ_DEBUG_CONSTDIFF", "1", 1); }
    void TearDown() override { unsetenv("DORN_KZ_DEBUG_CONSTDIFF"); }
};

// A hundredth of -2 is negative: the slope of -3 .. -2, -5. At 0 there is no step.
TEST_F(ConstantStep, is_a_hundredth_and_negative_for_a_negative_current) {
    CoilFile file({-3.0, -2.0, -1.0, 0.0}, square);
    EXPECT_NEAR(inductance_at(file, -2.0), -5.0, 1e-9);
    CoilFile zero({-3.0, -2.0, -1.0, 0.0}, square);
    GenericRun run(zero.store);
    run.model.step({0.0}, {}, 0.0, {1.0}, run.status);
    EXPECT_TRUE(coil_of(run.model, 0).inductances.empty());
}

TEST(GenericCoil, difference_step_is_constant_for_1_alone) {
    setenv("DORN_KZ_DEBUG_CONSTDIFF", "2", 1);
    CoilFile file({-3.0, -2.0, -1.0}, square);
    EXPECT_NEAR(inductance_at(file, -2.0), -3.0, 1e-9);
    unsetenv("DORN_KZ_DEBUG_CONSTDIFF");
}

// No current behind an expression is moved by a hundredth of 1 mA, 1e-5 A: the slope of the first 1e-4 A, 2.
TEST(GenericCoil, no_current_behind_an_expression_is_moved_by_a_part_of_the_least_current) {
    CoilFile file({0.0, 1e-4, 1.0}, [](const auto& x) { return x[0] < 1e-3 ? 2.0 * x[0] : 1.0; });
    kzb::put_int(file.store, "table_axis_list;0;axis;0;", "type", 0);
    kzb::put_string(file.store, "table_axis_list;0;axis;0;", "definition", "i");
    file.add("user_defined_equation_list;user_defined_equation",
             {{"name", std::string("i")}, {"type", 1}, {"reference_id", 1}});
    EXPECT_NEAR(inductance_at(file, 0.0), 2.0, 1e-9);
}

// An axis of flag 2 wraps in the lookup, and is brought back to 2.97 all the same; 0.1507275 behind that, past the end
// at 3, the table is at 1.1207275 of its second turn.
TEST(GenericCoil, axis_of_another_cyclic_flag_than_1_is_brought_back) {
    CoilFile file({1.0, 2.0, 3.0}, square);
    kzb::table_set_cyclic_flag(kzb::find_table(file.store, "flux_list;0;flux_table;0;", "table"), 1, 2);
    EXPECT_NEAR(inductance_at(file, 100.0), (1.0 + 3.0 * 0.1207275 - 8.85) / 0.1507275, 1e-9);
}

// Above the grid {1, 2, 3} the base is 0.99 * 3 = 2.97, its flux 4 + 5 * 0.97 = 8.85; u = 0.015, v = 0.985,
// step = (0.985 * 0.05 + 0.015 * 0.1) * 2.97 = 0.1507275, which leaves the grid: the flux is 9, that of the last node.
TEST(GenericCoil, current_above_the_grid_is_differenced_from_below_its_end) {
    CoilFile file({1.0, 2.0, 3.0}, square);
    GenericRun run(file.store);
    run.model.set_current(PortGroup::coils, 1, 100.0);
    run.model.step({0.0}, {}, 0.0, {1.0}, run.status);
    EXPECT_NEAR(coil_of(run.model, 0).scaled_inductance(1), (9.0 - 8.85) / 0.1507275, 1e-9);
    EXPECT_NEAR(coil_of(run.model, 0).flux, 9.0, 1e-12);
}

TEST(GenericCoil, turns_scale_flux_and_inductance_but_not_the_previous_flux) {
    CoilFile file({-10.0, 0.0, 10.0}, [](const auto& x) { return 0.2 * x[0]; });
    kzb::put_double(file.store, "element_type_list;0;element_type;0;", "turns", 10.0);
    kzb::put_double(file.store, "element_type_list;0;element_type;0;", "coef_turns2", 15.0);
    kzb::put_double(file.store, "element_type_list;0;element_type;0;", "coef_flux", 2.0);
    GenericRun run(file.store);
    run.model.set_current(PortGroup::coils, 1, 5.0);
    run.sample(0.0, {0.0});
    const kzb::KZFEMCoil& coil = coil_of(run.model, 0);
    EXPECT_DOUBLE_EQ(coil.flux, 1.0);
    EXPECT_DOUBLE_EQ(run.model.coil_flux(1), 3.0);
    EXPECT_NEAR(coil.scaled_inductance(1), 0.6, 1e-12);
    EXPECT_DOUBLE_EQ(coil.previous_flux, 1.0);
}

// Without a coefficient the base temperature stands for it: 293.15 ppm per K, 0.029315 % per K.
// From 7 A at 0 V over 1 ms: (2 Ohm * 1 ms + 2 * 0.1 H) i = 0.7 Vs, the flux of the table at 7 A.
TEST(GenericCoil, previous_flux_enters_the_step_as_the_table_gave_it) {
    CoilFile file({-20.0, 0.0, 20.0}, [](const auto& x) { return 0.1 * x[0]; });
    kzb::put_double(file.store, "element_type_list;0;element_type;0;", "coef_turns2", 2.0);
    GenericRun run(file.store);
    run.model.set_current(PortGroup::coils, 1, 7.0);
    run.sample(0.0, {0.0});
    run.sample(1e-3, {0.0});
    EXPECT_NEAR(run.model.current(PortGroup::coils, 1), 0.7 / 0.202, 1e-9);
}

TEST(GenericCoil, turns_stand_for_those_that_are_not_in_the_file) {
    CoilFile file({-20.0, 0.0, 20.0}, [](const auto& x) { return 0.1 * x[0]; });
    kzb::put_double(file.store, "element_type_list;0;element_type;0;", "turns", 4.0);
    GenericRun run(file.store);
    EXPECT_EQ(run.model.value(PortGroup::coils, 1, "turns2"), 4.0);
    EXPECT_EQ(coil_of(run.model, 0).turn_ratio(), 1.0);
}

TEST(GenericCoil, coefficient_that_is_not_in_the_file_is_the_base_temperature) {
    CoilFile file({-10.0, 10.0}, [](const auto& x) { return x[0]; });
    GenericRun run(file.store);
    run.model.set_temperature_correction(true);
    run.model.apply_temperature_correction();
    ASSERT_EQ(run.model.set_coil_temperature(1, 293.15 + 100.0), 1);
    EXPECT_NEAR(run.model.resistance(PortGroup::coils, 1), 2.0 * (1.0 + 100.0 * 293.15e-6), 1e-12);
    EXPECT_EQ(run.model.value(PortGroup::coils, 1, "coef_coil_temp"), 293.15);
}

// Three coils to ground in one set over amplitude, phase and position of a rotating part.
struct SetFile : GenericFile {
    explicit SetFile(const GenericFormula& inductance = [](const auto& x) { return x[3]; }) {
        terminal(4, 2);
        add("motion_condition_list;motion_condition",
            {{"id", 1}, {"type", 1}, {"axis_no", 3}, {"max_displacement", 180.0}});
        add("element_set_list;coil_set", {{"id", 1},
                                          {"type", 1},
                                          {"current_axis_no", 1},
                                          {"phase_axis_no", 2},
                                          {"motion_id", 1},
                                          {"phase_initial", 10.0}});
        for (int k = 1; k <= 3; ++k) {
            source(k, k);
            coil(k, k, 4, 1.0, k, 3);
            put("element_set_list;0;coil_set;0;coil;" + std::to_string(k - 1) + ";",
                {{"coil_id", k}, {"phase_diff", 120.0 * (k - 1)}});
        }
        const GenericAxis amplitude{{0.0, 50.0}, false};
        const GenericAxis phase{{-180.0, 180.0}, false};
        const GenericAxis position{{0.0, 180.0, 360.0}, false};
        record_table("flux_list;flux_table", {amplitude, phase, position, places(3)},
                     [](const auto& x) { return 1e-3 * x[0] + x[3]; });
        record_table("inductance_list;diff_inductance_table", {amplitude, phase, position, places(9)}, inductance);
    }
};

void set_currents(GenericRun& run, const std::vector<double>& currents) {
    for (int k = 1; k <= 3; ++k) {
        run.model.set_current(PortGroup::coils, k, currents[static_cast<std::size_t>(k - 1)]);
    }
}

// The element type's id is 7, its group 1.
TEST(GenericCoilSet, names_its_coils_by_their_group) {
    GenericFile file;
    file.source(1, 1);
    file.terminal(2, 2);
    file.coil(7, 1, 2, 2.0, 1, 1);
    file.add("element_set_list;coil_set", {{"id", 1}, {"type", 0}, {"current_axis_no", 1}});
    file.put("element_set_list;0;coil_set;0;coil;0;", {{"coil_id", 1}});
    file.record_table("flux_list;flux_table", {{{-20.0, 20.0}, false}, places(1)},
                      [](const auto& x) { return 0.1 * x[0]; });
    GenericRun run(file.store);
    ASSERT_TRUE(run.model.faults().empty()) << run.model.faults().front();
    run.model.set_current(PortGroup::coils, 1, 3.0);
    run.sample(0.0, {0.0});
    EXPECT_NEAR(coil_of(run.model, 0).flux, 0.3, 1e-15);
}

// i_k = -A sin(phase + delta_k + theta), theta = 2 pi position / period.
TEST(GenericCoilSet, amplitude_and_phase_of_three_currents) {
    SetFile file;
    GenericRun run(file.store);
    const double pi = 3.14159265358979323846;
    const double position = 0.3;  // rad, of a period of pi
    const double theta = 2.0 * position;
    const double phase = 0.7;
    std::vector<double> currents;
    for (int k = 0; k < 3; ++k) {
        currents.push_back(-20.0 * std::sin(phase + 2.0 * pi / 3.0 * k + theta));
    }
    set_currents(run, currents);
    run.model.step({0.0, 0.0, 0.0}, {position}, 0.0, {1.0, 1.0, 1.0}, run.status);
    const std::vector<double>& axes = run.model.tables().axes();
    ASSERT_EQ(axes.size(), 3u);
    EXPECT_NEAR(axes[0], 20.0, 1e-12);
    EXPECT_NEAR(axes[1], phase * 180.0 / pi - 10.0, 1e-12);
    EXPECT_NEAR(axes[2], position * 180.0 / pi, 1e-13);
    EXPECT_NEAR(coil_of(run.model, 2).flux, 0.02 + 2.0, 1e-12);
}

// Only the first coil at delta = 0, theta = 0: b is 0, the phase 90 degrees with the sign of the current.
TEST(GenericCoilSet, phase_where_b_is_zero_has_the_sign_of_a) {
    for (const double current : {6.0, -6.0, 0.0}) {
        SetFile file;
        GenericRun run(file.store);
        set_currents(run, {current, 0.0, 0.0});
        run.model.step({0.0, 0.0, 0.0}, {0.0}, 0.0, {1.0, 1.0, 1.0}, run.status);
        const double expected = current > 0.0 ? 90.0 : current < 0.0 ? -90.0 : 0.0;
        EXPECT_EQ(run.model.tables().axes()[1], expected - 10.0) << current;
        // amplitude = sqrt(2/3 * 2/3) |i| = 2/3 |i|
        EXPECT_NEAR(run.model.tables().axes()[0], 4.0 * std::fabs(current) / 6.0, 1e-12);
    }
}

// The table holds the pair's index: coil c takes pairs 0 1 2, 2 0 1, 1 2 0.
TEST(GenericCoilSet, pairs_of_a_three_phase_set_turn_with_the_coil) {
    SetFile file;
    GenericRun run(file.store);
    run.model.step({0.0, 0.0, 0.0}, {0.0}, 0.0, {1.0, 1.0, 1.0}, run.status);
    const double expected[3][3] = {{0.0, 1.0, 2.0}, {2.0, 0.0, 1.0}, {1.0, 2.0, 0.0}};
    for (int c = 0; c < 3; ++c) {
        for (int q = 0; q < 3; ++q) {
            EXPECT_NEAR(coil_of(run.model, c).scaled_inductance(q + 1), expected[c][q], 1e-12) << c << ' ' << q;
        }
    }
}

// The table holds the position: 20 degrees, shifted by delta / 360 of the period of 180 degrees: 20, 80, 140.
TEST(GenericCoilSet, position_of_a_three_phase_set_is_shifted_by_the_coil) {
    SetFile file([](const auto& x) { return x[2]; });
    GenericRun run(file.store);
    run.model.step({0.0, 0.0, 0.0}, {20.0 * 3.14159265358979323846 / 180.0}, 0.0, {1.0, 1.0, 1.0}, run.status);
    for (int c = 0; c < 3; ++c) {
        EXPECT_NEAR(coil_of(run.model, c).scaled_inductance(1), 20.0 + 60.0 * c, 1e-10) << c;
    }
}

TEST(GenericCoilSet, set_of_an_unknown_type_or_without_what_it_needs_is_refused) {
    for (const int fault : {0, 1, 2, 3, 4}) {
        SetFile file;
        const std::string set = "element_set_list;0;coil_set;0;";
        switch (fault) {
            case 0:
                kzb::put_int(file.store, set, "type", 2);
                break;
            case 1:
                kzb::put_int(file.store, set, "motion_id", 8);
                break;
            case 2:  // refers to no set
                kzb::put_int(file.store, set, "flg_ref_coil", 1);
                kzb::put_int(file.store, set, "ref_coil_set_id", 8);
                break;
            case 3:  // refers to itself
                kzb::put_int(file.store, set, "flg_ref_coil", 1);
                kzb::put_int(file.store, set, "ref_coil_set_id", 1);
                break;
            default:
                kzb::put_int(file.store, set, "current_axis_no", 9);
        }
        GenericRun run(file.store);
        EXPECT_FALSE(run.model.faults().empty()) << fault;
    }
}

}  // namespace
}  // namespace kzb_test
