// kzb transform: tables against closed forms, and models that do not allow a transform.
#include "tools/edits.h"
#include "tools/harmonic_model.h"

namespace kzb::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsSupersetOf;

class Transform : public Edits {
  protected:
    json transformed(const std::string& kind, const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments = {"transform", "m.kzb", kind, "--out", "n.kzb"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return done(arguments);
    }
    void not_transformed(const std::string& kind, const std::string& fault, int code = 1,
                         const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments = {"transform", "m.kzb", kind, "--out", "n.kzb"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        refused(arguments, code, fault);
    }
};

std::vector<std::string> names_in(const json& list) {
    return list.get<std::vector<std::string>>();
}

// ---- skew

const std::vector<std::string> two_steps = {"--type-a", "stepped", "--angle-a", "10", "--steps-a", "2"};

// d inductance 10 uH per degree of the current phase, in size; cyclic.
void fill_sloped_machine(KZB_STORE* store) {
    ConstantMachine machine;
    machine.d_flux = 0.1;
    fill_constant_machine(store, machine);
    put_table(store, "dq_inductance", "d_inductance", {{-180.0, 0.0, 180.0}, {0.0, 1e4}},
              [](const auto& p) { return 1e-5 * std::fabs(p[0]); });
    kzb_set_table_cyclic_flag("dq_inductance", "d_inductance", 1, 1, store);
    kzb_set_table_cyclic_flag("dq_inductance", "q_inductance", 1, 1, store);
}

TEST_F(Transform, skew_is_the_mean_of_the_slices) {
    write_model(folder / "m.kzb", fill_sloped_machine);
    const std::string input = read_file(folder / "m.kzb");
    const json report = transformed("skew", two_steps);
    EXPECT_EQ(read_file(folder / "m.kzb"), input);
    EXPECT_THAT(names_in(report["added"]), IsSupersetOf({"dq_inductance/d_inductance_org", "d_flux/d_flux_org"}));
    EXPECT_THAT(names_in(report["changed"]),
                testing::UnorderedElementsAre("dq_inductance/d_inductance", "d_flux/d_flux"));
    const OpenedStore store = opened(folder / "n.kzb");
    // Slices at -5 and 5 mechanical degrees are current phases 10 degrees to both sides, with two pole pairs: 10
    // degrees beside a corner at 0 and at 180 each.
    EXPECT_NEAR(value_at(store, "dq_inductance", "d_inductance", {1, 0}), 10e-5, 1e-15);
    EXPECT_NEAR(value_at(store, "dq_inductance", "d_inductance", {2, 0}), 170e-5, 1e-15);
    EXPECT_EQ(value_at(store, "dq_inductance", "d_inductance_org", {1, 0}), 0.0);
    // The one slice of two halves: cos(2 * -5 degrees).
    EXPECT_NEAR(kzb_get_double("d_flux", "d_flux", store.get()), 0.1 * cosine_of_deg(10.0), 1e-15);
    EXPECT_EQ(kzb_get_double("d_flux", "d_flux_org", store.get()), 0.1);
}

TEST_F(Transform, a_second_skew_starts_from_the_unskewed_tables) {
    write_model(folder / "m.kzb", fill_sloped_machine);
    transformed("skew", two_steps);
    const std::string once = read_file(folder / "n.kzb");
    done({"transform", "m.kzb", "skew", "--type-a", "stepped", "--angle-a", "30", "--steps-a", "2", "--out", "m.kzb"});
    transformed("skew", two_steps);
    EXPECT_EQ(read_file(folder / "n.kzb"), once);
}

TEST_F(Transform, continuous_skew_of_side_b_and_a_scheme_are_taken) {
    write_model(folder / "m.kzb", fill_sloped_machine);
    transformed("skew", {"--type-b", "continuous", "--angle-b", "12", "--interpolation", "linear"});
    // 12 samples from -6 to 6 mechanical degrees: current phases of size 12 / 11 * (11, 9, 7, 5, 3, 1) on each side;
    // the mean by trapezoids over 11 intervals counts both ends by half.
    const double mean = 2.0 * (12.0 / 11.0) * (0.5 * 11.0 + 9.0 + 7.0 + 5.0 + 3.0 + 1.0) / 11.0;
    EXPECT_NEAR(value_at(opened(folder / "n.kzb"), "dq_inductance", "d_inductance", {1, 0}), mean * 1e-5, 1e-15);
}

TEST_F(Transform, skew_options_that_do_not_fit_are_wrong_usage) {
    write_model(folder / "m.kzb", fill_sloped_machine);
    not_transformed("skew", "neither side is skewed", 2);
    not_transformed("skew", "--angle-a: missing, required by --type-a stepped", 2, {"--type-a", "stepped"});
    not_transformed("skew", "--steps-a: missing", 2, {"--type-a", "stepped", "--angle-a", "1"});
    not_transformed("skew", "--steps-b: without meaning for --type-b continuous", 2,
                    {"--type-b", "continuous", "--angle-b", "1", "--steps-b", "3"});
    not_transformed("skew", "--angle-b: without meaning for --type-b none", 2,
                    {"--type-a", "continuous", "--angle-a", "1", "--angle-b", "3"});
    not_transformed("skew", "--steps-a", 2, {"--type-a", "stepped", "--angle-a", "1", "--steps-a", "1"});
    not_transformed("skew", "--angle-a", 2, {"--type-a", "continuous", "--angle-a", "wide"});
    not_transformed("skew", "--angle-a: expected a finite number", 2, {"--type-a", "continuous", "--angle-a", "inf"});
    not_transformed("skew", "zigzag", 2, {"--type-a", "zigzag", "--angle-a", "1"});
    not_transformed("ldlq", "--angle-a: is an option of skew alone", 2, {"--angle-a", "1"});
    not_transformed("turn", "turn", 2);
}

TEST_F(Transform, a_model_without_tables_to_skew_is_refused) {
    write_model(folder / "m.kzb", [](KZB_STORE* store) { kzb_put_int("control", "motor_type", 10006, store); });
    not_transformed("skew", "m.kzb: skew: expected a model that offers PMSM LdLq, Harmonic or", 1, two_steps);
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_sloped_machine(store);
        kzb_put_int("control", "number_of_poles", 4, store);
        kzb_put_double("parameter", "RU", 1.0, store);
        put_table(store, "current_flux", "flux", {{0.0}}, [](const auto&) { return 0.0; });
        put_table(store, "harmonic_inductance", "other", {{0.0}}, [](const auto&) { return 0.0; });
        put_table(store, "harmonic_torque", "other", {{0.0}}, [](const auto&) { return 0.0; });
    });
    not_transformed("skew", "m.kzb: skew: table ", 1, two_steps);
}

