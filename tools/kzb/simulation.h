// One run of a scenario: opens the model, configures it and steps it through all samples.
//
// The rhythm of a sample: time, displacement, inputs, execute, results, update. A free mass moves on between samples
// with the torque of the last one.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "KZBCalculator/kzbcalc.h"
#include "kzb/lookup_exits.h"
#include "kzb/machine.h"
#include "kzb/outputs.h"
#include "kzb/run_report.h"
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
    virtual ~Simulation() = default;
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    // The configuration calls and kzbcalcSetData; every call that was refused is listed in failed_sets().
    void configure();
    const std::vector<FailedSet>& failed_sets() const { return failed_sets_; }

    virtual std::vector<Output> offered_outputs() const;
    // Steps through all samples; each recorded one goes to `record` with the values of `outputs`.
    virtual void run(const std::vector<Output>& outputs, const std::function<void(const std::vector<double>&)>& record);

    // Samples whose lookups left a code in the store, by code.
    const std::map<int, std::uint64_t>& lookup_errors() const { return lookup_errors_; }
    // Where lookups left their tables.
    std::vector<AxisExit> exits() const { return exits_ ? exits_->exits() : std::vector<AxisExit>(); }
    // How the steps were solved.
    PassReport passes() const { return passes_of(*handle_, executed_); }
    KZB_CALC* handle() const { return handle_.get(); }

  protected:
    const Scenario& scenario() const { return scenario_; }
    static void check(int status, const char* call, double time);
    // One solution of the present sample.
    void execute_once(double time);
    // From here on lookups count.
    void begin_lookups();
    // After each sample: the error that its lookups left.
    void count_lookup_error();

  private:
    struct Closer {
        void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
    };
    void set(const std::vector<ModelCall>& calls);
    void feed(double from, Sample& sample);
    void feed_phase(std::size_t phase, bool connected, Sample& sample);
    // Solves the sample anew as long as its currents change the inputs of a supply.
    void execute(Sample& sample);
    std::vector<double> currents() const;
    double read_torque() const;

    const Machine& machine_;
    const Scenario& scenario_;
    std::unique_ptr<KZB_CALC, Closer> handle_;
    std::unique_ptr<Supply> supply_;  // null: the phases follow their sources
    std::vector<FailedSet> failed_sets_;
    std::map<int, std::uint64_t> lookup_errors_;
    std::uint64_t executed_ = 0;        // calls of kzbcalcExecute
    std::optional<LookupExits> exits_;  // before the handle's store is gone
    bool by_spline_ = false;
};

}  // namespace kzb::tool
