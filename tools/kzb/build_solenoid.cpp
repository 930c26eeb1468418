#include "kzb/build_solenoid.h"

#include <algorithm>
#include <cmath>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr int motor_type_solenoid = 10004;
constexpr CoilQuantities map_quantities{"x", "m", "psi", "force"};
const std::vector<std::string> solenoid_quantities{"x", "current", "psi", "force"};

std::vector<ParameterQuantity> solenoid_parameters() {
    return {{"resistance", {"coil_resistance"}, Dimension::resistance, true}};
}

void require_solenoid_flux(const CoilMap& map) {
    for (std::size_t p = 0; p < map.positions.size(); ++p) {
        for (std::size_t i = 0; i < map.currents.size(); ++i) {
            const double psi = map.flux[map.index(p, i)];
            if (i == 0 ? psi != 0.0 : !(psi > 0.0)) {
                throw Failure(exit_file,
                              fmt::format("{}: flux linkage {:g} Vs at {:g} m, {:g} A, expected {}", map.name, psi,
                                          map.positions[p], map.currents[i],
                                          i == 0 ? "0 without current" : "one above 0 for a current above 0"));
            }
        }
    }
}

// Force that the map does not tell, or how far what it tells is from its own coenergy.
void complete_force(SolenoidBuild& build) {
    const CoilField coenergy(build.map, coenergy_of(build.map));
    std::vector<double> force;
    for (const double x : build.map.positions) {
        for (const double i : build.map.currents) {
            force.push_back(coenergy.at(x, i).fx);
        }
    }
    if (build.map.torque.empty()) {
        build.map.torque = force;
        build.notes.emplace_back("the map has no force; it is the derivative of the coenergy over the position");
        return;
    }
    double off = 0.0;
    double largest = 0.0;
    for (std::size_t n = 0; n < force.size(); ++n) {
        off = std::max(off, std::fabs(force[n] - build.map.torque[n]));
        largest = std::max(largest, std::fabs(build.map.torque[n]));
    }
    build.notes.push_back(
        fmt::format("the force of the map and the derivative of its coenergy differ by up to {:.3g} "
                    "N, {:.1f} % of the largest force",
                    off, largest > 0.0 ? 100.0 * off / largest : 0.0));
}

void put_tables(KZB_STORE* store, const SolenoidBuild& build) {
    const CoilField flux(build.map, build.map.flux);
    const CoilField force(build.map, build.map.torque);
    const TableAxis one{{0.0}, false};
    std::vector<double> inductance;
    for (const double i : build.current.nodes) {
        for (const double x : build.position.nodes) {
            const SurfaceValue psi = flux.at(x, i);
            inductance.push_back(i == 0.0 ? psi.fy : psi.f / i);
        }
    }
    put_table(store, "inductance", "inductance", {build.current, build.position, one}, inductance);
    put_table(store, "distance_flux", "flux", {build.position, one},
              std::vector<double>(build.position.nodes.size(), 0.0));
    const TableAxis both = signed_axis(build.current);
    std::vector<double> values;
    for (const double x : build.position.nodes) {
        for (const double i : both.nodes) {
            values.push_back(force.at(x, std::fabs(i)).f);
        }
    }
    put_table(store, "distance_force", "force", {build.position, both}, values);
}

}  // namespace

SolenoidBuild build_solenoid(const SolenoidOptions& options) {
    const auto columns = columns_of(options.common, solenoid_quantities);
    const Parameters parameters = parameters_of(options.common, solenoid_parameters());
    SolenoidBuild build;
    build.map = read_coil_map(CsvTable::read(options.common.map_path), map_quantities, columns);
    require_solenoid_flux(build.map);
    complete_force(build);
    build.current = current_axis(options.common, build.map.currents);
    build.position.nodes =
        options.common.position_nodes > 0
            ? even_nodes(build.map.positions.front(), build.map.positions.back(), options.common.position_nodes)
            : build.map.positions;
    build.store = coil_model(options.common, motor_type_solenoid, "RA", parameters.required("resistance"));
    kzb_put_double("parameter", "DispLimitMin", build.map.positions.front(), build.store.get());
    kzb_put_double("parameter", "DispLimitMax", build.map.positions.back(), build.store.get());
    put_tables(build.store.get(), build);
    return build;
}

Outcome compare_solenoid(KZB_STORE* store, const SolenoidBuild& build, const SolenoidOptions& options) {
    Outcome outcome;
    outcome.path = options.common.out_path;
    outcome.motor = "LinearSolenoid";
    outcome.motor_type = motor_type_solenoid;
    outcome.notes = build.notes;
    outcome.axes = {{"current", "A", build.current}, {"position", "m", build.position}};
    outcome.against = "points of the map";
    outcome.method = options.common.method;
    OutcomeLookup tables(store, options.common.method);
    PointDeviation flux{"psi", "Vs"};
    PointDeviation force{"force", "N"};
    const CoilMap& map = build.map;
    const double largest = build.current.nodes.back();
    for (std::size_t p = 0; p < map.positions.size(); ++p) {
        for (std::size_t i = 0; i < map.currents.size() && map.currents[i] <= largest * (1.0 + 1e-9); ++i) {
            const double current = std::min(map.currents[i], largest);
            const double x = map.positions[p];
            const auto where = [&] { return fmt::format("{:g} m, {:g} A", x, current); };
            flux.add(tables.at("inductance", "inductance", {current, x, 0.0}) * current, map.flux[map.index(p, i)],
                     where);
            force.add(tables.at("distance_force", "force", {x, current}), map.torque[map.index(p, i)], where);
        }
    }
    outcome.deviations = {flux, force};
    outcome.out_of_table = tables.out_of_table();
    return outcome;
}

}  // namespace kzb::tool
