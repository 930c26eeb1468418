// What the exported store calls share: the guard against exceptions and the tests of handle and texts.
#pragma once

#include <utility>

#include "diagnostics/guard.h"
#include "store/store.h"

namespace kzb {

// Runs body(store) behind the guard; `absent` is the result for a null handle, a null text and a failure.
template <class Result, class Body, class... Texts>
Result with_store(Result absent, KZB_STORE* handle, Body&& body, const Texts*... texts) noexcept {
    if (handle == nullptr || (... || (texts == nullptr))) {
        return absent;
    }
    return guarded(absent, [&] { return static_cast<Result>(body(*handle)); });
}

}  // namespace kzb
