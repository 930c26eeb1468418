// The parameters of a sample: inductances and resistances from the tables, temperature, the speed from past angles.
#include <cmath>

#include "bench/reference/im.h"

namespace kzb_reference {

namespace {

constexpr const char* tables = "InductionParam_HigherAccuracy";
constexpr double two_pi = 6.283185307179586;

}  // namespace

double Induction::look(const char* category, const char* key, const double* values) {
    const std::string method = interpolation;  // copied for each lookup
    return lookup_(category, key, values, method.c_str(), store_);
}

double Induction::coil_factor() const {
    if (!temperature_correction) {
        return 1.0;
    }
    return (coil_temperature - base_coil_temperature) * (coil_temperature_coefficient * 1e-6) + 1.0;
}

double Induction::slip_hz() const {
    return std::fabs(slip_omega) < 1e-20 ? 0.0 : slip_omega / two_pi;
}

void Induction::parameter_update() {
    update_from_tables();
    Rs = Rs_DC;
    Rr = Rr_base;
    if (temperature_correction) {
        Rs *= coil_factor();
        Rr *= 1.0 +
              heat_term(secondary_coil_coefficient, 1e-6, secondary_coil_temperature, base_secondary_coil_temperature);
    }
    R_equivalent = equivalent_resistance();
}

void Induction::update_from_tables() {
    if (inductance_type == 0) {
        for (int i = 0; i < 2; ++i) {
            for (int j = 0; j < 2; ++j) {
                const int index[2] = {i, j};
                table_store_at(*find_table(tables, "R2_table", store_), index, Rr_base);
            }
        }
    }
    const double at[2] = {slip_hz(), primary_current};
    m_Ls = look(tables, "L11_table", at);
    m_Msr = look(tables, "M12_table", at);
    m_Mrs = look(tables, "M21_table", at);
    m_Lr = look(tables, "L22_table", at);
    Rr_base = look(tables, "R2_table", at);
    flux_angle += (electrical_speed() + slip_omega) * (time - time_prev);
}

double Induction::equivalent_resistance() {
    if (!user_copper_loss_enabled || kzb_has_category("equivalent_resistance_table", store_) == 0) {
        return 0.0;
    }
    const TwoAxis i1 = clarke(current_accepted);
    const double amplitude = std::sqrt(2.0 / 3.0) * std::sqrt(i1.a * i1.a + i1.b * i1.b);
    const double at[5] = {amplitude, std::fabs(slip_hz()), std::fabs(electrical_speed() / two_pi), dc_voltage,
                          carrier_frequency};
    double value = look("equivalent_resistance_table", "copper_loss", at);
    if (temperature_correction) {
        value *= coil_factor();
    }
    return value;
}

double Induction::electrical_speed() const {
    Pair from = {0.0, 0.0};
    for (int i = static_cast<int>(angle_history.size()) - 1; i >= 0; --i) {
        const Pair& pair = angle_history[static_cast<std::size_t>(i)];
        if (pair.time < time - 1e-15) {
            from = pair;
            break;
        }
    }
    const double h = time - from.time;
    return h > 0.0 ? (theta - from.theta) / h : 0.0;
}

void Induction::push_angle(double t, double displacement) {
    for (const Pair& pair : angle_history) {
        if (std::fabs(pair.time - t) < 1e-15) {
            return;
        }
    }
    if (angle_history.size() == 3) {
        angle_history.erase(angle_history.begin());
    }
    angle_history.push_back({t, number_of_poles * 0.5 * displacement});
}

void Induction::first_step_rule() {
    if (step_count != 1) {
        return;
    }
    for (int i = 0; i < 6; ++i) {
        if (initial_set[i] == 0) {
            current_accepted[i] = 0.0;
        }
    }
    theta_prev = theta;
    flux_angle = 0.0;
    if (!initial_time_set) {
        time_prev = 0.0;
    }
}

TwoAxis Induction::source_voltage() const {
    TwoAxis v = clarke(voltage_);
    if (connection_type == 1) {
        const double r = std::sqrt(3.0) * std::sqrt(v.a * v.a + v.b * v.b);
        const double angle = std::atan2(v.a, v.b) - 0.5235987755982988;
        v.a = r * std::sin(angle);
        v.b = r * std::cos(angle);
    }
    return v;
}

}  // namespace kzb_reference
