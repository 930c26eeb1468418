// The plot of a run: currents, torque or force, and losses over a shared time axis.
//
// Long runs are thinned: of each stretch of samples the least and the greatest value of every curve are kept, so that
// ripple stays visible.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kzb/outputs.h"

namespace kzb::tool {

class RunPlot {
  public:
    // `outputs` are the columns of the rows, the time first; `rows` is how many will come.
    RunPlot(const std::vector<Output>& outputs, std::uint64_t rows);
    void add(const std::vector<double>& row);
    // Draws what came; Failure when nothing of it belongs into the plot.
    void draw(const std::string& path, const std::string& title);

  private:
    struct Curve {
        std::size_t column;
        std::string label;  // "i_u"
    };
    struct Panel {
        std::string axis_label;  // "current (A)"
        std::vector<Curve> curves;
    };
    void close_stretch();
    std::vector<Panel> panels_;
    std::vector<std::size_t> columns_;  // drawn ones, in the order of the panels
    std::uint64_t stretch_;             // samples that become two rows
    std::uint64_t in_stretch_ = 0;
    double first_time_ = 0.0;
    double last_time_ = 0.0;
    std::vector<bool> always_zero_;  // per drawn column, over the whole run
    std::vector<double> least_;
    std::vector<double> greatest_;
    std::vector<std::vector<double>> rows_;
};

}  // namespace kzb::tool
