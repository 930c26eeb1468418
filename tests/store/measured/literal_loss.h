// A second reader of loss table files, written from the description of the files alone: lines into a buffer, fields
// into lists of texts, every coordinate looked for from the front. Quadratic, for small files.
#pragma once

#include <algorithm>
#include <boost/lexical_cast.hpp>
#include <cstdio>

#include "store/measured/literal_store.h"

namespace kzb_test::literal {

// A catalogue of the subcategories that the readers know by path.
inline std::string flat(const std::vector<std::pair<std::string, int>>& path) {
    std::string name;
    for (const auto& [element, index] : path) {
        name += element + ";" + std::to_string(index) + ";";
    }
    return name;
}

// How many different indices `list;0;<element>;<index>;` has.
inline int entries(Store& store, const std::string& list, const std::string& element) {
    std::vector<std::string> found;
    const std::string prefix = list + ";0;" + element + ";";
    for (const Category& c : store.categories) {
        const std::size_t at = c.name.find(prefix);
        if (at == std::string::npos) {
            continue;
        }
        std::string rest = c.name;
        rest.erase(at, prefix.size());
        const std::string piece = rest.substr(0, rest.find_first_of(";,:"));
        if (std::find(found.begin(), found.end(), piece) == found.end()) {
            found.push_back(piece);
        }
    }
    return static_cast<int>(found.size());
}

inline std::vector<std::string> split(const std::string& text, const std::string& separators) {
    std::vector<std::string> pieces(1);
    for (const char c : text) {
        if (separators.find(c) != std::string::npos) {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    pieces.erase(std::remove(pieces.begin(), pieces.end(), std::string{}), pieces.end());
    return pieces;
}

inline std::string without_ends(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\n'), text.end());
    const char* const blanks = " \t\n\v\f\r";
    text.erase(0, std::min(text.find_first_not_of(blanks), text.size()));
    const std::size_t last = text.find_last_not_of(blanks);
    text.erase(last == std::string::npos ? 0 : last + 1);
    return text;
}

struct LossReader {
    Store& store;
    std::string category;
    std::string key;
    bool described = false;
    int axes = 5;  // of the described form: -1 until the first point
    int descriptions = 0;
    std::vector<std::pair<int, int>> flags;  // axis from 1, periodic

    // 0, or the error that ends the reading.
    int describe(std::string line) {
        line.erase(0, 1);  // the '#'
        std::string reference_name;
        std::string type;
        int index = -1;
        int periodic = 0;
        for (const std::string& field : split(line, ",\n")) {
            // Blanks around a field are as little part of it as those around a line, and blanks alone are no piece.
            std::vector<std::string> pieces = split(without_ends(field), "=\"");
            pieces.erase(std::remove_if(pieces.begin(), pieces.end(),
                                        [](const std::string& piece) { return without_ends(piece).empty(); }),
                         pieces.end());
            if (pieces.size() < 2) {
                continue;
            }
            const std::string name = without_ends(pieces[0]);
            if (name == "reference_name") {
                reference_name = pieces[1];
            } else if (name == "type") {
                type = pieces[1];
            } else if (name == "index") {
                index = boost::lexical_cast<int>(pieces[1]);
            } else if (name == "periodic") {
                periodic = boost::lexical_cast<int>(pieces[1]);
            }
        }
        if (reference_name.empty() || type.empty() || index < 0) {
            return 0;
        }
        const bool speed = type == "Speed";
        const bool current = type == "Current";
        const bool phase = type == "Phase";
        int reference_id = -1;
        const std::string list = speed ? "motion_condition_list" : "element_set_list";
        const std::string element = speed ? "motion_condition" : "coil_set";
        if (speed || current || phase) {
            bool found = false;
            for (int i = 0; i < entries(store, list, element) && !found; ++i) {
                const std::string name = flat({{list, 0}, {element, i}});
                if (store.get_string(name, "name") == reference_name) {
                    found = true;
                    reference_id = store.get_int(name, "id");
                    if (phase && (store.get_int(name, "type") == 0 || store.get_int(name, "ref_coil_set_id") >= 1)) {
                        return 90028;
                    }
                }
            }
            if (!found) {
                return speed ? 90026 : 90027;
            }
        }
        const int physical_type = speed ? 3 : current ? 1 : phase ? 2 : 0;
        const std::string axis = flat({{"ironloss", 0}, {"axis_list", 0}, {"axis", descriptions++}});
        store.put_int(axis, "axis_no", index + 1);
        store.put_int(axis, "reference_id", reference_id);
        store.put_int(axis, "reference_type", speed ? 2 : current || phase ? 1 : 0);
        store.put_int(axis, "physical_type", physical_type);
        if (physical_type == 0) {
            const int m = entries(store, "input_port_list", "user_input");
            const std::string input = flat({{"input_port_list", 0}, {"user_input", m}});
            store.put_int(input, "id", m + 1);
            store.put_int(input, "loss_axis_no", index + 1);
        }
        flags.emplace_back(index + 1, periodic);
        return 0;
    }

    int read_points(FILE* file, std::vector<std::vector<double>>& points) {
        char line[1024];
        for (;;) {
            const bool got = std::fgets(line, sizeof line, file) != nullptr;
            if (got && line[0] == '$') {
                continue;
            }
            if (std::feof(file) != 0 || !got) {
                return 0;
            }
            if (described && line[0] == '#') {
                if (const int code = describe(line)) {
                    return code;
                }
                continue;
            }
            std::vector<double> numbers;
            for (const std::string& field : split(without_ends(line), " ,\n")) {
                try {
                    numbers.push_back(boost::lexical_cast<double>(field));
                } catch (const boost::bad_lexical_cast&) {
                    return 90031;
                }
            }
            if (numbers.empty()) {
                continue;
            }
            const int coordinates = static_cast<int>(numbers.size()) - 1;
            if (axes < 0) {
                axes = coordinates;
            }
            if (coordinates != axes || axes == 0) {  // a value without coordinates is no point
                return 90023;
            }
            points.push_back(numbers);
        }
    }

    int fail(int code) {
        store.error = code;
        return 1;
    }

    int read(const char* path) {
        FILE* file = std::fopen(path, "r");
        if (file == nullptr) {
            return fail(90015);
        }
        axes = described ? -1 : 5;
        std::vector<std::vector<double>> points;
        int code = 0;
        try {
            code = read_points(file, points);
        } catch (const std::exception&) {
            code = 90029;
        }
        std::fclose(file);
        if (code != 0) {
            return fail(code);
        }
        std::vector<std::vector<double>> grid(static_cast<std::size_t>(std::max(axes, 0)));
        const auto within = [](double a, double b) { return std::fabs(a - b) < 1e-10; };
        for (const auto& point : points) {
            for (std::size_t a = 0; a < grid.size(); ++a) {
                if (std::none_of(grid[a].begin(), grid[a].end(), [&](double v) { return within(v, point[a]); })) {
                    grid[a].push_back(point[a]);
                }
            }
        }
        std::size_t product = 1;
        std::vector<int> sizes;
        for (auto& axis : grid) {
            std::sort(axis.begin(), axis.end());
            product *= axis.size();
            sizes.push_back(static_cast<int>(axis.size()));
        }
        if (points.empty() || product != points.size()) {  // no points make no grid
            return fail(90024);
        }
        for (const auto& axis : grid) {
            if (!std::all_of(axis.begin(), axis.end(), [](double node) { return std::isfinite(node); })) {
                return fail(90029);  // a node that no coordinate lies near to, not even itself
            }
        }
        if (!store.create(category, key, sizes)) {
            return 1;
        }
        Table& table = *store.table(category, key);
        if (!described && store.get_int("control", "motor_type") == 10000) {
            table.cyclic[1] = 1;
        }
        for (const auto& [axis, periodic] : flags) {
            if (axis >= 1 && axis <= table.dim) {
                table.cyclic[static_cast<std::size_t>(axis) - 1] = periodic;
            }
        }
        table.axes = grid;
        for (const auto& point : points) {
            std::vector<int> at;
            for (std::size_t a = 0; a < grid.size(); ++a) {
                const auto first =
                    std::find_if(grid[a].begin(), grid[a].end(), [&](double v) { return within(v, point[a]); });
                at.push_back(static_cast<int>(first - grid[a].begin()));
            }
            store.set_value(table, at, point.back());
        }
        return 0;
    }
};

inline bool has_all(Store& store, std::initializer_list<const char*> names) {
    return std::all_of(names.begin(), names.end(), [&](const char* name) { return store.category(name) != nullptr; });
}

inline bool is_pmsm_harmonic(Store& store) {
    return has_all(store, {"control", "parameter", "harmonic_inductance", "current_flux"}) &&
           (has_all(store, {"harmonic_torque"}) || has_all(store, {"pmsm_torque"})) &&
           store.get_int("control", "motor_type") == 10000;
}

inline int add_loss_table(Store& store, const char* path) {
    store.error = 0;
    if (is_pmsm_harmonic(store) || has_all(store, {"control", "parameter", "InductionParam"})) {
        return LossReader{store, "loss_table", "iron_loss", false, 5, 0, {}}.read(path);
    }
    if (has_all(store, {"control", "parameter"}) && store.get_int("control", "motor_type") == 10008) {
        return LossReader{store, "ironloss", "table", true, -1, 0, {}}.read(path);
    }
    store.error = 90025;
    return 1;
}

inline int add_copper_loss_table(Store& store, const char* path) {
    store.error = 0;
    if (is_pmsm_harmonic(store)) {
        return LossReader{store, "equivalent_resistance_table", "copper_loss", false, 5, 0, {}}.read(path);
    }
    store.error = 90025;
    return 1;
}

}  // namespace kzb_test::literal
