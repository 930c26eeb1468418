// Store calls while memory runs out: each allocation of each call refused, alone and with all behind it.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>

#include "faults/calls.h"
#include "faults/heap.h"
#include "faults/models.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;

constexpr Refusal both[] = {Refusal::once, Refusal::from_then_on};

class StoreMemory : public testing::Test {
  protected:
    StoreMemory() {
        fill_rotary(rotary_);
        fill_generic(generic_);
        calls_ = store_calls(write_call_files(folder_, rotary_.path()));
    }

    KZB_STORE* fresh(const StoreCall& call) {
        return loaded_store(call.model == StoreModel::rotary ? rotary_.path() : generic_.path());
    }

    // What the call answers and makes of the store with all the memory it wants, and how often it asks for some.
    struct Sound {
        double result;
        long asked;
        std::string before;
        std::string after;
    };
    Sound sound_run(const StoreCall& call) {
        KZB_STORE* const store = fresh(call);
        Sound sound{0.0, 0, content_of(store), {}};
        {
            const Quiet quiet;
            const ScarceHeap heap(0, Refusal::once);
            sound.result = call.call(store);
            sound.asked = heap.asked();
        }
        sound.after = content_of(store);
        kzb_finish(store);
        return sound;
    }

    // What becomes of the call and the store; nothing of it is kept on the heap.
    struct Outcome {
        double result;
        long refused;
        bool as_before;
        bool as_done;
        double again;  // the same call, with memory
        bool made_good;
        long blocks_left;
    };
    Outcome outcome(const StoreCall& call, const Sound& sound, long number, Refusal refusal) {
        Outcome outcome{};
        const long blocks_before = live_blocks();
        KZB_STORE* const store = fresh(call);
        {
            const Quiet quiet;
            const ScarceHeap heap(number, refusal);
            outcome.result = call.call(store);
            outcome.refused = heap.refused();
        }
        outcome.as_before = content_of(store) == sound.before;
        outcome.as_done = content_of(store) == sound.after;
        outcome.again = quietly([&] { return call.call(store); });
        outcome.made_good = content_of(store) == sound.after;
        kzb_finish(store);
        outcome.blocks_left = live_blocks() - blocks_before;
        return outcome;
    }

    void refuse(const StoreCall& call, const Sound& sound, long number, Refusal refusal) {
        Outcome found = outcome(call, sound, number, refusal);
        if (found.blocks_left != 0) {
            found = outcome(call, sound, number, refusal);  // the system's converter keeps what it makes in between
        }
        const bool failed = std::count(call.failures.begin(), call.failures.end(), found.result) != 0;
        SCOPED_TRACE(call.name + ", allocation " + std::to_string(number) + " of " + std::to_string(sound.asked) +
                     (refusal == Refusal::once ? "" : " and all behind it"));
        EXPECT_TRUE(failed || found.result == sound.result) << found.result;
        EXPECT_EQ(found.refused > 0, number <= sound.asked);
        EXPECT_EQ(found.blocks_left, 0);
        if (!failed) {
            EXPECT_TRUE(found.as_done) << "told as done";
        } else if (call.change != StoreChange::partial && found.result != sound.result) {
            EXPECT_TRUE(found.as_before) << "told as not done";
        }
        if (call.change != StoreChange::partial) {
            EXPECT_EQ(found.again, sound.result);
            EXPECT_TRUE(found.made_good) << "with memory again";
        }
    }

    Folder folder_;
    ModelFile rotary_;
    ModelFile generic_;
    std::vector<StoreCall> calls_;
};

TEST_F(StoreMemory, calls_that_run_out_of_memory_fail_as_documented) {
    if (!heap_is_own) {
        GTEST_SKIP() << "the sanitizer's heap refuses nothing";
    }
    for (const StoreCall& call : calls_) {
        sound_run(call);  // what is made once for the process is made now
        const Sound sound = sound_run(call);
        for (const Refusal refusal : both) {
            for (long number = 1; number <= sound.asked; ++number) {
                refuse(call, sound, number, refusal);
            }
        }
        if (sound.asked == 0) {
            refuse(call, sound, 1, Refusal::from_then_on);
        }
    }
}

