// A KZB file written anew, as it is or after an edit: the one way by which subcommands change models.
//
// The copy is read back and compared before it takes its place, so what the report tells is what a reader will find.
// The output appears whole or not at all; it may be the input.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kzb/json.h"
#include "kzb/store_changes.h"
#include "kzb/store_comparison.h"
#include "store/store.h"

namespace CLI {
class App;
}

namespace kzb::tool {

struct RewriteOptions {
    std::string input;
    std::string output;
    std::string form;   // "ascii", "binary", or empty for that of the input
    bool json = false;  // how the outcome is told
};

struct RewriteReport {
    RewriteOptions options;  // with the form that was written
    std::string input_form;
    std::size_t categories = 0;
    StoreComparison difference;                     // what the way through the file changed
    std::vector<std::string> strings_with_quotes;   // "category/key"
    std::vector<std::string> strings_in_shift_jis;  // written as Shift_JIS, though a reader expects UTF-8
    StoreChanges changes;                           // what the edit did
};

// Warnings of an edit, told once its output stands in place.
using Remarks = std::vector<std::string>;

// What an edit does to the store, and what it says of the outcome: `review` sees the changed store before anything is
// written. Both throw Failure to end the command.
struct Edit {
    std::function<void(KZB_STORE&, Remarks&)> change;
    std::function<void(const KZB_STORE&, const StoreChanges&, Remarks&)> review = {};
};

// Reads, edits, writes, reads back, compares, puts in place, and warns of what the form lost. Without an edit the copy
// is plain, and its report has no changes. Failure(exit_file) for an input that cannot be read whole,
// Failure(exit_run_failed) when the form cannot hold what the edit put in.
RewriteReport rewrite_model(const RewriteOptions& options, const Edit* edit = nullptr);

// What every such report tells.
Json json_of(const RewriteReport& report);
// The outcome of an edit: as JSON that and its changes, else "FILE: binary form, 1 added, 2 changed, 0 removed" and a
// line per name.
std::string outcome_text(const RewriteReport& report);

// The argument MODEL and the options --out, --form and --json of a subcommand that edits.
void add_rewrite_options(CLI::App& app, RewriteOptions& options);

}  // namespace kzb::tool
