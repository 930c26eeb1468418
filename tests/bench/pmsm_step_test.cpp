// Whole step sequences of the permanent-magnet machine against the plain reference: every getter, bit for bit.
//
// Both run from the same file. Voltages are a rotating system with noise, the step width changes, samples are executed
// once or several times, phases open and close, and the time stands still now and then.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "KZBCalculator/kzbcalc.h"
#include "bench/reference/pmsm.h"
#include "bench/reference/sample_machine.h"
#include "interface/kzbcalc_handle.h"
#include "model_file.h"
#include "same_bits.h"

namespace kzb_bench_test {
namespace {

using kzb_reference::Pmsm;
using kzb_reference::SampleMachine;

constexpr const char* interpolations[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

struct Scenario {
    const char* name;
    SampleMachine machine{};
    int interpolation = 0;
    int kind = -1;  // -1: as the file's accuracy says
    bool iron_loss = false;
    bool user_copper_loss = false;
    bool temperatures = false;
    bool corrections_by_call = false;
    bool open_phases = false;
    bool irregular = true;  // step widths
    bool repeated = true;   // Execute calls per sample
    bool initial_values = false;
    double voltage = 60.0;  // peak
    int samples = 300;
    int calc_mode = 1;
};

void PrintTo(const Scenario& scenario, std::ostream* out) {
    *out << scenario.name;
}

std::string numbered(std::string what, int number) {
    what += ' ';
    what += std::to_string(number);
    return what;
}

struct Terminate {
    void operator()(KZB_CALC* handle) const { kzbcalcTerminate(handle); }
};

// The product and the reference under the same calls.
class Pair {
  public:
    explicit Pair(const Scenario& scenario) : scenario_(scenario) {
        kzb_reference::make_sample_machine(scenario.machine, store_);
        file_ = std::make_unique<ModelFile>(store_);
        KZB_CALC* handle = nullptr;
        status_ = file_->written() ? kzbcalcInitialize(file_->path(), scenario.calc_mode, &handle) : -1;
        product_.reset(handle);
        reference_ = std::make_unique<Pmsm>(store_, scenario.calc_mode,
                                            kzb_reference::kzb_get_table_interpolated_value<kzb_reference::Bare>);
    }
    int status() const { return status_; }

    void configure() {
        KZB_CALC* const handle = product_.get();
        ASSERT_EQ(kzbcalcSetInterpolationType(scenario_.interpolation, handle), 0);
        reference_->set_interpolation(interpolations[scenario_.interpolation]);
        if (scenario_.kind >= 0) {  // accuracy 0: LdLq, 1: Harmonic, 2: flux integral
            ASSERT_EQ(kzbcalcSetAccuracyType(scenario_.kind == 2 ? 0 : (scenario_.kind == 1 ? 1 : 2), handle), 0);
            reference_->set_kind(scenario_.kind);
        }
        if (scenario_.iron_loss) {
            ASSERT_EQ(kzbcalcSetIronlossCalc(handle), 0);
        }
        if (scenario_.user_copper_loss) {
            ASSERT_EQ(kzbcalcSetUserCopperlossCalc(handle), 0);
        }
        if (scenario_.temperatures) {
            set_temperatures();
        }
        if (scenario_.corrections_by_call) {
            set_corrections();
        }
        kzbcalcSetData(handle);
        reference_->set_data(scenario_.iron_loss, scenario_.user_copper_loss);
        if (scenario_.initial_values) {
            set_initial_values();
        }
    }

    void sample(double time, double displacement, const double* voltage, const int* signal, int executions) {
        KZB_CALC* const handle = product_.get();
        kzbcalcSetTime(time, handle);
        reference_->set_time(time);
        kzbcalcSetDisplacement(displacement, handle);
        reference_->set_displacement(displacement);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetVoltage(k + 1, voltage[k], handle);
            reference_->set_voltage(k + 1, voltage[k]);
            kzbcalcSetSignal(k + 1, signal[k], handle);
            reference_->set_signal(k + 1, signal[k]);
        }
        for (int e = 0; e < executions; ++e) {
            kzbcalcExecute(handle);
            reference_->execute();
        }
    }

    void sample_with_currents(double time, double displacement, const double* current) {
        KZB_CALC* const handle = product_.get();
        kzbcalcSetTime(time, handle);
        reference_->set_time(time);
        kzbcalcSetDisplacement(displacement, handle);
        reference_->set_displacement(displacement);
        for (int k = 0; k < 3; ++k) {
            kzbcalcSetCurrent(k + 1, current[k], handle);
            reference_->set_current(k + 1, current[k]);
        }
    }

    void expect_equal_results(int sample) {
        KZB_CALC* const handle = product_.get();
        const auto expect = [&](const std::string& what, double actual, double expected) {
            if (!same_bits(actual, expected)) {
                ADD_FAILURE() << what << " at sample " << sample << ": " << std::hexfloat << actual << " instead of "
                              << expected << std::defaultfloat << " (" << actual << ", relative "
                              << (actual - expected) / std::fabs(expected) << ")";
            }
        };
        if (scenario_.machine.motor_type == 10000) {
            expect("torque", kzbcalcGetTorque(handle), reference_->get_torque());
        } else {
            expect("force", kzbcalcGetForce(handle), reference_->get_force());
        }
        for (int k = 1; k <= 3; ++k) {
            const std::string phase = numbered("", k);
            expect("current" + phase, kzbcalcGetCurrent(k, handle), reference_->get_current(k));
            expect("voltage" + phase, kzbcalcGetVoltage(k, handle), reference_->get_voltage(k));
            expect("induced voltage" + phase, kzbcalcGetInducedVoltage(k, handle), reference_->get_induced_voltage(k));
            expect("magnet flux" + phase, kzbcalcGetMagFlux(k, handle), reference_->get_mag_flux(k));
            for (int c = 1; c <= 3; ++c) {
                expect("inductance" + numbered(phase, c), kzbcalcGetInductance(k, c, handle),
                       reference_->get_inductance(k, c));
            }
        }
        if (scenario_.machine.motor_type == 10000) {
            const int count = kzbcalcGetNumberOfUserSpecifiedParameters(handle);
            EXPECT_EQ(count, reference_->user_parameter_count());
            for (int k = 1; k <= count; ++k) {
                expect(numbered("user parameter", k), kzbcalcGetUserSpecifiedParameter(k, handle),
                       reference_->get_user_parameter(k));
            }
        }
        peak_current_ = std::max(peak_current_, std::fabs(reference_->get_current(1)));
        expect("resistance", kzbcalcGetResistance(handle), reference_->get_resistance());
        expect("copper loss", kzbcalcGetCopperloss(handle), reference_->get_copperloss());
        if (scenario_.machine.motor_type == 10000) {
            for (int k = 1; k <= 3; ++k) {
                expect(numbered("coil flux", k), kzbcalcGetCoilFlux(k, handle), reference_->get_coil_flux(k));
            }
            expect("d inductance", kzbcalcGetDAxisInductance(handle), reference_->get_d_axis_inductance());
            expect("q inductance", kzbcalcGetQAxisInductance(handle), reference_->get_q_axis_inductance());
            expect("eddy loss", kzbcalcGetEddyloss(handle), reference_->get_eddyloss());
            expect("hysteresis loss", kzbcalcGetHysteresisloss(handle), reference_->get_hysteresisloss());
            expect("iron loss", kzbcalcGetIronloss(handle), reference_->get_ironloss());
            expect("user copper loss", kzbcalcGetUserCopperLoss(handle), reference_->get_user_copper_loss());
        }
    }
    // The interpolation counters and the last error of the store.
    void expect_equal_statistics() {
        for (const int slot : {1, 3, 5}) {
            EXPECT_EQ(product_->store->timing[slot], store_.timing[slot]) << "slot " << slot;
        }
        EXPECT_EQ(product_->store->error, store_.error);
    }
    double peak_current() const { return peak_current_; }
    void update() {
        kzbcalcUpdate(product_.get());
        reference_->update();
    }

  private:
    void set_temperatures() {
        KZB_CALC* const handle = product_.get();
        ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(handle), 0);
        ASSERT_EQ(kzbcalcSetMagnetTemperature(353.15, handle), 0);
        ASSERT_EQ(kzbcalcSetCoilTemperature(393.15, handle), 0);
        reference_->magnet_temperature = 353.15;
        reference_->coil_temperature = 393.15;
    }
    void set_corrections() {
        KZB_CALC* const handle = product_.get();
        ASSERT_EQ(kzbcalcSetCorrectionOfFlux(0.93, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfMagnet(0.97, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfSteel(1.01, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfInductance(1.07, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfCoilTurn1(33.0, handle), 0);
        ASSERT_EQ(kzbcalcSetCorrectionOfCoilTurn2(36.0, handle), 0);
        ASSERT_EQ(kzbcalcSetResistance(0.07, handle), 0);
        reference_->correction_flux = 0.93;
        reference_->correction_magnet = 0.97;
        reference_->correction_steel = 1.01;
        reference_->correction_inductance = 1.07;
        reference_->turns1 = 33.0;
        reference_->turns2 = 36.0;
        reference_->resistance_base = 0.07;
        if (scenario_.machine.motor_type == 10000) {
            ASSERT_EQ(kzbcalcSetCorrectionOfTorque(0.99, handle), 0);
        } else {
            ASSERT_EQ(kzbcalcSetCorrectionOfForce(0.99, handle), 0);
        }
        reference_->correction_torque = 0.99;
    }
    void set_initial_values() {
        KZB_CALC* const handle = product_.get();
        constexpr double currents[] = {30.0, -40.0, 10.0};
        for (int k = 1; k <= 3; ++k) {
            ASSERT_EQ(kzbcalcSetInitialCurrent(k, currents[k - 1], handle), 0);
            reference_->set_initial_current(k, currents[k - 1]);
        }
        ASSERT_EQ(kzbcalcSetInitialDisplacement(scenario_.machine.motor_type == 10000 ? 7.0 : 0.003, handle), 0);
        reference_->set_initial_displacement(scenario_.machine.motor_type == 10000 ? 7.0 : 0.003);
        ASSERT_EQ(kzbcalcSetInitialTime(1e-5, handle), 0);
        reference_->set_initial_time(1e-5);
    }

    const Scenario& scenario_;
    kzb_reference::Store store_;
    std::unique_ptr<ModelFile> file_;
    std::unique_ptr<KZB_CALC, Terminate> product_;
    std::unique_ptr<Pmsm> reference_;
    int status_ = -1;
    double peak_current_ = 0.0;
};

// Time, position and terminal voltages of a run.
class Drive {
  public:
    explicit Drive(const Scenario& scenario) : scenario_(scenario), random_(42) {}

    void next() {
        double width = 5e-5;
        if (scenario_.irregular) {
            constexpr double factors[] = {1.0, 1.0, 1.0, 1.0, 2.0, 0.5, 1.5, 0.0};
            width *= factors[random_() % std::size(factors)];
        }
        time += count_ == 0 && !scenario_.initial_values ? 0.0 : width;
        const double reach = scenario_.machine.motor_type == 10000 ? 90.0 : 0.064;
        displacement = -0.3 * reach + turns_per_second * time * reach;
        const double theta = 2.0 * M_PI * turns_per_second * time;
        for (int k = 0; k < 3; ++k) {
            voltage[k] = scenario_.voltage * std::cos(theta + 1.3 - 2.0 * M_PI / 3.0 * k) + noise() * 5.0;
            current[k] = 90.0 * std::cos(theta + 1.9 - 2.0 * M_PI / 3.0 * k) + noise();
            signal[k] = 1;
        }
        if (scenario_.open_phases) {
            constexpr int patterns[][3] = {{1, 1, 1}, {0, 1, 1}, {1, 0, 1}, {1, 1, 0}, {2, 1, 1}, {0, 0, 1}, {1, 1, 1}};
            std::copy_n(patterns[count_ / 20 % std::size(patterns)], 3, signal);
        }
        executions = scenario_.repeated ? 1 + static_cast<int>(random_() % 3) : 1;
        ++count_;
    }

    double time = 0.0;
    double displacement = 0.0;
    double voltage[3] = {};
    double current[3] = {};
    int signal[3] = {1, 1, 1};
    int executions = 1;

  private:
    double noise() { return std::uniform_real_distribution<double>(-1.0, 1.0)(random_); }
    static constexpr double turns_per_second = 110.0;  // electrical
    const Scenario& scenario_;
    std::mt19937_64 random_;
    int count_ = 0;
};

class StepAgainstReference : public testing::TestWithParam<Scenario> {};

TEST_P(StepAgainstReference, every_result_agrees_to_the_bit) {
    const Scenario& scenario = GetParam();
    Pair pair(scenario);
    ASSERT_EQ(pair.status(), 0);
    pair.configure();
    Drive drive(scenario);
    for (int s = 0; s < scenario.samples && !HasFailure(); ++s) {
        drive.next();
        if (scenario.calc_mode == 1) {
            pair.sample(drive.time, drive.displacement, drive.voltage, drive.signal, drive.executions);
        } else {
            pair.sample_with_currents(drive.time, drive.displacement, drive.current);
        }
        pair.expect_equal_results(s);
        pair.update();
        if (s == 0 || s == 10 || s + 1 == scenario.samples) {
            pair.expect_equal_statistics();
        }
    }
    // the run was one of a machine that carries current
    EXPECT_GT(pair.peak_current(), 10.0);
    EXPECT_LT(pair.peak_current(), 1e5);
}

SampleMachine machine_of(int accuracy, int connection = 0) {
    SampleMachine machine;
    machine.accuracy_type = accuracy;
    machine.connection = connection;
    return machine;
}

template <class Change>
Scenario make(const char* name, const SampleMachine& machine, Change change) {
    Scenario scenario{name};
    scenario.machine = machine;
    change(scenario);
    return scenario;
}

Scenario plain(const char* name, int accuracy, int interpolation, int connection = 0) {
    return make(name, machine_of(accuracy, connection), [&](Scenario& s) { s.interpolation = interpolation; });
}

// Everything that can be switched on at once.
Scenario full(const char* name, int accuracy, int interpolation, int connection) {
    return make(name, machine_of(accuracy, connection), [&](Scenario& s) {
        s.interpolation = interpolation;
        s.machine.corrections = true;
        s.machine.leakage = true;
        s.machine.beta_zero = 15.0;
        s.machine.copper_loss_table = true;
        s.iron_loss = true;
        s.user_copper_loss = true;
        s.temperatures = true;
        s.corrections_by_call = true;
        s.open_phases = true;
        s.initial_values = true;
    });
}

std::vector<Scenario> scenarios() {
    constexpr int ldlq = 1;
    constexpr int simple = 2;
    constexpr int harmonic = 3;
    std::vector<Scenario> all;
    all.push_back(plain("harmonic_linear", harmonic, 0));
    all.push_back(plain("harmonic_cubic", harmonic, 1));
    all.push_back(plain("harmonic_spline4", harmonic, 2));
    all.push_back(plain("harmonic_spline6", harmonic, 3));
    all.push_back(plain("harmonic_delta", harmonic, 0, 1));
    all.push_back(full("harmonic_full", harmonic, 0, 0));
    all.push_back(full("harmonic_full_delta_cubic", harmonic, 1, 1));
    all.push_back(plain("simple_harmonic_linear", simple, 0));
    all.push_back(plain("simple_harmonic_cubic", simple, 1));
    all.push_back(plain("simple_harmonic_delta", simple, 0, 1));
    all.push_back(full("simple_harmonic_full", simple, 0, 0));
    all.push_back(make("simple_harmonic_coenergy", machine_of(simple),
                       [](Scenario& s) { s.machine.torque_axes = 2, s.temperatures = true; }));
    all.push_back(plain("ldlq_linear", ldlq, 0));
    all.push_back(plain("ldlq_cubic", ldlq, 1));
    all.push_back(plain("ldlq_delta", ldlq, 0, 1));
    all.push_back(full("ldlq_full", ldlq, 0, 0));
    all.push_back(make("harmonic_over_phase_currents", machine_of(harmonic), [](Scenario& s) {
        s.machine.currents_as_axes = true;
        s.open_phases = true;
    }));
    all.push_back(make("harmonic_loss_table", machine_of(harmonic), [](Scenario& s) {
        s.machine.loss_table = true;
        s.iron_loss = true;
    }));
    all.push_back(
        make("harmonic_user_parameters", machine_of(harmonic), [](Scenario& s) { s.machine.user_parameters = true; }));
    all.push_back(make("harmonic_phase_symmetry", machine_of(harmonic), [](Scenario& s) {
        s.machine.phase_symmetry = true;
        s.machine.beta_zero = 10.0;
        s.iron_loss = true;
    }));
    all.push_back(make("harmonic_chosen_by_accuracy", machine_of(7), [](Scenario& s) { s.kind = 1; }));
    all.push_back(make("ldlq_chosen_by_accuracy", machine_of(7), [](Scenario& s) { s.kind = 2; }));
    all.push_back(make("harmonic_far_outside_the_tables", machine_of(harmonic), [](Scenario& s) {
        s.voltage = 600.0;
        s.open_phases = true;
    }));
    SampleMachine linear = machine_of(simple);
    linear.motor_type = 10005;
    linear.beta_zero = 20.0;
    all.push_back(make("linear_machine", linear, [](Scenario& s) { s.open_phases = true; }));
    all.push_back(make("linear_machine_warm_delta", linear, [](Scenario& s) {
        s.machine.connection = 1;
        s.temperatures = true;
        s.corrections_by_call = true;
    }));
    for (const int accuracy : {ldlq, simple, harmonic}) {
        constexpr const char* names[] = {"", "ldlq_by_current", "simple_harmonic_by_current", "harmonic_by_current"};
        all.push_back(make(names[accuracy], machine_of(accuracy), [](Scenario& s) {
            s.calc_mode = 2;
            s.iron_loss = true;
            s.temperatures = true;
            s.machine.corrections = true;
            s.machine.leakage = true;
        }));
    }
    const SampleMachine integral = machine_of(5);
    all.push_back(make("flux_integral", integral, [](Scenario& s) { s.repeated = false, s.irregular = false; }));
    all.push_back(make("flux_integral_cubic", integral, [](Scenario& s) {
        s.repeated = false;
        s.irregular = false;
        s.interpolation = 1;
    }));
    all.push_back(make("flux_integral_irregular", integral, [](Scenario&) {}));
    all.push_back(make("flux_integral_delta", machine_of(5, 1), [](Scenario& s) { s.repeated = false; }));
    all.push_back(make("flux_integral_open_phases", integral, [](Scenario& s) {
        s.repeated = false;
        s.open_phases = true;
    }));
    all.push_back(make("flux_integral_warm", integral, [](Scenario& s) {
        s.repeated = false;
        s.temperatures = true;
        s.corrections_by_call = true;
        s.machine.corrections = true;
        s.machine.leakage = true;
        s.machine.beta_zero = 10.0;
    }));
    all.push_back(make("flux_integral_zero_axis", integral, [](Scenario& s) {
        s.repeated = false;
        s.machine.zero_axis = true;
        s.open_phases = true;
    }));
    all.push_back(make("flux_integral_user_parameters", integral, [](Scenario& s) {
        s.repeated = false;
        s.machine.user_parameters = true;
        s.initial_values = true;
    }));
    all.push_back(make("flux_integral_iron_loss", integral, [](Scenario& s) {
        s.repeated = false;
        s.irregular = false;
        s.iron_loss = true;
    }));
    return all;
}

INSTANTIATE_TEST_SUITE_P(Pmsm, StepAgainstReference, testing::ValuesIn(scenarios()),
                         [](const testing::TestParamInfo<Scenario>& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace kzb_bench_test
