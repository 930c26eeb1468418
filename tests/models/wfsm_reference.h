// The wound-field model written a second time, formula by formula: one lookup per component through the exported call,
// tables found by name each time, the winding system as a plain matrix. Slow and simple; results of the model are
// compared with it bit for bit.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "store/store.h"

namespace kzb_test {

struct WfsmReference {
    KZB_STORE* store;
    const char* method = "Linear";
    int current_type = 0;
    int connection = 0;  // 0 star, 1 delta
    double poles = 4.0, beta_zero = 0.0, floor = 0.0, r = 0.5, rf = 2.0;
    double turns = 1.0, field_turns = 1.0, coef_flux = 1.0, coef_field = 1.0, coef_torque = 1.0, coef_material = 1.0;
    double tolerance = 0.001, acceleration = 1.0;
    int max_iterations = 200;
    bool iron_loss = false, filter = false, loss_started = false;

    bool mirrored = false;
    double flux_scale = 1.0, field_scale = 1.0, torque_scale = 1.0;
    double time = 0.0, time_prev = 0.0, position = 0.0, position_prev = 0.0;
    double current[4] = {}, current_prev[4] = {}, terminal[4] = {};
    double flux[4] = {}, flux_prev[4] = {}, inductance[16] = {}, induced[4] = {}, neutral = 0.0;
    double iamp = 0.0, beta = 0.0, torque = 0.0, ld = 0.0, lq = 0.0, lf = 0.0;
    double eddy = 0.0, hysteresis = 0.0, iron_current[3] = {};
    double kept_resistance = 0.0, kept_current = 0.0;
    double filtered[3] = {}, filter_time[3] = {};
    int step_count = 1;
    int passes = 0;

    static constexpr double two_pi_3 = 2.0 * 3.141592653589793 / 3.0;

    double theta() const { return position * poles * 0.5; }
    double degrees() const { return position * 180.0 / 3.141592653589793 - 2.0 * beta_zero / poles; }

    static double park_d(const double* i, double th) {
        return std::sqrt(2.0 / 3.0) *
               (std::cos(th) * i[0] + std::cos(th - two_pi_3) * i[1] + std::cos(th + two_pi_3) * i[2]);
    }
    static double park_q(const double* i, double th) {
        return -std::sqrt(2.0 / 3.0) *
               (std::sin(th) * i[0] + std::sin(th - two_pi_3) * i[1] + std::sin(th + two_pi_3) * i[2]);
    }
    static void inverse(double d, double q, double th, double* i) {
        const double angles[3] = {th, th - two_pi_3, th + two_pi_3};
        for (int k = 0; k < 3; ++k) {
            i[k] = std::sqrt(2.0 / 3.0) * (std::cos(angles[k]) * d - std::sin(angles[k]) * q);
        }
    }
    static double amplitude(double d, double q) { return std::sqrt((d * d + q * q) * 2.0 / 3.0); }
    static double phase(double d, double q) {
        double b = 0.0;
        if (q != 0.0) {
            b = std::atan(-d / q) * 57.29577951308232;
        } else if (d > 0.0) {
            b = -90.0;
        } else if (d < 0.0) {
            b = 90.0;
        }
        if (q < 0.0) {
            b += d < 0.0 ? 180.0 : -180.0;
        }
        return b;
    }

    double look(const std::string& category, const std::string& key, const std::vector<double>& x) const {
        std::vector<double> padded = x;
        padded.resize(8, 0.0);
        return kzb_get_table_interpolated_value(category.c_str(), key.c_str(), padded.data(), method, store);
    }

    std::vector<double> vector_of(double a1, double a2, double field) {
        const double ang = degrees();
        const double far = 360.0 / (poles * 0.5) * 0.5 + ang;
        mirrored = !(field >= floor);
        if (current_type == 1) {
            return mirrored ? std::vector<double>{a1 * turns, a2 + 180.0, std::fabs(field) * field_turns, far}
                            : std::vector<double>{a1 * turns, a2, field * field_turns, ang};
        }
        return mirrored ? std::vector<double>{-a1 * turns, -a2 * turns, std::fabs(field) * field_turns, far}
                        : std::vector<double>{a1 * turns, a2 * turns, field * field_turns, ang};
    }
    std::vector<double> vector_at(const double* i) {
        const double d = park_d(i, theta());
        const double q = park_q(i, theta());
        return current_type == 1 ? vector_of(amplitude(d, q), phase(d, q), i[3]) : vector_of(d, q, i[3]);
    }

