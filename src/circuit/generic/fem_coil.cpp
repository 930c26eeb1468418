#include "circuit/generic/fem_coil.h"

#include <algorithm>

namespace kzb {
namespace {

bool key_below(const std::pair<int, double>& entry, int key) {
    return entry.first < key;
}

}  // namespace

double* KZFEMCoil::parameter_of(std::string_view parameter) {
    return parameter == "resistance"       ? &resistance
           : parameter == "coef_flux"      ? &coef_flux
           : parameter == "turns2"         ? &turns2
           : parameter == "base_coil_temp" ? &base_temperature
           : parameter == "coef_coil_temp" ? &coef_temperature
                                           : nullptr;
}

double KZFEMCoil::get_parameter(std::string_view parameter) const {
    if (parameter == "flux") {
        return scaled_flux();
    }
    const double* const value = const_cast<KZFEMCoil*>(this)->parameter_of(parameter);
    return value == nullptr ? 0.0 : *value;
}

void KZFEMCoil::set_parameter(std::string_view parameter, double value) {
    if (double* const target = parameter_of(parameter)) {
        *target = value;
    }
}

std::vector<CircuitMessage> KZFEMCoil::messages() const {
    if (group_id < 1) {
        return {{unlinked_coil_code, unlinked_coil_text}};
    }
    return {};
}

double KZFEMCoil::scaled_inductance(int key) const {
    const auto at = std::lower_bound(inductances.begin(), inductances.end(), key, key_below);
    const double raw = at != inductances.end() && at->first == key ? at->second : 0.0;
    return turn_ratio() * coef_flux * raw;
}

void KZFEMCoil::set_inductance(int key, double value) {
    const auto at = std::lower_bound(inductances.begin(), inductances.end(), key, key_below);
    if (at != inductances.end() && at->first == key) {
        at->second = value;
    } else {
        inductances.insert(at, {key, value});
    }
}

}  // namespace kzb
