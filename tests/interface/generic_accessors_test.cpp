// Every call of the generic model against every motor type: statuses, and which test comes first.
#include "interface/generic_accessors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "interface/generic_machine.h"
#include "interface/machines.h"

namespace kzb_test::generic_accessors_test {
namespace {

constexpr int no_ids[] = {0, -1, 99, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()};
const double infinity = std::numeric_limits<double>::infinity();
const char* const coil_temperature = "kzbcalcSetCoilTemperatureForGenericModel";

std::vector<double> accepted(const GenericSetter& row) {
    std::vector<double> values{1.0, 2.5, 1e-300};
    // An int stands for the values of two calls: no number beyond its range.
    if (row.refused != Refused::nothing) {
        values.push_back(infinity);
        values.push_back(std::nan(""));  // fails no comparison
    }
    if (row.refused != Refused::zero_and_below) {
        values.push_back(0.0);
        values.push_back(-0.0);
    }
    return values;
}

std::vector<double> refused(const GenericSetter& row) {
    switch (row.refused) {
        case Refused::nothing:
            return {};
        case Refused::below_zero:
            return {-1e-300, -1.0, -infinity};
        default:
            return {0.0, -0.0, -1e-300, -1.0, -infinity};
    }
}

void expect_no_generic_call(KZB_CALC* calc, int status, bool counts_outputs) {
    for (const GenericSetter& row : generic_setters) {
        for (const int id : {1, 0, 99}) {
            for (const double value : {1.0, 0.0, -1.0}) {
                EXPECT_EQ(row.set(id, value, calc), row.name == std::string(coil_temperature) ? status : 180039)
                    << row.name;
            }
        }
    }
    for (const GenericGetter& row : generic_getters) {
        for (const int id : {1, 0, 99}) {
            EXPECT_EQ(row.get(id, calc), 180039.0) << row.name;
        }
    }
    for (const GenericLookup& row : generic_lookups) {
        for (const char* name : {row.names[0].c_str(), "", static_cast<const char*>(nullptr)}) {
            EXPECT_EQ(row.find(name, calc), 180039) << row.name;
        }
    }
    for (const GenericArrayCall& row : generic_array_calls) {
        if (row.name == std::string("kzbcalcGetNumOfOutputPortsForGenericModel") && counts_outputs) {
            EXPECT_EQ(row.call(calc), 8 * 180039);  // unusable, as established; the machine has no user parameter
        } else {
            EXPECT_EQ(row.call(calc), 180039) << row.name;
        }
    }
}

TEST(GenericAccessors, table_has_a_row_for_every_call) {
    std::set<std::string> names;
    const auto add = [&](const auto& rows) {
        for (const auto& row : rows) {
            EXPECT_TRUE(names.insert(row.name).second) << row.name;
        }
    };
    add(generic_setters);
    add(generic_getters);
    add(generic_lookups);
    add(generic_array_calls);
    // The calls that the header declares: 4 of ports, 6 of arrays, 20 setters, 21 getters, 7 names.
    EXPECT_EQ(names.size(), 58U);
}

class OtherMotorTypes : public testing::TestWithParam<Machine> {};
INSTANTIATE_TEST_SUITE_P(GenericAccessors, OtherMotorTypes, testing::ValuesIn(machines),
                         [](const auto& machine) { return std::to_string(machine.param.code); });

TEST_P(OtherMotorTypes, are_refused_first) {
    if (GetParam().type == generic) {
        return;
    }
    ModelFile file;
    GetParam().fill(file);
    Calculator calc(file);
    ASSERT_EQ(calc.status, 0);
    const bool counts_outputs = (GetParam().type & (rotary_pm | wound_field)) != 0;
    expect_no_generic_call(calc, 180046, counts_outputs);
    kzbcalcSetTemperatureCorrectionCalc(calc);
    expect_no_generic_call(calc, 180039, counts_outputs);
}

TEST(GenericAccessors, null_handle_is_refused) {
    expect_no_generic_call(nullptr, 180039, false);
}

TEST(GenericAccessors, handle_without_a_model_is_refused) {
    ModelFile file;
    generic_machine(file);
    Calculator mode(file, 3);
    ASSERT_EQ(mode.status, 180030);
    expect_no_generic_call(mode, 180039, false);
    Calculator missing("/nonexistent/file.kzb");
    ASSERT_EQ(missing.status, 180002);
    expect_no_generic_call(missing, 180039, false);
}

class GenericCalls : public testing::Test {
  protected:
    GenericCalls() : calc_((generic_machine(file_), file_)) { kzbcalcSetTemperatureCorrectionCalc(calc_); }

