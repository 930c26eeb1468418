// Every call against every motor type: status of good and bad values, of wrong types, and which test comes first.
#include "interface/accessor_table.h"

#include <gtest/gtest.h>

#include <string>

namespace kzb_test::accessor_table_test {
namespace {

class AccessorTable : public testing::TestWithParam<Machine> {
  protected:
    AccessorTable() { GetParam().fill(file_); }
    ModelFile& file() { return file_; }
    Types type() const { return GetParam().type; }

  private:
    ModelFile file_;
};

INSTANTIATE_TEST_SUITE_P(MotorTypes, AccessorTable, testing::ValuesIn(machines),
                         [](const auto& machine) { return std::to_string(machine.param.code); });

TEST_P(AccessorTable, value_calls_test_value_and_motor_type_in_their_order) {
    Calculator calc(file());
    ASSERT_EQ(calc.status, 0);
    for (const ValueCall& row : value_calls) {
        for (const double value : row.good) {
            EXPECT_EQ(row.set(value, calc), row.answer_to_good(type())) << row.name << " " << value;
        }
        for (const double value : row.bad) {
            EXPECT_EQ(row.set(value, calc), row.answer_to_bad(type())) << row.name << " " << value;
        }
    }
}

TEST_P(AccessorTable, temperature_calls_refuse_before_all_else_while_correction_is_off) {
    Calculator calc(file());
    for (const TemperatureCall& row : temperature_calls) {
        for (const double value : {1.0, -1.0, -1000.0}) {
            EXPECT_EQ(row.set(value, calc), 180046) << row.name;
        }
        EXPECT_EQ(row.get(calc), (row.refused & type()) != 0 ? 180039.0 : 180046.0) << row.name;
    }
}

TEST_P(AccessorTable, temperature_calls_test_value_and_motor_type_in_their_order) {
    Calculator calc(file());
    ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(calc), 0);
    for (const TemperatureCall& row : temperature_calls) {
        for (const double value : row.good) {
            EXPECT_EQ(row.set(value, calc), row.answer_to_good(type())) << row.name << " " << value;
        }
        for (const double value : row.bad) {
            EXPECT_EQ(row.set(value, calc), row.answer_to_bad(type())) << row.name << " " << value;
        }
    }
}

TEST_P(AccessorTable, temperatures_read_as_set_each_apart_from_the_others) {
    Calculator calc(file());
    ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(calc), 0);
    std::vector<double> values;
    for (const TemperatureCall& row : temperature_calls) {
        const double number = static_cast<double>(values.size());
        // The magnet coefficient alone lies below 0.
        values.push_back(row.bad_status == 180045 ? -1.0 - number : 350.0 + number);
        row.set(values.back(), calc);
    }
    for (std::size_t k = 0; k < temperature_calls.size(); ++k) {
        const TemperatureCall& row = temperature_calls[k];
        SCOPED_TRACE(row.name);
        if ((row.factors & type()) != 0) {
            // Temperature, base and coefficient stand in this order in the table: (T - T0) * k * 1e-6 + 1.
            EXPECT_DOUBLE_EQ(row.get(calc), (values[k - 2] - values[k - 1]) * values[k] * 1e-6 + 1.0);
        } else if ((row.types & type()) != 0) {
            EXPECT_EQ(row.get(calc), values[k]);
        } else {
            EXPECT_EQ(row.get(calc) == 180039.0, ((row.answers & ~row.refused) & type()) == 0);
        }
    }
}

TEST_P(AccessorTable, refused_temperature_changes_nothing) {
    Calculator calc(file());
    kzbcalcSetTemperatureCorrectionCalc(calc);
    for (const TemperatureCall& row : temperature_calls) {
        if ((row.types & type()) != 0) {
            row.set(row.good.front(), calc);
            const double before = row.get(calc);
            row.set(row.bad.front(), calc);
            EXPECT_EQ(row.get(calc), before) << row.name;
        }
    }
}

TEST_P(AccessorTable, plain_calls_answer_their_motor_types) {
    Calculator calc(file());
    for (const StatusCall& row : plain_calls) {
        EXPECT_EQ(row.call(calc), (row.types & type()) != 0 ? row.answer : not_applicable) << row.name;
    }
}

