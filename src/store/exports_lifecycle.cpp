// Exported calls: lifecycle and file, errors and warnings.
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "store/export_guard.h"
#include "store/format/model_file.h"
#include "store/messages.h"
#include "store/time_report.h"

using kzb::with_store;

void kzb_initialize(KZB_STORE** out) {
    if (out == nullptr) {
        return;
    }
    *out = kzb::guarded(static_cast<KZB_STORE*>(nullptr), [] {
        auto store = std::make_unique<KZB_STORE>();
        store->keep_time = std::getenv("KZB_OUTPUT_ELAPSED_TIME") != nullptr;
        store->switches.measure_time = store->keep_time;
        return store.release();
    });
}

int kzb_reader(const char* path, KZB_STORE* handle) {
    return with_store(1, handle,
                      [&](KZB_STORE& store) { return kzb::read_model_file(store, path == nullptr ? "" : path); });
}

void kzb_writer(const char* path, KZB_STORE* handle) {
    with_store(
        0, handle,
        [&](KZB_STORE& store) {
            store.output_path = path;
            store.output_type = "binary";
            return 0;
        },
        path);
}

void kzb_finish(KZB_STORE* handle) {
    if (handle == nullptr) {
        return;
    }
    const std::unique_ptr<KZB_STORE> owned(handle);
    kzb::guarded([&] { kzb::write_model_file(*owned); });
    kzb::guarded([&] {
        if (std::getenv("KZB_OUTPUT_ELAPSED_TIME") != nullptr) {
            kzb::append_time_report(*owned);
        }
    });
}

double kzb_get_time(KZB_STORE* handle, int index) {
    if (handle == nullptr || index < 0 || index >= kzb::timing_slots) {
        return 0.0;
    }
    return handle->timing[index];
}

const char* kzb_get_filehandler_version(void) {
    return "19.12.18";
}

int kzb_has_error(KZB_STORE* handle) {
    return handle == nullptr ? 0 : handle->error;
}

void kzb_reset_error(KZB_STORE* handle) {
    if (handle != nullptr) {
        handle->error = 0;
    }
}

void kzb_print_error_short_message(int code) {
    std::perror(kzb::error_text(code));
}

int kzb_has_warning(KZB_STORE* handle) {
    return handle == nullptr ? 0 : handle->warning;
}

void kzb_reset_warning(KZB_STORE* handle) {
    if (handle != nullptr) {
        handle->warning = 0;
    }
}

void kzb_print_warning_short_message(int code) {
    std::fputs(kzb::warning_text(code), stdout);
}
