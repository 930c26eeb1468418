#include "store/lookup_watch.h"

namespace kzb {

namespace {

thread_local LookupWatch* listener = nullptr;

}  // namespace

LookupWatch* lookup_watch() noexcept {
    return listener;
}

void set_lookup_watch(LookupWatch* watch) noexcept {
    listener = watch;
}

}  // namespace kzb
