// kzb run: steps the machine of a KZB file through a scenario and writes what it did as CSV, plot and summary.
#include <CLI/CLI.hpp>
#include <iterator>
#include <memory>
#include <optional>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "kzb/circuit_netlist.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/generic_machine.h"
#include "kzb/generic_simulation.h"
#include "kzb/gnuplot.h"
#include "kzb/json.h"
#include "kzb/model_file.h"
#include "kzb/output_file.h"
#include "kzb/run_plot.h"
#include "kzb/run_report.h"
#include "kzb/simulation.h"
#include "kzb/statistics.h"
#include "kzb/status_text.h"
#include "kzb/text.h"
#include "store/messages.h"

namespace kzb::tool {

namespace {

struct RunOptions {
    std::string file;
    std::string scenario;
    std::string out;
    std::string plot;
    bool json = false;
    bool csv_on_stdout() const { return out == "-"; }
};

// Rows as CSV, to a file or to the caller's stdout.
class CsvWriter {
  public:
    CsvWriter(const RunOptions& options, const Context& context) : context_(context) {
        if (!options.csv_on_stdout()) {
            file_.emplace(options.out);
        }
    }
    void header(const std::vector<Output>& outputs) {
        for (const Output& output : outputs) {
            text_ += output.column() + (&output == &outputs.back() ? "\n" : ",");
        }
        put();
    }
    void row(const std::vector<double>& values) {
        for (const double& value : values) {
            fmt::format_to(std::back_inserter(text_), "{}{}", value, &value == &values.back() ? '\n' : ',');
        }
        put();
    }
    void commit() {
        if (file_) {
            file_->commit();
        } else {
            context_.print(text_);
        }
    }

