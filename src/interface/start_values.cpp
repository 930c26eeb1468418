#include "interface/start_values.h"

#include "interface/model_dispatch.h"

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

// The corrections that the models share; the torque's has a name of its own for a force.
template <class Model>
void set_corrections(Model& model, const ControlRecord& record) {
    model.set_correction_flux(record.coef_flux);
    model.set_correction_magnet(record.coef_magnet);
    model.set_correction_steel(record.coef_material);
    model.set_correction_inductance(record.coef_inductance);
}

void set_pmsm_start_values(Calc_Eq& model, const ControlRecord& record, const KZB_STORE& store) {
    model.set_application(application_of_accuracy(get_int(store, "control", "accuracy_type")));
    set_corrections(model, record);
    model.set_correction_torque(record.coef_torque_or_force);
    model.set_turns1(record.turns_coil1);
    model.set_turns2(record.turns_coil2);
    model.set_own_base_coil_temperature(record.base_coil_temperature);
    model.set_own_coil_coefficient(record.coef_coil_temperature);
    model.set_own_base_magnet_temperature(record.base_magnet_temperature);
    model.set_own_magnet_coefficient(record.coef_magnet_temperature);
}

// Corrections of the solenoid and the stepping motor stay at 1.0 whatever the file says, as established.
void set_coil_start_values(CoilMachine& model, const ControlRecord& record) {
    model.set_turns1(0.0);
    model.set_turns2(record.turns_coil2);
}

void set_reluctance_start_values(Calc_Eq_sr& model, const ControlRecord& record) {
    set_coil_start_values(model, record);
    set_corrections(model, record);
    model.set_correction_torque(record.coef_torque_or_force);
}

void set_induction_start_values(Calc_Eq_im_transient& model, const ControlRecord& record) {
    set_corrections(model, record);
    model.set_correction_torque(record.coef_torque_or_force);
    model.set_turns1(record.turns_coil1);
    model.set_turns2(record.turns_coil2);
    model.set_base_secondary_coil_temperature(record.base_2nd_coil_temperature);
    model.set_secondary_coil_coefficient(record.coef_2nd_coil_temperature);
}

void set_base_start_values(Calc& model, const ControlRecord& record, bool two_windings) {
    // The primary winding of an induction machine takes the place of the common coil.
    model.set_base_coil_temperature(two_windings ? record.base_1st_coil_temperature : record.base_coil_temperature);
    model.set_coil_temperature_coefficient(two_windings ? record.coef_1st_coil_temperature
                                                        : record.coef_coil_temperature);
    model.set_base_magnet_temperature(record.base_magnet_temperature);
    model.set_magnet_temperature_coefficient(record.coef_magnet_temperature);
}

constexpr std::size_t induction_states = 4;  // two currents and two fluxes

}  // namespace

void set_start_values(KZB_CALC& handle, Calc& model, const ControlRecord& record) {
    switch (handle.type->set) {
        case rotary_pm:
        case linear_pm:
            set_pmsm_start_values(static_cast<Calc_Eq&>(model), record, *handle.store);
            break;
        case stepping:
        case solenoid:
            set_coil_start_values(static_cast<CoilMachine&>(model), record);
            break;
        case reluctance:
            set_reluctance_start_values(static_cast<Calc_Eq_sr&>(model), record);
            break;
        case induction:
            set_induction_start_values(static_cast<Calc_Eq_im_transient&>(model), record);
            handle.state.assign(induction_states, 0.0);
            break;
        case wound_field:
            static_cast<Calc_Eq_wfsm&>(model).start_corrections(record);
            static_cast<Calc_Eq_wfsm&>(model).start_temperatures(record);
            break;
        default:
            break;
    }
    set_base_start_values(model, record, handle.type->set == induction);
}

}  // namespace kzb
