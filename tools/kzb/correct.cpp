// kzb correct: a copy of a KZB file with the factors of correction files, which act while the machine runs.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <memory>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/findings.h"
#include "kzb/measured_file.h"
#include "kzb/model_file.h"
#include "kzb/model_rewrite.h"
#include "kzb/output_file.h"
#include "kzb/sound_table.h"

namespace kzb::tool {

namespace {

struct CorrectOptions {
    RewriteOptions rewrite;
    std::vector<std::string> corrections;
};

// Corrections are looked up by permanent-magnet models alone.
bool takes_corrections(int motor_type) {
    return motor_type == 10000 || motor_type == 10005;
}

constexpr const char* corrected_tables[] = {"inductance", "torque", "mag-flux", "total-flux", "ironloss"};
constexpr const char* leakages[] = {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"};

// A word in the place of a number reads as 0, which no lookup takes for a fault.
void require_usable(const KZB_STORE& store, const std::string& correction) {
    for (const char* key : corrected_tables) {
        require_usable_table(store, "correction", key, correction);
    }
    for (const char* key : leakages) {
        if (const double value = get_double(store, "parameter", key); is_unusable(value)) {
            throw Failure(exit_file,
                          fmt::format("{}: parameter/{}: {:g}, expected a finite number", correction, key, value));
        }
    }
}

void tell_of_odd_factors(const std::string& output, const KZB_STORE& store, const StoreChanges& changes,
                         Remarks& remarks) {
    for (const char* key : corrected_tables) {
        const KZB_TABLE* table = find_table(store, "correction", key);
        if (table == nullptr || !changes.touches(std::string("correction/") + key)) {
            continue;
        }
        const double* const first = table->values.data();
        const double* const last = first + table->values.size();
        const double* const odd = std::find_if(first, last, [](double factor) { return !(factor > 0.0); });
        if (odd != last) {
            remarks.push_back(fmt::format("{}: correction/{}: {}: factor {:g}, expected factors above 0", output, key,
                                          value_place(*table, static_cast<std::size_t>(odd - first)), *odd));
        }
    }
}

void review(const CorrectOptions& options, const KZB_STORE& store, const StoreChanges& changes, Remarks& remarks) {
    const int motor_type = get_int(store, "control", "motor_type");
    if (!takes_corrections(motor_type)) {
        remarks.push_back(
            fmt::format("{}: motor type {} ({}) makes no use of corrections, expected 10000 (PMSM) or 10005 "
                        "(LinearSynchronous)",
                        options.rewrite.input, motor_type, motor_name(motor_type)));
    }
    tell_of_odd_factors(options.rewrite.output, store, changes, remarks);
    if (changes.empty()) {
        remarks.push_back(
            fmt::format("{}: nothing is corrected, the correction files hold no factor", options.rewrite.output));
    }
}

void correct(const CorrectOptions& options, const Context& context) {
    for (const std::string& correction : options.corrections) {
        refuse_same_file(options.rewrite.output, correction, "a correction file");
    }
    Edit edit;
    edit.change = [&options](KZB_STORE& store, Remarks&) {
        for (const std::string& correction : options.corrections) {
            take_in(store, correction, "a correction file", kzb_read_correction_file);
            require_usable(store, correction);
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
    const auto options = std::make_shared<CorrectOptions>();
    add_rewrite_options(*correct_app, options->rewrite);
    correct_app->add_option("corrections", options->corrections, "Correction files, taken in this order")
        ->required()
        ->type_name("CORRECTION");
    correct_app->callback(
        [options, &context] { context.action = [options, &context] { correct(*options, context); }; });
}

}  // namespace kzb::tool
