#include "kzb/build_sr.h"

#include <algorithm>
#include <cmath>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/command.h"
#include "kzb/sr_map.h"

namespace kzb::tool {

namespace {

constexpr int type_of_no_phases = 10007;  // 10010 for 3 phases, 10011 for 4, 10012 for 5
constexpr CoilQuantities phase_quantities{"theta_mech", "deg", "psi", "torque"};
constexpr CoilQuantities mutual_quantities{"theta_mech", "deg", "psi_neighbour", nullptr};
const std::vector<std::string> sr_quantities{"theta_mech", "current", "psi", "torque", "psi_neighbour"};

std::vector<ParameterQuantity> sr_parameters() {
    return {{"resistance", {"phase_resistance", "coil_resistance"}, Dimension::resistance, true},
            {"phases", {"number_of_phases"}, Dimension::number},
            {"rotor_poles", {"rotor_teeth"}, Dimension::number}};
}

int whole_number(const Parameters& parameters, const char* name, int least, int most) {
    const double value = parameters.required(name);
    if (value != std::floor(value) || value < least || value > most) {
        throw Failure(exit_usage,
                      fmt::format("{} {:g}: expected a whole number from {} to {}", name, value, least, most));
    }
    return static_cast<int>(value);
}

// Fields of the maps as functions, with what the tables ask of them.
class SrFields {
  public:
    SrFields(const SrBuild& build, const SrOptions& options, std::vector<std::string>& notes)
        : build_(build),
          flux_(build.phase, build.phase.flux, build.pitch()),
          torque_(build.phase, build.phase.torque, build.pitch()),
          closing_sign_(options.closing_sign) {
        if (!build.mutual.positions.empty()) {
            coupling_ = SrCoupling(build.mutual, build.pitch(), build.shift(), notes);
        }
    }
    double inductance(double theta, double current) const {
        return current == 0.0 ? flux_.at(theta, 0.0).fy : flux_.at(theta, current).f / current;
    }
    double torque(double theta, double current) const { return torque_.at(theta, std::fabs(current)).f; }
    // Element of the matrix at a rotor angle and the current of the row's phase.
    double element(int row, int column, double angle, double current) const {
        const int n = build_.phases;
        if (row == column) {
            return inductance(angle + row * build_.shift(), current);
        }
        const int low = std::min(row, column);
        const int high = std::max(row, column);
        if (high - low == 1) {
            return coupling_.at(angle + low * build_.shift());
        }
        // The last phase is the lower one of the pair that it makes with the first.
        return high - low == n - 1 ? closing_sign_ * coupling_.at(angle + high * build_.shift()) : 0.0;
    }

