// Wound-field models made at random under scripts of calls in odd order, against the plain reference, bit for bit.
//
// Tables hold random values over random axes, some of the wrong number of axes or missing; inputs are ordinary numbers,
// zeros, huge ones, infinities and not-a-numbers; configuration calls come between the samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "random_table.h"
#include "wfsm_pair.h"

namespace kzb_bench_test {
namespace {

using kzb_reference::Store;
using kzb_reference::WfsmIteration;

class Dice {
  public:
    explicit Dice(unsigned seed) : random_(seed) {}
    std::mt19937_64& engine() { return random_; }
    int pick(int least, int most) { return std::uniform_int_distribution<int>(least, most)(random_); }
    bool one_of(int sides) { return pick(1, sides) == 1; }
    double uniform(double least, double most) { return std::uniform_real_distribution<double>(least, most)(random_); }
    // Mostly of ordinary size.
    double number(double size) {
        constexpr double infinity = std::numeric_limits<double>::infinity();
        switch (pick(0, 39)) {
            case 0:
                return 0.0;
            case 1:
                return -0.0;
            case 2:
                return 1e300;
            case 3:
                return -1e155;
            case 4:
                return one_of(4) ? infinity : 1e8;
            case 5:
                return one_of(4) ? std::numeric_limits<double>::quiet_NaN() : 1e-300;
            default:
                return uniform(-size, size);
        }
    }

