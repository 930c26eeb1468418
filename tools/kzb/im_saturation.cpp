#include "kzb/im_saturation.h"

#include <initializer_list>
#include <numbers>
#include <optional>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/parameter_file.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

// Values of the first column that is one of `names` with a unit of the dimension, in SI and peak.
std::optional<std::vector<double>> peak_column(const CsvTable& csv, std::initializer_list<std::string_view> names,
                                               Dimension dimension) {
    for (std::size_t column = 0; column < csv.header().size(); ++column) {
        const std::string& header = csv.header()[column];
        for (const std::string_view name : names) {
            if (header.compare(0, name.size(), name) != 0) {
                continue;
            }
            std::string_view rest = std::string_view(header).substr(name.size());
            double scale = 1.0;
            if (rest.substr(0, 4) == "_rms") {
                scale = dimension == Dimension::inductance ? 1.0 : std::numbers::sqrt2;
                rest.remove_prefix(4);
            } else if (rest.substr(0, 5) == "_peak") {
                rest.remove_prefix(5);
            }
            const std::string_view unit = rest.empty() ? rest : rest.substr(1);
            if (rest.empty() || (rest.front() == '_' && !unit.empty() && in_si(1.0, unit, dimension))) {
                return csv.numbers(column, scale * *in_si(1.0, unit, dimension));
            }
        }
    }
    return std::nullopt;
}

[[noreturn]] void missing(const CsvTable& csv, const char* what, const char* expected) {
    throw Failure(exit_file,
                  fmt::format("{}:1: no column for the {}, expected {}; the columns are {}", csv.name(), what, expected,
                              printable_line(fmt::format("{}", fmt::join(csv.header(), ", ")))));
}

std::vector<double> flux_of(const CsvTable& csv, const std::vector<double>& current) {
    if (auto flux = peak_column(csv, {"psi_m", "psi_s"}, Dimension::flux)) {
        return *flux;
    }
    auto inductance = peak_column(csv, {"L_m", "L_s"}, Dimension::inductance);
    if (!inductance) {
        missing(csv, "main flux linkage", "psi_m_rms_Vs, psi_m_peak_Vs or L_m_H");
    }
    for (std::size_t row = 0; row < current.size(); ++row) {
        (*inductance)[row] *= current[row];
    }
    return *inductance;
}

std::vector<double> current_of(const CsvTable& csv) {
    if (auto current = peak_column(csv, {"i_m", "i_magnetizing"}, Dimension::current)) {
        return *current;
    }
    missing(csv, "magnetizing current", "i_m_rms_A or i_m_peak_A");
}

}  // namespace

MagnetizingCurve read_magnetizing_curve(const CsvTable& csv) {
    const std::vector<double> rows = current_of(csv);
    const std::vector<double> flux_rows = flux_of(csv, rows);
    std::vector<double> current{0.0};
    std::vector<double> flux{0.0};
    bool first = true;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const bool origin = first && rows[row] == 0.0;
        first = false;
        if (origin) {
            // Inductance files and zero currents: a flux linkage without current would be that of a magnet.
            if (flux_rows[row] != 0.0) {
                throw Failure(exit_file, fmt::format("{}: flux linkage {:g} Vs without current, expected 0",
                                                     csv.place_of(row), flux_rows[row]));
            }
            continue;
        }
        if (!(rows[row] > current.back()) || !(flux_rows[row] > flux.back())) {
            throw Failure(exit_file,
                          fmt::format("{}: current {:g} A, flux linkage {:g} Vs (peak): expected both above "
                                      "{:g} A, {:g} Vs of the row before",
                                      csv.place_of(row), rows[row], flux_rows[row], current.back(), flux.back()));
        }
        current.push_back(rows[row]);
        flux.push_back(flux_rows[row]);
    }
    if (current.size() < 2) {
        throw Failure(exit_file, fmt::format("{}: no point beside the origin", csv.name()));
    }
    return {current, flux};
}

}  // namespace kzb::tool
