// Exported calls: applications, information rows, transforms.
#include "store/applications.h"
#include "store/export_guard.h"
#include "store/information.h"
#include "store/information_export.h"
#include "store/transform/transforms.h"

using kzb::with_store;

namespace {

KZB_INFORMATION information_row(KZB_STORE* handle, kzb::InformationRows rows, int index) {
    return with_store(KZB_INFORMATION{"", "", 0}, handle,
                      [&](KZB_STORE& store) { return kzb::information_at(store, rows, index); });
}

// A transform that looks tables up: the environment counts once for the whole call.
template <class Body, class... Texts>
int transform(int absent, KZB_STORE* handle, Body&& body, const Texts*... texts) {
    return with_store(
        absent, handle,
        [&](KZB_STORE& store) {
            kzb::read_lookup_switches(store);
            return body(store);
        },
        texts...);
}

}  // namespace

int kzb_has_application(const char* motor, const char* application, KZB_STORE* handle) {
    return with_store(
        0, handle,
        [&](KZB_STORE& store) { return kzb::has_application(store, motor, application == nullptr ? "" : application); },
        motor);
}

int kzb_get_application_num(KZB_STORE* handle) {
    return with_store(0, handle, [](KZB_STORE& store) { return kzb::application_count(store); });
}

KZB_INFORMATION kzb_get_application(KZB_STORE* handle, int index) {
    return with_store(KZB_INFORMATION{nullptr, nullptr, 0}, handle, [&](KZB_STORE& store) {
        const kzb::ApplicationName name = kzb::application_at(store, index);
        return KZB_INFORMATION{name.motor, name.application, 0};
    });
}

void kzb_set_application(const char* motor, const char* application, KZB_STORE* handle) {
    with_store(
        0, handle,
        [&](KZB_STORE& store) {
            kzb::set_application(store, motor, application);
            return 0;
        },
        motor);
}

int kzb_get_motor_information_num(KZB_STORE* handle) {
    return with_store(0, handle,
                      [](KZB_STORE& store) { return kzb::information_count(store, kzb::InformationRows::motor); });
}

KZB_INFORMATION kzb_get_motor_information(KZB_STORE* handle, int index) {
    return information_row(handle, kzb::InformationRows::motor, index);
}

int kzb_get_basic_information_num(KZB_STORE* handle) {
    return with_store(0, handle,
                      [](KZB_STORE& store) { return kzb::information_count(store, kzb::InformationRows::basic); });
}

KZB_INFORMATION kzb_get_basic_information(KZB_STORE* handle, int index) {
    return information_row(handle, kzb::InformationRows::basic, index);
}

int kzb_make_dq0_from_UVW(KZB_STORE* handle) {
    return transform(0, handle, [](KZB_STORE& store) { return kzb::make_dq0_from_UVW(store); });
}

int kzb_make_dq0_from_UVW_current(KZB_STORE* handle) {
    return transform(0, handle, [](KZB_STORE& store) { return kzb::make_dq0_from_UVW_current(store); });
}

int kzb_make_UVW_from_dq0(KZB_STORE* handle) {
    return transform(0, handle, [](KZB_STORE& store) { return kzb::make_UVW_from_dq0(store); });
}

int kzb_make_UVW_from_dq0_current(KZB_STORE* handle) {
    return transform(0, handle, [](KZB_STORE& store) { return kzb::make_UVW_from_dq0_current(store); });
}

int kzb_make_LdLq(KZB_STORE* handle) {
    return transform(0, handle, [](KZB_STORE& store) { return kzb::make_LdLq(store); });
}

int kzb_apply_skew(int type_a, int type_b, double angle_a, double angle_b, int steps_a, int steps_b, const char* method,
                   KZB_STORE* handle) {
    return transform(
        1, handle,
        [&](KZB_STORE& store) {
            return kzb::apply_skew(type_a, type_b, angle_a, angle_b, steps_a, steps_b, method, store);
        },
        method);
}

int kzb_expand_table_considering_phase_symmetry(KZB_STORE* handle) {
    return transform(1, handle, [](KZB_STORE& store) { return kzb::expand_table_considering_phase_symmetry(store); });
}

int kzb_export_information(KZB_STORE* handle, const char* path) {
    return kzb::with_store(1, handle, [&](KZB_STORE& store) { return kzb::export_information(store, path); });
}
