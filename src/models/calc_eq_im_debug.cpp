#include "models/calc_eq_im_debug.h"

#include "diagnostics/number_text.h"
#include "models/calc_eq_im.h"

namespace kzb {
namespace {

std::string joined(std::initializer_list<double> fields, std::string_view separator, int width, int precision) {
    std::string line;
    for (const double field : fields) {
        if (!line.empty()) {
            line += separator;
        }
        append_scientific(line, field, width, precision);
    }
    line += '\n';
    return line;
}

}  // namespace

void ImDebug::open() {
    debug_output = debug_output_level() == 1;
    if (!debug_output) {
        return;
    }
    current_voltage.create("VEKT_debug_IV.csv",
                           "Time, SlipFreq, Theta, Vu, Vv, Vw, Iu_s, Iv_s, Iw_s, Iu_r, Iv_r, Iw_r\n");
    inductance.create("VEKT_debug_L.csv", "Time, SlipFreq, Is, Ls, Msr, Mrs, Lr\n");
    resistance.create("VEKT_debug_R.csv", "Time, SlipFreq, I0, Rs_DC, Rr\n");
    equivalent_circuit.create("VEKT_debug_TEq.csv",
                              "Time, SlipFliq, I1, SourceAmp, l1, l2, l0, Rs, Rr, g0, I0, IronLoss\n");
    derivative.create("VEKT_debug_Deriv.csv",
                      "Time, Rs, Rr, m_Ls, m_Msr, m_Mrs, m_Lr, x[0], x[1], x[2], x[3], Va, Vb, Wm\n");
    current_derivative.create("VEKT_debug_DerivI.csv",
                              "Time, Rs, Rr, m_Ls, m_Msr, m_Mrs, m_Lr, i1a, i1b, x[0], x[1], Wm\n");
}

void ImDebug::resistance_row(std::initializer_list<double> fields) {
    if (resistance.is_open()) {
        resistance.write(joined(fields, ", ", 20, 10));
    }
}

void ImDebug::short_row(DebugFile& file, std::initializer_list<double> fields) {
    if (file.is_open()) {
        file.write(joined(fields, ",", 10, 5));
    }
}

// Only steps driven by voltages have any in their row. The current is the one at which the tables were read.
void Calc_Eq_im_transient::write_step_rows(const double* voltages) {
    if (!debug_.on()) {
        return;
    }
    const double none[3] = {0.0, 0.0, 0.0};
    const double* const v = voltages != nullptr ? voltages : none;
    const ImStep& s = step_;
    const SixCurrents& i = s.current_latest;
    debug_.current_voltage.row({s.time, s.slip_omega, s.theta, v[0], v[1], v[2], i[0], i[1], i[2], i[3], i[4], i[5]});
    const ImInductances& l = s.inductances;
    debug_.inductance.row({s.time, slip_frequency(), s.primary_current, l.m_Ls, l.m_Msr, l.m_Mrs, l.m_Lr});
    debug_.resistance_row({s.time, slip_frequency(), s.primary_current, resistances_.Rs_DC, resistances_.Rr});
}

}  // namespace kzb
