#include "kzb/account_figures.h"

#include <filesystem>

namespace kzb::tool {

std::uintmax_t size_of_file(const std::string& path) {
    std::error_code ignored;
    const std::uintmax_t size = std::filesystem::file_size(path, ignored);
    return ignored ? 0 : size;
}

Json axis_json(const TableAxis& axis) {
    return {{"first", axis.nodes.front()},
            {"last", axis.nodes.back()},
            {"nodes", axis.nodes.size()},
            {"cyclic", axis.cyclic}};
}

double percent_of(double part, double whole) {
    return whole > 0.0 ? 100.0 * part / whole : 0.0;
}

}  // namespace kzb::tool
