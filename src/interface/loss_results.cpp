// Exported calls: resistance, losses, user-specified parameters.
#include "KZBCalculator/kzbcalc.h"
#include "interface/file_data.h"
#include "interface/value_calls.h"

using namespace kzb;

namespace {

constexpr double not_applicable = as_value(status_not_applicable);
constexpr MotorSet with_materials = rotary_pm | wound_field;

// The secondary winding's part of the sum of copper losses: 0.0, as established, since its current there is one that
// nothing writes.
double secondary_loss(KZB_CALC* handle) {
    return with_model<induction>(handle, 0.0, [](Calc_Eq_im_transient& model) {
        const double current = model.copper_loss_secondary_current();
        return 3.0 * model.secondary_resistance() * (current * current);
    });
}

}  // namespace

double kzbcalcGetResistance(KZB_CALC* handle) {
    return get_value<with_phases>(
        handle, [](auto& model) { return model.resistance(); }, [](Calc_Eq& model) { return model.resistance(1); });
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
        return loss + secondary_loss(handle);
    });
}

double kzbcalcGetEddyloss(KZB_CALC* handle) {
    return get_value<with_materials>(
        handle, [=](Calc_Eq& model) { return has_loss_table(*handle) ? 0.0 : model.eddy_loss(); },
        [](Calc_Eq_wfsm& model) { return model.eddy_loss(); });
}

double kzbcalcGetHysteresisloss(KZB_CALC* handle) {
    return get_value<with_materials>(
        handle, [=](Calc_Eq& model) { return has_loss_table(*handle) ? 0.0 : model.hysteresis_loss(); },
        [](Calc_Eq_wfsm& model) { return model.hysteresis_loss(); });
}

double kzbcalcGetIronloss(KZB_CALC* handle) {
    return get_value<with_materials | induction | generic>(
        handle,
        [=](Calc_Eq& model) {
            // A loss table gives the whole iron loss in one number.
            return has_loss_table(*handle) ? model.eddy_loss() : model.eddy_loss() + model.hysteresis_loss();
        },
        [](Calc_Eq_wfsm& model) { return model.eddy_loss() + model.hysteresis_loss(); },
        [](Calc_Eq_im_transient& model) { return model.iron_loss(); },
        [](Calc_Eq_generic& model) { return model.iron_loss(); });
}

double kzbcalcGetUserCopperLoss(KZB_CALC* handle) {
    return get_value<rotary_pm | induction>(
        handle,
        [=](Calc_Eq& model) {
            return has_user_copperloss(*handle) && model.user_copperloss_on() ? model.ac_copper_loss() : 0.0;
        },
        [=](Calc_Eq_im_transient& model) {
            return has_user_copperloss(*handle) && model.user_copper_loss_enabled() ? model.user_copper_loss() : 0.0;
        });
}

double kzbcalcGetUserSpecifiedParameter(int index, KZB_CALC* handle) {
    return guarded(not_applicable, [&] {
        if (has_model(handle) && serves(*handle, generic)) {
            return with_tables<generic>(handle, not_applicable, [=](Calc_Eq_generic& model) {
                const bool inside = index >= 1 && index <= model.user_parameter_count();
                return inside ? model.user_parameter(index) : as_value(status_count);
            });
        }
        return with_model<with_materials>(handle, not_applicable, [=](auto& model) {
            const std::vector<double>& parameters = model.user_parameters();
            const bool inside = index >= 1 && static_cast<std::size_t>(index) <= parameters.size();
            return inside ? parameters[static_cast<std::size_t>(index) - 1] : as_value(status_count);
        });
    });
}

int kzbcalcGetNumberOfUserSpecifiedParameters(KZB_CALC* handle) {
    return set_option<with_materials | generic>(handle, [](auto& model) { return model.user_parameter_count(); });
}
