// A second reader of correction files, written from the description of the files alone with the calls of the C
// library: lines into buffers, fields cut out with strtok. Slow and plain; it reads no faster than it reads well.
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include "store/measured/literal_store.h"

namespace kzb_test::literal {

inline const char* const corrupt_text = "The correction file is corrupt.";

// One segment of a linear interpolation: nodes within 1e-10 are met exactly, outside the nearer end counts.
inline double segment(Store& store, double x0, double x1, double y0, double y1, double q) {
    store.linear_calls += 1;
    const double none = 1.7976931348623157e308;
    const double dx = x1 - x0;
    if (dx < 1e-10) {
        return std::fabs(y1 - y0) < 1e-10 ? y0 : none;
    }
    if (std::fabs(x0 - q) < 1e-10) {
        return y0;
    }
    if (std::fabs(x1 - q) < 1e-10) {
        return y1;
    }
    if (q > x0 - 1e-10 && x1 + 1e-10 > q) {
        return y0 + ((q - x0) / dx) * (y1 - y0);
    }
    return x0 > q ? y0 : q > x1 ? y1 : none;
}

// The cell of `q` on an axis; `code` is overwritten where q lies outside.
inline std::pair<int, int> cell(const std::vector<double>& nodes, double q, int& code) {
    const int rows = static_cast<int>(nodes.size());
    if (rows == 1) {
        return {0, 0};
    }
    if (q < nodes[0] - 1e-10) {
        code = 80001;
        return {0, 1};
    }
    if (q > nodes.back() + 1e-10) {
        code = 80002;
        return {rows - 2, rows - 1};
    }
    for (int i = 0; i <= rows - 2; ++i) {
        const auto at = static_cast<std::size_t>(i);
        if (q > nodes[at] - 1e-10 && nodes[at + 1] + 1e-10 > q) {
            return {i, i + 1};
        }
    }
    return {-1, -1};
}

inline double wrapped(Store& store, const std::vector<double>& nodes, double q) {
    if (nodes.size() == 1) {
        return nodes[0];
    }
    const double low = nodes[0];
    const double high = nodes.back();
    const double period = high - low;
    for (int pass = 0; pass < 10000; ++pass) {
        if (low - 1e-10 > q) {
            q += period;
        } else if (q > high + 1e-10) {
            q -= period;
        } else {
            return q;
        }
    }
    store.unsettled = true;
    return q;
}

// The linear lookup of a whole table of two axes.
inline int look_up(Store& store, const Table& table, double first, double second, double& result) {
    double q[2] = {first, second};
    for (const auto& nodes : table.axes) {
        if (nodes.empty() || !std::is_sorted(nodes.begin(), nodes.end(), std::less_equal<>()) ||
            !std::isfinite(nodes.front()) || !std::isfinite(nodes.back())) {
            store.unsettled = true;
        }
    }
    if (store.unsettled || table.axes.size() != 2 || !std::isfinite(first) || !std::isfinite(second)) {
        store.unsettled = true;
        return 0;
    }
    for (std::size_t a = 0; a < 2; ++a) {
        if (table.cyclic[a] >= 1) {
            q[a] = wrapped(store, table.axes[a], q[a]);
        }
    }
    int code = 0;
    const auto r = cell(table.axes[0], q[0], code);
    const auto c = cell(table.axes[1], q[1], code);
    const auto corner = [&](int i, int j) {
        const long at = table.position({i, j});
        if (at < 0) {
            store.told.emplace_back("index is invalid");
            return 1.7976931348623157e308;
        }
        return table.values[static_cast<std::size_t>(at)];
    };
    const double v00 = corner(r.first, c.first);
    const double v01 = corner(r.first, c.second);
    const double v10 = corner(r.second, c.first);
    const double v11 = corner(r.second, c.second);
    const auto node = [&](std::size_t a, int i) { return table.axes[a][static_cast<std::size_t>(i)]; };
    const double left = segment(store, node(0, r.first), node(0, r.second), v00, v10, q[0]);
    const double right = segment(store, node(0, r.first), node(0, r.second), v01, v11, q[0]);
    result = segment(store, node(1, c.first), node(1, c.second), left, right, q[1]);
    return code;
}

inline void drop_last_comma(char* line) {
    const std::size_t length = std::strlen(line);
    if (length >= 2 && line[length - 2] == ',' && line[length - 1] == '\n') {
        line[length - 2] = '\0';
    }
}

inline std::string trimmed(const char* token) {
    std::string text = token;
    const char* const blanks = " \t\n\v\f\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// Scans to the end for the longest line, its line feed counted, and comes back. A byte 0xff ends the scan.
inline std::size_t longest_line(FILE* file) {
    const long start = ftell(file);
    std::size_t longest = 0;
    std::size_t length = 0;
    for (;;) {
        const int c = fgetc(file);
        if (c == EOF || c == 0xff) {
            break;
        }
        ++length;
        longest = std::max(longest, length);
        if (c == '\n') {
            length = 0;
        }
    }
    fseek(file, start, SEEK_SET);
    return longest;
}

// False: nothing came of it, as rows or columns are missing altogether.
inline bool read_block(Store& store, FILE* file, const char* head_line, const std::string& key) {
    char head[128];
    std::strcpy(head, head_line);
    std::strtok(head, ",");
    const char* rows_text = std::strtok(nullptr, ",");
    const char* columns_text = rows_text == nullptr ? nullptr : std::strtok(nullptr, ",");
    if (columns_text == nullptr) {
        store.error = 90019;  // a size that is missing counts as a number that is missing
        return false;
    }
    std::vector<char> buffer(std::max<std::size_t>(longest_line(file) + 1, 100));
    const auto line = [&]() -> char* {
        if (fgets(buffer.data(), static_cast<int>(buffer.size()), file) == nullptr) {
            buffer[0] = '\0';
        } else {
            // A last line that just fills the buffer meets the end of the file, unless it has its line feed.
            std::fseek(file, -1, SEEK_CUR);
            if (std::fgetc(file) != '\n') {
                std::ungetc(std::fgetc(file), file);
            }
        }
        drop_last_comma(buffer.data());
        return buffer.data();
    };
    const int rows = std::atoi(rows_text);
    const int columns = std::atoi(columns_text);
    if (!store.create("correction", key, {rows, columns})) {
        return false;
    }
    Table& table = *store.table("correction", key);
    std::vector<double> axis_1;
    std::vector<double> axis_2;
    const auto missing = [&](const char* token) {
        if (token == nullptr) {
            store.error = 90019;
        }
        return token == nullptr;
    };
    const char* token = std::strtok(line(), ",");
    for (int j = 0; j < columns; ++j) {
        token = token == nullptr ? nullptr : std::strtok(nullptr, ",");
        if (missing(token)) {
            return true;
        }
        axis_2.push_back(std::atof(token));
    }
    for (int i = 0; i < rows; ++i) {
        token = std::strtok(line(), ",");
        if (missing(token)) {
            return true;
        }
        axis_1.push_back(std::atof(token));
        for (int j = 0; j < columns; ++j) {
            token = std::strtok(nullptr, ",");
            if (missing(token)) {
                return true;
            }
            store.set_value(table, {i, j}, std::atof(token));
        }
    }
    table.axes = {axis_1, axis_2};
    return true;
}

inline void merge_block(Store& store, FILE* file, const char* head_line, const std::string& key) {
    const std::string dummy = key + "_dummy";
    const bool made_whole = read_block(store, file, head_line, dummy);
    if (store.error == 90019) {
        store.told.emplace_back(corrupt_text);
        return;
    }
    if (!made_whole) {
        return;  // no rows or no columns: the table in the store stays
    }
    std::swap(store.table("correction", key)->key, store.table("correction", dummy)->key);
    Table& made = *store.table("correction", key);
    const Table& earlier = *store.table("correction", dummy);
    for (int i = 0; i < made.sizes[0]; ++i) {
        for (int j = 0; j < made.sizes[1]; ++j) {
            double factor = 1.7976931348623157e308;
            const int code = look_up(store, earlier, made.axes[0][static_cast<std::size_t>(i)],
                                     made.axes[1][static_cast<std::size_t>(j)], factor);
            if (code == 80001 || code == 80002) {
                factor = 1.0;
            }
            made.values[static_cast<std::size_t>(made.position({i, j}))] *= factor;
        }
    }
    auto& tables = store.category("correction")->tables;
    for (auto at = tables.begin(); at != tables.end(); ++at) {
        if (at->key == dummy) {
            tables.erase(at);
            break;
        }
    }
}

inline int read_correction_file(Store& store, const char* path) {
    struct Item {
        const char* head;
        const char* key;
        int* flag;
        bool cyclic;
        const char* counter;
    };
    store.error = 0;
    FILE* file = std::fopen(path, "r");
    if (file == nullptr) {
        store.error = 90015;
        return 1;
    }
    int started = 0;
    int pmsm = 0;
    int new_inductance = 0;
    int new_magflux = 0;
    int new_totalflux = 0;
    int old_item = 0;
    const Item items[] = {
        {"$KZ_Correction_Inductance", "inductance", &new_inductance, true, nullptr},
        {"$KZ_Correction_Torque", "torque", nullptr, true, "torque_correction_counter"},
        {"$KZ_Correction_MagFlux", "mag-flux", &new_magflux, true, nullptr},
        {"$KZ_Correction_TotalFluxLinkage", "total-flux", &new_totalflux, true, "totalflux_correction_counter"},
        {"$KZ_Correction_Ironloss", "ironloss", nullptr, false, "ironloss_correction_counter"},
    };
    const auto fail = [&](int code) {
        if (code != 0) {
            store.error = code;
        }
        std::fclose(file);
        return 1;
    };
    for (;;) {
        char line[128];
        if (std::fgets(line, 128, file) != nullptr) {
            drop_last_comma(line);
            if (line[0] == '$') {
                char saved[128];
                std::strcpy(saved, line);
                const std::string head = trimmed(std::strtok(line, ","));
                bool known = false;
                if (head == "$KZ_Correction_End") {
                    break;
                }
                if (head == "$KZ_Correction_Start") {
                    started = 1;
                    known = true;
                }
                if (head == "$KZ_Correction_Version") {
                    known = true;
                }
                if (head == "$KZ_Correction_MotorType") {
                    known = true;
                    const char* type = std::strtok(nullptr, ",");
                    if (type != nullptr && trimmed(type).substr(0, 4) == "PMSM") {
                        pmsm = 1;
                    }
                }
                for (const Item& item : items) {
                    if (head != item.head) {
                        continue;
                    }
                    known = true;
                    if (store.dim("correction", item.key) < 1) {
                        if (item.flag != nullptr) {
                            *item.flag = 1;
                        }
                        read_block(store, file, saved, item.key);
                    } else {
                        merge_block(store, file, saved, item.key);
                    }
                    if (item.cyclic && store.table("correction", item.key) != nullptr) {
                        store.table("correction", item.key)->cyclic[1] = 1;
                    }
                    if (item.counter != nullptr) {
                        store.put_int("information", item.counter, store.get_int("information", item.counter) + 1);
                    }
                }
                for (const char* phase : {"u", "v", "w"}) {
                    std::string word = "$KZ_Correction_LeakageInductance_";
                    word += static_cast<char>(phase[0] - 'a' + 'A');
                    if (head == word) {
                        known = true;
                        const char* value = std::strtok(nullptr, ",");
                        if (value == nullptr) {
                            store.error = 90019;
                        } else {
                            store.put_double("parameter", std::string("leakage_inductance_") + phase, std::atof(value));
                        }
                    }
                }
                if (!known && old_item == 0) {
                    old_item = 1;
                    store.error = head == "$KZ_Correction_BackEMF" ? 90011
                                  : head == "$KZ_Correction_Flux"  ? 90012
                                  : head == "$KZ_Correction_LdLq"  ? 90013
                                                                   : 90014;
                }
            }
        }
        if (std::feof(file) != 0) {
            return fail(90016);
        }
        if (store.error == 90019) {
            store.told.emplace_back(corrupt_text);
            return fail(0);
        }
    }
    if (started == 0) {
        return fail(90017);
    }
    if (pmsm == 0) {
        return fail(90018);
    }
    if (new_totalflux != 0 && (new_inductance != 0 || new_magflux != 0)) {
        return fail(90020);
    }
    if (new_totalflux != 0 &&
        (store.dim("correction", "inductance") >= 1 || store.dim("correction", "mag-flux") >= 1)) {
        return fail(90021);
    }
    if (store.dim("correction", "total-flux") >= 1 && (new_inductance != 0 || new_magflux != 0)) {
        return fail(90022);
    }
    std::fclose(file);
    return old_item;
}

}  // namespace kzb_test::literal
