#include "kzb/model_rewrite.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/model_file.h"
#include "kzb/output_file.h"
#include "kzb/text.h"
#include "store/format/model_file.h"

namespace kzb::tool {

namespace {

void examine_strings(const KZB_STORE& store, RewriteReport& report) {
    for (const KZB_CATEGORY& category : store.categories) {
        for (const auto& entry : category.strings) {
            const std::string name = valid_utf8(category.name + '/' + entry.keyword);
            if (entry.value.find('"') != std::string::npos) {
                report.strings_with_quotes.push_back(name);
            }
            if (!is_ascii(entry.value)) {
                report.strings_in_shift_jis.push_back(name);
            }
        }
    }
}

[[noreturn]] void cannot_hold(const RewriteOptions& options, std::string_view why) {
    throw Failure(exit_run_failed,
                  fmt::format("{}: the {} form cannot hold {}: {}", options.output, options.form, options.input, why));
}

// A table axis without nodes is written in the binary form with a count and no numbers: no reader finds its way then.
void refuse_axes_without_nodes(const RewriteOptions& options, const KZB_STORE& store) {
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

ModelFile read_whole_model(const std::string& path) {
    ModelFile model = read_model(path);
    if (!model.damage.empty()) {
        throw Failure(exit_file,
                      fmt::format("{}: damaged, a copy would lose data: {}", path, fmt::join(model.damage, "; ")));
    }
    return model;
}

ModelFile read_back(const RewriteOptions& options, const std::string& path) {
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

// What the edit put in must come back, but for the digits of numbers: a copy without it would be no answer.
void require_edit_kept(const RewriteReport& report) {
    for (const std::string& name : report.difference.strings_changed) {
        if (report.changes.touches(name)) {
            cannot_hold(report.options, fmt::format("string {} would read back changed", printable_line(name)));
        }
    }
    if (!report.difference.lost.empty()) {
        cannot_hold(report.options, fmt::format("lost: {}", printable_line(report.difference.lost.front())));
    }
}

void warn_of_losses(const RewriteReport& report) {
    const std::string& output = report.options.output;
    const StoreComparison& difference = report.difference;
    if (difference.values_changed > 0) {
        warn(fmt::format("{}: {} of {} values lose digits beyond the eleventh (largest relative change {:.2g})", output,
                         difference.values_changed, difference.values, difference.largest_relative_change));
    }
    if (report.options.form == "ascii") {
        for (const std::string& name : report.strings_with_quotes) {
            warn(fmt::format("{}: string {} holds a double quote, which the ascii form cannot", output, name));
        }
    }
    if (!report.strings_in_shift_jis.empty()) {
        warn(fmt::format("{}: written as Shift_JIS, which a reader takes for UTF-8: string {}", output,
                         fmt::join(report.strings_in_shift_jis, ", ")));
    }
    for (const std::string& name : difference.strings_changed) {
        warn(fmt::format("{}: string {} reads back changed", output, printable_line(name)));
    }
    for (const std::string& what : difference.lost) {
        warn(fmt::format("{}: lost: {}", output, printable_line(what)));
    }
}

Json names_of(const std::vector<std::string>& names) {
    Json list = Json::array();
    for (const std::string& name : names) {
        list.push_back(valid_utf8(name));
    }
    return list;
}

}  // namespace

RewriteReport rewrite_model(const RewriteOptions& options, const Edit* edit) {
    OutputFile output(options.output);  // a place that takes no file is told before the work, not after it
    const ModelFile model = read_whole_model(options.input);
    KZB_STORE& store = *model.store;
    RewriteReport report;
    report.options = options;
    report.input_form = store.input_type;
    Remarks remarks;
    if (options.form.empty()) {
        report.options.form = store.input_type;
    }
    if (edit != nullptr) {
        const ModelFile before = read_whole_model(options.input);
        edit->change(store, remarks);
        report.changes = changes_between(*before.store, store);
        if (edit->review) {
            edit->review(store, report.changes, remarks);
        }
    }

    const bool binary = report.options.form == "binary";
    if (binary) {
        refuse_axes_without_nodes(report.options, store);
    }
    if (const auto write = binary ? write_binary : write_ascii;
        !write(store, output.temporary_path(), Writing::in_place)) {
        throw Failure(exit_run_failed, fmt::format("{}: cannot write: {}", options.output, std::strerror(errno)));
    }
    const ModelFile copy = read_back(report.options, output.temporary_path());
    report.categories = store.categories.size();
    report.difference = compare_stores(store, *copy.store);
    examine_strings(store, report);
    if (edit != nullptr) {
        require_edit_kept(report);
    }
    output.commit();
    for (const std::string& remark : remarks) {
        warn(remark);
    }
    warn_of_losses(report);
    return report;
}

Json json_of(const RewriteReport& report) {
    Json json;
    json["input"] = valid_utf8(report.options.input);
    json["input_form"] = report.input_form;
    json["output"] = valid_utf8(report.options.output);
    json["form"] = report.options.form;
    json["categories"] = report.categories;
    json["values"] = report.difference.values;
    json["values_changed"] = report.difference.values_changed;
    json["largest_relative_change"] = report.difference.largest_relative_change;
    json["strings_with_quotes"] = report.strings_with_quotes;
    json["strings_in_shift_jis"] = report.strings_in_shift_jis;
    json["strings_changed"] = names_of(report.difference.strings_changed);
    json["lost"] = names_of(report.difference.lost);
    return json;
}

std::string outcome_text(const RewriteReport& report) {
    const StoreChanges& changes = report.changes;
    if (report.options.json) {
        Json json = json_of(report);
        json["added"] = names_of(changes.added);
        json["changed"] = names_of(changes.changed);
        json["removed"] = names_of(changes.removed);
        return json_text(json);
    }
    std::string text =
        fmt::format("{}: {} form, {} added, {} changed, {} removed\n", printable_line(report.options.output),
                    report.options.form, changes.added.size(), changes.changed.size(), changes.removed.size());
    const auto list = [&text](const char* verb, const std::vector<std::string>& names) {
        for (const std::string& name : names) {
            text += fmt::format("  {:<8} {}\n", verb, printable_line(name));
        }
    };
    list("added", changes.added);
    list("changed", changes.changed);
    list("removed", changes.removed);
    return text;
}

void add_rewrite_options(CLI::App& app, RewriteOptions& options) {
    app.add_option("model", options.input, "KZB file")->required()->type_name("MODEL");
    app.add_option("--out,-o", options.output, "File to write; may be MODEL")->required()->type_name("FILE");
    app.add_option("--form", options.form, "Form to write (default: that of MODEL)")
        ->check(CLI::IsMember({"ascii", "binary"}));
    app.add_flag("--json", options.json, "Report as JSON on stdout");
}

}  // namespace kzb::tool
