// The exported calls of the store, each with arguments that a fuzz input drew before.
//
// All arguments of a call are drawn in one order, so that an input means the same whatever the compiler.
#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <iterator>
#include <string>

#include "KZBCalculator/kzb_store.h"
#include "choices.h"

namespace kzb_fuzz {

// Arrays that a call reads by a count of its own: as many as a table of any file here has axes, or a path has elements.
constexpr std::size_t room = 64;

struct Arguments {
    KZB_STORE* store = nullptr;
    const char* category = nullptr;
    const char* key = nullptr;
    const char* path = nullptr;  // of a subcategory
    const char* file = nullptr;
    const char* text = nullptr;
    const char* method = nullptr;
    const char* motor = nullptr;
    const char* application = nullptr;
    const int* path_indices = nullptr;
    const int* table_indices = nullptr;
    const int* sizes = nullptr;
    const double* coordinates = nullptr;
    int dim = 0;
    int index = 0;
    int axis = 0;
    int integer = 0;
    double number = 0.0;
    double other_number = 0.0;
};

using StoreCall = void (*)(const Arguments&);

// Cheap ones.
inline constexpr StoreCall plain_calls[] = {
    [](const Arguments& a) { kzb_get_time(a.store, a.index); },
    [](const Arguments& a) { kzb_has_category(a.category, a.store); },
    [](const Arguments& a) { kzb_has_parameter(a.category, a.key, a.store); },
    [](const Arguments& a) { kzb_get_category_num(a.store); },
    [](const Arguments& a) { kzb_get_category_name(a.index, a.store); },
    [](const Arguments& a) { kzb_get_int(a.category, a.key, a.store); },
    [](const Arguments& a) { kzb_get_double(a.category, a.key, a.store); },
    [](const Arguments& a) { kzb_get_string(a.category, a.key, a.store); },
    [](const Arguments& a) { kzb_get_int_num(a.category, a.store); },
    [](const Arguments& a) { kzb_get_double_num(a.category, a.store); },
    [](const Arguments& a) { kzb_get_string_num(a.category, a.store); },
    [](const Arguments& a) { kzb_get_table_num(a.category, a.store); },
    [](const Arguments& a) { kzb_get_int_keyword(a.category, a.index, a.store); },
    [](const Arguments& a) { kzb_get_double_keyword(a.category, a.index, a.store); },
    [](const Arguments& a) { kzb_get_string_keyword(a.category, a.index, a.store); },
    [](const Arguments& a) { kzb_get_table_keyword(a.category, a.index, a.store); },
    [](const Arguments& a) { kzb_get_table_dim(a.category, a.key, a.store); },
    [](const Arguments& a) { kzb_get_table_num_rows(a.category, a.key, a.axis, a.store); },
    [](const Arguments& a) { kzb_get_table_axis_value(a.category, a.key, a.axis, a.index, a.store); },
    [](const Arguments& a) { kzb_set_table_axis_value(a.category, a.key, a.axis, a.index, a.number, a.store); },
    [](const Arguments& a) { kzb_get_table_value(a.category, a.key, a.table_indices, a.store); },
    [](const Arguments& a) { kzb_set_table_value(a.category, a.key, a.table_indices, a.number, a.store); },
    [](const Arguments& a) { kzb_get_table_cyclic_flag(a.category, a.key, a.axis, a.store); },
    [](const Arguments& a) { kzb_set_table_cyclic_flag(a.category, a.key, a.axis, a.integer, a.store); },
    [](const Arguments& a) { kzb_get_table_interpolated_value(a.category, a.key, a.coordinates, a.method, a.store); },
    [](const Arguments& a) { kzb_has_subcategory(a.path, a.path_indices, a.store); },
    [](const Arguments& a) { kzb_has_subcategory_parameter(a.path, a.path_indices, a.key, a.store); },
    [](const Arguments& a) { kzb_get_subcategory_num(a.path, a.path_indices, a.store); },
    [](const Arguments& a) { kzb_get_child_subcategory_num(a.path, a.path_indices, a.store); },
    [](const Arguments& a) { kzb_get_child_subcategory_name(a.path, a.path_indices, a.index, a.store); },
    [](const Arguments& a) { kzb_get_subcategory_int(a.path, a.path_indices, a.key, a.store); },
    [](const Arguments& a) { kzb_get_subcategory_double(a.path, a.path_indices, a.key, a.store); },
    [](const Arguments& a) { kzb_get_subcategory_string(a.path, a.path_indices, a.key, a.store); },
    [](const Arguments& a) { kzb_put_subcategory_int(a.path, a.path_indices, a.key, a.integer, a.store); },
    [](const Arguments& a) { kzb_put_subcategory_double(a.path, a.path_indices, a.key, a.number, a.store); },
    [](const Arguments& a) { kzb_put_subcategory_string(a.path, a.path_indices, a.key, a.text, a.store); },
    [](const Arguments& a) { kzb_create_subcategory_table(a.path, a.path_indices, a.key, a.dim, a.sizes, a.store); },
    [](const Arguments& a) { kzb_get_subcategory_table_dim(a.path, a.path_indices, a.key, a.store); },
    [](const Arguments& a) { kzb_get_subcategory_table_num_rows(a.path, a.path_indices, a.key, a.axis, a.store); },
    [](const Arguments& a) {
        kzb_get_subcategory_table_axis_value(a.path, a.path_indices, a.key, a.axis, a.index, a.store);
    },
    [](const Arguments& a) {
        kzb_set_subcategory_table_axis_value(a.path, a.path_indices, a.key, a.axis, a.index, a.number, a.store);
    },
    [](const Arguments& a) {
        kzb_get_subcategory_table_value(a.path, a.path_indices, a.key, a.table_indices, a.store);
    },
    [](const Arguments& a) {
        kzb_set_subcategory_table_value(a.path, a.path_indices, a.key, a.table_indices, a.number, a.store);
    },
    [](const Arguments& a) { kzb_get_subcategory_table_cyclic_flag(a.path, a.path_indices, a.key, a.axis, a.store); },
    [](const Arguments& a) {
        kzb_set_subcategory_table_cyclic_flag(a.path, a.path_indices, a.key, a.axis, a.integer, a.store);
    },
    [](const Arguments& a) {
        kzb_get_subcategory_table_interpolated_value(a.path, a.path_indices, a.key, a.coordinates, a.method, a.store);
    },
    [](const Arguments& a) { kzb_has_error(a.store); },
    [](const Arguments& a) { kzb_reset_error(a.store); },
    [](const Arguments& a) { kzb_print_error_short_message(a.integer); },
    [](const Arguments& a) { kzb_has_warning(a.store); },
    [](const Arguments& a) { kzb_reset_warning(a.store); },
    [](const Arguments& a) { kzb_print_warning_short_message(a.integer); },
    [](const Arguments& a) { kzb_has_application(a.motor, a.application, a.store); },
    [](const Arguments& a) { kzb_get_application_num(a.store); },
    [](const Arguments& a) { kzb_get_application(a.store, a.index); },
    [](const Arguments& a) { kzb_get_motor_information_num(a.store); },
    [](const Arguments& a) { kzb_get_motor_information(a.store, a.index); },
    [](const Arguments& a) { kzb_get_basic_information_num(a.store); },
    [](const Arguments& a) { kzb_get_basic_information(a.store, a.index); },
    [](const Arguments& a) { kzb_apply_correction(a.file, a.store); },
    [](const Arguments& a) { kzb_writer(a.file, a.store); },
};

// Those that read or write a file or go through whole tables.
inline constexpr StoreCall costly_calls[] = {
    [](const Arguments& a) { kzb_reader(a.file, a.store); },
    [](const Arguments& a) { kzb_set_application(a.motor, a.application, a.store); },
    [](const Arguments& a) { kzb_make_dq0_from_UVW(a.store); },
    [](const Arguments& a) { kzb_make_dq0_from_UVW_current(a.store); },
    [](const Arguments& a) { kzb_make_UVW_from_dq0(a.store); },
    [](const Arguments& a) { kzb_make_UVW_from_dq0_current(a.store); },
    [](const Arguments& a) { kzb_make_LdLq(a.store); },
    [](const Arguments& a) {
        kzb_apply_skew(a.integer, a.axis, a.number, a.other_number, a.index, a.dim, a.method, a.store);
    },
    [](const Arguments& a) { kzb_expand_table_considering_phase_symmetry(a.store); },
    [](const Arguments& a) { kzb_read_correction_file(a.file, a.store); },
    [](const Arguments& a) { kzb_add_loss_table(a.file, a.store); },
    [](const Arguments& a) { kzb_add_equivalent_copper_loss_resistance_table(a.file, a.store); },
    [](const Arguments& a) { kzb_export_information(a.store, a.file); },
};

}  // namespace kzb_fuzz
