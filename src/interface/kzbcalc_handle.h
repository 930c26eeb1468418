// KZB_CALC: one open calculator, as kzbcalcInitialize makes it and kzbcalcTerminate releases it.
//
// The handle keeps what belongs to the caller's sample (time, displacement, port voltages and signals); the model keeps
// the machine. `model` is null until Initialize has succeeded.
#pragma once

#include <memory>
#include <vector>

#include "interface/motor_types.h"
#include "models/calc.h"
#include "store/store.h"

namespace kzb {

struct FinishStore {
    void operator()(KZB_STORE* store) const { kzb_finish(store); }
};

}  // namespace kzb

struct KZB_CALC {
    // Before the model, which borrows it.
    std::unique_ptr<KZB_STORE, kzb::FinishStore> store;
    std::unique_ptr<kzb::Calc> model;
    int motor_type = 0;
    const kzb::MotorType* type = nullptr;  // row of `motor_type`, null for one that isn't served
    int calc_mode = 0;                     // 1 voltage driven, 2 current driven
    double time = 0.0;                     // s
    double previous_time = 0.0;
    std::vector<double> displacement{0.0};          // rad, or m of a linear machine; one per moving part
    std::vector<double> initial_displacement{0.0};  // added to every incoming displacement
    int ironloss_flag = 0;
    int pwm_flag = 0;
    int user_copperloss_flag = 0;
    double pwm_frequency = 0.0;      // Hz
    std::vector<double> voltage;     // V, per port
    std::vector<double> current;     // A, per port, current driven
    std::vector<double> signal;      // per port; 0.0: the port floats
    std::vector<double> user_input;  // of a generic model
    double step_size = 0.0;          // s, of the induction model
    std::vector<double> state;       // integrator state: three fluxes of FluxIntegralDQTheta
    int keep_table_values = 0;       // switches of a generic model
    int apply_correction_factors = 0;
    int apply_temperature_data = 0;
    bool no_coil_set = false;
};
