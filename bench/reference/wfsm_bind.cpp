// What an opened calculator reads from category "control", and what the model takes from the store before stepping.
#include "bench/reference/wfsm.h"

namespace kzb_reference {

namespace {

double control_value(const char* key, double absent, const Store& store) {
    return kzb_has_parameter("control", key, store) != 0 ? kzb_get_double("control", key, store) : absent;
}

double ratio(double turns, double of_file) {
    return turns == 0.0 || of_file == 0.0 ? 1.0 : turns / of_file;
}

}  // namespace

Wfsm::Wfsm(Store& store, int calc_mode, Lookup lookup, const WfsmIteration& iteration)
    : store_(store),
      lookup_(lookup),
      calc_mode_(calc_mode),
      tolerance(iteration.tolerance),
      max_iterations(iteration.max_iterations),
      acceleration(iteration.acceleration) {
    coef_flux = control_value("coef_flux", 1.0, store);
    coef_flux_fieldcoil = control_value("coef_flux_fieldcoil", 1.0, store);
    coef_torque = control_value("coef_torque", 1.0, store);
    coef_material = control_value("coef_material", 1.0, store);
    turns_coil2 = control_value("turns_coil2", 0.0, store);
    turns_coil2_fieldcoil = control_value("turns_coil2_fieldcoil", 0.0, store);
    base_coil_temperature = control_value("base_coil_temperature", 293.15, store);
    base_field_coil_temperature = control_value("base_field_coil_temperature", 293.15, store);
    coil_coefficient = control_value("coef_coil_temperature", 3810.0, store);
    field_coil_coefficient = control_value("coef_field_coil_temperature", 3810.0, store);
}

void Wfsm::bind() {
    bound_ = true;
    number_of_poles = kzb_get_int("control", "number_of_poles", store_);
    const int type = kzb_get_int("control", "current_type", store_);
    current_type = type == 0 || type == 1 ? type : -1;
    beta_zero = kzb_get_double("control", "beta_zero", store_);
    angle_offset = 2.0 * beta_zero / number_of_poles;
    if (kzb_has_category("hysloss", store_) == 0 || kzb_has_category("eddyloss", store_) == 0) {
        iron_loss_on = false;
        voltage_filter_on = false;
        pwm_frequency = 0.0;
    }
    field_axis_floor = kzb_get_table_axis_value("current_flux", "flux", 3, 0, store_);
    if (field_axis_floor > 0.0) {
        field_axis_floor = 0.0;
    }
    mirrored = false;
    user_parameters.clear();
    if (kzb_has_category("user_specified_parameter_table", store_) != 0) {
        const int count = kzb_get_int("num_user_specified_parameter", "num_user_specified_parameter", store_);
        user_parameters.assign(static_cast<std::size_t>(count > 0 ? count : 0), 0.0);
    }
    turns_coil2 = ratio(turns_coil2, kzb_get_double("control", "turns_in_coil", store_));
    turns_coil2_fieldcoil = ratio(turns_coil2_fieldcoil, kzb_get_double("control", "turns_in_field_coil", store_));
    if (R == 0.0) {
        R = kzb_get_double("parameter", "RU", store_);
    }
    if (Rf == 0.0) {
        Rf = kzb_get_double("parameter", "RF", store_);
    }
    if (connection_type < 0) {
        connection_type = kzb_has_parameter("control", "Winding_Pattern_Flag", store_) != 0
                              ? kzb_get_int("control", "Winding_Pattern_Flag", store_)
                              : kzb_get_int("settings", "Winding_Pattern_Flag", store_);
    }
    if (connection_type == 0 || connection_type == 1) {
        network.build(13 + connection_type, R, Rf);
    }
}

void Wfsm::set_data() {
    bind();
    iron_loss_on = ironloss_flag_ == 1;
    voltage_filter_on = iron_loss_on && pwm_flag_ == 1;
    pwm_frequency = pwm_frequency_;
}

}  // namespace kzb_reference
