#include "kzb/build_stepper.h"

#include <cmath>
#include <numbers>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr int motor_type_stepper = 10003;
constexpr int coil_count = 4;

std::vector<ParameterQuantity> stepper_parameters() {
    return {{"rotor_teeth", {"pole_pairs"}, Dimension::number},
            {"resistance", {"coil_resistance", "phase_resistance"}, Dimension::resistance, true},
            {"magnet_flux", {"flux_linkage"}, Dimension::flux},
            {"inductance", {"coil_inductance", "phase_inductance"}, Dimension::inductance},
            {"coupling", {}, Dimension::number, true},
            {"saliency", {}, Dimension::inductance, true},
            {"detent_torque", {}, Dimension::number, true},
            {"largest_current", {"peak_current"}, Dimension::current}};
}

StepperMachine read_machine(const Parameters& parameters) {
    StepperMachine machine;
    machine.pole_pairs = parameters.required("rotor_teeth");
    if (machine.pole_pairs != std::floor(machine.pole_pairs) || machine.pole_pairs > 10000.0) {
        throw Failure(exit_usage, fmt::format("rotor_teeth {:g}: expected a whole number", machine.pole_pairs));
    }
    machine.resistance = parameters.required("resistance");
    machine.magnet_flux = parameters.required("magnet_flux");
    machine.inductance = parameters.required("inductance");
    machine.coupling = parameters.find("coupling").value_or(1.0);
    if (machine.coupling > 1.0) {
        throw Failure(exit_usage, fmt::format("coupling {:g}: expected a number from 0 to 1", machine.coupling));
    }
    machine.saliency = parameters.find("saliency").value_or(0.0);
    if (machine.saliency >= machine.coupling * machine.inductance && machine.saliency > 0.0) {
        throw Failure(exit_usage, fmt::format("saliency {:g} H: expected less than the coupled inductance {:g} H",
                                              machine.saliency, machine.coupling * machine.inductance));
    }
    machine.detent_torque = parameters.find("detent_torque").value_or(0.0);
    machine.largest_current = parameters.required("largest_current");
    return machine;
}

// The node that closes the period repeats the first bit for bit.
double angle_of(const TableAxis& position, std::size_t p) {
    return position.nodes[p + 1 == position.nodes.size() ? 0 : p];
}

void put_tables(KZB_STORE* store, const StepperBuild& build) {
    const StepperMachine& machine = build.machine;
    const std::size_t nodes = build.position.nodes.size();
    std::vector<double> flux;
    for (std::size_t p = 0; p < nodes; ++p) {
        for (int coil = 0; coil < coil_count; ++coil) {
            flux.push_back(machine.magnet(angle_of(build.position, p), coil));
        }
    }
    put_table(store, "mag_flux", "flux", {build.position, component_axis(coil_count)}, flux);
    // The inductances do not depend on the current: two nodes.
    const TableAxis size{{0.0, build.difference.nodes.back()}, false};
    std::vector<double> inductance;
    for (std::size_t i = 0; i < size.nodes.size(); ++i) {
        for (std::size_t p = 0; p < nodes; ++p) {
            for (int column = 0; column < coil_count; ++column) {
                for (int row = 0; row < coil_count; ++row) {
                    inductance.push_back(machine.inductance_of(angle_of(build.position, p), row, column));
                }
            }
        }
    }
    put_table(store, "inductance", "inductance", {size, build.position, component_axis(coil_count * coil_count)},
              inductance);
    std::vector<double> torque;
    for (const double j_a : build.difference.nodes) {
        for (std::size_t p = 0; p < nodes; ++p) {
            for (const double j_b : build.difference.nodes) {
                torque.push_back(machine.torque(angle_of(build.position, p), j_a, j_b));
            }
        }
    }
    put_table(store, "torque", "torque_ibeta", {build.difference, build.position, build.difference}, torque);
}

std::vector<double> middles(const std::vector<double>& nodes) {
    std::vector<double> result;
    for (std::size_t n = 1; n < nodes.size(); ++n) {
        result.push_back(0.5 * (nodes[n - 1] + nodes[n]));
    }
    return result;
}

}  // namespace

double StepperMachine::electrical(double angle_deg) const {
    return pole_pairs * angle_deg * (std::numbers::pi / 180.0);
}

