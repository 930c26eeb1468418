// Reads the input as names of variables, an expression over them and numbers, each on its line: an expression that was
// compiled once gives, evaluation after evaluation, the bits of one compiled anew each time. The same text corrects a
// value.
//
//   names, separated by blanks
//   expression
//   bytes, of which the numbers are made
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "choices.h"
#include "circuit/generic/correction_set.h"
#include "circuit/generic/expression.h"
#include "silence.h"
#include "store/record_list.h"
#include "store/store.h"

namespace {

constexpr std::size_t most_names = 8;
constexpr int most_evaluations = 2;

std::string_view take_line(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    return line;
}

std::vector<std::string> words_of(std::string_view line) {
    std::vector<std::string> words;
    while (words.size() < most_names) {
        const std::size_t end = line.find(' ');
        words.emplace_back(line.substr(0, end));
        if (end == std::string_view::npos) {
            break;
        }
        line.remove_prefix(end + 1);
    }
    return words;
}

// A value that is not a number is as good as another one.
void require_same(double a, double b) {
    if (a == a || b == b) {
        if (std::bit_cast<std::uint64_t>(a) != std::bit_cast<std::uint64_t>(b)) {
            std::abort();
        }
    }
}

double evaluated(const std::vector<std::string>& names, const std::string& text, const std::vector<double>& values) {
    kzb::Expression fresh(names, text);
    fresh.values() = values;
    return fresh.evaluate();
}

void evaluate(const std::vector<std::string>& names, const std::string& text, kzb_fuzz::Input numbers) {
    kzb::Expression kept(names, text);
    for (int n = 0; n < most_evaluations; ++n) {
        for (double& value : kept.values()) {
            value = numbers.number();
        }
        const std::vector<double> values = kept.values();
        const double value = kept.evaluate();
        require_same(value, evaluated(names, text, values));
        if (!kept.is_readable()) {
            require_same(value, 0.0);
        }
    }
}

// The last name carries the value, the others are parameters of the model.
void correct(const std::vector<std::string>& names, const std::string& text, kzb_fuzz::Input numbers) {
    KZB_STORE store;
    std::vector<double> values;
    for (std::size_t i = 0; i + 1 < names.size(); ++i) {
        const std::string record =
            kzb::record_name("correction_parameter_list;correction_parameter", 0, static_cast<int>(i));
        values.push_back(numbers.number());
        kzb::put_string(store, record, "name", names[i]);
        kzb::put_double(store, record, "value", values.back());
    }
    kzb::put_string(store, "corrected", "correction_expression", text);
    kzb::put_string(store, "corrected", "correction_variable", names.back());
    kzb::KZCorrectionSet set;
    set.read_parameters(store);
    const int number = set.add(kzb::Record(kzb::find_category(store, "corrected")));
    values.push_back(numbers.number());
    const double corrected = set.correct(number, values.back());
    require_same(corrected, number == kzb::no_correction ? values.back() : evaluated(names, text, values));
    require_same(set.correct(number + 1, values.back()), values.back());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    std::string_view rest(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> names = words_of(take_line(rest));
    const std::string text(take_line(rest));
    const kzb_fuzz::Input numbers(reinterpret_cast<const std::uint8_t*>(rest.data()), rest.size());
    evaluate(names, text, numbers);
    correct(names, text, numbers);
    return 0;
}
