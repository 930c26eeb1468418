#include "models_physics/coil_run.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "gtest/gtest.h"
#include "kzb/model_file.h"
#include "kzb/simulation.h"

namespace kzb::physics {

std::vector<CoilSample> run_scenario(const std::string& kzb, const std::string& scenario, double step,
                                     double seconds_kept) {
    const tool::ModelFile model = tool::read_model(kzb);
    tool::Machine machine = tool::machine_of(kzb_get_int("control", "motor_type", model.store.get()), kzb);
    machine.number_of_poles = kzb_get_int("control", "number_of_poles", model.store.get());
    tool::Scenario data = tool::read_scenario(scenario, machine);
    const double stop = data.time_of(data.samples - 1);
    data.step = step;
    data.samples = static_cast<std::uint64_t>(std::floor((stop - data.start) / step + 1e-6)) + 1;
    data.record.clear();
    data.record_from = 0.0;
    data.record_every = std::max<std::uint64_t>(1, static_cast<std::uint64_t>(std::lround(seconds_kept / step)));

    tool::Simulation simulation(kzb, machine, data);
    simulation.configure();
    EXPECT_TRUE(simulation.failed_sets().empty());
    std::vector<tool::Output> outputs;
    for (const tool::Output& output : simulation.offered_outputs()) {
        if (output.group == "time" || output.group == "displacement" || output.group == "i" ||
            output.group == "torque" || output.group == "force") {
            outputs.push_back(output);
        }
    }
    std::vector<CoilSample> samples;
    // Columns: time, displacement, currents, torque.
    simulation.run(outputs, [&samples](const std::vector<double>& row) {
        samples.push_back({row[0], {row.begin() + 2, row.end() - 1}, row.back(), row[1]});
    });
    EXPECT_TRUE(simulation.lookup_errors().empty()) << "a lookup left its table";
    return samples;
}

CoilDistance distance(const std::vector<CoilSample>& run, const std::vector<CoilSample>& reference) {
    CoilDistance off;
    CoilDistance scale;
    std::size_t r = 0;
    for (const CoilSample& sample : run) {
        while (r + 2 < reference.size() && reference[r + 1].time <= sample.time) {
            ++r;
        }
        const CoilSample& low = reference[r];
        const CoilSample& high = reference[r + 1];
        const double part = (sample.time - low.time) / (high.time - low.time);
        const auto between = [part](double a, double b) { return a + part * (b - a); };
        for (std::size_t k = 0; k < sample.current.size(); ++k) {
            const double current = between(low.current[k], high.current[k]);
            off.current = std::max(off.current, std::fabs(sample.current[k] - current));
            scale.current = std::max(scale.current, std::fabs(current));
        }
        const double torque = between(low.torque, high.torque);
        off.torque = std::max(off.torque, std::fabs(sample.torque - torque));
        scale.torque = std::max(scale.torque, std::fabs(torque));
        const double displacement = between(low.displacement, high.displacement);
        off.displacement = std::max(off.displacement, std::fabs(sample.displacement - displacement));
        scale.displacement = std::max(scale.displacement, std::fabs(displacement));
    }
    return {off.current / scale.current, off.torque / scale.torque, off.displacement / scale.displacement};
}

ModelPath::ModelPath(const std::string& name)
    : path_(testing::TempDir() + name + "_" + std::to_string(::getpid()) + ".kzb") {}

ModelPath::~ModelPath() {
    std::remove(path_.c_str());
}

State runge_kutta(const std::function<State(double, const State&)>& slope, double t, const State& y, double h) {
    const auto moved = [&y](const State& k, double by) {
        State result = y;
        for (std::size_t n = 0; n < y.size(); ++n) {
            result[n] += by * k[n];
        }
        return result;
    };
    const State k1 = slope(t, y);
    const State k2 = slope(t + 0.5 * h, moved(k1, 0.5 * h));
    const State k3 = slope(t + 0.5 * h, moved(k2, 0.5 * h));
    const State k4 = slope(t + h, moved(k3, h));
    State result = y;
    for (std::size_t n = 0; n < y.size(); ++n) {
        result[n] += h / 6.0 * (k1[n] + 2.0 * k2[n] + 2.0 * k3[n] + k4[n]);
    }
    return result;
}

}  // namespace kzb::physics
