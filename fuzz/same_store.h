// Whether a store that was written and read again is the one it was.
#pragma once

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "store/store.h"

namespace kzb_fuzz {

enum class Form { binary, ascii };

// The ascii form keeps eleven digits: what it writes of the number is what it writes of the number read. The largest
// numbers, among them the one that stands for no value, are rounded beyond what a double holds and read as infinite.
inline bool same_number(double a, double b, Form form) {
    if (form == Form::binary || a != a || b != b) {
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
    }
    constexpr double rounded_beyond = 1.79769313485e308;
    if (std::fabs(a) >= rounded_beyond) {
        return std::isinf(b) && std::signbit(a) == std::signbit(b);
    }
    char text[2][64];
    const double numbers[2] = {a, b};
    for (int k = 0; k < 2; ++k) {
        *std::to_chars(text[k], text[k] + 63, numbers[k], std::chars_format::scientific, 10).ptr = '\0';
    }
    return std::strcmp(text[0], text[1]) == 0;
}

inline bool same_numbers(const double* a, const double* b, int count, Form form) {
    if (a == nullptr || b == nullptr) {
        return a == b;
    }
    for (int i = 0; i < count; ++i) {
        if (!same_number(a[i], b[i], form)) {
            return false;
        }
    }
    return true;
}

inline bool same_table(const KZB_TABLE& a, const KZB_TABLE& b, Form form) {
    if (a.keyword != b.keyword || a.dim != b.dim || a.sizes != b.sizes || a.cyclic != b.cyclic ||
        a.strides != b.strides || a.total != b.total ||
        !same_numbers(a.values.data(), b.values.data(), a.total, form)) {
        return false;
    }
    for (std::size_t axis = 0; axis < a.axes.size(); ++axis) {
        if (!same_numbers(a.axes[axis].data(), b.axes[axis].data(), a.sizes[axis], form)) {
            return false;
        }
    }
    return true;
}

// Tells the first entry that differs.
template <class List, class Same>
bool same_list(const List& a, const List& b, Same&& same) {
    for (std::size_t i = 0; i < a.size() || i < b.size(); ++i) {
        if (i >= a.size() || i >= b.size() || a[i].keyword != b[i].keyword || !same(a[i], b[i])) {
            const char* const name = i < a.size() ? a[i].keyword.c_str() : b[i].keyword.c_str();
            std::fprintf(stderr, "entry %zu, \"%s\", differs; %zu written, %zu read\n", i, name, a.size(), b.size());
            return false;
        }
    }
    return true;
}

inline bool same_category(const KZB_CATEGORY& a, const KZB_CATEGORY& b, Form form) {
    const auto same_value = [](const auto& x, const auto& y) { return x.value == y.value; };
    return a.name == b.name && same_list(a.ints, b.ints, same_value) && same_list(a.strings, b.strings, same_value) &&
           same_list(a.doubles, b.doubles,
                     [form](const auto& x, const auto& y) { return same_number(x.value, y.value, form); }) &&
           same_list(a.tables, b.tables,
                     [form](const KZB_TABLE& x, const KZB_TABLE& y) { return same_table(x, y, form); });
}

inline bool same_store(const KZB_STORE& a, const KZB_STORE& b, Form form) {
    for (std::size_t i = 0; i < a.categories.size() && i < b.categories.size(); ++i) {
        if (!same_category(a.categories[i], b.categories[i], form)) {
            std::fprintf(stderr, "in category \"%s\"\n", a.categories[i].name.c_str());
            return false;
        }
    }
    return a.categories.size() == b.categories.size();
}

// What no file keeps: texts that are not ASCII are converted as they are read, marks of the form within names and texts
// end them, an entry without a name ends its category, and a table without nodes on an axis misleads the reader of the
// binary form.
inline bool keeps_text(const std::string& text, const char* marks) {
    return text.find_first_of(marks) == std::string::npos &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return c >= ' ' && c < 0x7f; });
}

inline bool keeps_name(const std::string& name, const char* marks) {
    return !name.empty() && name.size() < 255 && keeps_text(name, marks);
}

inline bool keeps_table(const KZB_TABLE& table) {
    return table.dim >= 1 && table.values &&
           std::all_of(table.axes.begin(), table.axes.end(), [](const auto& axis) { return axis.data() != nullptr; });
}

inline bool keeps_category(const KZB_CATEGORY& category, Form form) {
    const char* const marks = form == Form::ascii ? ",*\"" : "";
    const auto kept_name = [marks](const auto& entry) { return keeps_name(entry.keyword, marks); };
    return keeps_name(category.name, marks) && std::all_of(category.ints.begin(), category.ints.end(), kept_name) &&
           std::all_of(category.doubles.begin(), category.doubles.end(), kept_name) &&
           std::all_of(category.strings.begin(), category.strings.end(),
                       [&](const auto& entry) { return kept_name(entry) && keeps_text(entry.value, "\""); }) &&
           std::all_of(category.tables.begin(), category.tables.end(),
                       [&](const KZB_TABLE& table) { return kept_name(table) && keeps_table(table); });
}

inline bool keeps_store(const KZB_STORE& store, Form form) {
    return std::all_of(store.categories.begin(), store.categories.end(),
                       [form](const KZB_CATEGORY& category) { return keeps_category(category, form); });
}

}  // namespace kzb_fuzz
