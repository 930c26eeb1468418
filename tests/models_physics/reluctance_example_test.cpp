// examples/srm86.toml against an independent integration of
//   d psi_k / dt = v_k - R i_k,   psi_k = sum over c of L_kc(|i_k|, angle) i_c
// by the classical Runge-Kutta method, the currents found from the flux linkages in every stage. The switches and
// diodes of a phase: 280 V from 32 to 43 degrees of its own angle, then -280 V until its current is 0, then open.
//
// The model's step is of first order, so the distance falls in proportion to dt. Its scale is set by the fall of the
// current under negative voltage, up to V / L_unaligned = 280 V / 11.5 mH = 24 A/ms: one step of 2 us moves it by
// 0.05 A, 0.4 % of 13 A. The bound of 2 % leaves five such steps.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include "gtest/gtest.h"
#include "kzb/build_pmsm.h"
#include "kzb/build_sr.h"
#include "models_physics/coil_run.h"
#include "models_physics/machine_tables.h"

namespace kzb::physics {
namespace {

const std::string examples = std::string(KZB_SOURCE_DIR) + "/examples/";
constexpr int phases = 4;
constexpr double shift = 15.0;   // degrees: 60 / 4
constexpr double period = 60.0;  // 360 / 6
constexpr double degrees_per_second = 9000.0;
constexpr double resistance = 0.83;

tool::SrOptions options_of(bool coupled) {
    tool::SrOptions options;
    options.common.map_path = examples + "data/srm86/phase_table.csv";
    options.common.parameter_path = examples + "data/srm86/parameters.csv";
    options.mutual_path = coupled ? examples + "data/srm86/mutual_table.csv" : "";
    return options;
}

class Machine {
  public:
    explicit Machine(KZB_STORE* store)
        : inductance_(store, "inductance", "inductance"), torque_(store, "torque", "torque_ibeta") {}

    double element(int row, int column, double current, double angle) const {
        return inductance_.at({std::fabs(current), angle, static_cast<double>(phases * column + row)});
    }
    // Currents of the connected phases that belong to flux linkages; the others have none. Sweeps over the phases, each
    // by regula falsi (Illinois) on its own flux linkage, which rises with the current.
    State currents(const State& psi, const std::vector<bool>& connected, double angle) const {
        State i(phases, 0.0);
        for (int sweep = 0; sweep < 6; ++sweep) {
            for (int k = 0; k < phases; ++k) {
                const auto n = static_cast<std::size_t>(k);
                i[n] = connected[n] ? own_current(k, psi, i, angle) : 0.0;
            }
        }
        return i;
    }
    double torque(const State& i, double angle) const {
        double sum = 0.0;
        for (int k = 0; k < phases; ++k) {
            sum += torque_.at({angle + shift * k, i[static_cast<std::size_t>(k)]});
        }
        return sum;
    }
    bool left() const { return inductance_.left() || torque_.left(); }

  private:
    double own_current(int k, const State& psi, const State& i, double angle) const {
        const auto off = [&](double current) {
            double sum = element(k, k, current, angle) * current - psi[static_cast<std::size_t>(k)];
            for (int c = 0; c < phases; ++c) {
                if (c != k && i[static_cast<std::size_t>(c)] != 0.0) {
                    sum += element(k, c, current, angle) * i[static_cast<std::size_t>(c)];
                }
            }
            return sum;
        };
        double low = -2.0, high = 20.0;
        double f_low = off(low), f_high = off(high);
        double x = low;
        for (int n = 0; n < 60 && std::fabs(high - low) > 1e-11; ++n) {
            x = (low * f_high - high * f_low) / (f_high - f_low);
            const double f = off(x);
            if (std::fabs(f) < 1e-13) {
                break;
            }
            if ((f < 0.0) == (f_low < 0.0)) {
                low = x;
                f_low = f;
                f_high *= 0.5;
            } else {
                high = x;
                f_high = f;
                f_low *= 0.5;
            }
        }
        return x;
    }
    Table inductance_;
    Table torque_;
};

double own_angle(int k, double angle) {
    return std::fmod(angle + shift * k + 1e-7, period) - 1e-7;
}

std::vector<CoilSample> integrate(const Machine& machine, double end, double h) {
    State psi(phases, 0.0);
    std::vector<bool> connected(phases, false);
    std::vector<CoilSample> run;
    const long count = std::lround(end / h);
    for (long n = 0; n <= count; ++n) {
        const double t = static_cast<double>(n) * h;
        const double angle = degrees_per_second * t;
        State i = machine.currents(psi, connected, angle);
        std::vector<double> voltage(phases, 0.0);
        for (int k = 0; k < phases; ++k) {
            const auto p = static_cast<std::size_t>(k);
            const double own = own_angle(k, angle);
            const bool on = own > 32.0 - 1e-6 && own < 43.0 - 1e-6;
            if (on && !connected[p]) {
                // A phase that was open: what the neighbours' currents link with it stands in its flux linkage.
                psi[p] = 0.0;
                for (int c = 0; c < phases; ++c) {
                    psi[p] += c == k ? 0.0 : machine.element(k, c, 0.0, angle) * i[static_cast<std::size_t>(c)];
                }
                connected[p] = true;
            } else if (!on && connected[p] && i[p] <= 0.0) {
                connected[p] = false;
                i[p] = 0.0;
            }
            voltage[p] = on ? 280.0 : -280.0;
        }
        run.push_back({t, i, machine.torque(i, angle), angle});
        psi = runge_kutta(
            [&](double at, const State& y) {
                const State current = machine.currents(y, connected, degrees_per_second * at);
                State slope(phases, 0.0);
                for (std::size_t p = 0; p < slope.size(); ++p) {
                    slope[p] = connected[p] ? voltage[p] - resistance * current[p] : 0.0;
                }
                return slope;
            },
            t, psi, h);
    }
    EXPECT_FALSE(machine.left());
    return run;
}

class ReluctanceExample : public testing::TestWithParam<bool> {};

TEST_P(ReluctanceExample, follows_the_integration_with_first_order) {
    const tool::SrBuild build = tool::build_sr(options_of(GetParam()));
    const ModelPath kzb("reluctance_example");
    const tool::StorePointer store = tool::write_model(build.store.get(), kzb.path());
    const Machine machine(store.get());
    // Steps that divide a degree: all switching falls on them.
    const std::vector<CoilSample> reference = integrate(machine, 0.016, 1.0 / 9000.0 / 64.0);
    std::vector<CoilDistance> found;
    for (const double dt : {8e-6, 4e-6, 2e-6}) {
        found.push_back(distance(run_scenario(kzb.path(), examples + "srm86.toml", dt, 8e-6), reference));
        std::printf("dt %g: current %.3f %%, torque %.3f %%\n", dt, 100.0 * found.back().current,
                    100.0 * found.back().torque);
    }
    EXPECT_LT(found[2].current, 0.02);
    EXPECT_LT(found[2].torque, 0.02);
    for (std::size_t n = 1; n < found.size(); ++n) {
        EXPECT_LT(found[n].current, 0.7 * found[n - 1].current);
        EXPECT_LT(found[n].torque, 0.7 * found[n - 1].torque);
    }
}

INSTANTIATE_TEST_SUITE_P(Coupling, ReluctanceExample, testing::Values(false, true),
                         [](const auto& with) { return with.param ? std::string("with") : std::string("without"); });

}  // namespace
}  // namespace kzb::physics
