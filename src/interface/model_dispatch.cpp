#include "interface/model_dispatch.h"

namespace kzb {

std::unique_ptr<Calc> create_model(const MotorType& type) {
    switch (type.set) {
        case rotary_pm:
        case linear_pm:
            return std::make_unique<Calc_Eq>();
        case stepping:
            return std::make_unique<Calc_Eq_sm>();
        case solenoid:
            return std::make_unique<Calc_Eq_solenoid>();
        case induction:
            return std::make_unique<Calc_Eq_im_transient>();
        case wound_field:
            return std::make_unique<Calc_Eq_wfsm>();
        case reluctance:
            return std::make_unique<Calc_Eq_sr>();
        case generic:
            return std::make_unique<Calc_Eq_generic>();
        default:
            return nullptr;
    }
}

}  // namespace kzb
