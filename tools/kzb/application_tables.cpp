#include "kzb/application_tables.h"

#include <algorithm>

namespace kzb::tool {

namespace {

constexpr const char* no_torque = "the torque is then formed from the change of coenergy";

const std::vector<ApplicationTables>& all() {
    static const std::vector<ApplicationTables> applications = {
        {"PMSM",
         "LdLq",
         {10000},
         {{"dq_inductance", "d_inductance", {{"ba"}}}, {"dq_inductance", "q_inductance", {{"ba"}}}}},
        {"PMSM",
         "SimpleHarmonic",
         {10000},
         {{"mag_flux", "flux", {{"pc", 3}}},
          {"inductance", "inductance", {{"apc", 9}}},
          {"torque", "torque_ibeta", {{"bPa"}, {"iipi"}}, no_torque}}},
        {"PMSM",
         "Harmonic",
         {10000},
         {{"current_flux", "flux", {{"abpc", 3}, {"iiipc", 3}}},
          {"harmonic_inductance", "inductance", {{"abpc", 9}, {"iiipc", 9}}}}},
        {"PMSM",
         "FluxIntegralDQTheta",
         {10000},
         {{"current_table", "id", {{"ddP"}, {"dddP"}}},
          {"current_table", "iq", {{"ddP"}, {"dddP"}}},
          {"flux_table", "fd_noload", {{"P"}}},
          {"flux_table", "fq_noload", {{"P"}}},
          {"flux_table", "f0_noload", {{"P"}}},
          {"flux_table", "f0_ibeta", {{"abP"}}, "a star machine then has a wrong zero-sequence voltage"},
          {"harmonic_torque", "torque_ibeta", {{"bPa"}}}}},
        {"LinearSynchronous",
         "",
         {10005},
         {{"mag_flux", "flux", {{"pc", 3}}},
          {"inductance", "inductance", {{"apc", 9}}},
          {"distance_force", "force", {{"bPa"}, {"iipi"}}, no_torque},
          {"distance_force", "attractive_force", {{"bPa"}, {"iipi"}}, nullptr, true}}},
        {"2-PhaseStepping",
         "",
         {10003},
         {{"mag_flux", "flux", {{"pc", 4}}},
          {"inductance", "inductance", {{"ipc", 16}}},
          {"torque", "torque_ibeta", {{"ipi"}}}}},
        {"LinearSolenoid",
         "",
         {10004},
         {{"distance_flux", "flux", {{"pc", 1}}},
          {"inductance", "inductance", {{"ipc", 1}}},
          {"distance_force", "force", {{"pi"}}}}},
        {"SR", "", {10010}, {{"inductance", "inductance", {{"ipc", 9}}}, {"torque", "torque_ibeta", {{"pi"}}}}},
        {"SR", "", {10011}, {{"inductance", "inductance", {{"ipc", 16}}}, {"torque", "torque_ibeta", {{"pi"}}}}},
        {"SR", "", {10012}, {{"inductance", "inductance", {{"ipc", 25}}}, {"torque", "torque_ibeta", {{"pi"}}}}},
        {"IM", "", {10006}, {}},
        {"WFSM",
         "Harmonic",
         {10007},
         {{"current_flux", "flux", {{"abfpc", 4}}},
          {"harmonic_inductance", "inductance", {{"abfpc", 16}}},
          {"harmonic_torque", "torque_ibeta", {{"abfP"}}}}},
        {"Generic", "", {10008}, {}},
    };
    return applications;
}

}  // namespace

std::vector<const ApplicationTables*> applications_of(int motor_type) {
    std::vector<const ApplicationTables*> found;
    for (const ApplicationTables& application : all()) {
        const auto& types = application.motor_types;
        if (std::find(types.begin(), types.end(), motor_type) != types.end()) {
            found.push_back(&application);
        }
    }
    return found;
}

const Layout* layout_of(const TableUse& use, int dim) {
    for (const Layout& layout : use.layouts) {
        if (static_cast<int>(layout.axes.size()) == dim) {
            return &layout;
        }
    }
    return nullptr;
}

}  // namespace kzb::tool
