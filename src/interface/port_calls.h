// What the calls with a phase number share: the test of the number against the motor type's ports.
#pragma once

#include "interface/model_dispatch.h"

namespace kzb {

// 0, or the status that refuses a port call: the type has no numbered phases, or `phase` isn't one of them.
inline int phase_status(const KZB_CALC* handle, int phase) {
    if (!has_model(handle) || handle->type->ports == 0) {
        return status_not_applicable;
    }
    return phase >= 1 && phase <= handle->type->ports ? 0 : status_phase;
}

inline std::size_t index_of(int phase) {
    return static_cast<std::size_t>(phase) - 1;
}

}  // namespace kzb
