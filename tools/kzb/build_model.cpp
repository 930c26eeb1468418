#include "kzb/build_model.h"

#include <set>
#include <string_view>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/build_origin.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr int motor_type_pmsm = 10000;

struct AccuracyType {
    int code;
    std::set<Application> applications;
};

// Which applications a model can be switched between, by the code; the first use of a file is the richest but
// FluxIntegralDQTheta, except with code 5.
const std::vector<AccuracyType>& accuracy_types() {
    using enum Application;
    static const std::vector<AccuracyType> all{
        {1, {LdLq}},
        {2, {SimpleHarmonic}},
        {3, {Harmonic}},
        {4, {LdLq, Harmonic}},
        {5, {FluxIntegralDQTheta}},
        {6, {Harmonic, FluxIntegralDQTheta}},
        {7, {LdLq, Harmonic, FluxIntegralDQTheta}},
    };
    return all;
}

void put_control(KZB_STORE* store, const MachineMap& map, const ModelOptions& options) {
    kzb_put_int("control", "motor_type", motor_type_pmsm, store);
    kzb_put_int("control", "number_of_poles", options.number_of_poles, store);
    kzb_put_int("control", "accuracy_type", accuracy_type_of(options.applications), store);
    kzb_put_int("control", "Winding_Pattern_Flag", options.connection, store);
    kzb_put_double("control", "beta_zero", map.beta_zero(), store);
    put_if_told(store, "control", "turns_in_coil", options.turns_in_coil);
    put_if_told(store, "control", "base_coil_temperature", options.base_coil_temperature);
    put_if_told(store, "control", "base_magnet_temperature", options.base_magnet_temperature);
}

void put_parameter(KZB_STORE* store, const ModelOptions& options) {
    kzb_put_double("parameter", "RU", options.resistance, store);
    for (const char* key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        kzb_put_double("parameter", key, options.leakage_inductance, store);
    }
}

void put_information(KZB_STORE* store, const MachineMap& map, const ModelOptions& options) {
    const MachinePoint noload = map.mean(0.0, 0.0);
    kzb_put_double("information", "d_inductance", noload.l_dd, store);
    kzb_put_double("information", "q_inductance", noload.l_qq, store);
    kzb_put_double("information", "magflux", power_invariant_factor * noload.psi_d, store);  // as d_flux
    put_origin(store, {options.title, options.preparer, options.input_file_name, options.information});
}

}  // namespace

const char* name_of(Application application) {
    switch (application) {
        case Application::LdLq:
            return "LdLq";
        case Application::SimpleHarmonic:
            return "SimpleHarmonic";
        case Application::Harmonic:
            return "Harmonic";
        case Application::FluxIntegralDQTheta:
            break;
    }
    return "FluxIntegralDQTheta";
}

int accuracy_type_of(const std::vector<Application>& applications) {
    const std::set<Application> wanted(applications.begin(), applications.end());
    for (const AccuracyType& type : accuracy_types()) {
        if (type.applications == wanted) {
            return type.code;
        }
    }
    std::vector<std::string_view> names;
    for (const Application application : wanted) {
        names.emplace_back(name_of(application));
    }
    throw Failure(exit_usage,
                  fmt::format("--application {}: one file cannot serve these together, expected a single one, "
                              "LdLq,Harmonic, Harmonic,FluxIntegralDQTheta or "
                              "LdLq,Harmonic,FluxIntegralDQTheta",
                              fmt::join(names, ",")));
}

const std::vector<std::string>& information_keys() {
    // "rated_freqency" is how the key is written.
    static const std::vector<std::string> keys{"weight",         "rated_power", "rated_current", "rated_voltage",
                                               "rated_freqency", "rated_speed", "inertia"};
    return keys;
}

BuiltModel make_model(const MachineMap& map, const TableGrids& grids, const ModelOptions& options,
                      const std::string& source_name) {
    BuiltModel model{open_store()};
    KZB_STORE* store = model.store.get();
    put_version(store);
    put_control(store, map, options);
    put_parameter(store, options);
    put_information(store, map, options);
    for (const Application application :
         std::set<Application>(options.applications.begin(), options.applications.end())) {
        switch (application) {
            case Application::LdLq:
                put_ldlq(store, map, grids);
                break;
            case Application::SimpleHarmonic:
                put_simple_harmonic(store, map, grids, options.tables);
                break;
            case Application::Harmonic:
                put_harmonic(store, map, grids, options.tables);
                break;
            case Application::FluxIntegralDQTheta:
                model.flux_range = put_flux_integral(store, map, grids, source_name);
                break;
        }
    }
    return model;
}

}  // namespace kzb::tool
