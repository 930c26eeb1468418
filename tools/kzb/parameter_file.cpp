#include "kzb/parameter_file.h"

#include <algorithm>
#include <cmath>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_words.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/input_text.h"
#include "kzb/scenario_section.h"
#include "kzb/text.h"
#include "kzb/toml_document.h"

namespace kzb::tool {

namespace {

struct ParameterUnit {
    std::string_view name;
    Dimension dimension;
    double scale;
    double offset = 0.0;
};

const std::vector<ParameterUnit>& units() {
    using enum Dimension;
    static const std::vector<ParameterUnit> all{
        {"1", number, 1.0},
        {"ohm", resistance, 1.0},
        {"Ohm", resistance, 1.0},
        {"mohm", resistance, 1e-3},
        {"mOhm", resistance, 1e-3},
        {"H", inductance, 1.0},
        {"mH", inductance, 1e-3},
        {"uH", inductance, 1e-6},
        {"Vs", flux, 1.0},
        {"Wb", flux, 1.0},
        {"mVs", flux, 1e-3},
        {"mWb", flux, 1e-3},
        {"A", current, 1.0},
        {"kA", current, 1e3},
        {"mA", current, 1e-3},
        {"V", voltage, 1.0},
        {"kV", voltage, 1e3},
        {"Hz", frequency, 1.0},
        {"W", power, 1.0},
        {"kW", power, 1e3},
        {"kg m2", inertia, 1.0},
        {"kg*m^2", inertia, 1.0},
        {"kg m^2", inertia, 1.0},
        {"K", temperature, 1.0},
        {"degC", temperature, 1.0, 273.15},
    };
    return all;
}

std::string unit_names(Dimension dimension) {
    std::vector<std::string_view> names;
    for (const ParameterUnit& unit : units()) {
        if (unit.dimension == dimension) {
            names.push_back(unit.name);
        }
    }
    return fmt::format("{}", fmt::join(names, ", "));
}

bool ends_in(const std::string& text, std::string_view end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

std::size_t required_column(const CsvTable& csv, const char* header) {
    if (const auto column = csv.column(header)) {
        return *column;
    }
    throw Failure(exit_file, fmt::format("{}:1: no column \"{}\", expected a parameter file with name,value,unit",
                                         csv.name(), header));
}

}  // namespace

std::optional<double> in_si(double value, std::string_view unit, Dimension dimension) {
    if (unit.empty()) {
        return value;
    }
    for (const ParameterUnit& known : units()) {
        if (known.name == unit && known.dimension == dimension) {
            return value * known.scale + known.offset;
        }
    }
    return std::nullopt;
}

ParameterFile ParameterFile::read(const std::string& path) {
    if (path.empty()) {
        return {};
    }
    const std::string text = read_input_text(path, "a file of parameters");
    return ends_in(path, ".toml") ? parse_toml(text, path) : parse_csv(text, path);
}

ParameterFile ParameterFile::parse_csv(const std::string& text, const std::string& name) {
    const CsvTable csv = CsvTable::parse(text, name);
    const std::size_t name_column = required_column(csv, "name");
    const std::size_t value_column = required_column(csv, "value");
    const auto unit_column = csv.column("unit");
    const std::vector<double> values = csv.numbers(value_column);
    ParameterFile file;
    file.file_ = name;
    for (std::size_t row = 0; row < csv.row_count(); ++row) {
        Entry entry{values[row], unit_column ? csv.cell(row, *unit_column) : std::string(), csv.place_of(row)};
        const auto [at, fresh] = file.entries_.emplace(csv.cell(row, name_column), std::move(entry));
        if (!fresh) {
            throw Failure(exit_file, fmt::format("{}: {} a second time, first at {}", csv.place_of(row),
                                                 printable_line(at->first), at->second.place));
        }
    }
    return file;
}

ParameterFile ParameterFile::parse_toml(const std::string& text, const std::string& name) {
    ParameterFile file;
    file.file_ = name;
    const toml::table document = tool::parse_toml(text, name);
    for (const auto& [key, node] : document) {
        const std::string place = fmt::format("{}:{}", name, node.source().begin.line);
        const std::optional<double> value = node.is_number() ? node.value<double>() : std::nullopt;
        if (!value || !std::isfinite(*value)) {
            throw Failure(exit_file, fmt::format("{}: {}: expected a finite number", place, printable_line(key.str())));
        }
        file.entries_.emplace(std::string(key.str()), Entry{*value, "", place});
    }
    return file;
}

const ParameterFile::Entry* ParameterFile::find(std::string_view name) const {
    const auto at = entries_.find(name);
    return at == entries_.end() ? nullptr : &at->second;
}

std::vector<std::string> ParameterFile::names() const {
    std::vector<std::string> names;
    for (const auto& [name, ignored] : entries_) {
        names.push_back(printable_line(name));
    }
    return names;
}

Parameters::Parameters(ParameterFile file, const std::vector<std::string>& words,
                       const std::vector<ParameterQuantity>& known)
    : file_(std::move(file)), known_(known) {
    std::vector<std::string_view> names;
    for (const ParameterQuantity& quantity : known_) {
        names.push_back(quantity.name);
    }
    for (const std::string& word : words) {
        const auto [quantity, value] = split_assignment("--parameter", word, "QUANTITY=NUMBER or QUANTITY=NAME");
        if (std::find(names.begin(), names.end(), quantity) == names.end()) {
            throw Failure(exit_usage,
                          fmt::format("--parameter {}: unknown quantity \"{}\", expected one of {}",
                                      printable_line(word), printable_line(quantity), fmt::join(names, ", ")));
        }
        if (!finite_number(value) && file_.find(value) == nullptr) {
            throw Failure(exit_usage, fmt::format("--parameter {}: \"{}\" is no number and no name in {}",
                                                  printable_line(word), printable_line(value),
                                                  file_.file().empty() ? "a file of parameters" : file_.file()));
        }
        words_[quantity] = value;
    }
}

const ParameterQuantity& Parameters::quantity_named(std::string_view name) const {
    return *std::find_if(known_.begin(), known_.end(), [name](const ParameterQuantity& q) { return q.name == name; });
}

double Parameters::in_range(const ParameterQuantity& quantity, double value, const std::string& place) const {
    if (value < 0.0 || (value == 0.0 && !quantity.zero_allowed)) {
        throw Failure(place.rfind("--", 0) == 0 ? exit_usage : exit_file,
                      fmt::format("{}: {} is {:g}, expected a number {}", place, quantity.name, value,
                                  quantity.zero_allowed ? "of 0 or more" : "above 0"));
    }
    return value;
}

std::optional<double> Parameters::find(std::string_view name) const {
    const ParameterQuantity& quantity = quantity_named(name);
    std::vector<std::string_view> names{quantity.name};
    names.insert(names.end(), quantity.names.begin(), quantity.names.end());
    if (const auto word = words_.find(name); word != words_.end()) {
        if (const auto number = finite_number(word->second)) {
            return in_range(quantity, *number, "--parameter " + word->first + "=" + word->second);
        }
        names = {word->second};
    }
    const ParameterFile::Entry* found = nullptr;
    std::string_view found_as;
    for (const std::string_view candidate : names) {
        const ParameterFile::Entry* entry = file_.find(candidate);
        if (entry != nullptr && found != nullptr && entry != found) {
            throw Failure(exit_file, fmt::format("{}: {} and {} both tell {}; name one with --parameter {}=NAME",
                                                 file_.file(), found_as, candidate, name, name));
        }
        if (entry != nullptr) {
            found = entry;
            found_as = candidate;
        }
    }
    if (found == nullptr) {
        return std::nullopt;
    }
    const std::optional<double> value = in_si(found->value, found->unit, quantity.dimension);
    if (!value) {
        throw Failure(exit_file, fmt::format("{}: {}: unit \"{}\", expected one of {}", found->place, found_as,
                                             printable_line(found->unit), unit_names(quantity.dimension)));
    }
    return in_range(quantity, *value, fmt::format("{}: {}", found->place, found_as));
}

double Parameters::required(std::string_view name) const {
    if (const std::optional<double> value = find(name)) {
        return *value;
    }
    const ParameterQuantity& quantity = quantity_named(name);
    const std::string expected =
        fmt::format("expected {}{}{} or --parameter {}=NUMBER", quantity.name, quantity.names.empty() ? "" : ", ",
                    fmt::join(quantity.names, ", "), quantity.name);
    if (file_.file().empty()) {
        throw Failure(exit_usage, fmt::format("no {}: {}", quantity.name, expected));
    }
    throw Failure(exit_file, fmt::format("{}: no {}: {}; the file has {}", file_.file(), quantity.name, expected,
                                         fmt::join(file_.names(), ", ")));
}

}  // namespace kzb::tool
