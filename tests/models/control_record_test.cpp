#include "models/control_record.h"

#include <gtest/gtest.h>

namespace kzb_test::control_record_test {
namespace {

TEST(control_record, without_keys_takes_the_defaults) {
    KZB_STORE store;
    kzb::ControlRecord record;
    record.coef_flux = 7.0;  // of an earlier file
    record.read(store);
    for (const double turns : {record.turns_coil1, record.turns_coil2, record.turns_coil2_fieldcoil}) {
        EXPECT_EQ(turns, 0.0);
    }
    for (const double factor : {record.coef_flux, record.coef_flux_fieldcoil, record.coef_inductance,
                                record.coef_torque_or_force, record.coef_magnet, record.coef_material}) {
        EXPECT_EQ(factor, 1.0);
    }
    for (const double kelvin :
         {record.base_coil_temperature, record.base_field_coil_temperature, record.base_magnet_temperature,
          record.base_1st_coil_temperature, record.base_2nd_coil_temperature}) {
        EXPECT_EQ(kelvin, 293.15);
    }
    EXPECT_EQ(record.coef_coil_temperature, 3810.0);
    EXPECT_EQ(record.coef_field_coil_temperature, 3810.0);
    EXPECT_EQ(record.coef_magnet_temperature, -0.11);
    EXPECT_EQ(record.coef_1st_coil_temperature, 1.0);
    EXPECT_EQ(record.coef_2nd_coil_temperature, 1.0);
    EXPECT_FALSE(record.coef_table_flag);
}

TEST(control_record, reads_each_key_into_its_field) {
    using Record = kzb::ControlRecord;
    const std::pair<const char*, double Record::*> fields[] = {
        {"turns_coil1", &Record::turns_coil1},
        {"turns_coil2", &Record::turns_coil2},
        {"turns_coil2_fieldcoil", &Record::turns_coil2_fieldcoil},
        {"coef_flux", &Record::coef_flux},
        {"coef_flux_fieldcoil", &Record::coef_flux_fieldcoil},
        {"coef_inductance", &Record::coef_inductance},
        {"coef_torque", &Record::coef_torque_or_force},
        {"coef_magnet", &Record::coef_magnet},
        {"coef_material", &Record::coef_material},
        {"base_coil_temperature", &Record::base_coil_temperature},
        {"base_field_coil_temperature", &Record::base_field_coil_temperature},
        {"base_magnet_temperature", &Record::base_magnet_temperature},
        {"coef_coil_temperature", &Record::coef_coil_temperature},
        {"coef_field_coil_temperature", &Record::coef_field_coil_temperature},
        {"coef_magnet_temperature", &Record::coef_magnet_temperature},
        {"base_1st_coil_temperature", &Record::base_1st_coil_temperature},
        {"base_2nd_coil_temperature", &Record::base_2nd_coil_temperature},
        {"coef_1st_coil_temperature", &Record::coef_1st_coil_temperature},
        {"coef_2nd_coil_temperature", &Record::coef_2nd_coil_temperature}};
    KZB_STORE store;
    double value = 10.0;
    for (const auto& field : fields) {
        kzb::put_double(store, "control", field.first, value++);
    }
    Record record;
    record.read(store);
    value = 10.0;
    for (const auto& field : fields) {
        EXPECT_EQ(record.*field.second, value++) << field.first;
    }
}

TEST(control_record, linear_machines_have_a_force_in_place_of_the_torque) {
    for (const int motor_type : {10000, 10003, 10004, 10005, 10006, 12345}) {
        const bool linear = motor_type == 10004 || motor_type == 10005;
        KZB_STORE store;
        kzb::put_int(store, "control", "motor_type", motor_type);
        kzb::put_double(store, "control", "coef_force", 2.0);
        kzb::put_double(store, "control", "coef_torque", 3.0);
        kzb::put_int(store, "control", "coeftable_force_flag", 5);
        kzb::put_int(store, "control", "coeftable_torque_flag", 0);
        kzb::ControlRecord record;
        record.read(store);
        EXPECT_EQ(record.coef_torque_or_force, linear ? 2.0 : 3.0) << motor_type;
        EXPECT_EQ(record.coef_table_flag, linear) << motor_type;
    }
}

// A key of another kind exists, and reads as 0 through the double call.
TEST(control_record, an_integer_under_a_key_of_doubles_reads_as_zero) {
    KZB_STORE store;
    kzb::put_int(store, "control", "coef_flux", 2);
    kzb::ControlRecord record;
    record.read(store);
    EXPECT_EQ(record.coef_flux, 0.0);
}

}  // namespace
}  // namespace kzb_test::control_record_test
