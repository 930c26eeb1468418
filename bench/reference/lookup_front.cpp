#include <cstring>

#include "bench/reference/lookup.h"

namespace kzb_reference {

namespace {

// Copy of the caller's coordinates; on the heap only for tables of more axes than any file holds.
class LocalValues {
  public:
    LocalValues(const double* values, int count)
        : data_(count <= capacity
                    ? near_
                    : static_cast<double*>(std::malloc(static_cast<std::size_t>(count) * sizeof(double)))) {
        for (int i = 0; i < count; ++i) {
            data_[i] = values[i];
        }
    }
    ~LocalValues() {
        if (data_ != near_) {
            std::free(data_);
        }
    }
    LocalValues(const LocalValues&) = delete;
    LocalValues& operator=(const LocalValues&) = delete;
    double* data() { return data_; }

  private:
    static constexpr int capacity = 16;
    double near_[capacity];
    double* data_;
};

template <class Probe>
void debug_line(const char* category, const char* key, const char* method, const double* x, int dim, double result) {
    if (std::FILE* file = std::fopen("KZBFileHandlerDebug.txt", "a")) {
        std::fprintf(file, "%s,%s,%s,", category, key, method);
        for (int a = 0; a < dim; ++a) {
            std::fprintf(file, "%20.10e,", x[a]);
        }
        std::fprintf(file, "%20.10e\n", result);
        std::fclose(file);
    }
}

}  // namespace

template <class Probe>
double kzb_get_table_interpolated_value(const char* category, const char* key, const double* values, const char* method,
                                        Store& store) {
    double result = no_value;
    double factor = 1.0;
    int code = -1;
    const double start = Probe::ticks();
    const int dim = kzb_get_table_dim(category, key, store);
    LocalValues local(values, dim);
    double* const x = local.data();
    if (kzb_has_parameter("control", "use_phase_symmetry", store) != 0 &&
        kzb_get_int("control", "use_phase_symmetry", store) != 0) {
        factor = fold_coordinates(category, key, x, store);
    }
    for (int i = 0; i < store.category_count; ++i) {
        Category& candidate = store.categories[i];
        if (std::strcmp(candidate.name, category) != 0) {
            continue;
        }
        if (std::strcmp(method, "Linear") == 0) {
            code = table_lookup_linear<Probe>(candidate, key, x, result, store.timing);
        } else if (std::strcmp(method, "Spline") == 0) {
            code = table_lookup_spline<Probe>(candidate, key, x, result, store.timing);
        } else if (std::strcmp(method, "Cubic") == 0) {
            code = table_lookup_cubic<Probe>(candidate, key, x, result, store.timing);
        } else if (std::strcmp(method, "Spline6") == 0) {
            code = table_lookup_spline6<Probe>(candidate, key, x, result, store.timing);
        } else if (std::strcmp(method, "Spline4") == 0) {
            code = table_lookup_spline4<Probe>(candidate, key, x, result, store.timing);
        }
    }
    if (code > 0) {
        store.error = code;
    }
    store.timing[9] += (Probe::ticks() - start) / 1000.0;
    if (Probe::environment("KZBFILEHANDLER_DEBUG_MODE")) {
        debug_line<Probe>(category, key, method, x, dim, result);
    }
    return result * factor;
}

template double kzb_get_table_interpolated_value<Bare>(const char*, const char*, const double*, const char*, Store&);
template double kzb_get_table_interpolated_value<WithClocks>(const char*, const char*, const double*, const char*,
                                                             Store&);

}  // namespace kzb_reference
