// Reads the input as a model file, once more as ascii where it has no head, loads all bodies, looks every table up in
// the middle of its axes, expands and skews.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "KZBCalculator/kzb_store.h"
#include "scratch_file.h"
#include "silence.h"

namespace {

void look_up_all(KZB_STORE* store) {
    for (int c = 0; c < kzb_get_category_num(store); ++c) {
        const std::string category = kzb_get_category_name(c, store);
        for (int t = 0; t < kzb_get_table_num(category.c_str(), store); ++t) {
            const std::string key = kzb_get_table_keyword(category.c_str(), t, store);
            const int dim = kzb_get_table_dim(category.c_str(), key.c_str(), store);
            if (dim < 1 || dim > 6) {
                continue;
            }
            std::vector<double> at;
            for (int axis = 1; axis <= dim; ++axis) {
                const int rows = kzb_get_table_num_rows(category.c_str(), key.c_str(), axis, store);
                const double first = kzb_get_table_axis_value(category.c_str(), key.c_str(), axis, 0, store);
                const double last = kzb_get_table_axis_value(category.c_str(), key.c_str(), axis, rows - 1, store);
                at.push_back(0.5 * first + 0.5 * last);
            }
            for (const char* method : {"Linear", "Cubic", "Spline4", "Spline6", "Spline"}) {
                kzb_get_table_interpolated_value(category.c_str(), key.c_str(), at.data(), method, store);
            }
        }
    }
}

void use_model(const char* path) {
    KZB_STORE* store = nullptr;
    kzb_initialize(&store);
    kzb_reader(path, store);
    kzb_set_application("ALL", "", store);
    look_up_all(store);
    kzb_expand_table_considering_phase_symmetry(store);
    kzb_apply_skew(3, 0, 5.0, 0.0, 2, 0, "Linear", store);
    kzb_make_LdLq(store);
    kzb_finish(store);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    static const kzb_fuzz::ScratchPath file("model");
    const std::string_view text = kzb_fuzz::text_of(data, size);
    kzb_fuzz::hold(file.name(), text);
    use_model(file.path());
    if (!text.starts_with("$DORN-KZ")) {
        setenv("KZB_READING_ASCII", "1", 1);
        use_model(file.path());
        unsetenv("KZB_READING_ASCII");
    }
    return 0;
}
