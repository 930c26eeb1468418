#include "kzb/transform_guard.h"

#include <algorithm>
#include <cmath>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/library_call.h"
#include "store/messages.h"
#include "table/lookup.h"

namespace kzb::tool {

namespace {

bool has_grids(const KZB_TABLE& table) {
    return std::all_of(table.axes.begin(), table.axes.end(),
                       [](const ZeroedArray& nodes) { return static_cast<bool>(nodes); });
}

bool all_values(const ZeroedArray& values) {
    return std::all_of(values.data(), values.data() + values.size(),
                       [](double value) { return std::isfinite(value) && value != KZB_NO_VALUE; });
}

}  // namespace

void TransformGuard::refuse(std::string_view why) const {
    throw Failure(exit_run_failed, fmt::format("{}: {}: {}", file_, kind_, why));
}

void TransformGuard::require_application(const KZB_STORE& store, const char* application) const {
    if (!has_application(store, "PMSM", application)) {
        refuse(fmt::format("expected a model that offers PMSM {}; kzb info lists what it offers", application));
    }
}

bool TransformGuard::require_shape(const KZB_STORE& store, const TableShape& shape) const {
    const KZB_TABLE* table = find_table(store, shape.category, shape.key);
    if (table == nullptr) {
        return false;
    }
    const std::string name = fmt::format("table {}/{}", shape.category, shape.key);
    if (table->sizes.size() != shape.least.size()) {
        refuse(fmt::format("{} has {} axes, expected {}", name, table->sizes.size(), shape.least.size()));
    }
    for (std::size_t axis = 0; axis < shape.least.size(); ++axis) {
        if (table->sizes[axis] < shape.least[axis]) {
            refuse(fmt::format("{}: axis {} has {} nodes, expected at least {}", name, axis + 1, table->sizes[axis],
                               shape.least[axis]));
        }
    }
    if (!table->values || !has_grids(*table)) {
        refuse(fmt::format("{} has no values or lacks the nodes of an axis", name));
    }
    return true;
}

void TransformGuard::require_full_phases(const KZB_STORE& store) const {
    if (get_int(store, "control", "use_phase_symmetry") != 0 && has_application(store, "PMSM", "Harmonic")) {
        refuse(
            "the tables hold half of the current phases (control/use_phase_symmetry); use kzb transform expand first");
    }
}

void TransformGuard::run(KZB_STORE& store, int done, const std::function<int(KZB_STORE*)>& call,
                         Remarks& remarks) const {
    const LibraryAnswer answer = ask_library(store, call);
    if (answer.result != done || !answer.said.empty()) {
        refuse(cause_of(answer));
    }
    // lookup_no_table is also left by every "Spline" lookup of two and more axes that stays in range.
    if (answer.error != 0 && answer.error != lookup_no_table) {
        remarks.push_back(fmt::format("{}: {}: a lookup left the range of its table and took the value at the edge: {}",
                                      file_, kind_, error_text(answer.error)));
    }
}

void TransformGuard::require_no_empty_originals(const KZB_STORE& store) const {
    constexpr std::string_view ending = "_org";
    for (const KZB_CATEGORY& category : store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            const std::string_view key = table.keyword;
            if (table.dim < 1 && key.size() > ending.size() && key.substr(key.size() - ending.size()) == ending) {
                refuse(fmt::format("table {}/{} is missing", category.name, key.substr(0, key.size() - ending.size())));
            }
        }
    }
}

void TransformGuard::require_values(const KZB_STORE& store, const StoreChanges& changes) const {
    for (const KZB_CATEGORY& category : store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            const std::string name = category.name + '/' + table.keyword;
            if (changes.touches(name) && !all_values(table.values)) {
                refuse(fmt::format("table {} would hold what is no finite number", name));
            }
        }
    }
}

}  // namespace kzb::tool
