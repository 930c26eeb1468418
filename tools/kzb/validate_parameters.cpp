// Numbers of the machine that its model reads once: motor type, poles, resistances, connection, circuit constants.
#include <cmath>
#include <optional>

#include "fmt/format.h"
#include "kzb/validate.h"

namespace kzb::tool {

namespace {

// Motor types that the models serve. The store reads 10001 and 10002 as stepping motors, the calculator refuses them.
constexpr int served_types[] = {10000, 10003, 10004, 10005, 10006, 10007, 10008, 10010, 10011, 10012};

bool is_rotary_with_poles(int type) {
    return type == 10000 || type == 10003 || type == 10006 || type == 10007 || (type >= 10010 && type <= 10012);
}

std::optional<int> int_of(const KZB_STORE& store, const char* category, const char* key) {
    const KZB_CATEGORY* found = find_category(store, category);
    const auto* entry = found == nullptr ? nullptr : found->ints.find(key);
    return entry == nullptr ? std::nullopt : std::optional<int>(entry->value);
}

std::optional<double> double_of(const KZB_STORE& store, const char* category, const char* key) {
    const KZB_CATEGORY* found = find_category(store, category);
    const auto* entry = found == nullptr ? nullptr : found->doubles.find(key);
    return entry == nullptr ? std::nullopt : std::optional<double>(entry->value);
}

// What a model reads in place of an entry that it does not find under its kind.
std::string absent_text(const KZB_STORE& store, const char* category, const char* key, const char* kind) {
    return has_parameter(store, category, key)
               ? fmt::format("stands as another kind and is read as 0, expected {}", kind)
               : fmt::format("absent and read as 0, expected {}", kind);
}

void check_poles(const KZB_STORE& store, Findings& findings) {
    const Subject subject{"control", "number_of_poles", ""};
    const std::optional<int> poles = int_of(store, "control", "number_of_poles");
    if (!poles) {
        findings.error("poles", subject, absent_text(store, "control", "number_of_poles", "an even int from 2"));
    } else if (*poles < 2) {
        findings.error("poles", subject, fmt::format("{}, expected an even number from 2", *poles));
    } else if (*poles % 2 != 0) {
        findings.warning("poles", subject, fmt::format("{} is odd, expected an even number", *poles));
    }
}

void check_resistance(const KZB_STORE& store, const char* category, const char* key, Findings& findings) {
    const std::optional<double> resistance = double_of(store, category, key);
    if (!resistance) {
        findings.warning("resistance", {category, key, ""},
                         absent_text(store, category, key, "a double, or that the caller sets the resistance"));
    } else if (*resistance < 0.0) {
        findings.error("resistance", {category, key, ""}, fmt::format("{:g}, expected 0 or more", *resistance));
    }
}

void check_connection(const KZB_STORE& store, Findings& findings) {
    const char* const category = has_parameter(store, "control", "Winding_Pattern_Flag") ? "control" : "settings";
    const int connection = get_int(store, category, "Winding_Pattern_Flag");
    if (connection != 0 && connection != 1) {
        findings.error("connection", {category, "Winding_Pattern_Flag", ""},
                       fmt::format("{} builds no winding network, expected 0 (star) or 1 (delta)", connection));
    }
}

void check_electrical_length(const KZB_STORE& store, Findings& findings) {
    const std::optional<double> length = double_of(store, "control", "electrical_length");
    const Subject subject{"control", "electrical_length", ""};
    if (!length) {
        findings.error("electrical-length", subject,
                       absent_text(store, "control", "electrical_length", "a length above 0 m"));
    } else if (!(*length > 0.0)) {
        findings.error("electrical-length", subject, fmt::format("{:g}, expected a length above 0 m", *length));
    }
}

// The constants that make the tables of an induction machine without tables of its own.
void check_circuit_constants(const KZB_STORE& store, Findings& findings) {
    if (has_category(store, "InductionParam_HigherAccuracy")) {
        return;
    }
    struct Constant {
        const char* category;
        const char* key;
    };
    for (const auto& [category, key] :
         {Constant{"InductionParam", "b0"}, Constant{"information", "rated_freqency"}}) {  // the key reads so
        const std::optional<double> value = double_of(store, category, key);
        if (!value || !(*value > 0.0)) {
            const std::string found = value ? fmt::format("{:g}, expected a number above 0", *value)
                                            : absent_text(store, category, key, "a double above 0");
            findings.error("circuit-constants", {category, key, ""}, found + "; the inductances are divided by it");
        }
    }
    for (const char* key : {"X1", "X2"}) {
        const std::optional<double> value = double_of(store, "InductionParam", key);
        if (!value || *value < 0.0) {
            findings.warning("circuit-constants", {"InductionParam", key, ""},
                             value ? fmt::format("{:g}, expected 0 or more", *value)
                                   : absent_text(store, "InductionParam", key, "a double"));
        }
    }
}

}  // namespace

void check_motor_type(const Examined& model, Findings& findings) {
    const Subject subject{"control", "motor_type", ""};
    const std::optional<int> type = int_of(model.store, "control", "motor_type");
    if (!type) {
        findings.error("motor-type", subject,
                       absent_text(model.store, "control", "motor_type", "the int of a machine, as 10000 for PMSM"));
        return;
    }
    for (const int served : served_types) {
        if (*type == served) {
            return;
        }
    }
    findings.error(
        "motor-type", subject,
        fmt::format("{} is no machine that can be run, expected 10000, 10003 to 10008 or 10010 to 10012", *type));
}

void check_machine_parameters(const Examined& model, Findings& findings) {
    const KZB_STORE& store = model.store;
    const int type = model.motor_type;
    if (is_rotary_with_poles(type)) {
        check_poles(store, findings);
    }
    if (type == 10000 || type == 10005 || type == 10007) {
        check_resistance(store, "parameter", "RU", findings);
        check_connection(store, findings);
    }
    if (type == 10007) {
        check_resistance(store, "parameter", "RF", findings);
        const std::optional<int> current_type = int_of(store, "control", "current_type");
        if (current_type && *current_type != 0 && *current_type != 1) {
            findings.error("current-type", {"control", "current_type", ""},
                           fmt::format("{} gives the lookups no coordinates, expected 0 (d and q current) or 1 "
                                       "(amplitude and phase)",
                                       *current_type));
        }
    }
    if (type >= 10010 && type <= 10012) {
        check_resistance(store, "parameter", "RU", findings);
    }
    if (type == 10004) {
        check_resistance(store, "parameter", "RA", findings);
    }
    if (type == 10003) {
        check_resistance(store, "parameter", "RA+", findings);
    }
    if (type == 10005) {
        check_electrical_length(store, findings);
    }
    if (type == 10006) {
        check_resistance(store, "InductionParam", "R1", findings);
        if (!has_category(store, "InductionParam_HigherAccuracy")) {
            check_resistance(store, "InductionParam", "R2", findings);
        }
        check_circuit_constants(store, findings);
    }
}

}  // namespace kzb::tool
