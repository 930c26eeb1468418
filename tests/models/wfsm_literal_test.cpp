// Runs of the wound-field model against its second writing, bit for bit, with the same number of lookups.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "wfsm_files.h"
#include "wfsm_reference.h"

namespace kzb_test::wfsm_literal_test {
namespace {

struct Setting {
    WoundField machine;
    std::string method = "Linear";
    bool iron_loss = false;
    bool filter = false;
    bool symmetric = false;  // the file holds the current phases 0 to 90 alone
    double field = 5.0;
    int max_iterations = 200;
    double acceleration = 1.0;
};

bool same(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// A machine whose tables are the linear ones with a random share on top.
void rough_file(KZB_STORE& store, const Setting& s) {
    const WoundField& w = s.machine;
    linear_file(store, w);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> share(0.9, 1.1);
    for (const auto& [category, key] : {std::pair{"current_flux", "flux"}, {"harmonic_inductance", "inductance"}}) {
        KZB_TABLE* const table = kzb::find_table(store, category, key);
        for (int i = 0; i < table->total; ++i) {
            table->values[static_cast<std::size_t>(i)] *= share(random);
        }
    }
    const auto loss = [&](const std::vector<double>& x) {
        return 0.01 * x[0] + 0.2 * std::fabs(x[1]) + 0.3 * std::fabs(x[2]) + x[3] + share(random);
    };
    for (const char* category : {"eddyloss", "hysloss"}) {
        kzb::put_int(store, category, "numMat", 2);
        kzb::put_int(store, category, "matID1", 4);
        kzb::put_int(store, category, "matID2", 11);
        for (const char* id : {"4", "11"}) {
            const Axis second = w.current_type == 0 ? nodes(-100, 100, 5) : nodes(-180, 180, 9, true);
            table(store, category, std::string(category) + id,
                  {nodes(0, 6000, 4), second, nodes(w.current_type == 0 ? -90 : 8, 100, 4), nodes(0, 20, 3)}, loss);
        }
    }
    if (s.symmetric) {
        kzb::put_int(store, "control", "use_phase_symmetry", 1);
    }
}

void compare(const Calc_Eq_wfsm& model, const WfsmReference& r, int n) {
    const kzb::WfsmStep& s = model.state();
    for (std::size_t k = 0; k < 4; ++k) {
        EXPECT_TRUE(same(s.terminal_current[k], r.terminal[k]))
            << n << ' ' << k << ' ' << s.terminal_current[k] << ' ' << r.terminal[k];
        EXPECT_TRUE(same(s.current[k], r.current[k])) << n << ' ' << k;
        EXPECT_TRUE(same(s.flux[k], r.flux[k])) << n << ' ' << k << ' ' << s.flux[k] << ' ' << r.flux[k];
        EXPECT_TRUE(same(s.induced[k], r.induced[k])) << n << ' ' << k;
    }
    for (std::size_t k = 0; k < 16; ++k) {
        EXPECT_TRUE(same(s.inductance[k], r.inductance[k])) << n << ' ' << k;
    }
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_TRUE(same(model.losses().iron_current[k], r.iron_current[k])) << n << ' ' << k;
    }
    EXPECT_TRUE(same(s.neutral_voltage, r.neutral)) << n;
    EXPECT_TRUE(same(s.torque, r.torque)) << n << ' ' << s.torque << ' ' << r.torque;
    EXPECT_TRUE(same(s.Iamp, r.iamp)) << n;
    EXPECT_TRUE(same(s.beta, r.beta)) << n;
    EXPECT_TRUE(same(s.d_inductance, r.ld)) << n;
    EXPECT_TRUE(same(s.q_inductance, r.lq)) << n << ' ' << s.q_inductance << ' ' << r.lq;
    EXPECT_TRUE(same(s.field_inductance, r.lf)) << n;
    EXPECT_TRUE(same(model.eddy_loss(), r.eddy)) << n;
    EXPECT_TRUE(same(model.hysteresis_loss(), r.hysteresis)) << n;
}

struct Pair {
    explicit Pair(const Setting& s)
        : iterations("DORN_KZ_DEBUG_NITR", std::to_string(s.max_iterations).c_str()),
          relaxation("DORN_KZ_DEBUG_ACCEL", std::to_string(s.acceleration).c_str()) {
        rough_file(store, s);
        rough_file(other, s);
        for (KZB_STORE* const file : {&store, &other}) {
            kzb::put_double(*file, "control", "turns_in_coil", 40.0);
            kzb::put_double(*file, "control", "turns_in_field_coil", 100.0);
        }
        model = std::make_unique<Calc_Eq_wfsm>();
        model->set_coef_flux(1.01);
        model->set_coef_flux_fieldcoil(0.98);
        model->set_coef_material(1.02);
        model->set_coef_torque(0.97);
        model->set_turns_coil2(42.0);
        model->set_turns_coil2_fieldcoil(90.0);
        model->set_interpolation(s.method);
        model->set_initial_current(4, s.field);
        model->bind(store);
        model->set_loss_mode(s.iron_loss ? 1 : 0, s.filter ? 1 : 0);
        reference.store = &other;
        reference.method = s.method.c_str();
        reference.current_type = s.machine.current_type;
        reference.connection = s.machine.connection;
        reference.poles = s.machine.poles;
        reference.beta_zero = s.machine.beta_zero;
        reference.r = s.machine.resistance;
        reference.rf = s.machine.field_resistance;
        reference.coef_flux = 1.01;
        reference.coef_field = 0.98;
        reference.coef_material = 1.02;
        reference.coef_torque = 0.97;
        reference.turns = 42.0 / 40.0;
        reference.field_turns = 90.0 / 100.0;
        reference.max_iterations = s.max_iterations;
        reference.acceleration = s.acceleration;
        reference.iron_loss = s.iron_loss;
        reference.filter = s.filter;
        reference.current_prev[3] = s.field;
    }
    Environment iterations;
    Environment relaxation;
    KZB_STORE store;
    KZB_STORE other;
    std::unique_ptr<Calc_Eq_wfsm> model;
    WfsmReference reference{};
};

void run(const Setting& s) {
    Pair pair(s);
    const double dt = 1e-4;
    for (int n = 0; n < 12; ++n) {
        const double time = n * dt;
        const double position = n < 9 ? 0.3 + 150.0 * time : 0.3;
        const double th = position * s.machine.poles * 0.5;
        const Four v{60.0 * std::cos(th + 1.2), 60.0 * std::cos(th + 1.2 - third_turn),
                     60.0 * std::cos(th + 1.2 + third_turn), s.field < 0 ? -40.0 : 30.0};
        const Four signals{1.0, n == 5 ? 0.0 : 2.0, 1.0, n == 7 ? 0.0 : 1.0};
        int error = 7;
        EXPECT_TRUE(pair.model->step(v.data(), position, time, signals.data(), error));
        EXPECT_EQ(error, 0);
        EXPECT_TRUE(pair.reference.step(v.data(), position, time, signals.data()));
        compare(*pair.model, pair.reference, n);
        EXPECT_EQ(interpolations(pair.store), interpolations(pair.other));
        EXPECT_EQ(pair.store.error, pair.other.error);
        pair.model->accept();
        pair.reference.accept();
    }
    const Four i{10.0, -4.0, -7.0, s.field};
    for (int n = 0; n < 3; ++n) {
        pair.model->evaluate(i.data(), 0.1 * n, 2e-3 + n * dt);
        pair.reference.evaluate(i.data(), 0.1 * n, 2e-3 + n * dt);
        compare(*pair.model, pair.reference, 100 + n);
    }
}

TEST(wfsm_literal, star_over_d_and_q) {
    run({});
}

TEST(wfsm_literal, delta_over_amplitude_and_phase) {
    run({.machine = {.beta_zero = 12.0, .current_type = 1, .connection = 1}});
}

TEST(wfsm_literal, field_current_below_the_tables) {
    run({.machine = {.beta_zero = 12.0, .current_type = 1}, .iron_loss = true, .field = -5.0});
    run({.machine = {.beta_zero = -7.0, .connection = 1}, .iron_loss = true, .field = -5.0});
}

TEST(wfsm_literal, iron_loss_with_and_without_filter) {
    run({.machine = {.current_type = 0}, .iron_loss = true});
    run({.machine = {.current_type = 1}, .iron_loss = true, .filter = true});
}

TEST(wfsm_literal, every_scheme) {
    for (const char* method : {"Cubic", "Spline4", "Spline6", "Spline"}) {
        run({.machine = {.current_type = 1, .positions = 9}, .method = method, .iron_loss = true, .max_iterations = 3});
    }
}

TEST(wfsm_literal, folded_tables) {
    run({.machine = {.beta_zero = 20.0, .current_type = 1}, .iron_loss = true, .symmetric = true});
    run({.machine = {.current_type = 0}, .symmetric = true});
}

TEST(wfsm_literal, few_passes_and_relaxation) {
    for (const int passes : {0, 1, 2, 3}) {
        run({.machine = {}, .max_iterations = passes, .acceleration = 1.0});
        run({.machine = {.current_type = 1}, .max_iterations = passes, .acceleration = 0.6});
    }
    run({.machine = {}, .max_iterations = 40, .acceleration = 1.9});
}

}  // namespace
}  // namespace kzb_test::wfsm_literal_test
