// What Calc_Eq keeps of an accepted sample, and the voltage induced since the one before.
#include "models/calc_eq.h"
#include "models/first_step.h"
#include "models/history.h"

namespace kzb {

void Calc_Eq::accept() {
    PmsmStep& s = step_;
    shift_history(s.current_output, s.current_previous, s.current_older);
    shift_history(s.magnet_flux, s.magnet_flux_previous);
    shift_history(s.total_flux, s.total_flux_previous);
    shift_history(s.coil_flux, s.coil_flux_previous);
    shift_history(integral_.noload_flux, integral_.noload_flux_previous);
    count_step(s.step_count);
    shift_history(s.inductance, s.inductance_previous);
    shift_history(s.coenergy, s.coenergy_previous);
    shift_history(s.position, s.position_previous);
    shift_history(s.time, s.time_previous, s.time_older);
    shift_history(s.current_amplitude, s.current_amplitude_previous);
    shift_history(s.current_phase, s.current_phase_previous);
    shift_history(corrections_.flux_multiplier, corrections_.flux_multiplier_previous);
    shift_history(corrections_.inductance_multiplier, corrections_.inductance_multiplier_previous);
    shift_history(s.induced_voltage, s.induced_voltage_previous);
    shift_history(temperatures_.magnet_temperature, temperatures_.magnet_temperature_previous);
    s.neutral_voltage = 0.0;
    shift_history(integral_.current_dq0, integral_.current_dq0_previous);
}

double Calc_Eq::induced_voltage(int phase) {
    const double dt = step_.time - step_.time_previous;
    if (!is_phase(phase) || step_.step_count < 3 || !(dt > 0.0)) {
        return 0.0;
    }
    const auto k = static_cast<std::size_t>(phase - 1);
    switch (machine_.application) {
        case flux_integral:
            return step_.induced_voltage[k];
        case harmonic:
            return (step_.total_flux[k] - step_.total_flux_previous[k]) / dt;
        default:
            return (row_times(step_.inductance, k, step_.current) + step_.magnet_flux[k] -
                    row_times(step_.inductance_previous, k, step_.current_previous) - step_.magnet_flux_previous[k]) /
                   dt;
    }
}

}  // namespace kzb
