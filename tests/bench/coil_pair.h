// The product and the plain reference of one machine with separate windings under the same calls; every status and
// every result is compared.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/coil_machine.h"
#include "coil_models.h"
#include "interface/kzbcalc_handle.h"
#include "model_file.h"
#include "same_bits.h"

namespace kzb_bench_test {

class CoilPair {
  public:
    CoilPair(const CoilModel& model, int calc_mode, std::mt19937_64& random);

    int coils() const { return coils_; }
    bool has_torque() const { return motor_type_ != 10004; }

    // Inputs of a sample and the course of a run.
    void set_data();
    void set_time(double value);
    void set_displacement(double value);
    void set_voltage(int phase, double value);
    void set_signal(int phase, int value);
    void set_current(int phase, double value);
    void execute();
    void update();

    // Configuration; a value that the call refuses leaves both sides as they are.
    void set_interpolation(int type);
    void set_initial_current(int phase, double value);
    void set_initial_time(double value);
    void set_initial_displacement(double value);
    void set_resistance(double value);
    void set_correction(int which, double value);  // 0 to 6: flux, magnet, steel, inductance, torque or force, turns
    void switch_temperatures_on();
    void set_temperature(int which, double value);  // 0 to 5: coil, its base and coefficient; magnet likewise

    // Results that change nothing, and the two that do: torque or force, and inductance.
    void compare_results();
    void compare_torque();
    void compare_inductance(int row, int column);
    // Not after a not-a-number was seen: such a coordinate lies in no cell, and how much of its lookup counts is open.
    void compare_statistics();
    double peak_current() const { return peak_current_; }

  private:
    struct Terminate {
        void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
    };
    void expect(const char* what, int number, double actual, double expected);

    int motor_type_;
    int coils_;
    int calls_ = 0;
    kzb_reference::Store store_;
    std::unique_ptr<ModelFile> file_;
    std::unique_ptr<KZB_CALC, Terminate> product_;
    std::unique_ptr<kzb_reference::CoilMachine> reference_;
    double peak_current_ = 0.0;
    bool saw_nan_ = false;
};

}  // namespace kzb_bench_test
