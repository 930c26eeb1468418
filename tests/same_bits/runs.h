// A fixed set of runs that goes through every model: which machine, what is switched on, and the run itself through the
// exported calls, every getter read at every sample.
//
// The machines are those of the benchmarks, filled by formula, and small circuits. A run depends on nothing but its
// record here: the same calls with the same numbers each time.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "same_bits/bits.h"

namespace kzb_test {

struct MachineRun {
    std::string name;
    std::function<void(const char* path)> write;  // makes the file
    int calc_mode = 1;                            // 1 by voltage, 2 by current
    int interpolation = 0;                        // of kzbcalcSetInterpolationType
    bool everything = false;                      // losses, corrections, temperatures, initial values
    bool open_phases = false;
    double voltage = 60.0;  // V, peak
    double current = 80.0;  // A, peak
    double reach = 360.0;   // of a turn of the machine: degrees, or m
    int samples = 120;
};

inline void PrintTo(const MachineRun& run, std::ostream* out) {
    *out << run.name;
}

const std::vector<MachineRun>& all_runs();
const MachineRun& run_named(const std::string& name);

// The file of a run, in the temporary directory, gone with the object.
class RunFile {
  public:
    explicit RunFile(const MachineRun& run);
    ~RunFile();
    RunFile(const RunFile&) = delete;
    RunFile& operator=(const RunFile&) = delete;
    const char* path() const { return path_.c_str(); }

  private:
    std::string path_;
};

// Options, binding and initial values of an open calculator; the statuses go to `bits`.
void configure(const MachineRun& run, KZB_CALC* calc, Bits& bits);
// The samples from `first` to before `last` of a configured calculator.
void drive(const MachineRun& run, KZB_CALC* calc, int first, int last, Bits& bits);
// Every result of the calculator as it stands, without the inductances by row and column.
void read_results(KZB_CALC* calc, Bits& bits);
void read_inductances(KZB_CALC* calc, Bits& bits);
// The whole run, from opening `path` to the end; `samples` of it where that is fewer.
Bits results_of(const MachineRun& run, const char* path, int samples = 1 << 20);

// Lookups in all schemes, transforms, counters and every table value of a file, through the store's calls.
Bits store_results(const char* path);

}  // namespace kzb_test
