// Iron loss with its torque, and the user parameters of a step.
#include <cmath>
#include <cstdio>

#include "bench/reference/pmsm.h"

namespace kzb_reference {

double Pmsm::loss_torque(double at_position, double dt) {
    const double rpm = dt == 0.0 ? 0.0 : (at_position - position_previous) / dt / (2.0 * M_PI) * 60.0;
    const double amplitude = current_amplitude * turns2;
    if (kzb_has_parameter("loss_table", "iron_loss", store_) != 0 && use_old_ironloss == 0) {
        const double at[5] = {amplitude, current_phase, std::fabs(rpm), dc_voltage, carrier_frequency};
        eddy_loss = look("loss_table", "iron_loss", at);
        hysteresis_loss = 0.0;
    } else {
        correction_ironloss = 1.0;
        if (kzb_has_parameter("correction", "ironloss", store_) != 0) {
            const double at[2] = {std::fabs(rpm), amplitude};
            correction_ironloss = look("correction", "ironloss", at, "Linear");
        }
        eddy_loss = 0.0;
        hysteresis_loss = 0.0;
        const int materials = kzb_get_int("hysloss", "numMat", store_);
        for (int k = 1; k <= materials; ++k) {
            char id_key[32];
            std::snprintf(id_key, sizeof id_key, "matID%d", k);
            const int id = kzb_get_int("hysloss", id_key, store_);
            char eddy_key[32];
            char hys_key[32];
            std::snprintf(eddy_key, sizeof eddy_key, "eddyloss%d", id);
            std::snprintf(hys_key, sizeof hys_key, "hysloss%d", id);
            const double at[3] = {std::fabs(rpm), current_phase, amplitude};
            double eddy = look("eddyloss", eddy_key, at);
            double hys = look("hysloss", hys_key, at);
            const double least = kzb_get_table_axis_value("eddyloss", eddy_key, 3, 0, store_);
            if (least > amplitude) {
                eddy *= amplitude / least;
                hys *= amplitude / least;
            }
            eddy_loss += correction_ironloss * eddy;
            hysteresis_loss += correction_ironloss * hys;
        }
    }
    const double omega = 2.0 * M_PI * rpm / 60.0;
    return std::fabs(omega) > 1e-20 ? (eddy_loss + hysteresis_loss) / omega : 0.0;
}

void Pmsm::update_user_parameters(double angle) {
    if (!user_parameters_on) {
        return;
    }
    if ((application != 1 && application != 3) || (user_parameter_dim != 3 && user_parameter_dim != 4)) {
        user_parameters_on = false;
        return;
    }
    const int count = static_cast<int>(user_parameters.size());
    for (int k = 1; k <= count; ++k) {
        char category[64];
        char table[64];
        std::snprintf(category, sizeof category, "user_specified_parameter%d", k);
        const int id = kzb_get_int(category, "table_id", store_);
        const int port = kzb_get_int(category, "output_port_id", store_);
        std::snprintf(table, sizeof table, "user_specified_parameter_table%d", id);
        // a table stands in a category of its own name, or with all others in one
        const char* const holder = kzb_has_category(table, store_) != 0 ? table : "user_specified_parameter_table";
        double value = 0.0;
        if (user_parameter_dim == 3) {
            const double at[3] = {current_amplitude * turns2, current_phase, angle};
            value = look(holder, table, at);
        } else {
            const double at[4] = {turns2 * current[0], turns2 * current[1], turns2 * current[2], angle};
            value = look(holder, table, at);
        }
        if (port >= 1 && port <= count) {
            user_parameters[static_cast<std::size_t>(port - 1)] = value;
        }
    }
}

}  // namespace kzb_reference