  private:
    std::mt19937_64 random_;
};

std::vector<double> axis(Dice& dice, double first, double last) {
    const int nodes = dice.pick(2, 5);
    std::vector<double> grid;
    for (int i = 0; i < nodes; ++i) {
        grid.push_back(first + (last - first) * i / (nodes - 1));
    }
    return grid;
}

std::vector<double> components(int count) {
    std::vector<double> grid;
    for (int i = 0; i < count; ++i) {
        grid.push_back(i);
    }
    return grid;
}

// A table over the axes that the model takes, or one of any shape.
void put_table(Dice& dice, const char* category, const std::string& key, std::vector<std::vector<double>> axes,
               std::vector<int> cyclic, Store& store) {
    if (dice.one_of(40)) {
        return;
    }
    if (dice.one_of(15)) {
        TableShape shape;
        shape.most_dim = 5;
        shape.most_rows = 3;
        RandomTable(dice.engine(), shape).put(category, key, store);
        return;
    }
    RandomTable(dice.engine(), std::move(axes), std::move(cyclic)).put(category, key, store);
}

void put_losses(Dice& dice, int type, const std::vector<std::vector<double>>& axes, Store& store) {
    const int materials = dice.pick(0, 3);
    const bool both = !dice.one_of(6);
    for (const char* const category : {"hysloss", "eddyloss"}) {
        if (!both && dice.one_of(2)) {
            continue;
        }
        kzb_put_int(category, "numMat", materials, store);
        for (int i = 1; i <= materials; ++i) {
            const int id = dice.one_of(8) ? 9 : 4 - i;
            kzb_put_int(category, ("matID" + std::to_string(i)).c_str(), id, store);
            put_table(dice, category, category + std::to_string(4 - i),
                      {axis(dice, 0.0, 5000.0), type == 1 ? axes[1] : axes[0],
                       type == 1 ? axis(dice, dice.uniform(0.0, 20.0), 100.0) : axes[0], axes[2]},
                      {0, type == 1 ? 1 : 0, 0, 0}, store);
        }
    }
}

void make_random_machine(Dice& dice, Store& store) {
    const int type = dice.one_of(12) ? 5 : dice.pick(0, 1);
    const int poles = dice.one_of(20) ? 0 : 2 * dice.pick(1, 5);
    kzb_put_int("control", "motor_type", 10007, store);
    kzb_put_int("control", "number_of_poles", poles, store);
    kzb_put_int("control", "current_type", type, store);
    kzb_put_double("control", "beta_zero", dice.one_of(2) ? 0.0 : dice.uniform(-180.0, 180.0), store);
    kzb_put_int(dice.one_of(2) ? "control" : "settings", "Winding_Pattern_Flag",
                dice.one_of(12) ? dice.pick(-2, 3) : dice.pick(0, 1), store);
    const bool symmetric = dice.one_of(4);
    if (symmetric) {
        kzb_put_int("control", "use_phase_symmetry", dice.pick(0, 1), store);
    }
    for (const char* const key : {"turns_in_coil", "turns_in_field_coil", "turns_coil2", "turns_coil2_fieldcoil"}) {
        if (dice.one_of(2)) {
            kzb_put_double("control", key, dice.one_of(5) ? 0.0 : dice.uniform(50.0, 60.0), store);
        }
    }
    for (const char* const key : {"coef_flux", "coef_flux_fieldcoil", "coef_torque", "coef_material"}) {
        if (dice.one_of(3)) {
            kzb_put_double("control", key, dice.uniform(0.9, 1.1), store);
        }
    }
    for (const char* const key : {"base_coil_temperature", "base_field_coil_temperature"}) {
        if (dice.one_of(3)) {
            kzb_put_double("control", key, dice.uniform(280.0, 320.0), store);
        }
    }
    kzb_put_double("parameter", "RU", dice.uniform(0.01, 0.1), store);
    kzb_put_double("parameter", "RF", dice.uniform(1.0, 5.0), store);

    const double turn = poles == 0 ? 360.0 : 720.0 / poles;
    const std::vector<double> phases = symmetric ? axis(dice, -90.0, 90.0) : axis(dice, -180.0, 180.0);
    std::vector<std::vector<double>> axes = {
        type == 1 ? axis(dice, dice.one_of(2) ? 0.0 : 5.0, 100.0) : axis(dice, -120.0, 120.0),
        type == 1 ? phases : axis(dice, -120.0, 120.0),
        axis(dice, dice.one_of(3) ? dice.uniform(-5.0, 3.0) : 0.0, 10.0), axis(dice, 0.0, turn)};
    std::vector<int> cyclic = {0, type == 1 && !symmetric ? 1 : 0, 0, 1};
    put_table(dice, "harmonic_torque", "torque_ibeta", axes, cyclic, store);
    kzb_reference::kzb_require_category("harmonic_torque", store);
    if (dice.one_of(2)) {
        put_losses(dice, type, axes, store);
    }
    if (dice.one_of(2)) {
        const int count = dice.pick(0, 3);
        kzb_put_int("num_user_specified_parameter", "num_user_specified_parameter", count, store);
        kzb_reference::kzb_require_category("user_specified_parameter_table", store);
        for (int k = 1; k <= count; ++k) {
            const std::string category = "user_specified_parameter" + std::to_string(k);
            kzb_put_int(category.c_str(), "table_id", k, store);
            kzb_put_int(category.c_str(), "output_port_id", dice.pick(0, count + 1), store);
            put_table(dice, "user_specified_parameter_table", "user_specified_parameter_table" + std::to_string(k),
                      axes, cyclic, store);
        }
    }
    cyclic.push_back(0);
    axes.push_back(components(4));
    put_table(dice, "current_flux", "flux", axes, cyclic, store);
    axes.back() = components(16);
    put_table(dice, "harmonic_inductance", "inductance", axes, cyclic, store);
    kzb_reference::kzb_require_category("current_flux", store);
    kzb_reference::kzb_require_category("harmonic_inductance", store);
}

void set_correction(Dice& dice, WfsmPair& pair) {
    KZB_CALC* const handle = pair.product();
    kzb_reference::Wfsm& reference = pair.reference();
    const double value = dice.uniform(0.5, 1.5);
    switch (dice.pick(0, 8)) {
        case 0:
            kzbcalcSetCorrectionOfFlux(value, handle), reference.coef_flux = value;
            break;
        case 1:
            kzbcalcSetCorrectionOfFieldFlux(value, handle), reference.coef_flux_fieldcoil = value;
            break;
        case 2:
            kzbcalcSetCorrectionOfSteel(value, handle), reference.coef_material = value;
            break;
        case 3:
            kzbcalcSetCorrectionOfTorque(value, handle), reference.coef_torque = value;
            break;
        case 4:
            kzbcalcSetCorrectionOfCoilTurn2(value, handle), reference.turns_coil2 = value;
            break;
        case 5:
            kzbcalcSetCorrectionOfFieldCoilTurn2(value, handle), reference.turns_coil2_fieldcoil = value;
            break;
        case 6:
            kzbcalcSetResistance(value, handle), reference.R = value;
            break;
        case 7:
            kzbcalcSetFieldCoilResistance(value, handle), reference.Rf = value;
            break;
        default: {
            const int type = dice.pick(0, 1);
            kzbcalcSetConnectionType(type, handle), reference.connection_type = type;
        }
    }
}

void set_temperature(Dice& dice, WfsmPair& pair) {
    KZB_CALC* const handle = pair.product();
    kzb_reference::Wfsm& reference = pair.reference();
    kzbcalcSetTemperatureCorrectionCalc(handle);
    reference.temperature_correction = true;
    const double value = dice.uniform(200.0, 500.0);
    switch (dice.pick(0, 5)) {
        case 0:
            kzbcalcSetCoilTemperature(value, handle), reference.coil_temperature = value;
            break;
        case 1:
            kzbcalcSetFieldCoilTemperature(value, handle), reference.field_coil_temperature = value;
            break;
        case 2:
            kzbcalcSetCoilBaseTemperature(value, handle), reference.base_coil_temperature = value;
            break;
        case 3:
            kzbcalcSetFieldCoilBaseTemperature(value, handle), reference.base_field_coil_temperature = value;
            break;
        case 4:
            kzbcalcSetCoilTemperatureCorrectionCoefficient(10.0 * value, handle);
            reference.coil_coefficient = 10.0 * value;
            break;
        default:
            kzbcalcSetFieldCoilTemperatureCorrectionCoefficient(10.0 * value, handle);
            reference.field_coil_coefficient = 10.0 * value;
    }
    EXPECT_TRUE(same_bits(kzbcalcGetCoilTemperatureCorrectionCoefficient(handle), reference.get_coil_factor()));
    EXPECT_TRUE(
        same_bits(kzbcalcGetFieldCoilTemperatureCorrectionCoefficient(handle), reference.get_field_coil_factor()));
}

void set_initial(Dice& dice, WfsmPair& pair) {
    const double value = dice.number(30.0);
    const int what = dice.pick(1, 6);
    if (what <= 4) {
        kzbcalcSetInitialCurrent(what, value, pair.product());
        pair.reference().set_initial_current(what, value);
    } else if (what == 5) {
        kzbcalcSetInitialDisplacement(value, pair.product());
        pair.reference().set_initial_displacement(value);
    } else {
        const double time = dice.uniform(0.0, 1e-3);
        kzbcalcSetInitialTime(time, pair.product());
        pair.reference().set_initial_time(time);
    }
}

void set_losses(Dice& dice, WfsmPair& pair) {
    if (dice.one_of(2)) {
        if (kzbcalcSetIronlossCalc(pair.product()) == 0) {
            pair.reference().set_ironloss();
        }
    } else {
        kzbcalcSetPWMFreq(4000.0, pair.product());
        pair.reference().set_pwm_frequency(4000.0);
    }
}

class WfsmScript {
  public:
    WfsmScript(Dice& dice, WfsmPair& pair) : dice_(dice), pair_(pair) {}

