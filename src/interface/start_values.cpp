#include "interface/start_values.h"

#include "models/calc_eq.h"

namespace kzb {
namespace {

// "accuracy_type" of the file as an application kind of the model; any other value leaves kind 0.
int application_of_accuracy(int accuracy_type) {
    switch (accuracy_type) {
        case 1:
            return ld_lq;
        case 3:
        case 4:
        case 6:
        case 7:
            return harmonic;
        case 5:
            return flux_integral;
        default:
            return simple_harmonic;
    }
}

void set_base_start_values(Calc& model, const ControlRecord& record) {
    model.set_base_coil_temperature(record.base_coil_temperature);
    model.set_coil_temperature_coefficient(record.coef_coil_temperature);
    model.set_base_magnet_temperature(record.base_magnet_temperature);
    model.set_magnet_temperature_coefficient(record.coef_magnet_temperature);
}

void set_pmsm_start_values(Calc_Eq& model, const ControlRecord& record, const KZB_STORE& store) {
    model.set_application(application_of_accuracy(get_int(store, "control", "accuracy_type")));
    model.set_correction_flux(record.coef_flux);
    model.set_correction_magnet(record.coef_magnet);
    model.set_correction_steel(record.coef_material);
    model.set_correction_inductance(record.coef_inductance);
    model.set_correction_torque(record.coef_torque_or_force);
    model.set_turns1(record.turns_coil1);
    model.set_turns2(record.turns_coil2);
    model.set_own_base_coil_temperature(record.base_coil_temperature);
    model.set_own_coil_coefficient(record.coef_coil_temperature);
    model.set_own_base_magnet_temperature(record.base_magnet_temperature);
    model.set_own_magnet_coefficient(record.coef_magnet_temperature);
}

}  // namespace

void set_start_values(const MotorType& type, Calc& model, const ControlRecord& record, const KZB_STORE& store) {
    if ((type.set & permanent_magnet) != 0) {
        set_pmsm_start_values(static_cast<Calc_Eq&>(model), record, store);
    }
    set_base_start_values(model, record);
}

}  // namespace kzb
