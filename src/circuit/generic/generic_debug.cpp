#include "circuit/generic/generic_debug.h"

#include "diagnostics/number_text.h"

namespace kzb {

void GenericDebug::open() {
    on_ = debug_output_level() == 1;
    if (!on_) {
        return;
    }
    iv_.create("VEKT_debug_IV.csv", "");
    axis_.create("VEKT_debug_Axis.csv", "");
    l_.create("VEKT_debug_L.csv", "");
    flux_.create("VEKT_debug_Flux.csv", "");
    itr_.create("VEKT_debug_Itr.csv", "");
    itr_l_.create("VEKT_debug_Itr_L.csv", "");
    itr_flux_.create("VEKT_debug_Itr_Flux.csv", "");
    itr_axis_.create("VEKT_debug_Itr_Axis.csv", "");
}

// A coil that no branch uses has its columns in the headers and none in the rows, as established.
void GenericDebug::write_headers(const KZCircuitForGeneric& circuit) {
    if (!on_) {
        return;
    }
    std::string iv = "time, itr, itr_sol";
    for (int i = 1; i <= circuit.terminal_count(); ++i) {
        iv += ",V" + std::to_string(i);
    }
    for (int i = 1; i <= circuit.branch_count(); ++i) {
        iv += ",I" + std::to_string(i) + (i == circuit.branch_count() ? "\n" : "");
    }
    std::string l;
    std::string flux;
    const std::vector<int> positions = circuit.fem_coil_positions();
    for (const int i : positions) {
        flux += "ET" + std::to_string(i + 1) + ',';
        for (const int j : positions) {
            l += 'L' + std::to_string(j + 1) + '_' + std::to_string(i + 1) + ',';
        }
    }
    iv_.write(iv);
    axis_.write("time\n");
    l_.write("time," + l + '\n');
    flux_.write("time," + flux + '\n');
    itr_l_.write("time,itr," + l + '\n');
    itr_flux_.write("time,itr," + flux + '\n');
}

std::vector<GenericDebug::Coil> GenericDebug::used_coils(const KZCircuitForGeneric& circuit) {
    std::vector<Coil> coils;
    for (const int position : circuit.fem_coil_positions()) {
        const KZFEMCoil* const coil = as_fem_coil(circuit.element_type_at(position).get());
        if (circuit.branch_of_element_type(coil->id) != nullptr) {
            coils.push_back({coil, position + 1});
        }
    }
    return coils;
}

void GenericDebug::number(double value) {
    append_scientific(line_, value, 20, 10);
    line_ += ',';
}

void GenericDebug::integer(int value) {
    append_integer(line_, value, 0);
    line_ += ',';
}

void GenericDebug::end(DebugFile& file) {
    line_ += '\n';
    file.write(line_);
}

void GenericDebug::inductances(const std::vector<Coil>& coils) {
    for (const Coil& coil : coils) {
        for (const Coil& other : coils) {
            number(coil.coil->scaled_inductance(other.key));
        }
    }
}

// Potentials, then currents; the last current ends the line.
void GenericDebug::solution(const KZCircuitForGeneric& circuit) {
    for (const auto& terminal : circuit.terminals()) {
        number(terminal->potential);
    }
    for (const auto& element : circuit.branches()) {
        number(element->current);
    }
    if (circuit.branch_count() > 0) {
        line_.back() = '\n';
    }
}

void GenericDebug::pass_tables(const KZCircuitForGeneric& circuit, const std::vector<double>& axes, double time,
                               int iteration) {
    begin(time, iteration);
    for (const double value : axes) {
        number(value);
    }
    end(itr_axis_);
    const std::vector<Coil> coils = used_coils(circuit);
    begin(time, iteration);
    for (const Coil& coil : coils) {
        number(coil.coil->scaled_flux());
        number(coil.coil->previous_flux);
    }
    end(itr_flux_);
    begin(time, iteration);
    inductances(coils);
    end(itr_l_);
}

void GenericDebug::pass_solution(const KZCircuitForGeneric& circuit, double time, int iteration, double residual) {
    begin(time, iteration);
    number(residual);
    solution(circuit);
    itr_.write(line_);
}

void GenericDebug::step(const KZCircuitForGeneric& circuit, const std::vector<double>& axes, double time,
                        int iterations, int best_iteration) {
    begin(time, iterations);
    integer(best_iteration);
    solution(circuit);
    iv_.write(line_);
    const std::vector<Coil> coils = used_coils(circuit);
    begin(time);
    for (const Coil& coil : coils) {
        number(coil.coil->scaled_flux());
    }
    end(flux_);
    begin(time);
    inductances(coils);
    end(l_);
    begin(time);
    for (const double value : axes) {
        number(value);
    }
    end(axis_);
}

}  // namespace kzb
