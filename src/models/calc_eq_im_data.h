// What the induction model holds, by kind of data. Names with `_prev` hold the value at the accepted previous step.
// Groups of six are Iu_s, Iv_s, Iw_s, Iu_r, Iv_r, Iw_r: stator (primary), then rotor (secondary).
#pragma once

#include <array>
#include <string>

#include "models/clarke.h"

namespace kzb {

using SixCurrents = std::array<double, 6>;

// What the file gives; inductance_type of the model.
enum ImInductanceType { inductance_untested = -1, inductance_constants = 0, inductance_tables = 1 };

enum ImConnection { im_connection_unset = -1, im_connection_star = 0, im_connection_delta = 1 };

struct ImMachine {
    int inductance_type = inductance_untested;
    int connection_type = im_connection_unset;
    int number_of_poles = 0;
    std::string application;  // the model word handed to the store beside "IM"
    bool ironloss_enabled = false;
    bool user_copper_loss_enabled = false;
    double dc_voltage = 0.0;         // V
    double carrier_frequency = 0.0;  // Hz
};

struct ImInductances {
    double m_Ls = 0.0;   // L11, H
    double m_Msr = 0.0;  // M12
    double m_Lr = 0.0;   // L22
    double m_Mrs = 0.0;  // M21
};

struct ImResistances {
    double Rs_DC = 0.0;  // Ohm, before temperature
    double Rs = 0.0;
    double R_equivalent = 0.0;  // of the additional copper loss
    double Rr_base = 0.0;       // before temperature
    double Rr = 0.0;
};

struct ImStep {
    SixCurrents current_latest{};
    SixCurrents current_accepted{};
    SixCurrents current_out{};
    std::array<bool, 6> initial_set{};
    double primary_current = 0.0;  // A, peak phase value
    double secondary_current = 0.0;
    double torque = 0.0;  // N*m
    double position = 0.0;
    double theta = 0.0;  // electrical rad
    double theta_prev = 0.0;
    double slip_omega = 0.0;  // rad/s
    double flux_angle = 0.0;  // rad
    int step_count = 1;
    double time = 0.0;  // s
    double time_prev = 0.0;
    bool initial_time_set = false;
    ImInductances inductances;
    ImInductances inductances_prev;
    double secondary_flux_d = 0.0;  // Vs
    double secondary_flux_q = 0.0;
    Phases flux_total{};
    Phases flux_total_prev{};
    Phases voltage_induced{};
};

struct ImLosses {
    double iron_loss = 0.0;  // W
    double primary_copper_loss = 0.0;
    double user_copper_loss = 0.0;
    double secondary_copper_loss = 0.0;
};

// Of the secondary coil; the primary coil's are those of Calc.
struct ImTemperatures {
    double secondary_coil_temperature = 293.15;       // K
    double base_secondary_coil_temperature = 293.15;  // K
    double secondary_coil_coefficient = 3810.0;       // ppm per K
};

}  // namespace kzb
