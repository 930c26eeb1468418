// Exported calls: opening and closing a calculator, version and motor type.
#include "KZBCalculator/kzbcalc.h"
#include "diagnostics/guard.h"
#include "interface/model_dispatch.h"
#include "interface/start_values.h"
#include "models/control_record.h"
#include "store/record_list.h"

using namespace kzb;

namespace {

// What a file of the rotary permanent-magnet type holds decides; nothing is selected when it holds none.
void select_pmsm_application(KZB_STORE& store) {
    for (const char* const application : {"Harmonic", "SimpleHarmonic", "LdLq"}) {
        if (has_application(store, "PMSM", application)) {
            set_application(store, "PMSM", application);
            return;
        }
    }
}

void select_application(KZB_STORE& store, const MotorType& type) {
    if (type.application == nullptr) {
        select_pmsm_application(store);
    } else {
        set_application(store, type.motor, type.application);
    }
}

void size_ports(KZB_CALC& handle) {
    const auto ports = static_cast<std::size_t>(handle.type->ports);
    handle.voltage.assign(ports, 0.0);
    handle.current.assign(ports, 0.0);
    handle.signal.assign(ports, 1.0);
}

// Reads the circuit of a generic model and sizes what follows from it; false for one that can't be executed.
bool open_circuit(KZB_CALC& handle, Calc_Eq_generic& model) {
    const KZB_STORE& store = *handle.store;
    model.initialize(*handle.store);
    if (!model.faults().empty()) {
        return false;
    }
    const auto supplies = static_cast<std::size_t>(model.count(PortGroup::sources));
    const auto motions = static_cast<std::size_t>(model.motion_count());
    handle.voltage.assign(supplies, 0.0);
    handle.signal.assign(supplies, 1.0);
    handle.user_input.assign(static_cast<std::size_t>(record_count(store, "input_port_list;user_input")), 0.0);
    handle.displacement.assign(motions, 0.0);
    handle.initial_displacement.assign(motions, 0.0);
    handle.no_coil_set = record_count(store, "element_set_list;coil_set") == 0;
    return true;
}

constexpr int tables_not_readable = 90001;  // the file went away, or the system refuses to read on

int initialize(KZB_CALC& handle, const char* path, int calc_mode) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    handle.store.reset(store);
    if (kzb_reader(path, store) == 1) {
        return status_file;
    }
    handle.motor_type = get_int(*store, "control", "motor_type");
    handle.type = find_motor_type(handle.motor_type);
    // The motor type is tested before the mode, on purpose.
    if (handle.type == nullptr) {
        return status_motor_type;
    }
    handle.calc_mode = calc_mode;
    if (calc_mode != 1 && calc_mode != 2) {
        return status_calc_mode;
    }
    select_application(*store, *handle.type);
    if (store->error == tables_not_readable) {
        return status_file;
    }
    size_ports(handle);
    ControlRecord record;
    record.read(*store);
    std::unique_ptr<Calc> model = create_model(*handle.type);
    if (handle.type->set == generic && !open_circuit(handle, static_cast<Calc_Eq_generic&>(*model))) {
        return status_motor_type;
    }
    set_start_values(handle, *model, record);
    handle.model = std::move(model);
    return 0;
}

}  // namespace

int kzbcalcInitialize(const char* path, int calc_mode, KZB_CALC** out) {
    if (out == nullptr) {
        return status_not_applicable;
    }
    *out = nullptr;
    return guarded(status_file, [&] {
        // Written before the file is read: the caller terminates the handle whatever the status is.
        *out = new KZB_CALC;
        return initialize(**out, path, calc_mode);
    });
}

int kzbcalcTerminate(KZB_CALC* handle) {
    const std::unique_ptr<KZB_CALC> owned(handle);
    return guarded(0, [&] {
        with_model<with_phases>(handle, 0, [](auto& model) { model.reset(); });
        return 0;
    });
}

const char* kzbcalcVersion(void) {
    return "2.0.51";
}

int kzbcalcCheckMotorType(KZB_CALC* handle) {
    return handle == nullptr ? status_not_applicable : handle->motor_type;
}

int kzbcalcGetNumberOfPhases(KZB_CALC* handle) {
    // Reluctance machines alone answer, as established; a three-phase machine does not say 3.
    return handle != nullptr && serves(*handle, reluctance) ? handle->type->ports : status_not_applicable;
}
