// Calculator calls while memory runs out: each allocation of each call refused, alone and with all behind it.
//
// A call that told of success must have done its work: the samples behind it are those of a machine with memory. A
// handle that a call failed on stays one that can be stepped and terminated.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "faults/calls.h"
#include "faults/heap.h"
#include "faults/machine_run.h"
#include "faults/models.h"
#include "interface/machines.h"
#include "interface/other_machines.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;

constexpr Refusal both[] = {Refusal::once, Refusal::from_then_on};
// How far a handle is before the call under test.
enum class Stage { opened, bound, running };

struct Case {
    std::string path;
    int mode;
    Stage stage;
    void (*options)(KZB_CALC*);
};

void no_options(KZB_CALC* /*calc*/) {}
void with_losses(KZB_CALC* calc) {
    kzbcalcSetIronlossCalc(calc);
    kzbcalcSetTemperatureCorrectionCalc(calc);
}
void with_integrated_flux(KZB_CALC* calc) {
    kzbcalcSetAccuracyType(2, calc);
}

// Bound to a network of fewer terminals than the next binding makes.
void with_another_connection(KZB_CALC* calc) {
    kzbcalcSetConnectionType(1, calc);
    kzbcalcSetData(calc);
    samples(calc, 0, 2);
    kzbcalcSetConnectionType(0, calc);
}

void bring_to(KZB_CALC* calc, const Case& test) {
    test.options(calc);
    if (test.stage != Stage::opened) {
        kzbcalcSetData(calc);
    }
    if (test.stage == Stage::running) {
        samples(calc, 0, 3);
    }
}

KZB_CALC* opened(const Case& test) {
    KZB_CALC* calc = nullptr;
    kzbcalcInitialize(test.path.c_str(), test.mode, &calc);
    bring_to(calc, test);
    return calc;
}

// What follows the call: the rest of a run.
Trace rest_of_run(KZB_CALC* calc, const Case& test) {
    if (test.stage == Stage::opened) {
        samples(calc, 2, 3);  // on whatever a binding left
        kzbcalcSetData(calc);
    }
    return samples(calc, 3, 7);
}

struct Sound {
    double result = 0.0;
    long asked = 0;
    Trace rest;
};

Sound sound_run(const CalculatorCall& call, const Case& test) {
    KZB_CALC* const calc = opened(test);
    Sound sound;
    {
        const ScarceHeap heap(0, Refusal::once);
        sound.result = call.call(calc);
        sound.asked = heap.asked();
    }
    sound.rest = rest_of_run(calc, test);
    kzbcalcTerminate(calc);
    return sound;
}

struct Outcome {
    double result = 0.0;
    long refused = 0;
    bool same_rest = false;
    long blocks_left = 0;
};

Outcome outcome(const CalculatorCall& call, const Case& test, const Sound& sound, long number, Refusal refusal) {
    Outcome outcome;
    const long blocks_before = live_blocks();
    KZB_CALC* const calc = opened(test);
    {
        const ScarceHeap heap(number, refusal);
        outcome.result = call.call(calc);
        outcome.refused = heap.refused();
    }
    outcome.same_rest = rest_of_run(calc, test) == sound.rest;
    call.call(calc);
    rest_of_run(calc, test);
    kzbcalcTerminate(calc);
    outcome.blocks_left = live_blocks() - blocks_before;
    return outcome;
}

void refuse(const CalculatorCall& call, const Case& test, const Sound& sound, long number, Refusal refusal) {
    const Outcome found = quietly([&] { return outcome(call, test, sound, number, refusal); });
    SCOPED_TRACE(call.name + ", allocation " + std::to_string(number) + " of " + std::to_string(sound.asked) +
                 (refusal == Refusal::once ? "" : " and all behind it"));
    // The one status that a call without room for its work gives.
    const bool failed = found.result == 180039.0 && sound.result != 180039.0;
    EXPECT_TRUE(failed || found.result == sound.result) << found.result;
    EXPECT_EQ(found.refused > 0, number <= sound.asked);
    EXPECT_EQ(found.blocks_left, 0);
    // A step tells of no failure.
    if (!failed && call.name != "kzbcalcExecute") {
        EXPECT_TRUE(found.same_rest) << "told as done";
    }
}

void refuse_everything(const Case& test) {
    for (const CalculatorCall& call : calculator_calls()) {
        const Sound sound = quietly([&] {
            sound_run(call, test);  // what is made once for the process is made now
            return sound_run(call, test);
        });
        for (const Refusal refusal : both) {
            for (long number = 1; number <= sound.asked; ++number) {
                refuse(call, test, sound, number, refusal);
            }
        }
    }
}

