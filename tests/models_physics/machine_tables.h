// A machine as its tables tell it, in arrays and interpolation of the tests' own: dq flux from dq current, and torque.
//
// All dq quantities here are peak, amplitude-invariant; theta in electrical degrees. Interpolation is multilinear.
#pragma once

#include <cmath>
#include <memory>
#include <vector>

#include "KZBCalculator/kzb_store.h"

namespace kzb::physics {

struct Dq {
    double d = 0.0;
    double q = 0.0;
};

// One table read into memory.
class Table {
  public:
    Table(KZB_STORE* store, const char* category, const char* key);
    double at(const std::vector<double>& where) const;
    bool left() const { return left_; }  // a lookup was outside an axis that is not cyclic

  private:
    std::vector<std::vector<double>> axes_;
    std::vector<bool> cyclic_;
    std::vector<double> values_;
    mutable bool left_ = false;
};

class MachineTables {
  public:
    virtual ~MachineTables() = default;
    virtual Dq flux(const Dq& current, double theta) const = 0;
    virtual double torque(const Dq& current, double theta) const = 0;
    // The current of a flux linkage, searched from `start`.
    virtual Dq current(const Dq& flux_linkage, double theta, const Dq& start) const;
    virtual bool left() const = 0;
};

// `application` as the store names it.
std::unique_ptr<MachineTables> machine_tables(KZB_STORE* store, const char* application);

// dq vector of a three-phase set at theta, and the other way round (phase 0, 1, 2).
Dq park(const double phase[3], double theta);
double winding(const Dq& vector, double theta, int phase);

}  // namespace kzb::physics
