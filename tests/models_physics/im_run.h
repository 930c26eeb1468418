// The induction machine of an equivalent circuit at constant speed between balanced sinusoidal voltages, by the model
// with constants and by the one with tables.
#pragma once

#include <array>
#include <cmath>

#include "models/im_files.h"

namespace kzb::physics {

using kzb_test::ImConstants;

inline constexpr double im_skin = 0.005;  // per Hz of slip frequency, of the secondary resistance with tables

class ImRun {
  public:
    using Three = std::array<double, 3>;

    // With tables the secondary resistance is r2 (1 + im_skin |f|), exact between the nodes -64, 0 and 64 Hz.
    ImRun(const ImConstants& machine, bool tables, double volt, double slip, double dt)
        : machine_(machine), volt_(volt), slip_(slip), dt_(dt) {
        if (tables) {
            const double l = magnetising() + leakage();
            kzb_test::im_tables_file(
                store, {l, magnetising(), magnetising(), l, machine.r2, machine.r1, machine.poles, machine.connection});
            KZB_TABLE* const r2 = kzb::find_table(store, "InductionParam_HigherAccuracy", "R2_table");
            for (const int i : {0, 2}) {
                for (int j = 0; j < 3; ++j) {
                    const int at[2] = {i, j};
                    kzb::table_set_value(r2, at, machine.r2 * (1.0 + im_skin * 64.0));
                }
            }
            model.set_slip_omega(slip * omega());
        } else {
            kzb_test::im_constants_file(store, machine);
        }
    }

    double omega() const { return 2.0 * M_PI * machine_.frequency; }
    double magnetising() const { return 1.0 / machine_.b0 / omega(); }
    double leakage() const { return (machine_.x1 + machine_.x2) / omega() * 0.5; }
    double speed_mech() const { return (1.0 - slip_) * omega() / (0.5 * machine_.poles); }
    int period() const { return static_cast<int>(std::lround(1.0 / machine_.frequency / dt_)); }

    Three voltage(double t) const {
        constexpr double third = 2.0 * M_PI / 3.0;
        return {volt_ * std::cos(omega() * t), volt_ * std::cos(omega() * t - third),
                volt_ * std::cos(omega() * t + third)};
    }
    // One sample; the first has time 0.
    void step() {
        time = count_++ * dt_;
        const Three v = voltage(time);
        model.execute(v.data(), speed_mech() * time, time, kzb_test::im_all_driven, dt_, state_);
        model.accept();
    }
    // 1/2 (L i1^2 + 2 M i1 i2 + L i2^2) of the last sample.
    double stored_energy() const {
        const kzb_test::Two i1 = kzb_test::im_primary_of(model);
        const kzb_test::Two i2 = kzb_test::im_secondary_of(model);
        const double l = magnetising() + leakage();
        return 0.5 * l * (i1.alpha * i1.alpha + i1.beta * i1.beta + i2.alpha * i2.alpha + i2.beta * i2.beta) +
               magnetising() * (i1.alpha * i2.alpha + i1.beta * i2.beta);
    }

    KZB_STORE store;
    Calc_Eq_im_transient model;
    double time = 0.0;

  private:
    ImConstants machine_;
    double volt_;
    double slip_;
    double dt_;
    int count_ = 0;
    double state_[4] = {};
};

}  // namespace kzb::physics