double StepperMachine::magnet(double angle_deg, int coil) const {
    const double e = electrical(angle_deg);
    return (coil % 2 == 0 ? 1.0 : -1.0) * magnet_flux * (coil < 2 ? std::cos(e) : std::sin(e));
}

double StepperMachine::inductance_of(double angle_deg, int row, int column) const {
    const double e2 = 2.0 * electrical(angle_deg);
    const bool of_a = row < 2;
    double element = saliency * std::sin(e2);
    if (of_a == (column < 2)) {
        element = coupling * inductance + (of_a ? 1.0 : -1.0) * saliency * std::cos(e2);
    }
    const double sign = (row + column) % 2 == 0 ? 1.0 : -1.0;
    return sign * element + (row == column ? (1.0 - coupling) * inductance : 0.0);
}

double StepperMachine::torque(double angle_deg, double j_a, double j_b) const {
    const double e = electrical(angle_deg);
    const double magnet_part = magnet_flux * (std::cos(e) * j_b - std::sin(e) * j_a);
    const double saliency_part =
        saliency * (2.0 * std::cos(2.0 * e) * j_a * j_b - std::sin(2.0 * e) * (j_a * j_a - j_b * j_b));
    return pole_pairs * (magnet_part + saliency_part) - detent_torque * std::sin(4.0 * e);
}

StepperBuild build_stepper(const StepperOptions& options) {
    const Parameters parameters = parameters_of(options.common, stepper_parameters());
    StepperBuild build;
    build.machine = read_machine(parameters);
    const std::size_t asked =
        options.current_nodes > 0 ? options.current_nodes : (build.machine.saliency > 0.0 ? 17U : 3U);
    // Both half coils may carry the largest current at a time, in opposite directions.
    const double largest = 2.0 * build.machine.largest_current;
    build.difference.nodes = even_nodes(-largest, largest, asked);
    build.position = {even_nodes(0.0, 360.0 / build.machine.pole_pairs, options.position_nodes), true};
    build.store = coil_model(options.common, motor_type_stepper, "RA+", build.machine.resistance);
    kzb_put_int("control", "number_of_poles", static_cast<int>(2.0 * build.machine.pole_pairs), build.store.get());
    put_tables(build.store.get(), build);
    return build;
}

Outcome compare_stepper(KZB_STORE* store, const StepperBuild& build, const StepperOptions& options) {
    Outcome outcome;
    outcome.path = options.common.out_path;
    outcome.motor = "2-PhaseStepping";
    outcome.motor_type = motor_type_stepper;
    outcome.notes = build.notes;
    outcome.axes = {{"current difference", "A", build.difference}, {"position", "deg", build.position}};
    outcome.against = "the closed forms, between the nodes";
    outcome.method = options.common.method;
    OutcomeLookup tables(store, options.common.method);
    OutcomeLookup splines(store, "Spline");  // as the model takes the flux of the magnet
    PointDeviation flux{"magnet_flux", "Vs"};
    PointDeviation inductance{"inductance", "H"};
    PointDeviation torque{"torque", "Nm"};
    const StepperMachine& machine = build.machine;
    for (const double angle : middles(build.position.nodes)) {
        const auto place = [&] { return fmt::format("{:g} deg", angle); };
        for (int coil = 0; coil < coil_count; ++coil) {
            flux.add(splines.at("mag_flux", "flux", {angle, static_cast<double>(coil)}), machine.magnet(angle, coil),
                     place);
            for (int row = 0; row < coil_count; ++row) {
                const double element = coil_count * coil + row;
                inductance.add(tables.at("inductance", "inductance", {0.5 * machine.largest_current, angle, element}),
                               machine.inductance_of(angle, row, coil), place);
            }
        }
        for (const double j_a : middles(build.difference.nodes)) {
            for (const double j_b : middles(build.difference.nodes)) {
                torque.add(tables.at("torque", "torque_ibeta", {j_a, angle, j_b}), machine.torque(angle, j_a, j_b),
                           [&] { return fmt::format("{:g} A, {:g} deg, {:g} A", j_a, angle, j_b); });
            }
        }
    }
    outcome.deviations = {flux, inductance, torque};
    outcome.out_of_table = tables.out_of_table() + splines.out_of_table();
    return outcome;
}

}  // namespace kzb::tool
