// Tables of phase quantities from tables of d-q-0 quantities and back, for files of application FluxIntegralDQTheta.
//
// The flux tables hang on the rotor position alone, the current tables on two flux axes and the rotor position (axis
// 3).
#include <array>
#include <vector>

#include "store/store.h"
#include "store/transform/frame.h"
#include "store/transform/table_copy.h"
#include "store/transform/transforms.h"

namespace kzb {
namespace {

constexpr const char* noload_keys[] = {"fd_noload", "fq_noload", "f0_noload"};

bool offers_flux_integral(const KZB_STORE& store) {
    return has_application(store, "PMSM", "FluxIntegralDQTheta");
}

std::array<int, 3> rows_of_three_axes(const KZB_TABLE* table) {
    return {filled_rows(table, 1), filled_rows(table, 2), filled_rows(table, 3)};
}

void copy_three_axes(KZB_STORE& store, const KZB_TABLE* from, KZB_TABLE* to) {
    for (int axis = 1; axis <= 3; ++axis) {
        copy_axis(store, from, axis, to, axis);
    }
}

// Runs body(i, j, k) over all points of the three axes.
template <class Body>
void for_each_point(const std::array<int, 3>& rows, Body&& body) {
    for (int i = 0; i < rows[0]; ++i) {
        for (int j = 0; j < rows[1]; ++j) {
            for (int k = 0; k < rows[2]; ++k) {
                body(i, j, k);
            }
        }
    }
}

}  // namespace

int make_dq0_from_UVW(KZB_STORE& store) {
    if (!offers_flux_integral(store)) {
        return 0;
    }
    const int n = filled_rows(find_table(store, "current_flux", "mag_flux"), 1);
    for (const char* key : noload_keys) {
        create_table(store, "flux_table", key, 1, &n);
    }
    KZB_TABLE* source = find_table(store, "current_flux", "mag_flux");
    Cells flux(source, 2);
    Cells d(find_table(store, "flux_table", "fd_noload"), 1);
    Cells q(find_table(store, "flux_table", "fq_noload"), 1);
    Cells zero(find_table(store, "flux_table", "f0_noload"), 1);
    const std::vector<Frame> frames = frames_at(store, nodes_of(store, source, 1));
    for (int i = 0; i < n; ++i) {
        const Uvw phases{flux.get({i, 0}), flux.get({i, 1}), flux.get({i, 2})};
        const Dq0 axes = frames[static_cast<std::size_t>(i)].dq0(phases);
        d.set({i}, axes.d);
        q.set({i}, axes.q);
        zero.set({i}, axes.zero);
    }
    for (const char* key : noload_keys) {
        KZB_TABLE* table = find_table(store, "flux_table", key);
        copy_axis(store, source, 1, table, 1);
        set_cyclic_flags(table, {1});
    }
    return 0;
}

int make_UVW_from_dq0(KZB_STORE& store) {
    if (!offers_flux_integral(store)) {
        return 0;
    }
    const int sizes[] = {filled_rows(find_table(store, "flux_table", "fd_noload"), 1), 3};
    create_table(store, "current_flux", "mag_flux", 2, sizes);
    KZB_TABLE* source = find_table(store, "flux_table", "fd_noload");
    KZB_TABLE* target = find_table(store, "current_flux", "mag_flux");
    Cells d(source, 1);
    Cells q(find_table(store, "flux_table", "fq_noload"), 1);
    Cells zero(find_table(store, "flux_table", "f0_noload"), 1);
    Cells flux(target, 2);
    const std::vector<Frame> frames = frames_at(store, nodes_of(store, source, 1));
    for (int i = 0; i < sizes[0]; ++i) {
        const Uvw phases = frames[static_cast<std::size_t>(i)].uvw({d.get({i}), q.get({i}), zero.get({i})});
        flux.set({i, 0}, phases.u);
        flux.set({i, 1}, phases.v);
        flux.set({i, 2}, phases.w);
    }
    copy_axis(store, source, 1, target, 1);
    set_nodes(target, 2, {0.0, 1.0, 2.0});
    set_cyclic_flags(target, {1, 0});
    return 0;
}

int make_dq0_from_UVW_current(KZB_STORE& store) {
    if (!offers_flux_integral(store)) {
        return 0;
    }
    const std::array<int, 3> rows = rows_of_three_axes(find_table(store, "current_flux", "iuvw"));
    create_table(store, "current_table", "id", 3, rows.data());
    create_table(store, "current_table", "iq", 3, rows.data());
    KZB_TABLE* source = find_table(store, "current_flux", "iuvw");
    Cells current(source, 4);
    Cells d(find_table(store, "current_table", "id"), 3);
    Cells q(find_table(store, "current_table", "iq"), 3);
    const std::vector<Frame> frames = frames_at(store, nodes_of(store, source, 3));
    for_each_point(rows, [&](int i, int j, int k) {
        const Uvw phases{current.get({i, j, k, 0}), current.get({i, j, k, 1}), current.get({i, j, k, 2})};
        const Dq0 axes = frames[static_cast<std::size_t>(k)].dq0(phases);
        // Kept: the zero part of the currents is dropped.
        d.set({i, j, k}, axes.d);
        q.set({i, j, k}, axes.q);
    });
    for (const char* key : {"id", "iq"}) {
        KZB_TABLE* table = find_table(store, "current_table", key);
        copy_three_axes(store, source, table);
        set_cyclic_flags(table, {0, 0, 1});
    }
    return 0;
}

int make_UVW_from_dq0_current(KZB_STORE& store) {
    if (!offers_flux_integral(store)) {
        return 0;
    }
    const std::array<int, 3> rows = rows_of_three_axes(find_table(store, "current_table", "id"));
    const int sizes[] = {rows[0], rows[1], rows[2], 3};
    create_table(store, "current_flux", "iuvw", 4, sizes);
    KZB_TABLE* source = find_table(store, "current_table", "id");
    KZB_TABLE* target = find_table(store, "current_flux", "iuvw");
    Cells d(source, 3);
    Cells q(find_table(store, "current_table", "iq"), 3);
    Cells current(target, 4);
    const std::vector<Frame> frames = frames_at(store, nodes_of(store, source, 3));
    for_each_point(rows, [&](int i, int j, int k) {
        const Uvw phases = frames[static_cast<std::size_t>(k)].uvw({d.get({i, j, k}), q.get({i, j, k}), 0.0});
        current.set({i, j, k, 0}, phases.u);
        current.set({i, j, k, 1}, phases.v);
        current.set({i, j, k, 2}, phases.w);
    });
    copy_three_axes(store, source, target);
    set_nodes(target, 4, {0.0, 1.0, 2.0});
    set_cyclic_flags(target, {0, 0, 1, 0});
    return 0;
}

}  // namespace kzb
