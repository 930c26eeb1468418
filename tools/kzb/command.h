// What the subcommands of kzb share: how they register, how they end, where they write.
//
// A subcommand lives in a file of its own with one function add_<name>(app, context): it adds its options to `app` and
// leaves in `context.action` what to do once the whole command line has been understood. The action throws Failure to
// end with one line on stderr and an exit code; it returns when all is done.
#pragma once

#include <cstdio>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace CLI {
class App;
}

namespace kzb::tool {

enum ExitCode {
    exit_done = 0,
    exit_run_failed = 1,  // the work itself failed
    exit_findings = 1,    // the work was to find faults, and there are some
    exit_usage = 2,       // the command line is wrong
    exit_file = 3         // a file cannot be read, or what it holds is not valid
};

// `what` says what is wrong, where, and what was expected; one line, UTF-8.
class Failure : public std::runtime_error {
  public:
    Failure(ExitCode exit_code, const std::string& text) : std::runtime_error(text), code(exit_code) {}
    ExitCode code;
};

struct Context {
    std::function<void()> action;
    ExitCode exit_code = exit_done;  // of an action that returns

    // Results go here, never to std::cout or printf: the library prints on standard output, so the process keeps the
    // caller's stdout aside and file descriptor 1 leads to stderr from the first line of main on.
    std::FILE* results = nullptr;

    // Writes a result; Failure when the caller's stdout takes no more.
    void print(std::string_view text) const;
};

void add_info(CLI::App& app, Context& context);
void add_convert(CLI::App& app, Context& context);
void add_export_info(CLI::App& app, Context& context);
void add_plot(CLI::App& app, Context& context);
void add_run(CLI::App& app, Context& context);
void add_build(CLI::App& app, Context& context);
void add_validate(CLI::App& app, Context& context);
void add_get(CLI::App& app, Context& context);
void add_set(CLI::App& app, Context& context);
void add_correct(CLI::App& app, Context& context);
void add_loss(CLI::App& app, Context& context);
void add_transform(CLI::App& app, Context& context);

}  // namespace kzb::tool
