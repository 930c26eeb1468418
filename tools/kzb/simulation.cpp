#include "kzb/simulation.h"

#include <algorithm>
#include <cmath>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "interface/kzbcalc_handle.h"
#include "kzb/command.h"
#include "kzb/console.h"
#include "kzb/library_noise.h"
#include "kzb/older_text.h"
#include "kzb/status_text.h"

namespace kzb::tool {

namespace {

constexpr int voltage_mode = 1;
constexpr int current_mode = 2;

bool is_open(const std::vector<std::pair<double, double>>& windows, double time) {
    return std::any_of(windows.begin(), windows.end(),
                       [time](const auto& window) { return time >= window.first && time < window.second; });
}

}  // namespace

Simulation::Simulation(const std::string& kzb_file, const Machine& machine, const Scenario& scenario)
    : machine_(machine), scenario_(scenario) {
    const OlderText form(kzb_file);
    LibraryNoise noise;
    KZB_CALC* handle = nullptr;
    const int status =
        kzbcalcInitialize(kzb_file.c_str(), scenario.current_driven ? current_mode : voltage_mode, &handle);
    handle_.reset(handle);
    const std::vector<std::string> said = noise.lines();
    if (status != 0 || handle == nullptr) {
        throw Failure(exit_file, fmt::format("{}: kzbcalcInitialize: status {} ({}){}{}", kzb_file, status,
                                             status_text(status), said.empty() ? "" : ": ", fmt::join(said, "; ")));
    }
    for (const std::string& line : said) {
        if (line.find("old formats files") == std::string::npos) {
            warn(fmt::format("{}: {}", kzb_file, line));
        }
    }
}

void Simulation::set(const std::vector<ModelCall>& calls) {
    for (const ModelCall& call : calls) {
        const int status = call.call(handle_.get());
        if (status != 0) {
            failed_sets_.push_back({call.place, call.name, status});
        }
    }
}

void Simulation::configure() {
    set(scenario_.before_data);
    check(kzbcalcSetData(handle_.get()), "kzbcalcSetData", scenario_.start);
    set(scenario_.after_data);
}

std::vector<Output> Simulation::offered_outputs() const {
    return outputs_of(machine_, scenario_.current_driven, handle_.get());
}

void Simulation::check(int status, const char* call, double time) const {
    if (status != 0) {
        throw Failure(exit_run_failed,
                      fmt::format("{} at {} s: status {} ({})", call, time, status, status_text(status)));
    }
}

void Simulation::feed(double from, Sample& sample) {
    KZB_CALC* const handle = handle_.get();
    check(kzbcalcSetTime(sample.time, handle), "kzbcalcSetTime", sample.time);
    check(kzbcalcSetDisplacement(sample.displacement, handle), "kzbcalcSetDisplacement", sample.time);
    for (std::size_t k = 0; k < machine_.phases.size(); ++k) {
        const int phase = static_cast<int>(k) + 1;
        sample.applied[k] = scenario_.sources[k].sample(from, sample.time);
        if (scenario_.current_driven) {
            check(kzbcalcSetCurrent(phase, sample.applied[k], handle), "kzbcalcSetCurrent", sample.time);
        } else {
            check(kzbcalcSetVoltage(phase, sample.applied[k], handle), "kzbcalcSetVoltage", sample.time);
        }
        const int connected = is_open(scenario_.open_phase[k], sample.time) ? 0 : 1;
        check(kzbcalcSetSignal(phase, connected, handle), "kzbcalcSetSignal", sample.time);
    }
}

double Simulation::read_torque() const {
    return machine_.linear ? kzbcalcGetForce(handle_.get()) : kzbcalcGetTorque(handle_.get());
}

void Simulation::run(const std::vector<Output>& outputs,
                     const std::function<void(const std::vector<double>&)>& record) {
    KZB_CALC* const handle = handle_.get();
    KZB_STORE* const store = handle->store.get();
    Mechanics mechanics(scenario_.motion, machine_.linear, scenario_.start);
    Sample sample;
    sample.applied.resize(machine_.phases.size());
    std::vector<double> values(outputs.size());
    Progress progress("run", scenario_.samples);
    kzb_reset_error(store);

    for (std::uint64_t k = 0; k < scenario_.samples; ++k) {
        sample.time = scenario_.time_of(k);
        sample.displacement = mechanics.displacement();
        sample.speed = mechanics.speed();
        feed(k == 0 ? sample.time : scenario_.time_of(k - 1), sample);
        if (!scenario_.current_driven) {
            check(kzbcalcExecute(handle), "kzbcalcExecute", sample.time);
        }
        // Before all other getters: with given currents this is the evaluation that they report.
        sample.torque = read_torque();
        if (scenario_.motion.kind == Motion::free && !std::isfinite(sample.torque)) {
            throw Failure(exit_run_failed, fmt::format("the {} is not finite at {} s, the motion cannot go on",
                                                       machine_.linear ? "force" : "torque", sample.time));
        }
        if (k % scenario_.record_every == 0 && sample.time >= scenario_.record_from) {
            std::transform(outputs.begin(), outputs.end(), values.begin(),
                           [&](const Output& output) { return output.read(sample, handle); });
            record(values);
        }
        check(kzbcalcUpdate(handle), "kzbcalcUpdate", sample.time);
        if (const int error = kzb_has_error(store); error != 0) {
            ++lookup_errors_[error];
            kzb_reset_error(store);
        }
        mechanics.advance(scenario_.time_of(k + 1), sample.torque);
        progress.at(k);
    }
}

}  // namespace kzb::tool
