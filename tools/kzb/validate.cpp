// kzb validate: everything that is wrong or suspicious in a KZB file.
#include "kzb/validate.h"

#include <CLI/CLI.hpp>
#include <memory>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/json.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct ValidateOptions {
    std::string file;
    bool json = false;
};

// In the order in which the findings are listed.
constexpr void (*checks[])(const Examined&, Findings&) = {
    check_damage,       check_entries,       check_motor_type,      check_machine_parameters,
    check_applications, check_loss_tables,   check_user_parameters, check_scalars,
    check_axes,         check_values,        check_cyclic_ends,     check_torque,
    check_inductance,   check_generic_model,
};

// A file with a placeholder in it is one node short; what the reader stumbles over later does not tell that.
ModelFile read_or_explain(const std::string& path) {
    try {
        return read_model(path);
    } catch (const Failure& failure) {
        const std::vector<std::string> placeholders =
            failure.code == exit_file ? placeholders_of_file(path) : std::vector<std::string>();
        if (placeholders.empty()) {
            throw;
        }
        throw Failure(exit_file, printable_line(fmt::format("{}; table {} {}", failure.what(),
                                                            fmt::join(placeholders, ", "), placeholder_text)));
    }
}

Json as_json(const Findings& findings) {
    Json list = Json::array();
    for (const Finding& finding : findings.list()) {
        list.push_back(Json{{"severity", name_of(finding.severity)},
                            {"check", finding.check},
                            {"category", finding.category},
                            {"key", finding.key},
                            {"place", finding.place},
                            {"message", finding.message}});
    }
    return list;
}

// "category/key", either alone, or nothing.
std::string entry_of(const Finding& finding) {
    const bool both = !finding.category.empty() && !finding.key.empty();
    return finding.category + (both ? "/" : "") + finding.key;
}

std::string counted(std::size_t count, std::string_view what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string as_text(const std::string& file, const Findings& findings) {
    std::string text;
    for (const Finding& finding : findings.list()) {
        std::string line = fmt::format("{}: {}: ", name_of(finding.severity), finding.check);
        for (const std::string& part : {entry_of(finding), finding.place}) {
            line += part.empty() ? "" : part + ": ";
        }
        text += printable_line(line + finding.message) + '\n';
    }
    const std::string summary = findings.list().empty()
                                    ? "nothing found"
                                    : fmt::format("{}, {}", counted(findings.count(Severity::error), "error"),
                                                  counted(findings.count(Severity::warning), "warning"));
    return text + printable_line(fmt::format("{}: {}", file, summary)) + '\n';
}

void validate(const ValidateOptions& options, Context& context) {
    const ModelFile file = read_or_explain(options.file);
    const KZB_STORE& store = *file.store;
    const Examined model{options.file, file, store, get_int(store, "control", "motor_type")};
    Findings findings;
    for (const auto check : checks) {
        check(model, findings);
    }
    context.print(options.json ? json_text(as_json(findings)) : as_text(options.file, findings));
    context.exit_code = findings.list().empty() ? exit_done : exit_findings;
}

}  // namespace

void add_validate(CLI::App& app, Context& context) {
    CLI::App* command = app.add_subcommand("validate", "List what is wrong or suspicious in a KZB file");
    const auto options = std::make_shared<ValidateOptions>();
    command->add_option("file", options->file, "KZB file")->required()->type_name("FILE");
    command->add_flag("--json", options->json, "JSON on stdout");
    command->footer("Exit codes: 0 nothing found, 1 findings, 2 wrong usage, 3 the file cannot be read.");
    command->callback([options, &context] { context.action = [options, &context] { validate(*options, context); }; });
}

}  // namespace kzb::tool
