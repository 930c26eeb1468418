#include "circuit/generic/correction_set.h"

#include <algorithm>

namespace kzb {

void KZCorrectionSet::read_parameters(const KZB_STORE& store) {
    for (const Record& record : records_of(store, "correction_parameter_list;correction_parameter")) {
        parameter_names_.push_back(record.text("name"));
        parameter_values_.push_back(record.number("value"));
    }
}

int KZCorrectionSet::add(const Record& record) {
    const std::string text = record.text("correction_expression");
    if (text.empty()) {
        return no_correction;
    }
    std::vector<std::string> names = parameter_names_;
    names.push_back(record.text("correction_variable"));
    Expression& expression = corrections_.emplace_back(names, text);
    std::copy(parameter_values_.begin(), parameter_values_.end(), expression.values().begin());
    return static_cast<int>(corrections_.size()) - 1;
}

double KZCorrectionSet::correct(int number, double value) {
    if (number < 0 || static_cast<std::size_t>(number) >= corrections_.size()) {
        return value;
    }
    Expression& expression = corrections_[static_cast<std::size_t>(number)];
    expression.values().back() = value;
    return expression.evaluate();
}

}  // namespace kzb
