// The account of how far tables are from their map, and the file that comes out.
#include <algorithm>
#include <complex>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tools/build_synthetic.h"
#include "tools/program.h"

namespace kzb::tool {
namespace {

using namespace synthetic;
using test::Finished;
using test::Folder;
using test::run_kzb;
using testing::HasSubstr;

std::vector<DeviationReport> reports_of(const PmsmBuild& build, Application application) {
    PmsmOptions options;
    options.model.applications = {application};
    return compare_pmsm(build.model.store.get(), build, options);
}

// The table's grid is (5 A, 15 deg): at (10, 10) A the amplitude 14.14 lies between nodes, the phase -45 on one. Linear
// interpolation over amplitude is exact for a linear map, so what is left comes from the phase: at -45 deg nothing.
TEST(BuildDeviation, points_on_phase_nodes_of_a_linear_machine_are_met_to_rounding) {
    const PmsmBuild build = build_text(linear_map(), Application::Harmonic);
    const auto reports = reports_of(build, Application::Harmonic);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].points, 13U);  // |i| <= 20 of the 25 points of the 5 x 5 map
    EXPECT_EQ(reports[0].left_out, 12U);
    EXPECT_EQ(reports[0].out_of_table, 0U);
    EXPECT_LT(reports[0].deviations[0].largest, 1e-14);
    EXPECT_LT(reports[0].deviations[1].largest, 1e-14);
    EXPECT_DOUBLE_EQ(reports[0].deviations[1].scale, l_q * 20.0);
}

// Phase nodes 90 deg apart: (10, 10) A sits half way between the nodes on the axes, where Linear gives the mean of the
// two: psi_d(mean) = psi_m + l_d * I / 2 with I = sqrt(200) instead of psi_m + l_d * 10.
TEST(BuildDeviation, coarse_phase_grid_shows_with_its_size) {
    const PmsmBuild build =
        build_text(linear_map(), Application::Harmonic, [](PmsmOptions& o) { o.grids.phase_step = 90.0; });
    const auto reports = reports_of(build, Application::Harmonic);
    const Deviation& d = reports[0].deviations[0];
    EXPECT_NEAR(d.largest, l_d * (10.0 - std::sqrt(200.0) / 2.0), 1e-14);
    EXPECT_EQ(std::fabs(d.id), 10.0);
    EXPECT_EQ(std::fabs(d.iq), 10.0);
    // Four of the 13 points are off by that much, the rest lie on nodes.
    EXPECT_NEAR(d.rms, d.largest * std::sqrt(4.0 / 13.0), 1e-14);
}

TEST(BuildDeviation, every_application_meets_a_linear_machine_at_its_points) {
    using enum Application;
    for (const Application application : {LdLq, SimpleHarmonic, Harmonic, FluxIntegralDQTheta}) {
        const PmsmBuild build = build_text(linear_map(), application);
        for (const DeviationReport& report : reports_of(build, application)) {
            EXPECT_EQ(report.out_of_table, 0U);
            // SimpleHarmonic interpolates cos and sin of a position grid of 15 deg: (h^2 / 8) l I = 0.9 % of the flux.
            const double tolerance = application == SimpleHarmonic ? 0.009 * 2.0 * l_q * 20.0 : 1e-9;
            EXPECT_LT(report.deviations[0].largest, tolerance) << name_of(application);
            EXPECT_LT(report.deviations[1].largest, tolerance) << name_of(application);
        }
    }
}

const std::string flux_maps = std::string(KZB_SOURCE_DIR) + "/examples/data";

PmsmOptions real_machine(const std::string& map, int poles, Application application) {
    PmsmOptions options;
    options.map_path = flux_maps + map;
    options.model.applications = {application};
    options.model.number_of_poles = poles;
    return options;
}

