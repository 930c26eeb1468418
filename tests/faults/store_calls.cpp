#include <utility>

#include "faults/calls.h"

namespace kzb_test {
namespace {

constexpr double no_value = 1.7976931348623157e308;
constexpr double no_flag = 2147483647.0;

double present(const char* text) {
    return text == nullptr ? 0.0 : 1.0;
}
double present(const KZB_INFORMATION& row) {
    return present(row.first);
}

// A record of a list and the table in it, as the generic model has them.
const char* const record = "flux_list;flux_table";
const int first[] = {0, 0};
const int fresh[] = {0, 7};
const int rows[] = {2, 3};
const int at[] = {1, 1, 0, 0};
const int origin[] = {0, 0, 0, 0, 0};
const double point[] = {10.0, 20.0, 30.0, 1.0};
const double generic_point[] = {10.0, 20.0, 30.0, 1.0, 0.0};
// Longer than what a text keeps in its own record, so that it takes memory.
const char* const long_name = "a name that is far too long to be kept within its own record";

class List {
  public:
    void add(const char* name, StoreModel model, StoreChange change, std::vector<double> failures,
             std::function<double(KZB_STORE*)> call) {
        calls_.push_back({name, model, change, std::move(failures), std::move(call)});
    }
    std::vector<StoreCall> take() { return std::move(calls_); }

