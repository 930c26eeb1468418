// Calc_Eq_generic: one step.
#include "circuit/generic/calc_eq_generic.h"

#include <boost/make_shared.hpp>

#include "models/environment.h"

namespace kzb {
namespace {

constexpr double residual_limit = 0.001;  // A, a plain sum over the branches

}  // namespace

Calc_Eq_generic::Calc_Eq_generic() : circuit_(boost::make_shared<KZCircuitForGeneric>()) {
    debug_.open();
}

void Calc_Eq_generic::set_iron_loss_enabled(bool on) {
    iron_loss_enabled_ = on && environment_int("DORN_KZ_USE_OLD_IRONLOSS", 0) != 1;
}

int Calc_Eq_generic::step(const std::vector<double>& inputs, const std::vector<double>& displacements, double time,
                          const std::vector<double>& switches, int& status) {
    time_ = time;
    circuit_->set_switches(switches);
    if (!circuit_->has_base_potential()) {
        status = no_base_potential;
        return 0;
    }
    circuit_->set_inputs(inputs);
    tables_.set_displacements(displacements);
    const double dt = time - last_time_;
    tables_.set_dt(dt);
    if (step_count_ == 1 || dt <= 0) {
        evaluate_tables();
    } else {
        solve(dt);
        evaluate_tables();
    }
    update_iron_loss();
    return 1;
}

void Calc_Eq_generic::evaluate_tables() {
    tables_.update_coil_state();
    tables_.evaluate();
}

void Calc_Eq_generic::update_iron_loss() {
    if (iron_loss_enabled_ && tables_.has_iron_loss()) {
        iron_loss_ = tables_.iron_loss(user_inputs_);
    }
}

// A step that doesn't converge is no error: the best solution found stands.
void Calc_Eq_generic::solve(double dt) {
    solver_.begin(dt, track_best_iteration_);
    for (int iteration = 0;; ++iteration) {
        evaluate_tables();
        if (debug_.is_on()) {
            debug_.pass_tables(*circuit_, tables_.axes(), time_, iteration);
        }
        solver_.solve_once();
        solver_.record_best();
        const double residual = solver_.residual();
        if (residual <= residual_limit || iteration + 1 == most_passes) {
            pass_counts_.add(solver_.iteration(), residual <= residual_limit);
            solver_.apply_best();
            break;
        }
        solver_.apply_iterate(1.0);
        solver_.clear();
        if (debug_.is_on()) {
            debug_.pass_solution(*circuit_, time_, iteration, residual);
        }
    }
    if (debug_.is_on()) {
        debug_.step(*circuit_, tables_.axes(), time_, solver_.iteration(), solver_.best_iteration());
    }
}

void Calc_Eq_generic::update() {
    ++step_count_;
    last_time_ = time_;
    circuit_->update();
}

}  // namespace kzb
