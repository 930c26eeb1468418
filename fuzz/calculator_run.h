// The calls that a fuzz input makes of a calculator, in its order: whatever the file, the numbers and the order are,
// nothing but numbers may come of it.
#pragma once

#include <cstdint>
#include <iterator>

#include "KZBCalculator/kzbcalc.h"
#include "choices.h"
#include "interface/call_table.h"
#include "step_generic_calls.h"

namespace kzb_fuzz {

// A step costs most, then a binding.
struct RunBounds {
    int calls;
    int steps;
    int smooth_steps;  // with a scheme that takes more than the two nodes around
};

enum class Machine { with_windings, generic };

class CalculatorRun {
  public:
    CalculatorRun(Input& in, KZB_CALC* calc, Machine machine, const RunBounds& most)
        : in_(in), calc_(calc), is_generic_(machine == Machine::generic), most_(most), generic_(in, calc) {}

    void make_calls() {
        if (in_.flag()) {
            prepare();
        }
        for (int k = 0; k < most_.calls && !in_.is_empty(); ++k) {
            if (is_generic_ && in_.flag()) {
                generic_.call();
            } else {
                call();
            }
        }
    }

  private:
    static constexpr int most_bindings = 2;

    template <class Calls>
    static const auto& one_of(const Calls& calls, Input& in) {
        return calls[in.choice(static_cast<unsigned>(std::size(calls)))].function;
    }

    // What most callers do before the first sample.
    void prepare() {
        const unsigned options = in_.byte();
        if ((options & 1U) != 0) {
            kzbcalcSetTemperatureCorrectionCalc(calc_);
        }
        if ((options & 2U) != 0) {
            kzbcalcSetIronlossCalc(calc_);
            kzbcalcSetUserCopperlossCalc(calc_);
            kzbcalcSetPWMFreq(5000.0, calc_);
        }
        if ((options & 4U) != 0) {
            put_type(kzbcalcSetInterpolationType, static_cast<int>(options / 8 % 5));
        }
        kzbcalcSetStepSize(1e-4, calc_);
        kzbcalcSetData(calc_);
    }

    void call() {
        switch (in_.choice(14)) {
            case 0:
            case 1:
            case 2:
                sample();
                break;
            case 3:
                kzbcalcSetTime(in_.number(), calc_);
                break;
            case 4:
                execute();
                break;
            case 5:
                kzbcalcUpdate(calc_);
                break;
            case 6:
                set_value(one_of(kzb_test::value_setters, in_));
                break;
            case 7:
                set_at_index(one_of(kzb_test::indexed_setters, in_));
                break;
            case 8:
                read_results();
                break;
            case 9:
                read_inductance();
                break;
            case 10:
                option();
                break;
            case 11:
                set_type(one_of(kzb_test::type_setters, in_));
                break;
            case 12:
                set_skew();
                break;
            default:
                set_signal();
                break;
        }
    }

    // Arguments are drawn one by one: an input means the same whatever the compiler.
    void set_value(int set(double, KZB_CALC*)) { set(in_.number(), calc_); }
    void set_type(int set(int, KZB_CALC*)) { put_type(set, in_.index()); }
    void put_type(int set(int, KZB_CALC*), int type) {
        is_smooth_ = is_smooth_ || set == kzbcalcSetInterpolationType;
        set(type, calc_);
    }
    void set_at_index(int set(int, double, KZB_CALC*)) {
        const int index = in_.index();
        set(index, in_.number(), calc_);
    }
    void read_inductance() {
        const int row = in_.index();
        kzbcalcGetInductance(row, in_.index(), calc_);
    }
    void set_signal() {
        const int port = in_.index();
        kzbcalcSetSignal(port, in_.index() - 1, calc_);
    }
    void set_skew() {
        int words[4];
        double angles[2];
        for (int& word : words) {
            word = in_.index();
        }
        for (double& angle : angles) {
            angle = in_.number();
        }
        kzbcalcSetSkewParameter(words[0], words[1], angles[0], angles[1], words[2], words[3], calc_);
    }

    void option() {
        const auto set = one_of(kzb_test::status_calls, in_);
        if (set != kzbcalcSetData || ++bindings_ <= most_bindings) {
            set(calc_);
        }
    }

    void execute() {
        if (++steps_ <= (is_smooth_ ? most_.smooth_steps : most_.steps)) {
            kzbcalcExecute(calc_);
        }
    }

    void sample() {
        time_ += 1e-4 * in_.choice(4);
        kzbcalcSetTime(time_, calc_);
        kzbcalcSetDisplacement(in_.ordinary(), calc_);
        const double value = in_.ordinary();
        for (int phase = 1; phase <= 5; ++phase) {
            kzbcalcSetVoltage(phase, value * phase, calc_);
            kzbcalcSetCurrent(phase, value / phase, calc_);
        }
        if (is_generic_) {
            generic_.give_inputs();
        }
        execute();
        if (is_generic_) {
            generic_.take_outputs();
        }
        kzbcalcGetTorque(calc_);
        kzbcalcGetForce(calc_);
        kzbcalcUpdate(calc_);
    }

    void read_results() {
        for (const auto& get : kzb_test::getters) {
            get.function(calc_);
        }
        const int index = in_.index();
        for (const auto& get : kzb_test::phase_getters) {
            get.function(index, calc_);
        }
    }

    Input& in_;
    KZB_CALC* calc_;
    bool is_generic_;
    RunBounds most_;
    bool is_smooth_ = false;
    GenericCalls generic_;
    double time_ = 0.0;
    int steps_ = 0;
    int bindings_ = 0;
};

// Opens the file at `path` as the input says, and goes on with its calls.
inline void run_calculator(Input& in, const char* path, Machine machine, const RunBounds& most) {
    KZB_CALC* calc = nullptr;
    kzbcalcInitialize(path, in.flag() ? 2 : 1, &calc);
    CalculatorRun(in, calc, machine, most).make_calls();
    kzbcalcTerminate(calc);
}

}  // namespace kzb_fuzz
