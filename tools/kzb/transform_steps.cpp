#include "kzb/transform_steps.h"

#include <algorithm>
#include <cmath>

#include "KZBCalculator/kzb_store.h"
#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/skew_words.h"
#include "kzb/transform_guard.h"

namespace kzb::tool {

namespace {

SkewSide skew_side(const SkewSideOptions& options, const char* letter) {
    SkewSide side;
    const auto* const word = std::find(skew_words.begin(), skew_words.end(), options.type);
    side.type = skew_types[static_cast<std::size_t>(word - skew_words.begin())];
    const auto compare = [&](const char* option, bool wanted, bool given) {
        if (wanted != given) {
            throw Failure(exit_usage,
                          fmt::format("--{0}-{1}: {2} --type-{1} {3}", option, letter,
                                      wanted ? "missing, required by" : "without meaning for", options.type));
        }
    };
    compare("angle", side.type != skew_none, options.angle_deg.has_value());
    compare("steps", side.type == skew_stepped, options.steps.has_value());
    side.angle_deg = options.angle_deg.value_or(0.0);
    side.steps = options.steps.value_or(0);
    if (!std::isfinite(side.angle_deg)) {
        throw Failure(exit_usage, fmt::format("--angle-{}: expected a finite number", letter));
    }
    return side;
}

// "Linear" of "linear", as lookups know it.
std::string lookup_word(std::string word) {
    word.front() = static_cast<char>(word.front() - 'a' + 'A');
    return word;
}

void skew(const TransformGuard& guard, const SkewSide& a, const SkewSide& b, const std::string& method,
          KZB_STORE& store, Remarks& remarks) {
    guard.require_full_phases(store);
    bool offered = false;
    for (const char* application : {"LdLq", "Harmonic", "FluxIntegralDQTheta"}) {
        offered = offered || has_application(store, "PMSM", application);
    }
    if (!offered) {
        guard.refuse("expected a model that offers PMSM LdLq, Harmonic or FluxIntegralDQTheta");
    }
    guard.run(
        store, 0,
        [&](KZB_STORE* handle) {
            const int result =
                kzb_apply_skew(a.type, b.type, a.angle_deg, b.angle_deg, a.steps, b.steps, method.c_str(), handle);
            guard.require_no_empty_originals(*handle);
            return result;
        },
        remarks);
}

void expand(const TransformGuard& guard, KZB_STORE& store, Remarks& remarks) {
    if (get_int(store, "control", "use_phase_symmetry") == 0) {
        guard.refuse("control/use_phase_symmetry is not set, the tables hold all current phases");
    }
    if (get_int(store, "control", "motor_type") == 10000) {
        guard.require_application(store, "Harmonic");
        // For any other application the call clears the switch and leaves the tables.
        kzb_set_application("PMSM", "Harmonic", &store);
    }
    guard.run(store, 0, kzb_expand_table_considering_phase_symmetry, remarks);
}

void make_ldlq(const TransformGuard& guard, const std::string& output, KZB_STORE& store, Remarks& remarks) {
    guard.require_application(store, "Harmonic");
    guard.require_full_phases(store);
    for (const TableShape& source :
         {TableShape{"harmonic_inductance", "inductance", {1, 1, 1, 9}},
          TableShape{"current_flux", "flux", {2, 1, 1, 3}}, TableShape{"harmonic_torque", "torque_ibeta", {1, 1, 1}}}) {
        if (!guard.require_shape(store, source)) {
            guard.refuse(fmt::format("table {}/{} is missing", source.category, source.key));
        }
    }
    guard.run(store, 1, kzb_make_LdLq, remarks);
    if (!has_application(store, "PMSM", "LdLq")) {
        remarks.push_back(
            fmt::format("{}: offers no PMSM LdLq yet: the magnet flux d_flux/d_flux is missing; kzb set ... "
                        "d_flux/d_flux=VALUE --type double adds it",
                        output));
    }
}

// One of the two halves of a change of frame.
struct FrameStep {
    std::vector<TableShape> sources;
    int (*call)(KZB_STORE*);
};

void change_frame(const TransformGuard& guard, const std::vector<FrameStep>& steps, KZB_STORE& store,
                  Remarks& remarks) {
    guard.require_application(store, "FluxIntegralDQTheta");
    std::string sources;
    bool done = false;
    for (const FrameStep& step : steps) {
        std::size_t present = 0;
        for (const TableShape& source : step.sources) {
            present += guard.require_shape(store, source) ? 1 : 0;
            sources += fmt::format("{}{}/{}", sources.empty() ? "" : ", ", source.category, source.key);
        }
        const TableShape& first = step.sources.front();
        for (const TableShape& source : step.sources) {
            const KZB_TABLE* table = find_table(store, source.category, source.key);
            if (present > 0 && table == nullptr) {
                guard.refuse(fmt::format("table {}/{} is missing", source.category, source.key));
            }
            if (present > 0 && table->sizes != find_table(store, first.category, first.key)->sizes) {
                guard.refuse(
                    fmt::format("table {}/{} has other sizes than {}", source.category, source.key, first.key));
            }
        }
        if (present > 0) {
            guard.run(store, 0, step.call, remarks);
            done = true;
        }
    }
    if (!done) {
        guard.refuse(fmt::format("there is nothing to start from, expected {}", sources));
    }
}

void make_dq0(const TransformGuard& guard, KZB_STORE& store, Remarks& remarks) {
    change_frame(guard,
                 {{{{"current_flux", "mag_flux", {1, 3}}}, kzb_make_dq0_from_UVW},
                  {{{"current_flux", "iuvw", {1, 1, 1, 3}}}, kzb_make_dq0_from_UVW_current}},
                 store, remarks);
}

void make_uvw(const TransformGuard& guard, KZB_STORE& store, Remarks& remarks) {
    change_frame(
        guard,
        {{{{"flux_table", "fd_noload", {1}}, {"flux_table", "fq_noload", {1}}, {"flux_table", "f0_noload", {1}}},
          kzb_make_UVW_from_dq0},
         {{{"current_table", "id", {1, 1, 1}}, {"current_table", "iq", {1, 1, 1}}}, kzb_make_UVW_from_dq0_current}},
        store, remarks);
}

}  // namespace

Edit transform_edit(const std::string& kind, const SkewOptions& skew_options, const RewriteOptions& options) {
    const TransformGuard guard(kind, options.input);
    Edit edit;
    edit.review = [guard](const KZB_STORE& store, const StoreChanges& changes, Remarks&) {
        guard.require_values(store, changes);
    };
    if (kind == "skew") {
        const SkewSide a = skew_side(skew_options.a, "a");
        const SkewSide b = skew_side(skew_options.b, "b");
        if (a.type == skew_none && b.type == skew_none) {
            throw Failure(exit_usage, "skew: neither side is skewed, expected --type-a or --type-b");
        }
        edit.change = [guard, a, b, method = lookup_word(skew_options.interpolation)](
                          KZB_STORE& store, Remarks& remarks) { skew(guard, a, b, method, store, remarks); };
    } else if (kind == "expand") {
        edit.change = [guard](KZB_STORE& store, Remarks& remarks) { expand(guard, store, remarks); };
    } else if (kind == "ldlq") {
        edit.change = [guard, output = options.output](KZB_STORE& store, Remarks& remarks) {
            make_ldlq(guard, output, store, remarks);
        };
    } else if (kind == "dq0") {
        edit.change = [guard](KZB_STORE& store, Remarks& remarks) { make_dq0(guard, store, remarks); };
    } else {
        edit.change = [guard](KZB_STORE& store, Remarks& remarks) { make_uvw(guard, store, remarks); };
    }
    return edit;
}

}  // namespace kzb::tool
