#include "kzb/outputs_ac.h"

#include "fmt/format.h"

namespace kzb::tool {

namespace {

using Outputs = std::vector<Output>;
constexpr int field_phase = 4;

void add_ports(Outputs& outputs, const Machine& machine, const std::string& group, const char* unit, bool by_default,
               double (*get)(int, KZB_CALC*)) {
    for (std::size_t k = 0; k < machine.phases.size(); ++k) {
        outputs.push_back(
            {group + '_' + machine.phases[k], group, unit, by_default,
             [get, port = static_cast<int>(k) + 1](const Sample&, KZB_CALC* handle) { return get(port, handle); }});
    }
}

void add(Outputs& outputs, const char* name, const char* unit, double (*get)(KZB_CALC*), bool by_default = true) {
    outputs.push_back({name, name, unit, by_default, [get](const Sample&, KZB_CALC* handle) { return get(handle); }});
}

void add_matrix(Outputs& outputs, const Machine& machine) {
    for (std::size_t row = 0; row < machine.phases.size(); ++row) {
        for (std::size_t column = 0; column < machine.phases.size(); ++column) {
            outputs.push_back({fmt::format("inductance_{}{}", machine.phases[row], machine.phases[column]),
                               "inductance", "H", false,
                               [r = static_cast<int>(row) + 1, c = static_cast<int>(column) + 1](
                                   const Sample&, KZB_CALC* handle) { return kzbcalcGetInductance(r, c, handle); }});
        }
    }
}

// The field winding's own loss: the library's sum takes the resistance of the armature for all four.
double field_copper_loss(KZB_CALC* handle) {
    const double current = kzbcalcGetCurrent(field_phase, handle);
    return kzbcalcGetFieldCoilResistance(handle) * current * current;
}

double armature_copper_loss(KZB_CALC* handle) {
    double squares = 0.0;
    for (int phase = 1; phase < field_phase; ++phase) {
        const double current = kzbcalcGetCurrent(phase, handle);
        squares += current * current;
    }
    return kzbcalcGetResistance(handle) * squares;
}

}  // namespace

void add_induction_outputs(Outputs& outputs, const Machine& machine, KZB_CALC* handle) {
    add_ports(outputs, machine, "v_induced", "V", true, kzbcalcGetInducedVoltage);
    add_ports(outputs, machine, "v_winding", "V", false, kzbcalcGetVoltage);
    if (machine.slip_tables) {
        add(outputs, "slip_frequency", "Hz", kzbcalcGetSlipFrequency);
    }
    add(outputs, "secondary_flux_alpha", "Wb", kzbcalcGetSecondaryFluxD);
    add(outputs, "secondary_flux_beta", "Wb", kzbcalcGetSecondaryFluxQ);
    add(outputs, "resistance", "Ohm", kzbcalcGetResistance);
    add(outputs, "secondary_resistance", "Ohm", kzbcalcGetSecondaryResistance);
    add(outputs, "primary_copper_loss", "W", kzbcalcGetPrimaryCopperLoss);
    add(outputs, "secondary_copper_loss", "W", kzbcalcGetSecondaryCopperLoss);
    add(outputs, "copper_loss", "W", kzbcalcGetCopperloss, false);
    add(outputs, "iron_loss", "W", kzbcalcGetIronloss);
    if (kzbcalcCheckUserCopperloss(handle) == 1) {
        add(outputs, "user_copper_loss", "W", kzbcalcGetUserCopperLoss);
    }
}

void add_wound_field_outputs(Outputs& outputs, const Machine& machine, KZB_CALC* handle) {
    add_ports(outputs, machine, "v_induced", "V", true, kzbcalcGetInducedVoltage);
    add_ports(outputs, machine, "v_winding", "V", false, kzbcalcGetVoltage);
    add_ports(outputs, machine, "coil_flux", "Wb", true, kzbcalcGetCoilFlux);
    add(outputs, "inductance_d", "H", kzbcalcGetDAxisInductance);
    add(outputs, "inductance_q", "H", kzbcalcGetQAxisInductance);
    add_matrix(outputs, machine);
    add(outputs, "resistance", "Ohm", kzbcalcGetResistance);
    add(outputs, "field_coil_resistance", "Ohm", kzbcalcGetFieldCoilResistance);
    add(outputs, "armature_copper_loss", "W", armature_copper_loss);
    add(outputs, "field_copper_loss", "W", field_copper_loss);
    add(outputs, "copper_loss", "W", kzbcalcGetCopperloss, false);
    if (kzbcalcCheckIronloss(handle) == 1) {
        add(outputs, "eddy_loss", "W", kzbcalcGetEddyloss);
        add(outputs, "hysteresis_loss", "W", kzbcalcGetHysteresisloss);
        add(outputs, "iron_loss", "W", kzbcalcGetIronloss);
    }
}

}  // namespace kzb::tool
