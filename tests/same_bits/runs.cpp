#include "same_bits/runs.h"

#include <algorithm>
#include <stdexcept>

#include "bench/reference/coil_sample.h"
#include "bench/reference/generic_machine.h"
#include "bench/reference/im_machine.h"
#include "bench/reference/sample_machine.h"
#include "bench/reference/wfsm_machine.h"
#include "interface/generic_machine.h"

namespace kzb_test {
namespace {

using kzb_reference::GenericMachine;
using kzb_reference::SampleInduction;
using kzb_reference::SampleMachine;
using kzb_reference::Store;
using kzb_reference::WfsmMachine;

std::function<void(const char* path)> from_store(std::function<void(Store&)> make) {
    return [make = std::move(make)](const char* path) {
        Store store;
        make(store);
        if (!kzb_reference::write_model_file(path, store)) {
            throw std::runtime_error(std::string("can't write ") + path);
        }
    };
}

template <class Change>
MachineRun changed(MachineRun run, Change change) {
    change(run);
    return run;
}

constexpr int ldlq = 1;
constexpr int simple = 2;
constexpr int harmonic = 3;
constexpr int flux_integral = 5;

MachineRun permanent_magnet(const char* name, const SampleMachine& machine) {
    MachineRun run{name, from_store([machine](Store& store) { kzb_reference::make_sample_machine(machine, store); })};
    run.reach = machine.motor_type == 10000 ? 90.0 : 0.064;
    return run;
}

SampleMachine machine_of(int accuracy, int connection = 0) {
    SampleMachine machine;
    machine.accuracy_type = accuracy;
    machine.connection = connection;
    return machine;
}

SampleMachine rich(SampleMachine machine) {
    machine.corrections = true;
    machine.leakage = true;
    machine.copper_loss_table = true;
    machine.user_parameters = true;
    machine.beta_zero = 15.0;
    return machine;
}

void everything(MachineRun& run) {
    run.everything = true;
    run.open_phases = true;
}

void by_current(MachineRun& run) {
    run.calc_mode = 2;
}

void add_permanent_magnet(std::vector<MachineRun>& runs) {
    runs.push_back(permanent_magnet("pmsm_ldlq", machine_of(ldlq)));
    runs.push_back(changed(permanent_magnet("pmsm_ldlq_everything", rich(machine_of(ldlq, 1))), everything));
    runs.push_back(permanent_magnet("pmsm_simple_harmonic", machine_of(simple)));
    runs.push_back(changed(permanent_magnet("pmsm_simple_harmonic_cubic_everything", rich(machine_of(simple))),
                           [](MachineRun& run) { everything(run), run.interpolation = 1; }));
    SampleMachine coenergy = machine_of(simple);
    coenergy.torque_axes = 2;
    runs.push_back(permanent_magnet("pmsm_simple_harmonic_coenergy", coenergy));
    runs.push_back(permanent_magnet("pmsm_harmonic", machine_of(harmonic)));
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_everything", rich(machine_of(harmonic))), everything));
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_delta_cubic", rich(machine_of(harmonic, 1))),
                           [](MachineRun& run) { everything(run), run.interpolation = 1; }));
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_spline4", machine_of(harmonic)),
                           [](MachineRun& run) { run.interpolation = 2, run.samples = 40; }));
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_spline6", machine_of(harmonic)),
                           [](MachineRun& run) { run.interpolation = 3, run.samples = 20; }));
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_spline", machine_of(harmonic)),
                           [](MachineRun& run) { run.interpolation = 4, run.samples = 5; }));
    SampleMachine machine = machine_of(harmonic);
    machine.currents_as_axes = true;
    runs.push_back(permanent_magnet("pmsm_harmonic_over_phase_currents", machine));
    machine = machine_of(harmonic);
    machine.phase_symmetry = true;
    machine.beta_zero = 10.0;
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_phase_symmetry", machine), everything));
    machine = machine_of(harmonic);
    machine.loss_table = true;
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_loss_table", machine), everything));
    runs.push_back(changed(permanent_magnet("pmsm_harmonic_by_current", rich(machine_of(harmonic))), by_current));
    runs.push_back(changed(permanent_magnet("pmsm_ldlq_by_current", machine_of(ldlq)), by_current));
    runs.push_back(permanent_magnet("pmsm_flux_integral", machine_of(flux_integral)));
    machine = rich(machine_of(flux_integral));
    machine.zero_axis = true;
    runs.push_back(changed(permanent_magnet("pmsm_flux_integral_cubic_everything", machine),
                           [](MachineRun& run) { everything(run), run.interpolation = 1; }));
    SampleMachine linear = machine_of(simple);
    linear.motor_type = 10005;
    linear.beta_zero = 20.0;
    runs.push_back(permanent_magnet("linear_synchronous", linear));
    runs.push_back(changed(permanent_magnet("linear_synchronous_everything", linear), everything));
    runs.push_back(changed(permanent_magnet("linear_synchronous_by_current", linear), by_current));
}

