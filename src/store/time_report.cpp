#include "store/time_report.h"

#include <cstdio>
#include <memory>

#include "diagnostics/number_text.h"
#include "diagnostics/own_file.h"

namespace kzb {

namespace {

void append_seconds(std::string& text, const char* label, double seconds) {
    text += label;
    append_scientific(text, seconds, 10, 5);
    text += "(sec)\n";
}

void append_scheme(std::string& text, const char* label, double calls, double core, double elapsed) {
    text += label;
    append_integer(text, static_cast<long long>(calls), 10);
    text += ", ";
    append_scientific(text, core, 10, 5);
    text += '/';
    append_scientific(text, elapsed, 10, 5);
    text += "(sec)\n";
}

}  // namespace

void append_time_report(KZB_STORE& store) {
    double* timing = store.timing;
    timing[slot_linear_core] = timing[slot_linear_elapsed] - timing[slot_linear_gather];
    std::string text = "*** " + store.input_path + " ***\n";
    append_seconds(text, "# Total interpolation elapsed time = ", timing[slot_total_elapsed]);
    append_scheme(text, "# Linear    interpolation core function call and elapsed time = ", timing[slot_linear_calls],
                  timing[slot_linear_core], timing[slot_linear_elapsed]);
    append_seconds(text, "# Linear interpolation check overhead = ", timing[slot_linear_gather]);
    append_scheme(text, "# Cubic     interpolation core function call and elapsed time = ", timing[slot_cubic_calls],
                  timing[slot_cubic_core], timing[slot_cubic_elapsed]);
    append_seconds(text, "# Cubic interpolation check overhead = ", timing[slot_cubic_gather]);
    append_scheme(text, "# Spline(n) interpolation core function call and elapsed time = ", timing[slot_spline_calls],
                  timing[slot_spline_core], timing[slot_spline_elapsed]);
    append_seconds(text, "# Spline(n) interpolation check overhead = ", timing[slot_spline_gather]);
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(open_own_file("KZBtime.txt", "a"), std::fclose);
    if (file) {
        std::fputs(text.c_str(), file.get());
    }
}

}  // namespace kzb
