// Files and calls without sense: no crash, no hang, a plain answer.
#include <gtest/gtest.h>

#include <limits>

#include "pmsm_files.h"

namespace kzb_test::pmsm_safety_test {
namespace {

using kzb::Calc_Eq;

// Everything that an interface may call, in one sample.
void exercise(Calc_Eq& model) {
    int error = -1;
    double state[3] = {};
    double derivative[3] = {};
    for (int n = 0; n < 4; ++n) {
        const double time = n * 1e-3;
        model.set_time(time);
        model.set_position(n * 0.1);
        model.step(10.0, -5.0, -5.0, n * 0.1, time, 1.0, 1.0, 1.0, error);
        model.torque_from_currents();
        model.dq_inductances_from_currents(n * 0.1);
        model.flux_derivative(1.0, 2.0, 3.0, n * 0.1, time, state, derivative, 1, 0, 1);
        model.flux_derivative(1.0, 2.0, 3.0, n * 0.1, time, state, derivative, 0, 0, 0);
        model.flux_update(time, n * 0.1, state);
        for (const int phase : {std::numeric_limits<int>::min(), -1, 0, 1, 3, 4, std::numeric_limits<int>::max()}) {
            model.induced_voltage(phase);
            model.stored_induced_voltage(phase);
            model.current_output(phase);
            model.coil_flux(phase);
            model.resistance(phase);
            model.inductance(phase, phase);
            model.magnet_flux_at_position(phase);
            model.set_current(phase, 1.0);
            model.set_initial_current(phase, 1.0);
        }
        model.accept();
    }
}

TEST(pmsm_safety, unbound_model_answers_with_nothing) {
    Calc_Eq model;
    int error = 7;
    EXPECT_FALSE(model.step(1.0, 2.0, 3.0, 0.0, 0.0, 1.0, 1.0, 1.0, error));
    EXPECT_EQ(error, 0);
    EXPECT_EQ(model.torque_from_currents(), 0.0);
    EXPECT_EQ(model.magnet_flux_at_position(1), 0.0);
    exercise(model);
}

TEST(pmsm_safety, empty_store_and_every_kind) {
    for (const int kind : {-5, 0, 1, 2, 3, 4}) {
        KZB_STORE store;
        Calc_Eq model;
        bind(model, store, kind, 1);
        exercise(model);
    }
}

TEST(pmsm_safety, unknown_connection_has_no_network) {
    for (const int connection : {2, 5, -2}) {
        for (const int kind : {kzb::ld_lq, kzb::harmonic}) {
            KZB_STORE store;
            kind == kzb::ld_lq ? ld_lq_file(store, {}, {.connection = connection})
                               : harmonic_file(store, {}, {.connection = connection});
            Calc_Eq model;
            bind(model, store, kind);
            EXPECT_EQ(model.resistance(1), 0.0);
            for (int n = 0; n < 4; ++n) {
                EXPECT_TRUE(sample(model, {50.0, 0.0, 0.0}, n * 0.1, n * 1e-3));
            }
            EXPECT_EQ(model.current_output(1), 0.0);
            if (kind == kzb::ld_lq) {
                EXPECT_EQ(model.stored_induced_voltage(1), 0.0);
            }
        }
    }
}

TEST(pmsm_safety, machine_without_poles_or_length) {
    for (const int kind : {0, 1, 2, 3}) {
        for (const int motor_type : {10000, 10005}) {
            KZB_STORE store;
            harmonic_file(store, {}, {.motor_type = motor_type, .poles = 0});
            ld_lq_file(store, {}, {.motor_type = motor_type, .poles = 0});
            constant(store, "mag_flux", "flux", {nodes(0, 180, 3, true), components(3)}, 0.1);
            constant(store, "inductance", "inductance", {nodes(2, 10, 3), nodes(0, 180, 3, true), components(9)}, 0.1);
            constant(store, "distance_force", "force", {nodes(0, 1, 2), nodes(0, 1, 2), nodes(0, 1, 2)}, 0.1);
            Calc_Eq model;
            bind(model, store, kind, 1);
            exercise(model);
        }
    }
}

TEST(pmsm_safety, tables_of_other_dimensions) {
    for (const int dim : {1, 2, 3, 6, 7}) {
        const std::vector<Axis> axes(static_cast<std::size_t>(dim), nodes(0, 1, 2));
        KZB_STORE store;
        basics(store);
        for (const auto& name : {std::pair{"current_flux", "flux"}, std::pair{"harmonic_inductance", "inductance"},
                                 std::pair{"harmonic_torque", "torque_ibeta"}, std::pair{"mag_flux", "flux"},
                                 std::pair{"inductance", "inductance"}, std::pair{"torque", "torque_ibeta"},
                                 std::pair{"dq_inductance", "d_inductance"}, std::pair{"d_flux", "d_flux"},
                                 std::pair{"current_table", "id"}, std::pair{"flux_table", "fd_noload"},
                                 std::pair{"loss_table", "iron_loss"}, std::pair{"correction", "total-flux"},
                                 std::pair{"equivalent_resistance_table", "copper_loss"}}) {
            constant(store, name.first, name.second, axes, 0.5);
        }
        for (const int kind : {0, 1, 2, 3}) {
            Calc_Eq model;
            bind(model, store, kind, 1);
            model.set_user_copperloss_on(true);
            exercise(model);
        }
    }
}

TEST(pmsm_safety, counts_without_backing_are_bounded) {
    for (const int count : {-3, 2000000000}) {
        KZB_STORE store;
        harmonic_file(store);
        kzb::put_int(store, "hysloss", "numMat", count);
        kzb::require_category(store, "user_specified_parameter_table");
        kzb::put_int(store, "num_user_specified_parameter", "num_user_specified_parameter", count);
        constant(store, "user_specified_parameter_table", "user_specified_parameter_table1",
                 {nodes(0, 1, 2), nodes(0, 1, 2), nodes(0, 1, 2)}, 1.0);
        for (int k = 1; k < 4; ++k) {
            kzb::put_int(store, "user_specified_parameter" + std::to_string(k), "table_id", 1);
            kzb::put_int(store, "user_specified_parameter" + std::to_string(k), "output_port_id",
                         k == 1 ? 2000000000 : -k);
        }
        Calc_Eq model;
        bind(model, store, kzb::harmonic, 1);
        EXPECT_GE(model.user_parameter_count(), 0);
        EXPECT_LE(model.user_parameter_count(), 10000);
        EXPECT_EQ(model.user_parameters().size(), static_cast<std::size_t>(model.user_parameter_count()));
        int error = 0;
        model.step(0.0, 0.0, 0.0, 0.0, 0.0, 1.0, 1.0, 1.0, error);
    }
}

TEST(pmsm_safety, values_that_are_no_numbers) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), infinity, -infinity, 1e300}) {
        for (const int kind : {kzb::harmonic, kzb::ld_lq}) {
            KZB_STORE store;
            kind == kzb::ld_lq ? ld_lq_file(store) : harmonic_file(store);
            Calc_Eq model;
            bind(model, store, kind);
            for (int n = 0; n < 3; ++n) {
                sample(model, {}, n * 0.1, n * 1e-3);
            }
            int error = 0;
            model.step(0.0, 0.0, 0.0, bad, 4e-3, 1.0, 1.0, 1.0, error);
            model.step(0.0, 0.0, 0.0, 0.1, bad, 1.0, 1.0, 1.0, error);
            for (const int phase : {1, 2, 3}) {
                model.set_current(phase, bad);
            }
            model.torque_from_currents();
        }
    }
}