// ---- LdLq

TEST_F(Transform, ldlq_holds_the_means_over_the_positions) {
    write_model(folder / "m.kzb", fill_harmonic_machine);
    const json report = transformed("ldlq");
    EXPECT_THAT(names_in(report["added"]),
                ElementsAre("dq_inductance/d_inductance", "dq_inductance/q_inductance", "dq_torque/torque_ibeta"));
    EXPECT_EQ(report["changed"], json::array());
    const OpenedStore store = opened(folder / "n.kzb");
    EXPECT_THAT(nodes_of(store, "dq_inductance", "d_inductance", 1), ElementsAre(-180.0, -90.0, 0.0, 90.0, 180.0));
    EXPECT_THAT(nodes_of(store, "dq_inductance", "q_inductance", 2), ElementsAre(10.0, 20.0));
    EXPECT_NEAR(value_at(store, "dq_inductance", "d_inductance", {2, 1}), harmonic_inductance, 1e-15);
    EXPECT_NEAR(value_at(store, "dq_inductance", "q_inductance", {2, 0}), harmonic_q_inductance, 1e-15);
    EXPECT_NEAR(value_at(store, "dq_inductance", "q_inductance", {4, 1}), harmonic_q_inductance, 1e-15);
    EXPECT_NEAR(value_at(store, "dq_torque", "torque_ibeta", {2, 2}), 2.0 * 20.0, 1e-12);
}

TEST_F(Transform, ldlq_tells_what_the_application_still_lacks) {
    write_model(folder / "m.kzb", fill_harmonic_machine);
    EXPECT_THAT(kzb({"transform", "m.kzb", "ldlq", "--out", "n.kzb"}).err, HasSubstr("d_flux/d_flux is missing"));
    done({"set", "n.kzb", "d_flux/d_flux=0.1", "--type", "double", "--out", "n.kzb"});
    EXPECT_THAT(kzb({"info", "n.kzb"}).out, HasSubstr("PMSM LdLq, PMSM Harmonic"));
    const Finished again = kzb({"transform", "n.kzb", "ldlq", "--out", "n.kzb"});
    EXPECT_EQ(again.code, 0);
    EXPECT_EQ(again.err, "");
    EXPECT_EQ(again.out, "n.kzb: binary form, 0 added, 0 changed, 0 removed\n");
}

