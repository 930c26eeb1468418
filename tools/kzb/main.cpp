// kzb: looks into KZB files, converts, builds, plots and runs them.
//
// Results on stdout, messages and progress on stderr. Exit codes: 0 done, 1 the run failed, 2 wrong usage, 3 a file
// cannot be read or is not valid.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <clocale>
#include <csignal>
#include <exception>
#include <new>
#include <optional>
#include <sstream>
#include <string>

#include "KZBCalculator/kzb_store.h"
#include "KZBCalculator/kzbcalc.h"
#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/text.h"

namespace kzb::tool {
namespace {

// The caller's stdout, kept aside; file descriptor 1 leads to stderr from here on. Null when started without a stdout.
std::FILE* keep_results_aside() {
    const int kept = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    // A closed descriptor would be given to the next file opened, and messages would end in that file.
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(fd, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDWR));
        }
    }
    dup2(STDERR_FILENO, STDOUT_FILENO);
    return kept < 0 ? nullptr : fdopen(kept, "w");
}

// CLI11 words its errors over several lines at times; a user gets one.
std::string one_line(const std::string& text) {
    std::string line = printable_line(text);
    while (!line.empty() && line.back() == ' ') {
        line.pop_back();
    }
    return line;
}

std::string deepest_command(const CLI::App& app) {
    std::string name = app.get_name();
    for (const CLI::App* sub : app.get_subcommands()) {
        name += ' ' + deepest_command(*sub);
    }
    return name;
}

std::string names_of_subcommands(const CLI::App& app) {
    std::string names;
    for (const CLI::App* sub : app.get_subcommands([](const CLI::App*) { return true; })) {
        names += (names.empty() ? "" : ", ") + sub->get_name();
    }
    return names;
}

// The line about a subcommand that is missing or unknown, here or below the ones found.
std::optional<std::string> wrong_subcommand(const CLI::App& app, int argc, char** argv) {
    const CLI::App* deepest = &app;
    int words = 1;
    for (; !deepest->get_subcommands().empty(); ++words) {
        deepest = deepest->get_subcommands().front();
    }
    const std::string names = names_of_subcommands(*deepest);
    const bool is_option = words < argc && argv[words][0] == '-';
    if (names.empty() || is_option) {
        return std::nullopt;
    }
    const std::string what =
        words < argc ? fmt::format("no subcommand \"{}\"", printable_line(argv[words])) : "a subcommand is missing";
    return fmt::format("{}, expected one of {} (see {} --help)", what, names, deepest_command(app));
}

int parse(CLI::App& app, int argc, char** argv, const Context& context) {
    try {
        app.parse(argc, argv);
        return -1;
    } catch (const CLI::ParseError& e) {
        if (e.get_exit_code() == 0) {  // help or version was asked for
            std::ostringstream out;
            std::ostringstream err;
            app.exit(e, out, err);
            context.print(out.str());
            return exit_done;
        }
        const std::optional<std::string> message = wrong_subcommand(app, argc, argv);
        tell_error(message ? *message : fmt::format("{} (see {} --help)", one_line(e.what()), deepest_command(app)));
        return exit_usage;
    }
}

int run_command_line(int argc, char** argv) {
    Context context;
    context.results = keep_results_aside();

    CLI::App app{"Looks into KZB files of electric machines, converts, builds, plots and runs them.", "kzb"};
    app.set_version_flag("--version",
                         fmt::format("kzb {} (file handler {})", kzbcalcVersion(), kzb_get_filehandler_version()));
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done, 1 the run failed, 2 wrong usage, 3 a file cannot be read or is not valid.");
    add_info(app, context);
    add_convert(app, context);
    add_export_info(app, context);
    add_plot(app, context);
    add_run(app, context);
    add_build(app, context);
    add_validate(app, context);
    add_get(app, context);
    add_set(app, context);
    add_correct(app, context);
    add_loss(app, context);
    add_transform(app, context);

    const int parsed = parse(app, argc, argv, context);
    if (parsed >= 0) {
        return parsed;
    }
    context.action();
    if (context.results != nullptr && std::fclose(context.results) != 0) {
        throw Failure(exit_run_failed, "standard output: could not be written whole");
    }
    return context.exit_code;
}

}  // namespace
}  // namespace kzb::tool

int main(int argc, char** argv) {
    std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is told as any other that cannot be written
    try {
        return kzb::tool::run_command_line(argc, argv);
    } catch (const kzb::tool::Failure& failure) {
        kzb::tool::tell_error(failure.what());
        return failure.code;
    } catch (const std::bad_alloc&) {
        kzb::tool::tell_error("not enough memory");
        return kzb::tool::exit_run_failed;
    } catch (const std::exception& e) {
        kzb::tool::tell_error(e.what());
        return kzb::tool::exit_run_failed;
    }
}
