// kzb validate: torque tables against flux linkage and current of the same file, by machines with closed forms.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "store/store.h"
#include "tools/models.h"
#include "tools/validation.h"

namespace kzb::test {
namespace {

using testing::HasSubstr;

// Multiplies every value of a table, which scales its mean over the positions.
void scale(KZB_STORE* store, const char* category, const char* key, double factor) {
    KZB_TABLE* table = find_table(*store, category, key);
    ASSERT_NE(table, nullptr);
    for (std::size_t i = 0; i < table->values.size(); ++i) {
        table->values[i] *= factor;
    }
}

struct Machine {
    void (*fill)(KZB_STORE*);
    const char* category;
    double share;
};

// A torque for effective values in place of peak values is smaller by a factor 2; one with a wrong sign is easier yet.
TEST(ValidateTorque, a_torque_of_other_size_or_sign_is_told_for_each_application) {
    const Machine machines[] = {{fill_harmonic, "harmonic_torque", 0.05},
                                {fill_flux_integral, "harmonic_torque", 0.05},
                                {fill_wound_field, "harmonic_torque", 0.05},
                                {fill_simple, "torque", 0.2}};
    for (const Machine& machine : machines) {
        for (const double factor : {0.5, -1.0, 2.0, 1.0 + 1.6 * machine.share, 1.0 - 1.6 * machine.share}) {
            const Folder folder;
            write_model(folder / "m.kzb", [&](KZB_STORE* store) {
                machine.fill(store);
                scale(store, machine.category, "torque_ibeta", factor);
            });
            const auto finding = only_finding(folder);
            EXPECT_THAT(told(finding),
                        HasSubstr(std::string("warning torque-balance ") + machine.category + "/torque_ibeta "))
                << factor;
        }
        for (const double factor : {1.0 + 0.6 * machine.share, 1.0 - 0.6 * machine.share}) {
            const Folder folder;
            write_model(folder / "m.kzb", [&](KZB_STORE* store) {
                machine.fill(store);
                scale(store, machine.category, "torque_ibeta", factor);
            });
            EXPECT_EQ(findings_of(folder), nlohmann::json::array()) << factor;
        }
    }
}

// At amplitude 100 and phase 45: i_d = -70.71, i_q = 70.71; 3/2 * 2 * (0.1 * 70.71 + 0.001 * 5000) = 36.2132 N m, the
// largest torque of the nodes. The ripple of 10 N m is not seen.
TEST(ValidateTorque, the_finding_names_place_both_torques_and_the_share) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic(store);
        put_harmonic_torque(store, "harmonic_torque", 0.5);
    });
    const auto finding = only_finding(folder);
    const std::string message = finding["message"];
    EXPECT_EQ(finding["place"], "amplitude 100, phase 45");
    EXPECT_THAT(message, HasSubstr("mean over the positions 18.1066, from flux linkage and current 36.2132"));
    EXPECT_THAT(message, HasSubstr("within 5 % of the largest, 36.2132"));
}

// Three pole pairs in the parameters of a machine that has two.
TEST(ValidateTorque, a_wrong_number_of_poles_shows) {
    const Folder folder;
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_flux_integral(store);
        kzb_put_int("control", "number_of_poles", 6, store);
    });
    bool found = false;
    for (const auto& finding : findings_of(folder)) {
        found = found || finding["check"] == "torque-balance";
    }
    EXPECT_TRUE(found);
}

// The electrical angle of a position is p/2 position + beta_zero: moving the nodes of all tables and beta_zero together
// is the same machine, moving one of them is another.
TEST(ValidateTorque, the_zero_of_the_position_counts) {
    const auto write = [](const Folder& folder, double beta_zero) {
        write_model(folder / "m.kzb", [beta_zero](KZB_STORE* store) {
            fill_harmonic(store);
            kzb_put_double("control", "beta_zero", beta_zero, store);
            for (const auto& [category, key, axis] :
                 {std::tuple{"current_flux", "flux", 3}, std::tuple{"harmonic_inductance", "inductance", 3},
                  std::tuple{"harmonic_torque", "torque_ibeta", 2}}) {
                for (int i = 0; i < 13; ++i) {
                    kzb_set_table_axis_value(category, key, axis, i, 15.0 * i - 30.0, store);
                }
            }
        });
    };
    const Folder folder;
    write(folder, 60.0);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write(folder, 0.0);
    EXPECT_THAT(told(only_finding(folder)), HasSubstr("torque-balance"));
}

