// The plain reference of the store: contiguous arrays of records, every name found by a linear scan with strcmp.
#pragma once

#include "bench/reference/table.h"

namespace kzb_reference {

struct IntParameter {
    char keyword[256];
    std::int32_t value;
};
struct DoubleParameter {
    char keyword[256];
    double value;
};
struct StringParameter {
    char keyword[256];
    char* value;
};

struct Category {
    char name[256];
    std::int32_t int_count;
    std::int32_t double_count;
    std::int32_t string_count;
    std::int32_t table_count;
    IntParameter* ints;
    DoubleParameter* doubles;
    StringParameter* strings;
    Table* tables;
};

struct Store {
    Store() = default;
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;
    ~Store();

    std::int32_t category_count = 0;
    Category* categories = nullptr;
    char motor[256] = {};
    char application[256] = {};
    std::int32_t error = 0;
    double timing[20] = {};
};

// Queries: 0, 0.0, null where absent.
int kzb_has_category(const char* category, const Store& store);
int kzb_has_parameter(const char* category, const char* key, const Store& store);
int kzb_get_int(const char* category, const char* key, const Store& store);
double kzb_get_double(const char* category, const char* key, const Store& store);
int kzb_get_table_dim(const char* category, const char* key, const Store& store);
int kzb_get_table_num_rows(const char* category, const char* key, int axis, const Store& store);
// no_value and error 90010 for a key, axis or index that is not there; 0.0 for an absent category.
double kzb_get_table_axis_value(const char* category, const char* key, int axis, int index, Store& store);
int kzb_has_application(const char* motor, const char* application, const Store& store);

// Filling.
Category& kzb_require_category(const char* category, Store& store);
void kzb_put_int(const char* category, const char* key, int value, Store& store);
void kzb_put_double(const char* category, const char* key, double value, Store& store);
void kzb_put_string(const char* category, const char* key, const char* value, Store& store);
Table& kzb_create_table(const char* category, const char* key, int dim, const int* sizes, Store& store);
Table* find_table(Category& category, const char* key);
Table* find_table(const char* category, const char* key, Store& store);

// Writes the binary form of the model file; false when the file cannot be written.
bool write_model_file(const char* path, const Store& store);

}  // namespace kzb_reference
