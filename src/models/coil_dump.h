// One record of a developer's text file: a step's title, labelled lines and blocks of numbers.
//
// Numbers stand as "% 10.4E", the same under every locale. What a layout asks for and the machine does not have is left
// out of blocks and is 0.0 in differences.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace kzb {

class CoilDump {
  public:
    // "##### time = %10.4E (% 10d step)#####\n"
    CoilDump(double time, int step_count);
    // `label` and a line with `values`.
    void line(const char* label, std::initializer_list<double> values);
    // `label` and `rows` lines of four values, each value with a blank behind it.
    void block(const char* label, const std::vector<double>& values, std::size_t rows);
    // current[0] - current[1] and current[2] - current[3], the phase currents of a machine of two phases.
    void phase_currents(const char* label, const std::vector<double>& current);
    // Appends the record and an empty line; silent on failure.
    void append_to(const char* file_name);

  private:
    std::string text_;
};

}  // namespace kzb
