#include "im_scenario.h"

#include <functional>

namespace kzb_bench_test {

namespace {

ImScenario make(const char* name, const std::function<void(ImScenario&)>& change) {
    ImScenario scenario{name};
    change(scenario);
    return scenario;
}

void with_everything(ImScenario& s) {
    s.machine.ironloss_table = true;
    s.machine.loss_table = true;
    s.machine.copper_loss_table = true;
    s.machine.temperature_data = true;
    s.iron_loss = true;
    s.user_copper_loss = true;
    s.temperatures = true;
    s.initial_values = true;
    s.irregular = true;
    s.repeated = true;
}

}  // namespace

std::vector<ImScenario> im_scenarios() {
    std::vector<ImScenario> all;
    const auto add = [&all](const char* name, const std::function<void(ImScenario&)>& change) {
        all.push_back(make(name, change));
    };
    add("constants", [](ImScenario&) {});
    add("constants_delta", [](ImScenario& s) { s.machine.connection = 1, s.amplitude = 110.0; });
    add("constants_irregular", [](ImScenario& s) { s.irregular = s.repeated = s.initial_values = true; });
    add("constants_everything", with_everything);
    add("constants_own_resistances", [](ImScenario& s) { s.own_resistances = s.temperatures = true; });
    add("constants_high_current", [](ImScenario& s) { s.amplitude = 4000.0; });
    constexpr const char* schemes[] = {"", "constants_cubic", "constants_spline4", "constants_spline6",
                                       "constants_spline"};
    for (int scheme = 1; scheme <= 4; ++scheme) {
        add(schemes[scheme], [=](ImScenario& s) { s.interpolation = scheme, s.own_resistances = true; });
    }
    add("constants_power_torque", [](ImScenario& s) { s.torque_type = "1"; });
    add("constants_other_torque", [](ImScenario& s) { with_everything(s), s.torque_type = "2"; });
    add("constants_by_current", [](ImScenario& s) { s.calc_mode = 2; });
    add("constants_by_current_everything", [](ImScenario& s) { with_everything(s), s.calc_mode = 2; });
    add("constants_by_current_other_torque",
        [](ImScenario& s) { with_everything(s), s.calc_mode = 2, s.torque_type = "7"; });
    const auto add_tables = [&](const char* name, const std::function<void(ImScenario&)>& change) {
        add(name, [&](ImScenario& s) { s.machine.tables = true, s.moving_slip = true, change(s); });
    };
    add_tables("tables", [](ImScenario&) {});
    add_tables("tables_no_slip", [](ImScenario& s) { s.moving_slip = false; });
    add_tables("tables_delta", [](ImScenario& s) { s.machine.connection = 1, s.amplitude = 110.0; });
    add_tables("tables_everything", with_everything);
    add_tables("tables_old_ironloss", [](ImScenario& s) { with_everything(s), s.old_ironloss = true; });
    add_tables("tables_own_ironloss", [](ImScenario& s) { with_everything(s), s.machine.loss_table = false; });
    add_tables("tables_loss_table_alone", [](ImScenario& s) { with_everything(s), s.machine.ironloss_table = false; });
    add_tables("tables_cubic", [](ImScenario& s) { with_everything(s), s.interpolation = 1; });
    add_tables("tables_spline4", [](ImScenario& s) { with_everything(s), s.interpolation = 2; });
    add_tables("tables_spline6", [](ImScenario& s) { s.interpolation = 3; });
    add_tables("tables_spline", [](ImScenario& s) { s.interpolation = 4, s.samples = 60; });
    add_tables("tables_power_torque", [](ImScenario& s) { with_everything(s), s.torque_type = "1"; });
    add_tables("tables_other_torque", [](ImScenario& s) { with_everything(s), s.torque_type = "-1"; });
    add_tables("tables_by_current", [](ImScenario& s) { s.calc_mode = 2; });
    add_tables("tables_by_current_everything", [](ImScenario& s) { with_everything(s), s.calc_mode = 2; });
    add_tables("tables_by_current_power_torque",
               [](ImScenario& s) { with_everything(s), s.calc_mode = 2, s.torque_type = "1"; });
    return all;
}

}  // namespace kzb_bench_test
