// Debug files and rows of Calc_Eq_wfsm.
#include "models/calc_eq_wfsm_debug.h"

#include "diagnostics/number_text.h"
#include "models/calc_eq_wfsm.h"
#include "models/calc_eq_wfsm_frame.h"

namespace kzb {
namespace {

// One line of fields with commas between them.
class Row {
  public:
    Row& number(double value, int precision = 10) {
        comma();
        append_scientific(line_, value, 20, precision);
        return *this;
    }
    template <class Values>
    Row& numbers(const Values& values, int precision = 10) {
        for (const double value : values) {
            number(value, precision);
        }
        return *this;
    }
    Row& integer(int value, int width) {
        comma();
        append_integer(line_, value, width);
        return *this;
    }
    void to(DebugFile& file) {
        line_ += '\n';
        file.write(line_);
    }

  private:
    void comma() {
        if (!line_.empty()) {
            line_ += ',';
        }
    }
    std::string line_;
};

constexpr int pass_width = 5;
constexpr int fine = 15;  // digits of fluxes and inductances

// The row's time, and the pass of a row that has one.
Row row_of(double time, int pass = -1) {
    Row row;
    row.number(time);
    if (pass >= 0) {
        row.integer(pass, pass_width);
    }
    return row;
}

}  // namespace

void WfsmDebug::open() {
    debug_output = debug_output_level() != 0;
    if (!debug_output) {
        return;
    }
    current_voltage.create("VEKT_debug_IV.csv", "Time,I_u,I_v,I_w,I_f,V_u,V_v,V_w,V_f,V_c,theta\n");
    flux.create("VEKT_debug_Flux.csv", "Time, Tot_Flux_U, Tot_Flux_V, Tot_Flux_W, Tot_Flux_F \n");
    inductance.create("VEKT_debug_L.csv",
                      "Time, Lu, Muv, Muw, Muf, Mvu, Lv, Mvw, Mvf, Mwu, Mwv, Lw, Mwf, Mfu, Mfv, Mfw, Lf,R,Rf\n");
    torque.create("VEKT_debug_Trq.csv", "Time, Iamp,Ibeta, Id, Iq, If, Ang, Trq\n");
    current_polar.create("VEKT_debug_IampBeta.csv", "Time,nr_i,Iamp,beta, Id, Iq,If,theta\n");
    iteration_current_voltage.create("VEKT_debug_Itr_IV.csv", "Time,nr_i,I_u,I_v,I_w,I_f,V_u,V_v,V_w,V_f,V_c,theta\n");
    iteration_flux.create("VEKT_debug_Itr_Flux.csv", "Time, nr_i,Tot_Flux_U, Tot_Flux_V, Tot_Flux_W, Tot_Flux_F\n");
    iteration_inductance.create(
        "VEKT_debug_Itr_L.csv",
        "Time, nr_i, Lu, Muv, Muw, Muf, Mvu, Lv, Mvw, Mvf, Mwu, Mwv, Lw, Mwf, Mfu, Mfv, Mfw, Lf,R,Rf\n");
    iteration_current_polar.create("VEKT_debug_Itr_IampBeta.csv", "Time,nr_i,Iamp,beta,Iu,Iv,Iw, If,theta\n");
}

// Before relaxation: the currents are those of the solve.
void Calc_Eq_wfsm::write_pass_rows(int pass, const Drive& drive) {
    if (!debug_.on()) {
        return;
    }
    const WfsmStep& s = step_;
    row_of(s.time, pass)
        .numbers(s.current)
        .numbers(drive.voltages)
        .number(s.neutral_voltage)
        .number(s.position)
        .to(debug_.iteration_current_voltage);
    row_of(s.time, pass).numbers(s.flux, fine).to(debug_.iteration_flux);
    row_of(s.time, pass)
        .numbers(s.inductance, fine)
        .number(machine_.R)
        .number(machine_.Rf)
        .to(debug_.iteration_inductance);
}

// After relaxation.
void Calc_Eq_wfsm::write_pass_polar_row(int pass, const PhaseAngles& at) {
    if (!debug_.on()) {
        return;
    }
    const WfsmStep& s = step_;
    const DqPair dq = wfsm::park(wfsm::armature(s.current), at);
    row_of(s.time, pass)
        .number(amplitude_of(dq.d, dq.q))
        .number(wfsm::current_phase(dq.d, dq.q))
        .numbers(s.current)
        .number(s.position)
        .to(debug_.iteration_current_polar);
}

void Calc_Eq_wfsm::write_step_rows(const Drive& drive, const PhaseAngles& at, int pass, int kept_pass) {
    if (!debug_.on()) {
        return;
    }
    const WfsmStep& s = step_;
    row_of(s.time)
        .numbers(s.current)
        .numbers(drive.voltages)
        .number(s.neutral_voltage)
        .number(s.position)
        .to(debug_.current_voltage);
    row_of(s.time).numbers(s.flux, fine).to(debug_.flux);
    write_inductance_row();
    const DqPair dq = wfsm::park(wfsm::armature(s.current), at);
    // One more column than the header names: the pass whose currents the step kept.
    row_of(s.time, pass)
        .number(amplitude_of(dq.d, dq.q))
        .number(wfsm::current_phase(dq.d, dq.q))
        .number(dq.d)
        .number(dq.q)
        .number(s.current[3])
        .number(s.position)
        .integer(kept_pass, 0)
        .to(debug_.current_polar);
}

void Calc_Eq_wfsm::write_inductance_row() {
    if (!debug_.on()) {
        return;
    }
    const WfsmStep& s = step_;
    row_of(s.time).numbers(s.inductance, fine).number(machine_.R).number(machine_.Rf).to(debug_.inductance);
}

void Calc_Eq_wfsm::write_torque_row(const PhaseAngles& at, double torque) {
    if (!debug_.on()) {
        return;
    }
    const WfsmStep& s = step_;
    const DqPair dq = wfsm::park(wfsm::armature(s.current), at);
    // Id and Iq are written as 0.0, as established.
    row_of(s.time)
        .number(amplitude_of(dq.d, dq.q))
        .number(wfsm::current_phase(dq.d, dq.q))
        .number(0.0)
        .number(0.0)
        .number(s.current[3])
        .number(table_angle(s.position))
        .number(torque)
        .to(debug_.torque);
}

}  // namespace kzb
