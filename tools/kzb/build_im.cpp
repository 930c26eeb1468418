#include "kzb/build_im.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <numbers>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/build_origin.h"
#include "kzb/command.h"
#include "kzb/im_parameters.h"

namespace kzb::tool {

namespace {

constexpr int motor_type_im = 10006;
constexpr const char* constants = "InductionParam";
constexpr const char* category_of_tables = "InductionParam_HigherAccuracy";
// Axes of tables that hold one value: no run leaves them.
constexpr double any_slip = 1e6;
constexpr double any_current = 1e9;

// From 0 to `last`, nearly even up to `fine` and wider beyond: x = fine sinh(k c).
std::vector<double> growing_nodes(double last, double fine, int count) {
    std::vector<double> nodes;
    const double c = std::asinh(last / fine) / (count - 1);
    for (int k = 0; k < count; ++k) {
        nodes.push_back(fine * std::sinh(k * c));
    }
    nodes.back() = last;
    return nodes;
}

std::vector<double> on_both_sides(const std::vector<double>& nodes) {
    std::vector<double> all;
    for (std::size_t k = nodes.size() - 1; k > 0; --k) {
        all.push_back(-nodes[k]);
    }
    all.insert(all.end(), nodes.begin(), nodes.end());
    return all;
}

// Slip frequency in Hz at which the rotor's resistance and reactance are equal.
double break_frequency(const ImCircuit& c) {
    return c.r2 / (2.0 * std::numbers::pi * (c.leakage2 + c.main.inductance(0.0)));
}

double largest_current(const ImOptions& options, const ImCircuit& c, const ImRated& rated) {
    if (options.current_max > 0.0) {
        return options.current_max;
    }
    if (rated.voltage == 0.0) {
        throw Failure(exit_usage,
                      "no rated voltage to tell the largest current of the tables, expected --current-max, "
                      "--parameter phase_voltage_rms=VOLT or --parameter line_voltage_rms=VOLT");
    }
    // A sudden connection at standstill makes up to twice the current of the locked rotor.
    constexpr double margin = 2.5;
    const double w = 2.0 * std::numbers::pi * rated.frequency;
    return std::max(margin * rated.voltage / std::hypot(c.r1 + c.r2, w * (c.leakage1 + c.leakage2)),
                    margin * c.main.last_current());
}

// Whether the tables hold anything but constants.
bool varies(const ImBuild& build) {
    return build.circuit.main.saturates() || build.rated.iron_loss > 0.0;
}

void make_axes(const ImOptions& options, ImBuild& build) {
    if (!varies(build)) {
        build.slip.nodes = {-any_slip, any_slip};
        build.current.nodes = {0.0, any_current};
        return;
    }
    const double slip_max = options.slip_max > 0.0 ? options.slip_max : 2.0 * build.rated.frequency;
    const double current_max = largest_current(options, build.circuit, build.rated);
    build.slip.nodes = on_both_sides(growing_nodes(slip_max, 2.0 * break_frequency(build.circuit), options.slip_nodes));
    const double fine = build.circuit.main.saturates() ? 0.2 * build.circuit.main.last_current() : 0.1 * current_max;
    build.current.nodes = growing_nodes(current_max, fine, options.current_nodes);
}

void put_circuit_tables(KZB_STORE* store, const ImBuild& build) {
    const ImCircuit& c = build.circuit;
    std::vector<double> l11, l22, m, iron;
    for (const double slip : build.slip.nodes) {
        for (const double i_1 : build.current.nodes) {
            const double i_m = varies(build) ? magnetizing_current(c, 2.0 * std::numbers::pi * slip, i_1) : 0.0;
            const double main = c.main.inductance(i_m);
            l11.push_back(main + c.leakage1);
            l22.push_back(main + c.leakage2);
            m.push_back(main);
            const double share = build.rated.iron_flux > 0.0 ? c.main.flux(i_m) / build.rated.iron_flux : 0.0;
            iron.push_back(build.rated.iron_loss * share * share);
        }
    }
    const std::vector<TableAxis> axes{build.slip, build.current};
    put_table(store, category_of_tables, "L11_table", axes, l11);
    put_table(store, category_of_tables, "M12_table", axes, m);
    put_table(store, category_of_tables, "M21_table", axes, m);
    put_table(store, category_of_tables, "L22_table", axes, l22);
    put_table(store, category_of_tables, "R2_table", axes, std::vector<double>(m.size(), c.r2));
    if (build.rated.iron_loss > 0.0) {
        put_table(store, category_of_tables, "ironloss_table", axes, iron);
    }
}

void put_constants(KZB_STORE* store, const ImBuild& build) {
    const ImCircuit& c = build.constants;
    const double w = 2.0 * std::numbers::pi * build.rated.frequency;
    kzb_put_double(constants, "R1", c.r1, store);
    kzb_put_double(constants, "R2", c.r2, store);
    kzb_put_double(constants, "X1", w * c.leakage1, store);
    kzb_put_double(constants, "X2", w * c.leakage2, store);
    kzb_put_double(constants, "b0", 1.0 / (w * c.main.inductance(0.0)), store);
    // P = 3 (w psi / sqrt 2)^2 g0, of all three phases
    const double emf = w * build.rated.iron_flux;
    kzb_put_double(constants, "g0", emf > 0.0 ? build.rated.iron_loss / (1.5 * emf * emf) : 0.0, store);
}

void put_machine(KZB_STORE* store, const ImOptions& options, const ImBuild& build) {
    kzb_put_int("control", "motor_type", motor_type_im, store);
    kzb_put_int("control", "number_of_poles", 2 * static_cast<int>(build.circuit.pole_pairs), store);
    kzb_put_int("control", "Winding_Pattern_Flag", options.connection, store);
    put_if_told(store, "control", "base_1st_coil_temperature", options.base_primary_temperature);
    put_if_told(store, "control", "base_2nd_coil_temperature", options.base_secondary_temperature);
    put_if_told(store, "control", "coef_1st_coil_temperature", options.primary_coefficient);
    put_if_told(store, "control", "coef_2nd_coil_temperature", options.secondary_coefficient);
    kzb_put_double("parameter", "RU", build.circuit.r1, store);
}

// The main inductance that stands for the curve where the model takes constants: that of the rated voltage.
double inductance_of_constants(ImBuild& build) {
    const MagnetizingCurve& main = build.circuit.main;
    const double w = 2.0 * std::numbers::pi * build.rated.frequency;
    if (!main.saturates() || build.rated.voltage == 0.0) {
        if (main.saturates()) {
            build.notes.emplace_back("InductionParam holds the unsaturated main inductance: no rated voltage is known");
        }
        return main.inductance(0.0);
    }
    const double i_m = main.current_of(build.rated.voltage / w);
    build.notes.push_back(
        fmt::format("InductionParam holds the main inductance of {:.4g} A peak, where its flux "
                    "linkage alone induces the rated voltage",
                    i_m));
    return main.inductance(i_m);
}

void note_extent(const ImOptions& options, ImBuild& build) {
    const MagnetizingCurve& main = build.circuit.main;
    if (options.application == ImApplication::constants) {
        build.notes.emplace_back(
            "a model of InductionParam takes for speed the mean since time 0: for constant speed from time 0 on");
        if (build.rated.iron_loss > 0.0) {
            build.notes.emplace_back("the model computes no iron loss from the g0 of InductionParam");
        }
        return;
    }
    if (main.saturates()) {
        const double largest = magnetizing_current(build.circuit, 0.0, build.current.nodes.back());
        if (largest > main.last_current() * (1.0 + 1e-9)) {
            build.notes.push_back(
                fmt::format("beyond its last point, {:.4g} A peak, the magnetizing curve goes straight "
                            "on; the tables reach {:.4g} A",
                            main.last_current(), largest));
        }
    }
    if (build.rated.iron_loss > 0.0) {
        build.notes.push_back(
            fmt::format("iron loss: {:g} W at {:.4g} Vs peak and {:g} Hz, with the square of the main "
                        "flux linkage; the same at every frequency of the supply",
                        build.rated.iron_loss, build.rated.iron_flux, build.rated.frequency));
    }
}

}  // namespace

ImCircuit equal_leakage_circuit(const ImCircuit& circuit, double inductance) {
    const double ls = inductance + circuit.leakage1;
    const double lr = inductance + circuit.leakage2;
    const double k = std::sqrt(ls / lr);
    ImCircuit equal = circuit;
    equal.main = MagnetizingCurve(k * inductance);
    // ls - k M without the loss of digits: (ls^2 - k^2 M^2) / (ls + k M), k^2 = ls / lr
    equal.leakage1 = ls * (inductance * (circuit.leakage1 + circuit.leakage2) + circuit.leakage1 * circuit.leakage2) /
                     (lr * (ls + k * inductance));
    equal.leakage2 = equal.leakage1;
    equal.r2 = k * k * circuit.r2;
    return equal;
}

ImBuild build_im(const ImOptions& options) {
    ImSource source = read_im_source(options);
    ImBuild build;
    build.circuit = source.circuit;
    build.rated = source.rated;
    build.constants = equal_leakage_circuit(build.circuit, inductance_of_constants(build));
    build.store = open_store();
    KZB_STORE* store = build.store.get();
    put_version(store);
    put_machine(store, options, build);
    const std::filesystem::path file(options.parameter_path);
    Origin origin{options.title.empty() ? file.filename().string() : options.title, options.preparer,
                  file.filename().string(), source.information};
    for (const auto& [key, value] : options.information) {
        origin.information[key] = value;
    }
    put_origin(store, origin);
    put_constants(store, build);
    if (options.application == ImApplication::tables) {
        make_axes(options, build);
        put_circuit_tables(store, build);
    }
    note_extent(options, build);
    return build;
}

}  // namespace kzb::tool