    ModelFile file_;
    Calculator calc_;
};

TEST_F(GenericCalls, setters_test_the_value_then_the_id) {
    for (const GenericSetter& row : generic_setters) {
        SCOPED_TRACE(row.name);
        for (int id = 1; id <= row.count; ++id) {
            for (const double value : accepted(row)) {
                EXPECT_EQ(row.set(id, value, calc_), 0) << id << " " << value;
            }
            for (const double value : refused(row)) {
                EXPECT_EQ(row.set(id, value, calc_), row.value_status) << id << " " << value;
            }
        }
        for (const int id : {0, -1, row.count + 1, no_ids[3], no_ids[4]}) {
            for (const double value : accepted(row)) {
                EXPECT_EQ(row.set(id, value, calc_), row.id_status) << id << " " << value;
            }
            for (const double value : refused(row)) {
                EXPECT_EQ(row.set(id, value, calc_), row.value_status) << id << " " << value;
            }
        }
    }
}

TEST_F(GenericCalls, getters_answer_their_ids) {
    for (const GenericGetter& row : generic_getters) {
        SCOPED_TRACE(row.name);
        for (int id = 1; id <= row.count; ++id) {
            EXPECT_LT(row.get(id, calc_), 180000.0) << id;
        }
        for (const int id : no_ids) {
            EXPECT_EQ(row.get(id, calc_), static_cast<double>(row.id_status)) << id;
        }
    }
}

TEST_F(GenericCalls, coil_temperature_is_refused_before_all_else_while_correction_is_off) {
    Calculator off(file_);
    for (const int id : {1, 0, 99}) {
        for (const double value : {300.0, 0.0, -1.0}) {
            EXPECT_EQ(kzbcalcSetCoilTemperatureForGenericModel(id, value, off), 180046);
        }
    }
    EXPECT_EQ(kzbcalcGetCoilTemperatureForGenericModel(1, off), 293.15);  // the getter doesn't ask
}

TEST_F(GenericCalls, names_give_the_ids_of_their_own_kind) {
    for (const GenericLookup& row : generic_lookups) {
        SCOPED_TRACE(row.name);
        for (const char* const none : {"nobody", "", "ground"}) {
            EXPECT_EQ(row.find(none, calc_), row.name_status) << none;
        }
        EXPECT_EQ(row.find(nullptr, calc_), row.name_status);
        for (const GenericLookup& other : generic_lookups) {
            for (std::size_t i = 0; i < other.names.size(); ++i) {
                const bool own = other.find == row.find;
                EXPECT_EQ(row.find(other.names[i].c_str(), calc_), own ? static_cast<int>(i) + 1 : row.name_status)
                    << other.names[i];
            }
        }
    }
}

// Parameters read as they were set, each apart from the others; each from the file first.
TEST_F(GenericCalls, parameters_read_as_set) {
    struct Pair {
        int (*set)(int, double, KZB_CALC*);
        double (*get)(int, KZB_CALC*);
        std::vector<double> of_file;
    };
    const Pair pairs[] = {
        {kzbcalcSetCoilBaseTemperatureForGenericModel, kzbcalcGetCoilBaseTemperatureForGenericModel, {293.15, 293.15}},
        {kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel,
         kzbcalcGetCoilTemperatureCorrectionCoefficientForGenericModel,
         {1000.0, 1000.0}},
        {kzbcalcSetCorrectionOfFluxForGenericModel, kzbcalcGetCorrectionOfFluxForGenericModel, {1.0, 1.0}},
        {kzbcalcSetCorrectionOfCoilTurn2ForGenericModel, kzbcalcGetCorrectionOfCoilTurn2ForGenericModel, {1.0, 1.0}},
        {kzbcalcSetCoilResistanceForGenericModel, kzbcalcGetCoilResistanceForGenericModel, {2.0, 4.0}},
        {kzbcalcSetResistanceForGenericModel, kzbcalcGetResistanceForGenericModel, {4.0, 5.0, 8.0}},
        {kzbcalcSetInductanceForGenericModel, kzbcalcGetInductanceForGenericModel, {0.1}},
        {kzbcalcSetCapacitanceForGenericModel, kzbcalcGetCapacitanceForGenericModel, {1e-3}},
        {kzbcalcSetCorrectionOfForceForGenericModel, kzbcalcGetCorrectionOfForceForGenericModel, {1.0, 1.0}},
        {kzbcalcSetCoilTemperatureForGenericModel, kzbcalcGetCoilTemperatureForGenericModel, {293.15, 293.15}},
        {kzbcalcSetInitialCoilCurrentForGenericModel, kzbcalcGetCoilCurrentForGenericModel, {0.0, 0.0}},
        {kzbcalcSetInitialResistorCurrentForGenericModel, kzbcalcGetResistorCurrentForGenericModel, {0.0, 0.0, 0.0}},
        {kzbcalcSetInitialInductorCurrentForGenericModel, kzbcalcGetInductorCurrentForGenericModel, {0.0}},
        {kzbcalcSetInitialCapacitorCurrentForGenericModel, kzbcalcGetCapacitorCurrentForGenericModel, {0.0}},
    };
    for (const Pair& pair : pairs) {
        for (std::size_t i = 0; i < pair.of_file.size(); ++i) {
            EXPECT_EQ(pair.get(static_cast<int>(i) + 1, calc_), pair.of_file[i]);
        }
    }
    double value = 11.0;
    for (const Pair& pair : pairs) {
        for (std::size_t i = 0; i < pair.of_file.size(); ++i) {
            EXPECT_EQ(pair.set(static_cast<int>(i) + 1, value++, calc_), 0);
        }
    }
    value = 11.0;
    for (const Pair& pair : pairs) {
        for (std::size_t i = 0; i < pair.of_file.size(); ++i) {
            // Temperature correction reaches the coils with the data alone: resistances read as they are.
            EXPECT_EQ(pair.get(static_cast<int>(i) + 1, calc_), value++);
        }
    }
}

// Accepted by the call, refused by the model.
TEST_F(GenericCalls, zero_leaves_turns_and_temperature_data_as_they_were) {
    EXPECT_EQ(kzbcalcSetCorrectionOfCoilTurn2ForGenericModel(1, 0.0, calc_), 0);
    EXPECT_EQ(kzbcalcSetCoilBaseTemperatureForGenericModel(1, 0.0, calc_), 0);
    EXPECT_EQ(kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel(1, 0.0, calc_), 0);
    EXPECT_EQ(kzbcalcGetCorrectionOfCoilTurn2ForGenericModel(1, calc_), 1.0);
    EXPECT_EQ(kzbcalcGetCoilBaseTemperatureForGenericModel(1, calc_), 293.15);
    EXPECT_EQ(kzbcalcGetCoilTemperatureCorrectionCoefficientForGenericModel(1, calc_), 1000.0);
}

// 1 asks for a current source, and is what the getter says of a voltage source.
TEST_F(GenericCalls, source_types_of_setter_and_getter_are_reversed) {
    EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(1, calc_), 1);
    for (const auto& [type, read] : {std::pair(1, 0), {0, 1}, {1, 0}, {2, 1}, {1, 0}, {-1, 1}}) {
        EXPECT_EQ(kzbcalcSetPowerSupplyTypeForGenericModel(1, type, calc_), 0);
        EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(1, calc_), read) << type;
        EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(2, calc_), 1);
    }
}

