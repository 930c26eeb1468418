// Binding of Calc_Eq to a store: which application and tables it uses, its network, geometry, turns and skew.
//
// Nothing here reports an error: what the file does not have stays 0 or 0.0.
#include "models/calc_eq.h"
#include "models/turns.h"
#include "store/store.h"
#include "store/table_calls.h"
#include "store/transform/transforms.h"

namespace kzb {
namespace {

constexpr const char* control = "control";
constexpr int rotary_motor_type = 10000;

}  // namespace

void Calc_Eq::bind(KZB_STORE& store, int ironloss_flag) {
    store_ = &store;
    // Two stores may have the same revision: nothing that another one answered is kept.
    tables_ = PmsmTables{};
    tables_.torque.set(machine_.torque_category, machine_.torque_table);
    material_losses_ = MaterialLosses{};
    // Linear by application acts on the user parameters and the network; by motor type on everything else.
    const bool linear_application = select_application();
    read_ironloss(ironloss_flag);
    bind_user_parameters(linear_application);
    build_winding(linear_application);
    read_geometry();
    for (std::size_t k = 0; k < 3; ++k) {
        step_.resistance[k] = element_resistance(k);
    }
    read_turns();
    read_leakage();
    apply_skew();
}

bool Calc_Eq::select_application() {
    const int kind = machine_.application;
    if (kind == harmonic && has_application(*store_, "PMSM", "Harmonic")) {
        kzb::set_application(*store_, "PMSM", "Harmonic");
        select_torque_table();
        machine_.inductance_dim = tables_.harmonic_inductance.dim(*store_);
    } else if (kind == simple_harmonic && has_application(*store_, "PMSM", "SimpleHarmonic")) {
        kzb::set_application(*store_, "PMSM", "SimpleHarmonic");
        set_torque_table("torque", "torque_ibeta");
        machine_.torque_dim = tables_.torque.dim(*store_);
        machine_.inductance_dim = tables_.inductance.dim(*store_);
        machine_.minimum_current = axis_value_or_error(*store_, "inductance", "inductance", 1, 0);
    } else if (kind == ld_lq && has_application(*store_, "PMSM", "LdLq")) {
        kzb::set_application(*store_, "PMSM", "LdLq");
        read_d_flux();
    } else if (has_application(*store_, "LinearSynchronous", "")) {
        kzb::set_application(*store_, "LinearSynchronous", "");
        machine_.application = simple_harmonic;
        set_torque_table("distance_force", "force");
        machine_.torque_dim = tables_.torque.dim(*store_);
        machine_.inductance_dim = tables_.inductance.dim(*store_);
        return true;
    } else if (kind == flux_integral && has_application(*store_, "PMSM", "FluxIntegralDQTheta")) {
        kzb::set_application(*store_, "PMSM", "FluxIntegralDQTheta");
        select_torque_table();
        const int dim = tables_.id.dim(*store_);
        if (dim == 3) {
            machine_.inductance_dim = 4;
        } else if (dim == 4) {
            machine_.inductance_dim = 5;
        }
    }
    return false;
}

void Calc_Eq::set_torque_table(const char* category, const char* table) {
    machine_.torque_category = category;
    machine_.torque_table = table;
    tables_.torque.set(category, table);
}

void Calc_Eq::select_torque_table() {
    if (has_category(*store_, "harmonic_torque")) {
        set_torque_table("harmonic_torque", "torque_ibeta");
        machine_.torque_dim = 3;
    } else if (has_category(*store_, "pmsm_torque")) {
        set_torque_table("pmsm_torque", "torque_ibeta");
        machine_.torque_dim = 4;
    } else {
        machine_.torque_dim = 0;
    }
}

void Calc_Eq::read_d_flux() {
    if (has_parameter(*store_, "d_flux", "d_flux")) {
        machine_.d_flux = get_double(*store_, "d_flux", "d_flux");
    }
}

void Calc_Eq::read_ironloss(int ironloss_flag) {
    const bool materials = has_category(*store_, "hysloss") || has_category(*store_, "eddyloss");
    const bool one_table = use_old_ironloss() == 0 && has_category(*store_, "loss_table");
    losses_.ironloss_on = ironloss_flag != 0 && (materials || one_table);
}

void Calc_Eq::bind_user_parameters(bool linear_application) {
    user_parameters_.reset();
    const bool kind_has_them = machine_.application == harmonic || machine_.application == flux_integral;
    if (has_category(*store_, "user_specified_parameter_table") && kind_has_them && !linear_application) {
        user_parameters_.bind(*store_);
    }
}

void Calc_Eq::build_winding(bool linear_application) {
    winding_ = std::make_unique<WindingNetwork>();
    if (machine_.connection == connection_unset) {
        const char* const key = "Winding_Pattern_Flag";
        machine_.connection = get_int(*store_, has_parameter(*store_, control, key) ? control : "settings", key);
    }
    if (machine_.resistance_base == 0.0) {
        machine_.resistance_base = get_double(*store_, "parameter", "RU");
    }
    if (machine_.connection == connection_star || machine_.connection == connection_delta) {
        const int pattern = machine_.connection + (linear_application ? 2 : 0);
        winding_->build(pattern, machine_.resistance_base, machine_.resistance_base);
    }
}

double Calc_Eq::element_resistance(std::size_t k) const {
    return winding_ ? winding_->resistance_of(static_cast<int>(k) + 1) : 0.0;
}

void Calc_Eq::read_geometry() {
    machine_.beta_zero = get_double(*store_, control, "beta_zero");
    machine_.number_of_poles = get_int(*store_, control, "number_of_poles");
    if (get_int(*store_, control, "motor_type") != rotary_motor_type) {
        machine_.is_linear = 1;
        machine_.electrical_length = get_double(*store_, control, "electrical_length");
        machine_.angle_offset = machine_.beta_zero / 360.0 * machine_.electrical_length;
    } else {
        machine_.angle_offset = 2.0 * machine_.beta_zero / machine_.number_of_poles;
    }
}

void Calc_Eq::read_turns() {
    const double file_turns = turns_in_coil(*store_);
    corrections_.turns1 = turns_ratio(corrections_.turns1, file_turns);
    corrections_.turns2 = turns_ratio(corrections_.turns2, file_turns);
}

void Calc_Eq::read_leakage() {
    if (machine_.is_linear == 0) {
        machine_.leakage_inductance = {get_double(*store_, "parameter", "leakage_inductance_u"),
                                       get_double(*store_, "parameter", "leakage_inductance_v"),
                                       get_double(*store_, "parameter", "leakage_inductance_w")};
    }
}

void Calc_Eq::apply_skew() {
    if (skew_.type_a == 0 && skew_.type_b == 0) {
        return;
    }
    kzb::apply_skew(skew_.type_a, skew_.type_b, skew_.angle_a, skew_.angle_b, skew_.steps_a, skew_.steps_b,
                    interpolation().c_str(), *store_);
    if (machine_.application == ld_lq) {
        read_d_flux();
    }
}

}  // namespace kzb
