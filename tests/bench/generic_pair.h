// The product and the plain reference of one generic model under the same calls, and the comparison of results.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/generic.h"
#include "circuit/generic/calc_eq_generic.h"
#include "interface/kzbcalc_handle.h"
#include "model_file.h"

namespace kzb_bench_test {

class GenericPair {
  public:
    // The reference is made with `directory` as working directory, where one is given.
    explicit GenericPair(kzb_reference::Store& store, const std::filesystem::path& directory = {});
    // The status of opening.
    int status() const { return status_; }
    KZB_CALC* product() { return product_.get(); }
    const kzb::Calc_Eq_generic& model() const { return static_cast<const kzb::Calc_Eq_generic&>(*product_->model); }
    kzb_reference::Generic& reference() { return *reference_; }

    void interpolation(int scheme);
    void temperature_correction();
    void iron_loss();
    void set_data();

    void time(double value);
    void displacement(int id, double value);
    void initial_position(int id, double value);
    void supply(int id, double value);
    void supply_switch(int id, int on);
    void supply_type(int id, int type);
    void user_input(int index, double value);
    // kind: 0 coil, 1 resistor, 2 inductor, 3 capacitor
    void initial_current(int kind, int id, double value);
    void part_value(int kind, int id, double value);
    // which: 0 base temperature, 1 coefficient, 2 flux correction, 3 turns, 4 temperature
    void coil_setting(int which, int id, double value);
    void force_correction(int id, double value);
    void user_correction(int id, double value);
    void execute();
    void update();

    void expect_equal_results(int sample);

  private:
    struct Terminate {
        void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
    };
    void expect(const std::string& what, int sample, double actual, double expected);
    void expect_equal_circuit(int sample);
    void expect_equal_ports(int sample);
    void expect_equal_statistics(int sample);

    kzb_reference::Store& store_;
    ModelFile file_;
    std::unique_ptr<KZB_CALC, Terminate> product_;
    std::unique_ptr<kzb_reference::Generic> reference_;
    int unplaced_at_start_;
    int status_ = -1;
};

}  // namespace kzb_bench_test
