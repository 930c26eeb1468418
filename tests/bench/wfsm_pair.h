// The product and the plain reference of one wound-field machine under the same calls, and the comparison of results.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <memory>
#include <string>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/wfsm.h"
#include "bench/reference/wfsm_machine.h"
#include "interface/kzbcalc_handle.h"
#include "model_file.h"
#include "same_bits.h"
#include "support/environment.h"

namespace kzb_bench_test {

class WfsmPair {
  public:
    WfsmPair(kzb_reference::Store& store, int calc_mode, const kzb_reference::WfsmIteration& iteration = {})
        : store_(store), file_(store) {
        const kzb_test::Environment a("DORN_KZ_DEBUG_ITR", text(iteration.tolerance).c_str());
        const kzb_test::Environment b("DORN_KZ_DEBUG_NITR", std::to_string(iteration.max_iterations).c_str());
        const kzb_test::Environment c("DORN_KZ_DEBUG_ACCEL", text(iteration.acceleration).c_str());
        KZB_CALC* handle = nullptr;
        status_ = file_.written() ? kzbcalcInitialize(file_.path(), calc_mode, &handle) : -1;
        product_.reset(handle);
        reference_ = std::make_unique<kzb_reference::Wfsm>(
            store, calc_mode, kzb_reference::kzb_get_table_interpolated_value<kzb_reference::Bare>, iteration);
    }
    int status() const { return status_; }
    KZB_CALC* product() { return product_.get(); }
    kzb_reference::Wfsm& reference() { return *reference_; }

    void interpolation(int scheme) {
        static constexpr const char* names[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};
        ASSERT_EQ(kzbcalcSetInterpolationType(scheme, product()), 0);
        reference_->set_interpolation(names[scheme]);
    }
    void set_data() {
        kzbcalcSetData(product());
        reference_->set_data();
    }
    void time(double value) { EXPECT_EQ(kzbcalcSetTime(value, product()), reference_->set_time(value)); }
    void displacement(double value) {
        kzbcalcSetDisplacement(value, product());
        reference_->set_displacement(value);
    }
    void voltage(const double* v) {
        for (int k = 1; k <= 4; ++k) {
            kzbcalcSetVoltage(k, v[k - 1], product());
            reference_->set_voltage(k, v[k - 1]);
        }
    }
    void current(const double* i) {
        for (int k = 1; k <= 4; ++k) {
            kzbcalcSetCurrent(k, i[k - 1], product());
            reference_->set_current(k, i[k - 1]);
        }
    }
    void signal(const int* s) {
        for (int k = 1; k <= 4; ++k) {
            kzbcalcSetSignal(k, s[k - 1], product());
            reference_->set_signal(k, s[k - 1]);
        }
    }
    void execute() {
        EXPECT_EQ(kzbcalcExecute(product()), 0);
        reference_->execute();
    }
    void update() {
        kzbcalcUpdate(product());
        reference_->update();
    }

    void expect_equal_results(int sample) {
        KZB_CALC* const handle = product();
        const auto expect = [&](const std::string& what, double actual, double expected) {
            if (!same_bits(actual, expected)) {
                ADD_FAILURE() << what << " at sample " << sample << ": " << std::hexfloat << actual << " instead of "
                              << expected << std::defaultfloat << " (" << actual << ", relative "
                              << (actual - expected) / std::fabs(expected) << ")";
            }
        };
        expect("torque", kzbcalcGetTorque(handle), reference_->get_torque());
        for (int k = 1; k <= 4; ++k) {
            const std::string phase = " " + std::to_string(k);
            expect("current" + phase, kzbcalcGetCurrent(k, handle), reference_->get_current(k));
            expect("voltage" + phase, kzbcalcGetVoltage(k, handle), reference_->get_voltage(k));
            expect("induced voltage" + phase, kzbcalcGetInducedVoltage(k, handle), reference_->get_induced_voltage(k));
            expect("coil flux" + phase, kzbcalcGetCoilFlux(k, handle), reference_->get_coil_flux(k));
            for (int c = 1; c <= 4; ++c) {
                expect("inductance" + phase + " " + std::to_string(c), kzbcalcGetInductance(k, c, handle),
                       reference_->get_inductance(k, c));
            }
        }
        expect("d inductance", kzbcalcGetDAxisInductance(handle), reference_->get_d_axis_inductance());
        expect("q inductance", kzbcalcGetQAxisInductance(handle), reference_->get_q_axis_inductance());
        expect("resistance", kzbcalcGetResistance(handle), reference_->get_resistance());
        expect("field resistance", kzbcalcGetFieldCoilResistance(handle), reference_->get_field_resistance());
        expect("copper loss", kzbcalcGetCopperloss(handle), reference_->get_copperloss());
        expect("eddy loss", kzbcalcGetEddyloss(handle), reference_->get_eddyloss());
        expect("hysteresis loss", kzbcalcGetHysteresisloss(handle), reference_->get_hysteresisloss());
        expect("iron loss", kzbcalcGetIronloss(handle), reference_->get_ironloss());
        const int count = kzbcalcGetNumberOfUserSpecifiedParameters(handle);
        EXPECT_EQ(count, reference_->user_parameter_count());
        for (int k = 1; k <= count && k <= reference_->user_parameter_count(); ++k) {
            expect("user parameter " + std::to_string(k), kzbcalcGetUserSpecifiedParameter(k, handle),
                   reference_->get_user_parameter(k));
        }
        expect_equal_statistics(sample);
    }
    // The interpolation counters and the last error of the store. The reference gives a lookup up before its reduction
    // where a coordinate is no number, the product counts the calls of the reduction all the same.
    void expect_equal_statistics(int sample) {
        EXPECT_EQ(product_->store->error, store_.error) << "sample " << sample;
        if (reference_->unplaced > 0) {
            return;
        }
        for (const int slot : {1, 3, 5}) {
            EXPECT_EQ(product_->store->timing[slot], store_.timing[slot]) << "slot " << slot << " sample " << sample;
        }
    }

  private:
    struct Terminate {
        void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
    };
    static std::string text(double value) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.17g", value);
        return buffer;
    }

    kzb_reference::Store& store_;
    ModelFile file_;
    std::unique_ptr<KZB_CALC, Terminate> product_;
    std::unique_ptr<kzb_reference::Wfsm> reference_;
    int status_ = -1;
};

}  // namespace kzb_bench_test
