#include "interface/model_dispatch.h"

namespace kzb {

std::unique_ptr<Calc> create_model(const MotorType& type) {
    switch (type.set) {
        case rotary_pm:
        case linear_pm:
            return std::make_unique<Calc_Eq>();
        default:
            return nullptr;
    }
}

}  // namespace kzb
