// Exported calls: correction files and loss table files.
#include "store/export_guard.h"
#include "store/measured/correction_file.h"
#include "store/measured/loss_table_file.h"

using kzb::with_store;

// A null path is a file that cannot be opened.

int kzb_read_correction_file(const char* path, KZB_STORE* handle) {
    return with_store(1, handle, [&](KZB_STORE& store) {
        kzb::read_lookup_switches(store);
        return kzb::read_correction_file(store, path);
    });
}

// Kept for callers of old: corrections act at run time. No effect, and the result is always 1.
int kzb_apply_correction(const char* /*path*/, KZB_STORE* /*handle*/) {
    return 1;
}

int kzb_add_loss_table(const char* path, KZB_STORE* handle) {
    return with_store(1, handle, [&](KZB_STORE& store) { return kzb::add_loss_table(store, path); });
}

int kzb_add_equivalent_copper_loss_resistance_table(const char* path, KZB_STORE* handle) {
    return with_store(1, handle, [&](KZB_STORE& store) { return kzb::add_copper_loss_table(store, path); });
}
