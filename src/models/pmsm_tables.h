// The tables that the permanent-magnet model looks up, and what of the file decides between them.
#pragma once

#include <cstdint>

#include "store/lookup_front.h"

namespace kzb {

struct PmsmTables {
    TableRef mag_flux{"mag_flux", "flux"};
    TableRef magflux{"magflux", "magflux"};
    TableRef inductance{"inductance", "inductance"};
    TableRef current_flux{"current_flux", "flux"};
    TableRef harmonic_inductance{"harmonic_inductance", "inductance"};
    TableRef d_inductance{"dq_inductance", "d_inductance"};
    TableRef q_inductance{"dq_inductance", "q_inductance"};
    TableRef fd_noload{"flux_table", "fd_noload"};
    TableRef fq_noload{"flux_table", "fq_noload"};
    TableRef f0_noload{"flux_table", "f0_noload"};
    TableRef f0_ibeta{"flux_table", "f0_ibeta"};
    TableRef id{"current_table", "id"};
    TableRef iq{"current_table", "iq"};
    TableRef i0{"current_table", "i0"};
    TableRef torque;  // by application
    TableRef attractive_force{"distance_force", "attractive_force"};
    TableRef total_flux_correction{"correction", "total-flux"};
    TableRef mag_flux_correction{"correction", "mag-flux"};
    TableRef inductance_correction{"correction", "inductance"};
    TableRef torque_correction{"correction", "torque"};
    TableRef ironloss_correction{"correction", "ironloss"};
    TableRef iron_loss{"loss_table", "iron_loss"};
    TableRef copper_loss{"equivalent_resistance_table", "copper_loss"};
    Method linear = Method::named("Linear");
    Method spline = Method::named("Spline");

    // Answers of the file, kept for one revision of the store.
    struct Facts {
        std::uint64_t revision = 0;
        bool corrected_by_old_method = false;  // category "CorrectionTable"
        bool four_simple_tables = false;       // "accuracy_type" 0 with "number_of_tables" 4
    };
    const Facts& facts(const KZB_STORE& store) {
        if (facts_.revision != store.revision) {
            facts_.revision = store.revision;
            facts_.corrected_by_old_method = has_category(store, "CorrectionTable");
            facts_.four_simple_tables =
                get_int(store, "control", "accuracy_type") == 0 && get_int(store, "control", "number_of_tables") == 4;
        }
        return facts_;
    }

  private:
    Facts facts_;
};

}  // namespace kzb