    void call() {
        double four[4] = {};
        switch (dice_.pick(0, 19)) {
            case 0:
                set_correction(dice_, pair_);
                break;
            case 1:
                set_temperature(dice_, pair_);
                break;
            case 2:
                set_initial(dice_, pair_);
                break;
            case 3:
                if (dice_.one_of(6)) {
                    pair_.set_data();
                }
                break;
            case 4:
                if (dice_.one_of(4)) {
                    pair_.interpolation(dice_.pick(0, 3));
                }
                break;
            case 5:
                set_losses(dice_, pair_);
                break;
            case 6: {
                int signals[4] = {};
                for (int& s : signals) {
                    s = dice_.one_of(5) ? dice_.pick(-1, 2) : 1;
                }
                pair_.signal(signals);
                break;
            }
            default:
                for (double& each : four) {
                    each = dice_.number(40.0);
                }
                sample(four);
        }
    }

  private:
    void sample(const double* four) {
        time_ += dice_.one_of(6) ? 0.0 : dice_.uniform(0.0, 2e-4);
        pair_.time(dice_.one_of(25) ? dice_.number(1e-3) : time_);
        pair_.displacement(dice_.number(400.0));
        pair_.voltage(four);
        pair_.current(four);
        const int executions = dice_.pick(0, 2);
        for (int e = 0; e < executions; ++e) {
            pair_.execute();
        }
        pair_.expect_equal_results(count_++);
        if (!dice_.one_of(5)) {
            pair_.update();
        }
    }

    Dice& dice_;
    WfsmPair& pair_;
    double time_ = 0.0;
    int count_ = 0;
};

class WfsmRandom : public testing::TestWithParam<unsigned> {};

TEST_P(WfsmRandom, script_in_odd_order_agrees_to_the_bit) {
    for (unsigned k = 0; k < 10 && !HasFailure(); ++k) {
        const unsigned seed = 10 * GetParam() + k;
        SCOPED_TRACE("seed " + std::to_string(seed));
        Dice dice(seed);
        Store store;
        make_random_machine(dice, store);
        const WfsmIteration iteration{dice.one_of(2) ? 0.001 : 10.0, dice.pick(-1, 8),
                                      dice.one_of(2) ? 1.0 : dice.uniform(0.2, 1.2)};
        WfsmPair pair(store, dice.one_of(3) ? 2 : 1, iteration);
        ASSERT_EQ(pair.status(), 0);
        pair.interpolation(dice.one_of(3) ? dice.pick(1, 4) : 0);
        set_losses(dice, pair);
        set_losses(dice, pair);
        if (!dice.one_of(5)) {
            pair.set_data();
        }
        WfsmScript script(dice, pair);
        for (int c = 0; c < 30 && !HasFailure(); ++c) {
            script.call();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Wfsm, WfsmRandom, testing::Range(0U, 10U));

}  // namespace
}  // namespace kzb_bench_test
