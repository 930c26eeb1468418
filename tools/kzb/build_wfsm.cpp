#include "kzb/build_wfsm.h"

#include <algorithm>
#include <array>
#include <filesystem>

#include "fmt/format.h"
#include "kzb/build_applications.h"
#include "kzb/build_origin.h"
#include "kzb/command.h"
#include "kzb/csv_table.h"
#include "kzb/wfsm_map.h"
#include "kzb/wfsm_parameters.h"

namespace kzb::tool {

namespace {

constexpr int motor_type_wfsm = 10007;
constexpr std::size_t wfsm_value_limit = 50'000'000;  // of one table

std::vector<double> parted(const std::vector<double>& nodes, std::size_t parts) {
    std::vector<double> finer{nodes.front()};
    for (std::size_t n = 1; n < nodes.size(); ++n) {
        for (std::size_t k = 1; k < parts; ++k) {
            finer.push_back(nodes[n - 1] +
                            (nodes[n] - nodes[n - 1]) * static_cast<double>(k) / static_cast<double>(parts));
        }
        finer.push_back(nodes[n]);
    }
    return finer;
}

void make_axes(const WfsmOptions& options, WfsmBuild& build) {
    const double step = options.position_step > 0.0 ? options.position_step : build.map ? 5.0 : 1.0;
    const std::size_t positions = whole_steps("--position-step", 360.0, step);
    build.position = {even_nodes(0.0, 360.0 / build.pole_pairs, positions + 1), true};
    if (!build.map) {
        // The linear machine between two nodes is what linear interpolation gives.
        const double reach = options.current_max;
        build.first.nodes = build.second.nodes = build.field.nodes = {-reach, reach};
        return;
    }
    build.polar = true;
    build.first.nodes = parted(build.map->amplitude, options.amplitude_parts);
    build.second = {even_nodes(-180.0, 180.0, 4 * whole_steps("--phase-step", 90.0, options.phase_step) + 1), true};
    build.field.nodes = build.map->field;
    build.field.nodes.insert(build.field.nodes.begin(), 0.0);
    const std::size_t values =
        build.first.nodes.size() * build.second.nodes.size() * build.field.nodes.size() * (positions + 1) * 16;
    if (values > wfsm_value_limit) {
        throw Failure(exit_usage,
                      fmt::format("{} amplitudes, {} phases, {} field currents, {} positions: a table beyond "
                                  "{} values, expected coarser grids",
                                  build.first.nodes.size(), build.second.nodes.size(), build.field.nodes.size(),
                                  positions + 1, wfsm_value_limit));
    }
}

struct Angles {
    std::array<double, 3> c;
    std::array<double, 3> s;
    explicit Angles(double theta_deg) {
        for (std::size_t k = 0; k < 3; ++k) {
            c[k] = cos_deg(theta_deg - 120.0 * static_cast<double>(k));
            s[k] = sin_deg(theta_deg - 120.0 * static_cast<double>(k));
        }
    }
};

// psi_k = psi_d cos(theta_k) - psi_q sin(theta_k)
void append_flux(std::vector<double>& values, const WoundFieldPoint& p, const Angles& a) {
    for (std::size_t k = 0; k < 3; ++k) {
        values.push_back(p.psi_d * a.c[k] - p.psi_q * a.s[k]);
    }
    values.push_back(p.psi_f);
}

// i_d = 2/3 sum i_k cos(theta_k), i_q = -2/3 sum i_k sin(theta_k)
double element(const WoundFieldPoint& p, const Angles& a, std::size_t row, std::size_t column, double zero_inductance) {
    if (row == 3 && column == 3) {
        return p.l_ff;
    }
    if (column == 3) {
        return p.l_df * a.c[row] - p.l_qf * a.s[row];
    }
    if (row == 3) {  // 2/3 of l_fd = 1.5 l_df and of l_fq
        return p.l_df * a.c[column] - p.l_qf * a.s[column];
    }
    const double of_d = p.l_dd * a.c[row] - p.l_qd * a.s[row];
    const double of_q = p.l_dq * a.c[row] - p.l_qq * a.s[row];
    return 2.0 / 3.0 * (of_d * a.c[column] - of_q * a.s[column]) + zero_inductance / 3.0;
}

void put_tables(KZB_STORE* store, const WfsmBuild& build, double zero_inductance) {
    std::vector<double> flux;
    std::vector<double> inductance;
    std::vector<double> torque;
    std::vector<Angles> angles;
    for (const double position : build.position.nodes) {
        angles.emplace_back(position * build.pole_pairs);
    }
    for (const double x : build.first.nodes) {
        for (std::size_t j = 0; j < build.second.nodes.size(); ++j) {
            // Both ends of a full circle of phases are one point.
            const double y = build.second.nodes[build.second.cyclic && j + 1 == build.second.nodes.size() ? 0 : j];
            const DqCurrent i =
                build.polar ? current_at(x, y) : DqCurrent{x / power_invariant_factor, y / power_invariant_factor};
            for (const double i_f : build.field.nodes) {
                const WoundFieldPoint p = build.machine->at(i.id, i.iq, i_f);
                torque.insert(torque.end(), 2, 1.5 * build.pole_pairs * (p.psi_d * i.iq - p.psi_q * i.id));
                for (const Angles& a : angles) {
                    append_flux(flux, p, a);
                    for (std::size_t k = 0; k < 16; ++k) {
                        inductance.push_back(element(p, a, k % 4, k / 4, zero_inductance));
                    }
                }
            }
        }
    }
    const TableAxis turn{{0.0, build.position.nodes.back()}, true};
    put_table(store, "current_flux", "flux",
              {build.first, build.second, build.field, build.position, component_axis(4)}, flux);
    put_table(store, "harmonic_inductance", "inductance",
              {build.first, build.second, build.field, build.position, component_axis(16)}, inductance);
    put_table(store, "harmonic_torque", "torque_ibeta", {build.first, build.second, build.field, turn}, torque);
}

void put_machine(KZB_STORE* store, const WfsmOptions& options, const WfsmBuild& build) {
    kzb_put_int("control", "motor_type", motor_type_wfsm, store);
    kzb_put_int("control", "number_of_poles", 2 * static_cast<int>(build.pole_pairs), store);
    kzb_put_int("control", "current_type", build.polar ? 1 : 0, store);
    kzb_put_int("control", "Winding_Pattern_Flag", options.connection, store);
    kzb_put_double("control", "beta_zero", 0.0, store);
    kzb_put_double("parameter", "RU", build.resistance, store);
    kzb_put_double("parameter", "RF", build.field_resistance, store);
}

// Points of the tables where the incremental matrix of d axis and field winding is not positive definite.
std::size_t indefinite_points(const WfsmBuild& build, std::size_t& all) {
    std::size_t count = 0;
    for (const double x : build.first.nodes) {
        for (const double y : build.second.nodes) {
            for (const double i_f : build.field.nodes) {
                const DqCurrent i = current_at(x, y);
                const WoundFieldPoint p = build.machine->at(i.id, i.iq, i_f);
                ++all;
                count += p.l_dd > 0.0 && p.l_dd * p.l_ff > 1.5 * p.l_df * p.l_df ? 0U : 1U;
            }
        }
    }
    return count;
}

void complete_map(const WfsmOptions& options, WfsmBuild& build) {
    auto machine = std::make_unique<MappedWoundField>(*build.map, options.field_leakage);
    build.notes.push_back(fmt::format(
        "the map lacks the field winding's flux linkage: taken from the change of the coenergy with the field current, "
        "and without armature current from the d axis with a leakage factor of {:.4g}{}, an assumption; unsaturated "
        "field "
        "inductance {:.4g} H",
        machine->leakage_factor(), options.field_leakage > 0.0 ? "" : " (the least that its points allow)",
        machine->unsaturated_field_inductance()));
    build.notes.emplace_back("d currents above 0 are beyond the map: psi_d goes on linearly from i_d = 0, psi_q stays");
    build.notes.push_back(
        fmt::format("field currents below {:g} A: flux linkages go on linearly to 0", build.map->field.front()));
    build.machine = std::move(machine);
}

}  // namespace

WfsmBuild build_wfsm(const WfsmOptions& options) {
    WfsmBuild build;
    Origin origin{options.title, options.preparer, {}, read_wfsm_parameters(options, build)};
    if (options.map_path.empty()) {
        build.machine = linear_wound_field(build.constants);
    } else {
        build.map = read_wound_field_map(CsvTable::read(options.map_path));
        complete_map(options, build);
    }
    make_axes(options, build);
    if (build.map) {
        std::size_t all = 0;
        if (const std::size_t count = indefinite_points(build, all); count > 0) {
            build.notes.push_back(
                fmt::format("{} of {} points of the tables have incremental inductances of d axis and "
                            "field winding that are not positive definite",
                            count, all));
        }
    }
    build.store = open_store();
    KZB_STORE* store = build.store.get();
    put_version(store);
    put_machine(store, options, build);
    const std::filesystem::path file(build.map ? options.map_path : options.parameter_path);
    origin.input_file_name = file.filename().string();
    if (origin.title.empty()) {
        origin.title = origin.input_file_name;
    }
    for (const auto& [key, value] : options.information) {
        origin.information[key] = value;
    }
    put_origin(store, origin);
    put_tables(store, build, options.zero_inductance);
    return build;
}

}  // namespace kzb::tool
