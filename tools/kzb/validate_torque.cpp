// Torque (force of a linear machine) against flux linkage and current of the same file.
//
// Compared is the mean over the positions, so that ripple and cogging, which flux and current alone do not tell, drop
// out. Where a flux-integral file gives current over flux linkage, the mean is taken at constant flux linkage instead:
// there the rest is the change of the field energy with position, whose mean is zero as well.
#include <algorithm>
#include <cmath>
#include <numbers>

#include "fmt/format.h"
#include "kzb/application_tables.h"
#include "kzb/mean_torque.h"
#include "kzb/simple_flux.h"
#include "kzb/sound_table.h"
#include "kzb/torque_comparison.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

// Of the largest torque. The inductances of SimpleHarmonic and LdLq are secants in single directions, which add up to
// the flux linkage of a saturated machine only roughly; gross faults (units, pole pairs, peak for effective value) are
// larger than either.
constexpr double share_of_flux = 0.05;
constexpr double share_of_secants = 0.20;

// A mean over part of a period keeps some ripple: then nothing is compared.
bool covers_period(const KZB_TABLE& table, std::size_t axis, const TravelScale& travel) {
    const std::size_t count = rows_of(table, axis);
    if (count == 1) {
        return true;
    }
    const double turn =
        (table.axes[axis][count - 1] - table.axes[axis][0]) * travel.electrical_per_unit * 180.0 / std::numbers::pi;
    return turn > 30.0 && std::abs(turn - 60.0 * std::round(turn / 60.0)) < 1e-3;
}

void check_harmonic(const KZB_STORE& store, const TravelScale& travel, Findings& findings) {
    const KZB_TABLE* torque = sound_table(store, "harmonic_torque", "torque_ibeta");
    const KZB_TABLE* flux = sound_table(store, "current_flux", "flux");
    if (torque == nullptr || flux == nullptr || torque->dim != 3 || flux->dim != 4 || flux->sizes[3] != 3 ||
        !covers_period(*torque, 1, travel) || !covers_period(*flux, 2, travel)) {
        return;
    }
    TorqueComparison comparison("harmonic_torque", "torque_ibeta", share_of_flux);
    comparison.add_maps(mean_of_table(*torque, {2, 0, 1}, true), mean_of_flux(*flux, {0, 1, 2}, true, travel));
    comparison.tell(findings);
}

void check_wound_field(const KZB_STORE& store, const TravelScale& travel, Findings& findings) {
    const KZB_TABLE* torque = sound_table(store, "harmonic_torque", "torque_ibeta");
    const KZB_TABLE* flux = sound_table(store, "current_flux", "flux");
    if (torque == nullptr || flux == nullptr || torque->dim != 4 || flux->dim != 5 || flux->sizes[4] != 4 ||
        !covers_period(*torque, 3, travel) || !covers_period(*flux, 3, travel)) {
        return;
    }
    const bool polar = get_int(store, "control", "current_type") == 1;
    const MapAxes axes{0, 1, 3, 2};
    TorqueComparison comparison("harmonic_torque", "torque_ibeta", share_of_flux);
    comparison.add_maps(mean_of_table(*torque, axes, polar), mean_of_flux(*flux, axes, polar, travel));
    comparison.tell(findings);
}

// Torque of a table over phase, position and amplitude; nothing outside it.
std::optional<double> torque_at(const KZB_TABLE& table, const std::vector<double> nodes[3], double phase,
                                std::size_t position, double amplitude) {
    const auto on_phase = spot_on(nodes[0], table.cyclic[0] > 0, phase);
    const auto on_amplitude = spot_on(nodes[2], false, amplitude);
    if (!on_phase || !on_amplitude) {
        return std::nullopt;
    }
    const auto along = [&](std::size_t j) {
        const double* const line = table.values.data() + j * stride_of(table, 0) + position * stride_of(table, 1);
        return line[on_amplitude->lo] + on_amplitude->t * (line[on_amplitude->hi] - line[on_amplitude->lo]);
    };
    const double low = along(on_phase->lo);
    return low + on_phase->t * (along(on_phase->hi) - low);
}