    void update_flux(std::vector<double> x) {
        x.push_back(0.0);
        for (int k = 0; k < 4; ++k) {
            x[4] = k;
            flux[k] = look("current_flux", "flux", x) * (k < 3 ? flux_scale : field_scale);
        }
        if (mirrored) {
            flux[3] = flux[3] * -1.0;
        }
    }
    void update_inductance(std::vector<double> x) {
        x.push_back(0.0);
        for (int k = 0; k < 16; ++k) {
            x[4] = k;
            inductance[(k % 4) * 4 + k / 4] =
                look("harmonic_inductance", "inductance", x) * (k % 4 < 3 ? flux_scale : field_scale);
        }
        if (mirrored) {
            for (const int k : {12, 13, 14, 3, 7, 11}) {
                inductance[k] = -inductance[k];
            }
        }
    }
    void scales() {
        flux_scale = coef_material * coef_flux * turns;
        field_scale = coef_material * coef_field * field_turns;
        torque_scale = coef_torque * coef_material;
    }
    double compute_torque() { return look("harmonic_torque", "torque_ibeta", vector_at(current)) * torque_scale; }

    double q_flux(double a1, double a2, double field) {
        std::vector<double> x = vector_of(a1, a2, field);
        x.push_back(0.0);
        double f[3];
        for (int k = 0; k < 3; ++k) {
            x[4] = k;
            f[k] = look("current_flux", "flux", x);
        }
        return park_q(f, theta());
    }
    void update_dq(double amp, double b, double field) {
        const double th = theta();
        const double c[3] = {std::cos(th), std::cos(th - two_pi_3), std::cos(th + two_pi_3)};
        double sum = 0.0;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 3; ++j) {
                sum += c[i] * inductance[i * 4 + j] * c[j];
            }
        }
        ld = 2.0 / 3.0 * sum;
        const double f0 = q_flux(0.0, 0.0, field);
        const double s = std::sqrt(1.5);
        const double radian = 3.141592653589793;
        double raw = 0.0;
        if (amp >= 1e-6) {
            if (std::fabs(b - 90.0) <= 5.0 || std::fabs(b + 90.0) <= 5.0) {
                const double b1 = (b + 10.0) * radian / 180.0;
                const double b2 = (b - 10.0) * radian / 180.0;
                const double d1 = std::cos(b1) * amp * s;
                const double d2 = std::cos(b2) * amp * s;
                const double f1 =
                    current_type == 0 ? q_flux(-std::sin(b1) * amp * s, d1, field) : q_flux(amp, b + 10.0, field);
                const double f2 =
                    current_type == 0 ? q_flux(-std::sin(b2) * amp * s, d2, field) : q_flux(amp, b - 10.0, field);
                raw = ((f2 - f0) / d2 + (f1 - f0) / d1) * 0.5;
            } else {
                raw = (park_q(flux, th) - f0) / (std::cos(b * radian / 180.0) * amp * s);
            }
        }
        lq = raw * flux_scale;
        lf = inductance[15];
    }

    // The winding system of a star (terminals 1 to 6) or delta (1 to 5) with a field coil, without pivoting.
    void solve(const double* v, const bool* driven, double dt, const double* e, const double* x, double* result) const {
        const int from[2][4] = {{1, 2, 3, 4}, {1, 2, 3, 4}};
        const int to[2][4] = {{5, 5, 5, 6}, {2, 3, 1, 5}};
        const int m = 4;
        const int n = connection == 0 ? 6 : 5;
        const int base = n;
        const int order = m + n;
        std::vector<std::vector<double>> a(order, std::vector<double>(order, 0.0));
        std::vector<double> b(order, 0.0);
        for (int k = 0; k < m; ++k) {
            a[m + from[connection][k] - 1][k] = 1.0;
            a[m + to[connection][k] - 1][k] = -1.0;
            a[k][m + from[connection][k] - 1] = -dt;
            a[k][m + to[connection][k] - 1] = dt;
            b[k] = -(e[k] * dt);
            a[k][k] = dt * (k < 3 ? r : rf) + 0.0;
            b[k] += x[k] * 0.0;
            for (int j = 0; j < m; ++j) {
                b[k] += x[j] * inductance[k * 4 + j];
                a[k][j] += inductance[k * 4 + j];
            }
        }
        for (int k = 0; k < 4; ++k) {
            if (driven[k]) {
                for (int row = 0; row < m; ++row) {
                    b[row] -= v[k] * a[row][m + k];
                }
            }
        }
        for (int k = 0; k < 4; ++k) {
            if (driven[k]) {
                a[m + k].assign(order, 0.0);
                a[m + k][m + k] = 1.0;
            }
        }
        for (int row = 0; row < m; ++row) {
            a[row][m + base - 1] = 0.0;
        }
        for (int c = 0; c < n; ++c) {
            a[m + base - 1][c] = 0.0;
        }
        a[m + base - 1][m + base - 1] = 1.0;
        for (int i = 0; i < order; ++i) {
            if (a[i][i] == 0.0) {
                a[i][i] = 1e-20;
            }
            for (int row = i + 1; row < order; ++row) {
                a[row][i] /= a[i][i];
                for (int c = i + 1; c < order; ++c) {
                    a[row][c] -= a[i][c] * a[row][i];
                }
                b[row] -= b[i] * a[row][i];
            }
        }
        for (int i = order - 1; i >= 0; --i) {
            for (int c = i + 1; c < order; ++c) {
                b[i] -= b[c] * a[i][c];
            }
            b[i] /= a[i][i];
        }
        for (int i = 0; i < order; ++i) {
            result[i] = b[i];
        }
    }

    bool step(const double* v, double at_position, double at_time, const double* signals) {
        position = at_position;
        time = at_time;
        if (step_count == 1) {
            time_prev = 0.0;
        }
        const double dt = time - time_prev;
        bool driven[4];
        for (int k = 0; k < 4; ++k) {
            driven[k] = signals[k] != 0.0;
        }
        double x[4], best[4] = {};
        for (int k = 0; k < 4; ++k) {
            x[k] = current_prev[k];
        }
        double best_error = 1.7976931348623157e308;
        passes = 0;
        for (int nr = 0; nr < max_iterations; ++nr) {
            ++passes;
            scales();
            const std::vector<double> point = vector_at(x);
            update_flux(point);
            update_inductance(point);
            double e[4];
            for (int k = 0; k < 4; ++k) {
                e[k] = flux[k] - flux_prev[k];
            }
            if (dt <= 0.0 || step_count == 1) {
                for (int k = 0; k < 4; ++k) {
                    current[k] = current_prev[k];
                    induced[k] = 0.0;
                }
            } else {
                for (double& value : e) {
                    value /= dt;
                }
                double y[10] = {};
                solve(v, driven, dt, e, x, y);
                for (int k = 0; k < 4; ++k) {
                    if (!std::isfinite(y[k])) {
                        return false;
                    }
                }
                for (int k = 0; k < 4; ++k) {
                    current[k] = y[k];
                    induced[k] = e[k];
                }
                if (connection == 1) {
                    const double d = park_d(current, theta());
                    const double q = park_q(current, theta());
                    inverse(d, q, theta(), current);
                } else {
                    neutral = y[8];
                }
            }
            double error = 0.0;
            for (int k = 0; k < 4; ++k) {
                const double delta = current[k] - x[k];
                current[k] = x[k] + acceleration * delta;
                error += std::fabs(delta);
            }
            if (error < best_error) {
                best_error = error;
                for (int k = 0; k < 4; ++k) {
                    best[k] = current[k];
                }
            }
            if (nr >= 1) {
                if (nr + 1 == max_iterations) {
                    for (int k = 0; k < 4; ++k) {
                        current[k] = best[k];
                    }
                    break;
                }
                if (error < tolerance) {
                    break;
                }
            }
            for (int k = 0; k < 4; ++k) {
                x[k] = current[k];
            }
        }
        for (int k = 0; k < 4; ++k) {
            terminal[k] = current[k];
        }
        if (iron_loss && !iron_step(v, dt)) {
            return false;
        }
        const double d = park_d(terminal, theta());
        const double q = park_q(terminal, theta());
        iamp = amplitude(d, q);
        beta = phase(d, q);
        const std::vector<double> point = vector_at(terminal);
        update_flux(point);
        update_inductance(point);
        torque = compute_torque();
        update_dq(iamp, beta, current[3]);
        return true;
    }

    double rpm(double dt) const { return dt == 0.0 ? 0.0 : (position - position_prev) / dt / 6.283185307179586 * 60.0; }

    bool iron_step(const double* v, double dt) {
        for (int k = 0; k < 3; ++k) {
            current[k] = terminal[k] - iron_current[k];
        }
        const double d = park_d(terminal, theta());
        const double q = park_q(terminal, theta());
        const double speed = rpm(dt);
        double seen[3] = {v[0], v[1], v[2]};
        if (filter && speed > 0.0) {
            const double c = speed * poles * 0.5 / 60.0 * 5.0;
            for (int k = 0; k < 3; ++k) {
                if (time == 0.0) {
                    filtered[k] = 0.0;
                } else {
                    const double a = 1 / (c * 0.8) * 0.8;
                    const double h = time - filter_time[k];
                    filtered[k] = (a * filtered[k] / h + v[k]) / (a / h + 1);
                }
                filter_time[k] = time;
                seen[k] = filtered[k];
            }
        }
        const double ud = park_d(seen, theta()) - r * d;
        const double uq = park_q(seen, theta()) - r * q;
        double req = 0.0;
        const double a = loss(d, q, current[3], speed, amplitude(ud, uq), req);
        const double vb = phase(ud, uq) * 3.141592653589793 / 180.0;
        const double s = std::sqrt(1.5) * a;
        double phases[3];
        inverse(-std::sin(vb) * s, std::cos(vb) * s, theta(), phases);
        for (const double value : phases) {
            if (!std::isfinite(value)) {
                return false;
            }
        }
        for (int k = 0; k < 3; ++k) {
            iron_current[k] = phases[k];
        }
        return true;
    }

    double loss(double d, double q, double field, double speed, double vamp, double& req) {
        const double amp = amplitude(d, q);
        const double b = phase(d, q);
        std::vector<double> x{std::fabs(speed)};
        if (current_type == 0) {
            x.insert(x.end(), {field < 0.0 ? -q : q, field < 0.0 ? -d : d, std::fabs(field) * field_turns});
        } else {
            x.insert(x.end(), {field < 0.0 ? b + 180.0 : b, amp, std::fabs(field)});
        }
        eddy = 0.0;
        hysteresis = 0.0;
        const int materials = kzb_get_int("hysloss", "numMat", store);
        for (int i = 1; i <= materials; ++i) {
            const std::string id = std::to_string(kzb_get_int("hysloss", ("matID" + std::to_string(i)).c_str(), store));
            double e = look("eddyloss", "eddyloss" + id, x);
            double h = look("hysloss", "hysloss" + id, x);
            const double node = kzb_get_table_axis_value("eddyloss", ("eddyloss" + id).c_str(), 3, 0, store);
            if (node > amp) {
                e *= amp / node;
                h *= amp / node;
            }
            eddy += e;
            hysteresis += h;
        }
        double total = eddy + hysteresis;
        if (std::fabs(vamp) > 1e-5) {
            loss_started = true;
        }
        req = 0.0;
        if (vamp == 0.0 || !loss_started || total == 0.0) {
            return 0.0;
        }
        total /= 3.0;
        req = vamp * vamp / total * 0.5;
        return req == 0.0 ? 0.0 : 2.0 * total / vamp;
    }

    void evaluate(const double* i, double at_position, double at_time) {
        position = at_position;
        time = at_time;
        for (int k = 0; k < 4; ++k) {
            current[k] = i[k];
        }
        scales();
        const std::vector<double> point = vector_at(current);
        update_flux(point);
        update_inductance(point);
        double d = park_d(current, theta());
        double q = park_q(current, theta());
        update_dq(amplitude(d, q), phase(d, q), current[3]);
        if (iron_loss) {
            double req = 0.0;
            const double a = loss(d, q, current[3], rpm(time - time_prev), kept_resistance * kept_current, req);
            kept_resistance = req;
            kept_current = a;
            double phases[3];
            inverse(0.0, std::sqrt(1.5) * a, theta(), phases);
            for (int k = 0; k < 3; ++k) {
                current[k] = current[k] - phases[k];
            }
        }
        for (int k = 0; k < 4; ++k) {
            terminal[k] = current[k];
        }
        d = park_d(terminal, theta());
        q = park_q(terminal, theta());
        iamp = amplitude(d, q);
        beta = phase(d, q);
        torque = compute_torque();
    }

    void accept() {
        time_prev = time;
        position_prev = position;
        for (int k = 0; k < 4; ++k) {
            current_prev[k] = terminal[k];
            flux_prev[k] = flux[k];
        }
        ++step_count;
    }
};

}  // namespace kzb_test
