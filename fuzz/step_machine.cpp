// Opens a calculator on a small model of a machine with windings, of any of the nine motor types, that the input makes,
// and makes the calls that it tells, in its order.
#include <cstdint>
#include <cstdlib>

#include "calculator_run.h"
#include "scratch_file.h"
#include "silence.h"
#include "step_machine_model.h"

namespace {

constexpr kzb_fuzz::RunBounds most{40, 6, 6};

void set_up() {
    kzb_fuzz::silence();
    static const bool done = [] {
        // Steps of a wound-field model that never settle would take 200 passes each.
        setenv("DORN_KZ_DEBUG_NITR", "6", 1);
        return true;
    }();
    (void)done;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    set_up();
    static const kzb_fuzz::ScratchPath file("machine");
    kzb_fuzz::Input in(data, size);
    kzb_fuzz::write_machine(in, file.name());
    kzb_fuzz::run_calculator(in, file.path(), kzb_fuzz::Machine::with_windings, most);
    return 0;
}
