// Binding of Calc_Eq_wfsm to a store: application, fixed data, turns, resistances and the winding network.
//
// Nothing here reports an error: what the file does not have stays 0 or 0.0.
#include "models/calc_eq_wfsm.h"
#include "models/turns.h"
#include "store/table_calls.h"

namespace kzb {
namespace {

constexpr const char* control = "control";
constexpr int first_pattern = 13;  // star with a field coil; delta with a field coil is the next

}  // namespace

bool Calc_Eq_wfsm::bind(KZB_STORE& store) {
    store_ = &store;
    // Two stores may have the same revision: nothing that another one answered is kept.
    tables_ = WfsmTables{};
    material_losses_ = MaterialLosses{};
    const bool offered = has_application(store, "WFSM", "Harmonic");
    if (offered) {
        kzb::set_application(store, "WFSM", "Harmonic");
        machine_.axis_count = 4;
    }
    read_machine();
    if (!has_category(store, "hysloss") || !has_category(store, "eddyloss")) {
        losses_.iron_loss_on = false;
        losses_.voltage_filter_on = false;
        losses_.pwm_frequency = 0.0;
    }
    read_field_axis();
    user_parameters_.reset();
    if (has_category(store, "user_specified_parameter_table")) {
        user_parameters_.bind(store);
    }
    corrections_.turns_coil2 = turns_ratio(corrections_.turns_coil2, get_double(store, control, "turns_in_coil"));
    corrections_.turns_coil2_fieldcoil =
        turns_ratio(corrections_.turns_coil2_fieldcoil, get_double(store, control, "turns_in_field_coil"));
    build_network();
    return offered;
}

void Calc_Eq_wfsm::read_machine() {
    machine_.number_of_poles = get_int(*store_, control, "number_of_poles");
    const int type = get_int(*store_, control, "current_type");
    machine_.current_type = type == wfsm_axes_dq || type == wfsm_axes_polar ? type : wfsm_axes_none;
    machine_.beta_zero = get_double(*store_, control, "beta_zero");
    machine_.angle_offset = 2.0 * machine_.beta_zero / machine_.number_of_poles;
}

void Calc_Eq_wfsm::read_field_axis() {
    const double first = axis_value_or_error(*store_, "current_flux", "flux", 3, 0);
    machine_.field_axis_floor = first > 0.0 ? 0.0 : first;
    step_.mirrored = false;
}

void Calc_Eq_wfsm::build_network() {
    if (machine_.R == 0.0) {
        machine_.R = get_double(*store_, "parameter", "RU");
    }
    if (machine_.Rf == 0.0) {
        machine_.Rf = get_double(*store_, "parameter", "RF");
    }
    if (machine_.connection_type < 0) {
        const char* const key = "Winding_Pattern_Flag";
        machine_.connection_type = get_int(*store_, has_parameter(*store_, control, key) ? control : "settings", key);
    }
    network_ = WindingNetwork{};
    if (machine_.connection_type == wfsm_star || machine_.connection_type == wfsm_delta) {
        network_.build(first_pattern + machine_.connection_type, machine_.R, machine_.Rf);
    }
}

}  // namespace kzb
