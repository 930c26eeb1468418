// The product and the plain reference of one machine under the same calls, and the comparison of their results.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/pmsm.h"
#include "interface/kzbcalc_handle.h"
#include "model_file.h"
#include "pmsm_scenario.h"
#include "same_bits.h"

namespace kzb_bench_test {

using kzb_reference::Pmsm;

inline constexpr const char* interpolations[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

inline std::string numbered(std::string what, int number) {
    what += ' ';
    what += std::to_string(number);
    return what;
}

struct Terminate {
    void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
};

class Pair {
  public:
    explicit Pair(const Scenario& scenario) : scenario_(scenario) {
        kzb_reference::make_sample_machine(scenario.machine, store_);
        file_ = std::make_unique<ModelFile>(store_);
        KZB_CALC* handle = nullptr;
        status_ = file_->written() ? kzbcalcInitialize(file_->path(), scenario.calc_mode, &handle) : -1;
        product_.reset(handle);
        reference_ = std::make_unique<Pmsm>(store_, scenario.calc_mode,
                                            kzb_reference::kzb_get_table_interpolated_value<kzb_reference::Bare>);
    }
    int status() const { return status_; }

    void configure() {
        KZB_CALC* const handle = product_.get();
        ASSERT_EQ(kzbcalcSetInterpolationType(scenario_.interpolation, handle), 0);
        reference_->set_interpolation(interpolations[scenario_.interpolation]);
        if (scenario_.kind >= 0) {  // accuracy 0: LdLq, 1: Harmonic, 2: flux integral
            ASSERT_EQ(kzbcalcSetAccuracyType(scenario_.kind == 2 ? 0 : (scenario_.kind == 1 ? 1 : 2), handle), 0);
            reference_->set_kind(scenario_.kind);
        }
        if (scenario_.iron_loss) {
            ASSERT_EQ(kzbcalcSetIronlossCalc(handle), 0);
        }
        if (scenario_.user_copper_loss) {
            ASSERT_EQ(kzbcalcSetUserCopperlossCalc(handle), 0);
        }
        if (scenario_.temperatures) {
            set_temperatures();
        }
        if (scenario_.corrections_by_call) {
            set_corrections();
        }
        kzbcalcSetData(handle);
        reference_->set_data(scenario_.iron_loss, scenario_.user_copper_loss);
        if (scenario_.initial_values) {
            set_initial_values();
        }
    }

    void sample(double time, double displacement, const double* voltage, const int* signal, int executions) {
        KZB_CALC* const handle = product_.get();
        kzbcalcSetTime(time, handle);
        reference_->set_time(time);
        kzbcalcSetDisplacement(displacement, handle);
        reference_->set_displacement(displacement);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetVoltage(k + 1, voltage[k], handle);
            reference_->set_voltage(k + 1, voltage[k]);
            kzbcalcSetSignal(k + 1, signal[k], handle);
            reference_->set_signal(k + 1, signal[k]);
        }
        for (int e = 0; e < executions; ++e) {
            kzbcalcExecute(handle);
            reference_->execute();
        }
    }

    void sample_with_currents(double time, double displacement, const double* current) {
        KZB_CALC* const handle = product_.get();
        kzbcalcSetTime(time, handle);
        reference_->set_time(time);
        kzbcalcSetDisplacement(displacement, handle);
        reference_->set_displacement(displacement);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetCurrent(k + 1, current[k], handle);
            reference_->set_current(k + 1, current[k]);
        }
    }