MachineRun induction(const char* name, const SampleInduction& machine) {
    MachineRun run{name, from_store([machine](Store& store) { kzb_reference::make_sample_induction(machine, store); })};
    run.voltage = 200.0;
    run.current = 20.0;
    return run;
}

void add_induction(std::vector<MachineRun>& runs) {
    const SampleInduction constants;
    SampleInduction tables;
    tables.tables = true;
    SampleInduction rich_tables = tables;
    rich_tables.ironloss_table = true;
    rich_tables.copper_loss_table = true;
    rich_tables.temperature_data = true;
    rich_tables.connection = 1;
    SampleInduction rich_constants = constants;
    rich_constants.g0 = 1e-3;
    rich_constants.loss_table = true;
    rich_constants.temperature_data = true;
    runs.push_back(induction("induction_constants", constants));
    runs.push_back(changed(induction("induction_constants_everything", rich_constants), everything));
    runs.push_back(changed(induction("induction_constants_by_current", constants), by_current));
    runs.push_back(induction("induction_tables", tables));
    runs.push_back(changed(induction("induction_tables_cubic_everything", rich_tables),
                           [](MachineRun& run) { everything(run), run.interpolation = 1; }));
    runs.push_back(changed(induction("induction_tables_by_current", rich_tables), by_current));
}

MachineRun wound_field(const char* name, const WfsmMachine& machine) {
    MachineRun run{name, from_store([machine](Store& store) { kzb_reference::make_wfsm_machine(machine, store); })};
    run.samples = 60;
    return run;
}

void add_wound_field(std::vector<MachineRun>& runs) {
    WfsmMachine rich_machine;
    rich_machine.beta_zero = 15.0;
    rich_machine.iron_loss = true;
    rich_machine.user_parameters = true;
    rich_machine.control_record = true;
    rich_machine.unsettled = 0.02;
    rich_machine.ripple = 0.03;
    rich_machine.turns_in_coil = 40.0;
    rich_machine.turns = 42.0;
    WfsmMachine over_axes;
    over_axes.current_type = 0;
    over_axes.connection = 1;
    runs.push_back(wound_field("wound_field", {}));
    runs.push_back(changed(wound_field("wound_field_everything", rich_machine), everything));
    runs.push_back(changed(wound_field("wound_field_over_d_and_q_cubic", over_axes),
                           [](MachineRun& run) { run.interpolation = 1, run.samples = 20; }));
    runs.push_back(changed(wound_field("wound_field_by_current", rich_machine), by_current));
}

void add_coils(std::vector<MachineRun>& runs) {
    struct Kind {
        const char* name;
        int motor_type;
        double voltage;
        double current;
        double reach;
    };
    const Kind kinds[] = {{"reluctance_3", 10010, 60.0, 25.0, 45.0},
                          {"reluctance_4", 10011, 60.0, 25.0, 45.0},
                          {"reluctance_5", 10012, 60.0, 25.0, 45.0},
                          {"solenoid", 10004, 12.0, 6.0, 0.01},
                          {"stepping", 10003, 12.0, 3.0, 7.2}};
    for (const Kind& kind : kinds) {
        const int motor_type = kind.motor_type;
        MachineRun run{kind.name,
                       from_store([motor_type](Store& store) { kzb_reference::make_coil_sample(motor_type, store); })};
        run.voltage = kind.voltage;
        run.current = kind.current;
        run.reach = kind.reach;
        const std::string name = kind.name;
        runs.push_back(run);
        runs.push_back(changed(
            run, [&](MachineRun& r) { r.name = name + "_cubic_everything", r.interpolation = 1, everything(r); }));
        runs.push_back(changed(run, [&](MachineRun& r) {
            r.name = name + "_spline_by_current", r.interpolation = 4, by_current(r), r.samples = 20;
        }));
    }
}

