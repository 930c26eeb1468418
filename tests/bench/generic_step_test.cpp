// Generic models, the machine of three coils and models made at random, under scripts of calls in odd order, against
// the plain reference, bit for bit: circuit, tables, ports, outputs, losses, pass counts and debug files.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "generic_models.h"
#include "generic_pair.h"
#include "support/environment.h"
#include "support/files.h"
#include "support/quiet.h"

namespace kzb_bench_test {
namespace {

using kzb_reference::Store;

void configure(GenericDice& dice, const GenericShape& shape, GenericPair& pair) {
    if (dice.one_of(2)) {
        pair.interpolation(dice.pick(0, 4));
    }
    if (dice.one_of(3)) {
        pair.temperature_correction();
    }
    if (dice.one_of(2)) {
        pair.iron_loss();
    }
    if (!dice.one_of(10)) {
        pair.set_data();
    }
    for (int id = 1; id <= shape.motions; ++id) {
        if (dice.one_of(4)) {
            pair.initial_position(id, dice.uniform(-1.0, 1.0));
        }
    }
    for (int kind = 0; kind < 4; ++kind) {
        if (dice.one_of(4)) {
            pair.initial_current(kind, dice.pick(0, 3), dice.uniform(-5.0, 5.0));
        }
    }
}

void set_something(GenericDice& dice, const GenericShape& shape, GenericPair& pair) {
    switch (dice.pick(0, 9)) {
        case 0:
            pair.part_value(dice.pick(0, 3), dice.pick(0, 3),
                            dice.one_of(6) ? dice.number(1.0) : dice.uniform(0.01, 1.0));
            break;
        case 1:
            pair.coil_setting(dice.pick(0, 1), dice.pick(0, 4), dice.uniform(-10.0, 400.0));
            break;
        case 2:
            pair.coil_setting(2, dice.pick(0, 4), dice.one_of(8) ? 0.0 : dice.uniform(0.9, 1.1));
            break;
        case 3:
            pair.coil_setting(3, dice.pick(0, 4), dice.one_of(8) ? 0.0 : dice.uniform(9.0, 11.0));
            break;
        case 4:
            pair.coil_setting(4, dice.pick(0, 4), dice.one_of(8) ? 0.0 : dice.uniform(250.0, 450.0));
            break;
        case 5:
            pair.force_correction(dice.pick(0, 3), dice.uniform(-0.1, 1.5));
            break;
        case 6:
            pair.user_correction(dice.pick(0, 3), dice.uniform(-0.1, 1.5));
            break;
        case 7:
            pair.user_input(dice.pick(0, 3), dice.number(1000.0));
            break;
        case 8:
            pair.supply_type(dice.pick(0, shape.sources), dice.pick(-1, 2));
            break;
        default:
            pair.initial_current(dice.pick(0, 3), dice.pick(0, 3), dice.number(10.0));
    }
}

// Some periods away, so that the reference's wrap by repeated addition comes to an end soon.
double wild_position(GenericDice& dice, double limit) {
    const double value = dice.number(1.0);
    return std::fabs(value) < 1e100 && std::fabs(value) > 1.0 ? limit : value * 5.0 * limit;
}

void run_script(GenericDice& dice, const GenericShape& shape, GenericPair& pair, int samples) {
    double time = dice.one_of(3) ? dice.uniform(0.0, 1.0) : 0.0;
    const bool wild = dice.one_of(3);
    for (int sample = 0; sample < samples && !testing::Test::HasFailure(); ++sample) {
        if (!dice.one_of(15)) {
            time += dice.one_of(30) ? dice.uniform(-1e-3, 0.0) : dice.uniform(1e-5, 1e-3);
        }
        if (!dice.one_of(20)) {
            pair.time(wild && dice.one_of(30) ? dice.number(1.0) : time);
        }
        for (int id = 1; id <= shape.motions; ++id) {
            if (!dice.one_of(10)) {
                const double limit = shape.limits[static_cast<std::size_t>(id - 1)];
                pair.displacement(id, wild ? wild_position(dice, limit) : 0.07 * limit * id * sample);
            }
        }
        for (int id = 1; id <= shape.sources; ++id) {
            pair.supply(id, wild ? dice.number(100.0) : 20.0 * std::sin(0.3 * sample + id));
            if (dice.one_of(15)) {
                pair.supply_switch(id, dice.pick(0, 2));
            }
        }
        if (dice.one_of(6)) {
            set_something(dice, shape, pair);
        }
        pair.execute();
        if (dice.one_of(4)) {
            pair.execute();
        }
        if (!dice.one_of(8)) {
            pair.update();
        }
        pair.expect_equal_results(sample);
    }
}

class GenericRandom : public testing::TestWithParam<int> {};

constexpr int models_of_a_test = 10;

TEST_P(GenericRandom, models_agree_to_the_last_bit) {
    const kzb_test::QuietErrors quiet;
    for (int i = 0; i < models_of_a_test && !HasFailure(); ++i) {
        const unsigned seed = static_cast<unsigned>(GetParam() * models_of_a_test + i);
        GenericDice dice(seed);
        Store store;
        const GenericShape shape = make_random_generic(dice, store);
        SCOPED_TRACE("seed " + std::to_string(seed));
        GenericPair pair(store);
        ASSERT_EQ(pair.status(), 0);
        configure(dice, shape, pair);
        run_script(dice, shape, pair, 12);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, GenericRandom, testing::Range(0, 12));

constexpr const char* debug_files[] = {"IV", "Axis", "L", "Flux", "Itr", "Itr_L", "Itr_Flux", "Itr_Axis"};

class GenericDebugFiles : public testing::TestWithParam<int> {};

TEST_P(GenericDebugFiles, are_the_same_text) {
    const kzb_test::QuietErrors quiet;
    const kzb_test::Environment debug("DORN_KZ_DEBUG_OUTPUT", "1");
    GenericDice dice(static_cast<unsigned>(1000000 + GetParam()));
    Store store;
    const GenericShape shape = make_random_generic(dice, store);
    const kzb_test::WorkingFolder product_directory;
    {
        // The product's files are made here, the reference's in a directory of their own.
        const std::filesystem::path own = product_directory.path() / "reference";
        std::filesystem::create_directory(own);
        GenericPair pair(store, own);
        ASSERT_EQ(pair.status(), 0);
        configure(dice, shape, pair);
        run_script(dice, shape, pair, 6);
    }
    for (const char* const name : debug_files) {
        const std::string file = std::string("VEKT_debug_") + name + ".csv";
        ASSERT_TRUE(std::filesystem::exists(product_directory.path() / file)) << file;
        EXPECT_EQ(kzb_test::read_file(product_directory.path() / file),
                  kzb_test::read_file(product_directory.path() / "reference" / file))
            << file << " of seed " << GetParam();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, GenericDebugFiles, testing::Range(0, 16));

class GenericSwitches : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(GenericSwitches, of_the_environment_act_alike) {
    const kzb_test::Environment variable(GetParam().first, GetParam().second);
    for (unsigned seed = 2000000; seed < 2000010 && !HasFailure(); ++seed) {
        GenericDice dice(seed);
        Store store;
        const GenericShape shape = make_random_generic(dice, store);
        SCOPED_TRACE("seed " + std::to_string(seed));
        GenericPair pair(store);
        ASSERT_EQ(pair.status(), 0);
        configure(dice, shape, pair);
        run_script(dice, shape, pair, 8);
    }
}

INSTANTIATE_TEST_SUITE_P(Variables, GenericSwitches,
                         testing::Values(std::pair("DORN_KZ_DEBUG_CONSTDIFF", "1"),
                                         std::pair("DORN_KZ_DEBUG_CONSTDIFF", "2"),
                                         std::pair("DORN_KZ_DEBUG_MINIMUM_CURRENT", "0.25"),
                                         std::pair("DORN_KZ_DEBUG_MINIMUM_CURRENT", "abc"),
                                         std::pair("DORN_KZ_DEBUG_DIFFINTERP", "Cubic"),
                                         std::pair("DORN_KZ_USE_OLD_IRONLOSS", "1")));

class GenericThreeCoils : public testing::TestWithParam<std::tuple<bool, int>> {};

// Two turns of the machine at 3.6 degrees a step.
TEST_P(GenericThreeCoils, agree_to_the_last_bit) {
    kzb_reference::GenericMachine machine;
    machine.table_axes_form = std::get<0>(GetParam());
    machine.position_nodes = 9;
    Store store;
    kzb_reference::make_generic_machine(machine, store);
    GenericPair pair(store);
    ASSERT_EQ(pair.status(), 0);
    pair.interpolation(std::get<1>(GetParam()));
    pair.set_data();
    double most = 0.0;
    for (int sample = 0; sample < 200 && !HasFailure(); ++sample) {
        const double angle = 3.6 * sample;
        pair.time(1e-4 * sample);
        pair.displacement(1, angle);
        for (int k = 1; k <= 3; ++k) {
            pair.supply(k, 15.0 * std::cos(2.0 * angle * M_PI / 180.0 - 2.0 * M_PI / 3.0 * (k - 1)));
        }
        pair.execute();
        pair.update();
        pair.expect_equal_results(sample);
        most = std::fmax(most, std::fabs(kzbcalcGetCoilCurrentForGenericModel(1, pair.product())));
    }
    // A loaded machine that stays near its tables.
    EXPECT_GT(most, 1.0);
    EXPECT_LT(most, 200.0);
}

INSTANTIATE_TEST_SUITE_P(Forms, GenericThreeCoils, testing::Combine(testing::Bool(), testing::Range(0, 5)));

}  // namespace
}  // namespace kzb_bench_test
