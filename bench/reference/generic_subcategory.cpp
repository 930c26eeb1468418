#include "bench/reference/generic_subcategory.h"

#include <cmath>
#include <cstring>
#include <set>

namespace kzb_reference {

namespace {

int unplaced = 0;

std::vector<std::string> split(const std::string& text) {
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (c == ';' || c == ',' || c == ':') {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

}  // namespace

std::string subcategory_name(const std::string& path, const Indices& indices) {
    std::string name;
    const std::vector<std::string> pieces = split(path);
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        name += pieces[i] + ";" + std::to_string(indices[i]) + ";";
    }
    return name;
}

int kzb_get_subcategory_num(const std::string& path, const Indices& indices, const Store& store) {
    const std::vector<std::string> pieces = split(path);
    std::string head;
    for (std::size_t i = 0; i + 1 < pieces.size(); ++i) {
        head += pieces[i] + ";" + std::to_string(indices[i]) + ";";
    }
    head += pieces.back() + ";";
    std::set<std::string> found;
    for (int i = 0; i < store.category_count; ++i) {
        std::string name = store.categories[i].name;
        const std::size_t at = name.find(head);
        if (at != std::string::npos) {
            name.erase(at, head.size());
            found.insert(split(name).front());
        }
    }
    return static_cast<int>(found.size());
}

int kzb_has_subcategory(const std::string& path, const Indices& indices, const Store& store) {
    return kzb_has_category(subcategory_name(path, indices).c_str(), store);
}

int kzb_has_subcategory_parameter(const std::string& path, const Indices& indices, const char* key,
                                  const Store& store) {
    return kzb_has_parameter(subcategory_name(path, indices).c_str(), key, store);
}

int kzb_get_subcategory_int(const std::string& path, const Indices& indices, const char* key, const Store& store) {
    return kzb_get_int(subcategory_name(path, indices).c_str(), key, store);
}

double kzb_get_subcategory_double(const std::string& path, const Indices& indices, const char* key,
                                  const Store& store) {
    return kzb_get_double(subcategory_name(path, indices).c_str(), key, store);
}

std::string kzb_get_subcategory_string(const std::string& path, const Indices& indices, const char* key,
                                       const Store& store) {
    return kzb_get_string(subcategory_name(path, indices).c_str(), key, store);
}

std::string kzb_get_string(const char* category, const char* key, const Store& store) {
    for (int i = 0; i < store.category_count; ++i) {
        const Category& candidate = store.categories[i];
        if (std::strcmp(candidate.name, category) != 0) {
            continue;
        }
        for (int s = 0; s < candidate.string_count; ++s) {
            if (std::strcmp(candidate.strings[s].keyword, key) == 0) {
                return candidate.strings[s].value;
            }
        }
        return {};
    }
    return {};
}

int kzb_get_table_cyclic_flag(const char* category, const char* key, int axis, const Store& store) {
    for (int i = 0; i < store.category_count; ++i) {
        Category& candidate = store.categories[i];
        if (std::strcmp(candidate.name, category) == 0) {
            const Table* const table = find_table(candidate, key);
            return table == nullptr || axis < 1 || axis > table->dim ? 2147483647 : table->cyclic[axis - 1];
        }
    }
    return 2147483647;
}

int unplaced_lookups() {
    return unplaced;
}

void count_unplaced(const std::vector<double>& values) {
    for (const double x : values) {
        if (!(std::fabs(x) < 1e12)) {
            ++unplaced;
            return;
        }
    }
}

double kzb_get_subcategory_table_interpolated_value(const std::string& path, const Indices& indices, const char* key,
                                                    const std::vector<double>& values, const std::string& method,
                                                    Store& store) {
    const std::string category = subcategory_name(path, indices);
    double result = no_value;
    int code = -1;
    const int dim = kzb_get_table_dim(category.c_str(), key, store);
    std::vector<double> x(values);
    if (dim > 0 && x.size() < static_cast<std::size_t>(dim)) {
        x.resize(static_cast<std::size_t>(dim), 0.0);
    }
    count_unplaced(x);
    for (int i = 0; i < store.category_count; ++i) {
        Category& candidate = store.categories[i];
        if (std::strcmp(candidate.name, category.c_str()) != 0) {
            continue;
        }
        if (method == "Linear") {
            code = table_lookup_linear<Bare>(candidate, key, x.data(), result, store.timing);
        } else if (method == "Spline") {
            code = table_lookup_spline<Bare>(candidate, key, x.data(), result, store.timing);
        } else if (method == "Cubic") {
            code = table_lookup_cubic<Bare>(candidate, key, x.data(), result, store.timing);
        } else if (method == "Spline6") {
            code = table_lookup_spline6<Bare>(candidate, key, x.data(), result, store.timing);
        } else if (method == "Spline4") {
            code = table_lookup_spline4<Bare>(candidate, key, x.data(), result, store.timing);
        }
    }
    if (code > 0) {
        store.error = code;
    }
    return result;
}

}  // namespace kzb_reference
