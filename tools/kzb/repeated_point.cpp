#include "kzb/repeated_point.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <string_view>
#include <vector>

#include "kzb/csv_table.h"

namespace kzb::tool {

namespace {

constexpr double same_node = 1e-10;  // coordinates closer than that are one node of the grid

// The numbers of a line, without the last, which is the value.
std::vector<double> coordinates_of(const std::string& line) {
    constexpr const char* separators = " ,\t\r\n\v\f";
    std::vector<double> numbers;
    for (std::size_t at = line.find_first_not_of(separators); at != std::string::npos;) {
        const std::size_t end = line.find_first_of(separators, at);
        numbers.push_back(finite_number(std::string_view(line).substr(at, end - at)).value_or(0.0));
        at = line.find_first_not_of(separators, end);
    }
    if (!numbers.empty()) {
        numbers.pop_back();
    }
    return numbers;
}

// The nodes that a coordinate has had so far; the number of the one that it is.
std::size_t node_of(std::vector<double>& nodes, double coordinate) {
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (std::abs(nodes[i] - coordinate) < same_node) {
            return i;
        }
    }
    nodes.push_back(coordinate);
    return nodes.size() - 1;
}

}  // namespace

std::optional<RepeatedPoint> repeated_point(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::map<std::vector<std::size_t>, std::size_t> seen;
    std::vector<std::vector<double>> nodes;
    std::string line;
    for (std::size_t number = 1; std::getline(file, line) && !file.eof(); ++number) {
        if (!line.empty() && (line.front() == '$' || line.front() == '#')) {
            continue;
        }
        const std::vector<double> point = coordinates_of(line.substr(0, line.find('\0')));  // NUL ends a line's text
        if (point.empty()) {
            continue;
        }
        nodes.resize(std::max(nodes.size(), point.size()));
        std::vector<std::size_t> indices;
        for (std::size_t axis = 0; axis < point.size(); ++axis) {
            indices.push_back(node_of(nodes[axis], point[axis]));
        }
        const auto [place, is_new] = seen.emplace(indices, number);
        if (!is_new) {
            return RepeatedPoint{number, place->second};
        }
    }
    return std::nullopt;
}

}  // namespace kzb::tool