// kzbcalcInitialize, and kzbcalcTerminate of what it leaves.
void refuse_opening(const Case& test) {
    struct Opening {
        int status = 0;
        bool has_handle = false;
        bool same_run = false;
        long blocks_left = 0;
    };
    const auto run = [&](KZB_CALC* calc) {
        test.options(calc);
        kzbcalcSetData(calc);
        return samples(calc, 0, 4);
    };
    const auto open = [&](long number, Refusal refusal, const Trace& sound, Trace& trace, long& asked) {
        Opening found;
        const long blocks_before = live_blocks();
        KZB_CALC* calc = nullptr;
        {
            const ScarceHeap heap(number, refusal);
            found.status = kzbcalcInitialize(test.path.c_str(), test.mode, &calc);
            asked = heap.asked();
        }
        found.has_handle = calc != nullptr;
        trace = run(calc);
        found.same_run = trace == sound;
        {
            const ScarceHeap none(1, Refusal::from_then_on);
            kzbcalcTerminate(calc);  // frees without asking
        }
        found.blocks_left = live_blocks() - blocks_before;
        return found;
    };
    Trace sound;
    Trace trace;
    long needed = 0;
    long asked = 0;
    quietly([&] { return open(0, Refusal::once, sound, trace, needed); });
    quietly([&] { return open(0, Refusal::once, trace, sound, needed); });
    for (const Refusal refusal : both) {
        for (long number = 1; number <= needed; ++number) {
            Opening found = quietly([&] { return open(number, refusal, sound, trace, asked); });
            if (found.blocks_left != 0) {  // the system's converter of texts keeps what it makes in between
                found = quietly([&] { return open(number, refusal, sound, trace, asked); });
            }
            SCOPED_TRACE("allocation " + std::to_string(number) + " of " + std::to_string(needed) +
                         (refusal == Refusal::once ? "" : " and all behind it"));
            EXPECT_TRUE(found.status == 0 || found.status == 180002) << found.status;
            EXPECT_TRUE(found.has_handle || found.status == 180002);
            EXPECT_EQ(found.blocks_left, 0);
            if (found.status == 0) {
                EXPECT_TRUE(found.same_run) << "told as done";
            }
        }
    }
}

class CalculatorMemory : public testing::TestWithParam<Machine> {
  protected:
    void SetUp() override {
        if (!heap_is_own) {
            GTEST_SKIP() << "the sanitizer's heap refuses nothing";
        }
        GetParam().fill(file_);
    }
    ModelFile file_;
};
std::string code_of(const testing::TestParamInfo<Machine>& machine) {
    return std::to_string(machine.param.code);
}
INSTANTIATE_TEST_SUITE_P(MemoryFaults, CalculatorMemory, testing::ValuesIn(machines), code_of);

TEST_P(CalculatorMemory, opening_without_memory_leaves_a_safe_handle) {
    refuse_opening({file_.path(), 1, Stage::opened, no_options});
}

TEST_P(CalculatorMemory, a_call_before_the_data_fails_as_documented) {
    refuse_everything({file_.path(), 1, Stage::opened, no_options});
}

TEST_P(CalculatorMemory, a_call_of_a_running_machine_fails_as_documented) {
    refuse_everything({file_.path(), 1, Stage::running, no_options});
}

class RichMachineMemory : public testing::Test {
  protected:
    void SetUp() override {
        if (!heap_is_own) {
            GTEST_SKIP() << "the sanitizer's heap refuses nothing";
        }
        fill_rotary(rotary_);
        fill_generic(generic_);
        induction_tables(induction_);
    }
    ModelFile rotary_;
    ModelFile generic_;
    ModelFile induction_;
};

TEST_F(RichMachineMemory, opening_without_memory_leaves_a_safe_handle) {
    refuse_opening({rotary_.path(), 1, Stage::opened, with_losses});
    refuse_opening({generic_.path(), 1, Stage::opened, with_losses});
    refuse_opening({induction_.path(), 1, Stage::opened, with_losses});
}

TEST_F(RichMachineMemory, calls_on_a_machine_with_losses_fail_as_documented) {
    for (const Stage stage : {Stage::opened, Stage::bound, Stage::running}) {
        refuse_everything({rotary_.path(), 1, stage, with_losses});
        refuse_everything({generic_.path(), 1, stage, with_losses});
        refuse_everything({induction_.path(), 1, stage, with_losses});
    }
}

TEST_F(RichMachineMemory, calls_on_a_machine_with_integrated_flux_fail_as_documented) {
    refuse_everything({rotary_.path(), 1, Stage::opened, with_integrated_flux});
    refuse_everything({rotary_.path(), 2, Stage::running, with_integrated_flux});
}

TEST_F(RichMachineMemory, calls_that_change_the_connection_fail_as_documented) {
    refuse_everything({rotary_.path(), 1, Stage::opened, with_another_connection});
}

// With debug files and the statistics asked for: what the calls write then takes memory too.
TEST_F(RichMachineMemory, calls_that_write_debug_files_fail_as_documented) {
    const Folder folder;
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(folder / "");
    setenv("DORN_KZ_DEBUG_OUTPUT", "1", 1);
    setenv("KZB_OUTPUT_ELAPSED_TIME", "1", 1);
    setenv("KZBFILEHANDLER_DEBUG_MODE", "1", 1);
    for (ModelFile* const file : {&rotary_, &generic_, &induction_}) {
        refuse_opening({file->path(), 1, Stage::opened, no_options});
        const Case test{file->path(), 1, Stage::bound, no_options};
        const auto step = std::find_if(calculator_calls().begin(), calculator_calls().end(),
                                       [](const auto& call) { return call.name == "kzbcalcExecute"; });
        const Sound sound = quietly([&] { return sound_run(*step, test); });
        for (long number = 1; number <= sound.asked; ++number) {
            refuse(*step, test, sound, number, Refusal::from_then_on);
        }
    }
    unsetenv("DORN_KZ_DEBUG_OUTPUT");
    unsetenv("KZB_OUTPUT_ELAPSED_TIME");
    unsetenv("KZBFILEHANDLER_DEBUG_MODE");
    std::filesystem::current_path(before);
}

}  // namespace