    void expect_equal_results(int sample) {
        KZB_CALC* const handle = product_.get();
        const auto expect = [&](const std::string& what, double actual, double expected) {
            if (!same_bits(actual, expected)) {
                ADD_FAILURE() << what << " at sample " << sample << ": " << std::hexfloat << actual << " instead of "
                              << expected << std::defaultfloat << " (" << actual << ", relative "
                              << (actual - expected) / std::fabs(expected) << ")";
            }
        };
        if (scenario_.machine.motor_type == 10000) {
            expect("torque", kzbcalcGetTorque(handle), reference_->get_torque());
        } else {
            expect("force", kzbcalcGetForce(handle), reference_->get_force());
        }
        for (int k = 1; k <= 3; ++k) {
            const std::string phase = numbered("", k);
            expect("current" + phase, kzbcalcGetCurrent(k, handle), reference_->get_current(k));
            expect("voltage" + phase, kzbcalcGetVoltage(k, handle), reference_->get_voltage(k));
            expect("induced voltage" + phase, kzbcalcGetInducedVoltage(k, handle), reference_->get_induced_voltage(k));
            expect("magnet flux" + phase, kzbcalcGetMagFlux(k, handle), reference_->get_mag_flux(k));
            for (int c = 1; c <= 3; ++c) {
                expect("inductance" + numbered(phase, c), kzbcalcGetInductance(k, c, handle),
                       reference_->get_inductance(k, c));
            }
        }
        if (scenario_.machine.motor_type == 10000) {
            const int count = kzbcalcGetNumberOfUserSpecifiedParameters(handle);
            EXPECT_EQ(count, reference_->user_parameter_count());
            for (int k = 1; k <= count; ++k) {
                expect(numbered("user parameter", k), kzbcalcGetUserSpecifiedParameter(k, handle),
                       reference_->get_user_parameter(k));
            }
        }
        peak_current_ = std::max(peak_current_, std::fabs(reference_->get_current(1)));
        expect("resistance", kzbcalcGetResistance(handle), reference_->get_resistance());
        expect("copper loss", kzbcalcGetCopperloss(handle), reference_->get_copperloss());
        if (scenario_.machine.motor_type == 10000) {
            for (int k = 1; k <= 3; ++k) {
                expect(numbered("coil flux", k), kzbcalcGetCoilFlux(k, handle), reference_->get_coil_flux(k));
            }
            expect("d inductance", kzbcalcGetDAxisInductance(handle), reference_->get_d_axis_inductance());
            expect("q inductance", kzbcalcGetQAxisInductance(handle), reference_->get_q_axis_inductance());
            expect("eddy loss", kzbcalcGetEddyloss(handle), reference_->get_eddyloss());
            expect("hysteresis loss", kzbcalcGetHysteresisloss(handle), reference_->get_hysteresisloss());
            expect("iron loss", kzbcalcGetIronloss(handle), reference_->get_ironloss());
            expect("user copper loss", kzbcalcGetUserCopperLoss(handle), reference_->get_user_copper_loss());
        }
    }
    // The interpolation counters and the last error of the store.
    void expect_equal_statistics() {
        for (const int slot : {1, 3, 5}) {
            EXPECT_EQ(product_->store->timing[slot], store_.timing[slot]) << "slot " << slot;
        }
        EXPECT_EQ(product_->store->error, store_.error);
    }
    double peak_current() const { return peak_current_; }
    void update() {
        kzbcalcUpdate(product_.get());
        reference_->update();
    }

  private:
    void set_temperatures() {
        KZB_CALC* const handle = product_.get();
        ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(handle), 0);
        ASSERT_EQ(kzbcalcSetMagnetTemperature(353.15, handle), 0);
        ASSERT_EQ(kzbcalcSetCoilTemperature(393.15, handle), 0);
        reference_->magnet_temperature = 353.15;
        reference_->coil_temperature = 393.15;
    }
    void set_corrections() {
        KZB_CALC* const handle = product_.get();
        ASSERT_EQ(kzbcalcSetCorrectionOfFlux(0.93, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfMagnet(0.97, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfSteel(1.01, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfInductance(1.07, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfCoilTurn1(33.0, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfCoilTurn2(36.0, handle), 0);
        ASSERT_EQ(kzbcalcSetResistance(0.07, handle), 0);
        reference_->correction_flux = 0.93;
        reference_->correction_magnet = 0.97;
        reference_->correction_steel = 1.01;
        reference_->correction_inductance = 1.07;
        reference_->turns1 = 33.0;
        reference_->turns2 = 36.0;
        reference_->resistance_base = 0.07;
        if (scenario_.machine.motor_type == 10000) {
            ASSERT_EQ(kzbcalcSetCorrectionOfTorque(0.99, handle), 0);
        } else {
            ASSERT_EQ(kzbcalcSetCorrectionOfForce(0.99, handle), 0);
        }
        reference_->correction_torque = 0.99;
    }
    void set_initial_values() {
        KZB_CALC* const handle = product_.get();
        constexpr double currents[] = {30.0, -40.0, 10.0};
        for (int k = 1; k <= 3; ++k) {
            ASSERT_EQ(kzbcalcSetInitialCurrent(k, currents[k - 1], handle), 0);
            reference_->set_initial_current(k, currents[k - 1]);
        }
        ASSERT_EQ(kzbcalcSetInitialDisplacement(scenario_.machine.motor_type == 10000 ? 7.0 : 0.003, handle), 0);
        reference_->set_initial_displacement(scenario_.machine.motor_type == 10000 ? 7.0 : 0.003);
        ASSERT_EQ(kzbcalcSetInitialTime(1e-5, handle), 0);
        reference_->set_initial_time(1e-5);
    }

    const Scenario& scenario_;
    kzb_reference::Store store_;
    std::unique_ptr<ModelFile> file_;
    std::unique_ptr<KZB_CALC, Terminate> product_;
    std::unique_ptr<Pmsm> reference_;
    int status_ = -1;
    double peak_current_ = 0.0;
};

}  // namespace kzb_bench_test
