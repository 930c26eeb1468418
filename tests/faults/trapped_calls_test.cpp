// Every exported call while the host has each floating-point exception interrupt, inexact results too: it is made as
// without, and the host's environment is as it was.
#include <gtest/gtest.h>

#include "faults/calls.h"
#include "faults/machine_run.h"
#include "faults/models.h"
#include "host/float_environment.h"
#include "interface/machines.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;

// The result of `body`, with traps while it runs or without.
template <class Body>
double result_of(bool trapped, Body body) {
    if (!trapped) {
        return body();
    }
    const HostTraps traps(FE_ALL_EXCEPT);
    const double result = body();
    const int left = fegetexcept();
    const int raised = std::fetestexcept(FE_ALL_EXCEPT);
    fedisableexcept(FE_ALL_EXCEPT);
    EXPECT_EQ(left, FE_ALL_EXCEPT);
    EXPECT_EQ(raised, 0);
    return result;
}

struct Made {
    double result = 0.0;
    Trace rest;
};

Made made(const CalculatorCall& call, const std::string& path, bool trapped) {
    KZB_CALC* calc = nullptr;
    EXPECT_EQ(result_of(trapped, [&] { return kzbcalcInitialize(path.c_str(), 1, &calc); }), 0.0);
    kzbcalcSetIronlossCalc(calc);
    kzbcalcSetData(calc);
    samples(calc, 0, 3);
    Made made;
    made.result = result_of(trapped, [&] { return call.call(calc); });
    made.rest = samples(calc, 3, 6);
    result_of(trapped, [&] { return kzbcalcTerminate(calc); });
    return made;
}

void expect_same_calls(const std::string& path) {
    for (const CalculatorCall& call : calculator_calls()) {
        const Made plain = quietly([&] { return made(call, path, false); });
        const Made trapped = quietly([&] { return made(call, path, true); });
        EXPECT_EQ(trapped.result, plain.result) << call.name;
        EXPECT_TRUE(trapped.rest == plain.rest) << call.name;
    }
}

std::string code_of(const testing::TestParamInfo<Machine>& machine) {
    return std::to_string(machine.param.code);
}

class TrappedCalls : public testing::TestWithParam<Machine> {};
INSTANTIATE_TEST_SUITE_P(Types, TrappedCalls, testing::ValuesIn(machines), code_of);

TEST_P(TrappedCalls, of_a_calculator_are_as_without_traps) {
    ModelFile file;
    GetParam().fill(file);
    expect_same_calls(file.path());
}

TEST(TrappedStoreCalls, are_as_without_traps) {
    const Folder folder;
    ModelFile rotary;
    ModelFile generic;
    fill_rotary(rotary);
    fill_generic(generic);
    for (const StoreCall& call : store_calls(write_call_files(folder, rotary.path()))) {
        const auto content = [&](bool trapped, double& result) {
            KZB_STORE* store = loaded_store(call.model == StoreModel::rotary ? rotary.path() : generic.path());
            const Quiet quiet;
            result = result_of(trapped, [&] { return call.call(store); });
            const std::string left = content_of(store);
            kzb_finish(store);
            return left;
        };
        double plain = 0.0;
        double trapped = 0.0;
        const std::string plain_content = content(false, plain);
        EXPECT_EQ(content(true, trapped), plain_content) << call.name;
        EXPECT_EQ(trapped, plain) << call.name;
    }
}

TEST(TrappedStoreCalls, open_and_close_as_without_traps) {
    const Folder folder;
    ModelFile rotary;
    fill_rotary(rotary);
    std::string written[2];
    for (const bool trapped : {false, true}) {
        const std::string path = folder / (trapped ? "trapped" : "plain");
        KZB_STORE* store = nullptr;
        result_of(trapped, [&] {
            kzb_initialize(&store);
            return 0.0;
        });
        kzb_reader(rotary.path().c_str(), store);
        kzb_set_application("ALL", "", store);
        kzb_writer(path.c_str(), store);
        result_of(trapped, [&] {
            kzb_finish(store);
            return 0.0;
        });
        written[trapped ? 1 : 0] = read_file(path);
    }
    EXPECT_FALSE(written[0].empty());
    EXPECT_EQ(written[1], written[0]);
}

}  // namespace
