// The one place where exceptions end: every exported call is one lambda in this guard.
//
// Nothing else catches everything. `fallback` is the value that the call's document gives for "could not". A host that
// traps floating-point exceptions has them masked while the lambda runs.
#pragma once

#include "diagnostics/float_traps.h"

namespace kzb {

template <class Result, class Body>
Result guarded(Result fallback, Body&& body) noexcept {
    const FloatTrapsMasked masked;
    try {
        return body();
    } catch (...) {
        return fallback;
    }
}

template <class Body>
void guarded(Body&& body) noexcept {
    const FloatTrapsMasked masked;
    try {
        body();
    } catch (...) {
        return;
    }
}

}  // namespace kzb
