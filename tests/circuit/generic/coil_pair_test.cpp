// Which entries of the inductance table the coils of several sets take, and at which position of the moving part.
#include "circuit/generic/generic_files.h"

namespace kzb_test {
namespace {

constexpr double degree = 3.14159265358979323846 / 180.0;

// A rotating part of period 360 degrees; the axes are amplitude, phase, position, a coil's own current, and the pair.
// The inductance table holds 1000 times the pair and the position in degrees.
struct PairFile : GenericFile {
    PairFile() {
        terminal(9, 2);
        add("motion_condition_list;motion_condition",
            {{"id", 1}, {"type", 1}, {"axis_no", 3}, {"max_displacement", 360.0}});
    }
    // A set of the coils of groups first .. first + count - 1, 120 degrees apart.
    void moving_set(int place, int first, int count) {
        set(place, 1, 1, first, count);
        kzb::put_int(store, set_name(place), "phase_axis_no", 2);
        kzb::put_int(store, set_name(place), "motion_id", 1);
    }
    void single_set(int place, int group) { set(place, 0, 4, group, 1); }
    void tables(int coils, int pairs, bool own_current) {
        std::vector<GenericAxis> axes = {{{0.0, 50.0}, false}, {{-180.0, 180.0}, false}, {{0.0, 360.0, 720.0}, false}};
        if (own_current) {
            axes.push_back({{-10.0, 10.0}, false});
        }
        axes.push_back(places(coils));
        record_table("flux_list;flux_table", axes, [](const auto&) { return 0.0; });
        axes.back() = places(pairs);
        record_table("inductance_list;diff_inductance_table", axes,
                     [](const auto& x) { return 1000.0 * x.back() + x[2]; });
    }

  private:
    static std::string set_name(int place) { return "element_set_list;0;coil_set;" + std::to_string(place) + ';'; }
    void set(int place, int type, int current_axis, int first, int count) {
        put(set_name(place), {{"id", place + 1}, {"type", type}, {"current_axis_no", current_axis}});
        for (int k = 0; k < count; ++k) {
            const int group = first + k;
            source(group, group);
            coil(group, group, 9, 1.0, group, 4);
            put(set_name(place) + "coil;" + std::to_string(k) + ';', {{"coil_id", group}, {"phase_diff", 120.0 * k}});
        }
    }
};

// Rows of `expected` by coil, columns by key 1, 2 ..; the first step reads the tables at 20 degrees.
void expect_rows(PairFile& file, const std::vector<std::vector<double>>& expected) {
    GenericRun run(file.store);
    ASSERT_TRUE(run.model.faults().empty()) << run.model.faults().front();
    const std::vector<double> inputs(expected.size(), 0.0);
    const std::vector<double> on(expected.size(), 1.0);
    run.model.step(inputs, {20.0 * degree}, 0.0, on, run.status);
    for (std::size_t c = 0; c < expected.size(); ++c) {
        const auto& coil = *kzb::as_fem_coil(run.model.circuit().element_type_at(static_cast<int>(c)).get());
        for (std::size_t k = 0; k < expected[c].size(); ++k) {
            EXPECT_NEAR(coil.scaled_inductance(static_cast<int>(k) + 1), expected[c][k], 1e-9) << c << ' ' << k;
        }
    }
}

// 4 coils in all. Coil c of the three-phase set takes pairs 0 1 2 in its own order at 20 + 120 c degrees, and pair
// c + 4 of the coil behind it at 20 degrees; that coil's row begins at pair 4.
TEST(GenericPairs, of_three_phases_and_a_coil_behind_them) {
    PairFile file;
    file.moving_set(0, 1, 3);
    file.single_set(1, 4);
    file.tables(4, 8, true);
    expect_rows(file, {{20.0, 1020.0, 2020.0, 4020.0},
                       {2140.0, 140.0, 1140.0, 5020.0},
                       {1260.0, 2260.0, 260.0, 6020.0},
                       {4020.0, 5020.0, 6020.0, 7020.0}});
}

// The single coil's row begins at pair 0. Of the three phases, pairs of the coil before them are 1, 2, 3 (the offset of
// the set, one more for each coil), pairs among themselves begin at 4 + 1.
TEST(GenericPairs, of_three_phases_and_a_coil_before_them) {
    PairFile file;
    file.single_set(0, 1);
    file.moving_set(1, 2, 3);
    file.tables(4, 8, true);
    expect_rows(file, {{20.0, 1020.0, 2020.0, 3020.0},
                       {1020.0, 5020.0, 6020.0, 7020.0},
                       {2020.0, 7140.0, 5140.0, 6140.0},
                       {3020.0, 6260.0, 7260.0, 5260.0}});
}

// Two coils are no three phases: both take the row of their set, unshifted.
TEST(GenericPairs, of_a_set_of_another_size_are_one_row) {
    PairFile file;
    file.moving_set(0, 1, 2);
    file.tables(2, 2, false);
    expect_rows(file, {{20.0, 1020.0}, {20.0, 1020.0}});
}

// A set that names one coil 2001 times would ask for four million lookups in each pass.
TEST(GenericPairs, of_very_many_coils_are_refused) {
    for (const int count : {2000, 2001}) {
        PairFile file;
        file.moving_set(0, 1, 1);
        for (int k = 1; k < count; ++k) {
            file.put("element_set_list;0;coil_set;0;coil;" + std::to_string(k) + ';', {{"coil_id", 1}});
        }
        file.tables(1, 1, false);
        GenericRun run(file.store);
        EXPECT_EQ(run.model.faults().empty(), count == 2000);
    }
}

}  // namespace
}  // namespace kzb_test
