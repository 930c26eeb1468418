// A run of a generic model: sources with their switches, any number of motions.
#pragma once

#include <memory>

#include "kzb/simulation.h"

namespace kzb::tool {

class GenericSimulation : public Simulation {
  public:
    GenericSimulation(const std::string& kzb_file, const Machine& machine, const Scenario& scenario);

    std::vector<Output> offered_outputs() const override;
    void run(const std::vector<Output>& outputs,
             const std::function<void(const std::vector<double>&)>& record) override;

  private:
    void feed(double from, Sample& sample) const;
    void read_forces(Sample& sample) const;

    const GenericMachine& generic_;
    const GenericScenario& wishes_;
    std::vector<int> force_ids_;  // of each motion
};

// The simulation that the machine asks for.
std::unique_ptr<Simulation> make_simulation(const std::string& kzb_file, const Machine& machine,
                                            const Scenario& scenario);

}  // namespace kzb::tool
