#include "kzb/build_outcome.h"

#include <algorithm>

#include "fmt/format.h"
#include "kzb/account_figures.h"
#include "kzb/text.h"
#include "table/lookup.h"

namespace kzb::tool {

void PointDeviation::add(double told, double wanted, const std::function<std::string()>& where) {
    const double off = std::fabs(told - wanted);
    scale = std::max(scale, std::fabs(wanted));
    if (off > largest) {
        largest = off;
        at = where();
    }
    squares += off * off;
    ++points;
}

std::string text_of(const Outcome& outcome) {
    std::string text = fmt::format("{}: {}, motor type {}, {} bytes\n", printable_line(outcome.path), outcome.motor,
                                   outcome.motor_type, size_of_file(outcome.path));
    for (const OutcomeAxis& axis : outcome.axes) {
        text +=
            fmt::format("  {:<10}{:g} to {:g} {}, {} nodes{}\n", axis.name, axis.axis.nodes.front(),
                        axis.axis.nodes.back(), axis.unit, axis.axis.nodes.size(), axis.axis.cyclic ? ", cyclic" : "");
    }
    text += fmt::format("\ndeviation from {}, looked up by {}\n  {:<14}{:>8}{:>14}{:>14}{:>14}   {}\n", outcome.against,
                        outcome.method, "", "points", "largest", "rms", "largest/max", "at");
    for (const PointDeviation& d : outcome.deviations) {
        text += fmt::format("  {:<14}{:>8}{:>11.4g} {:<2}{:>11.4g} {:<2}{:>12.2f} %   {}\n", d.quantity, d.points,
                            d.largest, d.unit, d.rms(), d.unit, percent_of(d.largest, d.scale), d.at);
    }
    if (outcome.out_of_table > 0) {
        text += fmt::format("  {} lookups left their table\n", outcome.out_of_table);
    }
    return text;
}

Json json_of(const Outcome& outcome) {
    Json account{{"file", valid_utf8(outcome.path)},
                 {"bytes", size_of_file(outcome.path)},
                 {"motor", outcome.motor},
                 {"motor_type", outcome.motor_type},
                 {"axes", Json::object()}};
    for (const OutcomeAxis& axis : outcome.axes) {
        account["axes"][axis.name + '_' + axis.unit] = axis_json(axis.axis);
    }
    account["notes"] = outcome.notes;
    Json report{
        {"against", outcome.against}, {"method", outcome.method}, {"lookups_out_of_table", outcome.out_of_table}};
    for (const PointDeviation& d : outcome.deviations) {
        report[d.quantity] = {{"unit", d.unit}, {"points", d.points}, {"largest", d.largest},
                              {"rms", d.rms()}, {"scale", d.scale},   {"at", valid_utf8(d.at)}};
    }
    account["deviations"] = Json::array({report});
    return account;
}

double OutcomeLookup::at(const char* category, const char* key, const std::vector<double>& where) {
    return with(method_.c_str(), category, key, where);
}

double OutcomeLookup::with(const char* method, const char* category, const char* key,
                           const std::vector<double>& where) {
    kzb_reset_error(store_);
    const double value = kzb_get_table_interpolated_value(category, key, where.data(), method, store_);
    const int error = kzb_has_error(store_);
    out_of_table_ += error == lookup_below_range || error == lookup_above_range ? 1U : 0U;
    kzb_reset_error(store_);
    return value;
}

}  // namespace kzb::tool
