#include "store/format/legacy_mapping.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace kzb {
namespace {

constexpr LegacyApplication any{};
constexpr int any_dim = 0;  // also one below 1, which a broken file may tell
constexpr LegacyApplication ld_lq{"PMSM", "LdLq"};
constexpr LegacyApplication simple_harmonic{"PMSM", "SimpleHarmonic"};
constexpr LegacyApplication harmonic{"PMSM", "Harmonic"};
constexpr LegacyApplication stepping{"2-PhaseStepping", {}};
constexpr LegacyApplication solenoid{"LinearSolenoid", {}};
constexpr LegacyApplication synchronous{"LinearSynchronous", {}};

// Tables of one of the `names`, in a file of that application, with `least_dim` axes or more.
struct Mapping {
    std::array<std::string_view, 3> names;
    LegacyApplication application;
    std::string_view category;
    int least_dim = any_dim;
};

using Names = std::array<std::string_view, 3>;
constexpr Names torques{"torque", "torque_ibeta", "force"};

// The first row that fits counts. A table without a row keeps its name as its category.
constexpr std::array<Mapping, 15> mappings{{
    {{"d_inductance", "q_inductance"}, any, "dq_inductance"},
    {{"inductance"}, harmonic, "harmonic_inductance"},
    {{"flux"}, simple_harmonic, "mag_flux"},
    {{"flux"}, synchronous, "mag_flux"},
    {{"flux"}, stepping, "mag_flux"},
    {{"flux"}, harmonic, "current_flux"},
    {{"flux"}, solenoid, "distance_flux"},
    {{"magflux"}, harmonic, "current_flux"},
    {torques, simple_harmonic, "torque"},
    {torques, stepping, "torque"},
    {torques, harmonic, "pmsm_torque", 4},
    {torques, harmonic, "harmonic_torque"},
    {torques, synchronous, "distance_force"},
    {torques, solenoid, "distance_force"},
    {{"attractive_force"}, any, "distance_force"},
}};

bool names_table(const Mapping& row, std::string_view name) {
    return !name.empty() && std::find(row.names.begin(), row.names.end(), name) != row.names.end();
}

bool serves(const Mapping& row, const LegacyApplication& application) {
    return row.application.motor.empty() ||
           (row.application.motor == application.motor && row.application.application == application.application);
}

}  // namespace

LegacyApplication legacy_application(int motor_type, int accuracy_type, std::string_view other) {
    switch (motor_type) {
        case 10000:
            break;
        case 10001:
        case 10002:
        case 10003:
            return stepping;
        case 10004:
            return solenoid;
        case 10005:
            return synchronous;
        default:
            std::perror("application is not found.");
            return {};
    }
    switch (accuracy_type) {
        case 1:
            return ld_lq;
        case 2:
            return simple_harmonic;
        case 3:
            return harmonic;
        default:
            return other.empty() ? LegacyApplication{} : LegacyApplication{"PMSM", other};
    }
}

std::string_view legacy_category(std::string_view name, const LegacyApplication& application, int dim) {
    const auto* row = std::find_if(mappings.begin(), mappings.end(), [&](const Mapping& candidate) {
        return names_table(candidate, name) && serves(candidate, application) &&
               (candidate.least_dim == any_dim || dim >= candidate.least_dim);
    });
    return row == mappings.end() ? name : row->category;
}

}  // namespace kzb
