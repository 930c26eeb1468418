// Checks around a transform of the library, which quietly does nothing, or half of it, where a model does not allow it.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "kzb/model_rewrite.h"
#include "kzb/store_changes.h"
#include "store/store.h"

namespace kzb::tool {

// A table by its name, with the least number of nodes on each of its axes.
struct TableShape {
    const char* category;
    const char* key;
    std::vector<int> least;
};

class TransformGuard {
  public:
    // The transform and the file, as messages name them.
    TransformGuard(std::string kind, std::string file) : kind_(std::move(kind)), file_(std::move(file)) {}

    // Failure(exit_run_failed) that names both.
    [[noreturn]] void refuse(std::string_view why) const;
    void require_application(const KZB_STORE& store, const char* application) const;
    // Whether the table is there; refuses one of other axes, without values or without nodes.
    bool require_shape(const KZB_STORE& store, const TableShape& shape) const;
    // A harmonic model that holds half the current phases makes no full tables of another kind.
    void require_full_phases(const KZB_STORE& store) const;
    // Refuses unless the call's result is `done` and it printed no fault; remarks on lookups that left the tables.
    void run(KZB_STORE& store, int done, const std::function<int(KZB_STORE*)>& call, Remarks& remarks) const;
    // Refuses what the skew left of tables that it missed: empty ones whose keys end in "_org".
    void require_no_empty_originals(const KZB_STORE& store) const;
    // Refuses tables that were made or changed and hold what is no finite number, or no value.
    void require_values(const KZB_STORE& store, const StoreChanges& changes) const;

  private:
    std::string kind_;
    std::string file_;
};

}  // namespace kzb::tool
