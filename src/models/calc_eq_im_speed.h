// Electrical speed of the induction model: from the last angle that was recorded before the present time.
//
//   w = (theta - theta_k) / (t - t_k),   k the newest record with t_k < t - 1e-15, without one (0.0, 0.0)
//
// Only the derivatives of the model with tables record angles. With constants the speed is therefore theta / t, the
// mean since time zero: exact only for a constant speed from there, as established.
#pragma once

#include <boost/circular_buffer.hpp>
#include <cmath>

namespace kzb {

class AngleHistory {
  public:
    static constexpr double same_time = 1e-15;  // s

    // Records theta (rad) at t (s), unless that time is recorded already.
    void push(double t, double theta) {
        for (const Record& record : records_) {
            if (std::fabs(record.time - t) <= same_time) {
                return;
            }
        }
        records_.push_back({t, theta});
    }

    double speed(double t, double theta) const {
        Record from{0.0, 0.0};
        for (auto record = records_.rbegin(); record != records_.rend(); ++record) {
            if (record->time < t - same_time) {
                from = *record;
                break;
            }
        }
        const double h = t - from.time;
        return h > 0.0 ? (theta - from.theta) / h : 0.0;
    }

    void clear() { records_.clear(); }
    std::size_t size() const { return records_.size(); }

  private:
    struct Record {
        double time;
        double theta;
    };
    boost::circular_buffer<Record> records_{3};
};

}  // namespace kzb
