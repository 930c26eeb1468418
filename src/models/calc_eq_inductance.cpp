// Inductance matrix of Calc_Eq. Tables store it by columns: element t stands at row t mod 3, column t div 3.
//
//   kind 1   L = k_inductance * table(previous current, position, t)
//   kind 0   L = k_inductance * table(amplitude, position, t); a column with a negative current sees the table half
//            a period on, and below the smallest amplitude of the table both are blended
//   kind 2   L[r][c] = (2/3) (Ld cos A_r cos A_c + Lq sin A_r sin A_c)
#include "models/calc_eq.h"

namespace kzb {
namespace {

constexpr int element_count = 9;

void store_by_columns(const double* elements, double factor, Matrix3& matrix) {
    for (std::size_t t = 0; t < element_count; ++t) {
        matrix[t % 3 * 3 + t / 3] = factor * elements[t];
    }
}

}  // namespace

void Calc_Eq::update_inductance(const PhaseAngles& at, double angle) {
    switch (machine_.application) {
        case simple_harmonic:
            return update_inductance_simple(angle);
        case harmonic:
            return update_inductance_harmonic(angle);
        case ld_lq:
            return update_inductance_ld_lq(at);
        default:
            return;
    }
}

void Calc_Eq::update_inductance_harmonic(double angle) {
    const double turns = corrections_.turns2;
    const Phases& i = step_.current_previous;
    double elements[element_count];
    if (machine_.inductance_dim == 4) {
        const double point[3] = {step_.current_amplitude_previous * turns, step_.current_phase_previous, angle};
        tables_.harmonic_inductance.components(*store_, method(), point, 3, element_count, elements);
    } else {
        const double point[4] = {turns * i[0], turns * i[1], turns * i[2], angle};
        tables_.harmonic_inductance.components(*store_, method(), point, 4, element_count, elements);
    }
    store_by_columns(elements, corrections_.inductance_multiplier, step_.inductance);
}

void Calc_Eq::update_inductance_simple(double angle) {
    const double amplitude = step_.current_amplitude_previous * corrections_.turns2;
    const double period =
        machine_.is_linear != 0 ? machine_.electrical_length : 360.0 / (machine_.number_of_poles * 0.5);
    const double shifted = angle + period / 2.0;
    double elements[element_count];
    if (machine_.minimum_current > amplitude) {
        blend_inductance(amplitude, angle, shifted, elements);
    } else {
        choose_inductance(amplitude, angle, shifted, elements);
    }
    // The multiplier acts here as on the other kinds; the coenergy torque takes its correction out again.
    store_by_columns(elements, corrections_.inductance_multiplier, step_.inductance);
}

// Below the smallest amplitude of the table: the mean of both half periods, weighted by the column's current.
void Calc_Eq::blend_inductance(double amplitude, double angle, double shifted, double* elements) {
    const double minimum = machine_.minimum_current;
    double here[element_count];
    double there[element_count];
    if (store_->debug_lines) {
        // One line per lookup, element by element.
        for (int t = 0; t < element_count; ++t) {
            here[t] = inductance_element(amplitude, angle, t);
            there[t] = inductance_element(amplitude, shifted, t);
        }
    } else {
        inductance_elements(amplitude, angle, element_count, here);
        inductance_elements(amplitude, shifted, element_count, there);
    }
    for (std::size_t t = 0; t < element_count; ++t) {
        const double signed_amplitude = step_.current_previous[t / 3] < 0.0 ? -amplitude : amplitude;
        const double w = (minimum + signed_amplitude) / (2.0 * minimum);
        elements[t] = w * here[t] + (1.0 - w) * there[t];
    }
}

// Each column takes the half period of its current's sign. Columns of the first one's sign share a search.
void Calc_Eq::choose_inductance(double amplitude, double angle, double shifted, double* elements) {
    const Phases& c = step_.current_previous;
    std::size_t alike = 1;
    while (alike < 3 && (c[alike] < 0.0) == (c[0] < 0.0)) {
        ++alike;
    }
    const int together = static_cast<int>(alike) * 3;
    inductance_elements(amplitude, c[0] < 0.0 ? shifted : angle, together, elements);
    for (int t = together; t < element_count; ++t) {
        elements[t] = inductance_element(amplitude, c[static_cast<std::size_t>(t / 3)] < 0.0 ? shifted : angle, t);
    }
}

double Calc_Eq::inductance_element(double amplitude, double angle, int element) {
    const double point[3] = {amplitude, angle, static_cast<double>(element)};
    return tables_.inductance.at(*store_, method(), point, 3);
}

void Calc_Eq::inductance_elements(double amplitude, double angle, int count, double* elements) {
    const double point[2] = {amplitude, angle};
    tables_.inductance.components(*store_, method(), point, 2, count, elements);
}

// Table values, without multiplier.
DqPair Calc_Eq::look_up_ld_lq(double beta, double amplitude) {
    const double point[2] = {beta, amplitude};
    const double d = tables_.d_inductance.at(*store_, method(), point, 2);
    const double q = tables_.q_inductance.at(*store_, method(), point, 2);
    return {d, q};
}

void Calc_Eq::update_ld_lq() {
    const DqPair table =
        look_up_ld_lq(step_.current_phase_previous, step_.current_amplitude_previous * corrections_.turns2);
    step_.d_inductance = table.d * corrections_.inductance_multiplier;
    step_.q_inductance = table.q * corrections_.inductance_multiplier;
}

void Calc_Eq::update_inductance_ld_lq(const PhaseAngles& at) {
    update_ld_lq();
    for (std::size_t r = 0; r < 3; ++r) {
        for (std::size_t c = 0; c < 3; ++c) {
            step_.inductance[r * 3 + c] =
                2.0 / 3.0 * (step_.d_inductance * at.c[r] * at.c[c] + step_.q_inductance * at.s[r] * at.s[c]);
        }
    }
}

}  // namespace kzb
