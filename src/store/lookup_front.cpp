#include "store/lookup_front.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

#include "diagnostics/number_text.h"

extern char** environ;

namespace kzb {

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

// Adds the processor time of its scope to the statistics, where that is kept.
class TotalTime {
  public:
    explicit TotalTime(KZB_STORE& store) : store_(store), start_(store.keep_time ? std::clock() : 0) {}
    TotalTime(const TotalTime&) = delete;
    TotalTime& operator=(const TotalTime&) = delete;
    ~TotalTime() {
        if (store_.keep_time) {
            store_.timing[slot_total_elapsed] += static_cast<double>(std::clock() - start_) / 1000.0;
        }
    }

  private:
    KZB_STORE& store_;
    std::clock_t start_;
};

double scheme_value(KZB_STORE& store, bool category_exists, const KZB_TABLE* table, Scheme scheme,
                    const double* coordinates) {
    double result = KZB_NO_VALUE;
    if (category_exists) {
        const int code = table_lookup(scheme, table, coordinates, result, store.timing, store.switches);
        if (code > 0) {
            store.error = code;
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
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("KZBFileHandlerDebug.txt", "a"), std::fclose);
    if (file) {
        std::fputs(line.c_str(), file.get());
    }
}

bool names_variable(const char* entry, std::string_view name) {
    const std::string_view text(entry);
    return text.size() > name.size() && text[name.size()] == '=' && text.starts_with(name);
}

}  // namespace

void read_lookup_switches(KZB_STORE& store) {
    bool generic = false;
    bool debug = false;
    if (environ != nullptr) {
        // One walk for both names; most entries are passed over by their first two characters.
        for (char** entry = environ; *entry != nullptr; ++entry) {
            const char* text = *entry;
            if (text[0] == 'K' && text[1] == 'Z') {
                debug = debug || names_variable(text, "KZBFILEHANDLER_DEBUG_MODE");
            } else if (text[0] == 'U' && text[1] == 'S') {
                generic = generic || names_variable(text, "USE_GENERIC_INTERPOLATION");
            }
        }
    }
    store.switches.generic_path = generic;
    store.debug_lines = debug;
}

double look_up(KZB_STORE& store, const ResolvedTable& resolved, Scheme scheme, const LookupNames& names,
               const double* values, int count) {
    const TotalTime time(store);
    Coordinates coordinates(resolved.table, values, count);
    double factor = 1.0;
    if (resolved.fold.active && resolved.table != nullptr) {
        factor = fold_coordinates(resolved.fold, *resolved.table, coordinates.data());
    }
    const double result = scheme_value(store, resolved.category_exists, resolved.table, scheme, coordinates.data());
    if (store.debug_lines) {
        append_debug_line(names, coordinates.data(), coordinates.dim(), result);
    }
    return result * factor;
}

double look_up_plain(KZB_STORE& store, const KZB_CATEGORY* category, const char* key, Scheme scheme,
                     const double* values) {
    const TotalTime time(store);
    const KZB_TABLE* table = category == nullptr ? nullptr : category->tables.find(key);
    Coordinates coordinates(table, values, table == nullptr ? 0 : table->dim);
    return scheme_value(store, category != nullptr, table, scheme, coordinates.data());
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

void TableRef::components(KZB_STORE& store, const Method& method, const double* values, int leading, int count,
                          double* results) {
    const ResolvedTable& resolved = current(store);
    // A fold moves each component's position differently, a debug line and the statistics belong to single lookups.
    const bool together = resolved.table != nullptr && resolved.table->dim == leading + 1 && !resolved.fold.active &&
                          !store.debug_lines && !store.keep_time;
    if (together) {
        std::fill(results, results + count, KZB_NO_VALUE);
        const int code = table_lookup_components(method.scheme, resolved.table, values, count, results, store.timing,
                                                 store.switches);
        if (code > 0) {
            store.error = code;
        }
        return;
    }
    constexpr int most_leading = 7;
    std::array<double, most_leading + 1> point{};
    leading = std::min(leading, most_leading);
    std::copy(values, values + leading, point.begin());
    for (int component = 0; component < count; ++component) {
        point[static_cast<std::size_t>(leading)] = component;
        results[component] = at(store, method, point.data(), leading + 1);
    }
}

}  // namespace kzb
