#include "kzb/outputs_generic.h"

#include <array>

#include "fmt/format.h"
#include "kzb/command.h"

namespace kzb::tool {

namespace {

using Outputs = std::vector<Output>;
using PortGetter = double (*)(int, KZB_CALC*);

// Labels of all output ports, in their order.
std::vector<std::string> labels_of(KZB_CALC* handle) {
    constexpr int label_size = 128;
    const int count = kzbcalcGetNumOfOutputPortsForGenericModel(handle);
    constexpr int first_status = 180000;
    if (count < 0 || count >= first_status) {
        return {};
    }
    std::vector<std::array<char, label_size>> buffers(static_cast<std::size_t>(count));
    std::vector<char*> pointers;
    for (auto& buffer : buffers) {
        buffer.fill('\0');
        pointers.push_back(buffer.data());
    }
    if (kzbcalcGetOutputLabelsForGenericModel(pointers.data(), count * label_size, handle) != 0) {
        return {};
    }
    std::vector<std::string> labels;
    for (const auto& buffer : buffers) {
        labels.emplace_back(buffer.data());
    }
    return labels;
}

class Ports {
  public:
    Ports(Outputs& outputs, std::vector<std::string> labels) : outputs_(outputs), labels_(std::move(labels)) {}

    void add(const PortNames& ports, const std::string& group, const char* unit, PortGetter get) {
        for (std::size_t k = 0; k < ports.names.size(); ++k) {
            Output output{
                group + '_' + column_part(ports.names[k]), group, unit, true,
                [get, port = static_cast<int>(k) + 1](const Sample&, KZB_CALC* handle) { return get(port, handle); }};
            output.label = next_label();
            outputs_.push_back(std::move(output));
        }
    }
    void add_force(const GenericMachine& machine) {
        for (std::size_t k = 0; k < machine.motions.names.size(); ++k) {
            const std::string group = machine.rotation[k] ? "torque" : "force";
            Output output{group + '_' + column_part(machine.motions.names[k]), group, machine.rotation[k] ? "Nm" : "N",
                          machine.has_force, [k](const Sample& sample, KZB_CALC*) { return sample.forces[k]; }};
            output.label = next_label();
            outputs_.push_back(std::move(output));
        }
    }
    void add_iron_loss() {
        Output output{"iron_loss", "iron_loss", "W", true,
                      [](const Sample&, KZB_CALC* handle) { return kzbcalcGetIronloss(handle); }};
        output.label = next_label();
        outputs_.push_back(std::move(output));
    }

  private:
    std::string next_label() { return next_ < labels_.size() ? labels_[next_++] : std::string(); }

    Outputs& outputs_;
    std::vector<std::string> labels_;
    std::size_t next_ = 0;
};

void add_inputs(Outputs& outputs, const GenericMachine& machine, const std::vector<bool>& current) {
    for (std::size_t k = 0; k < machine.sources.names.size(); ++k) {
        outputs.push_back({"source_" + column_part(machine.sources.names[k]), "source", current[k] ? "A" : "V", true,
                           [k](const Sample& sample, KZB_CALC*) { return sample.applied[k]; }});
    }
}

void add_motions(Outputs& outputs, const GenericMachine& machine) {
    for (std::size_t k = 0; k < machine.motions.names.size(); ++k) {
        const std::string name = column_part(machine.motions.names[k]);
        outputs.push_back({"displacement_" + name, "displacement", machine.rotation[k] ? "deg" : "m", true,
                           [k](const Sample& sample, KZB_CALC*) { return sample.displacements[k]; }});
        outputs.push_back({"speed_" + name, "speed", machine.rotation[k] ? "rpm" : "mps", true,
                           [k](const Sample& sample, KZB_CALC*) { return sample.speeds[k]; }});
    }
}

}  // namespace

std::vector<Output> generic_outputs(const GenericMachine& machine, const std::vector<bool>& current, KZB_CALC* handle) {
    Outputs outputs;
    outputs.push_back({"time", "time", "s", true, [](const Sample& sample, KZB_CALC*) { return sample.time; }});
    add_motions(outputs, machine);
    add_inputs(outputs, machine, current);
    Ports ports(outputs, labels_of(handle));
    ports.add(machine.coils, "i", "A", kzbcalcGetCoilCurrentForGenericModel);
    ports.add(machine.resistors, "i", "A", kzbcalcGetResistorCurrentForGenericModel);
    ports.add(machine.inductors, "i", "A", kzbcalcGetInductorCurrentForGenericModel);
    ports.add(machine.capacitors, "i", "A", kzbcalcGetCapacitorCurrentForGenericModel);
    ports.add(machine.probes, "v", "V", kzbcalcGetVoltageProbeValueForGenericModel);
    ports.add_force(machine);
    if (machine.has_iron_loss) {
        ports.add_iron_loss();
    }
    ports.add(machine.coils, "flux", "Wb", kzbcalcGetCoilFluxForGenericModel);
    ports.add(machine.outputs, "value", "", kzbcalcGetUserSpecifiedParameter);
    return outputs;
}

}  // namespace kzb::tool
