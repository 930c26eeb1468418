// Exported calls: iron loss, user copper loss, and the supply that they depend on.
#include <cstdlib>

#include "KZBCalculator/kzbcalc.h"
#include "diagnostics/guard.h"
#include "interface/file_data.h"

using namespace kzb;

namespace {

constexpr MotorSet with_ironloss = rotary_pm | induction | wound_field | generic;
constexpr MotorSet with_user_copperloss = rotary_pm | induction;

bool old_ironloss_asked() {
    const char* const text = std::getenv("DORN_KZ_USE_OLD_IRONLOSS");
    return text != nullptr && std::strtol(text, nullptr, 10) == 1;
}

// An induction machine of circuit constants has its iron loss in their "g0", whatever tables the file holds. A file of
// the higher-accuracy tables needs the loss data.
bool iron_loss_by_circuit(KZB_CALC& handle) {
    return with_model<induction>(&handle, false, [&](Calc_Eq_im_transient& model) {
        return model.inductance_type(*handle.store) != 1 && get_double(*handle.store, "InductionParam", "g0") != 0.0;
    });
}

// A number of the supply: refused while no loss depends on it.
template <class... Bodies>
int set_supply(KZB_CALC* handle, Bodies&&... bodies) {
    return guarded(status_not_applicable, [&] {
        const bool in_use = with_model<with_user_copperloss>(
            handle, true,
            [=](Calc_Eq& model) { return supply_in_use(*handle, model.user_copperloss_on(), model.ironloss_on()); },
            [=](Calc_Eq_im_transient& model) {
                return supply_in_use(*handle, model.user_copper_loss_enabled(), model.ironloss_enabled());
            });
        return in_use ? with_model<with_user_copperloss>(handle, status_not_applicable, std::forward<Bodies>(bodies)...)
                      : status_not_in_use;
    });
}

}  // namespace

int kzbcalcSetIronlossCalc(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle)) {
            return status_not_applicable;
        }
        if (serves(*handle, rotary_pm | induction) && old_ironloss_asked()) {
            handle->model->set_use_old_ironloss(1);
        }
        if (!serves(*handle, with_ironloss)) {
            return status_not_applicable;
        }
        if (!iron_loss_by_circuit(*handle) && !has_ironloss(*handle)) {
            return status_no_loss_data;
        }
        handle->ironloss_flag = 1;
        return 0;
    });
}

int kzbcalcCheckIronloss(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle) || !serves(*handle, with_ironloss)) {
            return status_not_applicable;
        }
        return has_ironloss(*handle) ? 1 : 0;
    });
}

int kzbcalcSetUserCopperlossCalc(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle) || !serves(*handle, with_user_copperloss)) {
            return status_not_applicable;
        }
        if (!has_user_copperloss(*handle)) {
            return status_no_user_copperloss;
        }
        handle->user_copperloss_flag = 1;
        return 0;
    });
}

int kzbcalcCheckUserCopperloss(KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle) || !serves(*handle, with_user_copperloss)) {
            return status_not_applicable;
        }
        return has_user_copperloss(*handle) ? 1 : 0;
    });
}

int kzbcalcSetPWMFreq(double frequency, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle)) {
            return status_not_applicable;
        }
        handle->pwm_frequency = frequency;
        handle->pwm_flag = 1;
        return 0;
    });
}

int kzbcalcSetDCVoltage(double voltage, KZB_CALC* handle) {
    return set_supply(handle, [=](auto& model) { model.set_dc_voltage(voltage); });
}

int kzbcalcSetCarrierFrequency(double frequency, KZB_CALC* handle) {
    return set_supply(handle, [=](auto& model) { model.set_carrier_frequency(frequency); });
}