TEST_F(Transform, ldlq_of_another_model_or_of_broken_tables_is_refused) {
    write_constant_machine(folder / "m.kzb");
    not_transformed("ldlq", "m.kzb: ldlq: expected a model that offers PMSM Harmonic");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic_machine(store);
        put_table(store, "current_flux", "flux", {{0.0, 1.0}, {0.0}, {0.0}, {0.0, 1.0}},
                  [](const auto&) { return 0.0; });
    });
    not_transformed("ldlq", "table current_flux/flux: axis 4 has 2 nodes, expected at least 3");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic_machine(store);
        put_table(store, "harmonic_torque", "torque_ibeta", {{0.0}, {0.0}}, [](const auto&) { return 0.0; });
    });
    not_transformed("ldlq", "table harmonic_torque/torque_ibeta has 2 axes, expected 3");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_harmonic_machine(store);
        const int at[] = {0, 2, 0};
        kzb_set_table_value("harmonic_torque", "torque_ibeta", at, std::nan(""), store);
    });
    not_transformed("ldlq", "table dq_torque/torque_ibeta would hold what is no finite number");
}

// ---- expansion

// The current phases -90 to 90 alone; torque I * cos(beta) at every position.
void fill_compact_machine(KZB_STORE* store) {
    fill_harmonic_machine(store);
    const std::vector<double> amplitudes = {0.0, 10.0};
    const std::vector<double> phases = {-90.0, 0.0, 90.0};
    const std::vector<double> positions = {0.0, 90.0, 180.0};
    put_table(store, "harmonic_inductance", "inductance", {amplitudes, phases, positions, {0, 1, 2, 3, 4, 5, 6, 7, 8}},
              [](const auto& p) { return static_cast<int>(p[3]) % 4 == 0 ? harmonic_inductance : 0.0; });
    put_table(store, "current_flux", "flux", {amplitudes, phases, positions, {0, 1, 2}},
              [](const auto& p) { return p[0]; });
    put_table(store, "harmonic_torque", "torque_ibeta", {phases, positions, amplitudes},
              [](const auto& p) { return p[0] == 0.0 ? p[2] : 0.0; });
    kzb_put_int("control", "use_phase_symmetry", 1, store);
}

TEST_F(Transform, expand_makes_full_tables_and_clears_the_switch) {
    write_model(folder / "m.kzb", fill_compact_machine);
    const json report = transformed("expand");
    EXPECT_THAT(names_in(report["changed"]),
                testing::UnorderedElementsAre("control/use_phase_symmetry", "current_flux/flux",
                                              "harmonic_inductance/inductance", "harmonic_torque/torque_ibeta"));
    const OpenedStore store = opened(folder / "n.kzb");
    EXPECT_EQ(kzb_get_int("control", "use_phase_symmetry", store.get()), 0);
    EXPECT_THAT(nodes_of(store, "harmonic_torque", "torque_ibeta", 1), ElementsAre(0.0, 90.0, 180.0, 270.0, 360.0));
    const std::vector<double> expected = {10.0, 0.0, -10.0, 0.0, 10.0};  // the torque changes its sign at 180 degrees
    for (int i = 0; i < 5; ++i) {
        EXPECT_NEAR(value_at(store, "harmonic_torque", "torque_ibeta", {i, 1, 1}),
                    expected[static_cast<std::size_t>(i)], 1e-12)
            << i;
    }
    EXPECT_NEAR(value_at(store, "current_flux", "flux", {1, 2, 1, 0}), 10.0, 1e-12);
    EXPECT_NEAR(value_at(store, "harmonic_inductance", "inductance", {1, 2, 1, 4}), harmonic_inductance, 1e-15);
    EXPECT_EQ(kzb_get_table_cyclic_flag("harmonic_torque", "torque_ibeta", 1, store.get()), 1);
}

TEST_F(Transform, full_tables_are_not_expanded_and_other_machines_neither) {
    write_model(folder / "m.kzb", fill_harmonic_machine);
    not_transformed("expand", "m.kzb: expand: control/use_phase_symmetry is not set");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_constant_machine(store, {});
        kzb_put_int("control", "use_phase_symmetry", 1, store);
    });
    not_transformed("expand", "expected a model that offers PMSM Harmonic");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        kzb_put_int("control", "motor_type", 10006, store);
        kzb_put_int("control", "use_phase_symmetry", 1, store);
    });
    not_transformed("expand", "Use phase symmetry option is not available for this motor type. (error 90030)");
}

TEST_F(Transform, compact_tables_are_expanded_before_anything_else) {
    write_model(folder / "m.kzb", fill_compact_machine);
    not_transformed("ldlq", "use kzb transform expand first");
    not_transformed("skew", "use kzb transform expand first", 1, two_steps);
    done({"transform", "m.kzb", "expand", "--out", "m.kzb"});
    transformed("ldlq");
    // Torque I * cos(beta) is also its mean.
    EXPECT_NEAR(value_at(opened(folder / "n.kzb"), "dq_torque", "torque_ibeta", {2, 1}), -10.0, 1e-12);
}

