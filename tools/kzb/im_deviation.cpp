#include "kzb/im_deviation.h"

#include <cmath>
#include <numbers>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/deviation_sum.h"
#include "kzb/parameter_file.h"

namespace kzb::tool {

namespace {

using Complex = std::complex<double>;
constexpr double two_pi = 2.0 * std::numbers::pi;

struct WrittenInductances {
    double l11, m12, m21, l22, r2;
};

double table_at(KZB_STORE* store, const char* key, double slip_hz, double current) {
    const double at[2] = {slip_hz, current};
    return kzb_get_table_interpolated_value("InductionParam_HigherAccuracy", key, at, "Linear", store);
}

WrittenInductances written_at(KZB_STORE* store, ImApplication application, double slip_hz, double current) {
    if (application == ImApplication::tables) {
        return {table_at(store, "L11_table", slip_hz, current), table_at(store, "M12_table", slip_hz, current),
                table_at(store, "M21_table", slip_hz, current), table_at(store, "L22_table", slip_hz, current),
                table_at(store, "R2_table", slip_hz, current)};
    }
    const auto constant = [&](const char* key) { return kzb_get_double("InductionParam", key, store); };
    const double w = two_pi * kzb_get_double("information", "rated_freqency", store);
    const double leakage = (constant("X1") + constant("X2")) / w * 0.5;
    const double main = 1.0 / constant("b0") / w;
    return {main + leakage, main, main, main + leakage, constant("R2")};
}

ImState solved(const WrittenInductances& l, double r1, double poles, double voltage, double omega, double slip) {
    // i2 = -j s w M21 i1 / (R2 + j s w L22)
    const double ws = slip * omega;
    const Complex ratio = -Complex(0.0, ws * l.m21) / Complex(l.r2, ws * l.l22);
    const Complex i1 = voltage / (Complex(r1, omega * l.l11) + Complex(0.0, omega * l.m12) * ratio);
    const Complex i2 = ratio * i1;
    return {i1, i2, 1.5 * 0.5 * poles * l.m12 * (i1 * std::conj(i2)).imag()};
}

using ImSum = DeviationSum<ImDeviation>;

auto mark(const std::string& at) {
    return [&at](ImDeviation& deviation) { deviation.at = at; };
}

// Every point of the curve at several slips: the table's main flux linkage at the primary current that goes with it.
ImDeviationReport against_curve(KZB_STORE* store, const ImBuild& build) {
    const MagnetizingCurve& main = build.circuit.main;
    ImDeviationReport report{"magnetizing curve", 0, 0, {}};
    ImSum flux("psi_m", "Vs");
    const double slip_max = build.slip.nodes.back();
    for (const double share : {0.0, 0.003, 0.01, 0.03, 0.1, 0.25, 0.5, 1.0, -0.01, -0.1}) {
        const double slip_hz = share * slip_max;
        for (std::size_t n = 1; n < main.currents().size(); ++n) {
            const double i_m = main.currents()[n];
            const double i_1 = primary_current(build.circuit, two_pi * slip_hz, i_m);
            if (i_1 > build.current.nodes.back()) {
                ++report.left_out;
                continue;
            }
            ++report.points;
            const double told = table_at(store, "M12_table", slip_hz, i_1) * i_m;
            flux.add(told - main.fluxes()[n], main.fluxes()[n], [&](ImDeviation& deviation) {
                deviation.at = fmt::format("i_m {:.4g} A, slip {:.4g} Hz", i_m, slip_hz);
            });
        }
    }
    report.deviations = {flux.result()};
    return report;
}

// The circuit that the application stands for: that of the constants is linear whatever the source says.
ImDeviationReport against_circuit(KZB_STORE* store, const ImBuild& build, const ImOptions& options) {
    ImCircuit source = build.circuit;
    if (options.application == ImApplication::constants) {
        // The main inductance of the constants, brought back to the source's leakages.
        const double k = std::sqrt(build.constants.r2 / source.r2);
        source.main = MagnetizingCurve(build.constants.main.inductance(0.0) / k);
    }
    const double voltage = build.rated.voltage;
    const double omega = two_pi * build.rated.frequency;
    ImDeviationReport report{
        fmt::format("equivalent circuit at {:.4g} V peak, {:g} Hz", voltage, build.rated.frequency), 0, 0, {}};
    ImSum current("i_1", "A");
    ImSum torque("torque", "Nm");
    for (int n = -40; n <= 40; ++n) {
        const double slip = 0.025 * n * std::fabs(0.025 * n);  // denser about synchronous speed
        const ImState wanted = steady_state(source, voltage, omega, slip);
        if (options.application == ImApplication::tables &&
            (std::abs(wanted.i1) > build.current.nodes.back() ||
             std::fabs(slip) * build.rated.frequency > build.slip.nodes.back())) {
            ++report.left_out;
            continue;
        }
        const ImState told = written_steady_state(store, options.application, voltage, omega, slip);
        ++report.points;
        const std::string at = fmt::format("slip {:.4g}", slip);
        current.add(std::abs(told.i1 - wanted.i1), std::abs(wanted.i1), mark(at));
        torque.add(told.torque - wanted.torque, wanted.torque, mark(at));
    }
    report.deviations = {current.result(), torque.result()};
    return report;
}

// rms values; the secondary current counted out of the circuit, I_1 = I_m + I_2.
const std::vector<ParameterQuantity>& point_quantities() {
    using enum Dimension;
    static const std::vector<ParameterQuantity> all{
        {"phase_voltage_rms", {}, voltage},
        {"supply_frequency", {"frequency"}, Dimension::frequency},
        {"slip", {}, number, true},
    };
    return all;
}

ImDeviationReport against_point(KZB_STORE* store, const ImOptions& options) {
    const ParameterFile file = ParameterFile::read(options.operating_point_path);
    const Parameters point(file, {}, point_quantities());
    const double omega = two_pi * point.required("supply_frequency");
    const double slip = point.required("slip");
    const ImState told = written_steady_state(store, options.application,
                                              std::numbers::sqrt2 * point.required("phase_voltage_rms"), omega, slip);
    const WrittenInductances l = written_at(store, options.application, slip * omega / two_pi, std::abs(told.i1));
    const Complex i1 = told.i1 / std::numbers::sqrt2;
    const Complex i2 = -told.i2 / std::numbers::sqrt2;
    const struct {
        const char* name;
        const char* unit;
        double value;
    } answers[] = {
        {"I_1_real_rms", "A", i1.real()},
        {"I_1_imag_rms", "A", i1.imag()},
        {"I_2_real_rms", "A", i2.real()},
        {"I_2_imag_rms", "A", i2.imag()},
        {"I_m_real_rms", "A", (i1 - i2).real()},
        {"I_m_imag_rms", "A", (i1 - i2).imag()},
        {"torque", "Nm", told.torque},
        {"P_joule_stator", "W", 3.0 * std::norm(i1) * kzb_get_double("InductionParam", "R1", store)},
        {"P_joule_rotor", "W", 3.0 * std::norm(i2) * l.r2},
    };
    ImDeviationReport report{"operating point", 1, 0, {}};
    for (const auto& answer : answers) {
        if (const ParameterFile::Entry* entry = file.find(answer.name)) {
            ImSum one(answer.name, answer.unit);
            one.add(answer.value - entry->value, entry->value, mark(entry->place));
            report.deviations.push_back(one.result());
        }
    }
    if (report.deviations.empty()) {
        throw Failure(exit_file, fmt::format("{}: nothing to compare, expected I_1_real_rms, torque or others of the "
                                             "operating point",
                                             options.operating_point_path));
    }
    return report;
}

}  // namespace

ImState written_steady_state(KZB_STORE* store, ImApplication application, double voltage, double omega, double slip) {
    const double r1 = kzb_get_double("InductionParam", "R1", store);
    const double poles = kzb_get_int("control", "number_of_poles", store);
    const auto at_current = [&](double i_1) {
        return solved(written_at(store, application, slip * omega / two_pi, i_1), r1, poles, voltage, omega, slip);
    };
    // Where the current that the circuit takes is the one that its inductances belong to.
    double low = 0.0;
    double high = 1.0;
    for (int n = 0; n < 100 && std::abs(at_current(high).i1) > high; ++n) {
        high *= 2.0;
    }
    for (int n = 0; n < 200 && high - low > 1e-15 * high; ++n) {
        const double middle = 0.5 * (low + high);
        (std::abs(at_current(middle).i1) > middle ? low : high) = middle;
    }
    return at_current(0.5 * (low + high));
}

std::vector<ImDeviationReport> compare_im(KZB_STORE* store, const ImBuild& build, const ImOptions& options) {
    std::vector<ImDeviationReport> reports;
    if (options.application == ImApplication::tables && build.circuit.main.saturates()) {
        reports.push_back(against_curve(store, build));
    }
    if (build.rated.voltage > 0.0) {
        reports.push_back(against_circuit(store, build, options));
    }
    if (!options.operating_point_path.empty()) {
        reports.push_back(against_point(store, options));
    }
    return reports;
}

}  // namespace kzb::tool
