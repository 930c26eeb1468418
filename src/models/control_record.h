// ControlRecord: the corrections and temperature data that a file states in category "control".
//
// Read once when a calculator is opened; an absent key leaves the default below. Turns are numbers of turns,
// corrections plain factors, temperatures in K, coil coefficients in ppm per K, the magnet coefficient in percent per
// K.
#pragma once

#include "store/store.h"

namespace kzb {

struct ControlRecord {
    double turns_coil1 = 0.0;
    double turns_coil2 = 0.0;
    double turns_coil2_fieldcoil = 0.0;
    double coef_flux = 1.0;
    double coef_flux_fieldcoil = 1.0;
    double coef_inductance = 1.0;
    double coef_torque_or_force = 1.0;  // "coef_force" of a linear machine, else "coef_torque"
    double coef_magnet = 1.0;
    double coef_material = 1.0;
    double base_coil_temperature = 293.15;
    double base_field_coil_temperature = 293.15;
    double base_magnet_temperature = 293.15;
    double coef_coil_temperature = 3810.0;
    double coef_field_coil_temperature = 3810.0;
    double coef_magnet_temperature = -0.11;
    double base_1st_coil_temperature = 293.15;
    double base_2nd_coil_temperature = 293.15;
    // Kept at exactly 1.0, unlike the other coil coefficients: the induction model takes them as they are.
    double coef_1st_coil_temperature = 1.0;
    double coef_2nd_coil_temperature = 1.0;
    bool coef_table_flag = false;  // "coeftable_force_flag" of a linear machine, else "coeftable_torque_flag"

    // Reads every field; what the file does not state takes its default.
    void read(const KZB_STORE& store);
};

}  // namespace kzb
