#include "kzb/run_report.h"

#include "fmt/format.h"
#include "interface/kzbcalc_handle.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

double mean_of(const PassCounts& passes) {
    return passes.solved_steps == 0 ? 0.0
                                    : static_cast<double>(passes.passes) / static_cast<double>(passes.solved_steps);
}

}  // namespace

std::optional<PassCounts> passes_of(const KZB_CALC& handle) {
    constexpr int generic_type = 10008;
    if (handle.motor_type == generic_type) {
        return static_cast<const Calc_Eq_generic&>(*handle.model).pass_counts();
    }
    return std::nullopt;
}

Json passes_json(const std::optional<PassCounts>& passes) {
    if (!passes) {
        return {};
    }
    return Json{{"solved_steps", passes->solved_steps},
                {"passes", passes->passes},
                {"mean", mean_of(*passes)},
                {"most", passes->most_passes},
                {"unconverged_steps", passes->unconverged_steps}};
}

std::string passes_text(const std::optional<PassCounts>& passes) {
    if (!passes) {
        return "";
    }
    return fmt::format("passes: {} in {} solved steps, {:.3g} in the mean, {} at most; {} steps did not converge\n",
                       passes->passes, passes->solved_steps, mean_of(*passes), passes->most_passes,
                       passes->unconverged_steps);
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
