// What kzb validate found: a list of findings, each with the place it is about.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "table/table.h"

namespace kzb::tool {

// error: the model cannot work, or gives numbers that are none. warning: suspicious.
enum class Severity { error, warning };
std::string_view name_of(Severity severity);

struct Finding {
    Severity severity = Severity::warning;
    std::string check;  // name of the check, as documented
    std::string category;
    std::string key;
    std::string place;  // axis and node, or indices of a value; empty: the whole entry
    std::string message;
};

// What a finding is about; parts that do not apply are empty.
struct Subject {
    std::string category;
    std::string key;
    std::string place;
};

class Findings {
  public:
    void error(std::string_view check, const Subject& subject, std::string_view message);
    void warning(std::string_view check, const Subject& subject, std::string_view message);
    const std::vector<Finding>& list() const { return list_; }
    std::size_t count(Severity severity) const;

  private:
    void add(Severity severity, std::string_view check, const Subject& subject, std::string_view message);
    std::vector<Finding> list_;
};

// "axis 2", "axis 2, node 7": axes count from 1, nodes from 0.
std::string axis_place(std::size_t axis);
std::string node_place(std::size_t axis, std::size_t node);
// "value [3, 0, 1]" of the flat position in `table`.
std::string value_place(const KZB_TABLE& table, std::size_t position);

}  // namespace kzb::tool
