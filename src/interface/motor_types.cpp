#include "interface/motor_types.h"

namespace kzb {
namespace {

constexpr MotorType served[] = {
    {10000, rotary_pm, "PMSM", nullptr, 3, Travel::degrees, Travel::degrees},
    {10005, linear_pm, "LinearSynchronous", "", 3, Travel::metres, Travel::metres},
};

}  // namespace

const MotorType* find_motor_type(int code) {
    for (const MotorType& type : served) {
        if (type.code == code) {
            return &type;
        }
    }
    return nullptr;
}

}  // namespace kzb
