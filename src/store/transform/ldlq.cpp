// The tables of an LdLq model from those of a Harmonic one: inductances and torque averaged over the rotor position.
//
//   L_d(phase, amplitude) = mean over positions of  the d-axis inductance of the phase inductance matrix
//   L_q(phase, amplitude) = mean over positions of  psi_q / (I cos(beta) sqrt(3/2))
//   torque(phase, k)      = mean over positions of  torque(phase, position, k)
//
// At beta = +-90 degrees the current has no q part: L_q is taken from both sides, 5 degrees away, and then smoothed.
// A source with fewer axes than told has no positions: the mean over none is not a number.
#include <cmath>
#include <vector>

#include "store/lookup_front.h"
#include "store/store.h"
#include "store/table_calls.h"
#include "store/transform/frame.h"
#include "store/transform/table_copy.h"
#include "store/transform/transforms.h"

namespace kzb {
namespace {

constexpr double no_q_current = 1e-8;
constexpr double beside_deg = 5;

void create_tables(KZB_STORE& store) {
    const KZB_TABLE* inductance = find_table(store, "harmonic_inductance", "inductance");
    const int d_sizes[] = {filled_rows(inductance, 2), filled_rows(inductance, 1)};
    create_table(store, "dq_inductance", "d_inductance", 2, d_sizes);
    const KZB_TABLE* flux = find_table(store, "current_flux", "flux");
    const int q_sizes[] = {filled_rows(flux, 2), filled_rows(flux, 1) - 1};
    create_table(store, "dq_inductance", "q_inductance", 2, q_sizes);
    set_cyclic_flags(find_table(store, "dq_inductance", "d_inductance"), {1, 0});
    set_cyclic_flags(find_table(store, "dq_inductance", "q_inductance"), {1, 0});
    const KZB_TABLE* torque = find_table(store, "harmonic_torque", "torque_ibeta");
    const int torque_sizes[] = {filled_rows(torque, 1), filled_rows(torque, 3)};
    create_table(store, "dq_torque", "torque_ibeta", 2, torque_sizes);
    set_cyclic_flags(find_table(store, "dq_torque", "torque_ibeta"), {1, 0});
}

void fill_d_inductance(KZB_STORE& store) {
    KZB_TABLE* source = find_table(store, "harmonic_inductance", "inductance");
    KZB_TABLE* target = find_table(store, "dq_inductance", "d_inductance");
    copy_axis(store, source, 2, target, 1);
    copy_axis(store, source, 1, target, 2);
    const std::vector<Frame> frames = frames_at(store, nodes_of(store, source, 3));
    Cells inductance(source, 4);
    Cells result(target, 2);
    for (int i = 0; i < filled_rows(source, 1); ++i) {
        for (int j = 0; j < filled_rows(source, 2); ++j) {
            double sum = 0.0;
            int k = 0;
            for (const Frame& frame : frames) {
                double L[9];
                for (int c = 0; c < 9; ++c) {
                    L[c] = inductance.get({i, j, k, c});
                }
                sum += frame.d_inductance(L);
                ++k;
            }
            result.set({j, i}, sum / static_cast<double>(frames.size()));
        }
    }
}

// Fills dq_inductance/q_inductance from current_flux/flux [amplitude, current phase, position, winding phase].
class QInductance {
  public:
    explicit QInductance(KZB_STORE& store)
        : store_(store),
          source_(find_table(store, "current_flux", "flux")),
          target_(find_table(store, "dq_inductance", "q_inductance")),
          flux_(source_, 4),
          result_(target_, 2),
          lookup_("current_flux", "flux"),
          amplitudes_(nodes_of(store, source_, 1)),
          phases_(nodes_of(store, source_, 2)),
          positions_(nodes_of(store, source_, 3)),
          frames_(frames_at(store, positions_)) {}

    void fill() {
        copy_axis(store_, source_, 2, target_, 1);
        // The first amplitude, usually 0, is dropped.
        if (amplitudes_.size() > 1) {
            set_nodes(target_, 2, std::vector<double>(amplitudes_.begin() + 1, amplitudes_.end()));
        }
        for (int i = 1; i < static_cast<int>(amplitudes_.size()); ++i) {
            for (int j = 0; j < static_cast<int>(phases_.size()); ++j) {
                result_.set({j, i - 1}, value(i, j));
            }
        }
        for (int i = 1; i < static_cast<int>(amplitudes_.size()); ++i) {
            smooth(index_plus_, i - 1);
            smooth(index_minus_, i - 1);
        }
    }

