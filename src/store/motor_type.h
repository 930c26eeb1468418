// Values of control/motor_type that the store tells apart.
#pragma once

namespace kzb::motor_type {

inline constexpr int pmsm = 10000;
inline constexpr int linear_synchronous = 10005;
inline constexpr int wound_field = 10007;

}  // namespace kzb::motor_type
