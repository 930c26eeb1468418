// The one place where exceptions end: every exported call is one lambda in this guard.
//
// Nothing else catches everything. `fallback` is the value that the call's document gives for "could not".
#pragma once

namespace kzb {

template <class Result, class Body>
Result guarded(Result fallback, Body&& body) noexcept {
    try {
        return body();
    } catch (...) {
        return fallback;
    }
}

template <class Body>
void guarded(Body&& body) noexcept {
    try {
        body();
    } catch (...) {
        return;
    }
}

}  // namespace kzb