void check_flux_integral(const KZB_STORE& store, const TravelScale& travel, Findings& findings) {
    const KZB_TABLE* torque = sound_table(store, "harmonic_torque", "torque_ibeta");
    const KZB_TABLE* id = sound_table(store, "current_table", "id");
    const KZB_TABLE* iq = sound_table(store, "current_table", "iq");
    if (torque == nullptr || id == nullptr || iq == nullptr || torque->dim != 3 || id->dim != 3 ||
        id->sizes != iq->sizes || !covers_period(*id, 2, travel)) {
        return;
    }
    const std::vector<double> nodes[3] = {nodes_of(*torque, 0), nodes_of(*torque, 1), nodes_of(*torque, 2)};
    const std::vector<double> positions = nodes_of(*id, 2);
    const std::vector<double> weights = mean_weights(positions);
    // The two tables come from one machine: they are compared where they have the same positions.
    if (positions != nodes[1] && nodes[1].size() != 1) {
        return;
    }
    TorqueComparison comparison("harmonic_torque", "torque_ibeta", share_of_flux);
    for (std::size_t m = 0; m < rows_of(*id, 0); ++m) {
        for (std::size_t n = 0; n < rows_of(*id, 1); ++n) {
            const double psi_d = id->axes[0][m];
            const double psi_q = id->axes[1][n];
            double of_table = 0.0;
            double of_flux = 0.0;
            bool inside = true;
            for (std::size_t k = 0; k < positions.size() && inside; ++k) {
                const std::size_t at = m * stride_of(*id, 0) + n * stride_of(*id, 1) + k;
                const double d = id->values[at];
                const double q = iq->values[at];
                const auto value = torque_at(*torque, nodes, std::atan2(-d, q) * 180.0 / std::numbers::pi,
                                             nodes[1].size() == 1 ? 0 : k, std::sqrt((d * d + q * q) * 2.0 / 3.0));
                inside = value.has_value();
                of_table += weights[k] * value.value_or(0.0);
                of_flux += weights[k] * travel.torque_factor * (psi_d * q - psi_q * d);
            }
            if (inside) {
                comparison.add(of_table, of_flux,
                               [&] { return fmt::format("flux linkage d {:g}, q {:g}", psi_d, psi_q); });
            }
        }
    }
    comparison.tell(findings);
}

// `category`/`key`: torque over phase, position and amplitude.
void check_simple(const KZB_STORE& store, const TravelScale& travel, const char* category, const char* key,
                  Findings& findings) {
    const KZB_TABLE* torque = sound_table(store, category, key);
    const KZB_TABLE* inductance = sound_table(store, "inductance", "inductance");
    const bool four_tables = get_int(store, "control", "motor_type") == 10000 &&
                             get_int(store, "control", "accuracy_type") == 0 &&
                             get_int(store, "control", "number_of_tables") == 4;
    const KZB_TABLE* magnet =
        four_tables ? sound_table(store, "magflux", "magflux") : sound_table(store, "mag_flux", "flux");
    if (torque == nullptr || inductance == nullptr || magnet == nullptr || torque->dim != 3 || inductance->dim != 3 ||
        magnet->dim != 2 || inductance->sizes[2] != 9 || magnet->sizes[1] != 3 || !covers_period(*torque, 1, travel)) {
        return;
    }
    const SimpleFlux flux(*magnet, *inductance, travel);
    const CurrentMap means = mean_of_table(*torque, {2, 0, 1}, true);
    const std::vector<double> positions = nodes_of(*torque, 1);
    const std::vector<double> weights = mean_weights(positions);
    TorqueComparison comparison(category, key, share_of_secants);
    for (std::size_t i = 0; i < means.a.size(); ++i) {
        for (std::size_t j = 0; j < means.b.size(); ++j) {
            double of_flux = 0.0;
            bool inside = true;
            for (std::size_t k = 0; k < positions.size() && inside; ++k) {
                const auto value = flux.torque(means.a[i], means.b[j], positions[k]);
                inside = value.has_value();
                of_flux += weights[k] * value.value_or(0.0);
            }
            if (inside) {
                comparison.add(means.at(i, j, 0), of_flux, [&] { return place_of(means, i, j, 0); });
            }
        }
    }
    comparison.tell(findings);
}

