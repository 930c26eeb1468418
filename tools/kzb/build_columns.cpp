#include "kzb/build_columns.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <numbers>
#include <vector>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

struct ColumnUnit {
    std::string_view name;
    double scale;
};

constexpr std::array<ColumnUnit, 3> current_units{{{"A", 1.0}, {"mA", 1e-3}, {"kA", 1e3}}};
constexpr std::array<ColumnUnit, 4> flux_units{{{"Vs", 1.0}, {"Wb", 1.0}, {"mVs", 1e-3}, {"mWb", 1e-3}}};
constexpr std::array<ColumnUnit, 2> angle_units{{{"deg", 1.0}, {"rad", 180.0 / std::numbers::pi}}};
constexpr std::array<ColumnUnit, 3> torque_units{{{"Nm", 1.0}, {"mNm", 1e-3}, {"kNm", 1e3}}};
constexpr std::array<ColumnUnit, 3> force_units{{{"N", 1.0}, {"mN", 1e-3}, {"kN", 1e3}}};
constexpr std::array<ColumnUnit, 2> length_units{{{"m", 1.0}, {"mm", 1e-3}}};

struct Quantity {
    std::string_view name;
    std::vector<std::string_view> headers;  // without the unit
    const ColumnUnit* units;
    std::size_t unit_count;
    bool of_coils = false;  // of machines of separate coils, not of flux maps over dq currents
};

template <std::size_t N>
Quantity quantity(std::string_view name, std::initializer_list<std::string_view> headers,
                  const std::array<ColumnUnit, N>& units) {
    return {name, headers, units.data(), N};
}

template <std::size_t N>
Quantity coil_quantity(std::string_view name, std::initializer_list<std::string_view> headers,
                       const std::array<ColumnUnit, N>& units) {
    return {name, headers, units.data(), N, true};
}

const std::vector<Quantity>& quantities() {
    static const std::vector<Quantity> all{
        quantity("id", {"id", "i_d"}, current_units),
        quantity("iq", {"iq", "i_q"}, current_units),
        quantity("psi_d", {"psi_d", "psid", "flux_d"}, flux_units),
        quantity("psi_q", {"psi_q", "psiq", "flux_q"}, flux_units),
        quantity("psi_0", {"psi_0", "psi0", "flux_0"}, flux_units),
        quantity("torque", {"torque"}, torque_units),
        quantity("theta_e", {"theta_e", "theta_el"}, angle_units),
        quantity("theta_mech", {"theta_mech", "theta_m"}, angle_units),
        coil_quantity("current", {"current", "i"}, current_units),
        coil_quantity("psi", {"psi", "flux_linkage"}, flux_units),
        coil_quantity("psi_neighbour", {"psi_neighbour", "psi_mutual"}, flux_units),
        coil_quantity("x", {"x", "position"}, length_units),
        coil_quantity("force", {"force"}, force_units),
    };
    return all;
}

const Quantity* quantity_named(std::string_view name) {
    for (const Quantity& q : quantities()) {
        if (q.name == name) {
            return &q;
        }
    }
    return nullptr;
}

std::optional<double> unit_scale(const Quantity& q, std::string_view unit) {
    for (const ColumnUnit& u : std::vector<ColumnUnit>(q.units, q.units + q.unit_count)) {
        if (u.name == unit) {
            return u.scale;
        }
    }
    return std::nullopt;
}

std::string unit_names(const Quantity& q) {
    std::vector<std::string_view> names;
    for (std::size_t i = 0; i < q.unit_count; ++i) {
        names.push_back(q.units[i].name);
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

std::string columns_of(const CsvTable& csv) {
    return printable_line(fmt::format("{}", fmt::join(csv.header(), ", ")));
}

// Scale of a header that fits the quantity, nothing for one that does not.
std::optional<double> scale_of_header(const Quantity& q, std::string_view header) {
    for (const std::string_view name : q.headers) {
        if (header == name) {
            return 1.0;
        }
        if (header.substr(0, name.size()) == name && header.substr(name.size(), 1) == "_") {
            if (const auto scale = unit_scale(q, header.substr(name.size() + 1))) {
                return scale;
            }
        }
    }
    return std::nullopt;
}

FoundColumn named_column(const CsvTable& csv, const Quantity& q, const std::string& wanted) {
    const std::size_t colon = wanted.rfind(':');
    const std::string header = wanted.substr(0, colon);
    const auto index = csv.column(header);
    if (!index) {
        throw Failure(exit_file, fmt::format("{}:1: no column \"{}\" for {}; the columns are {}", csv.name(), header,
                                             q.name, columns_of(csv)));
    }
    const std::size_t underscore = header.rfind('_');
    const bool told = colon != std::string::npos;
    const std::string unit = told ? wanted.substr(colon + 1)
                                  : (underscore == std::string::npos ? std::string() : header.substr(underscore + 1));
    const auto scale = unit_scale(q, unit);
    if (told && !scale) {
        throw Failure(exit_usage, fmt::format("--column {}={}: unknown unit \"{}\", expected one of {}", q.name, wanted,
                                              unit, unit_names(q)));
    }
    return {*index, scale.value_or(1.0)};
}

}  // namespace

std::string quantity_names() {
    std::vector<std::string_view> names;
    for (const Quantity& q : quantities()) {
        if (!q.of_coils) {
            names.push_back(q.name);
        }
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

bool is_quantity(std::string_view name) {
    const Quantity* q = quantity_named(name);
    return q != nullptr && !q->of_coils;
}

std::optional<FoundColumn> find_quantity(const CsvTable& csv, std::string_view name,
                                         const std::map<std::string, std::string>& named) {
    const Quantity& q = *quantity_named(name);
    if (const auto wanted = named.find(std::string(name)); wanted != named.end()) {
        return named_column(csv, q, wanted->second);
    }
    std::optional<FoundColumn> found;
    for (std::size_t i = 0; i < csv.header().size(); ++i) {
        const auto scale = scale_of_header(q, csv.header()[i]);
        if (!scale) {
            continue;
        }
        if (found) {
            throw Failure(exit_file, fmt::format("{}:1: columns \"{}\" and \"{}\" both fit {}; name one with --column",
                                                 csv.name(), csv.header()[found->index], csv.header()[i], name));
        }
        found = FoundColumn{i, *scale};
    }
    return found;
}

FoundColumn require_quantity(const CsvTable& csv, std::string_view name,
                             const std::map<std::string, std::string>& named) {
    const auto found = find_quantity(csv, name, named);
    if (!found) {
        const Quantity& q = *quantity_named(name);
        throw Failure(exit_file,
                      fmt::format("{}:1: no column for {}, expected {}_{} or --column {}=NAME; the columns "
                                  "are {}",
                                  csv.name(), name, q.headers.front(), q.units[0].name, name, columns_of(csv)));
    }
    return *found;
}

}  // namespace kzb::tool
