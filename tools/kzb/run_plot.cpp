#include "kzb/run_plot.h"

#include <algorithm>
#include <cmath>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/gnuplot.h"

namespace kzb::tool {

namespace {

constexpr std::uint64_t stretch_count = 4000;
constexpr int panel_height = 300;

struct PanelKind {
    const char* axis_label;
    std::vector<std::string> groups;
};

const std::vector<PanelKind>& panel_kinds() {
    static const std::vector<PanelKind> kinds = {
        {"current (A)", {"i"}},
        {"torque (N m)", {"torque"}},
        {"force (N)", {"force"}},
        {"loss (W)", {"copper_loss", "eddy_loss", "hysteresis_loss", "iron_loss", "user_copper_loss"}},
    };
    return kinds;
}

bool holds(const std::vector<std::string>& groups, const std::string& group) {
    return std::find(groups.begin(), groups.end(), group) != groups.end();
}

}  // namespace

RunPlot::RunPlot(const std::vector<Output>& outputs, std::uint64_t rows)
    : stretch_(std::max<std::uint64_t>(1, rows / stretch_count)) {
    for (const PanelKind& kind : panel_kinds()) {
        Panel panel{kind.axis_label, {}};
        for (std::size_t column = 0; column < outputs.size(); ++column) {
            if (holds(kind.groups, outputs[column].group)) {
                panel.curves.push_back({column, outputs[column].name});
                columns_.push_back(column);
            }
        }
        if (!panel.curves.empty()) {
            panels_.push_back(std::move(panel));
        }
    }
    always_zero_.assign(columns_.size(), true);
    if (panels_.empty()) {
        throw Failure(exit_file, "nothing to plot: expected currents, torque or force, or losses among record.outputs");
    }
}

void RunPlot::add(const std::vector<double>& row) {
    if (in_stretch_ == 0) {
        first_time_ = row[0];
        least_.assign(columns_.size(), std::nan(""));
        greatest_ = least_;
    }
    last_time_ = row[0];
    for (std::size_t k = 0; k < columns_.size(); ++k) {
        least_[k] = std::fmin(least_[k], row[columns_[k]]);
        greatest_[k] = std::fmax(greatest_[k], row[columns_[k]]);
    }
    if (++in_stretch_ == stretch_) {
        close_stretch();
    }
}

void RunPlot::close_stretch() {
    if (in_stretch_ == 0) {
        return;
    }
    for (std::size_t k = 0; k < columns_.size(); ++k) {
        always_zero_[k] = always_zero_[k] && least_[k] == 0.0 && greatest_[k] == 0.0;
    }
    std::vector<double> row = {first_time_};
    row.insert(row.end(), least_.begin(), least_.end());
    rows_.push_back(row);
    if (in_stretch_ > 1) {
        row.assign(1, last_time_);
        row.insert(row.end(), greatest_.begin(), greatest_.end());
        rows_.push_back(row);
    }
    in_stretch_ = 0;
}

void RunPlot::draw(const std::string& path, const std::string& title) {
    close_stretch();
    GnuplotData data("data");
    for (const std::vector<double>& row : rows_) {
        data.row(row);
    }
    std::string script = data.text();
    script += fmt::format(
        "set multiplot layout {},1 title {}\nset grid\nset key outside right\nset lmargin 12\nset format x '%g'\n"
        "set rmargin 22\n",
        panels_.size(), gnuplot_text(title));
    if (rows_.size() > 1) {
        script += fmt::format("set xrange [{}:{}]\n", rows_.front()[0], rows_.back()[0]);
    }
    std::size_t drawn = 0;  // columns of the data before the present curve, the time apart
    for (const Panel& panel : panels_) {
        script += fmt::format("set ylabel {}\n", gnuplot_text(panel.axis_label));
        script += &panel == &panels_.back() ? "set xlabel 'time (s)'\n" : "unset xlabel\n";
        std::string curves;
        for (const Curve& curve : panel.curves) {
            // A loss that is not computed stays 0 and would only fill the legend; the first curve keeps the panel.
            if (curves.empty() || !always_zero_[drawn]) {
                curves += fmt::format("{}$data using 1:{} with lines title {}", curves.empty() ? "plot " : ", ",
                                      drawn + 2, gnuplot_text(curve.label));
            }
            ++drawn;
        }
        script += curves + "\n";
    }
    script += "unset multiplot\n";
    run_gnuplot(path, plot_width, panel_height * static_cast<int>(panels_.size()), script);
}

}  // namespace kzb::tool
