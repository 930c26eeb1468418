// Ten thousand calculators, one after the other: no memory and no file stays behind.
#include <gtest/gtest.h>
#include <malloc.h>

#include <filesystem>
#include <iterator>
#include <memory>
#include <thread>
#include <vector>

#include "host/host_process.h"
#include "interface/machine_sample.h"
#include "interface/machines.h"
#include "support/files.h"

namespace kzb_test {
namespace {

std::size_t open_files() {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator()));
}

std::size_t heap_in_use() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void open_run_and_close(const std::string& path, int mode) {
    KZB_CALC* calc = nullptr;
    kzbcalcInitialize(path.c_str(), mode, &calc);
    kzbcalcSetData(calc);
    for (int i = 0; i < 4; ++i) {
        step_sample(calc, 1e-4 * i, 1.0 * i, {1.0, -0.5, -0.5, 2.0, 0.0});
        kzbcalcGetTorque(calc);
        kzbcalcUpdate(calc);
    }
    kzbcalcTerminate(calc);
}

TEST(Cycles, ten_thousand_calculators_leave_nothing_behind) {
    const Folder folder;
    const std::string broken = (folder.path() / "broken.kzb").string();
    std::ofstream(broken) << "no model";
    const std::string absent = (folder.path() / "absent.kzb").string();
    std::vector<std::unique_ptr<ModelFile>> files;
    std::vector<std::string> paths{broken, absent};
    for (const Machine& machine : machines) {
        files.push_back(std::make_unique<ModelFile>());
        machine.fill(*files.back());
        paths.push_back(files.back()->path());
    }
    testing::internal::CaptureStderr();  // the two that can't be read are told of
    // On a thread of its own, so that nothing the allocator keeps at hand for a thread counts as in use.
    const auto cycles = [&](int cycle_count) {
        std::thread([&] {
            for (int i = 0; i < cycle_count; ++i) {
                // The mode 3 is refused after the file has been read.
                open_run_and_close(paths[static_cast<std::size_t>(i) % paths.size()], 1 + i / 12 % 3);
            }
        }).join();
    };
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MXFAST, 0);
    // What is kept for good, as the tables of character sets are, comes with the first ones.
    cycles(600);
    std::fflush(stderr);
    const std::size_t files_before = open_files();
    const std::size_t heap_before = heap_in_use();
    constexpr int count = 10000;
    cycles(count);
    const std::size_t heap_after = heap_in_use();
    const std::size_t files_after = open_files();
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(files_after, files_before);
    // Blocks round up by some bytes, as it falls; a block left by each cycle would be hundreds of times as much.
    EXPECT_LT(heap_after, heap_before + 1024);
}

}  // namespace
}  // namespace kzb_test