  private:
    void put() {
        constexpr std::size_t block = 1U << 16;
        if (file_) {
            file_->write(text_);
            text_.clear();
        } else if (text_.size() >= block) {
            context_.print(text_);
            text_.clear();
        }
    }
    const Context& context_;
    std::optional<OutputFile> file_;
    std::string text_;
};

Json summary_head(const RunOptions& options, const Machine& machine, const Scenario& scenario) {
    Json summary;
    summary["file"] = valid_utf8(options.file);
    summary["scenario"] = valid_utf8(options.scenario);
    summary["motor_type"] = machine.motor_type;
    if (!machine.generic) {
        summary["drive"] = scenario.current_driven ? "current" : "voltage";
    }
    summary["start_s"] = scenario.start;
    summary["step_s"] = scenario.step;
    summary["steps"] = scenario.samples;
    return summary;
}

Json failed_sets(const std::vector<FailedSet>& failed) {
    Json list = Json::array();
    for (const FailedSet& set : failed) {
        list.push_back(Json{{"place", valid_utf8(set.place)},
                            {"call", set.call},
                            {"status", set.status},
                            {"text", status_text(set.status)}});
    }
    return list;
}

// All refused settings, one line each; the last is the Failure that ends the command.
[[noreturn]] void refuse(const RunOptions& options, const Context& context, Json summary,
                         const std::vector<FailedSet>& failed) {
    if (options.json) {
        summary["steps"] = 0;
        summary["failed_sets"] = failed_sets(failed);
        context.print(json_text(summary));
    }
    for (const FailedSet& set : failed) {
        const std::string line =
            fmt::format("{}: {}: status {} ({})", set.place, set.call, set.status, status_text(set.status));
        if (&set == &failed.back()) {
            throw Failure(exit_run_failed, line);
        }
        tell_error(line);
    }
    throw Failure(exit_run_failed, "a setting was refused");
}

Json lookup_report(const std::map<int, std::uint64_t>& errors) {
    Json report = Json::array();
    for (const auto& [code, steps] : errors) {
        report.push_back(Json{{"code", code}, {"text", error_text(code)}, {"steps", steps}});
    }
    return report;
}

Json statistics_report(const std::vector<Output>& outputs, const std::vector<Statistics>& statistics) {
    Json report = Json::object();
    for (std::size_t k = 0; k < outputs.size(); ++k) {
        report[outputs[k].column()] = Json{{"min", statistics[k].least()},
                                           {"max", statistics[k].greatest()},
                                           {"mean", statistics[k].mean()},
                                           {"rms", statistics[k].rms()}};
    }
    return report;
}

std::string summary_text(const RunOptions& options, const Scenario& scenario, std::uint64_t recorded,
                         const std::vector<Output>& outputs, const std::vector<Statistics>& statistics) {
    std::string text = fmt::format("{}: {} steps of {} s from {} s, {} recorded\n{:<22}{:>14}{:>14}{:>14}{:>14}\n",
                                   printable_line(options.file), scenario.samples, scenario.step, scenario.start,
                                   recorded, "output", "min", "max", "mean", "rms");
    for (std::size_t k = 0; k < outputs.size(); ++k) {
        const Statistics& s = statistics[k];
        text += fmt::format("{:<22}{:>14.6g}{:>14.6g}{:>14.6g}{:>14.6g}\n", outputs[k].column(), s.least(),
                            s.greatest(), s.mean(), s.rms());
    }
    return text;
}

void warn_of_run(const RunOptions& options, const Simulation& simulation, const std::vector<Output>& outputs,
                 const std::vector<Statistics>& statistics) {
    for (const auto& [code, steps] : simulation.lookup_errors()) {
        warn(fmt::format("{}: {} steps had a table lookup with error {}: {}", options.file, steps, code,
                         error_text(code)));
    }
    for (const AxisExit& exit : simulation.exits()) {
        warn(fmt::format("{}: {}", options.file, exit_text(exit)));
    }
    if (const std::string text = unconverged_text(simulation.passes()); !text.empty()) {
        warn(fmt::format("{}: {}", options.file, text));
    }
    for (std::size_t k = 0; k < outputs.size(); ++k) {
        if (statistics[k].not_finite() > 0) {
            warn(fmt::format("{}: {} values of {} are not finite", options.file, statistics[k].not_finite(),
                             outputs[k].column()));
        }
    }
}

Machine machine_in(const std::string& file) {
    const ModelFile model = read_model(file);
    if (!model.damage.empty()) {
        throw Failure(exit_file, fmt::format("{}: damaged: {}", file, printable_line(model.damage.front())));
    }
    if (const int warning = kzb_has_warning(model.store.get()); warning != 0) {
        warn(fmt::format("{}: {}", file, warning_text(warning)));
    }
    Machine machine = machine_of(kzb_get_int("control", "motor_type", model.store.get()), file);
    machine.number_of_poles = kzb_get_int("control", "number_of_poles", model.store.get());
    if (machine.motor_type == generic_motor_type) {
        machine.generic = std::make_shared<const GenericMachine>(read_generic_machine(*model.store));
    }
    machine.slip_tables = kzb_has_category("InductionParam_HigherAccuracy", model.store.get()) == 1;
    return machine;
}

// The rows may not take the place of what the run reads or draws.
void refuse_same_files(const RunOptions& options) {
    if (options.out.empty() || options.csv_on_stdout()) {
        return;
    }
    refuse_same_file(options.out, options.file, "the KZB file");
    refuse_same_file(options.out, options.scenario, "the scenario");
    refuse_same_file(options.out, options.plot, "the plot");
}

void run(const RunOptions& options, const Context& context) {
    if (options.csv_on_stdout() && options.json) {
        throw Failure(exit_usage, "--out - and --json both write on stdout, expected one of them");
    }
    refuse_same_files(options);
    if (!options.plot.empty()) {
        image_form_of(options.plot);
        require_gnuplot();
        const OutputFile writable(options.plot);  // told before the run, not after it
    }
    const Machine machine = machine_in(options.file);
    const Scenario scenario = read_scenario(options.scenario, machine);
    const std::unique_ptr<Simulation> made = make_simulation(options.file, machine, scenario);
    Simulation& simulation = *made;
    simulation.configure();
    Json summary = summary_head(options, machine, scenario);
    if (!simulation.failed_sets().empty()) {
        refuse(options, context, summary, simulation.failed_sets());
    }

    const std::vector<Output> outputs = chosen_outputs(simulation.offered_outputs(), scenario);
    std::vector<Statistics> statistics(outputs.size());
    std::optional<CsvWriter> csv;
    if (!options.out.empty()) {
        csv.emplace(options, context);
        csv->header(outputs);
    }
    std::optional<RunPlot> plot;
    if (!options.plot.empty()) {
        plot.emplace(outputs, scenario.samples / scenario.record_every);
    }
    std::uint64_t recorded = 0;
    simulation.run(outputs, [&](const std::vector<double>& values) {
        ++recorded;
        for (std::size_t k = 0; k < values.size(); ++k) {
            statistics[k].add(values[k]);
        }
        if (csv) {
            csv->row(values);
        }
        if (plot) {
            plot->add(values);
        }
    });
    if (csv) {
        csv->commit();
    }
    if (plot) {
        plot->draw(options.plot, options.file);
    }

    warn_of_run(options, simulation, outputs, statistics);
    summary["recorded"] = recorded;
    summary["failed_sets"] = failed_sets(simulation.failed_sets());
    summary["lookup_errors"] = lookup_report(simulation.lookup_errors());
    summary["lookup_exits"] = exits_json(simulation.exits());
    const PassReport passes = simulation.passes();
    summary["passes"] = passes_json(passes);
    summary["outputs"] = statistics_report(outputs, statistics);
    const std::string text = summary_text(options, scenario, recorded, outputs, statistics) + passes_text(passes);
    if (options.json) {
        context.print(json_text(summary));
    } else if (options.csv_on_stdout()) {
        tell(text);
    } else {
        context.print(text);
    }
}

}  // namespace

void add_run(CLI::App& app, Context& context) {
    CLI::App* run_app = app.add_subcommand("run", "Step the machine of a KZB file through a scenario");
    const auto options = std::make_shared<RunOptions>();
    run_app->add_option("file", options->file, "KZB file")->required()->type_name("FILE");
    run_app->add_option("scenario", options->scenario, "Scenario in TOML")->required()->type_name("SCENARIO");
    run_app->add_option("--out,-o", options->out, "CSV file to write, - for stdout")->type_name("CSV");
    run_app->add_option("--plot", options->plot, "Image to write, .png or .svg (needs gnuplot)")->type_name("IMAGE");
    run_app->add_flag("--json", options->json, "Summary as JSON on stdout");
    run_app->callback([options, &context] { context.action = [options, &context] { run(*options, context); }; });
}

}  // namespace kzb::tool