// A column of inductance counts where its current is positive; where it is negative, the column half an electrical
// period further on. At phase 0 the current of phase c is -100 sin(theta_e - 120 c), so only the cells where that is
// positive are read. The other cells hold 1 H * (1 - cos(theta_row) sin(theta_column)): the constant part sums the
// three currents to zero, the other one makes the q current into a d flux linkage, 150 Vs for the current of 100 A, so
// reading them gives 3/2 * 2 * (0.1 + 150) * 100 = 45030 N m in place of 3/2 * 2 * 0.1 * 100 = 30 N m.
TEST(ValidateTorque, columns_of_negative_currents_are_read_half_a_period_further_on) {
    const auto write = [](const Folder& folder, double sign) {
        write_model(folder / "m.kzb", [sign](KZB_STORE* store) {
            fill_simple(store);
            const std::vector<double> positions = steps(0.0, 180.0, 15.0);
            put_table(store, "inductance", "inductance", {{0.0, 100.0}, positions, steps(0.0, 8.0, 1.0)},
                      [sign](const auto& p) {
                          const int row = static_cast<int>(p[2]) % 3;
                          const int column = static_cast<int>(p[2]) / 3;
                          const auto angle = [&p](int phase) {
                              return (pole_pairs * p[1] - 120.0 * phase) * 3.14159265358979 / 180.0;
                          };
                          return -sign * std::sin(angle(column)) > 1e-9
                                     ? phase_inductance(p[1], row, column)
                                     : 1.0 - std::cos(angle(row)) * std::sin(angle(column));
                      });
            kzb_set_table_cyclic_flag("inductance", "inductance", 2, 1, store);
            put_table(store, "torque", "torque_ibeta", {{0.0}, positions, {0.0, 100.0}},
                      [](const auto& p) { return torque_of(0.0, p[2], psi_m); });
            kzb_set_table_cyclic_flag("torque", "torque_ibeta", 2, 1, store);
        });
    };
    const Folder folder;
    write(folder, 1.0);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write(folder, -1.0);
    const auto finding = only_finding(folder);
    EXPECT_EQ(told(finding), "warning torque-balance torque/torque_ibeta amplitude 100, phase 0");
    EXPECT_THAT(std::string(finding["message"]), HasSubstr("positions 30, from flux linkage and current 45030;"));
}

// A linear machine of the same flux linkages: force = 2 pi / L (psi_d i_q - psi_q i_d) in the power-invariant frame,
// that is 3/2 of it in peak values.
TEST(ValidateTorque, the_force_of_a_linear_machine_is_compared_alike) {
    constexpr double length = 0.2;
    const auto write = [](const Folder& folder, double factor) {
        write_model(folder / "m.kzb", [factor](KZB_STORE* store) {
            fill_machine(store, 10005, 0);
            kzb_put_double("control", "electrical_length", length, store);
            const std::vector<double> positions = steps(0.0, length + 1e-9, length / 12.0);
            // 90 mechanical degrees of the rotary machine are 180 electrical ones.
            const auto degrees = [](double x) { return x / length * 360.0 / pole_pairs; };
            put_table(store, "mag_flux", "flux", {positions, {0.0, 1.0, 2.0}}, [&](const auto& p) {
                return phase_flux(0.0, 0.0, psi_m, degrees(p[0]), static_cast<int>(p[1]));
            });
            put_table(store, "inductance", "inductance", {{0.0, 100.0}, positions, steps(0.0, 8.0, 1.0)},
                      [&](const auto& p) {
                          const int component = static_cast<int>(p[2]);
                          return phase_inductance(degrees(p[1]), component % 3, component / 3);
                      });
            put_table(store, "distance_force", "force", {{-90.0, 0.0, 90.0}, positions, {0.0, 100.0}},
                      [factor](const auto& p) {
                          return factor * torque_of(d_of(p[2], p[0]), q_of(p[2], p[0]), psi_m) / pole_pairs * 2.0 *
                                 3.14159265358979 / length;
                      });
            for (const auto& [category, key, axis] :
                 {std::tuple{"mag_flux", "flux", 1}, std::tuple{"inductance", "inductance", 2},
                  std::tuple{"distance_force", "force", 2}}) {
                kzb_set_table_cyclic_flag(category, key, axis, 1, store);
            }
        });
    };
    const Folder folder;
    write(folder, 1.0);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write(folder, 1.5);
    EXPECT_EQ(told(only_finding(folder)), "warning torque-balance distance_force/force amplitude 100, phase 0");
}

TEST(ValidateTorque, a_torque_table_beside_the_inductances_of_ldlq_is_compared) {
    const auto write = [](const Folder& folder, double factor) {
        write_model(folder / "m.kzb", [factor](KZB_STORE* store) {
            ConstantMachine machine;
            machine.d_inductance = l_d;
            machine.q_inductance = l_q;
            machine.d_flux = std::sqrt(1.5) * psi_m;
            machine.table_end = 100.0;
            fill_constant_machine(store, machine);
            put_table(
                store, "dq_torque", "torque_ibeta", {steps(-180.0, 180.0, 45.0), {0.0, 50.0, 100.0}},
                [factor](const auto& p) { return factor * torque_of(d_of(p[1], p[0]), q_of(p[1], p[0]), psi_m); });
        });
    };
    const Folder folder;
    write(folder, 1.0);
    EXPECT_EQ(findings_of(folder), nlohmann::json::array());
    write(folder, std::sqrt(2.0));
    EXPECT_THAT(told(only_finding(folder)), HasSubstr("warning torque-balance dq_torque/torque_ibeta amplitude 100"));
}

}  // namespace
}  // namespace kzb::test
