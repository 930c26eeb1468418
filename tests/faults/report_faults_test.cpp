// Debug files and statistics that cannot be written: passed over, and the machine's results are the same.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "faults/machine_run.h"
#include "faults/models.h"
#include "interface/machines.h"
#include "support/quiet.h"

namespace {

using namespace kzb_test;

// Everything that the library writes into the current folder on request.
const char* const report_names[] = {"VEKT_debug_Flux.csv",
                                    "VEKT_debug_L.csv",
                                    "VEKT_debug_I_beta_theta.csv",
                                    "VEKT_debug_IV.csv",
                                    "VEKT_debug_LossTable.csv",
                                    "VEKT_debug_FluxIntegral.csv",
                                    "VEKT_debug_R.csv",
                                    "VEKT_debug_TEq.csv",
                                    "VEKT_debug_Deriv.csv",
                                    "VEKT_debug_DerivI.csv",
                                    "VEKT_debug_Trq.csv",
                                    "VEKT_debug_IampBeta.csv",
                                    "VEKT_debug_Itr_IV.csv",
                                    "VEKT_debug_Itr_Flux.csv",
                                    "VEKT_debug_Itr_L.csv",
                                    "VEKT_debug_Itr_IampBeta.csv",
                                    "VEKT_debug_Axis.csv",
                                    "VEKT_debug_Itr.csv",
                                    "VEKT_debug_Itr_Axis.csv",
                                    "KZBtime.txt",
                                    "KZBFileHandlerDebug.txt"};
const char* const switches[] = {"DORN_KZ_DEBUG_OUTPUT", "DORN_KZ_DEBUG_ITR", "KZB_OUTPUT_ELAPSED_TIME",
                                "KZBFILEHANDLER_DEBUG_MODE"};

// In a folder of its own, with everything asked for.
class Reporting {
  public:
    Reporting() : before_(std::filesystem::current_path()) {
        std::filesystem::current_path(folder_ / "");
        for (const char* const name : switches) {
            setenv(name, "1", 1);
        }
    }
    Reporting(const Reporting&) = delete;
    Reporting& operator=(const Reporting&) = delete;
    ~Reporting() {
        for (const char* const name : switches) {
            unsetenv(name);
        }
        std::filesystem::current_path(before_);
    }

  private:
    Folder folder_;
    std::filesystem::path before_;
};

Trace run(const std::string& path) {
    const Quiet quiet;
    const Calculator calc(path);
    kzbcalcSetData(calc);
    return samples(calc, 0, 6);
}

class ReportFaults : public testing::TestWithParam<Machine> {};
INSTANTIATE_TEST_SUITE_P(FileFaults, ReportFaults, testing::ValuesIn(machines),
                         [](const auto& machine) { return std::to_string(machine.param.code); });

TEST_P(ReportFaults, reports_that_cannot_be_written_change_nothing) {
    ModelFile file;
    GetParam().fill(file);
    const std::string path = file.path();
    const Trace sound = [&] {
        const Reporting reporting;
        const Trace trace = run(path);
        EXPECT_TRUE(std::filesystem::file_size("KZBtime.txt") > 0);
        for (const auto& entry : std::filesystem::directory_iterator(".")) {
            const auto* const known =
                std::find(std::begin(report_names), std::end(report_names), entry.path().filename().string());
            EXPECT_NE(known, std::end(report_names)) << entry.path();
        }
        return trace;
    }();
    {
        const Reporting reporting;
        for (const char* const name : report_names) {
            std::filesystem::create_symlink("/dev/full", name);
        }
        EXPECT_TRUE(run(path) == sound);
    }
    {
        const Reporting reporting;
        for (const char* const name : report_names) {
            std::filesystem::create_directory(name);
        }
        EXPECT_TRUE(run(path) == sound);
    }
}

}  // namespace
