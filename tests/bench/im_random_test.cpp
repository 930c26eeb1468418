// Random induction machines under random scripts of calls, odd orders and impossible numbers among them, against the
// plain reference: every status and every getter after every call, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "im_pair.h"
#include "random_table.h"

namespace kzb_bench_test {
namespace {

using kzb_reference::kzb_put_double;
using kzb_reference::kzb_put_int;
using kzb_reference::Store;

class RandomInduction {
  public:
    explicit RandomInduction(unsigned seed) : random_(seed) {}

    std::unique_ptr<Store> file() {
        auto store = std::make_unique<Store>();
        kzb_put_int("control", "motor_type", 10006, *store);
        kzb_put_int("control", "number_of_poles", 2 * pick(0, 4), *store);
        if (chance(3)) {
            kzb_put_int("control", "Winding_Pattern_Flag", pick(0, 2), *store);
        }
        if (chance(3)) {
            kzb_put_int("control", "use_phase_symmetry", 1, *store);
        }
        for (const char* key : {"base_1st_coil_temperature", "base_2nd_coil_temperature", "coef_1st_coil_temperature",
                                "coef_2nd_coil_temperature", "base_coil_temperature", "coef_coil_temperature"}) {
            if (chance(2)) {
                kzb_put_double("control", key, uniform(250.0, 4000.0), *store);
            }
        }
        kzb_put_double("information", "rated_freqency", chance(9) ? uniform(20.0, 100.0) : 0.0, *store);
        for (const char* key : {"R1", "R2", "X1", "X2", "b0", "g0"}) {
            if (chance(8)) {
                kzb_put_double("InductionParam", key, uniform(0.01, 3.0), *store);
            }
        }
        if (chance(3)) {
            put_tables(*store);
        }
        put_loss("loss_table", "iron_loss", *store);
        put_loss("equivalent_resistance_table", "copper_loss", *store);
        return store;
    }

    void options(ImPair& pair) {
        pair.set_interpolation(pick(0, chance(4) ? 3 : 4));
        if (chance(3)) {
            pair.set_ironloss(chance(3));
        }
        if (chance(3)) {
            pair.set_user_copperloss();
        }
        if (chance(3)) {
            pair.switch_temperatures_on();
        }
        if (chance(3)) {
            pair.set_connection(pick(0, 1));
        }
        if (chance(3)) {
            pair.set_resistance(uniform(0.1, 2.0));
        }
        pair.set_step_size(uniform(0.0, 1e-4));
    }

    // What a caller does in one sample, mostly in order.
    void sample(ImPair& pair) {
        time_ += uniform(0.0, 1e-4);
        pair.set_time(time_);
        position_ += uniform(-0.1, 1.0);
        pair.set_displacement(position_);
        for (int k = 1; k <= 3; ++k) {
            pair.set_voltage(k, uniform(-300.0, 300.0));
            if (chance(2)) {
                pair.set_current(k, uniform(-30.0, 30.0));
            }
        }
        pair.execute();
        pair.get_torque();
        pair.update();
    }

    void odd_call(ImPair& pair) {
        switch (pick(0, 20)) {
            case 0:
                return pair.set_time(chance(2) ? time_ : number());
            case 1:
                return pair.set_displacement(number());
            case 2:
                return pair.set_voltage(pick(1, 3), number());
            case 3:
                return pair.set_current(pick(1, 3), number());
            case 4:
                return pair.set_signal(pick(1, 3), pick(-1, 2));
            case 5:
            case 6:
                return pair.execute();
            case 7:
                return pair.get_torque();
            case 8:
                return pair.update();
            case 9:
                return pair.set_slip_frequency(chance(2) ? uniform(-60.0, 60.0) : number());
            case 10:
                return pair.set_step_size(chance(2) ? 1e-5 : number());
            case 11:
                return pair.set_secondary_resistance(chance(2) ? uniform(0.1, 2.0) : number());
            case 12:
                return pair.set_coil_temperature(number());
            case 13:
                return pair.set_secondary_coil_temperature(number());
            case 14:
                return chance(2) ? pair.set_secondary_coil_base(number())
                                 : pair.set_secondary_coil_coefficient(number());
            case 15:
                return pair.set_initial_current(pick(1, 3), number());
            case 16:
                return chance(2) ? pair.set_initial_time(uniform(0.0, 1e-3)) : pair.set_initial_displacement(number());
            case 17:
                return pair.set_dc_voltage(number());
            case 18:
                return pair.set_carrier_frequency(number());
            case 19:
                return chance(4) ? pair.set_data() : pair.set_interpolation(pick(0, 3));
            default:
                return pair.set_connection(pick(0, 1));
        }
    }