  private:
    double value(int i, int j) {
        const double beta = radians(phases_[static_cast<std::size_t>(j)]);
        if (std::fabs(std::cos(beta)) < no_q_current) {
            if (std::fabs(std::sin(beta) - 1) < no_q_current) {
                index_plus_ = j;
            }
            if (std::fabs(std::sin(beta) + 1) < no_q_current) {
                index_minus_ = j;
            }
        }
        const double I = amplitudes_[static_cast<std::size_t>(i)];
        const double den = I * std::cos(beta) * std::sqrt(1.5);
        if (std::fabs(den) < no_q_current) {
            const double beta_deg = beta / 3.141592653589793 * 180;
            return 0.5 * (beside(I, beta_deg - beside_deg) + beside(I, beta_deg + beside_deg));
        }
        double sum = 0.0;
        int k = 0;
        for (const Frame& frame : frames_) {
            sum += frame.dq0({flux_.get({i, j, k, 0}), flux_.get({i, j, k, 1}), flux_.get({i, j, k, 2})}).q / den;
            ++k;
        }
        return sum / static_cast<double>(frames_.size());
    }

    // The same mean at a current phase between the nodes; 0 where there is no q current either.
    double beside(double I, double b) {
        const double den = I * std::cos(radians(b)) * std::sqrt(1.5);
        double sum = 0.0;
        for (std::size_t k = 0; k < frames_.size(); ++k) {
            const Uvw flux{at(I, b, k, 0.0), at(I, b, k, 1.0), at(I, b, k, 2.0)};
            sum += frames_[k].dq0(flux).q / den;
        }
        return std::fabs(den) > no_q_current ? sum / static_cast<double>(frames_.size()) : 0.0;
    }

    double at(double I, double b, std::size_t k, double component) {
        const double point[] = {I, b, positions_[k], component};
        return lookup_.at(store_, linear_, point, 4);
    }

    void smooth(int index, int column) {
        if (index >= 1 && index < static_cast<int>(phases_.size()) - 2) {
            result_.set({index, column}, 0.5 * (result_.get({index - 1, column}) + result_.get({index + 1, column})));
        }
    }

    KZB_STORE& store_;
    KZB_TABLE* source_;
    KZB_TABLE* target_;
    Cells flux_;
    Cells result_;
    TableRef lookup_;
    Method linear_;
    std::vector<double> amplitudes_;
    std::vector<double> phases_;
    std::vector<double> positions_;
    std::vector<Frame> frames_;
    int index_plus_ = -1;
    int index_minus_ = -1;
};

void fill_torque(KZB_STORE& store) {
    KZB_TABLE* source = find_table(store, "harmonic_torque", "torque_ibeta");
    KZB_TABLE* target = find_table(store, "dq_torque", "torque_ibeta");
    copy_axis(store, source, 1, target, 1);
    // Node 0 of axis 2 stays the unwritten 0.0.
    for (int k = 1; k < filled_rows(source, 3); ++k) {
        table_set_axis_value(target, 2, k, axis_value_or_error(store, source, 3, k));
    }
    Cells torque(source, 3);
    Cells mean(target, 2);
    const int positions = filled_rows(source, 2);
    for (int k = 0; k < filled_rows(source, 3); ++k) {
        for (int i = 0; i < filled_rows(source, 1); ++i) {
            double sum = 0.0;
            for (int m = 0; m < positions; ++m) {
                sum += torque.get({i, m, k});
            }
            mean.set({i, k}, sum / positions);
        }
    }
}

}  // namespace

int make_LdLq(KZB_STORE& store) {
    if (!has_application(store, "PMSM", "Harmonic")) {
        return 0;
    }
    set_application(store, "PMSM", "Harmonic");
    if (table_dim(store, "harmonic_torque", "torque_ibeta") == 0) {
        return 0;
    }
    create_tables(store);
    fill_d_inductance(store);
    QInductance(store).fill();
    fill_torque(store);
    store.ldlq_made = 1;
    return 1;
}

}  // namespace kzb
