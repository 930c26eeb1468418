// The motor types that the calculator serves: code, application, ports, displacement.
//
// "motor_type" of category "control" is one of these codes. A type that isn't listed is refused by kzbcalcInitialize.
#pragma once

namespace kzb {

// Sets of motor types, as the calls' documents name them.
using MotorSet = unsigned;
inline constexpr MotorSet rotary_pm = 1U << 0;    // 10000
inline constexpr MotorSet linear_pm = 1U << 1;    // 10005
inline constexpr MotorSet stepping = 1U << 2;     // 10003
inline constexpr MotorSet solenoid = 1U << 3;     // 10004
inline constexpr MotorSet induction = 1U << 4;    // 10006
inline constexpr MotorSet wound_field = 1U << 5;  // 10007
inline constexpr MotorSet generic = 1U << 6;      // 10008
inline constexpr MotorSet reluctance = 1U << 7;   // 10010, 10011, 10012
inline constexpr MotorSet permanent_magnet = rotary_pm | linear_pm;
inline constexpr MotorSet no_type = 0;
inline constexpr MotorSet every_type = ~no_type;
inline constexpr MotorSet with_phases = every_type & ~generic;  // those that number their ports

// What a displacement is at the interface.
enum class Travel { degrees, metres, none };

struct MotorType {
    int code;
    MotorSet set;             // the one member of the sets above
    const char* motor;        // of the application
    const char* application;  // null: chosen by what the file holds
    int ports;                // phases of the port calls; 0: none of the port calls apply
    Travel travel;            // of kzbcalcSetDisplacement
    Travel initial_travel;    // of kzbcalcSetInitialDisplacement
};

// Null for a code that isn't served.
const MotorType* find_motor_type(int code);

}  // namespace kzb
