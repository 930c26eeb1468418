#include "models/control_record.h"

namespace kzb {
namespace {

constexpr const char* control = "control";
constexpr int linear_solenoid = 10004;
constexpr int linear_synchronous = 10005;

void read_double(const KZB_STORE& store, const char* key, double& value) {
    if (has_parameter(store, control, key)) {
        value = get_double(store, control, key);
    }
}

void read_flag(const KZB_STORE& store, const char* key, bool& value) {
    if (has_parameter(store, control, key)) {
        value = get_int(store, control, key) != 0;
    }
}

}  // namespace

void ControlRecord::read(const KZB_STORE& store) {
    *this = ControlRecord{};
    const int motor_type = get_int(store, control, "motor_type");
    const bool linear = motor_type == linear_solenoid || motor_type == linear_synchronous;

    read_double(store, "turns_coil1", turns_coil1);
    read_double(store, "turns_coil2", turns_coil2);
    read_double(store, "turns_coil2_fieldcoil", turns_coil2_fieldcoil);
    read_double(store, "coef_flux", coef_flux);
    read_double(store, "coef_flux_fieldcoil", coef_flux_fieldcoil);
    read_double(store, "coef_inductance", coef_inductance);
    read_double(store, linear ? "coef_force" : "coef_torque", coef_torque_or_force);
    read_double(store, "coef_magnet", coef_magnet);
    read_double(store, "coef_material", coef_material);
    read_double(store, "base_coil_temperature", base_coil_temperature);
    read_double(store, "base_field_coil_temperature", base_field_coil_temperature);
    read_double(store, "base_magnet_temperature", base_magnet_temperature);
    read_double(store, "coef_coil_temperature", coef_coil_temperature);
    read_double(store, "coef_field_coil_temperature", coef_field_coil_temperature);
    read_double(store, "coef_magnet_temperature", coef_magnet_temperature);
    read_double(store, "base_1st_coil_temperature", base_1st_coil_temperature);
    read_double(store, "base_2nd_coil_temperature", base_2nd_coil_temperature);
    read_double(store, "coef_1st_coil_temperature", coef_1st_coil_temperature);
    read_double(store, "coef_2nd_coil_temperature", coef_2nd_coil_temperature);
    read_flag(store, linear ? "coeftable_force_flag" : "coeftable_torque_flag", coef_table_flag);
}

}  // namespace kzb