// ---- frames

TEST_F(Transform, uvw_makes_phase_tables_and_dq0_leads_back) {
    write_model(folder / "m.kzb", fill_flux_integral_machine);
    EXPECT_THAT(names_in(transformed("uvw")["added"]), ElementsAre("current_flux/mag_flux", "current_flux/iuvw"));
    {
        const OpenedStore store = opened(folder / "n.kzb");
        const double k = std::sqrt(2.0 / 3.0);
        for (int phase = 0; phase < 3; ++phase) {
            // Position 45 mechanical degrees is 90 electrical ones.
            EXPECT_NEAR(value_at(store, "current_flux", "mag_flux", {0, phase}),
                        k * 0.1 * cosine_of_deg(-120.0 * phase), 1e-15);
            EXPECT_NEAR(value_at(store, "current_flux", "mag_flux", {1, phase}),
                        k * 0.1 * cosine_of_deg(90.0 - 120.0 * phase), 1e-15);
            // d current -5, q current 7
            EXPECT_NEAR(value_at(store, "current_flux", "iuvw", {0, 1, 1, phase}),
                        k * (-5.0 * cosine_of_deg(90.0 - 120.0 * phase) - 7.0 * sine_of_deg(90.0 - 120.0 * phase)),
                        1e-14);
        }
    }
    done({"set", "n.kzb", "information/title=x", "--type", "string", "--out", "m.kzb"});
    transformed("dq0");
    const OpenedStore store = opened(folder / "n.kzb");
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(value_at(store, "flux_table", "fd_noload", {i}), 0.1, 1e-15);
        EXPECT_NEAR(value_at(store, "flux_table", "fq_noload", {i}), 0.0, 1e-15);
        EXPECT_NEAR(value_at(store, "current_table", "id", {0, 1, i}), -5.0, 1e-13);
        EXPECT_NEAR(value_at(store, "current_table", "iq", {0, 1, i}), 7.0, 1e-13);
    }
}

TEST_F(Transform, frames_are_changed_in_flux_integral_models_with_the_tables_alone) {
    write_constant_machine(folder / "m.kzb");
    for (const char* kind : {"dq0", "uvw"}) {
        not_transformed(kind,
                        std::string("m.kzb: ") + kind + ": expected a model that offers PMSM FluxIntegralDQTheta");
    }
    write_model(folder / "m.kzb", fill_flux_integral_machine);
    not_transformed("dq0", "nothing to start from, expected current_flux/mag_flux, current_flux/iuvw");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_flux_integral_machine(store);
        put_table(store, "current_table", "iq", {{0.0}, {0.0}, {0.0}}, [](const auto&) { return 0.0; });
    });
    not_transformed("uvw", "table current_table/iq has other sizes than id");
    write_model(folder / "m.kzb", [](KZB_STORE* store) {
        fill_flux_integral_machine(store);
        put_table(store, "current_flux", "mag_flux", {{0.0}, {0.0, 1.0}}, [](const auto&) { return 0.0; });
    });
    not_transformed("dq0", "table current_flux/mag_flux: axis 2 has 2 nodes, expected at least 3");
}

// ---- files

TEST_F(Transform, the_output_may_be_the_model_and_keeps_its_form) {
    write_model(folder / "m.kzb", fill_harmonic_machine);
    done({"convert", "m.kzb", "m.kzb", "--form", "ascii"});
    EXPECT_EQ(done({"transform", "m.kzb", "ldlq", "--out", "m.kzb"})["form"], "ascii");
    EXPECT_EQ(read_file(folder / "m.kzb").substr(0, 9), "$DORN-KZa");
    EXPECT_NEAR(value_at(opened(folder / "m.kzb"), "dq_torque", "torque_ibeta", {2, 2}), 40.0, 1e-9);
    EXPECT_THAT(folder.names(), ElementsAre("m.kzb"));
}

TEST_F(Transform, files_that_cannot_be_read_or_written_are_told) {
    write_model(folder / "m.kzb", fill_harmonic_machine);
    refused({"transform", "none.kzb", "ldlq", "--out", "n.kzb"}, 3, "none.kzb: cannot be opened");
    refused({"transform", "m.kzb", "ldlq", "--out", "none/n.kzb"}, 1, "");
    refused({"transform", "m.kzb", "ldlq"}, 2, "--out");
    write_file(folder / "bad.kzb", "$DORN-KZb,#\n");
    refused({"transform", "bad.kzb", "ldlq", "--out", "n.kzb"}, 3, "bad.kzb: ");
}

}  // namespace
}  // namespace kzb::test
