// The status codes of the calculator calls: the one list, which also makes their texts.
//
// A call returns one of them, or, where its result is a double, the same as a number. 0 is success. A caller tells a
// status from a value only by its size. 180000 and 100 occur in the message log alone.
#pragma once

namespace kzb {

// clang-format off
#define KZB_STATUS_LIST(X)                                                                                             \
    X(motor_type, 180001, "motor_type not accepted")                                                                   \
    X(file, 180002, "KZB file could not be read")                                                                      \
    X(coil_turns, 180016, "coil turn correction negative (user parameter correction: zero or negative)")               \
    X(flux_correction, 180017, "flux correction zero or negative")                                                     \
    X(inductance_correction, 180018, "inductance correction zero or negative")                                         \
    X(torque_correction, 180019, "torque correction zero or negative")                                                 \
    X(magnet_correction, 180020, "magnet correction zero or negative")                                                 \
    X(steel_correction, 180021, "steel correction zero or negative")                                                   \
    X(calc_mode, 180030, "calc_mode not 1 or 2")                                                                       \
    X(phase, 180031, "phase number out of range for the motor type")                                                   \
    X(time, 180032, "time negative")                                                                                   \
    X(force_correction, 180033, "force correction zero or negative")                                                   \
    X(no_torque, 180034, "torque asked of a model without torque")                                                     \
    X(no_force, 180035, "force asked of a model without force")                                                        \
    X(accuracy_0, 180036, "accuracy 0 not offered by the file")                                                        \
    X(accuracy_1, 180037, "accuracy 1 not offered by the file")                                                        \
    X(accuracy_unknown, 180038, "accuracy value unknown")                                                              \
    X(not_applicable, 180039, "the call doesn't apply to this motor type")                                             \
    X(no_loss_data, 180040, "iron loss requested, file has no loss data")                                              \
    X(resistance, 180041, "resistance zero or negative")                                                               \
    X(secondary_resistance, 180042, "secondary resistance zero or negative; flux phase number out of range")           \
    X(temperature, 180043, "temperature negative")                                                                     \
    X(coil_coefficient, 180044, "coil temperature coefficient negative")                                               \
    X(magnet_coefficient, 180045, "magnet temperature coefficient outside -100 to 0")                                  \
    X(no_temperature_correction, 180046, "temperature correction not switched on")                                     \
    X(interpolation, 180047, "interpolation type not 0 to 4")                                                          \
    X(connection, 180048, "connection type not 0 or 1")                                                                \
    X(coil_id, 180049, "coil id invalid")                                                                              \
    X(inductor_id, 180050, "inductor id invalid")                                                                      \
    X(capacitor_id, 180051, "capacitor id invalid")                                                                    \
    X(resistor_id, 180052, "resistor id invalid")                                                                      \
    X(voltage_probe_id, 180053, "voltage probe id invalid")                                                            \
    X(power_supply_id, 180054, "power supply id invalid")                                                              \
    X(motion_id, 180055, "motion id invalid")                                                                          \
    X(motion_limit, 180056, "motion has no limit to report")                                                           \
    X(force_id, 180057, "force id invalid")                                                                            \
    X(capacitance, 180058, "capacitance value invalid")                                                                \
    X(inductance, 180059, "inductance value invalid")                                                                  \
    X(secondary_resistance_fixed, 180060, "secondary resistance not settable with the higher-accuracy induction data") \
    X(no_slip_frequency, 180061, "slip frequency needs the higher-accuracy induction data")                            \
    X(count, 180062, "size, count or parameter index invalid")                                                         \
    X(port_id, 180063, "port id invalid")                                                                              \
    X(not_in_use, 180064, "quantity not in use in this model (DC voltage, carrier frequency, user parameter)")         \
    X(no_user_copperloss, 180065, "user copper loss data missing; user input index invalid")                           \
    X(accuracy_2, 180067, "accuracy 2 not offered by the file")                                                        \
    X(no_flux_table, 180068, "category \"flux_table\" missing")
// clang-format on

#define KZB_STATUS_CONSTANT(name, code, text) inline constexpr int status_##name = code;
KZB_STATUS_LIST(KZB_STATUS_CONSTANT)
#undef KZB_STATUS_CONSTANT

// A status as the result of a getter.
constexpr double as_value(int status) {
    return static_cast<double>(status);
}

}  // namespace kzb
