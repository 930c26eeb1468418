// kzb convert: a copy of a KZB file in a given form, with a report of what that form cannot hold.
//
// The copy is read back and compared before it takes its place: what the report tells is what a reader will find.
#include <CLI/CLI.hpp>
#include <cstdlib>
#include <memory>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/json.h"
#include "kzb/model_file.h"
#include "kzb/output_file.h"
#include "kzb/store_comparison.h"
#include "kzb/text.h"
#include "store/format/model_file.h"

namespace kzb::tool {

namespace {

struct Options {
    std::string input;
    std::string output;
    std::string form;
    bool json = false;
};

// Strings by what the way through a file does to them.
struct Strings {
    std::vector<std::string> quoted;        // hold a double quote
    std::vector<std::string> in_shift_jis;  // written as Shift_JIS, though a reader expects UTF-8
};

Strings examine_strings(const KZB_STORE& store) {
    Strings result;
    for (const KZB_CATEGORY& category : store.categories) {
        for (const auto& entry : category.strings) {
            const std::string name = valid_utf8(category.name + '/' + entry.keyword);
            if (entry.value.find('"') != std::string::npos) {
                result.quoted.push_back(name);
            }
            if (!is_ascii(entry.value)) {
                result.in_shift_jis.push_back(name);
            }
        }
    }
    return result;
}

[[noreturn]] void cannot_hold(const Options& options, std::string_view why) {
    throw Failure(exit_run_failed,
                  fmt::format("{}: the {} form cannot hold {}: {}", options.output, options.form, options.input, why));
}

// A table axis without nodes is written in the binary form with a count and no numbers: no reader finds its way then.
void refuse_axes_without_nodes(const Options& options, const KZB_STORE& store) {
    for (const KZB_CATEGORY& category : store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            for (std::size_t axis = 0; axis < table.axes.size(); ++axis) {
                if (!table.axes[axis]) {
                    cannot_hold(options, fmt::format("table {}/{}: axis {} has no nodes", category.name, table.keyword,
                                                     axis + 1));
                }
            }
        }
    }
}

ModelFile read_back(const Options& options, const std::string& path) {
    unsetenv("KZB_READING_ASCII");  // the copy says its own form
    try {
        return read_model(path);
    } catch (const Failure& failure) {
        std::string_view why = failure.what();
        if (why.substr(0, path.size()) == path) {
            why.remove_prefix(path.size() + 2);
        }
        cannot_hold(options, fmt::format("the copy would be {}", why));
    }
}

Json report_of(const Options& options, const KZB_STORE& store, const StoreComparison& difference,
               const Strings& strings) {
    Json report;
    report["input"] = valid_utf8(options.input);
    report["input_form"] = store.input_type;
    report["output"] = valid_utf8(options.output);
    report["form"] = options.form;
    report["categories"] = store.categories.size();
    report["values"] = difference.values;
    report["values_changed"] = difference.values_changed;
    report["largest_relative_change"] = difference.largest_relative_change;
    report["strings_with_quotes"] = strings.quoted;
    report["strings_in_shift_jis"] = strings.in_shift_jis;
    report["strings_changed"] = difference.strings_changed;
    report["lost"] = difference.lost;
    return report;
}

void warn_of_losses(const Options& options, const StoreComparison& difference, const Strings& strings) {
    if (difference.values_changed > 0) {
        warn(fmt::format("{}: {} of {} values lose digits beyond the eleventh (largest relative change {:.2g})",
                         options.output, difference.values_changed, difference.values,
                         difference.largest_relative_change));
    }
    if (options.form == "ascii") {
        for (const std::string& name : strings.quoted) {
            warn(fmt::format("{}: string {} holds a double quote, which the ascii form cannot", options.output, name));
        }
    }
    if (!strings.in_shift_jis.empty()) {
        warn(fmt::format("{}: written as Shift_JIS, which a reader takes for UTF-8: string {}", options.output,
                         fmt::join(strings.in_shift_jis, ", ")));
    }
    for (const std::string& name : difference.strings_changed) {
        warn(fmt::format("{}: string {} reads back changed", options.output, printable_line(name)));
    }
    for (const std::string& what : difference.lost) {
        warn(fmt::format("{}: lost: {}", options.output, printable_line(what)));
    }
}

void convert(const Options& options, const Context& context) {
    const ModelFile model = read_model(options.input);
    if (!model.damage.empty()) {
        throw Failure(exit_file, fmt::format("{}: damaged, a copy would lose data: {}", options.input,
                                             fmt::join(model.damage, "; ")));
    }
    const bool binary = options.form == "binary";
    if (binary) {
        refuse_axes_without_nodes(options, *model.store);
    }
    OutputFile output(options.output);
    const bool written = binary ? write_binary(*model.store, output.temporary_path())
                                : write_ascii(*model.store, output.temporary_path());
    if (!written) {
        throw Failure(exit_run_failed, fmt::format("{}: could not be written whole", options.output));
    }
    const ModelFile copy = read_back(options, output.temporary_path());
    const StoreComparison difference = compare_stores(*model.store, *copy.store);
    const Strings strings = examine_strings(*model.store);
    output.commit();

    warn_of_losses(options, difference, strings);
    const Json report = report_of(options, *model.store, difference, strings);
    context.print(options.json
                      ? json_text(report)
                      : fmt::format("{}: {} form, {} categories, {} values, {} changed\n", options.output, options.form,
                                    model.store->categories.size(), difference.values, difference.values_changed));
}

}  // namespace

void add_convert(CLI::App& app, Context& context) {
    CLI::App* convert_app = app.add_subcommand("convert", "Copy a KZB file into the ascii or the binary form");
    const auto options = std::make_shared<Options>();
    convert_app->add_option("input", options->input, "KZB file")->required()->type_name("IN");
    convert_app->add_option("output", options->output, "File to write; may be the input")->required()->type_name("OUT");
    convert_app->add_option("--form", options->form, "Form to write")
        ->required()
        ->check(CLI::IsMember({"ascii", "binary"}));
    convert_app->add_flag("--json", options->json, "Report as JSON on stdout");
    convert_app->callback(
        [options, &context] { context.action = [options, &context] { convert(*options, context); }; });
}

}  // namespace kzb::tool
