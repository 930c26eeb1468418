#include "kzb/torque_comparison.h"

#include "fmt/format.h"

namespace kzb::tool {

namespace {

constexpr double least_torque = 1e-9;  // N m or N: below this a machine has no torque

}  // namespace

std::string place_of(const CurrentMap& map, std::size_t i, std::size_t j, std::size_t n) {
    std::string place = map.polar ? fmt::format("amplitude {:g}, phase {:g}", map.a[i], map.b[j])
                                  : fmt::format("d {:g}, q {:g}", map.a[i], map.b[j]);
    if (map.field.size() > 1) {
        place += fmt::format(", field {:g}", map.field[n]);
    }
    return place;
}

void TorqueComparison::add_maps(const CurrentMap& torque, const CurrentMap& flux) {
    const bool at_flux = flux.values.size() < torque.values.size();
    const CurrentMap& at = at_flux ? flux : torque;
    const CurrentMap& other = at_flux ? torque : flux;
    for (std::size_t i = 0; i < at.a.size(); ++i) {
        for (std::size_t j = 0; j < at.b.size(); ++j) {
            for (std::size_t n = 0; n < at.field.size(); ++n) {
                const auto opposite = other.interpolated(at.a[i], at.b[j], at.field[n]);
                if (opposite) {
                    const double own = at.at(i, j, n);
                    add(at_flux ? *opposite : own, at_flux ? own : *opposite, [&] { return place_of(at, i, j, n); });
                }
            }
        }
    }
}

void TorqueComparison::tell(Findings& findings) const {
    const double allowed = std::max(share_ * peak_, least_torque);
    const auto off = std::count_if(gaps_.begin(), gaps_.end(), [&](double gap) { return gap > allowed; });
    if (off == 0) {
        return;
    }
    findings.warning("torque-balance", {category_, key_, worst_place_},
                     fmt::format("mean over the positions {:.6g}, from flux linkage and current {:.6g}; expected the "
                                 "same within {:g} % of the largest, {:.6g} ({} of {} points differ)",
                                 worst_table_, worst_flux_, 100.0 * share_, peak_, off, gaps_.size()));
}

}  // namespace kzb::tool
