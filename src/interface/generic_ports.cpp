// Exported calls of the generic model: its ports, counted and labelled.
#include "interface/generic_ports.h"

#include <charconv>
#include <cstring>

#include "KZBCalculator/kzbcalc.h"
#include "interface/file_data.h"

using namespace kzb;

namespace kzb {

// The longest pattern with two numbers of ten digits has room.
void write_label(const char* pattern, int number, char* buffer) {
    if (buffer == nullptr) {
        return;
    }
    char* const end = buffer + label_size - 1;
    while (*pattern != '\0' && buffer != end) {
        if (std::strncmp(pattern, "%d", 2) == 0) {
            buffer = std::to_chars(buffer, end, number).ptr;
            pattern += 2;
        } else {
            *buffer++ = *pattern++;
        }
    }
    *buffer = '\0';
}

int group_count(const KZB_CALC& handle, const GenericModel& model, GroupCode code) {
    switch (code) {
        case group_terminals:
            return sources(model);
        case group_coil_currents:
        case group_coil_fluxes:
            return coils(model);
        case group_resistors:
            return resistors(model);
        case group_inductors:
            return inductors(model);
        case group_capacitors:
            return capacitors(model);
        case group_probes:
            return probes(model);
        case group_forces:
            return model.force_count();
        case group_iron_loss:
            return has_ironloss(handle) ? 1 : 0;
        case group_user_values:
            return model.user_parameter_count();
        case group_motions:
            return model.motion_count();
    }
    return 0;
}

int input_port_count(const KZB_CALC& handle, const GenericModel& model) {
    int count = 0;
    for (const LabelledGroup& group : input_groups) {
        count += group_count(handle, model, group.code);
    }
    return count;
}

int output_port_count(const KZB_CALC& handle, const GenericModel& model) {
    int count = 0;
    for (const LabelledGroup& group : output_groups) {
        count += group_count(handle, model, group.code);
    }
    return count;
}

}  // namespace kzb

namespace {

template <std::size_t groups>
int get_labels(const LabelledGroup (&list)[groups], int ports, char** labels, int size, const KZB_CALC& handle,
               const GenericModel& model) {
    if (size < static_cast<long long>(label_size) * ports || (labels == nullptr && ports > 0)) {
        return status_port_id;
    }
    write_labels(list, handle, model, labels);
    return 0;
}

}  // namespace

int kzbcalcGetNumOfInputPortsForGenericModel(KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) { return input_port_count(*handle, model); });
}

int kzbcalcGetNumOfOutputPortsForGenericModel(KZB_CALC* handle) {
    // Of the fixed machines with user parameters, each of the eight other groups counts as the status that refuses it:
    // unusable, as established.
    constexpr int refused_groups = 8 * status_not_applicable;
    return guarded(status_not_applicable, [&] {
        return with_model<rotary_pm | wound_field | generic>(
            handle, status_not_applicable,
            [](auto& model) { return refused_groups + static_cast<int>(model.user_parameter_count()); },
            [=](GenericModel& model) { return output_port_count(*handle, model); });
    });
}

int kzbcalcGetInputLabelsForGenericModel(char** labels, int size, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        return get_labels(input_groups, input_port_count(*handle, model), labels, size, *handle, model);
    });
}

int kzbcalcGetOutputLabelsForGenericModel(char** labels, int size, KZB_CALC* handle) {
    return of_generic(handle, [=](const GenericModel& model) {
        return get_labels(output_groups, output_port_count(*handle, model), labels, size, *handle, model);
    });
}
