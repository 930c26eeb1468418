// `kzb build generic`: options, account as text and as JSON.
#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "kzb/account_figures.h"
#include "kzb/build.h"
#include "kzb/build_generic.h"
#include "kzb/build_pmsm.h"
#include "kzb/build_words.h"
#include "kzb/circuit_netlist.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/json.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct GenericBuildOptions {
    std::string description;
    std::string out;
    std::string form = "binary";
    bool json = false;
};

const char* name_of(Feed feed) {
    switch (feed) {
        case Feed::current:
            return "current";
        case Feed::displacement:
            return "displacement";
        case Feed::amplitude:
            return "amplitude";
        case Feed::phase:
            return "phase";
        case Feed::expression:
            break;
    }
    return "expression";
}

const char* form_of(const GenericDescription& description) {
    return description.axes.empty() ? "network" : description.set_form() ? "coil sets" : "table axes";
}

Json account_of(const GenericBuildOptions& options, const GenericDescription& description, const GenericBuild& build,
                const KZB_STORE& written) {
    Json account{{"file", valid_utf8(options.out)},
                 {"bytes", size_of_file(options.out)},
                 {"motor", "Generic"},
                 {"form", form_of(description)},
                 {"axes", Json::array()},
                 {"notes", build.notes},
                 {"circuit", netlist_of(written)}};
    for (std::size_t i = 0; i < build.axes.size(); ++i) {
        const TableAxis& axis = build.axes[i];
        account["axes"].push_back({{"column", valid_utf8(description.axes[i].column.header)},
                                   {"feed", name_of(description.axes[i].feed)},
                                   {"first", axis.nodes.front()},
                                   {"last", axis.nodes.back()},
                                   {"nodes", axis.nodes.size()},
                                   {"cyclic", axis.cyclic}});
    }
    return account;
}

std::string text_of(const GenericBuildOptions& options, const Json& account) {
    std::string text = fmt::format("{}: Generic, {}, {} bytes\n", printable_line(options.out),
                                   account["form"].get<std::string>(), account["bytes"].dump());
    for (const Json& axis : account["axes"]) {
        text += fmt::format("  {:<16}{:g} to {:g}, {} nodes, {}{}\n", printable_line(axis["column"].get<std::string>()),
                            axis["first"].get<double>(), axis["last"].get<double>(), axis["nodes"].dump(),
                            axis["feed"].get<std::string>(), axis["cyclic"].get<bool>() ? ", cyclic" : "");
    }
    return text + netlist_text(account["circuit"]);
}

void run(const GenericBuildOptions& options, const Context& context) {
    refuse_over_input(options.out, options.description, "the description");
    const GenericDescription description = read_generic_description(options.description);
    for (const TableText* table : {&description.flux, &description.force, &description.inductance,
                                   &description.output_table, &description.fine_output_table, &description.iron_loss}) {
        if (!table->file.empty()) {
            refuse_over_input(options.out, description.path_of(table->file), "a table of the description");
        }
    }
    const GenericBuild build = build_generic(description);
    for (const std::string& note : build.notes) {
        tell("note: " + note);
    }
    const StorePointer written = write_model(build.store.get(), options.out, options.form);
    const Json account = account_of(options, description, build, *written);
    context.print(options.json ? json_text(account) : text_of(options, account));
}

}  // namespace

void add_build_generic(CLI::App& build, Context& context) {
    CLI::App* app = build.add_subcommand("generic", "Makes a model of any circuit from its description");
    const auto options = std::make_shared<GenericBuildOptions>();
    app->add_option("description", options->description, "Description of circuit, motions and tables, in TOML")
        ->required()
        ->type_name("DESCRIPTION");
    app->add_option("-o,--out", options->out, "KZB file to write")->required();
    app->add_option("--form", options->form, "binary or ascii [binary]")->check(CLI::IsMember({"binary", "ascii"}));
    app->add_flag("--json", options->json, "Account as JSON");
    app->callback([options, &context] { context.action = [options, &context] { run(*options, context); }; });
}

}  // namespace kzb::tool
