#include "store/lookup_front.h"

#include <algorithm>
#include <array>
#include <boost/container/small_vector.hpp>
#include <cstdio>
#include <memory>
#include <vector>

#include "diagnostics/number_text.h"
#include "diagnostics/own_file.h"
#include "store/lookup_watch.h"
#include "table/stopwatch.h"

namespace kzb {

void keep_status(KZB_STORE& store, const KZB_TABLE* table, int code, const double* coordinates, int count) {
    store.error = code;
    if (store.watch != nullptr && table != nullptr) {
        store.watch->left_table(*table, coordinates, count);
    }
}

namespace {

// A lookup's own copy of the coordinates; on the stack for tables of common dimension.
class Coordinates {
  public:
    Coordinates(const KZB_TABLE* table, const double* values, int count)
        : dim_(table == nullptr ? 0 : std::max(table->dim, 0)) {
        if (dim_ > static_cast<int>(small_.size())) {
            large_.resize(static_cast<std::size_t>(dim_));
            data_ = large_.data();
        }
        for (int i = 0; i < dim_; ++i) {
            data_[i] = i < count ? values[i] : 0.0;
        }
    }
    Coordinates(const Coordinates&) = delete;
    Coordinates& operator=(const Coordinates&) = delete;

    double* data() { return data_; }
    int dim() const { return dim_; }

  private:
    int dim_;
    std::array<double, 8> small_;
    std::vector<double> large_;
    double* data_ = small_.data();
};

double scheme_value(KZB_STORE& store, bool category_exists, const KZB_TABLE* table, Scheme scheme,
                    const double* coordinates) {
    double result = KZB_NO_VALUE;
    if (category_exists) {
        const int code = table_lookup(scheme, table, coordinates, result, store.timing, store.switches);
        if (code > 0) {
            keep_status(store, table, code, coordinates, table == nullptr ? 0 : table->dim);
        }
    }
    return result;
}

// Appends "category,key,method,", the folded coordinates and the result before the factor; silent on failure.
void append_debug_line(const LookupNames& names, const double* coordinates, int dim, double result) {
    std::string line = std::string(names.category) + ',' + names.key + ',' + names.method + ',';
    for (int i = 0; i < dim; ++i) {
        append_scientific(line, coordinates[i], 20, 10);
        line += ',';
    }
    append_scientific(line, result, 20, 10);
    line += '\n';
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(open_own_file("KZBFileHandlerDebug.txt", "a"),
                                                               std::fclose);
    if (file) {
        std::fputs(line.c_str(), file.get());
    }
}

}  // namespace

void read_lookup_switches(KZB_STORE& store) {
    store.environment.refresh();
    // Nothing is written while the environment stays as it is: a call that turns out not to look up leaves no trace.
    if (store.switches.generic_path != store.environment.generic_path()) {
        store.switches.generic_path = store.environment.generic_path();
    }
    if (store.debug_lines != store.environment.debug_lines()) {
        store.debug_lines = store.environment.debug_lines();
    }
}

double look_up(KZB_STORE& store, const ResolvedTable& resolved, Scheme scheme, const LookupNames& names,
               const double* values, int count) {
    const KZB_TABLE* table = resolved.table;
    if (table != nullptr && table->dim <= count && !resolved.fold.active && !store.debug_lines && !store.keep_time) {
        // Nothing changes the coordinates: no copy is needed.
        return scheme_value(store, true, table, scheme, values);
    }
    const ProcessWatch watch(store.keep_time);
    Coordinates coordinates(table, values, count);
    double factor = 1.0;
    if (resolved.fold.active && table != nullptr) {
        factor = fold_coordinates(resolved.fold, *table, coordinates.data());
    }
    const double result = scheme_value(store, resolved.category_exists, table, scheme, coordinates.data());
    watch.add_to(store.timing[slot_total_elapsed]);
    if (store.debug_lines) {
        append_debug_line(names, coordinates.data(), coordinates.dim(), result);
    }
    return result * factor;
}

double look_up_plain(KZB_STORE& store, bool category_exists, const KZB_TABLE* table, Scheme scheme,
                     const double* values, int count) {
    const ProcessWatch watch(store.keep_time);
    Coordinates coordinates(table, values, count);
    const double result = scheme_value(store, category_exists, table, scheme, coordinates.data());
    watch.add_to(store.timing[slot_total_elapsed]);
    return result;
}

void TableRef::set(std::string category, std::string key) {
    category_ = std::move(category);
    key_ = std::move(key);
    resolved_.revision = 0;
}

int TableRef::dim(const KZB_STORE& store) {
    const KZB_TABLE* found = current(store).table;
    return found == nullptr ? 0 : found->dim;
}

double TableRef::at(KZB_STORE& store, const Method& method, const double* values, int count) {
    const LookupNames names{category_.c_str(), key_.c_str(), method.text.c_str()};
    return look_up(store, current(store), method.scheme, names, values, count);
}

bool TableRef::components_together(KZB_STORE& store, const Method& method, const double* values, int leading,
                                   const ComponentRange& range, double* results) {
    const KZB_TABLE* const table = current(store).table;
    if (table == nullptr || table->dim != leading + 1 || store.keep_time) {
        return false;
    }
    std::fill(results, results + range.count, KZB_NO_VALUE);
    const int code =
        table_lookup_components(method.scheme, table, values, range, results, store.timing, store.switches);
    if (code > 0) {
        keep_status(store, table, code, values, leading);
    }
    return true;
}

void TableRef::components(KZB_STORE& store, const Method& method, const double* values, int leading,
                          const ComponentRange& range, double* results) {
    // A fold moves each component's position differently, a debug line belongs to a single lookup.
    if (!current(store).fold.active && !store.debug_lines &&
        components_together(store, method, values, leading, range, results)) {
        return;
    }
    constexpr int most_leading = 7;
    std::array<double, most_leading + 1> point{};
    leading = std::min(leading, most_leading);
    std::copy(values, values + leading, point.begin());
    for (int k = 0; k < range.count; ++k) {
        point[static_cast<std::size_t>(leading)] = range.at(k);
        results[k] = at(store, method, point.data(), leading + 1);
    }
}

double TableRef::plain_at(KZB_STORE& store, const Method& method, const double* values, int count) {
    const ResolvedTable& resolved = current(store);
    if (resolved.table != nullptr && resolved.table->dim <= count && !store.keep_time) {
        return scheme_value(store, true, resolved.table, method.scheme, values);
    }
    return look_up_plain(store, resolved.category_exists, resolved.table, method.scheme, values, count);
}

void TableRef::plain_components(KZB_STORE& store, const Method& method, const double* values, int leading,
                                const ComponentRange& range, double* results) {
    if (components_together(store, method, values, leading, range, results)) {
        return;
    }
    boost::container::small_vector<double, 8> point(values, values + leading);
    point.push_back(0.0);
    for (int k = 0; k < range.count; ++k) {
        point.back() = range.at(k);
        results[k] = plain_at(store, method, point.data(), leading + 1);
    }
}

}  // namespace kzb
