// Power balance of the induction model over whole periods at constant speed, from rest and in steady state:
//
//   electrical input = primary, additional and secondary copper loss + iron loss + mechanical power
//                      + change of stored energy / time
//
// The iron loss has no branch in the voltage equation: it is taken off the torque at the shaft, so that the balance
// holds with it. In delta the model takes the voltages of the terminals, gives the windings sqrt(3) times as much
// turned by 30 degrees, and answers with the currents of the windings: the input is then that of the windings U-V, V-W,
// W-U, and the product of terminal voltage and answered current is no power of the machine.
#include "gtest/gtest.h"
#include "models_physics/im_run.h"

namespace kzb::physics {
namespace {

struct ImBalanceCase {
    const char* name;
    bool tables = false;
    int connection = 0;
    bool losses = false;
    double slip = 0.04;
};

void PrintTo(const ImBalanceCase& c, std::ostream* out) {
    *out << c.name;
}

// Means over a window.
struct Powers {
    double input = 0.0;
    double terminal = 0.0;  // terminal voltage times answered current
    double copper = 0.0;
    double iron = 0.0;
    double mechanical = 0.0;
    double stored = 0.0;
    double output() const { return copper + iron + mechanical + stored; }
};

class ImBalance : public testing::TestWithParam<ImBalanceCase> {
  protected:
    static Powers over(ImRun& run, int connection, int samples) {
        Powers mean;
        const double energy = run.stored_energy();
        const double start = run.time;
        for (int n = 0; n < samples; ++n) {
            run.step();
            const ImRun::Three v = run.voltage(run.time);
            for (std::size_t k = 0; k < 3; ++k) {
                const double winding = connection == 1 ? v[k] - v[(k + 1) % 3] : v[k];
                const double current = run.model.current_output(static_cast<int>(k) + 1);
                mean.input += winding * current / samples;
                mean.terminal += v[k] * current / samples;
            }
            mean.copper +=
                (run.model.primary_copper_loss() + run.model.user_copper_loss() + run.model.secondary_copper_loss()) /
                samples;
            mean.iron += run.model.iron_loss() / samples;
            mean.mechanical += run.model.torque() * run.speed_mech() / samples;
        }
        mean.stored = (run.stored_energy() - energy) / (run.time - start);
        return mean;
    }
};

TEST_P(ImBalance, input_is_losses_and_output_over_whole_periods) {
    const ImBalanceCase& c = GetParam();
    ImConstants machine;
    machine.connection = c.connection;
    ImRun run(machine, c.tables, c.connection == 1 ? 170.0 : 300.0, c.slip, 2e-6);
    if (c.losses) {
        const std::vector<kzb_test::Axis> axes(5, kzb_test::nodes(0.0, 1000.0, 3));
        kzb_test::constant(run.store, "loss_table", "iron_loss", axes, 256.0);
        kzb_test::constant(run.store, "equivalent_resistance_table", "copper_loss", axes, 0.25);
        run.model.set_user_copper_loss_enabled(true);
    }
    run.model.bind(run.store, c.losses ? 1 : 0);
    run.step();
    const Powers start = over(run, c.connection, 3 * run.period());
    EXPECT_GT(std::fabs(start.stored), 0.01 * std::fabs(start.input));
    EXPECT_NEAR(start.input, start.output(), 0.01 * std::fabs(start.input));
    for (int n = 0; n < 20 * run.period(); ++n) {
        run.step();
    }
    const Powers steady = over(run, c.connection, 2 * run.period());
    EXPECT_NEAR(steady.input, steady.output(), 0.01 * std::fabs(steady.input));
    EXPECT_NEAR(steady.stored, 0.0, 0.001 * std::fabs(steady.input));
    EXPECT_EQ(steady.iron > 0.0, c.losses);
    if (c.connection == 1) {
        // cos(phi - 30 deg) / (sqrt(3) cos(phi)) = 1/2 + tan(phi) / sqrt(12), the current lagging by phi
        EXPECT_GT(steady.terminal, 0.5 * steady.input);
        EXPECT_LT(steady.terminal, 0.9 * steady.input);
    }
}

INSTANTIATE_TEST_SUITE_P(Im, ImBalance,
                         testing::Values(ImBalanceCase{.name = "constants"},
                                         ImBalanceCase{.name = "constants_losses", .losses = true},
                                         ImBalanceCase{.name = "constants_delta", .connection = 1},
                                         ImBalanceCase{.name = "constants_generator", .slip = -0.04},
                                         ImBalanceCase{.name = "tables", .tables = true},
                                         ImBalanceCase{.name = "tables_losses", .tables = true, .losses = true},
                                         ImBalanceCase{.name = "tables_delta", .tables = true, .connection = 1}),
                         [](const testing::TestParamInfo<ImBalanceCase>& c) { return std::string(c.param.name); });

}  // namespace
}  // namespace kzb::physics
