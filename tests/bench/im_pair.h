// The product and the plain reference of one induction machine under the same calls, and the comparison of what they
// answer: every status, every getter, the integrator's state, the statistics.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/im.h"
#include "interface/kzbcalc_handle.h"
#include "model_file.h"
#include "same_bits.h"

namespace kzb_bench_test {

class ImPair {
  public:
    // `torque_type` as the environment has it, null for none.
    ImPair(std::unique_ptr<kzb_reference::Store> store, int calc_mode, const char* torque_type);
    int status() const { return status_; }

    // Options; the two statuses must agree.
    void set_interpolation(int scheme);
    void set_connection(int type);
    void set_resistance(double value);
    void set_secondary_resistance(double value);
    void set_slip_frequency(double value);
    void set_step_size(double value);
    void set_ironloss(bool old_formula);
    void set_user_copperloss();
    void set_dc_voltage(double value);
    void set_carrier_frequency(double value);
    void switch_temperatures_on();
    void set_coil_temperature(double value);
    void set_secondary_coil_temperature(double value);
    void set_secondary_coil_base(double value);
    void set_secondary_coil_coefficient(double value);
    void set_data();
    void set_initial_current(int phase, double value);
    void set_initial_time(double value);
    void set_initial_displacement(double value);

    // A sample.
    void set_time(double value);
    void set_displacement(double value);
    void set_voltage(int phase, double value);
    void set_current(int phase, double value);
    void set_signal(int phase, int value);
    void execute();
    void get_torque();
    void update();

    // `cubic_calls`: compares the calls of the cubic kernel as well; how many a coordinate without a place takes is
    // open.
    void expect_equal_results(const std::string& where, bool cubic_calls = true);
    double peak_current() const { return peak_current_; }

  private:
    void expect_status(int product, int reference, const char* call) { EXPECT_EQ(product, reference) << call; }

    std::unique_ptr<kzb_reference::Store> store_;
    std::unique_ptr<ModelFile> file_;
    struct Terminate {
        void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
    };
    std::unique_ptr<KZB_CALC, Terminate> product_;
    std::unique_ptr<kzb_reference::Induction> reference_;
    int status_ = -1;
    double peak_current_ = 0.0;
};

}  // namespace kzb_bench_test
