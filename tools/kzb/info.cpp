// kzb info: what a KZB file holds. One document is gathered; --json prints it as it is, else it is laid out as text.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/circuit_netlist.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/json.h"
#include "kzb/model_file.h"
#include "kzb/text.h"
#include "store/messages.h"

namespace kzb::tool {

namespace {

struct InfoOptions {
    std::string file;
    bool json = false;
    bool grid = false;
};

Json range_of(const ZeroedArray& values) {
    if (!values || values.size() == 0) {
        return nullptr;
    }
    const auto [low, high] = std::minmax_element(values.data(), values.data() + values.size());
    return Json::array({*low, *high});
}

Json describe_axis(const KZB_TABLE& table, std::size_t axis, bool grid) {
    const ZeroedArray& nodes = table.axes[axis];
    Json result;
    result["axis"] = axis + 1;
    result["nodes"] = table.sizes[axis];
    result["range"] = range_of(nodes);
    result["cyclic"] = table.cyclic[axis] > 0;
    if (grid) {
        result["grid"] = nodes ? Json(std::vector<double>(nodes.data(), nodes.data() + nodes.size())) : Json();
    }
    return result;
}

Json describe_table(const KZB_TABLE& table, bool grid) {
    Json result;
    result["key"] = valid_utf8(table.keyword);
    result["dim"] = table.dim;
    result["values"] = table.total;
    result["range"] = range_of(table.values);
    result["axes"] = Json::array();
    for (std::size_t axis = 0; axis < table.axes.size(); ++axis) {
        result["axes"].push_back(describe_axis(table, axis, grid));
    }
    return result;
}

Json describe_category(const KZB_CATEGORY& category, bool grid) {
    Json result;
    result["name"] = valid_utf8(category.name);
    result["ints"] = Json::object();
    for (const auto& entry : category.ints) {
        result["ints"][valid_utf8(entry.keyword)] = entry.value;
    }
    result["doubles"] = Json::object();
    for (const auto& entry : category.doubles) {
        result["doubles"][valid_utf8(entry.keyword)] = entry.value;
    }
    result["strings"] = Json::object();
    for (const auto& entry : category.strings) {
        result["strings"][valid_utf8(entry.keyword)] = from_store(entry.value);
    }
    result["tables"] = Json::array();
    for (const KZB_TABLE& table : category.tables) {
        result["tables"].push_back(describe_table(table, grid));
    }
    return result;
}

Json value_of(const KZB_INFORMATION& row, KZB_STORE* store) {
    switch (row.type) {
        case 0:
            return kzb_get_int(row.first, row.second, store);
        case 1:
            return kzb_get_double(row.first, row.second, store);
        default: {
            const char* text = kzb_get_string(row.first, row.second, store);
            return text == nullptr ? Json() : Json(from_store(text));
        }
    }
}

template <class Get>
Json information_rows(int count, Get get, KZB_STORE* store) {
    Json rows = Json::array();
    for (int i = 0; i < count; ++i) {
        const KZB_INFORMATION row = get(store, i);
        rows.push_back(Json{{"category", row.first}, {"key", row.second}, {"value", value_of(row, store)}});
    }
    return rows;
}

Json applications(KZB_STORE* store) {
    Json offered = Json::array();
    for (int i = 0; i < kzb_get_application_num(store); ++i) {
        const KZB_INFORMATION row = kzb_get_application(store, i);
        offered.push_back(
            Json{{"motor", row.first}, {"application", row.second == nullptr ? Json() : Json(row.second)}});
    }
    return offered;
}

Json describe(const std::string& file, const ModelFile& model, bool grid) {
    KZB_STORE* store = model.store.get();
    Json result;
    result["file"] = valid_utf8(file);
    result["form"] = store->input_type;
    result["layout"] = model.has_head ? "present" : "older";
    const int motor_type = kzb_get_int("control", "motor_type", store);
    const bool has_motor_type = kzb_has_parameter("control", "motor_type", store) != 0;
    result["motor_type"] = has_motor_type ? Json(motor_type) : Json();
    result["motor"] = has_motor_type ? Json(motor_name(motor_type)) : Json();
    result["applications"] = applications(store);
    result["basic_information"] =
        information_rows(kzb_get_basic_information_num(store), kzb_get_basic_information, store);
    result["motor_information"] =
        information_rows(kzb_get_motor_information_num(store), kzb_get_motor_information, store);
    if (motor_type == generic_motor_type) {
        result["circuit"] = netlist_of(*store);
    }
    result["categories"] = Json::array();
    for (const KZB_CATEGORY& category : store->categories) {
        result["categories"].push_back(describe_category(category, grid));
    }
    result["warnings"] = Json::array();
    if (const int warning = kzb_has_warning(store); warning != 0) {
        result["warnings"].push_back(warning_text(warning));
    }
    for (const auto* list : {&model.notes, &model.damage}) {
        for (const std::string& line : *list) {
            result["warnings"].push_back(valid_utf8(line));
        }
    }
    return result;
}

std::string scalar_text(const Json& value) {
    return value.is_string() ? printable_line(value.get<std::string>()) : value.dump();
}

std::string range_text(const Json& range) {
    return range.is_null() ? "no values" : fmt::format("{} to {}", range[0].dump(), range[1].dump());
}

std::string rows_text(std::string_view title, const Json& rows) {
    if (rows.empty()) {
        return {};
    }
    std::string text = fmt::format("\n{}\n", title);
    for (const Json& row : rows) {
        text += fmt::format("  {:<24} {}\n", row["key"].get<std::string>(), scalar_text(row["value"]));
    }
    return text;
}

std::string table_text(const Json& table) {
    std::string text = fmt::format("  {} [{} axes, {} values, {}]\n", printable_line(table["key"].get<std::string>()),
                                   table["dim"].dump(), table["values"].dump(), range_text(table["range"]));
    for (const Json& axis : table["axes"]) {
        text += fmt::format("    axis {}: {} nodes, {}{}\n", axis["axis"].dump(), axis["nodes"].dump(),
                            range_text(axis["range"]), axis["cyclic"].get<bool>() ? ", cyclic" : "");
        if (axis.contains("grid") && !axis["grid"].is_null()) {
            std::vector<std::string> nodes;
            for (const Json& node : axis["grid"]) {
                nodes.push_back(node.dump());
            }
            text += fmt::format("      {}\n", fmt::join(nodes, " "));
        }
    }
    return text;
}

std::string category_text(const Json& category) {
    std::string text = fmt::format("\n{}\n", printable_line(category["name"].get<std::string>()));
    for (const char* kind : {"ints", "doubles", "strings"}) {
        for (const auto& [key, value] : category[kind].items()) {
            text += fmt::format("  {} = {}\n", printable_line(key), scalar_text(value));
        }
    }
    for (const Json& table : category["tables"]) {
        text += table_text(table);
    }
    return text;
}

std::string as_text(const Json& info) {
    std::vector<std::string> offered;
    for (const Json& row : info["applications"]) {
        offered.push_back(row["motor"].get<std::string>() +
                          (row["application"].is_null() ? "" : " " + row["application"].get<std::string>()));
    }
    std::string text =
        fmt::format("File          {}\nForm          {}{}\n", printable_line(info["file"].get<std::string>()),
                    info["form"].get<std::string>(), info["layout"] == "older" ? " (older layout)" : "");
    text += info["motor_type"].is_null()
                ? "Motor type    not told\n"
                : fmt::format("Motor type    {} ({})\n", info["motor_type"].dump(), info["motor"].get<std::string>());
    text += fmt::format("Applications  {}\n", offered.empty() ? "none" : fmt::format("{}", fmt::join(offered, ", ")));
    text += rows_text("Basic information", info["basic_information"]);
    text += rows_text("Motor information", info["motor_information"]);
    text += info.contains("circuit") ? netlist_text(info["circuit"]) : "";
    text += fmt::format("\n{} categories\n", info["categories"].size());
    for (const Json& category : info["categories"]) {
        text += category_text(category);
    }
    return text;
}

void show(const InfoOptions& options, const Context& context) {
    const ModelFile model = read_model(options.file);
    const Json info = describe(options.file, model, options.grid);
    for (const Json& warning : info["warnings"]) {
        warn(fmt::format("{}: {}", options.file, printable_line(warning.get<std::string>())));
    }
    context.print(options.json ? json_text(info) : as_text(info));
}

}  // namespace

void add_info(CLI::App& app, Context& context) {
    CLI::App* info = app.add_subcommand("info", "Show what a KZB file holds: motor, applications, categories, tables");
    const auto options = std::make_shared<InfoOptions>();
    info->add_option("file", options->file, "KZB file")->required()->type_name("FILE");
    info->add_flag("--json", options->json, "JSON on stdout");
    info->add_flag("--grid", options->grid, "List the nodes of every axis");
    info->callback([options, &context] { context.action = [options, &context] { show(*options, context); }; });
}

}  // namespace kzb::tool