// The file may change between steps; references to tables are found anew.
TEST(pmsm_safety, tables_that_vanish_and_return) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    sample(model, {}, 0.0, 0.0);
    kzb::delete_table(store, "current_flux", "flux");
    exercise(model);
    harmonic_file(store);
    exercise(model);
}

// Two stores made alike have the same revision: what was resolved in the one must not answer for the other.
TEST(pmsm_safety, bound_to_another_store_it_reads_that_one) {
    const double ld[] = {0.0015, 0.0025};
    KZB_STORE stores[2];
    Calc_Eq model;
    for (std::size_t n = 0; n < 2; ++n) {
        LdLq machine;
        machine.ld = ld[n];
        ld_lq_file(stores[n], machine);
        model.reset();
        bind(model, stores[n], kzb::ld_lq);
        sample(model, {}, 0.0, 0.0);
        EXPECT_DOUBLE_EQ(model.d_inductance(), ld[n]);  // the table is constant, every factor is 1
    }
}

// So must the answers that no table holds: the mark of the older correction.
TEST(pmsm_safety, another_store_is_judged_by_its_own_categories) {
    Calc_Eq model;
    for (const bool corrected : {false, true}) {
        KZB_STORE store;
        ld_lq_file(store);
        kzb::put_int(store, corrected ? "CorrectionTable" : "SomethingElse", "x", 1);
        model.reset();
        bind(model, store, kzb::ld_lq);
        EXPECT_EQ(sample(model, {}, 0.0, 0.0), !corrected);
    }
}

// Binding anew, as a host does after it changed an option, keeps the torque table.
TEST(pmsm_safety, bound_twice_to_one_store_it_keeps_its_tables) {
    KZB_STORE store;
    harmonic_file(store);
    Calc_Eq model;
    bind(model, store, kzb::harmonic);
    bind(model, store, kzb::harmonic);
    model.set_current(1, 10.0);
    model.set_current(2, -5.0);
    model.set_current(3, -5.0);
    // Position -90 degrees electrical puts the current of U on the q axis, beta 0: 2 * 1.5 * 0.1 * 10, exact at a node.
    model.set_position(-45.0 * pi / 180.0);
    EXPECT_NEAR(model.torque_from_currents(), 3.0, 1e-9);
}

}  // namespace
}  // namespace kzb_test::pmsm_safety_test