// The model of LdLq forms its torque from the inductances; a torque table beside them should be the same torque.
void check_ldlq(const KZB_STORE& store, const TravelScale& travel, Findings& findings) {
    const KZB_TABLE* torque = sound_table(store, "dq_torque", "torque_ibeta");
    const KZB_TABLE* tables[2] = {sound_table(store, "dq_inductance", "d_inductance"),
                                  sound_table(store, "dq_inductance", "q_inductance")};
    if (torque == nullptr || torque->dim != 2 || tables[0] == nullptr || tables[1] == nullptr) {
        return;
    }
    CurrentMap inductance[2];
    for (int k = 0; k < 2; ++k) {
        if (tables[k]->dim != 2) {
            return;
        }
        inductance[k].a = nodes_of(*tables[k], 1);
        inductance[k].b = nodes_of(*tables[k], 0);
        inductance[k].b_cyclic = tables[k]->cyclic[0] > 0;
        for (std::size_t i = 0; i < inductance[k].a.size(); ++i) {
            for (std::size_t j = 0; j < inductance[k].b.size(); ++j) {
                inductance[k].values.push_back(tables[k]->values[j * stride_of(*tables[k], 0) + i]);
            }
        }
    }
    const double magnet = get_double(store, "d_flux", "d_flux");
    TorqueComparison comparison("dq_torque", "torque_ibeta", share_of_secants);
    for (std::size_t j = 0; j < rows_of(*torque, 0); ++j) {
        for (std::size_t i = 0; i < rows_of(*torque, 1); ++i) {
            const double phase = torque->axes[0][j];
            const double amplitude = torque->axes[1][i];
            const auto ld = inductance[0].interpolated(amplitude, phase, 0.0);
            const auto lq = inductance[1].interpolated(amplitude, phase, 0.0);
            if (!ld || !lq) {
                continue;
            }
            const DqCurrent dq = dq_current(amplitude, phase, true);
            const double of_flux = travel.torque_factor * (magnet * dq.iq + (*ld - *lq) * dq.id * dq.iq);
            comparison.add(torque->values[j * stride_of(*torque, 0) + i], of_flux,
                           [&] { return fmt::format("amplitude {:g}, phase {:g}", amplitude, phase); });
        }
    }
    comparison.tell(findings);
}

}  // namespace

void check_torque(const Examined& model, Findings& findings) {
    const KZB_STORE& store = model.store;
    const std::optional<TravelScale> travel = travel_of(store, model.motor_type);
    if (!travel) {
        return;
    }
    for (const ApplicationTables* application : applications_of(model.motor_type)) {
        if (!has_application(store, application->motor, application->word)) {
            continue;
        }
        const std::string_view word = application->word;
        if (model.motor_type == 10007) {
            check_wound_field(store, *travel, findings);
        } else if (model.motor_type == 10005) {
            check_simple(store, *travel, "distance_force", "force", findings);
        } else if (word == "Harmonic") {
            check_harmonic(store, *travel, findings);
        } else if (word == "FluxIntegralDQTheta") {
            check_flux_integral(store, *travel, findings);
        } else if (word == "SimpleHarmonic") {
            check_simple(store, *travel, "torque", "torque_ibeta", findings);
        } else if (word == "LdLq") {
            check_ldlq(store, *travel, findings);
        }
    }
}

}  // namespace kzb::tool
