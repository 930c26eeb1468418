#include "kzb/run_report.h"

#include "circuit/generic/calc_eq_generic.h"
#include "fmt/format.h"
#include "interface/kzbcalc_handle.h"
#include "kzb/text.h"
#include "models/calc_eq_wfsm.h"

namespace kzb::tool {

namespace {

double mean_of(const PassCounts& passes) {
    return passes.solved_steps == 0 ? 0.0
                                    : static_cast<double>(passes.passes) / static_cast<double>(passes.solved_steps);
}

}  // namespace

PassReport passes_of(const KZB_CALC& handle, std::uint64_t steps) {
    constexpr int wound_field_type = 10007;
    constexpr int generic_type = 10008;
    if (handle.motor_type == generic_type) {
        return {true, Calc_Eq_generic::most_passes, static_cast<const Calc_Eq_generic&>(*handle.model).pass_counts()};
    }
    if (handle.motor_type == wound_field_type) {
        const auto& model = static_cast<const Calc_Eq_wfsm&>(*handle.model);
        return {true, model.max_iterations(), model.pass_counts()};
    }
    const auto count = static_cast<long long>(steps);
    return {false, 1, {count, count, 0, steps == 0 ? 0 : 1}};
}

Json passes_json(const PassReport& passes) {
    const PassCounts& counts = passes.counts;
    return Json{{"iterates", passes.iterates}, {"solved_steps", counts.solved_steps},
                {"passes", counts.passes},     {"mean", mean_of(counts)},
                {"most", counts.most_passes},  {"unconverged_steps", counts.unconverged_steps}};
}

std::string passes_text(const PassReport& passes) {
    const PassCounts& counts = passes.counts;
    if (counts.solved_steps == 0) {
        return "passes: none, no step was solved\n";
    }
    if (!passes.iterates) {
        return fmt::format("passes: 1 in each of {} steps; this model does not iterate\n", counts.solved_steps);
    }
    return fmt::format("passes: {} in {} solved steps, {:.3g} in the mean, {} at most; {} steps did not converge\n",
                       counts.passes, counts.solved_steps, mean_of(counts), counts.most_passes,
                       counts.unconverged_steps);
}

std::string unconverged_text(const PassReport& passes) {
    if (passes.counts.unconverged_steps == 0) {
        return "";
    }
    return fmt::format("{} of {} solved steps did not converge within {} passes; the best pass stands",
                       passes.counts.unconverged_steps, passes.counts.solved_steps, passes.most_allowed);
}

Json exits_json(const std::vector<AxisExit>& exits) {
    Json list = Json::array();
    for (const AxisExit& exit : exits) {
        list.push_back(Json{{"category", from_store(exit.category)},
                            {"table", from_store(exit.key)},
                            {"axis", exit.axis},
                            {"side", exit.above ? "above" : "below"},
                            {"lookups", exit.lookups},
                            {"end", exit.end},
                            {"farthest", exit.farthest}});
    }
    return list;
}

std::string exit_text(const AxisExit& exit) {
    return fmt::format("{}/{}, axis {}: {} lookups {} {:g}, {} {:g}", printable_line(from_store(exit.category)),
                       printable_line(from_store(exit.key)), exit.axis, exit.lookups, exit.above ? "above" : "below",
                       exit.end, exit.above ? "up to" : "down to", exit.farthest);
}

}  // namespace kzb::tool
