// Machines of every type run with and without measured data.
//
// A correction that is the same everywhere makes a machine whose tables have that factor in them: a magnet flux a times
// and an inductance b times as large. Current tables i(psi) = (psi - F) / l turn into (psi - a F) / (b l). Corrections
// are for permanent-magnet machines; other ones run as if there were none.
#include <array>
#include <cmath>
#include <numbers>

#include "interface/machine_sample.h"
#include "interface/machines.h"
#include "interface/measured_text.h"
#include "interface/other_machines.h"

namespace kzb_test::measured_machines_run_test {
namespace {

constexpr double h = 0x1p-13;  // s
constexpr int samples = 30;

struct Sample {
    std::vector<double> currents;
    double torque = 0.0;
    double force = 0.0;
    double iron_loss = 0.0;
};

// Balanced voltages at a steady speed; `step` is the displacement per sample.
std::vector<Sample> run(KZB_CALC* calc, int phases, double step) {
    std::vector<Sample> result;
    for (int k = 0; k < samples; ++k) {
        std::vector<double> voltages;
        for (int phase = 0; phase < phases; ++phase) {
            voltages.push_back(30.0 * std::cos(400.0 * h * k + 0.3 - 2.0 * std::numbers::pi * phase / phases));
        }
        step_sample(calc, h * k, step * k, voltages);
        Sample sample;
        for (int phase = 1; phase <= phases; ++phase) {
            sample.currents.push_back(kzbcalcGetCurrent(phase, calc));
        }
        sample.torque = kzbcalcGetTorque(calc);
        sample.force = kzbcalcGetForce(calc);
        sample.iron_loss = kzbcalcGetIronloss(calc);
        result.push_back(sample);
        kzbcalcUpdate(calc);
    }
    return result;
}

std::vector<Sample> run(const std::string& path, int phases, double step) {
    Calculator calc(path);
    EXPECT_EQ(calc.status, 0);
    kzbcalcSetData(calc);
    return run(calc, phases, step);
}

// A permanent-magnet machine with `flux` times the flux of its magnets and `inductance` times the inductance.
struct Magnet {
    const char* name;
    void (*fill)(ModelFile& file, double flux, double inductance);
    double step;     // degrees, or m
    bool separable;  // flux and inductance are corrected apart
};

const std::vector<Magnet> magnets{
    {"LdLq",
     [](ModelFile& file, double flux, double inductance) {
         rotary_frame(file, 1, 0.4);
         add_ld_lq(file, 3e-3 * inductance, 3e-3 * inductance, 0.2 * flux);
     },
     0.5, true},
    {"SimpleHarmonic",
     [](ModelFile& file, double flux, double inductance) {
         rotary_frame(file, 2, 0.4);
         add_simple_harmonic(file, 4e-3 * inductance, -1e-3 * inductance, 0.15 * flux, 2.5);
     },
     0.5, true},
    // The flux table of a Harmonic machine holds the flux of its currents too: there the two factors are one.
    {"Harmonic",
     [](ModelFile& file, double flux, double inductance) {
         rotary_frame(file, 3, 0.4);
         add_harmonic(file, 4e-3 * inductance, -1e-3 * inductance, 0.15 * flux, 2.5);
     },
     0.5, false},
    {"FluxIntegralDQTheta",
     [](ModelFile& file, double flux, double inductance) {
         rotary_frame(file, 5, 0.4);
         add_flux_integral(file, 3e-3 * inductance, 0.2 * flux, 2.5);
     },
     0.5, true},
    {"LinearSynchronous",
     [](ModelFile& file, double flux, double inductance) {
         linear_machine(file, 4e-3 * inductance, -1e-3 * inductance, 0.1 * flux, 0.4);
     },
     1e-4, true}};

double largest_current(const std::vector<Sample>& result) {
    double largest = 0.0;
    for (const Sample& sample : result) {
        for (const double current : sample.currents) {
            largest = std::max(largest, std::abs(current));
        }
    }
    return largest;
}

TEST(MeasuredMachinesRun, a_correction_everywhere_makes_the_machine_with_that_factor_in_its_tables) {
    struct Row {
        std::string items;
        double flux;
        double inductance;
    };
    const Row rows[] = {{everywhere("MagFlux", "1.25"), 1.25, 1.0},
                        {everywhere("Inductance", "0.75"), 1.0, 0.75},
                        {everywhere("MagFlux", "1.25") + everywhere("Inductance", "0.75"), 1.25, 0.75},
                        {everywhere("MagFlux", "0.5") + everywhere("Inductance", "0.5"), 0.5, 0.5},
                        {everywhere("TotalFluxLinkage", "0.875"), 0.875, 0.875}};
    for (const Magnet& magnet : magnets) {
        ModelFile plain;
        magnet.fill(plain, 1.0, 1.0);
        const std::vector<Sample> before = run(plain.path(), 3, magnet.step);
        for (const Row& row : rows) {
            if (!magnet.separable && row.flux != row.inductance) {
                continue;
            }
            SCOPED_TRACE(std::string(magnet.name) + " " + row.items);
            ModelFile scaled;
            magnet.fill(scaled, row.flux, row.inductance);
            const std::vector<Sample> expected = run(scaled.path(), 3, magnet.step);
            MeasuredModel model(plain.path(), correction_file(row.items), kzb_read_correction_file);
            const std::vector<Sample> corrected = run(model.path(), 3, magnet.step);
            double change = 0.0;
            for (std::size_t k = 0; k < samples; ++k) {
                for (std::size_t p = 0; p < 3; ++p) {
                    EXPECT_NEAR(corrected[k].currents[p], expected[k].currents[p], 1e-9) << k;
                    change = std::max(change, std::abs(corrected[k].currents[p] - before[k].currents[p]));
                }
            }
            EXPECT_GT(change, 0.1);
            EXPECT_GT(largest_current(expected), 1.0);
        }
    }
}

TEST(MeasuredMachinesRun, a_torque_correction_multiplies_torque_or_force) {
    for (const Magnet& magnet : magnets) {
        SCOPED_TRACE(magnet.name);
        ModelFile plain;
        magnet.fill(plain, 1.0, 1.0);
        MeasuredModel model(plain.path(), correction_file(everywhere("Torque", "2")), kzb_read_correction_file);
        const std::vector<Sample> before = run(plain.path(), 3, magnet.step);
        const std::vector<Sample> after = run(model.path(), 3, magnet.step);
        const bool linear = std::string(magnet.name) == "LinearSynchronous";
        for (std::size_t k = 1; k < samples; ++k) {
            EXPECT_EQ(after[k].currents, before[k].currents);
            const Sample& one = before[k];
            const Sample& two = after[k];
            // Times two is exact.
            EXPECT_EQ(linear ? two.force : two.torque, 2.0 * (linear ? one.force : one.torque)) << k;
        }
        EXPECT_GT(std::abs(linear ? before.back().force : before.back().torque), 0.1);
    }
}

TEST(MeasuredMachinesRun, machines_without_magnets_run_as_if_there_were_no_correction) {
    std::string items;
    for (const char* item : {"MagFlux", "Inductance", "Torque", "Ironloss"}) {
        items += everywhere(item, "2");
    }
    int types = 0;
    for (const Machine& machine : machines) {
        if ((machine.type & (permanent_magnet | generic)) != 0) {
            continue;
        }
        SCOPED_TRACE(machine.code);
        ModelFile file;
        machine.fill(file);
        MeasuredModel model(file.path(), correction_file(items), kzb_read_correction_file);
        const std::vector<Sample> before = run(file.path(), machine.phases, 0.01);
        const std::vector<Sample> after = run(model.path(), machine.phases, 0.01);
        for (std::size_t k = 0; k < samples; ++k) {
            EXPECT_EQ(after[k].currents, before[k].currents) << k;
            EXPECT_EQ(after[k].torque, before[k].torque) << k;
            EXPECT_EQ(after[k].force, before[k].force) << k;
        }
        ++types;
    }
    EXPECT_EQ(types, 7);  // stepping, solenoid, induction, wound field, three of reluctance
}

// Linear in the amplitude, the frequency of rotation, the voltage and the carrier, the same at every slip: such a loss
// comes back from the table as it is.
double induction_loss(double amplitude, double frequency, double voltage, double carrier) {
    return 30.0 + 0.25 * amplitude + 0.5 * frequency + 0.03125 * voltage + 0.0078125 * carrier;
}

TEST(MeasuredMachinesRun, an_iron_loss_table_brakes_an_induction_machine) {
    std::string text = "$ amplitude, slip, frequency, voltage, carrier, loss\n";
    for (const double amplitude : {1000.0, 0.0}) {
        for (const double slip : {0.0, 1e6}) {
            for (const double frequency : {0.0, 1000.0}) {
                for (const double voltage : {512.0, 0.0}) {
                    for (const double carrier : {0.0, 16384.0}) {
                        for (const double number : {amplitude, slip, frequency, voltage, carrier}) {
                            text.append(std::to_string(number)).append(" ");
                        }
                        text.append(std::to_string(induction_loss(amplitude, frequency, voltage, carrier)));
                        text.append("\n");
                    }
                }
            }
        }
    }
    ModelFile file;
    induction_constants(file);
    {
        Calculator calc(file);
        EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
        EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180040);
    }
    constexpr double step_deg = 0.25;
    const std::vector<Sample> before = run(file.path(), 3, step_deg);
    MeasuredModel model(file.path(), text, kzb_add_loss_table);
    Calculator calc(model.path());
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 1);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetDCVoltage(256.0, calc), 0);
    EXPECT_EQ(kzbcalcSetCarrierFrequency(8192.0, calc), 0);
    const std::vector<Sample> braked = run(calc, 3, step_deg);
    const double turns_per_second = step_deg / 360.0 / h;
    const double frequency = 2.0 * turns_per_second;  // two pole pairs
    for (std::size_t k = 2; k < samples; ++k) {
        EXPECT_EQ(braked[k].currents, before[k].currents) << k;
        double squares = 0.0;
        for (const double current : before[k].currents) {
            squares += current * current;
        }
        // Balanced currents of amplitude a have the sum of squares 3/2 a^2.
        const double loss = induction_loss(std::sqrt(squares * 2.0 / 3.0), frequency, 256.0, 8192.0);
        EXPECT_NEAR(braked[k].iron_loss, loss, 1e-9) << k;
        EXPECT_NEAR(before[k].torque - braked[k].torque, loss / (2.0 * std::numbers::pi * turns_per_second), 1e-9) << k;
    }
    EXPECT_GT(largest_current(before), 1.0);
}

}  // namespace
}  // namespace kzb_test::measured_machines_run_test
