#include "kzb/build_model.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <set>
#include <string_view>

#include "fmt/chrono.h"
#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

constexpr int motor_type_pmsm = 10000;
constexpr double file_version = 2.0;

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

// The day of the build, or that of SOURCE_DATE_EPOCH, in UTC.
std::string creation_date() {
    std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    if (const char* epoch = std::getenv("SOURCE_DATE_EPOCH")) {
        const std::string_view text(epoch);
        std::time_t told = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), told);
        if (error == std::errc() && end == text.data() + text.size()) {
            now = told;
        }
    }
    return fmt::format("{:%Y-%m-%d}", fmt::gmtime(now));
}

void put_version(KZB_STORE* store) {
    kzb_put_double("version", "version", file_version, store);
    kzb_put_string("version", "dorn_version", fmt::format("kzb {}", kzb_get_filehandler_version()).c_str(), store);
}

void put_control(KZB_STORE* store, const MachineMap& map, const ModelOptions& options) {
    kzb_put_int("control", "motor_type", motor_type_pmsm, store);
    kzb_put_int("control", "number_of_poles", options.number_of_poles, store);
    kzb_put_int("control", "accuracy_type", accuracy_type_of(options.applications), store);
    kzb_put_int("control", "Winding_Pattern_Flag", options.connection, store);
    kzb_put_double("control", "beta_zero", map.beta_zero(), store);
    const auto put_if_told = [&](const char* key, double value) {
        if (value != 0.0) {
            kzb_put_double("control", key, value, store);
        }
    };
    put_if_told("turns_in_coil", options.turns_in_coil);
    put_if_told("base_coil_temperature", options.base_coil_temperature);
    put_if_told("base_magnet_temperature", options.base_magnet_temperature);
}

void put_parameter(KZB_STORE* store, const ModelOptions& options) {
    kzb_put_double("parameter", "RU", options.resistance, store);
    for (const char* key : {"leakage_inductance_u", "leakage_inductance_v", "leakage_inductance_w"}) {
        kzb_put_double("parameter", key, options.leakage_inductance, store);
    }
}

void put_information(KZB_STORE* store, const MachineMap& map, const ModelOptions& options) {
    const MachinePoint noload = map.mean(0.0, 0.0);
    kzb_put_string("information", "title", options.title.c_str(), store);
    kzb_put_string("information", "creation_date", creation_date().c_str(), store);
    kzb_put_string("information", "input_file_name", options.input_file_name.c_str(), store);
    if (!options.preparer.empty()) {
        kzb_put_string("information", "preparer", options.preparer.c_str(), store);
    }
    kzb_put_double("information", "d_inductance", noload.l_dd, store);
    kzb_put_double("information", "q_inductance", noload.l_qq, store);
    kzb_put_double("information", "magflux", std::sqrt(1.5) * noload.psi_d, store);  // as d_flux
    for (const auto& [key, value] : options.information) {
        kzb_put_double("information", key.c_str(), value, store);
    }
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

StorePointer open_store() {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    if (store == nullptr) {
        throw Failure(exit_run_failed, "no memory for a model");
    }
    return StorePointer(store);
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
