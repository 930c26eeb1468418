// Which tables and scalars of a model a skew acts on, by the applications that the file offers.
#include "store/store.h"
#include "store/transform/skew.h"
#include "store/transform/transforms.h"

namespace kzb {
namespace {

int skew_harmonic(KZB_STORE& store, const Skew& skew, const Method& method) {
    skew_table(store, "harmonic_torque", "torque_ibeta", 1, 2, skew, method);
    skew_table(store, "harmonic_inductance", "inductance", 2, 3, skew, method);
    skew_table(store, "current_flux", "flux", 2, 3, skew, method);
    return skew_table(store, "current_flux", "mag_flux", 0, 1, skew, method);
}

// A parameter of any kind counts as present; one that is no double reads 0.0. The result is that of the last scalar
// done, 1 when there is none.
int skew_ldlq_scalars(KZB_STORE& store, const Skew& skew) {
    int result = 1;
    if (has_parameter(store, "d_flux", "d_flux")) {
        result = skew_scalar(store, "d_flux", "d_flux", skew);
    }
    if (has_parameter(store, "information", "magflux")) {
        result = skew_scalar(store, "information", "magflux", skew);
    }
    return result;
}

int skew_ldlq(KZB_STORE& store, const Skew& skew, const Method& method) {
    skew_table(store, "dq_inductance", "d_inductance", 1, 0, skew, method);
    skew_table(store, "dq_inductance", "q_inductance", 1, 0, skew, method);
    return skew_ldlq_scalars(store, skew);
}

// Fluxes and currents are averaged as phase quantities: those of d and q belong to the turned rotor.
int skew_flux_integral(KZB_STORE& store, const Skew& skew, const Method& method) {
    make_UVW_from_dq0(store);
    for (const char* key : {"fd_noload", "fq_noload", "f0_noload"}) {
        delete_table(store, "flux_table", key);
    }
    skew_table(store, "current_flux", "mag_flux", 0, 1, skew, method);
    make_dq0_from_UVW(store);
    make_UVW_from_dq0_current(store);
    delete_table(store, "current_table", "id");
    delete_table(store, "current_table", "iq");
    skew_table(store, "current_flux", "iuvw", 0, 3, skew, method);
    make_dq0_from_UVW_current(store);
    skew_table(store, "flux_table", "f0_ibeta", 0, 3, skew, method);
    return skew_table(store, "harmonic_torque", "torque_ibeta", 1, 2, skew, method);
}

bool flux_integral_is_selected(const KZB_STORE& store) {
    return store.motor == "ALL" || (store.motor == "PMSM" && store.application == "FluxIntegralDQTheta");
}

}  // namespace

int apply_skew(int type_a, int type_b, double angle_a, double angle_b, int steps_a, int steps_b, const char* method,
               KZB_STORE& store) {
    const Skew skew{{type_a, angle_a, steps_a}, {type_b, angle_b, steps_b}};
    const Method named = Method::named(method);
    int result = 1;
    if (has_application(store, "PMSM", "Harmonic")) {
        result = skew_harmonic(store, skew, named);
    }
    if (has_application(store, "PMSM", "LdLq")) {
        result = skew_ldlq(store, skew, named);
    }
    if (has_application(store, "PMSM", "FluxIntegralDQTheta") && flux_integral_is_selected(store)) {
        result = skew_flux_integral(store, skew, named);
    }
    return result;
}

}  // namespace kzb
