// Exported calls of the generic model: many values in one call.
//
// A loop runs over the model's components; it ends early where the caller's array does.
#include <algorithm>

#include "KZBCalculator/kzbcalc.h"
#include "interface/generic_ports.h"

using namespace kzb;

namespace {

// A caller's array; a null one holds nothing.
template <class Number>
struct Values {
    const Number* data;
    int count;

    // Numbers of the first components that have one.
    int upto(int components) const { return data == nullptr ? 0 : std::min(count, components); }
    Number operator[](int i) const { return data[i]; }
};

// Takes the next value of an array, if there is one.
template <class Target>
void take(const Values<double>& values, int& next, Target& target) {
    if (next < values.upto(values.count)) {
        target = values[next++];
    }
}

double output_value(KZB_CALC* handle, GroupCode code, int number) {
    switch (code) {
        case group_coil_currents:
            return kzbcalcGetCoilCurrentForGenericModel(number, handle);
        case group_resistors:
            return kzbcalcGetResistorCurrentForGenericModel(number, handle);
        case group_inductors:
            return kzbcalcGetInductorCurrentForGenericModel(number, handle);
        case group_capacitors:
            return kzbcalcGetCapacitorCurrentForGenericModel(number, handle);
        case group_probes:
            return kzbcalcGetVoltageProbeValueForGenericModel(number, handle);
        case group_forces:
            return kzbcalcGetForceForGenericModel(number, handle);
        case group_iron_loss:
            return kzbcalcGetIronloss(handle);
        case group_coil_fluxes:
            return kzbcalcGetCoilFluxForGenericModel(number, handle);
        default:
            return kzbcalcGetUserSpecifiedParameter(number, handle);
    }
}

void set_positive(GenericModel& model, const Values<double>& values, const CountOf& group, const char* key) {
    for (int i = 0; i < values.upto(group(model)); ++i) {
        if (values[i] > 0.0) {
            model.set_value(group.group, i + 1, key, values[i]);
        }
    }
}

void set_currents(GenericModel& model, const Values<double>& values, const CountOf& group) {
    for (int i = 0; i < values.upto(group(model)); ++i) {
        model.set_current(group.group, i + 1, values[i]);
    }
}

}  // namespace

int kzbcalcSetInputValuesForGenericModel(const double* values, int count, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        if (values == nullptr || count != input_port_count(*handle, model)) {
            return 0;
        }
        const double* next = values;
        for (double& voltage : handle->voltage) {
            voltage = *next++;
        }
        for (int coil = 1; coil <= coils(model); ++coil) {
            // Its status is dropped.
            kzbcalcSetCoilTemperatureForGenericModel(coil, *next++, handle);
        }
        for (std::size_t i = 0; i < handle->displacement.size(); ++i) {
            handle->displacement[i] = *next++ + handle->initial_displacement[i];
        }
        return 0;
    });
}

int kzbcalcGetOutputValuesForGenericModel(double* values, int count, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        if (count != output_port_count(*handle, model) || (values == nullptr && count > 0)) {
            return status_port_id;
        }
        double* next = values;
        for (const LabelledGroup& group : output_groups) {
            for (int number = 1, ports = group_count(*handle, model, group.code); number <= ports; ++number) {
                *next++ = output_value(handle, group.code, number);
            }
        }
        return 0;
    });
}

int kzbcalcSetParametersForGenericModel(const int* values, int count, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel&) {
        constexpr int parameters = 6;
        if (count != parameters || values == nullptr) {
            return status_count;
        }
        const auto take_switch = [=](int i, int& target) { target = values[i] != 0 ? values[i] : target; };
        take_switch(0, handle->keep_table_values);
        if (values[1] == 1) {
            kzbcalcSetTemperatureCorrectionCalc(handle);
        }
        take_switch(2, handle->apply_correction_factors);
        take_switch(3, handle->apply_temperature_data);
        // 0, "Linear", can't be chosen here, as established.
        if (values[4] != 0 && values[5] >= 1 && values[5] <= 4) {
            kzbcalcSetInterpolationType(values[5], handle);
        }
        return 0;
    });
}

