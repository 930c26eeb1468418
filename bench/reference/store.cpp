#include "bench/reference/store.h"

#include <cstdlib>
#include <cstring>

namespace kzb_reference {

namespace {

template <class Record>
Record& append(Record*& list, std::int32_t& count) {
    list = static_cast<Record*>(std::realloc(list, sizeof(Record) * static_cast<std::size_t>(count + 1)));
    std::memset(static_cast<void*>(list + count), 0, sizeof(Record));
    return list[count++];
}

template <class Record>
Record* find(Record* list, std::int32_t count, const char* keyword) {
    for (std::int32_t i = 0; i < count; ++i) {
        if (std::strcmp(list[i].keyword, keyword) == 0) {
            return list + i;
        }
    }
    return nullptr;
}

void set_name(char (&name)[256], const char* text) {
    std::strncpy(name, text, sizeof name - 1);
}

Category* find_category(const char* name, const Store& store) {
    for (std::int32_t i = 0; i < store.category_count; ++i) {
        if (std::strcmp(store.categories[i].name, name) == 0) {
            return store.categories + i;
        }
    }
    return nullptr;
}

Table* find_table_in(const char* category, const char* key, const Store& store) {
    const Category* found = find_category(category, store);
    return found == nullptr ? nullptr : find(found->tables, found->table_count, key);
}

}  // namespace

Store::~Store() {
    for (std::int32_t i = 0; i < category_count; ++i) {
        Category& category = categories[i];
        for (std::int32_t s = 0; s < category.string_count; ++s) {
            std::free(category.strings[s].value);
        }
        for (std::int32_t t = 0; t < category.table_count; ++t) {
            table_free(category.tables[t]);
        }
        std::free(category.ints);
        std::free(category.doubles);
        std::free(category.strings);
        std::free(category.tables);
    }
    std::free(categories);
}

int kzb_has_category(const char* category, const Store& store) {
    return find_category(category, store) != nullptr;
}

int kzb_has_parameter(const char* category, const char* key, const Store& store) {
    const Category* found = find_category(category, store);
    if (found == nullptr) {
        return 0;
    }
    return find(found->ints, found->int_count, key) != nullptr ||
           find(found->doubles, found->double_count, key) != nullptr ||
           find(found->strings, found->string_count, key) != nullptr ||
           find(found->tables, found->table_count, key) != nullptr;
}

int kzb_get_int(const char* category, const char* key, const Store& store) {
    const Category* found = find_category(category, store);
    const IntParameter* parameter = found == nullptr ? nullptr : find(found->ints, found->int_count, key);
    return parameter == nullptr ? 0 : parameter->value;
}

double kzb_get_double(const char* category, const char* key, const Store& store) {
    const Category* found = find_category(category, store);
    const DoubleParameter* parameter = found == nullptr ? nullptr : find(found->doubles, found->double_count, key);
    return parameter == nullptr ? 0.0 : parameter->value;
}

int kzb_get_table_dim(const char* category, const char* key, const Store& store) {
    const Table* table = find_table_in(category, key, store);
    return table == nullptr ? 0 : table->dim;
}

int kzb_get_table_num_rows(const char* category, const char* key, int axis, const Store& store) {
    const Table* table = find_table_in(category, key, store);
    return table == nullptr || axis < 1 || axis > table->dim ? 0 : table->sizes[axis - 1];
}

double kzb_get_table_axis_value(const char* category, const char* key, int axis, int index, Store& store) {
    const Category* found = find_category(category, store);
    if (found == nullptr || axis < 1) {
        return 0.0;
    }
    const Table* table = find(found->tables, found->table_count, key);
    if (table == nullptr || axis > table->dim || index < 0 || index >= table->sizes[axis - 1] ||
        table->axes[axis - 1] == nullptr) {
        store.error = 90010;
        return no_value;
    }
    return table->axes[axis - 1][index];
}

int kzb_has_application(const char* motor, const char* application, const Store& store) {
    if (kzb_has_category("control", store) == 0 || kzb_has_category("parameter", store) == 0) {
        return 0;
    }
    if (std::strcmp(motor, "PMSM") == 0) {
        if (std::strcmp(application, "LdLq") == 0) {
            return kzb_has_category("dq_inductance", store) && kzb_has_category("d_flux", store);
        }
        if (kzb_get_int("control", "motor_type", store) != 10000) {
            return 0;
        }
        if (std::strcmp(application, "SimpleHarmonic") == 0) {
            return kzb_has_category("inductance", store) && kzb_has_category("mag_flux", store) &&
                   kzb_has_category("torque", store);
        }
        if (std::strcmp(application, "Harmonic") == 0) {
            return kzb_has_category("harmonic_inductance", store) && kzb_has_category("current_flux", store) &&
                   (kzb_has_category("harmonic_torque", store) || kzb_has_category("pmsm_torque", store));
        }
        if (std::strcmp(application, "FluxIntegralDQTheta") == 0) {
            return kzb_has_category("current_table", store) && kzb_has_category("flux_table", store) &&
                   kzb_has_category("harmonic_torque", store);
        }
        return 0;
    }
    if (std::strcmp(motor, "LinearSynchronous") == 0) {
        return kzb_has_category("inductance", store) && kzb_has_category("mag_flux", store) &&
               kzb_has_category("distance_force", store);
    }
    return 0;
}

Category& kzb_require_category(const char* category, Store& store) {
    if (Category* found = find_category(category, store)) {
        return *found;
    }
    Category& added = append(store.categories, store.category_count);
    set_name(added.name, category);
    return added;
}

void kzb_put_int(const char* category, const char* key, int value, Store& store) {
    Category& into = kzb_require_category(category, store);
    IntParameter* found = find(into.ints, into.int_count, key);
    IntParameter& parameter = found != nullptr ? *found : append(into.ints, into.int_count);
    set_name(parameter.keyword, key);
    parameter.value = value;
}

void kzb_put_double(const char* category, const char* key, double value, Store& store) {
    Category& into = kzb_require_category(category, store);
    DoubleParameter* found = find(into.doubles, into.double_count, key);
    DoubleParameter& parameter = found != nullptr ? *found : append(into.doubles, into.double_count);
    set_name(parameter.keyword, key);
    parameter.value = value;
}

void kzb_put_string(const char* category, const char* key, const char* value, Store& store) {
    Category& into = kzb_require_category(category, store);
    StringParameter* found = find(into.strings, into.string_count, key);
    StringParameter& parameter = found != nullptr ? *found : append(into.strings, into.string_count);
    set_name(parameter.keyword, key);
    std::free(parameter.value);
    parameter.value = static_cast<char*>(std::malloc(std::strlen(value) + 1));
    std::strcpy(parameter.value, value);
}

Table& kzb_create_table(const char* category, const char* key, int dim, const int* sizes, Store& store) {
    Category& into = kzb_require_category(category, store);
    Table* found = find(into.tables, into.table_count, key);
    if (found != nullptr) {
        table_free(*found);
    }
    Table& table = found != nullptr ? *found : append(into.tables, into.table_count);
    set_name(table.keyword, key);
    table_create(table, dim, sizes);
    return table;
}

Table* find_table(Category& category, const char* key) {
    return find(category.tables, category.table_count, key);
}

Table* find_table(const char* category, const char* key, Store& store) {
    return find_table_in(category, key, store);
}

}  // namespace kzb_reference