  private:
    std::vector<StoreCall> calls_;
};

#define KZB_ASK(model, name, ...) \
    list.add(#name, StoreModel::model, StoreChange::none, {0.0}, [=](KZB_STORE* s) -> double { return __VA_ARGS__; })
#define KZB_DO(model, name, change, failure, ...)                      \
    list.add(#name, StoreModel::model, StoreChange::change, {failure}, \
             [=](KZB_STORE* s) -> double { return __VA_ARGS__; })

void add_queries(List& list) {
    KZB_ASK(rotary, kzb_get_time, kzb_get_time(s, 3));
    KZB_ASK(rotary, kzb_get_filehandler_version, s == nullptr ? 0.0 : present(kzb_get_filehandler_version()));
    KZB_ASK(rotary, kzb_has_category, kzb_has_category("control", s));
    KZB_ASK(rotary, kzb_has_parameter, kzb_has_parameter("control", "motor_type", s));
    KZB_ASK(rotary, kzb_get_category_num, kzb_get_category_num(s));
    KZB_ASK(rotary, kzb_get_category_name, present(kzb_get_category_name(0, s)));
    KZB_ASK(rotary, kzb_get_int, kzb_get_int("control", "motor_type", s));
    KZB_ASK(rotary, kzb_get_double, kzb_get_double("parameter", "RU", s));
    KZB_ASK(rotary, kzb_get_string, present(kzb_get_string("information", "title", s)));
    KZB_ASK(rotary, kzb_get_int_num, kzb_get_int_num("control", s));
    KZB_ASK(rotary, kzb_get_double_num, kzb_get_double_num("parameter", s));
    KZB_ASK(rotary, kzb_get_string_num, kzb_get_string_num("information", s));
    KZB_ASK(rotary, kzb_get_table_num, kzb_get_table_num("current_flux", s));
    KZB_ASK(rotary, kzb_get_int_keyword, present(kzb_get_int_keyword("control", 0, s)));
    KZB_ASK(rotary, kzb_get_double_keyword, present(kzb_get_double_keyword("parameter", 0, s)));
    KZB_ASK(rotary, kzb_get_string_keyword, present(kzb_get_string_keyword("information", 0, s)));
    KZB_ASK(rotary, kzb_get_table_keyword, present(kzb_get_table_keyword("current_flux", 0, s)));
    KZB_ASK(rotary, kzb_get_table_dim, kzb_get_table_dim("current_flux", "flux", s));
    KZB_ASK(rotary, kzb_get_table_num_rows, kzb_get_table_num_rows("current_flux", "flux", 1, s));
    KZB_ASK(rotary, kzb_get_table_axis_value, kzb_get_table_axis_value("current_flux", "flux", 1, 1, s));
    KZB_ASK(rotary, kzb_get_table_value, kzb_get_table_value("current_flux", "flux", at, s));
    KZB_ASK(rotary, kzb_get_table_cyclic_flag, kzb_get_table_cyclic_flag("current_flux", "flux", 1, s));
    KZB_ASK(rotary, kzb_has_error, kzb_has_error(s));
    KZB_ASK(rotary, kzb_has_warning, kzb_has_warning(s));
    KZB_ASK(rotary, kzb_has_application, kzb_has_application("PMSM", "Harmonic", s));
    KZB_ASK(rotary, kzb_get_application_num, kzb_get_application_num(s));
    KZB_ASK(rotary, kzb_get_application, present(kzb_get_application(s, 0)));
    KZB_ASK(rotary, kzb_get_motor_information_num, kzb_get_motor_information_num(s));
    KZB_ASK(rotary, kzb_get_motor_information, present(kzb_get_motor_information(s, 0)));
    KZB_ASK(rotary, kzb_get_basic_information_num, kzb_get_basic_information_num(s));
    KZB_ASK(rotary, kzb_get_basic_information, present(kzb_get_basic_information(s, 0)));
    for (const char* const method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
        list.add(
            "kzb_get_table_interpolated_value", StoreModel::rotary, StoreChange::none, {no_value},
            [=](KZB_STORE* s) { return kzb_get_table_interpolated_value("current_flux", "flux", point, method, s); });
    }
}

void add_subcategory_queries(List& list) {
    KZB_ASK(generic, kzb_has_subcategory, kzb_has_subcategory(record, first, s));
    KZB_ASK(generic, kzb_has_subcategory_parameter, kzb_has_subcategory_parameter(record, first, "table", s));
    KZB_ASK(generic, kzb_get_subcategory_num, kzb_get_subcategory_num(record, first, s));
    KZB_ASK(generic, kzb_get_child_subcategory_num,
            kzb_get_child_subcategory_num("element_type_list;element_type", first, s));
    KZB_ASK(generic, kzb_get_child_subcategory_name,
            present(kzb_get_child_subcategory_name("element_type_list;element_type", first, 0, s)));
    KZB_ASK(generic, kzb_get_subcategory_int,
            kzb_get_subcategory_int("element_type_list;element_type", first, "type", s));
    KZB_ASK(generic, kzb_get_subcategory_double,
            kzb_get_subcategory_double("element_type_list;element_type", first, "resistance", s));
    KZB_ASK(generic, kzb_get_subcategory_string,
            present(kzb_get_subcategory_string("element_type_list;element_type", first, "name", s)));
    KZB_ASK(generic, kzb_get_subcategory_table_dim, kzb_get_subcategory_table_dim(record, first, "table", s));
    KZB_ASK(generic, kzb_get_subcategory_table_num_rows,
            kzb_get_subcategory_table_num_rows(record, first, "table", 1, s));
    KZB_ASK(generic, kzb_get_subcategory_table_axis_value,
            kzb_get_subcategory_table_axis_value(record, first, "table", 1, 1, s));
    KZB_ASK(generic, kzb_get_subcategory_table_value,
            kzb_get_subcategory_table_value(record, first, "table", origin, s));
    list.add("kzb_get_subcategory_table_cyclic_flag", StoreModel::generic, StoreChange::none, {no_flag},
             [](KZB_STORE* s) { return kzb_get_subcategory_table_cyclic_flag(record, first, "table", 1, s); });
    list.add("kzb_get_subcategory_table_interpolated_value", StoreModel::generic, StoreChange::none, {no_value},
             [](KZB_STORE* s) {
                 return kzb_get_subcategory_table_interpolated_value(record, first, "table", generic_point, "Spline",
                                                                     s);
             });
}

void add_edits(List& list) {
    for (const char* const name : {"control", long_name}) {
        KZB_DO(rotary, kzb_put_int, whole, 1.0, kzb_put_int(name, long_name, 1, s));
        KZB_DO(rotary, kzb_put_double, whole, 1.0, kzb_put_double(name, long_name, 1.0, s));
        KZB_DO(rotary, kzb_put_string, whole, 1.0, kzb_put_string(name, long_name, long_name, s));
        KZB_DO(rotary, kzb_create_table, partial, 1.0, kzb_create_table(name, long_name, 2, rows, s));
    }
    KZB_DO(rotary, kzb_put_string, whole, 1.0, kzb_put_string("information", "title", long_name, s));
    KZB_DO(rotary, kzb_create_table, partial, 1.0, kzb_create_table("current_flux", "flux", 2, rows, s));
    KZB_DO(rotary, kzb_set_table_axis_value, whole, 1.0,
           kzb_set_table_axis_value("current_flux", "flux", 1, 1, 3.5, s));
    KZB_DO(rotary, kzb_set_table_value, whole, 1.0, kzb_set_table_value("current_flux", "flux", at, 3.5, s));
    KZB_DO(rotary, kzb_set_table_cyclic_flag, whole, 1.0, kzb_set_table_cyclic_flag("current_flux", "flux", 1, 1, s));
    KZB_DO(generic, kzb_put_subcategory_int, whole, 1.0, kzb_put_subcategory_int(record, fresh, long_name, 1, s));
    KZB_DO(generic, kzb_put_subcategory_double, whole, 1.0,
           kzb_put_subcategory_double(record, fresh, long_name, 1.0, s));
    KZB_DO(generic, kzb_put_subcategory_string, whole, 1.0,
           kzb_put_subcategory_string(record, fresh, long_name, long_name, s));
    KZB_DO(generic, kzb_create_subcategory_table, partial, 1.0,
           kzb_create_subcategory_table(record, fresh, long_name, 2, rows, s));
    KZB_DO(generic, kzb_set_subcategory_table_axis_value, whole, 1.0,
           kzb_set_subcategory_table_axis_value(record, first, "table", 1, 1, 3.5, s));
    KZB_DO(generic, kzb_set_subcategory_table_value, whole, 1.0,
           kzb_set_subcategory_table_value(record, first, "table", origin, 3.5, s));
    KZB_DO(generic, kzb_set_subcategory_table_cyclic_flag, whole, 1.0,
           kzb_set_subcategory_table_cyclic_flag(record, first, "table", 1, 1, s));
}

void add_errors(List& list) {
    KZB_ASK(rotary, kzb_reset_error, (kzb_reset_error(s), 0.0));
    KZB_ASK(rotary, kzb_reset_warning, (kzb_reset_warning(s), 0.0));
    list.add("kzb_print_error_short_message", StoreModel::rotary, StoreChange::none, {},
             [](KZB_STORE*) { return kzb_print_error_short_message(90001), 0.0; });
    list.add("kzb_print_warning_short_message", StoreModel::rotary, StoreChange::none, {},
             [](KZB_STORE*) { return kzb_print_warning_short_message(90033), 0.0; });
}

void add_transforms(List& list) {
    KZB_DO(rotary, kzb_make_dq0_from_UVW, partial, 0.0, kzb_make_dq0_from_UVW(s));
    KZB_DO(rotary, kzb_make_dq0_from_UVW_current, partial, 0.0, kzb_make_dq0_from_UVW_current(s));
    KZB_DO(rotary, kzb_make_UVW_from_dq0, partial, 0.0, kzb_make_UVW_from_dq0(s));
    KZB_DO(rotary, kzb_make_UVW_from_dq0_current, partial, 0.0, kzb_make_UVW_from_dq0_current(s));
    KZB_DO(rotary, kzb_make_LdLq, partial, 0.0, kzb_make_LdLq(s));
    KZB_DO(rotary, kzb_apply_skew, partial, 1.0, kzb_apply_skew(3, 0, 5.0, 0.0, 2, 0, "Linear", s));
    KZB_DO(rotary, kzb_expand_table_considering_phase_symmetry, partial, 1.0,
           kzb_expand_table_considering_phase_symmetry(s));
}

void add_files(List& list, const CallFiles& files) {
    KZB_DO(rotary, kzb_reader, partial, 1.0, kzb_reader(files.model.c_str(), s));
    list.add("kzb_writer", StoreModel::rotary, StoreChange::none, {},
             [=](KZB_STORE* s) { return kzb_writer(files.document.c_str(), s), 0.0; });
    list.add("kzb_set_application", StoreModel::rotary, StoreChange::none, {},
             [](KZB_STORE* s) { return kzb_set_application("ALL", long_name, s), 0.0; });
    KZB_DO(rotary, kzb_read_correction_file, partial, 1.0, kzb_read_correction_file(files.correction.c_str(), s));
    KZB_DO(rotary, kzb_apply_correction, none, 1.0, kzb_apply_correction(files.correction.c_str(), s));
    KZB_DO(rotary, kzb_add_loss_table, whole, 1.0, kzb_add_loss_table(files.losses.c_str(), s));
    KZB_DO(generic, kzb_add_loss_table, whole, 1.0, kzb_add_loss_table(files.generic_losses.c_str(), s));
    KZB_DO(rotary, kzb_add_equivalent_copper_loss_resistance_table, whole, 1.0,
           kzb_add_equivalent_copper_loss_resistance_table(files.copper_losses.c_str(), s));
    KZB_DO(generic, kzb_export_information, none, 1.0, kzb_export_information(s, files.document.c_str()));
}

#undef KZB_ASK
#undef KZB_DO

}  // namespace

std::vector<StoreCall> store_calls(const CallFiles& files) {
    List list;
    add_queries(list);
    add_subcategory_queries(list);
    add_edits(list);
    add_errors(list);
    add_transforms(list);
    add_files(list, files);
    return list.take();
}

}  // namespace kzb_test
