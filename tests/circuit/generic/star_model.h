// A model with most of what a file can hold: coils in star over a resistor, with a rotating part.
#pragma once

#include "circuit/generic/generic_files.h"

namespace kzb_test {

// Coils in star with a rotating part, in either form: expressions, corrections, force.
inline void fill_star(GenericFile& file, bool table_axes, int coils, bool index_axis) {
    file.add("motion_condition_list;motion_condition",
             {{"id", 1}, {"type", 1}, {"axis_no", 1}, {"forcetable_id", 1}, {"max_displacement", 360.0}});
    file.terminal(9, 2);
    file.terminal(8, 0);
    file.resistor(9, 8, 9, 1.0);
    for (int k = 1; k <= coils; ++k) {
        file.source(k, k);
        file.coil(k, k, 8, 1.0, k, coils);
    }
    const GenericAxis turn{{0.0, 120.0, 240.0, 360.0}, true};
    const GenericAxis current{{-20.0, 0.0, 20.0}, false};
    std::vector<GenericAxis> axes = {turn};
    if (table_axes) {
        file.add("table_axis_list;axis", {{"id", 1}, {"type", 2}, {"reference_id", 1}});
        for (int k = 1; k <= coils; ++k) {
            file.add("table_axis_list;axis", {{"id", k + 1},
                                              {"type", k == 1 ? 0 : 1},
                                              {"reference_id", k},
                                              {"definition", std::string("sin(th) + i")},
                                              {"correction_expression", std::string("c * 1.01")},
                                              {"correction_variable", std::string("c")}});
            file.put("flux_list;0;phase_list;0;phase;" + std::to_string(k - 1) + ";",
                     {{"index", k - 1},
                      {"reference_id", k},
                      {"correction_expression", std::string("c + 0.001")},
                      {"correction_variable", std::string("c")}});
            axes.push_back(current);
        }
        file.add("user_defined_equation_list;user_defined_equation",
                 {{"name", std::string("th")}, {"type", 2}, {"reference_id", 1}});
        file.add("user_defined_equation_list;user_defined_equation",
                 {{"name", std::string("i")}, {"type", 1}, {"reference_id", 1}});
    } else {
        file.add("element_set_list;coil_set",
                 {{"id", 1}, {"type", 1}, {"current_axis_no", 2}, {"phase_axis_no", 3}, {"motion_id", 1}});
        for (int k = 1; k <= coils; ++k) {
            file.put("element_set_list;0;coil_set;0;coil;" + std::to_string(k - 1) + ";",
                     {{"coil_id", k}, {"phase_diff", 120.0 * (k - 1)}});
        }
        axes.push_back({{0.0, 20.0}, false});
        axes.push_back({{-180.0, 0.0, 180.0}, false});
    }
    file.record_table("torque_force_list;torque_table", axes, [](const auto& x) { return x[0]; });
    axes.push_back(places(coils));
    if (!index_axis) {
        axes.pop_back();
    }
    file.record_table("flux_list;flux_table", axes, [&](const auto& x) { return 1e-2 * x[1] + 1e-3 * x.back(); });
    axes.back() = places(coils * coils);
    file.record_table("inductance_list;diff_inductance_table", axes,
                      [&](const auto& x) { return x.back() == 0.0 ? 1e-2 : 1e-3; });
}

}  // namespace kzb_test
