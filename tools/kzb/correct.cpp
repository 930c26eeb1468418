// kzb correct: a copy of a KZB file with the factors of correction files, which act while the machine runs.
#include <CLI/CLI.hpp>
#include <memory>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/measured_file.h"
#include "kzb/model_file.h"
#include "kzb/model_rewrite.h"
#include "kzb/output_file.h"

namespace kzb::tool {

namespace {

struct Options {
    RewriteOptions rewrite;
    std::vector<std::string> corrections;
};

// Corrections are looked up by permanent-magnet models alone.
bool takes_corrections(int motor_type) {
    return motor_type == 10000 || motor_type == 10005;
}

void review(const Options& options, const KZB_STORE& store, const StoreChanges& changes, Remarks& remarks) {
    const int motor_type = get_int(store, "control", "motor_type");
    if (!takes_corrections(motor_type)) {
        remarks.push_back(fmt::format("{}: motor type {} ({}) makes no use of corrections, expected 10000 (PMSM)",
                                      options.rewrite.input, motor_type, motor_name(motor_type)));
    }
    if (changes.empty()) {
        remarks.push_back(
            fmt::format("{}: nothing is corrected, the correction files hold no factor", options.rewrite.output));
    }
}

void correct(const Options& options, const Context& context) {
    for (const std::string& correction : options.corrections) {
        refuse_same_file(options.rewrite.output, correction, "a correction file");
    }
    Edit edit;
    edit.change = [&options](KZB_STORE& store, Remarks&) {
        for (const std::string& correction : options.corrections) {
            take_in(store, correction, "a correction file", kzb_read_correction_file);
        }
    };
    edit.review = [&options](const KZB_STORE& store, const StoreChanges& changes, Remarks& remarks) {
        review(options, store, changes, remarks);
    };
    context.print(outcome_text(rewrite_model(options.rewrite, &edit)));
}

}  // namespace

void add_correct(CLI::App& app, Context& context) {
    CLI::App* correct_app = app.add_subcommand("correct", "Copy a KZB file with the factors of correction files");
    const auto options = std::make_shared<Options>();
    add_rewrite_options(*correct_app, options->rewrite);
    correct_app->add_option("corrections", options->corrections, "Correction files, taken in this order")
        ->required()
        ->type_name("CORRECTION");
    correct_app->callback(
        [options, &context] { context.action = [options, &context] { correct(*options, context); }; });
}

}  // namespace kzb::tool
