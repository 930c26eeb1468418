// Stores with tables filled from a function, for the tests of the transforms.
#pragma once

#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "store/lookup_front.h"
#include "store/store.h"

namespace synthetic {

using Point = std::vector<double>;
using Function = std::function<double(const Point&)>;

inline constexpr double pi = 3.14159265358979323846;
inline double cosd(double deg) {
    return std::cos(deg * pi / 180.0);
}
inline double sind(double deg) {
    return std::sin(deg * pi / 180.0);
}

// first, first + step .. last
inline std::vector<double> range(double first, double step, double last) {
    std::vector<double> nodes;
    for (int i = 0; first + i * step <= last + 1e-9; ++i) {
        nodes.push_back(first + i * step);
    }
    return nodes;
}

// Calls body(indices, point) for all points, last axis fastest.
inline void for_each(const std::vector<std::vector<double>>& grids,
                     const std::function<void(const std::vector<int>&, const Point&)>& body) {
    std::vector<int> indices(grids.size(), 0);
    for (;;) {
        Point point;
        for (std::size_t a = 0; a < grids.size(); ++a) {
            point.push_back(grids[a][static_cast<std::size_t>(indices[a])]);
        }
        body(indices, point);
        std::size_t a = grids.size();
        while (a > 0 && ++indices[a - 1] == static_cast<int>(grids[a - 1].size())) {
            indices[--a] = 0;
        }
        if (a == 0) {
            return;
        }
    }
}

inline void make_table(KZB_STORE& store, const std::string& category, const std::string& key,
                       const std::vector<std::vector<double>>& grids, const std::vector<int>& cyclic,
                       const Function& f) {
    std::vector<int> sizes;
    for (const auto& grid : grids) {
        sizes.push_back(static_cast<int>(grid.size()));
    }
    kzb::create_table(store, category, key, static_cast<int>(sizes.size()), sizes.data());
    KZB_TABLE* table = kzb::find_table(store, category, key);
    for (std::size_t a = 0; a < grids.size(); ++a) {
        for (std::size_t i = 0; i < grids[a].size(); ++i) {
            kzb::table_set_axis_value(table, static_cast<int>(a + 1), static_cast<int>(i), grids[a][i]);
        }
        kzb::table_set_cyclic_flag(table, static_cast<int>(a + 1), cyclic[a]);
    }
    for_each(grids, [&](const std::vector<int>& indices, const Point& x) {
        kzb::table_set_value(table, indices.data(), f(x));
    });
}

inline double value(KZB_STORE& store, const char* category, const char* key, const std::vector<int>& indices) {
    return kzb::table_get_value(kzb::find_table(store, category, key), indices.data());
}

inline double look_up(KZB_STORE& store, const char* category, const char* key, const Point& x) {
    kzb::TableRef table(category, key);
    return table.at(store, kzb::Method{}, x.data(), static_cast<int>(x.size()));
}

inline std::vector<double> nodes(KZB_STORE& store, const char* category, const char* key, int axis) {
    std::vector<double> found;
    const KZB_TABLE* table = kzb::find_table(store, category, key);
    for (int i = 0; i < kzb::table_rows(store, category, key, axis); ++i) {
        found.push_back(kzb::table_get_axis_value(table, axis, i));
    }
    return found;
}

inline std::vector<int> cyclic_flags(KZB_STORE& store, const char* category, const char* key) {
    return kzb::find_table(store, category, key)->cyclic;
}

// A store with the categories that every application needs.
inline void fill_control(KZB_STORE& store, int motor_type, int poles, double beta_zero) {
    kzb::put_int(store, "control", "motor_type", motor_type);
    kzb::put_int(store, "control", "number_of_poles", poles);
    kzb::put_double(store, "control", "beta_zero", beta_zero);
    kzb::put_double(store, "parameter", "RU", 1.0);
}

}  // namespace synthetic
