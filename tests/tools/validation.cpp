#include "tools/validation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "tools/models.h"

namespace kzb::test {

namespace {

constexpr double radians = std::numbers::pi / 180.0;

// Electrical angle of the d axis seen from a phase.
double angle_of(double position, int phase) {
    return (pole_pairs * position - 120.0 * phase) * radians;
}

const std::vector<double> amplitudes = {0.0, 50.0, 100.0};
const std::vector<double> phases = {-180.0, -135.0, -90.0, -45.0, 0.0, 45.0, 90.0, 135.0, 180.0};
const std::vector<double> fields = {0.0, 2.0};

std::vector<double> positions() {
    return steps(0.0, 360.0 / pole_pairs, 15.0);
}

// The last node of the cyclic phase axis stands for the first; the values there are the same to the last bit.
double phase_node(double phase) {
    return phase == 180.0 ? -180.0 : phase;
}

double ripple(double position) {
    return 10.0 * std::cos(6.0 * pole_pairs * position * radians);
}

void set_cyclic(KZB_STORE* store, const char* category, const char* key, std::initializer_list<int> axes) {
    for (const int axis : axes) {
        kzb_set_table_cyclic_flag(category, key, axis, 1, store);
    }
}

}  // namespace

double phase_flux(double i_d, double i_q, double magnet, double position, int phase) {
    const double angle = angle_of(position, phase);
    return (l_d * i_d + magnet) * std::cos(angle) - l_q * i_q * std::sin(angle);
}

double phase_inductance(double position, int row, int column) {
    const double a = angle_of(position, row);
    const double b = angle_of(position, column);
    return 2.0 / 3.0 * (l_d * std::cos(a) * std::cos(b) + l_q * std::sin(a) * std::sin(b)) + 1e-3 / 3.0;
}

double torque_of(double i_d, double i_q, double magnet) {
    return 1.5 * pole_pairs * ((l_d * i_d + magnet) * i_q - l_q * i_q * i_d);
}

double d_of(double amplitude, double phase) {
    return -amplitude * std::sin(phase * radians);
}

double q_of(double amplitude, double phase) {
    return amplitude * std::cos(phase * radians);
}

std::vector<double> steps(double first, double last, double step) {
    std::vector<double> nodes;
    for (int i = 0; first + i * step <= last; ++i) {
        nodes.push_back(first + i * step);
    }
    return nodes;
}

void fill_machine(KZB_STORE* store, int motor_type, int accuracy_type) {
    kzb_put_int("control", "motor_type", motor_type, store);
    kzb_put_int("control", "accuracy_type", accuracy_type, store);
    kzb_put_int("control", "number_of_poles", 4, store);
    kzb_put_double("control", "beta_zero", 0.0, store);
    kzb_put_int("control", "Winding_Pattern_Flag", 0, store);
    kzb_put_double("parameter", "RU", 0.5, store);
}

void put_harmonic_torque(KZB_STORE* store, const char* category, double factor) {
    put_table(store, category, "torque_ibeta", {phases, positions(), amplitudes}, [factor](const auto& p) {
        const double phase = phase_node(p[0]);
        return factor * torque_of(d_of(p[2], phase), q_of(p[2], phase), psi_m) + ripple(p[1]);
    });
    set_cyclic(store, category, "torque_ibeta", {1, 2});
}

void fill_ldlq(KZB_STORE* store) {
    fill_constant_machine(store, {});
}

void fill_harmonic(KZB_STORE* store) {
    fill_machine(store, 10000, 3);
    put_table(store, "current_flux", "flux", {amplitudes, phases, positions(), {0.0, 1.0, 2.0}}, [](const auto& p) {
        const double phase = phase_node(p[1]);
        return phase_flux(d_of(p[0], phase), q_of(p[0], phase), psi_m, p[2], static_cast<int>(p[3]));
    });
    set_cyclic(store, "current_flux", "flux", {2, 3});
    put_table(store, "harmonic_inductance", "inductance", {amplitudes, phases, positions(), steps(0.0, 8.0, 1.0)},
              [](const auto& p) {
                  const int component = static_cast<int>(p[3]);
                  return phase_inductance(p[2], component % 3, component / 3);
              });
    set_cyclic(store, "harmonic_inductance", "inductance", {2, 3});
    put_harmonic_torque(store, "harmonic_torque", 1.0);
}

void fill_simple(KZB_STORE* store) {
    fill_machine(store, 10000, 2);
    put_table(store, "mag_flux", "flux", {positions(), {0.0, 1.0, 2.0}},
              [](const auto& p) { return phase_flux(0.0, 0.0, psi_m, p[0], static_cast<int>(p[1])); });
    set_cyclic(store, "mag_flux", "flux", {1});
    put_table(store, "inductance", "inductance", {amplitudes, positions(), steps(0.0, 8.0, 1.0)}, [](const auto& p) {
        const int component = static_cast<int>(p[2]);
        return phase_inductance(p[1], component % 3, component / 3);
    });
    set_cyclic(store, "inductance", "inductance", {2});
    put_harmonic_torque(store, "torque", 1.0);
}

void fill_flux_integral(KZB_STORE* store) {
    fill_machine(store, 10000, 5);
    const double power_invariant = std::sqrt(1.5);
    const std::vector<double> flux_d = steps(-0.05, 0.26, 0.025);
    const std::vector<double> flux_q = steps(-0.25, 0.26, 0.025);
    put_table(store, "current_table", "id", {flux_d, flux_q, positions()},
              [&](const auto& p) { return (p[0] - power_invariant * psi_m) / l_d; });
    put_table(store, "current_table", "iq", {flux_d, flux_q, positions()}, [](const auto& p) { return p[1] / l_q; });
    for (const char* key : {"id", "iq"}) {
        set_cyclic(store, "current_table", key, {3});
    }
    put_table(store, "flux_table", "fd_noload", {positions()}, [&](const auto&) { return power_invariant * psi_m; });
    put_table(store, "flux_table", "fq_noload", {positions()}, [](const auto&) { return 0.0; });
    put_table(store, "flux_table", "f0_noload", {positions()}, [](const auto&) { return 0.0; });
    for (const char* key : {"fd_noload", "fq_noload", "f0_noload"}) {
        set_cyclic(store, "flux_table", key, {1});
    }
    put_table(store, "flux_table", "f0_ibeta", {amplitudes, phases, positions()}, [](const auto&) { return 0.0; });
    set_cyclic(store, "flux_table", "f0_ibeta", {2, 3});
    // Finer than the other tables: it is looked up between its nodes.
    put_table(store, "harmonic_torque", "torque_ibeta",
              {steps(-180.0, 180.0, 7.5), positions(), steps(0.0, 100.0, 10.0)}, [](const auto& p) {
                  const double phase = phase_node(p[0]);
                  return torque_of(d_of(p[2], phase), q_of(p[2], phase), psi_m) + ripple(p[1]);
              });
    set_cyclic(store, "harmonic_torque", "torque_ibeta", {1, 2});
}

void fill_wound_field(KZB_STORE* store) {
    fill_machine(store, 10007, 3);
    kzb_put_int("control", "current_type", 1, store);
    kzb_put_double("parameter", "RF", 2.0, store);
    constexpr double per_ampere = 0.05;
    put_table(store, "current_flux", "flux", {amplitudes, phases, fields, positions(), {0.0, 1.0, 2.0, 3.0}},
              [](const auto& p) {
                  const double phase = phase_node(p[1]);
                  const double i_d = d_of(p[0], phase);
                  // The field coil: 0.1 H of its own and the armature's d current through the same coupling.
                  return p[4] == 3.0
                             ? 0.1 * p[2] + 1.5 * per_ampere * i_d
                             : phase_flux(i_d, q_of(p[0], phase), per_ampere * p[2], p[3], static_cast<int>(p[4]));
              });
    set_cyclic(store, "current_flux", "flux", {2, 4});
    put_table(store, "harmonic_inductance", "inductance",
              {amplitudes, phases, fields, positions(), steps(0.0, 15.0, 1.0)}, [](const auto& p) {
                  const int row = static_cast<int>(p[4]) % 4;
                  const int column = static_cast<int>(p[4]) / 4;
                  if (row < 3 && column < 3) {
                      return phase_inductance(p[3], row, column);
                  }
                  const int coil = std::min(row, column);
                  return coil == 3 ? 0.1 : 0.005 * std::cos(angle_of(p[3], coil));
              });
    set_cyclic(store, "harmonic_inductance", "inductance", {2, 4});
    put_table(store, "harmonic_torque", "torque_ibeta", {amplitudes, phases, fields, positions()}, [](const auto& p) {
        const double phase = phase_node(p[1]);
        return torque_of(d_of(p[0], phase), q_of(p[0], phase), per_ampere * p[2]) + ripple(p[3]);
    });
    set_cyclic(store, "harmonic_torque", "torque_ibeta", {2, 4});
}

void fill_induction(KZB_STORE* store) {
    fill_machine(store, 10006, 0);
    kzb_put_double("InductionParam", "R1", 0.2, store);
    const struct {
        const char* key;
        double value;
    } tables[] = {
        {"R2_table", 0.3}, {"L11_table", 0.05}, {"M12_table", 0.04}, {"M21_table", 0.04}, {"L22_table", 0.05}};
    for (const auto& [key, value] : tables) {
        put_table(store, "InductionParam_HigherAccuracy", key, {{-100.0, 100.0}, {0.0, 50.0}},
                  [constant = value](const auto&) { return constant; });
    }
}

void write_changed(const Folder& folder, void (*fill)(KZB_STORE*), const std::function<void(KZB_STORE*)>& change) {
    write_model(folder / "m.kzb", [&](KZB_STORE* store) {
        fill(store);
        change(store);
    });
}

nlohmann::json findings_of(const Folder& folder) {
    const Finished finished = run_kzb({"validate", "m.kzb", "--json"}, folder.path());
    const nlohmann::json findings = nlohmann::json::parse(finished.out);  // throws unless JSON stands alone
    EXPECT_TRUE(findings.is_array());
    EXPECT_EQ(finished.code, findings.empty() ? 0 : 1) << finished.err;
    EXPECT_EQ(finished.err, "");
    return findings;
}

nlohmann::json only_finding(const Folder& folder) {
    const nlohmann::json findings = findings_of(folder);
    EXPECT_EQ(findings.size(), 1u) << findings.dump(2);
    return findings.empty() ? nlohmann::json::object() : findings[0];
}

std::string told(const nlohmann::json& finding) {
    std::string text;
    for (const char* field : {"severity", "check"}) {
        text += finding.value(field, "-") + " ";
    }
    text += finding.value("category", "-") + "/" + finding.value("key", "-");
    const std::string place = finding.value("place", "-");
    return place.empty() ? text : text + " " + place;
}

}  // namespace kzb::test
