// What an opened calculator reads from category "control", the options, and what the model takes from the store.
#include <cmath>

#include "bench/reference/im.h"

namespace kzb_reference {

namespace {

constexpr const char* tables = "InductionParam_HigherAccuracy";

double control_value(const char* key, double absent, const Store& store) {
    return kzb_has_parameter("control", key, store) != 0 ? kzb_get_double("control", key, store) : absent;
}

// Two axes of two nodes each, -100.0 and 100.0, the four values the constant.
void make_constant_table(const char* key, double value, Store& store) {
    const int sizes[2] = {2, 2};
    Table& table = kzb_create_table(tables, key, 2, sizes, store);
    for (int axis = 1; axis <= 2; ++axis) {
        table_set_axis_value(table, axis, 0, -100.0);
        table_set_axis_value(table, axis, 1, 100.0);
    }
    for (int i = 0; i < 2; ++i) {
        for (int j = 0; j < 2; ++j) {
            const int index[2] = {i, j};
            table_store_at(*find_table(tables, key, store), index, value);
        }
    }
}

}  // namespace

Induction::Induction(Store& store, int calc_mode, Lookup lookup)
    : store_(store), lookup_(lookup), calc_mode_(calc_mode) {
    // the primary coil's own values take the place of the common coil's
    base_coil_temperature = control_value("base_1st_coil_temperature", 293.15, store);
    coil_temperature_coefficient = control_value("coef_1st_coil_temperature", 1.0, store);
    base_secondary_coil_temperature = control_value("base_2nd_coil_temperature", 293.15, store);
    secondary_coil_coefficient = control_value("coef_2nd_coil_temperature", 1.0, store);
}

int Induction::check_inductance_type() const {
    return inductance_type == -1 ? kzb_has_category(tables, store_) : inductance_type;
}

int Induction::set_secondary_resistance(double value) {
    if (value <= 0.0) {
        return 180042;
    }
    if (check_inductance_type() == 1) {
        return 180060;
    }
    Rr_base = value;
    Rr = value;
    if (temperature_correction) {
        Rr *= 1.0 +
              heat_term(secondary_coil_coefficient, 1e-6, secondary_coil_temperature, base_secondary_coil_temperature);
    }
    return 0;
}

int Induction::set_slip_frequency(double value) {
    if (check_inductance_type() != 1) {
        return 180061;
    }
    slip_omega = 2.0 * M_PI * value;
    return 0;
}

int Induction::set_step_size(double value) {
    if (value < 0.0) {
        return 180062;
    }
    step_size_ = value;
    return 0;
}

int Induction::set_ironloss_calc(bool old_formula) {
    if (old_formula) {
        use_old_ironloss = 1;
    }
    const bool available = kzb_get_table_dim(tables, "ironloss_table", store_) > 0 ||
                           kzb_has_parameter("loss_table", "iron_loss", store_) != 0;
    // a machine of tables needs the data
    if (check_inductance_type() != 1 && kzb_get_double("InductionParam", "g0", store_) != 0.0) {
        ironloss_flag_ = true;
        return 0;
    }
    if (!available) {
        return 180040;
    }
    ironloss_flag_ = true;
    return 0;
}

int Induction::set_user_copperloss_calc() {
    if (kzb_has_parameter("equivalent_resistance_table", "copper_loss", store_) == 0) {
        return 180065;
    }
    user_copperloss_flag_ = true;
    return 0;
}

bool Induction::in_use() const {
    if (kzb_has_parameter("equivalent_resistance_table", "copper_loss", store_) != 0 && user_copper_loss_enabled) {
        return true;
    }
    return kzb_has_parameter("loss_table", "iron_loss", store_) != 0 && ironloss_enabled;
}

int Induction::set_dc_voltage(double value) {
    if (!in_use()) {
        return 180064;
    }
    dc_voltage = value;
    return 0;
}

int Induction::set_carrier_frequency(double value) {
    if (!in_use()) {
        return 180064;
    }
    carrier_frequency = value;
    return 0;
}

void Induction::make_constant_tables() {
    const double r2 = kzb_get_double("InductionParam", "R2", store_);
    const double x1 = kzb_get_double("InductionParam", "X1", store_);
    const double x2 = kzb_get_double("InductionParam", "X2", store_);
    const double b0 = kzb_get_double("InductionParam", "b0", store_);
    const double rated = kzb_get_double("information", "rated_freqency", store_);
    const double w = 2.0 * M_PI * rated;
    const double leakage = (x2 + x1) / w * 0.5;
    const double magnetising = 1.0 / b0 / w;
    make_constant_table("R2_table", r2, store_);
    make_constant_table("L11_table", magnetising + leakage, store_);
    make_constant_table("L22_table", magnetising + leakage, store_);
    make_constant_table("M12_table", magnetising, store_);
    make_constant_table("M21_table", magnetising, store_);
}

void Induction::set_data() {
    inductance_type = kzb_has_category(tables, store_);
    if (inductance_type == 0) {
        make_constant_tables();
    }
    const Table* const r2 = find_table(tables, "R2_table", store_);
    const int first[5] = {};
    Rr_base = r2 == nullptr ? 0.0 : table_value_at(*r2, first);
    Rr = Rr_base;
    if (Rs_DC == 0.0) {
        Rs_DC = kzb_get_double("InductionParam", "R1", store_);
        Rs = Rs_DC;
    }
    ironloss_enabled = false;
    if (ironloss_flag_) {
        const int dim = kzb_get_table_dim(tables, "ironloss_table", store_);
        if (use_old_ironloss == 0) {
            ironloss_enabled = dim > 0 || kzb_has_category("loss_table", store_) != 0;
        } else {
            ironloss_enabled = dim >= 1;
        }
    }
    number_of_poles = kzb_get_int("control", "number_of_poles", store_);
    if (connection_type == -1) {
        connection_type = kzb_get_int("control", "Winding_Pattern_Flag", store_);
    }
    user_copper_loss_enabled = user_copperloss_flag_;
}

}  // namespace kzb_reference
