// Getters that only read write nothing at all: with the memory of the calculator and the library's variables frozen
// they answer as before. So several threads may read one calculator, or one store, that nobody steps or changes
// meanwhile.
//
// Calls that evaluate write: they look tables up, which counts lookups and keeps an error, or accept a sample.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iterator>
#include <numeric>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "interface/call_table.h"
#include "interface/generic_accessors.h"
#include "same_bits/runs.h"
#include "threads/frozen_memory.h"

namespace kzb_test {
namespace {

struct NamedCall {
    std::string name;
    std::function<double(KZB_CALC*)> call;
};

constexpr Call<int(KZB_CALC*)> plain_calls[] = {
    {"kzbcalcCheckMotorType", kzbcalcCheckMotorType},
    {"kzbcalcGetNumberOfPhases", kzbcalcGetNumberOfPhases},
    {"kzbcalcGetNumberOfUserSpecifiedParameters", kzbcalcGetNumberOfUserSpecifiedParameters},
    {"kzbcalcGetTemperatureCorrectionCalc", kzbcalcGetTemperatureCorrectionCalc},
    {"kzbcalcCheckIronloss", kzbcalcCheckIronloss},
    {"kzbcalcCheckUserCopperloss", kzbcalcCheckUserCopperloss},
    {"kzbcalcCheckInductionMotorInductanceType", kzbcalcCheckInductionMotorInductanceType},
    {"kzbcalcGetNumberOfUserInputParameters", kzbcalcGetNumberOfUserInputParameters},
    {"kzbcalcGetNumOfInputPortsForGenericModel", kzbcalcGetNumOfInputPortsForGenericModel},
    {"kzbcalcGetNumOfOutputPortsForGenericModel", kzbcalcGetNumOfOutputPortsForGenericModel},
};

constexpr Call<int(char**, int, KZB_CALC*)> label_calls[] = {
    {"kzbcalcGetInputLabelsForGenericModel", kzbcalcGetInputLabelsForGenericModel},
    {"kzbcalcGetOutputLabelsForGenericModel", kzbcalcGetOutputLabelsForGenericModel},
};

// The status, and all letters of the first labels.
double labels(int call(char**, int, KZB_CALC*), KZB_CALC* calc) {
    constexpr int ports = 64;  // more than any of these models has
    constexpr int length = 128;
    static char text[ports * length];
    std::fill(std::begin(text), std::end(text), '\0');
    char* buffers[ports];
    for (int i = 0; i < ports; ++i) {
        buffers[i] = text + i * length;
    }
    return call(buffers, ports * length, calc) + std::accumulate(std::begin(text), std::end(text), 0.0);
}

// Every call that gives a value and takes none.
std::vector<NamedCall> calls() {
    std::vector<NamedCall> all;
    for (const auto& row : getters) {
        all.push_back({row.name, row.function});
    }
    for (const auto& row : phase_getters) {
        for (int phase = 0; phase <= 6; ++phase) {
            all.push_back({row.name, [&row, phase](KZB_CALC* calc) { return row.function(phase, calc); }});
        }
    }
    for (const GenericGetter& row : generic_getters) {
        for (int id = 0; id <= 3; ++id) {
            all.push_back({row.name, [&row, id](KZB_CALC* calc) { return row.get(id, calc); }});
        }
    }
    for (const GenericLookup& row : generic_lookups) {
        for (const char* const name : {"winding", "supply", "no such name"}) {
            all.push_back({row.name, [&row, name](KZB_CALC* calc) { return row.find(name, calc); }});
        }
    }
    for (const auto& row : plain_calls) {
        all.push_back({row.name, row.function});
    }
    all.push_back({"kzbcalcGetInductance", [](KZB_CALC* calc) { return kzbcalcGetInductance(1, 1, calc); }});
    for (const auto& row : label_calls) {
        all.push_back({row.name, [&row](KZB_CALC* calc) { return labels(row.function, calc); }});
    }
    return all;
}

// The calls that may write, by what the file is.
std::set<std::string> evaluating_calls(const MachineRun& run) {
    const auto is = [&](const char* start) { return run.name.rfind(start, 0) == 0; };
    std::set<std::string> names;
    if (run.calc_mode == 2) {
        names.insert("kzbcalcGetTorque");  // the step of a machine driven by currents
    }
    if (is("linear_synchronous") || is("solenoid")) {
        names.insert("kzbcalcGetForce");
    }
    if (is("pmsm") || is("linear_synchronous")) {
        names.insert("kzbcalcGetMagFlux");
    }
    if (is("reluctance") || is("solenoid") || is("stepping")) {
        names.insert("kzbcalcGetInductance");  // accepts the sample
    }
    if (is("generic")) {
        names.insert("kzbcalcGetForceForGenericModel");
        names.insert("kzbcalcGetUserSpecifiedParameter");
    }
    return names;
}

class FrozenCalculator : public testing::TestWithParam<MachineRun> {};

TEST_P(FrozenCalculator, answers_every_getter_that_only_reads) {
    const MachineRun& run = GetParam();
    const RunFile file(run);
    KZB_CALC* calc = nullptr;
    Bits bits;
    collect_allocations(true);
    kzbcalcInitialize(file.path(), run.calc_mode, &calc);
    configure(run, calc, bits);
    drive(run, calc, 0, 5, bits);
    collect_allocations(false);
    const std::set<std::string> evaluating = evaluating_calls(run);
    std::vector<NamedCall> reading;
    for (const NamedCall& row : calls()) {
        if (!evaluating.contains(row.name)) {
            reading.push_back(row);
        }
    }
    const auto read_all = [&](Bits& values) {
        for (const NamedCall& row : reading) {
            values.add(row.call(calc));
        }
    };
    Bits frozen;
    Bits expected;
    setenv("KZB_TEST_OF_GETTERS", "changed", 1);  // the calls that look up take note of a changed environment
    if (!leaves_frozen_memory_alone([&] { read_all(frozen); })) {
        for (const NamedCall& row : reading) {  // which one it was
            EXPECT_TRUE(leaves_frozen_memory_alone([&] { row.call(calc); })) << row.name;
        }
    }
    read_all(expected);
    unsetenv("KZB_TEST_OF_GETTERS");
    EXPECT_EQ(frozen, expected);
    kzbcalcTerminate(calc);
}

INSTANTIATE_TEST_SUITE_P(Models, FrozenCalculator, testing::ValuesIn(all_runs()),
                         [](const testing::TestParamInfo<MachineRun>& each) { return each.param.name; });

// What the freezing itself can see.
TEST(FrozenCalculator, catches_a_call_that_writes) {
    const RunFile file(run_named("pmsm_harmonic"));
    KZB_CALC* calc = nullptr;
    collect_allocations(true);
    kzbcalcInitialize(file.path(), 1, &calc);
    collect_allocations(false);
    EXPECT_FALSE(leaves_frozen_memory_alone([&] { kzbcalcSetVoltage(1, 1.0, calc); }));
    EXPECT_TRUE(leaves_frozen_memory_alone([&] { kzbcalcSetVoltage(4, 1.0, calc); }));  // refused
    kzbcalcTerminate(calc);
}

TEST(FrozenStore, answers_every_query) {
    const RunFile file(run_named("generic_expressions"));
    KZB_STORE* store = nullptr;
    collect_allocations(true);
    kzb_initialize(&store);
    ASSERT_EQ(kzb_reader(file.path(), store), 0);
    kzb_set_application("ALL", "", store);
    kzb_get_application_num(store);
    collect_allocations(false);
    const int place[] = {0, 0, 0};
    const int node[] = {0, 1, 1, 0, 0, 0};
    const char* const table = "flux_list;0;flux_table;0;";
    const std::vector<std::pair<const char*, std::function<void()>>> queries = {
        {"has_category", [&] { EXPECT_EQ(kzb_has_category("control", store), 1); }},
        {"has_parameter", [&] { EXPECT_EQ(kzb_has_parameter("control", "motor_type", store), 1); }},
        {"category_num", [&] { EXPECT_GT(kzb_get_category_num(store), 20); }},
        {"category_name", [&] { EXPECT_STREQ(kzb_get_category_name(0, store), "control"); }},
        {"int", [&] { EXPECT_EQ(kzb_get_int("control", "motor_type", store), 10008); }},
        {"double", [&] { EXPECT_EQ(kzb_get_double("parameter", "RU", store), 0.0); }},
        {"string", [&] { EXPECT_EQ(kzb_get_string("control", "absent", store), nullptr); }},
        {"counts",
         [&] {
             EXPECT_EQ(kzb_get_int_num("control", store), 1);
             EXPECT_EQ(kzb_get_double_num("control", store), 0);
             EXPECT_EQ(kzb_get_string_num("control", store), 0);
             EXPECT_EQ(kzb_get_table_num(table, store), 1);
         }},
        {"keywords",
         [&] {
             EXPECT_STREQ(kzb_get_int_keyword("control", 0, store), "motor_type");
             EXPECT_STREQ(kzb_get_table_keyword(table, 0, store), "table");
             EXPECT_EQ(kzb_get_double_keyword("control", 0, store), nullptr);
             EXPECT_EQ(kzb_get_string_keyword("control", 0, store), nullptr);
         }},
        {"table",
         [&] {
             EXPECT_EQ(kzb_get_table_dim(table, "table", store), 5);
             EXPECT_EQ(kzb_get_table_num_rows(table, "table", 1, store), 2);
             EXPECT_EQ(kzb_get_table_axis_value(table, "table", 1, 1, store), 1000.0);
             EXPECT_EQ(kzb_get_table_cyclic_flag(table, "table", 1, store), 0);
             EXPECT_EQ(kzb_get_table_value(table, "table", node, store), -100.0);
         }},
        {"subcategory",
         [&] {
             EXPECT_EQ(kzb_has_subcategory("flux_list;flux_table", place, store), 1);
             EXPECT_EQ(kzb_has_subcategory_parameter("terminal_list;terminal", place, "id", store), 1);
             EXPECT_EQ(kzb_get_subcategory_num("terminal_list;terminal", place, store), 3);
             EXPECT_GE(kzb_get_child_subcategory_num("element_type_list;element_type", place, store), 1);
             EXPECT_EQ(kzb_get_subcategory_int("terminal_list;terminal", place, "id", store), 1);
             EXPECT_EQ(kzb_get_subcategory_double("terminal_list;terminal", place, "absent", store), 0.0);
             EXPECT_EQ(kzb_get_subcategory_string("terminal_list;terminal", place, "absent", store), nullptr);
         }},
        {"table of a subcategory",
         [&] {
             constexpr const char* path = "flux_list;flux_table";
             EXPECT_EQ(kzb_get_subcategory_table_dim(path, place, "table", store), 5);
             EXPECT_EQ(kzb_get_subcategory_table_num_rows(path, place, "table", 1, store), 2);
             EXPECT_EQ(kzb_get_subcategory_table_axis_value(path, place, "table", 1, 1, store), 1000.0);
             EXPECT_EQ(kzb_get_subcategory_table_cyclic_flag(path, place, "table", 1, store), 0);
             EXPECT_EQ(kzb_get_subcategory_table_value(path, place, "table", node, store), -100.0);
         }},
        {"application",
         [&] {
             kzb_has_application("Generic", "", store);
             kzb_get_application_num(store);
             kzb_get_application(store, 0);
             kzb_get_motor_information_num(store);
             kzb_get_motor_information(store, 0);
             kzb_get_basic_information_num(store);
             kzb_get_basic_information(store, 0);
         }},
        {"state",
         [&] {
             kzb_get_time(store, 3);
             kzb_has_error(store);
             kzb_has_warning(store);
             kzb_get_filehandler_version();
             kzbcalcVersion();
         }},
    };
    for (const auto& [name, query] : queries) {
        EXPECT_TRUE(leaves_frozen_memory_alone(query)) << name;
    }
    const double origin[5] = {};
    EXPECT_FALSE(
        leaves_frozen_memory_alone([&] { kzb_get_table_interpolated_value(table, "table", origin, "Linear", store); }));
    kzb_finish(store);
}

}  // namespace
}  // namespace kzb_test

int main(int argc, char** argv) {
    // The loader's own writes, at the first call of a function, would be taken for the library's.
    if (std::getenv("LD_BIND_NOW") == nullptr) {
        ::setenv("LD_BIND_NOW", "1", 1);
        ::execv("/proc/self/exe", argv);
    }
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
