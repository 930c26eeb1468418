// The store's front of a table lookup: phase folding, scheme, error code, statistics, debug line.
//
//   value = scheme(table, folded coordinates) * factor of the fold
//
// A model keeps one TableRef per table it looks up: the names are resolved once and again only when the store's
// `revision` has changed. The exported calls resolve through the store's LookupCache and run the same code.
#pragma once

#include <string>
#include <utility>

#include "store/resolved_table.h"
#include "store/store.h"

namespace kzb {

// How the interpolation is named to the store: the text for debug lines, the scheme for the lookup.
struct Method {
    std::string text = "Linear";
    Scheme scheme = Scheme::linear;
    static Method named(std::string text) {
        const Scheme scheme = scheme_of(text.c_str());
        return {std::move(text), scheme};
    }
};

// The names of one lookup, for the debug line.
struct LookupNames {
    const char* category;
    const char* key;
    const char* method;
};

// One lookup at values[0..count-1]; axes beyond `count` see 0.0. KZB_NO_VALUE (times the fold's factor) where no value
// was formed; a status above 0 becomes the store's error.
double look_up(KZB_STORE& store, const ResolvedTable& resolved, Scheme scheme, const LookupNames& names,
               const double* values, int count);

// The lookup of subcategories: no fold, no debug line.
double look_up_plain(KZB_STORE& store, bool category_exists, const KZB_TABLE* table, Scheme scheme,
                     const double* values, int count);

// Takes note of a lookup in `table` that ended with a status above 0, `code`.
void keep_status(KZB_STORE& store, const KZB_TABLE* table, int code, const double* coordinates, int count);

class TableRef {
  public:
    TableRef() = default;
    TableRef(std::string category, std::string key) : category_(std::move(category)), key_(std::move(key)) {}
    // Points the reference at another table.
    void set(std::string category, std::string key);

    const std::string& category() const { return category_; }
    const std::string& key() const { return key_; }
    // A parameter of any kind has this key.
    bool exists(const KZB_STORE& store) { return current(store).key_exists; }
    // Number of axes, 0 for an absent table.
    int dim(const KZB_STORE& store);
    // The table, null when absent.
    const KZB_TABLE* table(const KZB_STORE& store) { return current(store).table; }

    // The coordinates of its lookups are folded.
    bool folds(const KZB_STORE& store) { return current(store).fold.active; }

    // What kzb_get_table_interpolated_value gives at values[0..count-1]; axes beyond `count` see 0.0.
    double at(KZB_STORE& store, const Method& method, const double* values, int count);
    // Lookups at values[0..leading-1] and the numbers of `range` as last coordinate; axes beyond see 0.0.
    void components(KZB_STORE& store, const Method& method, const double* values, int leading,
                    const ComponentRange& range, double* results);

    // The same as the lookup of subcategories gives them.
    double plain_at(KZB_STORE& store, const Method& method, const double* values, int count);
    void plain_components(KZB_STORE& store, const Method& method, const double* values, int leading,
                          const ComponentRange& range, double* results);

  private:
    // All components in one search, where the table has them as its last axis and no single lookup has to be told
    // apart.
    bool components_together(KZB_STORE& store, const Method& method, const double* values, int leading,
                             const ComponentRange& range, double* results);
    const ResolvedTable& current(const KZB_STORE& store) {
        if (resolved_.revision != store.revision) {
            resolved_ = resolve_table(store, category_, key_);
        }
        return resolved_;
    }

    std::string category_;
    std::string key_;
    ResolvedTable resolved_;
};

}  // namespace kzb
