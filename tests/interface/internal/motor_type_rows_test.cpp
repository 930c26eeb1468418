// What the calls answer for a motor type by its row alone: a stub stands in for the model, of the generic type one
// without a circuit.
#include <gtest/gtest.h>

#include <memory>

#include "KZBCalculator/kzbcalc.h"
#include "circuit/generic/calc_eq_generic.h"
#include "interface/accessor_table.h"
#include "interface/kzbcalc_handle.h"

namespace {

using kzb::MotorType;
using kzb::Travel;
using kzb_test::phase_results;
using kzb_test::phase_setters;
using kzb_test::PhaseGetter;
using kzb_test::PhaseSetter;
using kzb_test::temperature_calls;
using kzb_test::TemperatureCall;
using kzb_test::value_calls;
using kzb_test::ValueCall;

class StubModel : public kzb::Calc {
  public:
    double induced_voltage(int phase) override { return 10.0 * phase; }
};

constexpr MotorType wound_field_row{10007, kzb::wound_field, "WFSM", "", 4, Travel::degrees, Travel::degrees};
constexpr MotorType generic_row{10008, kzb::generic, "ALL", "", 0, Travel::none, Travel::none};
constexpr MotorType reluctance_rows[] = {
    {10010, kzb::reluctance, "SR", "", 3, Travel::degrees, Travel::degrees},
    {10011, kzb::reluctance, "SR", "", 4, Travel::degrees, Travel::degrees},
    {10012, kzb::reluctance, "SR", "", 5, Travel::degrees, Travel::degrees},
};

struct StubHandle : KZB_CALC {
    explicit StubHandle(const MotorType& row) {
        // Calls of every type hand the model on as one of its class.
        if (row.set == kzb::generic) {
            model = std::make_unique<kzb::Calc_Eq_generic>();
        } else {
            model = std::make_unique<StubModel>();
        }
        motor_type = row.code;
        type = &row;
    }
};

TEST(MotorTypeRows, induced_voltage_of_the_model_answers_for_every_numbered_phase) {
    StubHandle wound_field(wound_field_row);
    for (const int phase : {1, 2, 3, 4}) {
        EXPECT_EQ(kzbcalcGetInducedVoltage(phase, &wound_field), 10.0 * phase);
    }
    EXPECT_EQ(kzbcalcGetInducedVoltage(0, &wound_field), 180031.0);
    EXPECT_EQ(kzbcalcGetInducedVoltage(5, &wound_field), 180031.0);
    StubHandle five(reluctance_rows[2]);
    EXPECT_EQ(kzbcalcGetInducedVoltage(5, &five), 50.0);
    EXPECT_EQ(kzbcalcGetInducedVoltage(6, &five), 180031.0);
}

TEST(MotorTypeRows, induced_voltage_of_a_generic_model_is_zero_for_any_phase) {
    StubHandle generic(generic_row);
    for (const int phase : {-1, 0, 1, 99}) {
        EXPECT_EQ(kzbcalcGetInducedVoltage(phase, &generic), 0.0);
    }
}

TEST(MotorTypeRows, reluctance_machines_tell_their_phases) {
    for (const MotorType& row : reluctance_rows) {
        StubHandle handle(row);
        EXPECT_EQ(kzbcalcGetNumberOfPhases(&handle), row.ports);
    }
}

// The generic rows of the accessor table, with a stub as the model.
TEST(MotorTypeRows, generic_type_answers_value_calls_by_the_table) {
    StubHandle generic(generic_row);
    for (const ValueCall& row : value_calls) {
        for (const double value : row.good) {
            EXPECT_EQ(row.set(value, &generic), row.answer_to_good(kzb_test::generic)) << row.name << " " << value;
        }
        for (const double value : row.bad) {
            EXPECT_EQ(row.set(value, &generic), row.answer_to_bad(kzb_test::generic)) << row.name << " " << value;
        }
    }
}

TEST(MotorTypeRows, generic_type_answers_temperature_calls_by_the_table) {
    StubHandle generic(generic_row);
    for (const bool on : {false, true}) {
        if (on) {
            EXPECT_EQ(kzbcalcSetTemperatureCorrectionCalc(&generic), 0);
        }
        for (const TemperatureCall& row : temperature_calls) {
            SCOPED_TRACE(row.name);
            EXPECT_EQ(row.set(row.good.front(), &generic), on ? 180039 : 180046);
            EXPECT_EQ(row.set(row.bad.front(), &generic), on ? row.bad_status : 180046);
            const bool answers = (row.answers & ~row.refused & kzb_test::generic) != 0;
            if (on && answers) {
                EXPECT_LT(row.get(&generic), 180000.0);  // of the base class
            } else {
                const bool first = (row.refused & kzb_test::generic) != 0;
                EXPECT_EQ(row.get(&generic), on || first ? 180039.0 : 180046.0);
            }
        }
    }
}

TEST(MotorTypeRows, generic_type_answers_phase_calls_by_the_table) {
    StubHandle generic(generic_row);
    for (const int phase : {1, 0, -1, 99}) {
        for (const PhaseSetter& row : phase_setters) {
            EXPECT_EQ(row.set(phase, 1.0, &generic), row.other) << row.name;
        }
        for (const PhaseGetter& row : phase_results) {
            EXPECT_EQ(row.get(phase, &generic), static_cast<double>(row.other)) << row.name;
        }
    }
}

}  // namespace
