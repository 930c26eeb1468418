// The generic models of examples/ against closed forms, classical Runge-Kutta integrations, the fixed models of
// the same machines and a published transient.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/build_pmsm.h"
#include "kzb/csv_table.h"
#include "tools/program.h"

namespace kzb::test {
namespace {

const std::string example_folder = std::string(KZB_SOURCE_DIR) + "/examples/";

using Column = std::vector<double>;

class GenericExample : public testing::Test {
  protected:
    void build(const std::vector<std::string>& arguments, const std::string& out) {
        std::vector<std::string> all{"build"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        all.insert(all.end(), {"--out", out});
        const Finished finished = run_kzb(all, folder.path());
        ASSERT_EQ(finished.code, 0) << finished.err;
    }
    tool::CsvTable run(const std::string& model, const std::string& scenario) {
        const Finished finished = run_kzb({"run", model, scenario, "--out", model + ".csv"}, folder.path());
        EXPECT_EQ(finished.code, 0) << finished.err;
        EXPECT_EQ(finished.err, "");
        return tool::CsvTable::read(folder / (model + ".csv"));
    }
    tool::CsvTable run_example(const std::string& name) {
        build({"generic", example_folder + "generic/" + name + ".model.toml"}, "m.kzb");
        return run("m.kzb", example_folder + "generic/" + name + ".toml");
    }
    // A scenario of the examples with its text changed.
    std::string changed(const std::string& path, const std::vector<std::pair<std::string, std::string>>& edits) {
        std::string text = read_file(example_folder + path);
        for (const auto& [from, to] : edits) {
            const std::size_t at = text.find(from);
            EXPECT_NE(at, std::string::npos) << from;
            text.replace(at, from.size(), to);
        }
        write_file(folder / "s.toml", text);
        return folder / "s.toml";
    }
    Folder folder;
};

Column column(const tool::CsvTable& csv, const std::string& name) {
    const auto at = csv.column(name);
    EXPECT_TRUE(at) << name;
    return at ? csv.numbers(*at) : Column(csv.row_count());
}

double largest(const Column& values) {
    return std::accumulate(values.begin(), values.end(), 0.0,
                           [](double most, double v) { return std::max(most, std::fabs(v)); });
}

// U switched on at the first sample:
//   i = U / (w L) exp(-a t) sin(w t), u_C = U (1 - exp(-a t) (cos(w t) + a / w sin(w t)))
// Backward Euler at h = 1 us adds w0^2 h / 2 = 0.5 1/s to the damping and half a step of delay: of the swing
// exp(-a t) 0.5 t is at most 0.5 / (e a) = 0.18 %, w h / 2 = 0.05 %. The bound is 0.3 % of the largest value.
TEST_F(GenericExample, resonant_circuit_follows_its_closed_form) {
    constexpr double u = 10.0, r = 2.0, l = 0.01, c = 1e-4;
    const double a = r / (2 * l), w = std::sqrt(1 / (l * c) - a * a);
    const tool::CsvTable csv = run_example("rlc");
    const Column t = column(csv, "time_s"), i = column(csv, "i_L_A"), uc = column(csv, "v_u_c_V");
    const double i_most = largest(i), u_most = largest(uc);
    ASSERT_EQ(t.size(), 601U);
    for (std::size_t n = 0; n < t.size(); ++n) {
        const double swing = std::exp(-a * t[n]);
        EXPECT_NEAR(i[n], u / (w * l) * swing * std::sin(w * t[n]), 0.003 * i_most) << t[n];
        EXPECT_NEAR(uc[n], u * (1 - swing * (std::cos(w * t[n]) + a / w * std::sin(w * t[n]))), 0.003 * u_most) << t[n];
    }
    EXPECT_NEAR(i_most, 0.862, 0.003);  // U / (w L) exp(-a t) sin(w t) at tan(w t) = w / a
}

using State = std::array<double, 3>;

State runge_kutta(const std::function<State(const State&)>& slope, const State& y, double h) {
    const auto moved = [](const State& from, const State& along, double by) {
        State to = from;
        for (std::size_t k = 0; k < to.size(); ++k) {
            to[k] += by * along[k];
        }
        return to;
    };
    const State k1 = slope(y), k2 = slope(moved(y, k1, h / 2)), k3 = slope(moved(y, k2, h / 2)),
                k4 = slope(moved(y, k3, h));
    State next = y;
    for (std::size_t k = 0; k < y.size(); ++k) {
        next[k] += h / 6 * (k1[k] + 2 * k2[k] + 2 * k3[k] + k4[k]);
    }
    return next;
}

// L1 i1' + M i2' = v1 - R1 i1, M i1' + L2 i2' = u - R2 i2, C u' = -i2;  v1 = U, after the switch -R_damper i1.
// Backward Euler at h = 2 us delays by half a step and adds w^2 h / 2 to the damping of the swing, with w^2 = 1 / (L2
// C) = 1e5 1/s^2 (damper open) up to 1 / ((L2 - M^2/L1) C) = 3.6e5: 0.36 1/s. Over 50 ms that is 1.8 % of a swing that
// has decayed by R2 / 2 L = 36 1/s to a sixth: 0.3 %. The bound is 0.5 % of the largest value; the current of the
// damper, which jumps, is left out.
TEST_F(GenericExample, coupled_coils_follow_an_integration_of_their_equations) {
    constexpr double l1 = 0.05, l2 = 0.1, m = 0.06, r1 = 1.0, r2 = 2.0, damper = 20.0, c = 1e-4, u = 10.0, off = 0.05;
    const tool::CsvTable csv = run_example("coupled-coils");
    const Column t = column(csv, "time_s"), i1 = column(csv, "i_first_A"), i2 = column(csv, "i_second_A"),
                 uc = column(csv, "v_u_c_V");
    const double scales[3] = {largest(i1), largest(i2), largest(uc)};
    const auto slope_of = [&](bool on) {
        return [=](const State& y) {
            const double e1 = (on ? u : -damper * y[0]) - r1 * y[0], e2 = y[2] - r2 * y[1];
            const double det = l1 * l2 - m * m;
            return State{(l2 * e1 - m * e2) / det, (l1 * e2 - m * e1) / det, -y[1] / c};
        };
    };
    State y{0.0, 0.0, 0.0};
    constexpr int parts = 200;  // of the 0.2 ms between two rows
    double off_most[3] = {0.0, 0.0, 0.0};
    for (std::size_t n = 0; n < t.size(); ++n) {
        const double values[3] = {i1[n], i2[n], uc[n]};
        for (std::size_t k = 0; k < 3; ++k) {
            off_most[k] = std::max(off_most[k], std::fabs(values[k] - y[k]) / scales[k]);
        }
        for (int part = 0; part < parts; ++part) {
            y = runge_kutta(slope_of(t[n] < off - 1e-9), y, 2e-4 / parts);
        }
    }
    EXPECT_LT(off_most[0], 0.005);
    EXPECT_LT(off_most[1], 0.005);
    EXPECT_LT(off_most[2], 0.005);
    EXPECT_GT(scales[2], 50.0);  // the capacitor swings
}

double at_time(const Column& t, const Column& values, double when) {
    const auto above = std::lower_bound(t.begin(), t.end(), when);
    if (above == t.begin() || above == t.end()) {
        return above == t.end() ? values.back() : values.front();
    }
    const auto n = static_cast<std::size_t>(above - t.begin());
    const double part = (when - t[n - 1]) / (t[n] - t[n - 1]);
    return values[n - 1] + part * (values[n] - values[n - 1]);
}

double arrival(const Column& t, const Column& x) {
    for (std::size_t n = 0; n < t.size(); ++n) {
        if (x[n] < 0.00026) {
            return t[n];
        }
    }
    return t.back();
}

// The fixed model has finer nodes, filled by splines: between the nodes of the map, 0.1 A and 0.25 mm apart, straight
// lines differ from them, by 2 % of the force at most. The published transient was made with other tables, whose force
// lies 1 to 4 % above; the time of flight goes with the root of the force.
TEST_F(GenericExample, solenoid_pulls_in_like_the_fixed_model_and_the_published_one) {
    const tool::CsvTable csv = run_example("solenoid-lift");
    build({"solenoid", example_folder + "data/solenoid-lift/flux_force_table.csv", "--parameters",
           example_folder + "data/solenoid-lift/parameters.csv", "--position-nodes", "77", "--current-nodes", "57"},
          "fixed.kzb");
    const tool::CsvTable fixed = run("fixed.kzb", example_folder + "solenoid-lift.toml");
    const Column t = column(csv, "time_s"), i = column(csv, "i_coil_A"), x = column(csv, "displacement_plunger_m");
    const Column ft = column(fixed, "time_s"), fi = column(fixed, "i_coil_A"), fx = column(fixed, "displacement_m");
    const double end = arrival(t, x);
    EXPECT_NEAR(end, arrival(ft, fx), 0.01 * end);
    for (std::size_t n = 0; n < t.size(); ++n) {
        // While the plunger is fast, two runs that arrive 1 % apart differ by 1.4 m/s * 0.2 ms.
        EXPECT_NEAR(x[n], at_time(ft, fx, t[n]), 0.03 * 0.00475) << t[n];
        EXPECT_NEAR(i[n], at_time(ft, fi, t[n]), 0.03 * 1.2) << t[n];
    }
    const tool::CsvTable published = tool::CsvTable::read(example_folder + "data/solenoid-lift/pull_in_transient.csv");
    const Column pt = column(published, "time_s"), px = column(published, "x_m");
    EXPECT_NEAR(end, arrival(pt, px), 0.03 * end);
}

// The currents of two runs after half of their time, and their distance as part of the peak.
double distance(const tool::CsvTable& a, const std::string& a_prefix, const tool::CsvTable& b,
                const std::string& b_prefix) {
    const Column t = column(a, "time_s");
    double off = 0.0, peak = 0.0;
    for (const char* phase : {"u", "v", "w"}) {
        const Column ia = column(a, a_prefix + phase + "_A"), ib = column(b, b_prefix + phase + "_A");
        EXPECT_EQ(ia.size(), ib.size());
        for (std::size_t n = t.size() / 2; n < t.size(); ++n) {
            off = std::max(off, std::fabs(ia[n] - ib[n]));
            peak = std::max(peak, std::fabs(ib[n]));
        }
    }
    return off / peak;
}

// The fixed model of the machine, its tables fine enough that looking up linearly between their nodes is within 0.12 %
// of the map, run for two electrical periods.
class SynchronousExample : public GenericExample {
  protected:
    void SetUp() override {
        build({"pmsm", example_folder + "data/ipm48s8p/position_map_dq.csv", "--poles", "8", "--resistance", "0.0806",
               "--mirror", "iq", "--phase-step", "3", "--amplitude-nodes", "41", "--position-step", "2.5"},
              "fixed.kzb");
        const std::string scenario =
            changed("ipm48s8p.toml", {{"stop = 0.5", "stop = 0.03"}, {"step = 1e-5", "step = 5e-6"}});
        const Finished finished = run_kzb({"run", "fixed.kzb", scenario, "--out", "fixed.csv"}, folder.path());
        ASSERT_EQ(finished.code, 0) << finished.err;
    }
    tool::CsvTable fixed() { return tool::CsvTable::read(folder / "fixed.csv"); }
    tool::CsvTable generic(const std::string& description) {
        build({"generic", description}, "m.kzb");
        return run("m.kzb",
                   changed("generic/ipm48s8p.toml", {{"stop = 0.06", "stop = 0.03"}, {"step = 1e-5", "step = 5e-6"}}));
    }
};

// The polar map of the example has other points than the dq map behind the fixed model. Here the set's map is made from
// the dq map, at amplitudes, phases and positions between its points.
TEST_F(SynchronousExample, both_forms_are_within_one_percent_of_the_fixed_model) {
    const tool::CsvTable axes = generic(example_folder + "generic/ipm48s8p-axes.model.toml");
    EXPECT_LT(distance(axes, "i_phase_", fixed(), "i_"), 0.01);

    tool::PmsmOptions options;
    options.map_path = example_folder + "data/ipm48s8p/position_map_dq.csv";
    options.machine.mirror = tool::Mirror::iq;
    options.machine.position_count = 36;
    options.model.number_of_poles = 8;
    options.model.resistance = 0.0806;
    const tool::PmsmBuild made = tool::build_pmsm(options);
    const tool::MachineMap map(made.source, made.machine);
    std::string csv = "i_peak_A,beta_deg,theta_e_deg,psi_a_Vs,psi_b_Vs,psi_c_Vs,torque_Nm\n";
    constexpr double degree = 3.14159265358979323846 / 180.0;
    for (int amplitude = 0; amplitude <= 200; amplitude += 20) {
        for (double beta = 0.0; beta >= -90.0; beta -= 7.5) {
            for (std::size_t k = 0; k < 36; ++k) {
                const tool::MachinePoint point =
                    map.at(amplitude * std::sin(beta * degree), amplitude * std::cos(beta * degree), k);
                const double theta = 10.0 * static_cast<double>(k);
                const std::array<double, 3> flux = tool::winding_flux(point, theta);
                csv += fmt::format("{},{},{},{},{},{},{}\n", amplitude, beta, theta, flux[0], flux[1], flux[2], 0.0);
            }
        }
    }
    write_file(folder / "polar.csv", csv);
    std::string description = read_file(example_folder + "generic/ipm48s8p-sets.model.toml");
    const std::string data = "../data/ipm48s8p/position_map_polar.csv";
    ASSERT_NE(description.find(data), std::string::npos);
    description.replace(description.find(data), data.size(), "polar.csv");
    write_file(folder / "sets.toml", description);
    EXPECT_LT(distance(generic("sets.toml"), "i_phase_", fixed(), "i_"), 0.01);
    // The polar map itself is another computation, with points 57 A and 15 degrees apart.
    EXPECT_LT(distance(axes, "i_phase_", generic(example_folder + "generic/ipm48s8p-sets.model.toml"), "i_phase_"),
              0.02);
}

}  // namespace
}  // namespace kzb::test
