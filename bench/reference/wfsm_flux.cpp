// The table side: axis vector, flux, inductance, d and q inductance, torque, user parameters.
#include <cmath>
#include <cstdio>

#include "bench/reference/wfsm.h"

namespace kzb_reference {

namespace {

const double third_turn = 2.0 * M_PI / 3.0;

}  // namespace

WfsmAxes wfsm_park(const double* uvw, double theta) {
    WfsmAxes dq;
    dq.d = std::sqrt(2.0 / 3.0) *
           (std::cos(theta) * uvw[0] + std::cos(theta - third_turn) * uvw[1] + std::cos(theta + third_turn) * uvw[2]);
    dq.q = -std::sqrt(2.0 / 3.0) *
           (std::sin(theta) * uvw[0] + std::sin(theta - third_turn) * uvw[1] + std::sin(theta + third_turn) * uvw[2]);
    return dq;
}

void wfsm_inverse_park(const WfsmAxes& dq, double theta, double* uvw) {
    const double angles[3] = {theta, theta - third_turn, theta + third_turn};
    for (int k = 0; k < 3; ++k) {
        uvw[k] = std::sqrt(2.0 / 3.0) * (std::cos(angles[k]) * dq.d - std::sin(angles[k]) * dq.q);
    }
}

double wfsm_amplitude(const WfsmAxes& dq) {
    return std::sqrt((dq.d * dq.d + dq.q * dq.q) * 2.0 / 3.0);
}

double wfsm_current_phase(double d, double q) {
    double b = 0.0;
    if (q != 0.0) {
        b = std::atan(-d / q) * 57.29577951308232;
    } else {
        b = d > 0.0 ? -90.0 : (d < 0.0 ? 90.0 : 0.0);
    }
    if (q < 0.0) {
        b += d < 0.0 ? 180.0 : -180.0;
    }
    return b;
}

double Wfsm::look(const std::string& category, const std::string& key, const Vector& at) {
    const std::string method = interpolation;  // copied for each lookup
    Vector whole = at;
    for (const double x : at) {
        unplaced += std::isfinite(x) ? 0 : 1;
    }
    whole.resize(16, 0.0);  // coordinates that nobody gave are zero
    return lookup_(category.c_str(), key.c_str(), whole.data(), method.c_str(), store_);
}

double Wfsm::theta() const {
    return position * number_of_poles * 0.5;
}

Wfsm::Vector Wfsm::vector_of(double first, double second, double field, double angle) {
    mirrored = false;
    if (current_type == -1) {
        return {};
    }
    if (field >= field_axis_floor) {
        return {first * turns_coil2, current_type == 1 ? second : second * turns_coil2, field * turns_coil2_fieldcoil,
                angle};
    }
    mirrored = true;
    const double shifted = 360.0 / (number_of_poles * 0.5) * 0.5 + angle;
    const double size = std::fabs(field) * turns_coil2_fieldcoil;
    if (current_type == 1) {
        return {first * turns_coil2, second + 180.0, size, shifted};
    }
    return {-first * turns_coil2, -second * turns_coil2, size, shifted};
}

Wfsm::Vector Wfsm::axis_vector(double iu, double iv, double iw, double field, double at_position) {
    const double uvw[3] = {iu, iv, iw};
    const double angle = at_position * 180.0 / M_PI - angle_offset;
    const WfsmAxes dq = wfsm_park(uvw, at_position * number_of_poles * 0.5);
    if (current_type == 1) {
        return vector_of(wfsm_amplitude(dq), wfsm_current_phase(dq.d, dq.q), field, angle);
    }
    return vector_of(dq.d, dq.q, field, angle);
}

void Wfsm::update_scales() {
    flux_scale = coef_material * coef_flux * turns_coil2;
    field_flux_scale = coef_material * coef_flux_fieldcoil * turns_coil2_fieldcoil;
    torque_scale = coef_torque * coef_material;
}

void Wfsm::update_flux(const Vector& at) {
    for (int k = 0; k < 4; ++k) {
        Vector whole = at;
        whole.push_back(k);
        flux[k] = look("current_flux", "flux", whole) * (k < 3 ? flux_scale : field_flux_scale);
    }
    if (mirrored) {
        flux[3] *= -1.0;
    }
}

void Wfsm::update_inductance(const Vector& at) {
    for (int k = 0; k < 16; ++k) {
        Vector whole = at;
        whole.push_back(k);
        const int row = k % 4;
        inductance[4 * row + k / 4] =
            look("harmonic_inductance", "inductance", whole) * (row < 3 ? flux_scale : field_flux_scale);
    }
    if (mirrored) {
        for (int k = 0; k < 3; ++k) {
            inductance[12 + k] = -inductance[12 + k];
            inductance[4 * k + 3] = -inductance[4 * k + 3];
        }
    }
}

// Flux of the q axis, unscaled; first and second are amplitude and phase, or d and q current.
double Wfsm::flux_q(double first, double second, double field, double angle, double th) {
    const Vector at = vector_of(first, second, field, angle);
    double uvw[3] = {};
    for (int k = 0; k < 3; ++k) {
        Vector whole = at;
        whole.push_back(k);
        uvw[k] = look("current_flux", "flux", whole);
    }
    return wfsm_park(uvw, th).q;
}

void Wfsm::update_dq_inductance(double amplitude, double b, double field, double angle, double th) {
    const double c[3] = {std::cos(th), std::cos(th - third_turn), std::cos(th + third_turn)};
    double sum = 0.0;
    for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
            sum += c[i] * inductance[4 * i + j] * c[j];
        }
    }
    d_inductance = 2.0 / 3.0 * sum;
    const double f0 = flux_q(0.0, 0.0, field, angle, th);
    double q_raw = 0.0;
    if (amplitude >= 1e-6) {
        if (std::fabs(b - 90.0) <= 5.0 || std::fabs(b + 90.0) <= 5.0) {
            const double b1 = b + 10.0;
            const double b2 = b - 10.0;
            const double s = std::sqrt(1.5);
            const double D1 = std::cos(b1 * M_PI / 180.0) * amplitude * s;
            const double D2 = std::cos(b2 * M_PI / 180.0) * amplitude * s;
            double f1 = 0.0;
            double f2 = 0.0;
            if (current_type == 1) {
                f1 = flux_q(amplitude, b1, field, angle, th);
                f2 = flux_q(amplitude, b2, field, angle, th);
            } else if (current_type == 0) {
                f1 = flux_q(-std::sin(b1 * M_PI / 180.0) * amplitude * s, D1, field, angle, th);
                f2 = flux_q(-std::sin(b2 * M_PI / 180.0) * amplitude * s, D2, field, angle, th);
            }
            q_raw = ((f2 - f0) / D2 + (f1 - f0) / D1) * 0.5;
        } else {
            q_raw = (wfsm_park(flux, th).q - f0) / (std::cos(b * M_PI / 180.0) * amplitude * std::sqrt(1.5));
        }
    }
    q_inductance = q_raw * flux_scale;
}

void Wfsm::update_user_parameters(const Vector& at) {
    const int count = user_parameter_count();
    for (int k = 1; k <= count; ++k) {
        const std::string category = "user_specified_parameter" + std::to_string(k);
        const int id = kzb_get_int(category.c_str(), "table_id", store_);
        const int port = kzb_get_int(category.c_str(), "output_port_id", store_);
        const std::string table = "user_specified_parameter_table" + std::to_string(id);
        // a table stands in a category of its own name, or with all others in one
        const double value =
            look(kzb_has_category(table.c_str(), store_) != 0 ? table : "user_specified_parameter_table", table, at);
        if (port >= 1 && port <= count) {
            user_parameters[static_cast<std::size_t>(port - 1)] = value;
        }
    }
}

// No change of sign for a mirrored point.
double Wfsm::compute_torque(const double* i, double at_position) {
    const Vector at = axis_vector(i[0], i[1], i[2], i[3], at_position);
    return look("harmonic_torque", "torque_ibeta", at) * torque_scale;
}

}  // namespace kzb_reference
