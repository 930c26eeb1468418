// Opens a calculator on a small model that the input makes, and makes the calls that the input tells, in its order:
// whatever the file, the numbers and the order are, nothing but numbers may come of it.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "interface/call_table.h"
#include "step_machine_calls.h"
#include "step_machine_input.h"
#include "step_machine_model.h"

namespace {

using kzb_fuzz::Input;
using namespace kzb_test;

// Bounds of one run: a step or a binding costs most.
constexpr int most_calls = 64;
constexpr int most_steps = 16;
constexpr int most_bindings = 2;

void set_up() {
    static const bool done = [] {
        // Steps of a wound-field model that never settle would take 200 passes each.
        setenv("DORN_KZ_DEBUG_NITR", "6", 1);
        return std::freopen("/dev/null", "w", stdout) != nullptr;
    }();
    (void)done;
}

template <class Calls>
const auto& one_of(const Calls& calls, Input& in) {
    return calls[in.choice(static_cast<unsigned>(std::size(calls)))].function;
}

class Run {
  public:
    Run(Input& in, KZB_CALC* calc)
        : in_(in),
          calc_(calc),
          is_generic_(kzbcalcCheckMotorType(calc) == kzb_fuzz::generic_type),
          generic_(in, calc) {}

    void make_calls() {
        if (in_.flag()) {
            prepare();
        }
        for (int k = 0; k < most_calls && !in_.is_empty(); ++k) {
            if (is_generic_ && in_.flag()) {
                generic_.call();
            } else {
                call();
            }
        }
    }

  private:
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
            kzbcalcSetInterpolationType(static_cast<int>(options / 8 % 5), calc_);
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
                one_of(value_setters, in_)(in_.number(), calc_);
                break;
            case 7:
                one_of(indexed_setters, in_)(in_.index(), in_.number(), calc_);
                break;
            case 8:
                read_results();
                break;
            case 9:
                kzbcalcGetInductance(in_.index(), in_.index(), calc_);
                break;
            case 10:
                option();
                break;
            case 11:
                one_of(type_setters, in_)(in_.index(), calc_);
                break;
            case 12:
                kzbcalcSetSkewParameter(in_.index(), in_.index(), in_.number(), in_.number(), in_.index(), in_.index(),
                                        calc_);
                break;
            default:
                kzbcalcSetSignal(in_.index(), in_.index() - 1, calc_);
                break;
        }
    }

    void option() {
        const auto set = one_of(status_calls, in_);
        if (set != kzbcalcSetData || ++bindings_ <= most_bindings) {
            set(calc_);
        }
    }

    void execute() {
        if (++steps_ <= most_steps) {
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
        for (const auto& get : getters) {
            get.function(calc_);
        }
        const int index = in_.index();
        for (const auto& get : phase_getters) {
            get.function(index, calc_);
        }
    }

    Input& in_;
    KZB_CALC* calc_;
    bool is_generic_;
    kzb_fuzz::GenericCalls generic_;
    double time_ = 0.0;
    int steps_ = 0;
    int bindings_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    set_up();
    static const int file = memfd_create("machine", MFD_CLOEXEC);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    Input in(data, size);
    kzb_fuzz::write_model(in, path.c_str());
    KZB_CALC* calc = nullptr;
    kzbcalcInitialize(path.c_str(), in.flag() ? 2 : 1, &calc);
    Run(in, calc).make_calls();
    kzbcalcTerminate(calc);
    return 0;
}