  private:
    const SrBuild& build_;
    CoilField flux_;
    CoilField torque_;
    SrCoupling coupling_;
    double closing_sign_;
};

void put_tables(KZB_STORE* store, const SrBuild& build, const SrFields& fields) {
    const int n = build.phases;
    const auto elements = static_cast<std::size_t>(n * n);
    const std::size_t nodes = build.position.nodes.size();
    // The node that closes the pitch repeats the first bit for bit.
    const auto angle = [&](std::size_t p) { return build.position.nodes[p + 1 == nodes ? 0 : p]; };
    std::vector<double> inductance;
    for (const double i : build.current.nodes) {
        for (std::size_t p = 0; p < nodes; ++p) {
            for (int column = 0; column < n; ++column) {
                for (int row = 0; row < n; ++row) {
                    inductance.push_back(fields.element(row, column, angle(p), i));
                }
            }
        }
    }
    put_table(store, "inductance", "inductance", {build.current, build.position, component_axis(elements)}, inductance);
    const TableAxis both = signed_axis(build.current);
    std::vector<double> torque;
    for (std::size_t p = 0; p < nodes; ++p) {
        for (const double i : both.nodes) {
            torque.push_back(fields.torque(angle(p), i));
        }
    }
    put_table(store, "torque", "torque_ibeta", {build.position, both}, torque);
}

// Torque that the map does not tell, or how far what it tells is from its own coenergy.
void complete_torque(SrBuild& build) {
    const std::vector<double> torque = torque_of_coenergy(build.phase, build.pitch());
    if (build.phase.torque.empty()) {
        build.phase.torque = torque;
        build.notes.emplace_back("the map has no torque; it is the derivative of the coenergy over the position");
        return;
    }
    double off = 0.0;
    double largest = 0.0;
    for (std::size_t n = 0; n < torque.size(); ++n) {
        off = std::max(off, std::fabs(torque[n] - build.phase.torque[n]));
        largest = std::max(largest, std::fabs(build.phase.torque[n]));
    }
    build.notes.push_back(
        fmt::format("the torque of the map and the derivative of its coenergy differ by up to "
                    "{:.3g} Nm, {:.1f} % of the largest torque",
                    off, largest > 0.0 ? 100.0 * off / largest : 0.0));
}

std::string place_of(double theta, double current) {
    return fmt::format("{:g} deg, {:g} A", theta, current);
}

}  // namespace

SrBuild build_sr(const SrOptions& options) {
    const auto columns = columns_of(options.common, sr_quantities);
    const Parameters parameters = parameters_of(options.common, sr_parameters());
    SrBuild build;
    build.phases = whole_number(parameters, "phases", 3, 5);
    build.rotor_poles = whole_number(parameters, "rotor_poles", 2, 1000);
    build.phase = whole_pitch(read_coil_map(CsvTable::read(options.common.map_path), phase_quantities, columns),
                              build.pitch(), build.notes);
    complete_torque(build);
    if (!options.mutual_path.empty()) {
        build.mutual = read_coil_map(CsvTable::read(options.mutual_path), mutual_quantities, columns);
    }
    build.current = current_axis(options.common, build.phase.currents);
    build.position.cyclic = true;
    build.position.nodes = options.common.position_nodes > 0
                               ? even_nodes(0.0, build.pitch(), options.common.position_nodes)
                               : build.phase.positions;
    const SrFields fields(build, options, build.notes);
    build.store = coil_model(options.common, type_of_no_phases + build.phases, "RU", parameters.required("resistance"));
    kzb_put_int("control", "number_of_poles", build.rotor_poles, build.store.get());
    put_tables(build.store.get(), build, fields);
    return build;
}

Outcome compare_sr(KZB_STORE* store, const SrBuild& build, const SrOptions& options) {
    Outcome outcome;
    outcome.path = options.common.out_path;
    outcome.motor = "SR";
    outcome.motor_type = type_of_no_phases + build.phases;
    outcome.notes = build.notes;
    outcome.against = "points of the map, every phase";
    outcome.method = options.common.method;
    outcome.axes = {{"current", "A", build.current}, {"position", "deg", build.position}};
    OutcomeLookup tables(store, options.common.method);
    const double largest = build.current.nodes.back() * (1.0 + 1e-9);
    PointDeviation flux{"psi", "Vs"};
    PointDeviation torque{"torque", "Nm"};
    PointDeviation mutual{"psi_neighbour", "Vs"};
    const auto element = [&](int row, int column, double current, double angle) {
        const double on_pitch = angle - std::floor(angle / build.pitch()) * build.pitch();
        return tables.at("inductance", "inductance",
                         {current, on_pitch, static_cast<double>(build.phases * column + row)});
    };
    const CoilMap& map = build.phase;
    for (std::size_t p = 0; p < map.positions.size(); ++p) {
        for (std::size_t i = 0; i < map.currents.size() && map.currents[i] <= largest; ++i) {
            const double current = std::min(map.currents[i], build.current.nodes.back());
            const auto where = [&] { return place_of(map.positions[p], current); };
            for (int k = 0; k < build.phases; ++k) {
                const double inductance = element(k, k, current, map.positions[p] - k * build.shift());
                flux.add(inductance * current, map.flux[map.index(p, i)], where);
            }
            torque.add(tables.at("torque", "torque_ibeta", {map.positions[p], current}), map.torque[map.index(p, i)],
                       where);
        }
    }
    outcome.deviations = {flux, torque};
    for (std::size_t p = 0; p < build.mutual.positions.size(); ++p) {
        for (std::size_t i = 0; i < build.mutual.currents.size() && build.mutual.currents[i] <= largest; ++i) {
            const double current = build.mutual.currents[i];
            mutual.add(element(1, 0, 0.0, build.mutual.positions[p]) * current,
                       build.mutual.flux[build.mutual.index(p, i)],
                       [&] { return place_of(build.mutual.positions[p], current); });
        }
    }
    if (!build.mutual.positions.empty()) {
        outcome.deviations.push_back(mutual);
    }
    outcome.out_of_table = tables.out_of_table();
    return outcome;
}

}  // namespace kzb::tool