TEST_P(AccessorTable, results_are_values_for_their_motor_types_and_statuses_for_others) {
    for (const int mode : {1, 2}) {
        for (const bool bound : {false, true}) {
            Calculator calc(file(), mode);
            if (bound) {
                ASSERT_EQ(kzbcalcSetData(calc), 0);
            }
            for (const ResultCall& row : result_calls) {
                const double result = row.get(calc);
                if ((row.types & type()) != 0) {
                    EXPECT_LT(result, 180000.0) << row.name << " mode " << mode;
                } else {
                    EXPECT_EQ(result, static_cast<double>(row.other)) << row.name << " mode " << mode;
                }
            }
        }
    }
}

TEST_P(AccessorTable, phases_run_from_one_to_their_number) {
    Calculator calc(file());
    ASSERT_EQ(kzbcalcSetData(calc), 0);
    for (const int phase : {1, 2, 3, 4, 5, 6, 0, -1, 2147483647, -2147483647 - 1}) {
        SCOPED_TRACE(phase);
        const bool inside = phase >= 1 && phase <= GetParam().phases;
        for (const PhaseSetter& row : phase_setters) {
            const int out_of_range = GetParam().phases == 0 ? row.other : 180031;
            EXPECT_EQ(row.set(phase, 0.0, calc), inside ? 0 : out_of_range) << row.name;
        }
        for (const PhaseGetter& row : phase_results) {
            const double result = row.get(phase, calc);
            if ((row.types & type()) == 0) {
                EXPECT_EQ(result, static_cast<double>(row.other)) << row.name;
            } else if (inside) {
                EXPECT_LT(result, 180000.0) << row.name;
            } else {
                const bool zero = (row.zero_outside & type()) != 0;
                EXPECT_EQ(result, zero ? 0.0 : static_cast<double>(row.out_of_range)) << row.name;
            }
        }
    }
}

TEST_P(AccessorTable, options_by_number_test_value_and_motor_type_in_their_order) {
    Calculator calc(file());
    for (const NumberCall& row : number_calls) {
        for (const int number : row.good) {
            EXPECT_EQ(row.set(number, calc), row.answer_to_good(type())) << row.name << " " << number;
        }
        for (const int number : row.bad) {
            EXPECT_EQ(row.set(number, calc), row.answer_to_bad(type())) << row.name << " " << number;
        }
    }
}

TEST_P(AccessorTable, skew_is_for_the_rotary_permanent_magnet_machine) {
    Calculator calc(file());
    EXPECT_EQ(kzbcalcSetSkewParameter(0, 0, 0.0, 0.0, 0, 0, calc), type() == rotary_pm ? 0 : not_applicable);
}

TEST_P(AccessorTable, user_inputs_are_for_the_generic_model) {
    // The index comes after the motor type: the other types have no inputs to count.
    Calculator calc(file());
    for (const int index : {0, 1, -1, 99}) {
        EXPECT_EQ(kzbcalcSetUserInputParameter(index, 1.0, calc), type() == generic ? 180065 : not_applicable);
    }
}

TEST_P(AccessorTable, slip_frequency_is_for_the_induction_machine_with_tables) {
    Calculator calc(file());
    EXPECT_EQ(kzbcalcGetSlipFrequency(calc), type() == induction ? 180061.0 : 180039.0);
}

TEST_P(AccessorTable, user_parameters_are_for_machines_that_can_have_them) {
    // None of the files has any: every index lies outside.
    Calculator calc(file());
    ASSERT_EQ(kzbcalcSetData(calc), 0);
    const bool can = (type() & (rotary_pm | wound_field | generic)) != 0;
    for (const int index : {1, 0, -1, 99}) {
        EXPECT_EQ(kzbcalcGetUserSpecifiedParameter(index, calc), can ? 180062.0 : 180039.0);
    }
}

TEST_P(AccessorTable, accuracy_asks_for_the_motor_type_before_the_number) {
    Calculator calc(file());
    for (const int accuracy : {0, 1, 2, 3, -1}) {
        // The rotary machine's file is of accuracy 1, which offers Ld and Lq alone.
        constexpr int of_rotary[] = {0, 180037, 180067, 180038};
        const int expected = accuracy < 0 ? 180038 : of_rotary[accuracy];
        EXPECT_EQ(kzbcalcSetAccuracyType(accuracy, calc), type() == rotary_pm ? expected : not_applicable);
    }
}

TEST_P(AccessorTable, number_of_phases_is_told_by_reluctance_machines_alone) {
    Calculator calc(file());
    EXPECT_EQ(kzbcalcGetNumberOfPhases(calc), type() == reluctance ? GetParam().phases : not_applicable);
    EXPECT_EQ(kzbcalcCheckMotorType(calc), GetParam().code);
}

}  // namespace
}  // namespace kzb_test::accessor_table_test
