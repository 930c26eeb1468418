// Exported calls of the generic model: ids by name.
#include "KZBCalculator/kzbcalc.h"
#include "interface/generic_calls.h"

using namespace kzb;

namespace {

int id_or(int id, int status) {
    return id == 0 ? status : id;
}

int id_of_name(KZB_CALC* handle, const char* name, PortGroup group, int status) {
    return of_generic(handle, [=](const GenericModel& model) {
        return id_or(name == nullptr ? 0 : model.port_by_name(group, name), status);
    });
}

}  // namespace

int kzbcalcGetCoilIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return id_of_name(handle, name, PortGroup::coils, status_coil_id);
}

int kzbcalcGetInductorIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return id_of_name(handle, name, PortGroup::inductors, status_inductor_id);
}

int kzbcalcGetCapacitorIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return id_of_name(handle, name, PortGroup::capacitors, status_capacitor_id);
}

int kzbcalcGetResistorIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return id_of_name(handle, name, PortGroup::resistors, status_resistor_id);
}

int kzbcalcGetVoltageProbeIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return id_of_name(handle, name, PortGroup::probes, status_voltage_probe_id);
}

int kzbcalcGetPowerSupplyIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return id_of_name(handle, name, PortGroup::sources, status_power_supply_id);
}

int kzbcalcGetMotionIdFromNameForGenericModel(const char* name, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        return id_or(name == nullptr ? 0 : model.motion_by_name(name), status_motion_id);
    });
}
