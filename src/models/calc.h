// Calc: what every machine model shares: temperatures, their coefficients, and how tables are interpolated.
//
//   coil factor    f_c = (T - T0) * (k_c * 1e-6) + 1     k_c in ppm per K, of resistance
//   magnet factor  f_m = (T - T0) * (k_m * 0.01) + 1     k_m in percent per K, of magnet flux
//
// Both are 1 while temperature correction is off.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "store/lookup_front.h"

namespace kzb {

class Calc {
  public:
    Calc() = default;
    Calc(const Calc&) = delete;
    Calc& operator=(const Calc&) = delete;
    virtual ~Calc() = default;

    // Voltage induced in `phase`, from 1, after the last step (V).
    virtual double induced_voltage(int phase) = 0;
    // Codes and texts that a model has to tell; none unless a model overrides it.
    virtual std::vector<std::pair<int, std::string>> messages() { return {}; }

    bool temperature_correction() const { return temperature_correction_; }
    double coil_temperature() const { return coil_temperature_; }
    double base_coil_temperature() const { return base_coil_temperature_; }
    double magnet_temperature() const { return magnet_temperature_; }
    double base_magnet_temperature() const { return base_magnet_temperature_; }
    double coil_temperature_coefficient() const { return coil_temperature_coefficient_; }
    double magnet_temperature_coefficient() const { return magnet_temperature_coefficient_; }
    const std::string& interpolation() const { return method_.text; }
    // The same as the tables take it.
    const Method& method() const { return method_; }
    int use_old_ironloss() const { return use_old_ironloss_; }

    void set_temperature_correction(bool on) { temperature_correction_ = on; }
    void set_coil_temperature(double kelvin) { coil_temperature_ = kelvin; }
    void set_base_coil_temperature(double kelvin) { base_coil_temperature_ = kelvin; }
    void set_magnet_temperature(double kelvin) { magnet_temperature_ = kelvin; }
    void set_base_magnet_temperature(double kelvin) { base_magnet_temperature_ = kelvin; }
    void set_coil_temperature_coefficient(double ppm_per_kelvin) { coil_temperature_coefficient_ = ppm_per_kelvin; }
    void set_magnet_temperature_coefficient(double percent_per_kelvin) {
        magnet_temperature_coefficient_ = percent_per_kelvin;
    }
    // Takes the method's name: "Linear", "Cubic", "Spline4", "Spline6" or "Spline".
    void set_interpolation(std::string method) { method_ = Method::named(std::move(method)); }
    void set_use_old_ironloss(int flag) { use_old_ironloss_ = flag; }

    double magnet_factor() const;
    double coil_factor() const;
    // a * b * (c - d), a voltage term of the induction model.
    static double heat_term(double a, double b, double c, double d) { return a * b * (c - d); }

  private:
    bool temperature_correction_ = false;
    double coil_temperature_ = 293.15;               // K
    double base_coil_temperature_ = 293.15;          // K
    double magnet_temperature_ = 293.15;             // K
    double base_magnet_temperature_ = 293.15;        // K
    double coil_temperature_coefficient_ = 3810.0;   // ppm per K
    double magnet_temperature_coefficient_ = -0.11;  // percent per K
    Method method_;
    int use_old_ironloss_ = 0;  // 1: the older iron loss formula of a model
};

}  // namespace kzb
