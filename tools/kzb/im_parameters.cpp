#include "kzb/im_parameters.h"

#include <cmath>
#include <numbers>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/im_saturation.h"

namespace kzb::tool {

namespace {

using enum Dimension;

std::vector<ParameterQuantity> with_common(std::vector<ParameterQuantity> quantities) {
    const std::vector<ParameterQuantity> common{
        {"pole_pairs", {}, number},
        {"r1", {"R_1", "R_s"}, resistance, true},
        {"frequency", {"rated_frequency", "reference_frequency"}, Dimension::frequency},
        {"phase_voltage_rms", {"reference_phase_voltage_rms", "rated_phase_voltage_rms"}, voltage},
        {"line_voltage_rms", {"rated_voltage_line_rms"}, voltage},
        {"iron_loss", {"iron_loss_at_reference"}, power, true},
        {"iron_flux_rms", {"psi_reference_rms"}, flux},
        {"rated_power", {}, power},
        {"rated_current", {"rated_current_rms"}, current},
        {"inertia", {"rotor_inertia", "simulation_inertia"}, Dimension::inertia},
    };
    quantities.insert(quantities.end(), common.begin(), common.end());
    return quantities;
}

void read_circuit(const Parameters& parameters, CircuitForm form, ImCircuit& circuit) {
    circuit.r1 = parameters.required("r1");
    circuit.r2 = parameters.required("r2");
    switch (form) {
        case CircuitForm::t:
            circuit.leakage1 = parameters.required("leakage1");
            circuit.leakage2 = parameters.required("leakage2");
            break;
        case CircuitForm::gamma:
            circuit.leakage2 = parameters.required("leakage");
            break;
        case CircuitForm::inverse_gamma:
            circuit.leakage1 = parameters.required("leakage");
            break;
    }
    if (!(circuit.leakage1 + circuit.leakage2 > 0.0)) {
        throw Failure(exit_usage, "both leakage inductances are 0, expected one above 0");
    }
}

ImRated read_rated(const Parameters& parameters) {
    ImRated rated;
    rated.frequency = parameters.required("frequency");
    if (const auto phase = parameters.find("phase_voltage_rms")) {
        rated.voltage = *phase * std::numbers::sqrt2;
    } else if (const auto line = parameters.find("line_voltage_rms")) {
        rated.voltage = *line * std::sqrt(2.0 / 3.0);
    }
    rated.iron_loss = parameters.find("iron_loss").value_or(0.0);
    if (rated.iron_loss > 0.0) {
        rated.iron_flux = parameters.required("iron_flux_rms") * std::numbers::sqrt2;
    }
    return rated;
}

}  // namespace

const std::vector<ParameterQuantity>& im_quantities(CircuitForm form) {
    static const std::vector<ParameterQuantity> t = with_common({
        {"r2", {"R_2", "R_2_referred", "R_r", "R_r_T"}, resistance},
        {"leakage1", {"L_sigma_1", "L_sigma_s", "L_sigma_s_T"}, inductance, true},
        {"leakage2", {"L_sigma_2", "L_sigma_2_referred", "L_sigma_r", "L_sigma_r_T"}, inductance, true},
        {"main_inductance", {"L_m", "L_m_T"}, inductance},
    });
    static const std::vector<ParameterQuantity> gamma = with_common({
        {"r2", {"R_r_gamma"}, resistance},
        {"leakage", {"L_ell_gamma"}, inductance},
        {"main_inductance", {"L_s", "L_su"}, inductance},
    });
    static const std::vector<ParameterQuantity> inverse_gamma = with_common({
        {"r2", {"R_R", "R_R_inverse_gamma"}, resistance},
        {"leakage", {"L_sigma", "L_sigma_inverse_gamma"}, inductance},
        {"main_inductance", {"L_M", "L_M_inverse_gamma"}, inductance},
    });
    return form == CircuitForm::t ? t : form == CircuitForm::gamma ? gamma : inverse_gamma;
}

ImSource read_im_source(const ImOptions& options) {
    const Parameters parameters(ParameterFile::read(options.parameter_path), options.parameters,
                                im_quantities(options.circuit));
    ImSource source;
    source.circuit.pole_pairs = parameters.required("pole_pairs");
    if (source.circuit.pole_pairs != std::round(source.circuit.pole_pairs) || source.circuit.pole_pairs > 500.0) {
        throw Failure(exit_file, fmt::format("pole_pairs is {:g}, expected a whole number from 1 to 500",
                                             source.circuit.pole_pairs));
    }
    read_circuit(parameters, options.circuit, source.circuit);
    source.circuit.main = options.saturation_path.empty()
                              ? MagnetizingCurve(parameters.required("main_inductance"))
                              : read_magnetizing_curve(CsvTable::read(options.saturation_path));
    source.rated = read_rated(parameters);
    const auto tell = [&](const char* key, std::optional<double> value) {
        if (value) {
            source.information[key] = *value;
        }
    };
    tell("rated_freqency", source.rated.frequency);  // the key is written so
    tell("rated_power", parameters.find("rated_power"));
    tell("rated_current", parameters.find("rated_current"));
    tell("rated_voltage", parameters.find("line_voltage_rms"));
    tell("inertia", parameters.find("inertia"));
    return source;
}

}  // namespace kzb::tool
