// One run of a scenario: opens the model, configures it and steps it through all samples.
//
// The rhythm of a sample: time, displacement, inputs, execute, results, update. A free mass moves on between samples
// with the torque of the last one.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/machine.h"
#include "kzb/outputs.h"
#include "kzb/scenario.h"

namespace kzb::tool {

struct FailedSet {
    std::string place;
    std::string call;
    int status = 0;
};

class Simulation {
  public:
    // Failure when the library does not open the file.
    Simulation(const std::string& kzb_file, const Machine& machine, const Scenario& scenario);

    // The configuration calls and kzbcalcSetData; every call that was refused is listed in failed_sets().
    void configure();
    const std::vector<FailedSet>& failed_sets() const { return failed_sets_; }

    std::vector<Output> offered_outputs() const;
    // Steps through all samples; each recorded one goes to `record` with the values of `outputs`.
    void run(const std::vector<Output>& outputs, const std::function<void(const std::vector<double>&)>& record);

    // Samples whose lookups left a code in the store, by code.
    const std::map<int, std::uint64_t>& lookup_errors() const { return lookup_errors_; }

  private:
    struct Closer {
        void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
    };
    void set(const std::vector<ModelCall>& calls);
    void feed(double from, Sample& sample);
    double read_torque() const;
    void check(int status, const char* call, double time) const;

    const Machine& machine_;
    const Scenario& scenario_;
    std::unique_ptr<KZB_CALC, Closer> handle_;
    std::vector<FailedSet> failed_sets_;
    std::map<int, std::uint64_t> lookup_errors_;
};

}  // namespace kzb::tool
