#include "kzb/store_pointer.h"

#include "kzb/command.h"

namespace kzb::tool {

StorePointer open_store() {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    if (store == nullptr) {
        throw Failure(exit_run_failed, "no memory for a model");
    }
    return StorePointer(store);
}

}  // namespace kzb::tool
