// Machines of separate coils for tests, made in memory, and what their tests share.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "models/calc_eq_sm.h"
#include "models/calc_eq_solenoid.h"
#include "models/calc_eq_sr.h"
#include "pmsm_files.h"
#include "support/files.h"

namespace kzb_test {

using Formula = std::function<double(const std::vector<double>&)>;

// Axis of component numbers; of one component, one node.
inline Axis coil_axis(int count) {
    return count == 1 ? Axis{{0.0}, false} : components(count);
}

// "inductance" by |current|, position and element; "torque_ibeta" by position and current.
inline void sr_file(KZB_STORE& store, int phases, const Formula& inductance, const Formula& torque,
                    const Axis& positions = nodes(-1000.0, 1000.0, 3), int poles = 8) {
    kzb::put_int(store, "control", "motor_type", 10007 + phases);
    kzb::put_int(store, "control", "number_of_poles", poles);
    kzb::put_double(store, "parameter", "RU", 0.5);
    table(store, "inductance", "inductance", {nodes(0.0, 1000.0, 2), positions, coil_axis(phases * phases)},
          inductance);
    table(store, "torque", "torque_ibeta", {positions, nodes(-1000.0, 1000.0, 2)}, torque);
}

// "inductance" by |current|, position and element, "flux" by position and coil, "force" by position and current.
inline void solenoid_file(KZB_STORE& store, const Formula& inductance, const Formula& flux, const Formula& force,
                          const Axis& positions = nodes(-1.0, 1.0, 3)) {
    kzb::put_int(store, "control", "motor_type", 10004);
    kzb::put_double(store, "parameter", "RA", 0.5);
    table(store, "inductance", "inductance", {nodes(0.0, 1000.0, 2), positions, coil_axis(1)}, inductance);
    table(store, "distance_flux", "flux", {positions, coil_axis(1)}, flux);
    table(store, "distance_force", "force", {positions, nodes(-1000.0, 1000.0, 2)}, force);
}

// "inductance" by |current|, position and element, "flux" by position and coil, torque by current, position, current.
inline void stepper_file(KZB_STORE& store, const Formula& inductance, const Formula& flux, const Formula& torque,
                         const Axis& positions = nodes(-1000.0, 1000.0, 3), int poles = 4) {
    kzb::put_int(store, "control", "motor_type", 10003);
    kzb::put_int(store, "control", "number_of_poles", poles);
    kzb::put_double(store, "parameter", "RA+", 0.5);
    table(store, "inductance", "inductance", {nodes(0.0, 1000.0, 2), positions, coil_axis(16)}, inductance);
    table(store, "mag_flux", "flux", {positions, coil_axis(4)}, flux);
    table(store, "torque", "torque_ibeta", {nodes(-1000.0, 1000.0, 2), positions, nodes(-1000.0, 1000.0, 2)}, torque);
}

inline Formula always(double value) {
    return [value](const std::vector<double>&) { return value; };
}

// Row and column of an element in a table of n by n elements, which counts by columns.
inline std::size_t row_of(double element, std::size_t n) {
    return static_cast<std::size_t>(element) % n;
}
inline std::size_t column_of(double element, std::size_t n) {
    return static_cast<std::size_t>(element) / n;
}

// `diagonal` between a coil and itself, `coupling` between two coils.
inline Formula coupled(std::size_t n, double diagonal, double coupling) {
    return [=](const std::vector<double>& x) { return row_of(x[2], n) == column_of(x[2], n) ? diagonal : coupling; };
}

// Gauss and Jordan with row exchange: another way than the library's elimination.
inline std::vector<double> solved(std::vector<std::vector<double>> a, std::vector<double> b) {
    const std::size_t n = b.size();
    for (std::size_t i = 0; i < n; ++i) {
        std::size_t best = i;
        for (std::size_t r = i; r < n; ++r) {
            best = std::fabs(a[r][i]) > std::fabs(a[best][i]) ? r : best;
        }
        std::swap(a[i], a[best]);
        std::swap(b[i], b[best]);
        for (std::size_t r = 0; r < n; ++r) {
            if (r != i) {
                const double f = a[r][i] / a[i][i];
                for (std::size_t c = 0; c < n; ++c) {
                    a[r][c] -= f * a[i][c];
                }
                b[r] -= f * b[i];
            }
        }
    }
    for (std::size_t i = 0; i < n; ++i) {
        b[i] /= a[i][i];
    }
    return b;
}

// The classical Runge-Kutta scheme for y' = slope(t, y).
inline std::vector<double> rk4(const std::function<std::vector<double>(double, const std::vector<double>&)>& slope,
                               std::vector<double> y, double t, double h) {
    const auto moved = [&](const std::vector<double>& k, double f) {
        std::vector<double> z = y;
        for (std::size_t j = 0; j < z.size(); ++j) {
            z[j] += f * k[j];
        }
        return z;
    };
    const std::vector<double> k1 = slope(t, y);
    const std::vector<double> k2 = slope(t + h / 2, moved(k1, h / 2));
    const std::vector<double> k3 = slope(t + h / 2, moved(k2, h / 2));
    const std::vector<double> k4 = slope(t + h, moved(k3, h));
    for (std::size_t j = 0; j < y.size(); ++j) {
        y[j] += h / 6 * (k1[j] + 2 * k2[j] + 2 * k3[j] + k4[j]);
    }
    return y;
}

inline std::string text_of(const char* name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline std::string printed(const char* format, double value) {
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

// A directory of its own as the current one.
class OwnDirectory : public ::testing::Test {
  protected:
    // "key method" of every lookup since the last call, each with its coordinates.
    struct Lookup {
        std::string name;
        std::vector<double> at;
    };
    static std::vector<Lookup> lookups() {
        std::vector<Lookup> found;
        std::ifstream file("KZBFileHandlerDebug.txt");
        for (std::string line; std::getline(file, line);) {
            std::vector<std::string> fields;
            std::size_t from = 0;
            for (std::size_t to = line.find(','); to != std::string::npos; to = line.find(',', from)) {
                fields.push_back(line.substr(from, to - from));
                from = to + 1;
            }
            Lookup lookup{fields[1] + " " + fields[2], {}};
            for (std::size_t k = 3; k < fields.size(); ++k) {
                lookup.at.push_back(std::stod(fields[k]));
            }
            found.push_back(lookup);
        }
        std::filesystem::remove("KZBFileHandlerDebug.txt");
        return found;
    }

  private:
    WorkingFolder folder_;
};

// Numbers that no machine should see.
inline const std::vector<double>& odd_numbers() {
    static const std::vector<double> numbers = {0.0,
                                                -0.0,
                                                1e300,
                                                -1e300,
                                                1e-320,
                                                std::nan(""),
                                                std::numeric_limits<double>::infinity(),
                                                -std::numeric_limits<double>::infinity()};
    return numbers;
}
inline const std::vector<int>& odd_phases() {
    static const std::vector<int> phases = {0, -1, 6, 2147483647, -2147483647 - 1};
    return phases;
}

}  // namespace kzb_test
