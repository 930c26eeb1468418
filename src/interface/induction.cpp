// Exported calls of the induction machine.
#include <numbers>

#include "KZBCalculator/kzbcalc.h"
#include "interface/temperature_calls.h"

using namespace kzb;

namespace {

// Whether the model runs on the tables of the higher-accuracy data.
bool has_tables(const KZB_CALC& handle, const Calc_Eq_im_transient& model) {
    return model.inductance_type(*handle.store) == 1;
}

}  // namespace

int kzbcalcCheckInductionMotorInductanceType(KZB_CALC* handle) {
    return set_option<induction>(handle,
                                 [=](Calc_Eq_im_transient& model) { return model.inductance_type(*handle->store); });
}

int kzbcalcSetStepSize(double step_size, KZB_CALC* handle) {
    return set_value<induction, ~induction>(handle, step_size, not_negative(status_count),
                                            [=](Calc_Eq_im_transient&) { handle->step_size = step_size; });
}

int kzbcalcSetSlipFrequency(double frequency, KZB_CALC* handle) {
    return set_option<induction>(handle, [=](Calc_Eq_im_transient& model) {
        if (!has_tables(*handle, model)) {
            return status_no_slip_frequency;
        }
        model.set_slip_omega(2.0 * std::numbers::pi * frequency);
        return 0;
    });
}

double kzbcalcGetSlipFrequency(KZB_CALC* handle) {
    return get_value<induction>(handle, [=](Calc_Eq_im_transient& model) {
        return has_tables(*handle, model) ? model.slip_frequency() : as_value(status_no_slip_frequency);
    });
}

int kzbcalcSetSecondaryResistance(double resistance, KZB_CALC* handle) {
    return set_value<induction>(handle, resistance, above_zero(status_secondary_resistance),
                                [=](Calc_Eq_im_transient& model) {
                                    if (has_tables(*handle, model)) {
                                        return status_secondary_resistance_fixed;
                                    }
                                    model.set_secondary_resistance(resistance);
                                    return 0;
                                });
}

double kzbcalcGetSecondaryResistance(KZB_CALC* handle) {
    return get_value<induction>(handle, [](Calc_Eq_im_transient& model) { return model.secondary_resistance(); });
}

double kzbcalcGetPrimaryCopperLoss(KZB_CALC* handle) {
    return get_value<induction>(handle, [](Calc_Eq_im_transient& model) { return model.primary_copper_loss(); });
}

double kzbcalcGetSecondaryCopperLoss(KZB_CALC* handle) {
    return get_value<induction>(handle, [](Calc_Eq_im_transient& model) { return model.secondary_copper_loss(); });
}

double kzbcalcGetSecondaryFluxD(KZB_CALC* handle) {
    return get_value<induction>(handle, [](Calc_Eq_im_transient& model) { return model.secondary_flux_d(); });
}

double kzbcalcGetSecondaryFluxQ(KZB_CALC* handle) {
    return get_value<induction>(handle, [](Calc_Eq_im_transient& model) { return model.secondary_flux_q(); });
}

int kzbcalcSetSecondaryCoilTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<induction>(handle, temperature, kelvin(), [=](Calc_Eq_im_transient& model) {
        model.set_secondary_coil_temperature(temperature);
    });
}

double kzbcalcGetSecondaryCoilTemperature(KZB_CALC* handle) {
    return get_temperature<induction>(handle,
                                      [](Calc_Eq_im_transient& model) { return model.secondary_coil_temperature(); });
}

int kzbcalcSetSecondaryCoilBaseTemperature(double temperature, KZB_CALC* handle) {
    return set_temperature<induction>(handle, temperature, kelvin(), [=](Calc_Eq_im_transient& model) {
        model.set_base_secondary_coil_temperature(temperature);
    });
}

double kzbcalcGetSecondaryCoilBaseTemperature(KZB_CALC* handle) {
    return get_temperature<induction>(
        handle, [](Calc_Eq_im_transient& model) { return model.base_secondary_coil_temperature(); });
}

int kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient(double coefficient, KZB_CALC* handle) {
    return set_temperature<induction>(handle, coefficient, ppm_per_kelvin(), [=](Calc_Eq_im_transient& model) {
        model.set_secondary_coil_coefficient(coefficient);
    });
}

double kzbcalcGetSecondaryCoilTemperatureCorrectionCoefficient(KZB_CALC* handle) {
    return get_temperature<induction>(handle,
                                      [](Calc_Eq_im_transient& model) { return model.secondary_coil_coefficient(); });
}
