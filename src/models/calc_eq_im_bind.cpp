// Binding of Calc_Eq_im_transient to a store: constants or tables, network, resistances, losses, connection.
//
// Constants of the equivalent circuit, with w = 2 pi f of the rated frequency, become tables of one value each:
//
//   leakage = (X2 + X1) / w * 0.5,  magnetising = 1 / b0 / w
//   L11 = L22 = magnetising + leakage,  M12 = M21 = magnetising
//
// Nothing here reports an error: what the file does not have stays 0 or 0.0.
#include <algorithm>
#include <utility>
#include <vector>

#include "models/calc_eq_im.h"
#include "store/table_calls.h"

namespace kzb {
namespace {

constexpr const char* control = "control";
constexpr int network_pattern = 12;

// The value at the first node of every axis; 0.0 for an absent table.
double first_value(const KZB_STORE& store, const TableRef& table) {
    const int dim = table_dim(store, table.category(), table.key());
    const std::vector<int> origin(static_cast<std::size_t>(std::max(dim, 2)), 0);
    return value_or_absent(store, table.category(), table.key(), origin.data());
}

}  // namespace

void Calc_Eq_im_transient::bind(KZB_STORE& store, int ironloss_flag) {
    // First, whole: a step on a store needs it, also where memory runs out below.
    auto network = std::make_unique<WindingNetwork>();
    network->build(network_pattern, 0.0, 0.0);
    network_ = std::move(network);
    store_ = &store;
    // Two stores may have the same revision: nothing that another one answered is kept.
    tables_ = ImTables{};
    kzb::set_application(store, "IM", machine_.application.c_str());
    machine_.inductance_type = has_category(store, im_tables) ? inductance_tables : inductance_constants;
    if (machine_.inductance_type == inductance_constants) {
        make_constant_tables();
    }
    read_resistances();
    read_ironloss(ironloss_flag);
    read_control();
}

void Calc_Eq_im_transient::make_constant_tables() {
    const double r2 = get_double(*store_, im_constants, "R2");
    const double x1 = get_double(*store_, im_constants, "X1");
    const double x2 = get_double(*store_, im_constants, "X2");
    const double b0 = get_double(*store_, im_constants, "b0");
    const double w = 2.0 * pi * get_double(*store_, "information", "rated_freqency");
    const double leakage = (x2 + x1) / w * 0.5;
    const double magnetising = 1.0 / b0 / w;
    make_constant_table("R2_table", r2);
    make_constant_table("L11_table", magnetising + leakage);
    make_constant_table("L22_table", magnetising + leakage);
    make_constant_table("M12_table", magnetising);
    make_constant_table("M21_table", magnetising);
}

void Calc_Eq_im_transient::make_constant_table(const char* key, double value) {
    const int sizes[2] = {2, 2};
    if (create_table(*store_, im_tables, key, 2, sizes) != 0) {
        return;
    }
    KZB_TABLE* const table = find_table(*store_, im_tables, key);
    for (int axis = 1; axis <= 2; ++axis) {
        table_set_axis_value(table, axis, 0, ImFlatTables::lower_end);
        table_set_axis_value(table, axis, 1, ImFlatTables::upper_end);
    }
    std::fill_n(table->values.data(), table->values.size(), value);
}

void Calc_Eq_im_transient::read_resistances() {
    resistances_.Rr_base = first_value(*store_, tables_.r2);
    resistances_.Rr = resistances_.Rr_base;
    if (resistances_.Rs_DC == 0.0) {
        resistances_.Rs_DC = get_double(*store_, im_constants, "R1");
        resistances_.Rs = resistances_.Rs_DC;
    }
}

void Calc_Eq_im_transient::read_ironloss(int ironloss_flag) {
    const bool own_table = tables_.ironloss.dim(*store_) > 0;
    const bool one_table = use_old_ironloss() == 0 && has_category(*store_, "loss_table");
    machine_.ironloss_enabled = ironloss_flag != 0 && (own_table || one_table);
}

void Calc_Eq_im_transient::read_control() {
    machine_.number_of_poles = get_int(*store_, control, "number_of_poles");
    if (machine_.connection_type < 0) {
        machine_.connection_type = get_int(*store_, control, "Winding_Pattern_Flag");
    }
    corrections_.fold(turns_in_coil(*store_));
}

}  // namespace kzb
