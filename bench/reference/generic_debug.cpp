// The eight debug files of a generic model.
#include "bench/reference/generic.h"

namespace kzb_reference {

namespace {

enum File { IV, Axis, L, Flux, Itr, Itr_L, Itr_Flux, Itr_Axis };

void put(std::FILE* file, double value) {
    std::fprintf(file, "%20.10e,", value);
}

}  // namespace

Generic::~Generic() {
    for (std::FILE* const file : files_) {
        if (file != nullptr) {
            std::fclose(file);
        }
    }
}

void Generic::open_debug_files() {
    static constexpr const char* names[] = {"IV", "Axis", "L", "Flux", "Itr", "Itr_L", "Itr_Flux", "Itr_Axis"};
    for (int i = 0; i < 8; ++i) {
        files_[i] = std::fopen((std::string("VEKT_debug_") + names[i] + ".csv").c_str(), "w");
    }
}

void Generic::write_headers() const {
    std::fprintf(files_[IV], "time, itr, itr_sol");
    for (std::size_t i = 1; i <= circuit.terminals.size(); ++i) {
        std::fprintf(files_[IV], ",V%d", static_cast<int>(i));
    }
    for (std::size_t i = 1; i <= circuit.branches.size(); ++i) {
        std::fprintf(files_[IV], i == circuit.branches.size() ? ",I%d\n" : ",I%d", static_cast<int>(i));
    }
    std::fprintf(files_[Axis], "time\n");
    for (const File index : {L, Itr_L}) {
        std::fprintf(files_[index], index == L ? "time," : "time,itr,");
        for (const int i : circuit.fem_positions) {
            for (const int j : circuit.fem_positions) {
                std::fprintf(files_[index], "L%d_%d,", j + 1, i + 1);
            }
        }
        std::fprintf(files_[index], "\n");
    }
    for (const File index : {Flux, Itr_Flux}) {
        std::fprintf(files_[index], index == Flux ? "time," : "time,itr,");
        for (const int i : circuit.fem_positions) {
            std::fprintf(files_[index], "ET%d,", i + 1);
        }
        std::fprintf(files_[index], "\n");
    }
}

void Generic::write_inductances(std::FILE* file) const {
    for (const int i : circuit.fem_positions) {
        const auto coil = circuit.fem_coil_at(i);
        if (!circuit.branch_of_element_type(coil->id)) {
            continue;
        }
        for (const int j : circuit.fem_positions) {
            if (circuit.branch_of_element_type(circuit.fem_coil_at(j)->id)) {
                put(file, coil->scaled_inductance(j + 1));
            }
        }
    }
    std::fprintf(file, "\n");
}

void Generic::write_pass(int iteration) const {
    for (const File index : {Itr_Axis, Itr_Flux, Itr_L}) {
        std::fprintf(files_[index], "%20.10e,%d,", time_, iteration);
    }
    for (const double value : tables.axes) {
        put(files_[Itr_Axis], value);
    }
    std::fprintf(files_[Itr_Axis], "\n");
    for (const int i : circuit.fem_positions) {
        const auto coil = circuit.fem_coil_at(i);
        if (circuit.branch_of_element_type(coil->id)) {
            put(files_[Itr_Flux], coil->scaled_flux());
            put(files_[Itr_Flux], coil->previous_flux);
        }
    }
    std::fprintf(files_[Itr_Flux], "\n");
    write_inductances(files_[Itr_L]);
}

void Generic::write_state(std::FILE* file) const {
    for (const auto& terminal : circuit.terminals) {
        put(file, terminal->potential);
    }
    for (std::size_t i = 0; i < circuit.branches.size(); ++i) {
        std::fprintf(file, i + 1 == circuit.branches.size() ? "%20.10e\n" : "%20.10e,", circuit.branches[i]->current);
    }
}

void Generic::write_iterate(int iteration, double residual) const {
    std::fprintf(files_[Itr], "%20.10e,%d,%20.10e,", time_, iteration, residual);
    write_state(files_[Itr]);
}

void Generic::write_step(const generic::Solver& solver) const {
    std::fprintf(files_[IV], "%20.10e,%d,%d,", time_, solver.iteration, solver.best_iteration);
    write_state(files_[IV]);
    for (const File index : {Flux, L, Axis}) {
        put(files_[index], time_);
    }
    for (const int i : circuit.fem_positions) {
        const auto coil = circuit.fem_coil_at(i);
        if (circuit.branch_of_element_type(coil->id)) {
            put(files_[Flux], coil->scaled_flux());
        }
    }
    std::fprintf(files_[Flux], "\n");
    write_inductances(files_[L]);
    for (const double value : tables.axes) {
        put(files_[Axis], value);
    }
    std::fprintf(files_[Axis], "\n");
}

}  // namespace kzb_reference
