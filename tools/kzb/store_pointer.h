// A store of the library with its owner.
#pragma once

#include <memory>

#include "KZBCalculator/kzb_store.h"

namespace kzb::tool {

struct StoreCloser {
    void operator()(KZB_STORE* store) const { kzb_finish(store); }
};
using StorePointer = std::unique_ptr<KZB_STORE, StoreCloser>;

// An empty store; Failure(exit_run_failed) without the memory for it.
StorePointer open_store();

}  // namespace kzb::tool
