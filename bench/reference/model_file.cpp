// The binary form of the model file: head, one block per category (ints, doubles, strings, tables), end mark.
#include <cstring>
#include <memory>

#include "bench/reference/store.h"

namespace kzb_reference {

namespace {

struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, Close>;

void put_bytes(std::FILE* file, const void* bytes, std::size_t count) {
    std::fwrite(bytes, 1, count, file);
}
void put_int(std::FILE* file, std::int32_t value) {
    put_bytes(file, &value, sizeof value);
}
void put_text(std::FILE* file, const char* text) {
    put_int(file, static_cast<std::int32_t>(std::strlen(text)));
    put_bytes(file, text, std::strlen(text));
}
void put_entry_head(std::FILE* file, const char* keyword, int type) {
    put_text(file, keyword);
    put_int(file, type);
}
void put_end(std::FILE* file) {
    put_bytes(file, ",#", 2);
}
void put_doubles(std::FILE* file, const double* values, std::int32_t count) {
    put_int(file, count);
    put_bytes(file, values, sizeof(double) * static_cast<std::size_t>(count));
}

void put_table(std::FILE* file, const Table& table) {
    put_entry_head(file, table.keyword, 3);
    put_int(file, table.dim);
    put_bytes(file, table.sizes, sizeof(std::int32_t) * static_cast<std::size_t>(table.dim));
    put_bytes(file, table.cyclic, sizeof(std::int32_t) * static_cast<std::size_t>(table.dim));
    put_doubles(file, table.values, table.total);
    for (int a = 0; a < table.dim; ++a) {
        put_doubles(file, table.axes[a], table.axes[a] == nullptr ? 0 : table.sizes[a]);
    }
    put_end(file);
}

void put_category(std::FILE* file, const Category& category) {
    put_bytes(file, "*", 1);
    put_text(file, category.name);
    put_int(file, category.int_count);
    put_int(file, category.double_count);
    put_int(file, category.string_count);
    put_int(file, category.table_count);
    put_end(file);
    for (int i = 0; i < category.int_count; ++i) {
        put_entry_head(file, category.ints[i].keyword, 0);
        put_int(file, category.ints[i].value);
        put_end(file);
    }
    for (int i = 0; i < category.double_count; ++i) {
        put_entry_head(file, category.doubles[i].keyword, 1);
        put_bytes(file, &category.doubles[i].value, sizeof(double));
        put_end(file);
    }
    for (int i = 0; i < category.string_count; ++i) {
        put_entry_head(file, category.strings[i].keyword, 2);
        put_text(file, category.strings[i].value);
        put_end(file);
    }
    for (int i = 0; i < category.table_count; ++i) {
        put_table(file, category.tables[i]);
    }
}

}  // namespace

bool write_model_file(const char* path, const Store& store) {
    const File file(std::fopen(path, "wb"));
    if (!file) {
        return false;
    }
    put_bytes(file.get(), "$DORN-KZb,#\n", 12);
    for (int i = 0; i < store.category_count; ++i) {
        put_category(file.get(), store.categories[i]);
    }
    put_bytes(file.get(), "$end_of_kzb_file,#\n", 19);
    return std::ferror(file.get()) == 0;
}

}  // namespace kzb_reference
