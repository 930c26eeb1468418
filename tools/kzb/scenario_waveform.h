// Waveforms as a scenario writes them: a number, or a table with a `type`.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kzb/csv_table.h"
#include "kzb/scenario_section.h"
#include "kzb/waveform.h"

namespace kzb::tool {

class WaveformReader {
  public:
    // Names of CSV files count from the folder of the scenario; a carrier is checked against the step.
    WaveformReader(const std::string& scenario_file, double step);

    std::optional<Waveform> read(Section& section, std::string_view key);
    // The `file`, `column`, `time_column`, `scale` and `outside` keys of a section.
    Points points(Section& section);

  private:
    Waveform typed(Section& section);
    Sine sine(Section& section);
    Pwm pwm(Section& section);
    Steps steps(Section& section);
    const CsvTable& table(Section& section, const std::string& name);
    std::filesystem::path folder_;
    double step_;
    std::map<std::string, CsvTable> tables_;
};

}  // namespace kzb::tool
