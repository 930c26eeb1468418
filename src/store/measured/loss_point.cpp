#include "store/measured/loss_point.h"

#include <algorithm>

#include "store/measured/fields.h"

namespace kzb {

bool read_loss_point(std::string_view line, std::vector<double>& numbers) {
    constexpr std::string_view separators = " ,\n";
    numbers.clear();
    std::string_view rest = trimmed(line);
    for (;;) {
        rest.remove_prefix(std::min(rest.find_first_not_of(separators), rest.size()));
        if (rest.empty()) {
            return true;
        }
        const std::string_view field = rest.substr(0, rest.find_first_of(separators));
        double number = 0.0;
        if (!whole_double(field, number)) {
            return false;
        }
        numbers.push_back(number);
        rest.remove_prefix(field.size());
    }
}

}  // namespace kzb
