#include "interface/motor_types.h"

namespace kzb {
namespace {

constexpr MotorType served[] = {
    {10000, rotary_pm, "PMSM", nullptr, 3, Travel::degrees, Travel::degrees},
    {10003, stepping, "2-PhaseStepping", "", 4, Travel::degrees, Travel::degrees},
    // The initial displacement of a solenoid counts as degrees, as established.
    {10004, solenoid, "LinearSolenoid", "", 1, Travel::metres, Travel::degrees},
    {10005, linear_pm, "LinearSynchronous", "", 3, Travel::metres, Travel::metres},
    {10006, induction, "IM", "", 3, Travel::degrees, Travel::degrees},
    {10007, wound_field, "WFSM", "", 4, Travel::degrees, Travel::degrees},
    {10008, generic, "ALL", "", 0, Travel::none, Travel::none},  // its ports stand in its circuit
    {10010, reluctance, "SR", "", 3, Travel::degrees, Travel::degrees},
    {10011, reluctance, "SR", "", 4, Travel::degrees, Travel::degrees},
    {10012, reluctance, "SR", "", 5, Travel::degrees, Travel::degrees},
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