void add_expressions(ModelFile& file) {
    add_record(file, "table_axis_list;axis",
               {{"id", 1},
                {"type", 1},
                {"reference_id", 1},
                {"correction_expression", "v * gain + 0.25 * sin(v)"},
                {"correction_variable", "v"}});
    add_record(file, "table_axis_list;axis",
               {{"id", 2}, {"type", 0}, {"definition", "i2 * half + sqrt(1.5 + i2 * i2) * sin(angle)"}});
    add_record(file, "table_axis_list;axis", {{"id", 3}, {"type", 2}, {"reference_id", 1}});
    add_record(file, "table_axis_list;axis", {{"id", 4}, {"type", 2}, {"reference_id", 2}});
    add_record(file, "input_parameter_list;input_parameter", {{"type", 3}, {"name", "half"}, {"value", 0.5}});
    const char* const list = "user_defined_equation_list;user_defined_equation";
    add_record(file, list, {{"type", 1}, {"name", "i2"}, {"reference_id", 2}});
    add_record(file, list, {{"type", 2}, {"name", "angle"}, {"reference_id", 1}});
    add_record(file, "correction_parameter_list;correction_parameter", {{"name", "gain"}, {"value", 1.25}});
    for (int coil = 1; coil <= 2; ++coil) {
        add_record(file, "flux_list;phase_list;phase",
                   {{"index", coil - 1},
                    {"reference_id", coil},
                    {"correction_expression", "v * gain / (1.0 + 0.01 * v^2)"},
                    {"correction_variable", "v"}});
        add_record(file, "torque_force_list;phase_list;phase",
                   {{"index", coil - 1}, {"correction_expression", "v + 0.125"}, {"correction_variable", "v"}});
    }
}

void add_generic(std::vector<MachineRun>& runs) {
    for (const bool axes : {true, false}) {
        GenericMachine machine;
        machine.table_axes_form = axes;
        MachineRun run{axes ? "generic_table_axes" : "generic_coil_sets",
                       from_store([machine](Store& store) { kzb_reference::make_generic_machine(machine, store); })};
        run.voltage = 8.0;
        run.samples = 60;
        runs.push_back(run);
        runs.push_back(changed(run, [&](MachineRun& r) {
            r.name += "_cubic_everything", r.interpolation = 1, everything(r), r.samples = 20;
        }));
    }
    // Circuits of every kind of part, with losses, one with expressions in place of plain axes.
    for (const bool expressions : {false, true}) {
        MachineRun run{expressions ? "generic_expressions" : "generic_parts", [expressions](const char* path) {
                           ModelFile file;
                           generic_machine(file);
                           add_generic_outputs(file);
                           add_generic_iron_loss(file);
                           if (expressions) {
                               add_expressions(file);
                           }
                           kzb_writer(path, file.store());  // when it finishes
                       }};
        run.voltage = 5.0;
        run.reach = 60.0;
        run.samples = 60;
        runs.push_back(run);
        runs.push_back(changed(run, [&](MachineRun& r) { r.name += "_everything", everything(r); }));
    }
}

}  // namespace

const std::vector<MachineRun>& all_runs() {
    static const std::vector<MachineRun> runs = [] {
        std::vector<MachineRun> made;
        add_permanent_magnet(made);
        add_induction(made);
        add_wound_field(made);
        add_coils(made);
        add_generic(made);
        return made;
    }();
    return runs;
}

const MachineRun& run_named(const std::string& name) {
    const auto found =
        std::find_if(all_runs().begin(), all_runs().end(), [&](const MachineRun& run) { return run.name == name; });
    if (found == all_runs().end()) {
        throw std::invalid_argument("no run is named " + name);
    }
    return *found;
}

}  // namespace kzb_test