TEST_F(GenericCalls, limits_are_those_of_motions_that_are_not_periodic) {
    // 90 degrees, kept in radians inside.
    EXPECT_NEAR(kzbcalcGetUpperLimitDisplacementForGenericModel(1, calc_), 90.0, 1e-13);
    EXPECT_EQ(kzbcalcGetLowerLimitDisplacementForGenericModel(1, calc_), 0.0);
    EXPECT_EQ(kzbcalcGetUpperLimitDisplacementForGenericModel(2, calc_), 180056.0);
    EXPECT_EQ(kzbcalcGetLowerLimitDisplacementForGenericModel(2, calc_), 180056.0);
    EXPECT_EQ(kzbcalcGetMotionReferTableIdForGeneric(1, calc_), 1);
    EXPECT_EQ(kzbcalcGetMotionReferTableIdForGeneric(2, calc_), 2);
}

TEST(GenericAccessors, limit_of_a_linear_motion_is_as_in_the_file) {
    ModelFile file;
    generic_machine(file);
    put_fields(file, record_name("motion_condition_list;motion_condition", 1), {{"flg_periodic", 0}});
    Calculator calc(file);
    EXPECT_EQ(kzbcalcGetUpperLimitDisplacementForGenericModel(2, calc), 0.5);
    EXPECT_EQ(kzbcalcGetLowerLimitDisplacementForGenericModel(2, calc), 0.0);
}

}  // namespace
}  // namespace kzb_test::generic_accessors_test
