#include "kzb/generic_simulation.h"

#include <algorithm>
#include <cmath>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "interface/kzbcalc_handle.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/generic_machine.h"
#include "kzb/outputs_generic.h"

namespace kzb::tool {

namespace {

bool is_off(const std::vector<std::pair<double, double>>& windows, double time) {
    return std::any_of(windows.begin(), windows.end(),
                       [time](const auto& window) { return time >= window.first && time < window.second; });
}

}  // namespace

GenericSimulation::GenericSimulation(const std::string& kzb_file, const Machine& machine, const Scenario& scenario)
    : Simulation(kzb_file, machine, scenario), generic_(*machine.generic), wishes_(scenario.generic) {
    for (std::size_t k = 0; k < generic_.motions.names.size(); ++k) {
        force_ids_.push_back(kzbcalcGetMotionReferTableIdForGeneric(static_cast<int>(k) + 1, handle()));
    }
}

std::vector<Output> GenericSimulation::offered_outputs() const {
    return generic_outputs(generic_, wishes_.current, handle());
}

void GenericSimulation::feed(double from, Sample& sample) const {
    check(kzbcalcSetTime(sample.time, handle()), "kzbcalcSetTime", sample.time);
    for (std::size_t k = 0; k < sample.displacements.size(); ++k) {
        check(kzbcalcSetDisplacementForGenericModel(static_cast<int>(k) + 1, sample.displacements[k], handle()),
              "kzbcalcSetDisplacementForGenericModel", sample.time);
    }
    for (std::size_t k = 0; k < sample.applied.size(); ++k) {
        const int port = static_cast<int>(k) + 1;
        sample.applied[k] = wishes_.sources[k].sample(from, sample.time);
        check(kzbcalcSetPowerSupplyForGenericModel(port, sample.applied[k], handle()),
              "kzbcalcSetPowerSupplyForGenericModel", sample.time);
        check(kzbcalcSetPowerSupplySwitchForGenericModel(port, is_off(wishes_.switched_off[k], sample.time) ? 0 : 1,
                                                         handle()),
              "kzbcalcSetPowerSupplySwitchForGenericModel", sample.time);
    }
}

void GenericSimulation::read_forces(Sample& sample) const {
    for (std::size_t k = 0; k < sample.forces.size(); ++k) {
        sample.forces[k] = generic_.has_force ? kzbcalcGetForceForGenericModel(force_ids_[k], handle()) : 0.0;
        if (wishes_.motions[k].kind == Motion::free && !std::isfinite(sample.forces[k])) {
            throw Failure(exit_run_failed, fmt::format("the force of {} is not finite at {} s, the motion cannot go on",
                                                       generic_.motions.names[k], sample.time));
        }
    }
}

void GenericSimulation::run(const std::vector<Output>& outputs,
                            const std::function<void(const std::vector<double>&)>& record) {
    std::vector<Mechanics> mechanics;
    for (std::size_t k = 0; k < wishes_.motions.size(); ++k) {
        mechanics.emplace_back(wishes_.motions[k], !generic_.rotation[k], scenario().start);
    }
    Sample sample;
    sample.applied.resize(generic_.sources.names.size());
    sample.displacements.resize(mechanics.size());
    sample.speeds.resize(mechanics.size());
    sample.forces.resize(mechanics.size());
    std::vector<double> values(outputs.size());
    Progress progress("run", scenario().samples);
    begin_lookups();
    for (std::uint64_t n = 0; n < scenario().samples; ++n) {
        sample.time = scenario().time_of(n);
        for (std::size_t k = 0; k < mechanics.size(); ++k) {
            sample.displacements[k] = mechanics[k].displacement();
            sample.speeds[k] = mechanics[k].speed();
        }
        feed(n == 0 ? sample.time : scenario().time_of(n - 1), sample);
        execute_once(sample.time);
        read_forces(sample);
        if (n % scenario().record_every == 0 && sample.time >= scenario().record_from) {
            std::transform(outputs.begin(), outputs.end(), values.begin(),
                           [&](const Output& output) { return output.read(sample, handle()); });
            record(values);
        }
        check(kzbcalcUpdate(handle()), "kzbcalcUpdate", sample.time);
        count_lookup_error();
        for (std::size_t k = 0; k < mechanics.size(); ++k) {
            mechanics[k].advance(scenario().time_of(n + 1), sample.forces[k]);
        }
        progress.at(n);
    }
}

std::unique_ptr<Simulation> make_simulation(const std::string& kzb_file, const Machine& machine,
                                            const Scenario& scenario) {
    if (machine.generic) {
        return std::make_unique<GenericSimulation>(kzb_file, machine, scenario);
    }
    return std::make_unique<Simulation>(kzb_file, machine, scenario);
}

}  // namespace kzb::tool
