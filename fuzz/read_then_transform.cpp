// A model file, from the input's bytes or put together by its choices, is read and loaded, looked up, rewritten by the
// transforms in the order that the input tells, and written and read again in one of the forms: what comes back is what
// was written.
//
//   byte 0      bits 0, 1: 0, 1 the bytes behind the operations are choices of a machine's model, 2 of two tables of
//               any shape, 3 they are the file itself; bit 2: ascii form, else binary form
//   bytes 1-12  operations on the loaded store
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <string>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "choices.h"
#include "same_store.h"
#include "scratch_file.h"
#include "silence.h"
#include "step_machine_model.h"
#include "store/format/model_file.h"

namespace {

using kzb_fuzz::Form;
using kzb_fuzz::Input;

constexpr std::size_t operations = 12;
// A skew looks every node up some dozen times: more of them, and of the rounds of lookups, would take most of the time.
constexpr int most_skews = 1;
constexpr int most_rounds = 1;
constexpr const char* methods[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};
constexpr const char* applications[][2] = {{"PMSM", "Harmonic"},
                                           {"PMSM", "LdLq"},
                                           {"PMSM", "SimpleHarmonic"},
                                           {"PMSM", "FluxIntegralDQTheta"},
                                           {"WFSM", "Harmonic"},
                                           {"LinearSynchronous", ""},
                                           {"IM", ""},
                                           {"ALL", ""}};

// Tables of one to six axes: cyclic ones, uneven ones, ones that the input gives node by node or that have no nodes.
void put_any_table(kzb_fuzz::ModelDraft& model, const char* key, Input& in) {
    constexpr int most_values = 100;
    std::vector<int> sizes(1 + in.choice(6));
    int total = 1;
    for (int& size : sizes) {
        size = 1 + static_cast<int>(in.choice(7));
        size = total * size > most_values ? 1 : size;
        total *= size;
    }
    KZB_TABLE table;
    kzb::table_create(table, static_cast<int>(sizes.size()), sizes.data());
    for (int axis = 1; axis <= table.dim; ++axis) {
        const int rows = sizes[static_cast<std::size_t>(axis) - 1];
        const unsigned kind = in.choice(16);
        for (int i = 0; i < rows && kind != 15; ++i) {
            const double part = rows == 1 ? 0.0 : static_cast<double>(i) / (rows - 1);
            const double node = kind < 8     ? 360.0 * part
                                : kind < 12  ? 10.0 * part * part
                                : kind == 12 ? -part
                                             : in.number();
            kzb::table_set_axis_value(&table, axis, i, node);
        }
        kzb::table_set_cyclic_flag(&table, axis, kind < 4 ? 1 : 0);
    }
    const bool odd = in.byte() >= 0xf0;
    for (int i = 0; i < total; ++i) {
        table.values.data()[i] = odd ? in.number() : 0.1 * ((i * 37 + 11) % 17);
    }
    model.category("any").table(key, table);
}

void write_tables(Input& in, const std::string& path) {
    static kzb_fuzz::ModelDraft model;
    model.restart();
    for (const char* key : {"first", "second"}) {
        put_any_table(model, key, in);
    }
    model.write(path);
}

// Every table between two nodes, beside its grid, at both ends, a period on, and where there is no number, with one
// method.
void look_up_all(KZB_STORE& store, const char* method) {
    for (const KZB_CATEGORY& category : store.categories) {
        for (const KZB_TABLE& table : category.tables) {
            if (table.dim < 1 || table.dim > 6) {
                continue;
            }
            std::array<double, 6> at{};
            constexpr double parts[] = {0.3, 1.0, 0.7, 1.9, -2.0, 0.0, std::numeric_limits<double>::quiet_NaN()};
            for (const std::size_t k : {0U, 1U, 2U, 4U}) {
                for (int axis = 1; axis <= table.dim; ++axis) {
                    const double part = parts[k < 2 ? k : (k + static_cast<std::size_t>(axis)) % std::size(parts)];
                    const double first = kzb::table_get_axis_value(&table, axis, 0);
                    const int rows = table.sizes[static_cast<std::size_t>(axis) - 1];
                    const double last = kzb::table_get_axis_value(&table, axis, rows - 1);
                    at[static_cast<std::size_t>(axis) - 1] = (1.0 - part) * first + part * last;
                }
                kzb_get_table_interpolated_value(category.name.c_str(), table.keyword.c_str(), at.data(), method,
                                                 &store);
            }
        }
    }
}

// Half the range of the current phase, as a file of phase symmetry holds it.
void make_compact(KZB_STORE& store) {
    constexpr struct {
        const char* category;
        const char* key;
        int phase_axis;
    } tables[] = {{"current_flux", "flux", 2},
                  {"harmonic_inductance", "inductance", 2},
                  {"harmonic_torque", "torque_ibeta", 1},
                  {"hysloss", "hysloss1", 2},
                  {"eddyloss", "eddyloss1", 2},
                  {"distance_force", "force", 1},
                  {"distance_force", "attractive_force", 1}};
    kzb_put_int("control", "use_phase_symmetry", 1, &store);
    for (const auto& named : tables) {
        const bool second = kzb::get_int(store, "control", "motor_type") == 10007 && named.phase_axis == 1;
        const int axis = second ? 2 : named.phase_axis;
        // A file may tell of any number of rows.
        const int rows = std::min(kzb_get_table_num_rows(named.category, named.key, axis, &store), 100);
        for (int i = 0; i < rows; ++i) {
            const double node = rows == 1 ? 0.0 : -90.0 + 180.0 * i / (rows - 1);
            kzb_set_table_axis_value(named.category, named.key, axis, i, node, &store);
        }
    }
}

struct Spent {
    int skews = 0;
    int rounds = 0;
};

void operate(unsigned operation, KZB_STORE& store, Spent& spent) {
    const unsigned choice = operation / 16;
    const unsigned what = operation % 16;
    const char* const method = methods[choice % 5];
    if (((what == 9 || what == 10) && ++spent.skews > most_skews) ||
        ((what == 1 || what == 15) && ++spent.rounds > most_rounds)) {
        return;
    }
    switch (what) {
        case 0:
            break;
        case 1:
            look_up_all(store, method);
            break;
        case 2:
            make_compact(store);
            break;
        case 3:
            kzb_expand_table_considering_phase_symmetry(&store);
            break;
        case 4:
            kzb_make_LdLq(&store);
            break;
        case 5:
            kzb_make_UVW_from_dq0(&store);
            break;
        case 6:
            kzb_make_UVW_from_dq0_current(&store);
            break;
        case 7:
            kzb_make_dq0_from_UVW(&store);
            break;
        case 8:
            kzb_make_dq0_from_UVW_current(&store);
            break;
        case 9:
            kzb_apply_skew(static_cast<int>(choice % 4), static_cast<int>(choice / 4), 7.5, 3.0,
                           static_cast<int>(choice % 5), 2, "Linear", &store);
            break;
        case 10:
            kzb_apply_skew(3, 0, 5.0, 0.0, 2 + static_cast<int>(choice % 3), 0, method, &store);
            break;
        case 11:
            kzb_set_application(applications[choice % 8][0], applications[choice % 8][1], &store);
            break;
        case 12:
            kzb_put_int("control", "current_type", static_cast<int>(choice % 2), &store);
            break;
        case 13:
            kzb_put_double("control", "beta_zero", 10.0 * choice, &store);
            kzb_put_int("control", "number_of_poles", static_cast<int>(choice), &store);
            break;
        case 14:
            kzb_put_int("control", "matID1", static_cast<int>(choice), &store);
            kzb_put_double("information", "magflux", 0.1, &store);
            kzb_put_string("information", "title", "a title", &store);
            break;
        default:
            // The general path of the interpolation schemes.
            setenv("USE_GENERIC_INTERPOLATION", "1", 1);
            look_up_all(store, method);
            unsetenv("USE_GENERIC_INTERPOLATION");
            break;
    }
}

// Written, read and loaded, the store is the same. The mark of iron loss is made anew by each reading.
void require_same_again(KZB_STORE& store, Form form, const char* path) {
    kzb_put_int("information", "has_ironloss_table", 0, &store);
    const bool written = form == Form::binary ? kzb::write_binary(store, path) : kzb::write_ascii(store, path);
    KZB_STORE* again = nullptr;
    kzb_initialize(&again);
    kzb_reader(path, again);
    kzb_set_application("ALL", "", again);
    kzb_put_int("information", "has_ironloss_table", 0, again);
    if (written && kzb_fuzz::keeps_store(store, form) && !kzb_fuzz::same_store(store, *again, form)) {
        std::abort();
    }
    kzb_finish(again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    static const kzb_fuzz::ScratchPath given("given");
    static const kzb_fuzz::ScratchPath written("written");
    if (size < 1 + operations) {
        return 0;
    }
    const std::uint8_t* const rest = data + 1 + operations;
    Input in(rest, size - 1 - operations);
    if (data[0] % 4 == 3) {
        kzb_fuzz::hold(given.name(), kzb_fuzz::text_of(rest, size - 1 - operations));
    } else if (data[0] % 4 == 2) {
        write_tables(in, given.name());
    } else {
        kzb_fuzz::write_machine(in, given.name());
    }
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_reader(given.path(), store);
    kzb_set_application("ALL", "", store);
    Spent spent;
    for (std::size_t k = 1; k <= operations; ++k) {
        operate(data[k], *store, spent);
    }
    require_same_again(*store, (data[0] & 4U) != 0 ? Form::ascii : Form::binary, written.path());
    kzb_finish(store);
    return 0;
}
