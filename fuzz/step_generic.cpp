// Opens a calculator on a small generic model that the input makes, and makes the calls that it tells, in its order.
#include <cstdint>

#include "calculator_run.h"
#include "scratch_file.h"
#include "silence.h"
#include "step_generic_model.h"

namespace {

// A step takes up to fifty passes.
constexpr kzb_fuzz::RunBounds most{16, 3, 1};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    kzb_fuzz::silence();
    static const kzb_fuzz::ScratchPath file("generic");
    kzb_fuzz::Input in(data, size);
    kzb_fuzz::write_generic(in, file.name());
    kzb_fuzz::run_calculator(in, file.path(), kzb_fuzz::Machine::generic, most);
    return 0;
}