// Bounds of the account for real machines: what the default grids are good for, told in the documents.
TEST(BuildDeviation, default_grids_hold_the_published_machines_within_one_and_a_half_percent) {
    PmsmOptions ipm = real_machine("/ipm48s8p/position_map_dq.csv", 8, Application::Harmonic);
    ipm.machine.mirror = Mirror::iq;
    const PmsmOptions pmsyrm = real_machine("/pmsyrm-5k6/flux_map.csv", 4, Application::Harmonic);
    for (const PmsmOptions& options : {ipm, pmsyrm}) {
        const PmsmBuild build = build_pmsm(options);
        const auto reports = compare_pmsm(build.model.store.get(), build, options);
        EXPECT_EQ(reports[0].out_of_table, 0U);
        for (const Deviation& d : reports[0].deviations) {
            EXPECT_LT(d.largest, 0.015 * d.scale) << options.map_path << " " << d.quantity;
            EXPECT_LT(d.rms, 0.005 * d.scale) << options.map_path << " " << d.quantity;
        }
    }
}

// Torque by field forces (the map's column) and by the coenergy of its flux linkages are two ways to the same number.
// The finite-element torque carries an error of its own: its mean is within 3.6 Nm of the flux vector product. Of the
// ripple only order 6 compares: with 36 samples the slot harmonics of order 24 fall on order 12.
TEST(BuildDeviation, coenergy_torque_follows_the_published_torque) {
    PmsmOptions options = real_machine("/ipm48s8p/position_map_dq.csv", 8, Application::Harmonic);
    options.machine.mirror = Mirror::iq;
    options.machine.pole_pairs = 4.0;
    options.machine.position_count = 36;
    SourceMap source = read_source_map(CsvTable::read(options.map_path), {});
    const MachineMap told(source, options.machine);
    source.torque.clear();
    const MachineMap derived(source, options.machine);
    ASSERT_EQ(derived.torque_source(), TorqueSource::coenergy);
    double squares = 0.0;
    double ripple = 0.0;
    for (const double id : source.id) {
        for (const double iq : source.iq) {
            EXPECT_LT(std::fabs(derived.mean(id, iq).torque - told.mean(id, iq).torque), 3.7) << id << " " << iq;
            std::complex<double> of_column;
            std::complex<double> of_coenergy;
            for (std::size_t k = 0; k < 36; ++k) {
                const std::complex<double> turn = std::polar(1.0 / 18.0, -6.0 * told.theta_deg(k) * pi / 180.0);
                const double cogging = told.at(0.0, 0.0, k).torque;
                of_column += turn * (told.at(id, iq, k).torque - cogging);
                of_coenergy += turn * derived.at(id, iq, k).torque;
            }
            squares += std::norm(of_column - of_coenergy);
            ripple += std::norm(of_column);
        }
    }
    EXPECT_LT(std::sqrt(squares / ripple), 0.2);
}

