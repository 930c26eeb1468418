// Torques of one file, formed in two ways, side by side: the largest difference, where it stands, and how many are off.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

#include "kzb/findings.h"
#include "kzb/mean_torque.h"

namespace kzb::tool {

class TorqueComparison {
  public:
    // `share` of the largest torque is the difference that is let pass.
    TorqueComparison(const char* category, const char* key, double share)
        : category_(category), key_(key), share_(share) {}

    // place() tells where, as text; asked only for the worst so far.
    template <class Place>
    void add(double of_table, double of_flux, Place place) {
        peak_ = std::max({peak_, std::abs(of_table), std::abs(of_flux)});
        gaps_.push_back(std::abs(of_table - of_flux));
        if (gaps_.back() > worst_gap_) {
            worst_gap_ = gaps_.back();
            worst_table_ = of_table;
            worst_flux_ = of_flux;
            worst_place_ = place();
        }
    }

    // At the nodes of the coarser of the two maps; the finer one is interpolated.
    void add_maps(const CurrentMap& torque, const CurrentMap& flux);

    void tell(Findings& findings) const;

  private:
    const char* category_;
    const char* key_;
    double share_;
    double peak_ = 0.0;
    std::vector<double> gaps_;
    double worst_gap_ = 0.0;
    double worst_table_ = 0.0;
    double worst_flux_ = 0.0;
    std::string worst_place_;
};

// "amplitude 100, phase 45" of a node of the map.
std::string place_of(const CurrentMap& map, std::size_t i, std::size_t j, std::size_t n);

}  // namespace kzb::tool
