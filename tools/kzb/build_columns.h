// Finding the columns of a flux map by the names and units in the header.
//
// A header reads <name>_<unit> (id_A, psi_d_Vs, theta_e_deg) or the bare name, then in A, Vs, deg, Nm.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kzb/csv_table.h"

namespace kzb::tool {

struct FoundColumn {
    std::size_t index;
    double scale;  // from the column's unit to A, Vs, deg, Nm
};

// The names of the quantities of a flux map over dq currents, for help texts.
std::string quantity_names();
bool is_quantity(std::string_view quantity);

// The column of `quantity`; `named` overrides the search as in SourceOptions::columns.
// Failure(exit_file) when two columns fit or a named column is absent.
std::optional<FoundColumn> find_quantity(const CsvTable& csv, std::string_view quantity,
                                         const std::map<std::string, std::string>& named);
// The same for a quantity that must be there.
FoundColumn require_quantity(const CsvTable& csv, std::string_view quantity,
                             const std::map<std::string, std::string>& named);

}  // namespace kzb::tool
