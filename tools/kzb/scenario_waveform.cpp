#include "kzb/scenario_waveform.h"

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"
#include "kzb/text.h"

namespace kzb::tool {

namespace {

// Each carrier period inside a step costs; beyond this the pulses say nothing that their mean does not.
constexpr double periods_per_step_limit = 1e4;

std::size_t column_of(const Section& section, const CsvTable& table, std::string_view key, const std::string& name) {
    const std::optional<std::size_t> column = table.column(name);
    if (!column) {
        section.fail(key,
                     fmt::format("{} has no column \"{}\", expected one of \"{}\"", table.name(), printable_line(name),
                                 printable_line(fmt::format("{}", fmt::join(table.header(), "\", \"")))));
    }
    return *column;
}

}  // namespace

WaveformReader::WaveformReader(const std::string& scenario_file, double step)
    : folder_(std::filesystem::path(scenario_file).parent_path()), step_(step) {}

std::optional<Waveform> WaveformReader::read(Section& section, std::string_view key) {
    const toml::node* value = section.node(key);
    if (value == nullptr) {
        return std::nullopt;
    }
    if (value->is_number()) {
        return Waveform(Constant{*section.number(key)});
    }
    if (!value->is_table()) {
        section.fail(key, "expected a number, or a table with a type");
    }
    Section inner = *section.section(key);
    Waveform result = typed(inner);
    inner.end();
    return result;
}

Waveform WaveformReader::typed(Section& section) {
    const auto type = section.required("type", section.choice("type", {"dc", "sine", "pwm", "csv", "steps"}));
    switch (type) {
        case 0:
            return Waveform(Constant{section.required("value", section.number("value"))});
        case 1:
            return Waveform(sine(section));
        case 2:
            return Waveform(pwm(section));
        case 3:
            return Waveform(points(section));
        default:
            return Waveform(steps(section));
    }
}

Steps WaveformReader::steps(Section& section) {
    std::vector<double> times = section.numbers("times");
    std::vector<double> values = section.numbers("values");
    if (times.empty()) {
        section.missing("times");
    }
    if (times.size() != values.size()) {
        section.fail("values",
                     fmt::format("{} values for {} times, expected one for each", values.size(), times.size()));
    }
    for (std::size_t n = 1; n < times.size(); ++n) {
        if (!(times[n] > times[n - 1])) {
            section.fail("times", fmt::format("{} is not above {} before it", times[n], times[n - 1]));
        }
    }
    return {std::make_shared<const std::vector<double>>(std::move(times)),
            std::make_shared<const std::vector<double>>(std::move(values))};
}

Sine WaveformReader::sine(Section& section) {
    Sine result;
    result.amplitude = section.required("amplitude", section.number("amplitude"));
    result.frequency = section.required("frequency", section.not_negative("frequency"));
    result.phase_deg = section.number("phase_deg").value_or(0.0);
    result.offset = section.number("offset").value_or(0.0);
    return result;
}

Pwm WaveformReader::pwm(Section& section) {
    Pwm result;
    result.low = section.number("low").value_or(0.0);
    result.high = section.required("high", section.number("high"));
    result.carrier_frequency = section.required("carrier_frequency", section.positive("carrier_frequency"));
    if (result.carrier_frequency * step_ > periods_per_step_limit) {
        section.fail("carrier_frequency", fmt::format("{} periods in a time step, expected at most {}",
                                                      result.carrier_frequency * step_, periods_per_step_limit));
    }
    result.mean = section.choice("sampling", {"mean", "instant"}).value_or(0) == 0;
    std::optional<Section> modulation = section.section("modulation");
    const std::optional<double> duty = section.number("duty");
    if (modulation.has_value() == duty.has_value()) {
        section.fail(duty ? "duty" : "type", "expected either duty or modulation");
    }
    if (duty) {
        if (*duty < 0.0 || *duty > 1.0) {
            section.fail("duty", fmt::format("{} is not between 0 and 1", *duty));
        }
        result.duty = *duty;
    } else {
        result.modulation = sine(*modulation);
        modulation->end();
        result.duty = 0.5 + 0.5 * result.modulation.offset;
    }
    return result;
}

const CsvTable& WaveformReader::table(Section& section, const std::string& name) {
    const std::string path = (folder_ / name).string();
    const auto known = tables_.find(path);
    if (known != tables_.end()) {
        return known->second;
    }
    try {
        return tables_.emplace(path, CsvTable::read(path)).first->second;
    } catch (const Failure& failure) {
        section.fail("file", failure.what());
    }
}

Points WaveformReader::points(Section& section) {
    const std::string file = section.required("file", section.text("file"));
    const std::string column = section.required("column", section.text("column"));
    const std::string time_column = section.text("time_column").value_or("time_s");
    const double scale = section.number("scale").value_or(1.0);
    const CsvTable& csv = table(section, file);

    std::vector<double> times = csv.numbers(column_of(section, csv, "time_column", time_column));
    for (std::size_t row = 1; row < times.size(); ++row) {
        if (!(times[row] > times[row - 1])) {
            throw Failure(exit_file, fmt::format("{}: time {} is not above {} of the row before", csv.place_of(row),
                                                 times[row], times[row - 1]));
        }
    }
    Points result;
    result.values =
        std::make_shared<const std::vector<double>>(csv.numbers(column_of(section, csv, "column", column), scale));
    result.times = std::make_shared<const std::vector<double>>(std::move(times));
    result.repeat = section.choice("outside", {"hold", "repeat"}).value_or(0) == 1;
    return result;
}

}  // namespace kzb::tool
