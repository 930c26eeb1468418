// Parameter update of Calc_Eq_im_transient, at the head of every step: inductances and resistances of this step.
//
// Tables stand over (slip frequency Hz, peak primary current A); loss tables over (peak primary current, |slip
// frequency|, |speed| Hz, DC voltage, carrier frequency). A lookup that fails is not noticed here: what it yields runs
// through the arithmetic.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

#include "models/calc_eq_im.h"
#include "models/calc_eq_im_parameter_file.h"
#include "models/first_step.h"

namespace kzb {

void Calc_Eq_im_transient::start_step(double time, double displacement) {
    step_.time = time;
    step_.theta = theta_of(displacement);
    if (std::bit_cast<std::uint64_t>(step_.theta) != std::bit_cast<std::uint64_t>(at_theta_.angle)) {
        at_theta_ = RotorAngles(step_.theta);
    }
}

void Calc_Eq_im_transient::update_parameters() {
    if (read_parameter_file_) {
        kzb::read_parameter_file("./parameters.txt", resistances_, step_.inductances);
    } else {
        update_from_tables();
    }
    resistances_.Rs = resistances_.Rs_DC;
    resistances_.Rr = resistances_.Rr_base;
    if (temperature_correction()) {
        resistances_.Rs *= coil_factor();
        resistances_.Rr *= secondary_factor();
    }
    resistances_.R_equivalent = equivalent_resistance();
}

void Calc_Eq_im_transient::update_from_tables() {
    if (machine_.inductance_type == inductance_constants) {
        hold_secondary_resistance();
    }
    const double point[2] = {slip_frequency(), step_.primary_current};
    if (!tables_.last_point.repeat(*store_, point)) {
        look_up_parameters(point);
    }
    // Once per call: a sample with tables, which is observed and then derived, advances the angle twice, as
    // established.
    step_.flux_angle += (electrical_speed() + step_.slip_omega) * (step_.time - step_.time_prev);
}

void Calc_Eq_im_transient::look_up_parameters(const double* point) {
    const Scheme scheme = method().scheme;
    ImFlatTables::Values values{};
    if (machine_.inductance_type != inductance_constants) {
        look_up_tables(point, values);
    } else if (!tables_.flat.look_up(*store_, scheme, point, values)) {
        tables_.flat.begin(*store_);
        look_up_tables(point, values);
        tables_.flat.end(*store_, scheme, point, tables_.of_point(), values);
    }
    ImInductances& l = step_.inductances;
    l.m_Ls = values[0];
    l.m_Msr = values[1];
    l.m_Mrs = values[2];
    l.m_Lr = values[3];
    resistances_.Rr_base = values[4];
}

void Calc_Eq_im_transient::look_up_tables(const double* point, ImFlatTables::Values& values) {
    tables_.last_point.begin(*store_);
    tables_.siblings.look_up(*store_, method(), tables_.of_point(), point, 2, values);
    // A lookup that formed no value has printed why.
    const bool formed =
        std::all_of(values.begin(), values.end(), [](double value) { return std::fabs(value) < 1e100; });
    tables_.last_point.end(*store_, point, formed && tables_.plain(*store_));
}

// With constants the table follows the resistance, so that one that the caller has set stays in force. Values alone
// change: nothing that was resolved or remembered of the table depends on them.
void Calc_Eq_im_transient::hold_secondary_resistance() {
    if (KZB_TABLE* const table = tables_.secondary_resistance(*store_)) {
        std::fill_n(table->values.data(), table->values.size(), resistances_.Rr_base);
    }
}

double Calc_Eq_im_transient::secondary_factor() const {
    return 1.0 + heat_term(temperatures_.secondary_coil_coefficient, 1e-6, temperatures_.secondary_coil_temperature,
                           temperatures_.base_secondary_coil_temperature);
}

void Calc_Eq_im_transient::set_secondary_resistance(double ohm) {
    resistances_.Rr_base = ohm;
    resistances_.Rr = ohm;
    if (temperature_correction()) {
        resistances_.Rr *= secondary_factor();
    }
}

double Calc_Eq_im_transient::equivalent_resistance() {
    if (!machine_.user_copper_loss_enabled || !tables_.has_equivalent_resistance(*store_)) {
        return 0.0;
    }
    const SixCurrents& i = step_.current_accepted;
    const double point[5] = {peak_of(clarke(i[0], i[1], i[2])), std::fabs(slip_frequency()),
                             std::fabs(electrical_speed() / 6.283185307179586), machine_.dc_voltage,
                             machine_.carrier_frequency};
    const double resistance = tables_.copper_loss.at(*store_, method(), point, 5);
    return temperature_correction() ? resistance * coil_factor() : resistance;
}

void Calc_Eq_im_transient::apply_first_step_rule() {
    if (step_.step_count != 1) {
        return;
    }
    forget_unset_start(step_.initial_set, step_.current_accepted, step_.initial_time_set, step_.time_prev);
    step_.theta_prev = step_.theta;
    at_theta_prev_ = at_theta_;
    step_.flux_angle = 0.0;
}

}  // namespace kzb
