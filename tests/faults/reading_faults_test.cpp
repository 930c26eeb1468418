// Files that fail while they are read: told, never taken for a shorter file, and nothing lost that a later call could
// still read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

#include "faults/file_faults.h"
#include "faults/models.h"
#include "faults/seeds.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;

constexpr int more_than_any = 200;

std::vector<Seed> all_models(const Folder& folder) {
    std::vector<Seed> seeds = model_seeds(folder);
    for (const Seed& seed : large_seeds(folder)) {
        seeds.push_back(seed);
    }
    return seeds;
}

class ReadingFaults : public testing::Test {
  protected:
    ReadingFaults() { fill_rotary(rotary_); }

    struct Reading {
        int result = 0;
        int error = 0;
        std::string content;
        bool struck = false;
    };
    static Reading read_with(const Seed& seed, const std::string& path, const FaultPlan& plan) {
        const AsciiSwitch ascii(seed.forced_ascii);
        Reading reading;
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        {
            const Quiet quiet;
            const FaultyFiles faults(plan);
            reading.result = kzb_reader(path.c_str(), store);
            kzb_set_application("ALL", "", store);
            reading.struck = faults.struck();
        }
        reading.error = kzb_has_error(store);
        reading.content = content_of(store);
        kzb_finish(store);
        return reading;
    }

    Folder folder_;
    ModelFile rotary_;
};

TEST_F(ReadingFaults, a_refused_read_is_told_by_result_or_error) {
    for (const Seed& seed : all_models(folder_)) {
        const Reading sound = read_with(seed, seed.path, {});
        int struck = 0;
        for (long number = 1; number < more_than_any; ++number) {
            const Reading reading = read_with(seed, seed.path, {FileCall::read, number, FileFault::fails, EIO});
            struck += reading.struck ? 1 : 0;
            if (reading.struck) {
                EXPECT_TRUE(reading.result == 1 || reading.error == 90001) << seed.name << ' ' << number;
            } else {
                EXPECT_EQ(reading.content == sound.content, true) << seed.name;
                break;
            }
        }
        EXPECT_GT(struck, 0) << seed.name;
    }
}

TEST_F(ReadingFaults, short_and_interrupted_reads_read_everything) {
    for (const Seed& seed : all_models(folder_)) {
        const Reading sound = read_with(seed, seed.path, {});
        EXPECT_EQ(sound.result, 0) << seed.name;
        for (const FileFault fault : {FileFault::shortened, FileFault::interrupted}) {
            bool struck = true;
            int hits = 0;
            for (long number = 1; struck && number < more_than_any; ++number) {
                const Reading reading = read_with(seed, seed.path, {FileCall::read, number, fault, 0});
                struck = reading.struck;
                hits += struck ? 1 : 0;
                EXPECT_EQ(reading.result, 0) << seed.name;
                EXPECT_EQ(reading.content == sound.content, true) << seed.name << ' ' << number;
            }
            EXPECT_GT(hits, 0) << seed.name;
        }
    }
}

TEST_F(ReadingFaults, a_refused_open_is_a_file_that_cannot_be_opened) {
    for (const int error : {EACCES, EMFILE, EIO}) {
        const Reading reading = read_with({}, rotary_.path(), {FileCall::open, 1, FileFault::fails, error});
        EXPECT_EQ(reading.result, 1);
        EXPECT_EQ(reading.error, 90001);
        KZB_CALC* calc = nullptr;
        {
            const FaultyFiles faults({FileCall::open, 1, FileFault::fails, error});
            EXPECT_EQ(kzbcalcInitialize(rotary_.path().c_str(), 1, &calc), 180002);
        }
        EXPECT_EQ(kzbcalcTerminate(calc), 0);
    }
}

// Tables that could not be read are read by a later call.
TEST_F(ReadingFaults, a_later_call_loads_what_a_refused_read_left) {
    const std::string sound = [&] {
        KZB_STORE* const store = loaded_store(rotary_.path());
        std::string content = content_of(store);
        kzb_finish(store);
        return content;
    }();
    int struck = 0;
    for (long number = 1; number < more_than_any; ++number) {
        KZB_STORE* store = nullptr;
        kzb_initialize(&store);
        ASSERT_EQ(kzb_reader(rotary_.path().c_str(), store), 0);
        bool hit = false;
        {
            const Quiet quiet;
            const FaultyFiles faults({FileCall::read, number, FileFault::fails, EIO});
            kzb_set_application("ALL", "", store);
            hit = faults.struck();
        }
        EXPECT_EQ(kzb_has_error(store), hit ? 90001 : 0);
        kzb_reset_error(store);
        kzb_set_application("ALL", "", store);
        EXPECT_EQ(kzb_has_error(store), 0);
        EXPECT_EQ(content_of(store) == sound, true) << number;
        kzb_finish(store);
        struck += hit ? 1 : 0;
        if (!hit) {
            break;
        }
    }
    EXPECT_GT(struck, 0);
}

TEST_F(ReadingFaults, a_calculator_opens_with_all_its_tables_or_not_at_all) {
    int struck = 0;
    for (long number = 1; number < more_than_any; ++number) {
        KZB_CALC* calc = nullptr;
        bool hit = false;
        int status = 0;
        {
            const Quiet quiet;
            const FaultyFiles faults({FileCall::read, number, FileFault::fails, EIO});
            status = kzbcalcInitialize(rotary_.path().c_str(), 1, &calc);
            hit = faults.struck();
        }
        EXPECT_EQ(status, hit ? 180002 : 0) << number;
        kzbcalcTerminate(calc);
        struck += hit ? 1 : 0;
        if (!hit) {
            break;
        }
    }
    EXPECT_GT(struck, 0);
}

TEST_F(ReadingFaults, measured_files_that_fail_leave_the_store_as_it_was_or_tell_so) {
    const CallFiles files = write_call_files(folder_, rotary_.path());
    const struct {
        int (*read)(const char*, KZB_STORE*);
        const std::string& path;
    } calls[] = {{kzb_add_loss_table, files.losses},
                 {kzb_add_equivalent_copper_loss_resistance_table, files.copper_losses},
                 {kzb_read_correction_file, files.correction}};
    for (const auto& call : calls) {
        for (const FileCall kind : {FileCall::open, FileCall::read}) {
            bool struck = true;
            int hits = 0;
            for (long number = 1; struck && number < more_than_any; ++number) {
                KZB_STORE* const store = loaded_store(rotary_.path());
                const std::string before = content_of(store);
                int result = 0;
                {
                    const Quiet quiet;
                    const FaultyFiles faults({kind, number, FileFault::fails, EIO});
                    result = call.read(call.path.c_str(), store);
                    struck = faults.struck();
                }
                EXPECT_EQ(result, struck ? 1 : 0);
                EXPECT_EQ(kzb_has_error(store) != 0, struck);
                EXPECT_EQ(content_of(store) == before, struck);
                kzb_finish(store);
                hits += struck ? 1 : 0;
            }
            EXPECT_GT(hits, 0) << call.path << ' ' << static_cast<int>(kind);
        }
    }
}

}  // namespace
