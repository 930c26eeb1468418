// A machine of 5 poles, 2 pole pairs in integers, and its skew on side a alone.
#pragma once

#include <gtest/gtest.h>

#include "store/transform/transforms.h"
#include "synthetic_store.h"

namespace synthetic {

class SkewTables : public testing::Test {
  protected:
    SkewTables() { fill_control(store, 10000, 5, 0.0); }

    void make_harmonic() {
        kzb::require_category(store, "harmonic_inductance");
        kzb::require_category(store, "current_flux");
        kzb::require_category(store, "harmonic_torque");
    }
    int apply(int type, double angle, int steps, const char* method = "Linear") {
        return kzb::apply_skew(type, 0, angle, 0.0, steps, 0, method, store);
    }
    static double mean_cosine(const std::vector<double>& degrees, bool trapezoid) {
        double sum = 0;
        for (std::size_t s = 0; s < degrees.size(); ++s) {
            const bool end = s == 0 || s + 1 == degrees.size();
            sum += (trapezoid && end ? 0.5 : 1.0) * cosd(degrees[s]);
        }
        return sum / static_cast<double>(degrees.size() - (trapezoid ? 1 : 0));
    }

    KZB_STORE store;
    const std::vector<double> turn = range(0, 1, 360);
};

}  // namespace synthetic