    bool chance(int in) { return pick(1, in) != 1; }  // all times but one in so many
    int pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }

  private:
    double uniform(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random_); }

    double number() {
        constexpr double inf = std::numeric_limits<double>::infinity();
        constexpr double odd[] = {0.0, -0.0, inf, -inf, 1e300, -1e300, 1e-300, 5e-324, 1.7976931348623157e308};
        switch (pick(0, 5)) {
            case 0:
                return chance(4) ? odd[pick(0, 8)] : std::numeric_limits<double>::quiet_NaN();
            case 1:
                return uniform(-1e-3, 1e-3);
            default:
                return uniform(-1e3, 1e3);
        }
    }

    std::vector<double> axis(double least, double most, int rows) {
        std::vector<double> nodes;
        for (int i = 0; i < rows; ++i) {
            nodes.push_back(rows == 1 ? least : least + (most - least) * (i + uniform(-0.2, 0.2)) / (rows - 1));
        }
        return nodes;
    }

    void put_tables(Store& store) {
        const bool real = chance(3);  // values as of a machine, else any
        for (const char* key : {"L11_table", "M12_table", "M21_table", "L22_table", "R2_table", "ironloss_table"}) {
            if (!chance(25)) {
                continue;
            }
            std::vector<std::vector<double>> axes = {axis(-50.0, 50.0, pick(1, 7))};
            if (chance(10)) {
                axes.push_back(axis(0.0, 60.0, pick(1, 7)));
            }
            std::vector<int> cyclic(axes.size(), 0);
            cyclic[0] = chance(8) ? 0 : 1;
            const RandomTable table(random_, axes, cyclic);
            table.put("InductionParam_HigherAccuracy", key, store);
            if (real) {
                kzb_reference::Table& body = *kzb_reference::find_table("InductionParam_HigherAccuracy", key, store);
                const double level = key[0] == 'L' ? 0.15 : (key[0] == 'M' ? 0.14 : 1.0);
                for (int i = 0; i < body.total; ++i) {
                    body.values[i] = level * (1.0 + 0.001 * body.values[i]);
                }
            }
        }
    }

    // Over fewer axes than five as well: the rest of the point is then not looked at.
    void put_loss(const char* category, const char* key, Store& store) {
        if (!chance(3)) {
            return;
        }
        if (!chance(10)) {
            kzb_put_int(category, "other", 1, store);  // the category alone
            return;
        }
        constexpr double most[] = {60.0, 50.0, 200.0, 600.0, 20000.0};
        std::vector<std::vector<double>> axes;
        for (int a = 0, dim = pick(chance(5) ? 5 : 1, 5); a < dim; ++a) {
            axes.push_back(axis(0.0, most[a], pick(1, 4)));
        }
        const std::vector<int> cyclic(axes.size(), 0);
        RandomTable(random_, axes, cyclic).put(category, key, store);
    }

    std::mt19937_64 random_;
    double time_ = 0.0;
    double position_ = 0.0;
};

class ImRandom : public testing::TestWithParam<int> {};

constexpr int machines_per_test = 25;

TEST_P(ImRandom, scripts_agree_to_the_bit) {
    for (int m = 0; m < machines_per_test && !HasFailure(); ++m) {
        const auto seed = static_cast<unsigned>(GetParam() * machines_per_test + m);
        RandomInduction machine(seed);
        constexpr const char* torque_types[] = {nullptr, nullptr, nullptr, "1", "2", "x"};
        ImPair pair(machine.file(), machine.pick(1, 2), torque_types[machine.pick(0, 5)]);
        ASSERT_EQ(pair.status(), 0);
        machine.options(pair);
        pair.set_data();
        for (int call = 0; call < 60 && !HasFailure(); ++call) {
            call < 20 || machine.chance(3) ? machine.sample(pair) : machine.odd_call(pair);
            if (call > 20 && machine.chance(4)) {
                machine.odd_call(pair);
            }
            pair.expect_equal_results("seed " + std::to_string(seed) + ", call " + std::to_string(call), false);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Im, ImRandom, testing::Range(0, 12));

}  // namespace
}  // namespace kzb_bench_test