std::vector<std::string> build_arguments(const Folder& folder, std::vector<std::string> more = {}) {
    std::vector<std::string> arguments{"build",
                                       "pmsm",
                                       folder / "map.csv",
                                       "--out",
                                       folder / "m.kzb",
                                       "--poles",
                                       "4",
                                       "--resistance",
                                       "0.5",
                                       "--amplitude-nodes",
                                       "3",
                                       "--phase-step",
                                       "45",
                                       "--position-step",
                                       "30"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

TEST(BuildCommand, writes_a_model_that_the_store_reads_and_accounts_for_it_as_json) {
    const Folder folder;
    test::write_file(folder / "map.csv", linear_map());
    const Finished done = run_kzb(build_arguments(folder, {"--json", "-a", "LdLq,Harmonic,FluxIntegralDQTheta"}));
    ASSERT_EQ(done.code, 0) << done.err;
    const auto account = nlohmann::json::parse(done.out);
    EXPECT_EQ(account["number_of_poles"], 4);
    EXPECT_EQ(account["deviations"].size(), 3U);
    EXPECT_EQ(account["deviations"][0]["application"], "LdLq");
    EXPECT_EQ(account["axes"]["phase_deg"]["nodes"], 9);
    EXPECT_THAT(done.err, HasSubstr("note: "));

    const StorePointer store = open_store();
    ASSERT_EQ(kzb_reader((folder / "m.kzb").c_str(), store.get()), 0);
    for (const char* application : {"LdLq", "Harmonic", "FluxIntegralDQTheta"}) {
        EXPECT_EQ(kzb_has_application("PMSM", application, store.get()), 1) << application;
    }
    EXPECT_EQ(kzb_get_int("control", "accuracy_type", store.get()), 7);
    EXPECT_EQ(folder.names().size(), 2U);  // nothing beside map and model
}

TEST(BuildCommand, same_input_and_day_give_the_same_bytes) {
    const Folder folder;
    test::write_file(folder / "map.csv", linear_map());
    ASSERT_EQ(run_kzb(build_arguments(folder), ".", {{"SOURCE_DATE_EPOCH", "0"}}).code, 0);
    const std::string first = test::read_file(folder / "m.kzb");
    ASSERT_EQ(run_kzb(build_arguments(folder), ".", {{"SOURCE_DATE_EPOCH", "0"}}).code, 0);
    EXPECT_EQ(first, test::read_file(folder / "m.kzb"));
    EXPECT_THAT(first, HasSubstr("1970-01-01"));
}

TEST(BuildCommand, wrong_input_leaves_an_earlier_model_as_it_was) {
    const Folder folder;
    test::write_file(folder / "m.kzb", "earlier");
    test::write_file(folder / "map.csv", "id,iq,psi_d,psi_q\n0,0,x,0\n");
    const Finished done = run_kzb(build_arguments(folder));
    EXPECT_EQ(done.code, 3);
    EXPECT_EQ(done.out, "");
    EXPECT_THAT(done.err, HasSubstr("map.csv:2: column \"psi_d\": \"x\" is not a finite number"));
    EXPECT_EQ(test::line_count(done.err), 1);
    EXPECT_EQ(test::read_file(folder / "m.kzb"), "earlier");
}

TEST(BuildCommand, exit_codes_tell_usage_file_and_run_apart) {
    const Folder folder;
    test::write_file(folder / "map.csv", linear_map());
    const std::vector<std::vector<std::string>> wrong_usage{
        {"--poles", "3"},
        {"--phase-step", "7"},
        {"--position-step", "7"},
        {"--resistance", "-1"},
        {"--resistance", "nan"},
        {"-a", "Harmonics"},
        {"-a", "LdLq,SimpleHarmonic"},
        {"--column", "id"},
        {"--column", "x=y"},
        {"--info", "colour=1"},
        {"--info", "inertia=big"},
        {"--current-max", "0"},
        {"--mirror", "both"},
        {"--amplitude-nodes", "1"},
        {"--amplitude-nodes", "2000", "--position-step", "0.01", "--phase-step", "0.01"},
        {"--interpolation", "Quintic"}};
    for (const auto& more : wrong_usage) {
        // An option given twice is wrong usage too, so take the earlier one out.
        std::vector<std::string> arguments = build_arguments(folder);
        for (std::size_t n = 0; n < more.size(); n += 2) {
            const auto at = std::find(arguments.begin(), arguments.end(), more[n]);
            if (at != arguments.end()) {
                arguments.erase(at, at + 2);
            }
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Finished done = run_kzb(arguments);
        EXPECT_EQ(done.code, 2) << more[0] << " " << more[1] << ": " << done.err;
        EXPECT_EQ(test::line_count(done.err), 1) << done.err;
    }
    EXPECT_EQ(
        run_kzb({"build", "pmsm", folder / "map.csv", "--out", folder / "map.csv", "--poles", "4", "--resistance", "1"})
            .code,
        2);
    EXPECT_EQ(
        run_kzb({"build", "pmsm", folder / "no.csv", "--out", folder / "m.kzb", "--poles", "4", "--resistance", "1"})
            .code,
        3);
    EXPECT_EQ(run_kzb({"build", "pmsm", folder / "map.csv", "--out", folder / "no/m.kzb", "--poles", "4",
                       "--resistance", "1"})
                  .code,
              1);
    EXPECT_FALSE(std::filesystem::exists(folder / "m.kzb"));
}

TEST(BuildCommand, help_names_the_options) {
    const Finished done = run_kzb({"build", "pmsm", "--help"});
    EXPECT_EQ(done.code, 0);
    for (const char* option : {"--mirror", "--outside", "--poles", "--column", "--application"}) {
        EXPECT_THAT(done.out, HasSubstr(option));
    }
}

}  // namespace
}  // namespace kzb::tool
