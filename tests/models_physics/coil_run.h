// The scenarios of examples/ for machines of separate coils: run through the calls of the library at a step of the
// test's own, and what their tests share with the independent integrations.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kzb::physics {

struct CoilSample {
    double time = 0.0;
    std::vector<double> current;
    double torque = 0.0;        // or force
    double displacement = 0.0;  // degrees, or metres
};

// The samples of a scenario with another step; of `samples_kept` seconds apart at least, the first included.
std::vector<CoilSample> run_scenario(const std::string& kzb, const std::string& scenario, double step,
                                     double seconds_kept);

// Largest distances between two runs as parts of the largest values in `reference`, which is sampled more densely and
// linear in between.
struct CoilDistance {
    double current = 0.0;
    double torque = 0.0;
    double displacement = 0.0;
};
CoilDistance distance(const std::vector<CoilSample>& run, const std::vector<CoilSample>& reference);

// Path of a file that goes away with the object; tests run side by side.
class ModelPath {
  public:
    explicit ModelPath(const std::string& name);
    ~ModelPath();
    ModelPath(const ModelPath&) = delete;
    ModelPath& operator=(const ModelPath&) = delete;
    const std::string& path() const { return path_; }

  private:
    std::string path_;
};

// One classical Runge-Kutta step of fourth order.
using State = std::vector<double>;
State runge_kutta(const std::function<State(double, const State&)>& slope, double t, const State& y, double h);

}  // namespace kzb::physics
