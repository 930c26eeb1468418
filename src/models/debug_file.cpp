#include "models/debug_file.h"

#include <cstdlib>

#include "diagnostics/number_text.h"
#include "diagnostics/own_file.h"

namespace kzb {

int debug_output_level() {
    const char* const text = std::getenv("DORN_KZ_DEBUG_OUTPUT");
    return text == nullptr ? 0 : std::atoi(text);
}

void DebugFile::create(const char* name, std::string_view header) {
    file_.reset(open_own_file(name, "w"));
    write(header);
}

void DebugFile::write(std::string_view text) {
    if (file_) {
        std::fwrite(text.data(), 1, text.size(), file_.get());
    }
}

void DebugFile::row(std::initializer_list<double> fields) {
    if (!file_) {
        return;
    }
    line_.clear();
    for (const double field : fields) {
        if (!line_.empty()) {
            line_ += ',';
        }
        append_scientific(line_, field, 20, 10);
    }
    line_ += '\n';
    write(line_);
}

}  // namespace kzb
