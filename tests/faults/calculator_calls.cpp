#include <array>

#include "faults/calls.h"
#include "interface/call_table.h"
#include "interface/generic_accessors.h"

namespace kzb_test {
namespace {

constexpr int label_room = 256;
constexpr int most_ports = 64;

double label_call(int (*call)(char**, int, KZB_CALC*), KZB_CALC* handle) {
    static std::array<std::array<char, label_room>, most_ports> texts;
    static std::array<char*, most_ports> labels = [] {
        std::array<char*, most_ports> all{};
        for (std::size_t i = 0; i < all.size(); ++i) {
            all[i] = texts[i].data();
        }
        return all;
    }();
    return call(labels.data(), most_ports, handle);
}

template <class Calls, class Wrap>
void add(std::vector<CalculatorCall>& list, const Calls& calls, Wrap wrap) {
    for (const auto& entry : calls) {
        list.push_back({entry.name, wrap(entry)});
    }
}

void add_single_calls(std::vector<CalculatorCall>& list) {
    list.push_back({"kzbcalcVersion", [](KZB_CALC*) { return kzbcalcVersion() == nullptr ? 0.0 : 1.0; }});
    list.push_back({"kzbcalcCheckMotorType", kzbcalcCheckMotorType});
    list.push_back({"kzbcalcGetNumberOfPhases", kzbcalcGetNumberOfPhases});
    list.push_back({"kzbcalcExecute", kzbcalcExecute});
    list.push_back({"kzbcalcSetSignal", [](KZB_CALC* handle) { return kzbcalcSetSignal(1, 1, handle); }});
    list.push_back({"kzbcalcGetInductance", [](KZB_CALC* handle) { return kzbcalcGetInductance(1, 1, handle); }});
    list.push_back({"kzbcalcSetSkewParameter",
                    [](KZB_CALC* handle) { return kzbcalcSetSkewParameter(3, 1, 6.0, 4.0, 2, 0, handle); }});
    list.push_back({"kzbcalcGetInputLabelsForGenericModel",
                    [](KZB_CALC* handle) { return label_call(kzbcalcGetInputLabelsForGenericModel, handle); }});
    list.push_back({"kzbcalcGetOutputLabelsForGenericModel",
                    [](KZB_CALC* handle) { return label_call(kzbcalcGetOutputLabelsForGenericModel, handle); }});
    list.push_back({"kzbcalcGetOutputValuesForGenericModel", [](KZB_CALC* handle) {
                        static std::array<double, most_ports> values;
                        const int count = kzbcalcGetNumOfOutputPortsForGenericModel(handle);
                        return kzbcalcGetOutputValuesForGenericModel(
                            values.data(), count > 0 && count <= most_ports ? count : 0, handle);
                    }});
}

std::vector<CalculatorCall> make_calls() {
    std::vector<CalculatorCall> list;
    add(list, status_calls, [](const auto& entry) { return entry.function; });
    add(list, getters, [](const auto& entry) { return entry.function; });
    add(list, phase_getters,
        [](const auto& entry) { return [f = entry.function](KZB_CALC* handle) { return f(1, handle); }; });
    add(list, value_setters,
        [](const auto& entry) { return [f = entry.function](KZB_CALC* handle) { return f(1.0, handle); }; });
    add(list, indexed_setters,
        [](const auto& entry) { return [f = entry.function](KZB_CALC* handle) { return f(1, 1.0, handle); }; });
    add(list, type_setters,
        [](const auto& entry) { return [f = entry.function](KZB_CALC* handle) { return f(1, handle); }; });
    add(list, generic_setters,
        [](const auto& entry) { return [f = entry.set](KZB_CALC* handle) { return f(1, 1.0, handle); }; });
    add(list, generic_getters,
        [](const auto& entry) { return [f = entry.get](KZB_CALC* handle) { return f(1, handle); }; });
    add(list, generic_lookups, [](const auto& entry) {
        return [f = entry.find, name = entry.names.back()](KZB_CALC* handle) { return f(name.c_str(), handle); };
    });
    add(list, generic_array_calls, [](const auto& entry) { return entry.call; });
    add_single_calls(list);
    return list;
}

}  // namespace

const std::vector<CalculatorCall>& calculator_calls() {
    static const std::vector<CalculatorCall> calls = make_calls();
    return calls;
}

}  // namespace kzb_test
