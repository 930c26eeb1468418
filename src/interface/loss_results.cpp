// Exported calls: resistance, losses, user-specified parameters.
#include "KZBCalculator/kzbcalc.h"
#include "diagnostics/guard.h"
#include "interface/file_data.h"

using namespace kzb;

namespace {

constexpr double not_applicable = as_value(status_not_applicable);

}  // namespace

double kzbcalcGetResistance(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, permanent_magnet, not_applicable, [](Calc_Eq& model) { return model.resistance(1); });
    });
}

double kzbcalcGetCopperloss(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (!has_model(handle)) {
            return not_applicable;
        }
        // One resistance serves all phases.
        const double resistance = kzbcalcGetResistance(handle);
        double loss = 0.0;
        for (int phase = 1; phase <= handle->type->ports; ++phase) {
            const double current = kzbcalcGetCurrent(phase, handle);
            loss += resistance * (current * current);
        }
        return loss;
    });
}

double kzbcalcGetEddyloss(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm, not_applicable,
                          [&](Calc_Eq& model) { return has_loss_table(*handle) ? 0.0 : model.eddy_loss(); });
    });
}

double kzbcalcGetHysteresisloss(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm, not_applicable,
                          [&](Calc_Eq& model) { return has_loss_table(*handle) ? 0.0 : model.hysteresis_loss(); });
    });
}

double kzbcalcGetIronloss(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm, not_applicable, [&](Calc_Eq& model) {
            // A loss table gives the whole iron loss in one number.
            return has_loss_table(*handle) ? model.eddy_loss() : model.eddy_loss() + model.hysteresis_loss();
        });
    });
}

double kzbcalcGetUserCopperLoss(KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm | induction, not_applicable, [&](Calc_Eq& model) {
            return has_user_copperloss(*handle) && model.user_copperloss_on() ? model.ac_copper_loss() : 0.0;
        });
    });
}

double kzbcalcGetUserSpecifiedParameter(int index, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        return with_model(handle, rotary_pm | wound_field | generic, not_applicable, [&](Calc_Eq& model) {
            const std::vector<double>& parameters = model.user_parameters();
            const bool inside = index >= 1 && static_cast<std::size_t>(index) <= parameters.size();
            return inside ? parameters[static_cast<std::size_t>(index) - 1] : as_value(status_count);
        });
    });
}

int kzbcalcGetNumberOfUserSpecifiedParameters(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&] {
        return with_model(handle, rotary_pm | wound_field | generic, status_not_applicable,
                          [](Calc_Eq& model) { return model.user_parameter_count(); });
    });
}
