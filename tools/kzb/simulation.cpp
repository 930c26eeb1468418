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
#include "table/lookup.h"

namespace kzb::tool {

namespace {

constexpr int voltage_mode = 1;
constexpr int current_mode = 2;

// Lookups by "Spline" over two and more axes leave "table not found" behind them even when they succeed: by choice, or
// of the magnet flux of these machines always.
bool looks_up_by_spline(const KZB_CALC& handle) {
    const int type = handle.motor_type;
    return handle.model->interpolation() == "Spline" || type == 10003 || type == 10004 || type == 10005 ||
           (type == 10000 && handle.store->application == "SimpleHarmonic");
}

bool is_open(const std::vector<std::pair<double, double>>& windows, double time) {
    return std::any_of(windows.begin(), windows.end(),
                       [time](const auto& window) { return time >= window.first && time < window.second; });
}

}  // namespace

Simulation::Simulation(const std::string& kzb_file, const Machine& machine, const Scenario& scenario)
    : machine_(machine), scenario_(scenario), supply_(make_supply(scenario.supply, machine)) {
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
    if (machine_.slip_tables && machine_.is_induction()) {
        // The state of such a model moves by this, which an option of the scenario may replace.
        check(kzbcalcSetStepSize(scenario_.step, handle_.get()), "kzbcalcSetStepSize", scenario_.start);
    }
    set(scenario_.after_data);
}

std::vector<Output> Simulation::offered_outputs() const {
    return outputs_of(machine_, scenario_.current_driven, handle_.get());
}

void Simulation::check(int status, const char* call, double time) {
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
        sample.applied[k] = supply_ ? supply_->input(k).voltage : scenario_.sources[k].sample(from, sample.time);
        feed_phase(k, !supply_ || supply_->input(k).connected, sample);
    }
    if (scenario_.slip.given()) {
        const double slip = scenario_.slip.at(sample.time, sample.speed, machine_.number_of_poles);
        check(kzbcalcSetSlipFrequency(slip, handle), "kzbcalcSetSlipFrequency", sample.time);
    }
}

void Simulation::feed_phase(std::size_t phase, bool connected, Sample& sample) {
    KZB_CALC* const handle = handle_.get();
    const int number = static_cast<int>(phase) + 1;
    if (scenario_.current_driven) {
        check(kzbcalcSetCurrent(number, sample.applied[phase], handle), "kzbcalcSetCurrent", sample.time);
    } else {
        check(kzbcalcSetVoltage(number, sample.applied[phase], handle), "kzbcalcSetVoltage", sample.time);
    }
    const int signal = connected && !is_open(scenario_.open_phase[phase], sample.time) ? 1 : 0;
    check(kzbcalcSetSignal(number, signal, handle), "kzbcalcSetSignal", sample.time);
}

std::vector<double> Simulation::currents() const {
    std::vector<double> result;
    for (std::size_t k = 0; k < machine_.phases.size(); ++k) {
        result.push_back(kzbcalcGetCurrent(static_cast<int>(k) + 1, handle_.get()));
    }
    return result;
}

void Simulation::execute_once(double time) {
    check(kzbcalcExecute(handle_.get()), "kzbcalcExecute", time);
    ++executed_;
}

void Simulation::execute(Sample& sample) {
    execute_once(sample.time);
    while (supply_ && supply_->answer(currents())) {
        for (std::size_t k = 0; k < machine_.phases.size(); ++k) {
            sample.applied[k] = supply_->input(k).voltage;
            feed_phase(k, supply_->input(k).connected, sample);
        }
        execute_once(sample.time);
    }
    if (supply_) {
        supply_->accept(currents());
    }
}

double Simulation::read_torque() const {
    return machine_.linear ? kzbcalcGetForce(handle_.get()) : kzbcalcGetTorque(handle_.get());
}

void Simulation::begin_lookups() {
    kzb_reset_error(handle_->store.get());
    by_spline_ = looks_up_by_spline(*handle_);
    exits_.emplace(*handle_->store);
}

void Simulation::count_lookup_error() {
    KZB_STORE* const store = handle_->store.get();
    if (const int error = kzb_has_error(store); error != 0) {
        if (error != lookup_no_table || !by_spline_) {
            ++lookup_errors_[error];
        }
        kzb_reset_error(store);
    }
}

void Simulation::run(const std::vector<Output>& outputs,
                     const std::function<void(const std::vector<double>&)>& record) {
    KZB_CALC* const handle = handle_.get();
    Mechanics mechanics(scenario_.motion, machine_.linear, scenario_.start);
    Sample sample;
    sample.applied.resize(machine_.phases.size());
    std::vector<double> values(outputs.size());
    Progress progress("run", scenario_.samples);
    begin_lookups();

    for (std::uint64_t k = 0; k < scenario_.samples; ++k) {
        sample.time = scenario_.time_of(k);
        const double from = k == 0 ? sample.time : scenario_.time_of(k - 1);
        const double displacement_from = k == 0 ? mechanics.displacement() : sample.displacement;
        sample.displacement = mechanics.displacement();
        sample.speed = mechanics.speed();
        if (supply_) {
            supply_->begin({from, sample.time, displacement_from, sample.displacement});
        }
        feed(from, sample);
        if (!scenario_.current_driven) {
            execute(sample);
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
        count_lookup_error();
        mechanics.advance(scenario_.time_of(k + 1), sample.torque);
        progress.at(k);
    }
}

}  // namespace kzb::tool
