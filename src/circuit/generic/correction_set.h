// KZCorrectionSet: expressions that correct a value, each with the variable that carries it.
//
//   corrected = expression(parameters, variable = value)
//
// A correction is known by its number, its place in the set. Any other number leaves the value as it is.
#pragma once

#include <string>
#include <vector>

#include "circuit/generic/expression.h"
#include "store/record_list.h"

namespace kzb {

inline constexpr int no_correction = -1;

class KZCorrectionSet {
  public:
    // The parameters that all expressions share.
    void read_parameters(const KZB_STORE& store);
    // Number of the correction that the record states; none when its "correction_expression" is empty.
    int add(const Record& record);

    double correct(int number, double value);

  private:
    std::vector<std::string> parameter_names_;
    std::vector<double> parameter_values_;
    std::vector<Expression> corrections_;
};

}  // namespace kzb
