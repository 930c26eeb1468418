// A store as plain as can be: lists of names and values that are searched from the front. The literal readers of the
// tests fill it, the library fills a real one, and `content` writes either out, so that a test compares two texts.
//
// Nothing here is taken from the library but the record that `content` reads.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "store/store.h"

namespace kzb_test::literal {

struct Table {
    std::string key;
    int dim = 0;
    std::vector<int> sizes;
    std::vector<int> cyclic;
    std::vector<double> values;
    std::vector<std::vector<double>> axes;  // empty: never set

    long position(const std::vector<int>& at) const {  // -1: outside
        long flat = 0;
        for (std::size_t a = 0; a < sizes.size(); ++a) {
            if (at[a] < 0 || at[a] >= sizes[a]) {
                return -1;
            }
            flat = flat * sizes[a] + at[a];
        }
        return flat;
    }
};

template <class Value>
using List = std::vector<std::pair<std::string, Value>>;

struct Category {
    std::string name;
    List<int> ints;
    List<double> doubles;
    List<std::string> strings;
    std::vector<Table> tables;
};

struct Store {
    std::vector<Category> categories;
    double version = 0;
    int error = 0;
    double linear_calls = 0;        // segments of the linear lookup
    bool unsettled = false;         // came where nothing says what to do: a grid that does not ascend
    std::vector<std::string> told;  // through the standard error printer

