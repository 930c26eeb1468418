#include "circuit/winding_solver.h"

#include <algorithm>

#include "circuit/dense_elimination.h"
#include "diagnostics/log.h"

namespace kzb {
namespace {

KZterminal* terminal_with_id(const WindingNetwork& network, std::size_t id) {
    // Ids run in order in every pattern.
    if (id - 1 < network.terminals.size() && network.terminals[id - 1]->id == static_cast<int>(id)) {
        return network.terminals[id - 1].get();
    }
    for (const boost::shared_ptr<KZterminal>& terminal : network.terminals) {
        if (terminal->id == static_cast<int>(id)) {
            return terminal.get();
        }
    }
    return nullptr;
}

constexpr std::size_t four = 4;

// Entries of `l` that the right-hand side leaves out couple axes that the model's frame keeps apart.
void form_four(double dt, const DenseInput& system, double (&a)[four][four], double (&b)[four]) {
    const double* const l = system.l;
    const double* const x = system.x;
    const double* const v = system.v;
    b[0] = l[0] * x[0] + dt * v[0] + l[2] * x[2];
    b[1] = l[5] * x[1] + dt * v[1] + l[7] * x[3];
    b[2] = l[8] * x[0] + dt * v[2] + l[10] * x[2];
    b[3] = l[13] * x[1] + dt * v[3] + l[15] * x[3];
    for (std::size_t i = 0; i < four * four; ++i) {
        a[i / four][i % four] = 2 * l[i] + dt * system.r[i] - system.l_previous[i];
    }
}

}  // namespace

bool WindingSolver::solve_flux_form(const WindingInput& input) {
    return solve(input, Form::flux);
}

bool WindingSolver::solve_emf_form(const WindingInput& input) {
    return solve(input, Form::emf);
}

bool WindingSolver::solve(const WindingInput& input, Form form) {
    take_network(input);
    if (!set_order(element_count_ + terminal_count_)) {
        return false;
    }
    node_rows();
    element_rows(input, form);
    boundary_conditions(input);
    eliminate_system();
    sum_terminal_currents();
    return ok_;
}

void WindingSolver::take_network(const WindingInput& input) {
    ok_ = true;
    terminal_count_ = network_.terminals.size();
    port_count_ = network_.port_count > 0 ? static_cast<std::size_t>(network_.port_count) : 0;
    element_count_ = network_.elements.size();
    for (std::size_t k = 0; k < port_count_; ++k) {
        if (!input.flags[k]) {
            continue;
        }
        if (KZterminal* const terminal = terminal_with_id(network_, k + 1)) {
            terminal->potential = input.voltages[k];
        } else {
            log_set_category("Condition");
            log_warning(180000, "incorrect input(V) information");
            ok_ = false;
        }
    }
}

// No pattern comes near the bound; a network that exceeds it is not solved.
bool WindingSolver::set_order(std::size_t order) {
    const bool fits = order <= max_order;
    order_ = fits ? order : 0;
    if (!fits) {
        element_count_ = 0;
        terminal_count_ = 0;
        ok_ = false;
    }
    stride_ = (order_ + 2) & ~std::size_t{1};
    system_.resize(order_, stride_, false);
    incidence_.resize(terminal_count_, element_count_, false);
    solution_.resize(order_, false);
    terminal_currents_.resize(terminal_count_, false);
    std::fill_n(system_.data().begin(), order_ * stride_, 0.0);
    std::fill_n(incidence_.data().begin(), terminal_count_ * element_count_, 0.0);
    return fits;
}

void WindingSolver::node_rows() {
    const std::size_t m = element_count_;
    for (std::size_t i = 0; i < m; ++i) {
        const KZelement& element = *network_.elements[i];
        const std::size_t from = static_cast<std::size_t>(element.from_terminal) - 1;
        const std::size_t to = static_cast<std::size_t>(element.to_terminal) - 1;
        // By assignment: of an element with both ends on one terminal the -1.0 stands.
        if (from < terminal_count_) {
            leaving(from)[i] = row(m + from)[i] = 1.0;
        }
        if (to < terminal_count_) {
            leaving(to)[i] = row(m + to)[i] = -1.0;
        }
    }
}

void WindingSolver::element_rows(const WindingInput& input, Form form) {
    const std::size_t m = element_count_;
    const double dt = input.dt;
    std::size_t coil = 0;
    std::size_t pair = 0;
    for (std::size_t i = 0; i < m; ++i) {
        const KZelement& element = *network_.elements[i];
        double* const a = row(i);
        const std::size_t from = static_cast<std::size_t>(element.from_terminal) - 1;
        const std::size_t to = static_cast<std::size_t>(element.to_terminal) - 1;
        if (from < terminal_count_) {
            a[m + from] = -dt;
        }
        if (to < terminal_count_) {
            a[m + to] = dt;
        }
        if (element.kind == element_resistor) {
            a[i] = element.plain_resistance.value_or(0.0) * dt;
            continue;
        }
        if (element.kind != element_coil) {
            log_set_category("KZ circuit solver error");
            log_warning(100, "incorrect element information");
            ok_ = false;
            continue;
        }
        double b = form == Form::flux ? input.previous_flux[coil] - input.flux[coil] : -(input.emf[coil] * dt);
        a[i] = dt * input.resistance[i] + input.leakage[i];
        b += input.current[i] * input.leakage[i];
        for (std::size_t j = 0; j < m; ++j) {
            if (network_.elements[j]->kind != element_coil) {
                continue;
            }
            b += input.current[j] * input.coupling[pair];
            a[j] +=
                form == Form::flux ? 2 * input.coupling[pair] - input.previous_coupling[pair] : input.coupling[pair];
            ++pair;
        }
        rhs(i) = b;
        ++coil;
    }
}

void WindingSolver::boundary_conditions(const WindingInput& input) {
    const std::size_t m = element_count_;
    const std::size_t driven_limit = std::min(port_count_, terminal_count_);
    // All that reads the columns of the terminals comes before anything is cleared.
    for (std::size_t k = 0; k < driven_limit; ++k) {
        if (input.flags[k]) {
            const KZterminal* const terminal = terminal_with_id(network_, k + 1);
            const double potential = terminal != nullptr ? terminal->potential : 0.0;
            for (std::size_t r = 0; r < m; ++r) {
                rhs(r) -= potential * row(r)[m + k];
            }
        }
    }
    for (std::size_t t = 0; t < terminal_count_; ++t) {
        if (network_.terminals[t]->kind == terminal_injection) {
            rhs(m + t) += network_.terminals[t]->injected_current;
        }
    }
    for (std::size_t k = 0; k < driven_limit; ++k) {
        if (input.flags[k]) {
            std::fill_n(row(m + k), order_, 0.0);
            row(m + k)[m + k] = 1.0;
        }
    }
    for (std::size_t t = 0; t < terminal_count_; ++t) {
        if (network_.terminals[t]->kind == terminal_base) {
            for (std::size_t r = 0; r < m; ++r) {
                row(r)[m + t] = 0.0;
            }
            // Only the first `terminal_count` columns: entries beyond stay, as established.
            std::fill_n(row(m + t), terminal_count_, 0.0);
            row(m + t)[m + t] = 1.0;
        }
    }
}

void WindingSolver::eliminate_system() {
    eliminate_augmented(system_.data().begin(), order_, stride_);
    for (std::size_t i = 0; i < order_; ++i) {
        solution_.data()[i] = rhs(i);
    }
}

void WindingSolver::sum_terminal_currents() {
    for (std::size_t t = 0; t < terminal_count_; ++t) {
        const double* const signs = leaving(t);
        double sum = 0.0;
        for (std::size_t j = 0; j < element_count_; ++j) {
            sum += solution_.data()[j] * signs[j];
        }
        terminal_currents_.data()[t] = sum;
    }
}

bool WindingSolver::solve_dense(const WindingInput& input, const DenseInput& system) {
    take_network(input);
    terminal_count_ = 0;
    if (element_count_ == four) {
        order_ = four;
        terminal_currents_.resize(0, false);
        solve_four(input.dt, system);
        return ok_;
    }
    if (!set_order(element_count_)) {
        return false;
    }
    // Of a network that is not of four elements only what the matrices have is filled.
    double a[four][four];
    double b[four];
    form_four(input.dt, system, a, b);
    const std::size_t filled = std::min(order_, four);
    for (std::size_t r = 0; r < filled; ++r) {
        std::copy_n(a[r], filled, row(r));
        rhs(r) = b[r];
    }
    eliminate_system();
    return ok_;
}

void WindingSolver::solve_four(double dt, const DenseInput& system) {
    double a[four][four];
    double b[four];
    form_four(dt, system, a, b);
    eliminate_fixed(a, b);
    solution_.resize(four, false);
    std::copy_n(b, four, solution_.data().begin());
}

}  // namespace kzb
