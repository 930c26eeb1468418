#include "models/coil_magnet.h"

#include "models/history.h"

namespace kzb {
namespace {

const Method& spline() {
    static const Method method = Method::named("Spline");
    return method;
}

// A lookup in such a table has nothing to tell but its value: equal ends of a cyclic axis are complained of every time.
bool is_quiet(const KZB_TABLE* table) {
    if (table == nullptr || table->dim < 1 || table->axes.size() != static_cast<std::size_t>(table->dim)) {
        return false;
    }
    for (std::size_t a = 0; a < table->axes.size(); ++a) {
        const ZeroedArray& nodes = table->axes[a];
        if (nodes.data() == nullptr || (table->cyclic[a] >= 1 && !(nodes[0] < nodes[nodes.size() - 1]))) {
            return false;
        }
    }
    return true;
}

// The value of two lookups at one point. The second is made only where it would show; it is counted in any case.
double look_up_twice(KZB_STORE& store, TableRef& table, const double* point, int count) {
    constexpr TimingSlot counters[] = {slot_spline_calls, slot_linear_calls, slot_cubic_calls};
    const double before[] = {store.timing[counters[0]], store.timing[counters[1]], store.timing[counters[2]]};
    const double value = table.at(store, spline(), point, count);
    if (store.debug_lines || store.keep_time || value == KZB_NO_VALUE || !is_quiet(table.table(store))) {
        return table.at(store, spline(), point, count);
    }
    for (std::size_t k = 0; k < 3; ++k) {
        store.timing[counters[k]] += store.timing[counters[k]] - before[k];
    }
    return value;
}

}  // namespace

void CoilMagnet::resize(std::size_t coils) {
    for (std::vector<double>* values :
         {&magnet_flux, &magnet_flux_prev, &flux_temperature_delta, &flux_temperature_delta_prev}) {
        values->resize(coils, 0.0);
    }
}

void CoilMagnet::update(KZB_STORE& store, TableRef& table, double position, double magnet_factor, double correction) {
    for (std::size_t k = 0; k < magnet_flux.size(); ++k) {
        const double point[2] = {position, static_cast<double>(k)};
        const double f = look_up_twice(store, table, point, 2);
        magnet_flux[k] = magnet_factor * f * correction;
        flux_temperature_delta[k] = (1 - magnet_factor) * f * correction;
    }
}

void CoilMagnet::keep_first() {
    magnet_flux_prev = magnet_flux;
    flux_temperature_delta_prev = flux_temperature_delta;
}

void CoilMagnet::accept() {
    shift_history(magnet_flux, magnet_flux_prev);
    shift_history(flux_temperature_delta, flux_temperature_delta_prev);
}

double CoilMagnet::magnet_flux_of(int coil) const {
    const bool inside = coil >= 1 && static_cast<std::size_t>(coil) <= magnet_flux.size();
    return inside ? magnet_flux[static_cast<std::size_t>(coil - 1)] : no_such_coil;
}

}  // namespace kzb
