#include "kzb/scenario_slip.h"

namespace kzb::tool {

double SlipData::at(double time, double speed_rpm, int number_of_poles) const {
    if (frequency) {
        return frequency->at(time);
    }
    return supply_frequency->at(time) - 0.5 * number_of_poles * speed_rpm / 60.0;
}

SlipData read_slip(Section& root, const Machine& machine, WaveformReader& waveforms) {
    SlipData slip;
    if (!machine.is_induction()) {
        return slip;  // the section is unknown then, as any other that nobody asked for
    }
    std::optional<Section> section = root.section("slip");
    if (!section) {
        return slip;
    }
    slip.supply_frequency = waveforms.read(*section, "supply_frequency");
    slip.frequency = waveforms.read(*section, "frequency");
    if (slip.supply_frequency && slip.frequency) {
        section->fail("frequency", "given beside supply_frequency, expected one of the two");
    }
    if (!slip.given()) {
        section->missing("supply_frequency");
    }
    section->end();
    return slip;
}

double speed_of_slip(Section& mechanics, const Machine& machine) {
    const double slip = mechanics.required("slip", mechanics.number("slip"));
    const double frequency = mechanics.required("supply_frequency", mechanics.number("supply_frequency"));
    return 60.0 * frequency * (1.0 - slip) / (0.5 * machine.number_of_poles);
}

}  // namespace kzb::tool
