#include "kzb/wfsm_parameters.h"

#include <cmath>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/parameter_file.h"

namespace kzb::tool {

namespace {

const std::vector<ParameterQuantity>& wound_field_quantities() {
    using enum Dimension;
    static const std::vector<ParameterQuantity> all{
        {"pole_pairs", {}, number},
        {"resistance", {"R_s", "phase_resistance"}, Dimension::resistance, true},
        {"field_resistance", {"R_e", "R_e_referred", "R_f"}, Dimension::resistance, true},
        {"d_inductance", {"L_d"}, inductance},
        {"q_inductance", {"L_q"}, inductance},
        {"mutual_inductance", {"L_m", "M_df"}, inductance},
        {"field_inductance", {"L_e", "L_e_referred", "L_f"}, inductance},
        {"field_current_ratio", {}, number},
        {"inertia", {"rotor_inertia"}, Dimension::inertia},
    };
    return all;
}

}  // namespace

std::map<std::string, double> read_wfsm_parameters(const WfsmOptions& options, WfsmBuild& build) {
    const Parameters parameters(ParameterFile::read(options.parameter_path), options.parameters,
                                wound_field_quantities());
    build.pole_pairs = parameters.required("pole_pairs");
    if (build.pole_pairs != std::round(build.pole_pairs) || build.pole_pairs > 500.0) {
        throw Failure(exit_file,
                      fmt::format("pole_pairs is {:g}, expected a whole number from 1 to 500", build.pole_pairs));
    }
    build.resistance = parameters.required("resistance");
    build.field_resistance = parameters.required("field_resistance");
    if (options.map_path.empty()) {
        WoundFieldConstants& c = build.constants;
        c.l_d = parameters.required("d_inductance");
        c.l_q = parameters.required("q_inductance");
        c.m = parameters.required("mutual_inductance");
        c.l_f = parameters.required("field_inductance");
        if (options.field_form == FieldForm::referred) {
            // i_f = ratio i_e and v_f i_f = 1.5 v_e i_e
            const double ratio = parameters.find("field_current_ratio").value_or(1.0);
            const double scale = 1.5 / (ratio * ratio);
            c.m /= ratio;
            c.l_f *= scale;
            build.field_resistance *= scale;
            build.notes.push_back(
                fmt::format("field quantities referred to the stator: the field winding of the model "
                            "takes {:g} times the referred current at {:g} times the referred voltage",
                            ratio, 1.5 / ratio));
        }
        if (!(c.l_d * c.l_f > 1.5 * c.m * c.m)) {
            throw Failure(exit_file, fmt::format("L_d {:g} H, field {:g} H, mutual {:g} H of the windings: no leakage "
                                                 "between them, expected L_d L_f above 1.5 M^2",
                                                 c.l_d, c.l_f, c.m));
        }
    }
    std::map<std::string, double> information;
    if (const auto inertia = parameters.find("inertia")) {
        information["inertia"] = *inertia;
    }
    return information;
}

}  // namespace kzb::tool
