// Reads the input, first byte apart, as measured data: by that byte a correction file (twice, so that tables merge), or
// a loss table file of a permanent-magnet machine or of a generic model. Looks the tables up and saves the store.
#include <cstdint>
#include <string>

#include "KZBCalculator/kzb_store.h"
#include "scratch_file.h"
#include "silence.h"

namespace {

KZB_STORE* machine(bool generic) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_put_int("control", "motor_type", generic ? 10008 : 10000, store);
    kzb_put_double("parameter", "RU", 1.0, store);
    if (!generic) {
        for (const char* category : {"harmonic_inductance", "current_flux", "harmonic_torque"}) {
            kzb_put_int(category, "present", 1, store);
        }
        return store;
    }
    const int indices[2] = {0, 0};
    for (const char* path : {"motion_condition_list;motion_condition", "element_set_list;coil_set"}) {
        kzb_put_subcategory_string(path, indices, "name", "a", store);
        kzb_put_subcategory_int(path, indices, "id", 7, store);
        kzb_put_subcategory_int(path, indices, "type", 1, store);
    }
    return store;
}

void look_up_all(const char* category, KZB_STORE* store) {
    for (int t = 0; t < kzb_get_table_num(category, store); ++t) {
        const std::string key = kzb_get_table_keyword(category, t, store);
        if (kzb_get_table_dim(category, key.c_str(), store) <= 5) {
            const double at[5] = {0.5, 0.5, 0.5, 0.5, 0.5};
            kzb_get_table_interpolated_value(category, key.c_str(), at, "Linear", store);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    static const kzb_fuzz::ScratchPath file("measured");
    if (size == 0) {
        return 0;
    }
    const char* const path = file.path();
    kzb_fuzz::hold(file.name(), kzb_fuzz::text_of(data + 1, size - 1));
    KZB_STORE* store = machine(data[0] % 3 == 2);
    if (data[0] % 3 == 0) {
        kzb_read_correction_file(path, store);
        kzb_read_correction_file(path, store);
    } else {
        kzb_add_loss_table(path, store);
        kzb_add_equivalent_copper_loss_resistance_table(path, store);
    }
    for (const char* category : {"correction", "loss_table", "equivalent_resistance_table", "ironloss"}) {
        look_up_all(category, store);
    }
    kzb_writer("/dev/null", store);
    kzb_finish(store);
    return 0;
}