int kzbcalcSetTableValuesForGenericModel(const int* supply_types, int count1, const double* coil_resistances,
                                         int count2, const double* resistances, int count3, const double* inductances,
                                         int count4, const double* capacitances, int count5, KZB_CALC* handle) {
    return of_generic(handle, [=](GenericModel& model) {
        if (count1 > sources(model)) {
            return status_count;
        }
        const Values<int> types{supply_types, count1};
        for (int i = 0; i < types.upto(sources(model)); ++i) {
            kzbcalcSetPowerSupplyTypeForGenericModel(i + 1, static_cast<int>(static_cast<unsigned>(types[i]) - 1U),
                                                     handle);
        }
        if (handle->keep_table_values != 0) {
            return 0;
        }
        // Each count is tested as its group is reached: what went before stays.
        if (count2 > coils(model)) {
            return status_count;
        }
        const Values<double> of_coils{coil_resistances, count2};
        for (int i = 0; i < of_coils.upto(coils(model)); ++i) {
            kzbcalcSetCoilResistanceForGenericModel(i + 1, of_coils[i], handle);
        }
        if (count3 > resistors(model)) {
            return status_count;
        }
        set_positive(model, {resistances, count3}, resistors, "resistance");
        if (count4 > inductors(model)) {
            return status_count;
        }
        set_positive(model, {inductances, count4}, inductors, "inductance");
        if (count5 > capacitors(model)) {
            return status_count;
        }
        set_positive(model, {capacitances, count5}, capacitors, "capacitance");
        return 0;
    });
}

namespace {

struct CorrectionFactors {
    Values<double> flux;
    Values<double> force;
    Values<double> user;
    Values<double> turns;
};

int apply_factors(const KZB_CALC& handle, GenericModel& model, const CorrectionFactors& given) {
    if (given.force.count > model.force_count()) {
        return status_count;
    }
    for (int i = 0; i < given.force.upto(model.force_count()); ++i) {
        model.set_force_correction(i + 1, given.force[i]);
    }
    if (given.user.count > model.user_parameter_count()) {
        return status_count;
    }
    // An index beyond the user inputs is passed over, as established.
    const int user_inputs = static_cast<int>(handle.user_input.size());
    for (int i = 0; i < std::min(given.user.upto(model.user_parameter_count()), user_inputs); ++i) {
        if (given.user[i] > 0.0) {
            model.set_user_parameter_correction(i + 1, given.user[i]);
        }
    }
    if (given.flux.count > coils(model) || given.turns.count > coils(model)) {
        return status_count;
    }
    set_positive(model, given.flux, coils, "coef_flux");
    set_positive(model, given.turns, coils, "turns2");
    return 0;
}

}  // namespace

int kzbcalcSetCorrectionFactorsForGenericModel(const double* flux, int count1, const double* force, int count2,
                                               const double* user, int count3, const double* turns, int count4,
                                               const double* base_temperature, int count5,
                                               const double* temperature_coefficient, int count6, KZB_CALC* handle) {
    return of_generic(handle, [=](GenericModel& model) {
        if (handle->apply_correction_factors != 0) {
            const int status =
                apply_factors(*handle, model, {{flux, count1}, {force, count2}, {user, count3}, {turns, count4}});
            if (status != 0) {
                return status;
            }
        }
        if (handle->apply_temperature_data != 0) {
            if (count5 > coils(model) || count6 > coils(model)) {
                return status_count;
            }
            const Values<double> temperatures{base_temperature, count5};
            const Values<double> coefficients{temperature_coefficient, count6};
            for (int i = 0; i < coils(model); ++i) {
                if (i < temperatures.upto(coils(model))) {
                    kzbcalcSetCoilBaseTemperatureForGenericModel(i + 1, temperatures[i], handle);
                }
                if (i < coefficients.upto(coils(model))) {
                    kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel(i + 1, coefficients[i], handle);
                }
            }
        }
        return 0;
    });
}

int kzbcalcSetInitialValuesForGenericModel(const double* rotary_positions, int count1, const double* linear_positions,
                                           int count2, const double* coil_currents, int count3,
                                           const double* resistor_currents, int count4, const double* inductor_currents,
                                           int count5, const double* capacitor_currents, int count6, KZB_CALC* handle) {
    return of_generic(handle, [=](GenericModel& model) {
        const long long positions = static_cast<long long>(count1) + count2;
        if (count3 > coils(model) || count4 > resistors(model) || count5 > inductors(model) ||
            count6 > capacitors(model) || positions > model.motion_count()) {
            return status_count;
        }
        const Values<double> rotary{rotary_positions, count1};
        const Values<double> linear{linear_positions, count2};
        int next_rotary = 0;
        int next_linear = 0;
        for (int id = 1; id <= model.motion_count(); ++id) {
            double& position = handle->initial_displacement[static_cast<std::size_t>(id - 1)];
            if (model.motion_is_rotation(id)) {
                take(rotary, next_rotary, position);
            } else {
                take(linear, next_linear, position);
            }
        }
        set_currents(model, {coil_currents, count3}, coils);
        set_currents(model, {resistor_currents, count4}, resistors);
        set_currents(model, {inductor_currents, count5}, inductors);
        set_currents(model, {capacitor_currents, count6}, capacitors);
        return 0;
    });
}
