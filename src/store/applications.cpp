// Which applications a file offers, and which categories each of them needs loaded.
#include "store/applications.h"

#include <cstdio>

#include "store/format/model_file.h"

namespace kzb {

namespace {

constexpr int any_motor_type = 0;

// One row of the offer: all `categories` stand in the file, and the motor type fits.
struct Offer {
    ApplicationName name;
    std::array<const char*, 3> categories;
    std::array<int, 3> motor_types;  // 0: not tested
};

// In the order in which the offered applications are counted.
constexpr std::array<Offer, 12> offers{{
    {{"PMSM", "LdLq"}, {"dq_inductance", "d_flux"}, {}},
    {{"PMSM", "SimpleHarmonic"}, {"inductance", "mag_flux", "torque"}, {10000}},
    {{"PMSM", "Harmonic"}, {"harmonic_inductance", "current_flux"}, {10000}},
    {{"PMSM", "FluxIntegralDQTheta"}, {"current_table", "flux_table", "harmonic_torque"}, {10000}},
    {{"2-PhaseStepping", nullptr}, {"inductance", "mag_flux", "torque"}, {10001, 10002, 10003}},
    {{"LinearSolenoid", nullptr}, {"inductance", "distance_flux", "distance_force"}, {}},
    {{"LinearSynchronous", nullptr}, {"inductance", "mag_flux", "distance_force"}, {}},
    {{"SR", nullptr}, {"inductance", "torque"}, {}},
    {{"IM", nullptr}, {"InductionParam"}, {}},
    {{"WFSM", "LdLq"}, {"inductance"}, {}},
    {{"WFSM", "Harmonic"}, {"harmonic_inductance", "current_flux", "harmonic_torque"}, {10007}},
    {{"Generic", nullptr}, {}, {10008}},
}};

bool same(const char* a, std::string_view b) {
    return a != nullptr && b == a;
}

// Conditions of a row beyond its categories and motor type.
bool special_rule_holds(const KZB_STORE& store, const Offer& offer) {
    if (same(offer.name.motor, "PMSM") && same(offer.name.application, "Harmonic")) {
        return has_category(store, "harmonic_torque") || has_category(store, "pmsm_torque");
    }
    if (same(offer.name.motor, "SR")) {
        return !has_category(store, "mag_flux");
    }
    return true;
}

bool offered(const KZB_STORE& store, const Offer& offer) {
    if (!has_category(store, "control") || !has_category(store, "parameter")) {
        return false;
    }
    for (const char* category : offer.categories) {
        if (category != nullptr && !has_category(store, category)) {
            return false;
        }
    }
    if (offer.motor_types[0] != any_motor_type) {
        const int motor_type = get_int(store, "control", "motor_type");
        bool fits = false;
        for (const int accepted : offer.motor_types) {
            fits = fits || (accepted != any_motor_type && accepted == motor_type);
        }
        if (!fits) {
            return false;
        }
    }
    return special_rule_holds(store, offer);
}

// Rows of `offers` in the order in which kzb_get_application walks them.
constexpr std::array<std::size_t, 12> listing_order{0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 3};
constexpr std::size_t flux_integral_row = 3;

// Categories that an application loads beside `control`, `parameter` and `correction`; a null application is any.
struct Loading {
    ApplicationName name;
    std::array<const char*, 7> categories;
};
constexpr std::array<Loading, 12> loadings{{
    {{"PMSM", nullptr}, {"loss_table", "equivalent_resistance_table"}},
    {{"PMSM", "LdLq"}, {"dq_inductance", "d_flux", "hysloss", "eddyloss"}},
    {{"PMSM", "SimpleHarmonic"}, {"inductance", "mag_flux", "torque", "hysloss", "eddyloss"}},
    {{"PMSM", "Harmonic"},
     {"harmonic_inductance", "current_flux", "harmonic_torque", "pmsm_torque", "hysloss", "eddyloss",
      "user_specified_parameter_table"}},
    {{"PMSM", "FluxIntegralDQTheta"},
     {"current_table", "flux_table", "harmonic_torque", "hysloss", "eddyloss", "user_specified_parameter_table"}},
    {{"2-PhaseStepping", nullptr}, {"inductance", "mag_flux", "torque"}},
    {{"LinearSolenoid", nullptr}, {"inductance", "distance_flux", "distance_force"}},
    {{"LinearSynchronous", nullptr}, {"inductance", "distance_flux", "mag_flux", "distance_force"}},
    {{"SR", nullptr}, {"inductance", "torque"}},
    {{"IM", nullptr}, {"loss_table", "equivalent_resistance_table", "InductionParam", "InductionParam_HigherAccuracy"}},
    {{"WFSM", "LdLq"}, {"inductance"}},
    {{"WFSM", "Harmonic"},
     {"harmonic_inductance", "current_flux", "harmonic_torque", "hysloss", "eddyloss",
      "user_specified_parameter_table"}},
}};

}  // namespace

bool has_application(const KZB_STORE& store, std::string_view motor, std::string_view application) {
    for (const Offer& offer : offers) {
        const bool named = same(offer.name.motor, motor) &&
                           (offer.name.application == nullptr || application == offer.name.application);
        if (named) {
            return offered(store, offer);
        }
    }
    return false;
}

int application_count(const KZB_STORE& store) {
    int count = 0;
    for (const Offer& offer : offers) {
        count += offered(store, offer) ? 1 : 0;
    }
    return count;
}

ApplicationName application_at(const KZB_STORE& store, int index) {
    int position = 0;
    for (const std::size_t row : listing_order) {
        if (!offered(store, offers[row])) {
            continue;
        }
        if (position++ == index) {
            // Kept: this row's word is shorter than the one that has_application tests.
            return row == flux_integral_row ? ApplicationName{"PMSM", "FluxIntegral"} : offers[row].name;
        }
    }
    return {};
}

bool application_loads(const KZB_STORE& store, std::string_view category) {
    if (store.motor == "ALL" || category == "control" || category == "parameter" || category == "correction") {
        return true;
    }
    for (const Loading& loading : loadings) {
        if (!same(loading.name.motor, store.motor) ||
            (loading.name.application != nullptr && store.application != loading.name.application)) {
            continue;
        }
        for (const char* loaded : loading.categories) {
            if (same(loaded, category)) {
                return true;
            }
        }
    }
    return false;
}

void set_application(KZB_STORE& store, const char* motor, const char* application) {
    if (motor == nullptr || std::string_view(motor).size() >= name_limit ||
        (application != nullptr && std::string_view(application).size() >= name_limit)) {
        return;
    }
    store.motor = motor;
    if (application != nullptr) {
        store.application = application;
    }
    ++store.revision;
    if (store.input_type != "ascii" && store.input_type != "binary") {
        std::perror("Unknown file type\n");
        std::perror("reading error in ReadTables");
        return;
    }
    read_tables(store);
}

}  // namespace kzb
