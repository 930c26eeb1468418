// What an opened calculator reads from category "control", and what the model takes from the store before stepping.
#include "bench/reference/pmsm.h"

namespace kzb_reference {

namespace {

double control_value(const char* key, double absent, const Store& store) {
    return kzb_has_parameter("control", key, store) != 0 ? kzb_get_double("control", key, store) : absent;
}

int kind_of_accuracy(int accuracy_type) {
    switch (accuracy_type) {
        case 1:
            return 2;
        case 3:
        case 4:
        case 6:
        case 7:
            return 1;
        case 5:
            return 3;
        default:
            return 0;
    }
}

}  // namespace

Pmsm::Pmsm(Store& store, int calc_mode, Lookup lookup)
    : store_(store), lookup_(lookup), motor_type_(kzb_get_int("control", "motor_type", store)), calc_mode_(calc_mode) {
    application = kind_of_accuracy(kzb_get_int("control", "accuracy_type", store));
    correction_flux = control_value("coef_flux", 1.0, store);
    correction_magnet = control_value("coef_magnet", 1.0, store);
    correction_steel = control_value("coef_material", 1.0, store);
    correction_inductance = control_value("coef_inductance", 1.0, store);
    correction_torque = control_value(motor_type_ == 10005 ? "coef_force" : "coef_torque", 1.0, store);
    turns1 = control_value("turns_coil1", 0.0, store);
    turns2 = control_value("turns_coil2", 0.0, store);
    base_coil_temperature = control_value("base_coil_temperature", 293.15, store);
    base_magnet_temperature = control_value("base_magnet_temperature", 293.15, store);
    coil_coefficient = control_value("coef_coil_temperature", 3810.0, store);
    magnet_coefficient = control_value("coef_magnet_temperature", -0.11, store);
}

double Pmsm::look(const char* category, const char* key, const double* values) {
    const std::string method = interpolation;  // copied for each lookup
    return lookup_(category, key, values, method.c_str(), store_);
}

double Pmsm::look(const char* category, const char* key, const double* values, const char* method) {
    return lookup_(category, key, values, method, store_);
}

void Pmsm::bind_torque() {
    if (kzb_has_category("harmonic_torque", store_) != 0) {
        torque_category = "harmonic_torque";
        torque_table = "torque_ibeta";
        torque_dim = 3;
    } else if (kzb_has_category("pmsm_torque", store_) != 0) {
        torque_category = "pmsm_torque";
        torque_table = "torque_ibeta";
        torque_dim = 4;
    } else {
        torque_dim = 0;
    }
}

void Pmsm::bind_application() {
    if (application == 1 && kzb_has_application("PMSM", "Harmonic", store_) != 0) {
        bind_torque();
        inductance_dim = kzb_get_table_dim("harmonic_inductance", "inductance", store_);
    } else if (application == 0 && kzb_has_application("PMSM", "SimpleHarmonic", store_) != 0) {
        torque_category = "torque";
        torque_table = "torque_ibeta";
        torque_dim = kzb_get_table_dim("torque", "torque_ibeta", store_);
        inductance_dim = kzb_get_table_dim("inductance", "inductance", store_);
        minimum_current = kzb_get_table_axis_value("inductance", "inductance", 1, 0, store_);
    } else if (application == 2 && kzb_has_application("PMSM", "LdLq", store_) != 0) {
        if (kzb_has_parameter("d_flux", "d_flux", store_) != 0) {
            d_flux = kzb_get_double("d_flux", "d_flux", store_);
        }
    } else if (kzb_has_application("LinearSynchronous", "", store_) != 0) {
        application = 0;
        is_linear = true;
        torque_category = "distance_force";
        torque_table = "force";
        torque_dim = kzb_get_table_dim("distance_force", "force", store_);
        inductance_dim = kzb_get_table_dim("inductance", "inductance", store_);
    } else if (application == 3 && kzb_has_application("PMSM", "FluxIntegralDQTheta", store_) != 0) {
        bind_torque();
        const int dim = kzb_get_table_dim("current_table", "id", store_);
        inductance_dim = dim == 3 ? 4 : (dim == 4 ? 5 : inductance_dim);
    }
}

void Pmsm::bind_user_parameters() {
    user_parameters_on = kzb_has_category("user_specified_parameter_table", store_) != 0 &&
                         (application == 1 || application == 3) && !is_linear;
    if (!user_parameters_on) {
        return;
    }
    const int count = kzb_get_int("num_user_specified_parameter", "num_user_specified_parameter", store_);
    const char* const first = "user_specified_parameter_table1";
    user_parameter_dim = kzb_get_table_dim(
        kzb_has_category(first, store_) != 0 ? first : "user_specified_parameter_table", first, store_);
    user_parameters.assign(static_cast<std::size_t>(count > 0 ? count : 0), 0.0);
}

void Pmsm::set_data(bool ironloss, bool user_copperloss) {
    bind_application();
    ironloss_on = ironloss && (kzb_has_category("hysloss", store_) != 0 || kzb_has_category("eddyloss", store_) != 0 ||
                               (use_old_ironloss == 0 && kzb_has_category("loss_table", store_) != 0));
    bind_user_parameters();
    if (connection == -1) {
        connection = kzb_has_parameter("control", "Winding_Pattern_Flag", store_) != 0
                         ? kzb_get_int("control", "Winding_Pattern_Flag", store_)
                         : kzb_get_int("settings", "Winding_Pattern_Flag", store_);
    }
    if (resistance_base == 0.0) {
        resistance_base = kzb_get_double("parameter", "RU", store_);
    }
    winding.build(connection, resistance_base);
    beta_zero = kzb_get_double("control", "beta_zero", store_);
    number_of_poles = kzb_get_int("control", "number_of_poles", store_);
    if (motor_type_ != 10000) {
        is_linear = true;
        electrical_length = kzb_get_double("control", "electrical_length", store_);
    }
    angle_offset = is_linear ? beta_zero / 360.0 * electrical_length : 2.0 * beta_zero / number_of_poles;
    for (int k = 0; k < 3; ++k) {
        resistance[k] = winding.resistance_of(k + 1);
    }
    const double turns = kzb_get_double("control", "turns_in_coil", store_);
    if (turns == 0.0) {
        turns1 = 1.0;
        turns2 = 1.0;
    } else {
        turns1 = turns1 == 0.0 ? 1.0 : turns1 / turns;
        turns2 = turns2 == 0.0 ? 1.0 : turns2 / turns;
    }
    if (!is_linear) {
        leakage_inductance[0] = kzb_get_double("parameter", "leakage_inductance_u", store_);
        leakage_inductance[1] = kzb_get_double("parameter", "leakage_inductance_v", store_);
        leakage_inductance[2] = kzb_get_double("parameter", "leakage_inductance_w", store_);
    }
    user_copperloss_flag_ = user_copperloss;
    user_copperloss_on = user_copperloss;
}

}  // namespace kzb_reference