// The old file, or the whole new one, and nothing beside it.
TEST_F(StoreMemory, finish_without_memory_leaves_the_old_file_or_the_whole_new_one) {
    if (!heap_is_own) {
        GTEST_SKIP() << "the sanitizer's heap refuses nothing";
    }
    const Folder place;
    const std::string path = place / "out";
    const auto finish = [&](long number, Refusal refusal) {
        KZB_STORE* const store = loaded_store(rotary_.path());
        kzb_writer(path.c_str(), store);
        const ScarceHeap heap(number, refusal);
        kzb_finish(store);
        return heap.asked();
    };
    const long asked = finish(0, Refusal::once);
    const std::string whole = read_file(path);
    for (const Refusal refusal : both) {
        for (long number = 1; number <= asked; ++number) {
            write_file(path, "the file of before");
            const long blocks_before = live_blocks();
            finish(number, refusal);
            EXPECT_EQ(live_blocks(), blocks_before) << number;
            const std::string content = read_file(path);
            EXPECT_TRUE(content == "the file of before" || content == whole) << number;
            EXPECT_EQ(place.names().size(), 1U);
        }
    }
    EXPECT_GT(asked, 0);
}

// Reading and loading from the start: a file that was read to its end has the tables that found no memory loaded by the
// next call.
TEST_F(StoreMemory, a_file_that_is_told_as_read_can_be_loaded) {
    if (!heap_is_own) {
        GTEST_SKIP() << "the sanitizer's heap refuses nothing";
    }
    KZB_STORE* const loaded = loaded_store(rotary_.path());
    const std::string sound = content_of(loaded);
    kzb_finish(loaded);
    struct Attempt {
        int result;
        long refused;
        bool whole;
        long blocks_left;
    };
    const auto attempt = [&](long number, Refusal refusal) {
        Attempt made{};
        const long blocks_before = live_blocks();
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        {
            const Quiet quiet;
            const ScarceHeap heap(number, refusal);
            made.result = kzb_reader(rotary_.path().c_str(), store);
            kzb_set_application("ALL", "", store);
            made.refused = heap.refused();
        }
        kzb_set_application("ALL", "", store);
        made.whole = content_of(store) == sound;
        kzb_finish(store);
        made.blocks_left = live_blocks() - blocks_before;
        return made;
    };
    for (const Refusal refusal : both) {
        int read = 0;  // although some of it found no memory, but for the last time
        Attempt made{0, 1, true, 0};
        for (long number = 1; made.refused > 0; ++number) {
            made = attempt(number, refusal);
            if (made.blocks_left != 0) {
                made = attempt(number, refusal);  // the system's converter keeps what it makes in between
            }
            EXPECT_EQ(made.blocks_left, 0) << number;
            EXPECT_TRUE(made.whole || made.result == 1) << number << ": with memory again";
            EXPECT_TRUE(made.result == 0 || made.refused > 0) << number;
            read += made.result == 0 ? 1 : 0;
        }
        EXPECT_GT(read, 10);
    }
}

TEST_F(StoreMemory, a_store_that_finds_no_memory_is_null) {
    if (!heap_is_own) {
        GTEST_SKIP() << "the sanitizer's heap refuses nothing";
    }
    KZB_STORE* store = nullptr;
    long asked = 0;
    {
        const ScarceHeap heap(0, Refusal::once);
        kzb_initialize(&store);
        asked = heap.asked();
    }
    kzb_finish(store);
    for (long number = 1; number <= asked; ++number) {
        const long blocks_before = live_blocks();
        {
            const ScarceHeap heap(number, Refusal::once);
            kzb_initialize(&store);
        }
        EXPECT_EQ(store, nullptr);
        kzb_finish(store);
        EXPECT_EQ(live_blocks(), blocks_before);
    }
}

// Every exported name is one of these calls, or one of the four that open and close.
TEST_F(StoreMemory, no_exported_call_is_left_out) {
    std::set<std::string> tested{"kzb_initialize", "kzb_finish", "kzbcalcInitialize", "kzbcalcTerminate"};
    for (const StoreCall& call : calls_) {
        tested.insert(call.name);
    }
    for (const CalculatorCall& call : calculator_calls()) {
        tested.insert(call.name);
    }
    std::ifstream map(std::string(KZB_SOURCE_DIR) + "/src/interface/exports.map");
    std::set<std::string> exported;
    for (std::string line; std::getline(map, line);) {
        const std::size_t start = line.find("kzb");
        const std::size_t end = line.find(';');
        if (start != std::string::npos && end != std::string::npos) {
            const std::string name = line.substr(start, end - start);
            // The one name with its signature.
            exported.insert(name.substr(0, name.find("iP8KZB_CALC")));
        }
    }
    EXPECT_EQ(exported.size(), 237U);
    EXPECT_EQ(tested, exported);
}

}  // namespace
