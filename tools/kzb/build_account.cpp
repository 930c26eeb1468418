// The account of a build: tables and deviations as text and as JSON.
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/account_figures.h"
#include "kzb/build.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

std::string application_names(const PmsmOptions& options) {
    std::vector<std::string> names;
    for (const Application application : options.model.applications) {
        names.emplace_back(name_of(application));
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string deviation_lines(const DeviationReport& report, const std::string& method) {
    std::string text = fmt::format("\n{}: deviation from {} {} of the map, looked up by {}",
                                   name_of(report.application), report.points, report.against, method);
    if (report.left_out > 0) {
        text += fmt::format(" ({} beyond the largest amplitude left out)", report.left_out);
    }
    text += fmt::format("\n  {:<8}{:>14}{:>14}{:>14}   {}\n", "", "largest", "rms", "largest/max", "at id, iq, theta");
    for (const Deviation& d : report.deviations) {
        text += fmt::format("  {:<8}{:>11.4g} {:<2}{:>11.4g} {:<2}{:>12.2f} %   {:g} A, {:g} A, {:g} deg\n", d.quantity,
                            d.largest, d.unit, d.rms, d.unit, percent_of(d.largest, d.scale), d.id, d.iq, d.theta_deg);
    }
    if (report.out_of_table > 0) {
        text += fmt::format("  {} lookups left their table\n", report.out_of_table);
    }
    return text;
}

}  // namespace

std::string text_account(const PmsmOptions& options, const PmsmBuild& build,
                         const std::vector<DeviationReport>& reports) {
    const TableGrids& grids = build.grids;
    std::string text =
        fmt::format("{}: PMSM {}, {} poles, {} bytes\n", printable_line(options.out_path), application_names(options),
                    options.model.number_of_poles, size_of_file(options.out_path));
    text += fmt::format("  amplitude {:g} to {:g} A peak, {} nodes\n", grids.amplitude.nodes.front(),
                        grids.amplitude.nodes.back(), grids.amplitude.nodes.size());
    text += fmt::format("  phase     {:g} to {:g} deg, {} nodes{}\n", grids.phase.nodes.front(),
                        grids.phase.nodes.back(), grids.phase.nodes.size(), grids.phase.cyclic ? ", cyclic" : "");
    text += fmt::format("  position  {:g} to {:g} deg mechanical, {} nodes, cyclic\n", grids.position.nodes.front(),
                        grids.position.nodes.back(), grids.position.nodes.size());
    for (const DeviationReport& report : reports) {
        text += deviation_lines(report, options.method);
    }
    return text;
}

Json json_account(const PmsmOptions& options, const PmsmBuild& build, const std::vector<DeviationReport>& reports) {
    Json account;
    account["file"] = valid_utf8(options.out_path);
    account["bytes"] = size_of_file(options.out_path);
    account["motor"] = "PMSM";
    for (const Application application : options.model.applications) {
        account["applications"].push_back(name_of(application));
    }
    account["number_of_poles"] = options.model.number_of_poles;
    account["axes"] = {{"amplitude_A", axis_json(build.grids.amplitude)},
                       {"phase_deg", axis_json(build.grids.phase)},
                       {"position_deg", axis_json(build.grids.position)}};
    account["notes"] = build.notes;
    account["deviations"] = Json::array();
    for (const DeviationReport& report : reports) {
        Json entry{{"application", name_of(report.application)},
                   {"against", report.against},
                   {"method", options.method},
                   {"points", report.points},
                   {"left_out", report.left_out},
                   {"lookups_out_of_table", report.out_of_table}};
        for (const Deviation& d : report.deviations) {
            entry[d.quantity] = {
                {"unit", d.unit},  {"largest", d.largest},       {"rms", d.rms}, {"scale", d.scale}, {"at_id_A", d.id},
                {"at_iq_A", d.iq}, {"at_theta_deg", d.theta_deg}};
        }
        account["deviations"].push_back(std::move(entry));
    }
    return account;
}

}  // namespace kzb::tool
