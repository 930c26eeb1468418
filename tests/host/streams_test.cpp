// A host without standard output and error: what would be printed goes nowhere, above all not into a file of the
// library that has got the number of a closed stream.
#include <fcntl.h>
#include <gtest/gtest.h>

#include "KZBCalculator/kzb_store.h"
#include "host/host_process.h"
#include "same_bits/runs.h"
#include "support/environment.h"
#include "support/files.h"

namespace kzb_test {
namespace {

void close_streams() {
    ::close(STDIN_FILENO);
    ::close(STDOUT_FILENO);
    ::close(STDERR_FILENO);
}

bool streams_are_closed() {
    return ::fcntl(STDIN_FILENO, F_GETFD) == -1 && ::fcntl(STDOUT_FILENO, F_GETFD) == -1 &&
           ::fcntl(STDERR_FILENO, F_GETFD) == -1;
}

TEST(ClosedStreams, runs_give_the_same_bits) {
    for (const char* const name : {"pmsm_harmonic", "induction_tables", "wound_field", "solenoid", "generic_parts"}) {
        const MachineRun& run = run_named(name);
        const RunFile file(run);
        const Bits expected = results_of(run, file.path(), 5);
        EXPECT_EQ(in_a_process([&] {
                      close_streams();
                      return results_of(run, file.path(), 5) == expected && streams_are_closed() ? 0 : 1;
                  }),
                  0)
            << name;
    }
}

// Makes every kind of print that the store knows.
void print(KZB_STORE* store) {
    const int outside[] = {99, 99, 99, 99};
    kzb_get_table_value("current_flux", "flux", outside, store);
    kzb_set_table_axis_value("current_flux", "flux", 77, 0, 1.0, store);
    kzb_print_error_short_message(90006);
    kzb_print_warning_short_message(90033);
}

// Copies the file `from` to `to` by reading and writing it.
void copy(const char* from, const char* to) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_reader(from, store);
    kzb_set_application("ALL", "", store);
    print(store);
    kzb_writer(to, store);
    kzb_finish(store);
}

TEST(ClosedStreams, written_file_holds_nothing_that_was_printed) {
    const RunFile file(run_named("pmsm_harmonic"));
    const Folder folder;
    const std::string open = (folder.path() / "open.kzb").string();
    const std::string closed = (folder.path() / "closed.kzb").string();
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    copy(file.path(), open.c_str());
    EXPECT_NE(testing::internal::GetCapturedStdout(), "");
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(in_a_process([&] {
                  close_streams();
                  copy(file.path(), closed.c_str());
                  return streams_are_closed() ? 0 : 1;
              }),
              0);
    EXPECT_GT(read_file(open).size(), 100000U);
    EXPECT_TRUE(read_file(open) == read_file(closed));
}

TEST(ClosedStreams, debug_files_hold_nothing_that_was_printed) {
    const MachineRun& run = run_named("pmsm_harmonic");
    const RunFile file(run);
    const auto debug_files = [&](bool without_streams) {
        const Folder folder;
        const int result = in_a_process([&] {
            if (without_streams) {
                close_streams();
            }
            const WorkingIn place(folder.path());
            const Environment debug("DORN_KZ_DEBUG_OUTPUT", "1");
            KZB_CALC* calc = nullptr;
            Bits bits;
            kzbcalcInitialize(file.path(), 1, &calc);
            configure(run, calc, bits);
            drive(run, calc, 0, 3, bits);
            if (without_streams) {
                kzb_print_warning_short_message(90033);
                std::fflush(stdout);
                kzb_print_error_short_message(90006);
            }
            drive(run, calc, 3, 6, bits);
            kzbcalcTerminate(calc);
            return 0;
        });
        EXPECT_EQ(result, 0);
        std::string all;
        for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
            all += read_file(entry.path());
        }
        return all;
    };
    const std::string expected = debug_files(false);
    EXPECT_NE(expected, "");
    EXPECT_EQ(debug_files(true), expected);
}

}  // namespace
}  // namespace kzb_test
