// Machines run with and without measured data: the way of a correction or loss table file from the text to the outputs.
//
// Balanced star with constant inductances, per winding (voltage-driven, application LdLq):
//
//   (dt R + L) i = psi_previous - psi + L I + dt u
//
// A correction of the magnet flux multiplies psi, one of the inductance L, one of the total flux both, one of the
// torque the torque. Tolerances: 1e-11 A for currents of some tens of amperes over 30 solves of order 7; else 1e-12 of
// the value.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <string>

#include "interface/measured_text.h"

namespace kzb_test::measured_run_test {
namespace {

using Phases = std::array<double, 3>;

constexpr double third = 2.0 * std::numbers::pi / 3.0;
constexpr double h = 0x1p-13;  // s; a power of two, so that equal steps are equal to the last bit
constexpr double resistance = 0.4;
constexpr double inductance = 3e-3;
constexpr double flux = 0.2;
constexpr int pole_pairs = 2;
constexpr double step_deg = 0.5;                           // mechanical, per sample
constexpr double speed_rpm = step_deg / h / 360.0 * 60.0;  // 682.67
constexpr int samples = 30;

Phases cosines(double amplitude, double angle) {
    return {amplitude * std::cos(angle), amplitude * std::cos(angle - third), amplitude * std::cos(angle + third)};
}
double electrical_at(int k) {
    return pole_pairs * step_deg * k * rad_per_deg;
}
Phases voltage_at(int k) {
    return cosines(30.0, 400.0 * h * k + 0.3);
}

struct Sample {
    Phases current;
    double torque;
    double iron_loss;
    double user_copper_loss;
};
using Samples = std::array<Sample, samples>;

Samples run(KZB_CALC* calc) {
    Samples result{};
    for (int k = 0; k < samples; ++k) {
        const Phases v = voltage_at(k);
        EXPECT_EQ(kzbcalcSetTime(h * k, calc), 0);
        EXPECT_EQ(kzbcalcSetDisplacement(step_deg * k, calc), 0);
        for (int phase = 1; phase <= 3; ++phase) {
            EXPECT_EQ(kzbcalcSetVoltage(phase, v[static_cast<std::size_t>(phase - 1)], calc), 0);
        }
        EXPECT_EQ(kzbcalcExecute(calc), 0);
        Sample& sample = result[static_cast<std::size_t>(k)];
        for (int phase = 1; phase <= 3; ++phase) {
            sample.current[static_cast<std::size_t>(phase - 1)] = kzbcalcGetCurrent(phase, calc);
        }
        sample.torque = kzbcalcGetTorque(calc);
        sample.iron_loss = kzbcalcGetIronloss(calc);
        sample.user_copper_loss = kzbcalcGetUserCopperLoss(calc);
        kzbcalcUpdate(calc);
    }
    return result;
}

Samples run(const std::string& path) {
    Calculator calc(path);
    EXPECT_EQ(calc.status, 0);
    kzbcalcSetData(calc);
    return run(calc);
}

// Peak phase value and phase in degrees of balanced currents.
struct Polar {
    double amplitude;
    double phase_deg;
};
Polar polar(const Phases& i, int k) {
    const double theta = electrical_at(k);
    double d = 0.0;
    double q = 0.0;
    const double angles[3] = {theta, theta - third, theta + third};
    for (std::size_t p = 0; p < 3; ++p) {
        d += std::sqrt(2.0 / 3.0) * i[p] * std::cos(angles[p]);
        q -= std::sqrt(2.0 / 3.0) * i[p] * std::sin(angles[p]);
    }
    return {std::sqrt((d * d + q * q) * 2.0 / 3.0), q == 0.0 ? 0.0 : std::atan2(-d, q) / rad_per_deg};
}

struct LdLqFile : ModelFile {
    LdLqFile() {
        rotary_frame(*this, 1, resistance);
        add_ld_lq(*this, inductance, inductance, flux);
    }
};

void expect_equation(const Samples& result, double flux_factor, double inductance_factor, double leakage) {
    const double l = inductance * inductance_factor + leakage;
    const double peak = std::sqrt(2.0 / 3.0) * flux * flux_factor;
    Phases i{};
    for (int k = 0; k < samples; ++k) {
        const Phases v = voltage_at(k);
        const Phases psi = cosines(peak, electrical_at(k));
        const Phases psi_previous = cosines(peak, electrical_at(k - 1));
        for (std::size_t p = 0; p < 3; ++p) {
            if (k >= 2) {  // the first two samples do not solve
                i[p] = (psi_previous[p] - psi[p] + l * i[p] + h * v[p]) / (h * resistance + l);
            }
            EXPECT_NEAR(result[static_cast<std::size_t>(k)].current[p], i[p], 1e-11) << "sample " << k;
        }
    }
    EXPECT_GT(std::abs(i[0]), 1.0);  // the run is not at rest
}

TEST(MeasuredRun, corrections_scale_flux_and_inductance) {
    LdLqFile file;
    expect_equation(run(file.path()), 1.0, 1.0, 0.0);
    const struct {
        std::string items;
        double flux_factor;
        double inductance_factor;
    } rows[] = {{everywhere("MagFlux", "1.25"), 1.25, 1.0},
                {everywhere("Inductance", "0.75"), 1.0, 0.75},
                {everywhere("MagFlux", "1.25") + everywhere("Inductance", "0.75"), 1.25, 0.75},
                {everywhere("TotalFluxLinkage", "0.875"), 0.875, 0.875},
                {everywhere("Torque", "2"), 1.0, 1.0},
                {everywhere("MagFlux", "1.25") + everywhere("MagFlux", "0.5"), 0.625, 1.0}};
    for (const auto& row : rows) {
        MeasuredModel model(file.path(), correction_file(row.items), kzb_read_correction_file);
        expect_equation(run(model.path()), row.flux_factor, row.inductance_factor, 0.0);
    }
}

TEST(MeasuredRun, leakage_of_a_correction_file_adds_to_the_inductance) {
    LdLqFile file;
    std::string items;
    for (const char* phase : {"U", "V", "W"}) {
        items += "$KZ_Correction_LeakageInductance_" + std::string(phase) + ",1e-3\n";
    }
    MeasuredModel model(file.path(), correction_file(items + everywhere("Inductance", "0.75")),
                        kzb_read_correction_file);
    expect_equation(run(model.path()), 1.0, 0.75, 1e-3);
}

// 1 + amplitude / 1000, whatever the phase; looked up at the current of the sample before.
TEST(MeasuredRun, the_torque_correction_follows_the_current) {
    LdLqFile file;
    const std::string items = "$KZ_Correction_Torque,2,2\nphase,0,360\n0,1,1\n1000,2,2\n";
    MeasuredModel model(file.path(), correction_file(items), kzb_read_correction_file);
    const Samples plain = run(file.path());
    const Samples corrected = run(model.path());
    double amplitude = 0.0;
    for (int k = 0; k < samples; ++k) {
        const Sample& before = plain[static_cast<std::size_t>(k)];
        EXPECT_NEAR(corrected[static_cast<std::size_t>(k)].torque, before.torque * (1.0 + amplitude / 1000.0),
                    1e-12 * std::abs(before.torque));
        amplitude = polar(before.current, k).amplitude;
    }
    EXPECT_GT(amplitude, 1.0);
    EXPECT_GT(std::abs(plain.back().torque), 0.1);
}

TEST(MeasuredRun, the_ironloss_correction_scales_the_losses_of_the_materials) {
    LdLqFile file;
    const std::vector<Point> axes{{0.0, 10000.0}, betas, currents};
    file.integer("hysloss", "numMat", 1).integer("hysloss", "matID1", 4).integer("eddyloss", "matID1", 4);
    file.table("hysloss", "hysloss4", axes, constant(3.0)).table("eddyloss", "eddyloss4", axes, constant(7.0));
    // Axis 1 is the speed here: 1 at rest, 3 at 10000 r/min.
    const std::string items = "$KZ_Correction_Ironloss,2,2\namplitude,0,1000\n0,1,1\n10000,3,3\n";
    MeasuredModel model(file.path(), correction_file(items), kzb_read_correction_file);
    const auto with_iron_loss = [](const std::string& path) {
        Calculator calc(path);
        EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
        kzbcalcSetData(calc);
        return run(calc);
    };
    const Samples plain = with_iron_loss(file.path());
    const Samples corrected = with_iron_loss(model.path());
    const double factor = 1.0 + 2.0 * speed_rpm / 10000.0;
    const double omega = speed_rpm * 2.0 * std::numbers::pi / 60.0;
    for (std::size_t k = 1; k < samples; ++k) {
        EXPECT_NEAR(plain[k].iron_loss, 10.0, 1e-11);
        EXPECT_NEAR(corrected[k].iron_loss, 10.0 * factor, 1e-11);
        EXPECT_NEAR(plain[k].torque - corrected[k].torque, 10.0 * (factor - 1.0) / omega, 1e-12);
    }
}

struct HarmonicFile : ModelFile {
    HarmonicFile() {
        rotary_frame(*this, 3, resistance);
        add_harmonic(*this, 4e-3, 0.0, 0.15, 2.5);
    }
};

// A loss that is linear in every coordinate comes back from the table as it is.
double linear_loss(double amplitude, double phase_deg, double rpm, double voltage, double carrier) {
    return 30.0 + 0.2 * amplitude + 0.05 * phase_deg + 0.01 * rpm + 0.02 * voltage + 0.001 * carrier;
}
std::string linear_loss_file() {
    std::string text = "$ amplitude phase speed voltage carrier loss\n";
    for (const double amplitude : {1000.0, 0.0}) {
        for (const double phase : {-180.0, 0.0, 180.0}) {
            for (const double rpm : {0.0, 5000.0}) {
                for (const double voltage : {600.0, 0.0}) {
                    for (const double carrier : {0.0, 20000.0}) {
                        for (const double number : {amplitude, phase, rpm, voltage, carrier}) {
                            text.append(std::to_string(number)).append(", ");
                        }
                        text.append(std::to_string(linear_loss(amplitude, phase, rpm, voltage, carrier))).append("\n");
                    }
                }
            }
        }
    }
    return text;
}

TEST(MeasuredRun, an_iron_loss_table_brakes_the_machine) {
    HarmonicFile file;
    MeasuredModel model(file.path(), linear_loss_file(), kzb_add_loss_table);
    const Samples plain = run(file.path());
    {
        Calculator calc(file);
        EXPECT_EQ(kzbcalcCheckIronloss(calc), 0);
        EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 180040);
    }
    Calculator calc(model.path());
    EXPECT_EQ(kzbcalcCheckIronloss(calc), 1);
    EXPECT_EQ(kzbcalcSetIronlossCalc(calc), 0);
    kzbcalcSetData(calc);
    EXPECT_EQ(kzbcalcSetDCVoltage(300.0, calc), 0);
    EXPECT_EQ(kzbcalcSetCarrierFrequency(10000.0, calc), 0);
    const Samples braked = run(calc);
    const double omega = speed_rpm * 2.0 * std::numbers::pi / 60.0;
    for (int k = 1; k < samples; ++k) {
        const auto n = static_cast<std::size_t>(k);
        EXPECT_EQ(braked[n].current, plain[n].current);
        const Polar i = polar(plain[n].current, k);
        const double loss = linear_loss(i.amplitude, i.phase_deg, speed_rpm, 300.0, 10000.0);
        EXPECT_NEAR(braked[n].iron_loss, loss, 1e-10) << k;
        EXPECT_NEAR(plain[n].torque - braked[n].torque, loss / omega, 1e-11) << k;
    }
    EXPECT_GT(polar(plain.back().current, samples - 1).amplitude, 1.0);
}

TEST(MeasuredRun, an_equivalent_resistance_table_adds_to_the_resistance) {
    // 0.25 Ohm at every point.
    HarmonicFile file;
    MeasuredModel model(file.path(), "$ one point\n0 0 0 0 0 0.25\n", kzb_add_equivalent_copper_loss_resistance_table);
    ModelFile equivalent;
    rotary_frame(equivalent, 3, resistance + 0.25);
    add_harmonic(equivalent, 4e-3, 0.0, 0.15, 2.5);
    {
        Calculator calc(file);
        EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), 180065);
    }
    Calculator calc(model.path());
    EXPECT_EQ(kzbcalcCheckUserCopperloss(calc), 1);
    EXPECT_EQ(kzbcalcSetUserCopperlossCalc(calc), 0);
    kzbcalcSetData(calc);
    const Samples lossy = run(calc);
    const Samples expected = run(equivalent.path());
    const Samples plain = run(file.path());
    double amplitude = 0.0;  // of the sample before
    for (int k = 0; k < samples; ++k) {
        const auto n = static_cast<std::size_t>(k);
        for (std::size_t p = 0; p < 3; ++p) {
            EXPECT_NEAR(lossy[n].current[p], expected[n].current[p], 1e-11);
        }
        EXPECT_NEAR(lossy[n].user_copper_loss, 0.25 * 1.5 * amplitude * amplitude, 1e-10);
        EXPECT_EQ(plain[n].user_copper_loss, 0.0);
        amplitude = polar(lossy[n].current, k).amplitude;
    }
    EXPECT_GT(std::abs(lossy.back().current[0] - plain.back().current[0]), 1e-3);
}

}  // namespace
}  // namespace kzb_test::measured_run_test