    Category* category(const std::string& name) {
        for (Category& c : categories) {
            if (c.name == name) {
                return &c;
            }
        }
        return nullptr;
    }
    Category& require(const std::string& name) {
        if (category(name) == nullptr) {
            categories.emplace_back().name = name;
        }
        return *category(name);
    }
    template <class Value>
    static void put(List<Value>& list, const std::string& key, const Value& value) {
        for (auto& entry : list) {
            if (entry.first == key) {
                entry.second = value;
                return;
            }
        }
        list.emplace_back(key, value);
    }
    template <class Value>
    static Value get(const List<Value>& list, const std::string& key) {
        for (const auto& entry : list) {
            if (entry.first == key) {
                return entry.second;
            }
        }
        return Value{};
    }
    void put_int(const std::string& c, const std::string& key, int value) { put(require(c).ints, key, value); }
    void put_double(const std::string& c, const std::string& key, double value) { put(require(c).doubles, key, value); }
    void put_string(const std::string& c, const std::string& key, const std::string& value) {
        put(require(c).strings, key, value);
    }
    int get_int(const std::string& c, const std::string& key) {
        return category(c) == nullptr ? 0 : get(category(c)->ints, key);
    }
    std::string get_string(const std::string& c, const std::string& key) {
        return category(c) == nullptr ? std::string{} : get(category(c)->strings, key);
    }
    Table* table(const std::string& c, const std::string& key) {
        if (Category* found = category(c)) {
            for (Table& t : found->tables) {
                if (t.key == key) {
                    return &t;
                }
            }
        }
        return nullptr;
    }
    int dim(const std::string& c, const std::string& key) { return table(c, key) == nullptr ? 0 : table(c, key)->dim; }
    // False for a size below 1: told, and the record stays with the sizes that were looked at.
    bool create(const std::string& c, const std::string& key, const std::vector<int>& sizes) {
        Category& in = require(c);
        if (table(c, key) == nullptr) {
            in.tables.emplace_back().key = key;
        }
        Table& made = *table(c, key);
        made = Table{
            key, static_cast<int>(sizes.size()), std::vector<int>(sizes.size()), std::vector<int>(sizes.size()), {},
            {}};
        std::size_t total = 1;
        for (std::size_t a = 0; a < sizes.size(); ++a) {
            if (sizes[a] < 1) {
                told.emplace_back("The num of row is zero.\n");
                return false;
            }
            made.sizes[a] = sizes[a];
            total *= static_cast<std::size_t>(sizes[a]);
        }
        made.values.resize(total);
        made.axes.resize(sizes.size());
        return true;
    }
    void set_axis(Table& t, int axis, int index, double value) {  // both from 0
        const auto a = static_cast<std::size_t>(axis);
        if (index < 0 || index >= t.sizes[a]) {
            told.emplace_back("invalid axis index");
            return;
        }
        if (t.axes[a].empty()) {
            t.axes[a].resize(static_cast<std::size_t>(t.sizes[a]));
        }
        t.axes[a][static_cast<std::size_t>(index)] = value;
    }
    void set_value(Table& t, const std::vector<int>& at, double value) {
        const long flat = t.position(at);
        if (flat < 0) {
            told.emplace_back("index is invalid\n");
            return;
        }
        t.values[static_cast<std::size_t>(flat)] = value;
    }
};

inline std::string bits(double value) {
    if (std::isnan(value)) {
        return "nan";
    }
    std::uint64_t word = 0;
    std::memcpy(&word, &value, sizeof word);
    std::ostringstream out;
    out << std::hex << word << "(" << value << ")";
    return out.str();
}

// One table as text; `grid(a)` gives the nodes of axis a, empty where never set.
template <class Grid>
void write_table(std::ostream& out, const std::string& key, const std::vector<int>& sizes,
                 const std::vector<int>& cyclic, const std::vector<double>& values, Grid grid) {
    out << "  table " << key << " sizes";
    for (std::size_t a = 0; a < sizes.size(); ++a) {
        out << " " << sizes[a] << "/" << cyclic[a];
    }
    out << "\n    values";
    for (const double value : values) {
        out << " " << bits(value);
    }
    for (std::size_t a = 0; a < sizes.size(); ++a) {
        out << "\n    axis";
        for (const double node : grid(a)) {
            out << " " << bits(node);
        }
    }
    out << "\n";
}

inline std::string content(const Store& store) {
    std::ostringstream out;
    out << "error " << store.error << " version " << bits(store.version) << " segments " << store.linear_calls << "\n";
    for (const Category& c : store.categories) {
        out << c.name << "\n";
        for (const auto& [key, value] : c.ints) {
            out << "  int " << key << " " << value << "\n";
        }
        for (const auto& [key, value] : c.doubles) {
            out << "  double " << key << " " << bits(value) << "\n";
        }
        for (const auto& [key, value] : c.strings) {
            out << "  string " << key << " " << value << "\n";
        }
        for (const Table& t : c.tables) {
            write_table(out, t.key, t.sizes, t.cyclic, t.values,
                        [&](std::size_t a) { return a < t.axes.size() ? t.axes[a] : std::vector<double>{}; });
        }
    }
    return out.str();
}

inline std::vector<double> numbers(const kzb::ZeroedArray& array) {
    return array ? std::vector<double>(array.data(), array.data() + array.size()) : std::vector<double>{};
}

inline std::string content(const KZB_STORE& store) {
    std::ostringstream out;
    out << "error " << store.error << " version " << bits(store.version) << " segments " << store.timing[3] << "\n";
    for (const KZB_CATEGORY& c : store.categories) {
        out << c.name << "\n";
        for (const auto& entry : c.ints) {
            out << "  int " << entry.keyword << " " << entry.value << "\n";
        }
        for (const auto& entry : c.doubles) {
            out << "  double " << entry.keyword << " " << bits(entry.value) << "\n";
        }
        for (const auto& entry : c.strings) {
            out << "  string " << entry.keyword << " " << entry.value << "\n";
        }
        for (const KZB_TABLE& t : c.tables) {
            write_table(out, t.keyword, t.sizes, t.cyclic, numbers(t.values),
                        [&](std::size_t a) { return a < t.axes.size() ? numbers(t.axes[a]) : std::vector<double>{}; });
        }
    }
    return out.str();
}

// The texts in what the standard error printer wrote, each without the ": <system's text>\n" that follows it; what
// does not fit the expected texts stands in the result as it is.
inline std::vector<std::string> told_texts(const std::string& printed, const std::vector<std::string>& expected) {
    std::vector<std::string> texts;
    std::size_t at = 0;
    while (at < printed.size()) {
        std::size_t length = std::string::npos;
        for (const std::string& text : expected) {
            if (printed.compare(at, text.size() + 2, text + ": ") == 0) {
                length = text.size();
            }
        }
        const std::size_t end = printed.find('\n', length == std::string::npos ? at : at + length);
        texts.push_back(printed.substr(at, length == std::string::npos ? end - at : length));
        at = end == std::string::npos ? printed.size() : end + 1;
    }
    return texts;
}

}  // namespace kzb_test::literal
