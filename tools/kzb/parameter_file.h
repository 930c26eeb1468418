// Machine parameters by name, from a file and from the command line.
//
// The file is CSV with the columns name, value and unit, or TOML with one `name = number` per line, in SI. A machine
// asks for a quantity, which is found under one of its names; --parameter QUANTITY=NAME says which name is meant,
// --parameter QUANTITY=NUMBER gives the value itself, in SI.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kzb::tool {

enum class Dimension { number, resistance, inductance, flux, current, voltage, frequency, power, inertia, temperature };

struct ParameterQuantity {
    std::string_view name;                // as --parameter knows it
    std::vector<std::string_view> names;  // as files write it, the quantity's own name beside them
    Dimension dimension = Dimension::number;
    bool zero_allowed = false;  // else above 0
};

class ParameterFile {
  public:
    // An empty path: no file, all from the command line.
    static ParameterFile read(const std::string& path);
    static ParameterFile parse_csv(const std::string& text, const std::string& name);
    static ParameterFile parse_toml(const std::string& text, const std::string& name);

    struct Entry {
        double value = 0.0;  // in `unit`
        std::string unit;    // empty: SI
        std::string place;   // "file:line"
    };
    const Entry* find(std::string_view name) const;
    const std::string& file() const { return file_; }
    std::vector<std::string> names() const;

  private:
    std::string file_;
    std::map<std::string, Entry, std::less<>> entries_;
};

class Parameters {
  public:
    // `words` are the values of --parameter, `known` the quantities that they may name. Failure(exit_usage) for
    // another.
    Parameters(ParameterFile file, const std::vector<std::string>& words, const std::vector<ParameterQuantity>& known);

    // In SI. Failure(exit_file) for a unit or a value that the quantity cannot have, and for two names that both fit.
    std::optional<double> find(std::string_view quantity) const;
    double required(std::string_view quantity) const;

  private:
    const ParameterQuantity& quantity_named(std::string_view name) const;
    double in_range(const ParameterQuantity& quantity, double value, const std::string& place) const;
    ParameterFile file_;
    std::vector<ParameterQuantity> known_;
    std::map<std::string, std::string, std::less<>> words_;
};

// A quantity of `dimension` brought to SI; nothing for a unit that the dimension does not have.
std::optional<double> in_si(double value, std::string_view unit, Dimension dimension);

}  // namespace kzb::tool
