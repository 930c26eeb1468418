// Exported calls: interpolation, accuracy, skew and connection; limits of the displacement; user inputs.
#include "KZBCalculator/kzbcalc.h"
#include "interface/file_data.h"
#include "interface/value_calls.h"

using namespace kzb;

namespace {

constexpr const char* interpolation_names[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};
constexpr int interpolation_count = 5;

bool is_between(int value, int low, int high) {
    return value >= low && value <= high;
}

// Application kind of an accuracy that the caller asks for, or the status that refuses it.
struct Accuracy {
    int kind;
    int status;
};

Accuracy accuracy_of_file(const KZB_STORE& store, int type) {
    const int offered = get_int(store, "control", "accuracy_type");
    switch (type) {
        case 0:
            return {ld_lq, offered == 1 || offered == 4 || offered == 7 ? 0 : status_accuracy_0};
        case 1:
            return {harmonic, is_between(offered, 3, 7) ? 0 : status_accuracy_1};
        case 2:
            if (!is_between(offered, 5, 7)) {
                return {flux_integral, status_accuracy_2};
            }
            if (!has_category(store, "flux_table")) {
                return {flux_integral, status_no_flux_table};
            }
            return {flux_integral, has_category(store, "pmsm_torque") ? status_accuracy_2 : 0};
        default:
            return {simple_harmonic, status_accuracy_unknown};
    }
}

}  // namespace

int kzbcalcSetInterpolationType(int type, KZB_CALC* handle) {
    return set_option<every_type>(handle, [=](Calc& model) {
        if (!is_between(type, 0, interpolation_count - 1)) {
            return status_interpolation;
        }
        model.set_interpolation(interpolation_names[type]);
        return 0;
    });
}

int kzbcalcSetAccuracyType(int type, KZB_CALC* handle) {
    return set_option<rotary_pm>(handle, [=](Calc_Eq& model) {
        const Accuracy accuracy = accuracy_of_file(*handle->store, type);
        if (accuracy.status == 0) {
            model.set_application(accuracy.kind);
        }
        return accuracy.status;
    });
}

int kzbcalcSetSkewParameter(int type_a, int type_b, double angle_a, double angle_b, int steps_a, int steps_b,
                            KZB_CALC* handle) {
    return set_option<rotary_pm>(handle, [=](Calc_Eq& model) {
        model.set_skew({type_a, type_b, angle_a, angle_b, steps_a, steps_b});
    });
}

int kzbcalcSetConnectionType(int type, KZB_CALC* handle) {
    return guarded(status_not_applicable, [&]() -> int {
        if (!has_model(handle)) {
            return status_not_applicable;
        }
        if (static_cast<unsigned>(type) > 1) {
            return status_connection;
        }
        return with_model<permanent_magnet | induction | wound_field>(handle, status_not_applicable,
                                                                      [=](auto& model) { model.set_connection(type); });
    });
}

double kzbcalcGetUpperLimitDisplacement(KZB_CALC* handle) {
    return get_value<solenoid>(
        handle, [=](Calc_Eq_solenoid&) { return get_double(*handle->store, "parameter", "DispLimitMax"); });
}

double kzbcalcGetLowerLimitDisplacement(KZB_CALC* handle) {
    return get_value<solenoid>(
        handle, [=](Calc_Eq_solenoid&) { return get_double(*handle->store, "parameter", "DispLimitMin"); });
}

int kzbcalcSetUserInputParameter(int index, double value, KZB_CALC* handle) {
    return set_option<generic>(handle, [=](Calc_Eq_generic& model) {
        if (index < 1 || static_cast<std::size_t>(index) > handle->user_input.size()) {
            return status_no_user_copperloss;
        }
        if (!has_loss_table(*handle) || !model.iron_loss_enabled()) {
            return status_not_in_use;
        }
        handle->user_input[static_cast<std::size_t>(index) - 1] = value;
        return 0;
    });
}

int kzbcalcGetNumberOfUserInputParameters(KZB_CALC* handle) {
    return set_option<generic>(handle,
                               [=](const Calc_Eq_generic&) { return static_cast<int>(handle->user_input.size()); });
}
