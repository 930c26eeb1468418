// KZLineElementType: what a component of a circuit is, without its place in it.
//
//   resistor   R i = u          capacitor  i = C du/dt         inductor  L di/dt = u
//   FEM coil   d(psi)/dt + R i = u, psi from tables (fem_coil.h)
//   probe      no current; shows the potential of its first terminal
//
// Values are reached by name: "resistance" Ohm, "capacitance" F, "inductance" H.
#pragma once

#include <boost/shared_ptr.hpp>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kzb {

// Codes of the file. A record of any other code becomes a plain element type of code `element_type_none`.
enum ElementTypeCode {
    element_type_fem_coil = 1,
    element_type_resistor = -1,
    element_type_capacitor = -2,
    element_type_inductor = -3,
    element_type_probe = -50,
    element_type_none = -100,
};

using CircuitMessage = std::pair<int, std::string>;  // code and text

class KZLineElementType {
  public:
    KZLineElementType(int record_id, int type_code) : id(record_id), type(type_code) {}
    KZLineElementType(const KZLineElementType&) = delete;
    KZLineElementType& operator=(const KZLineElementType&) = delete;
    virtual ~KZLineElementType() = default;

    virtual double get_parameter(std::string_view) const { return 0.0; }
    virtual double turn_ratio() const { return 1.0; }
    virtual int get_int_parameter(std::string_view) const { return 0; }
    virtual void set_parameter(std::string_view, double) {}
    // Accepts the step.
    virtual void update() {}
    // What the model's author has to be told.
    virtual std::vector<CircuitMessage> messages() const { return {}; }
    // Factor of the resistance at `temperature` (K).
    virtual double temperature_factor(double) const { return 1.0; }

    int id;
    int type;
    bool temperature_correction = false;
    std::string name;
};

// A component of one constant value; Class is the type's code.
template <int Class>
class KZConstantElement final : public KZLineElementType {
  public:
    KZConstantElement(int record_id, double constant) : KZLineElementType(record_id, Class), value(constant) {}

    static constexpr std::string_view key() {
        return Class == element_type_resistor    ? "resistance"
               : Class == element_type_capacitor ? "capacitance"
                                                 : "inductance";
    }
    double get_parameter(std::string_view parameter) const override { return parameter == key() ? value : 0.0; }
    void set_parameter(std::string_view parameter, double constant) override {
        if (parameter == key()) {
            value = constant;
        }
    }

    double value;
};

using KZConstantResistor = KZConstantElement<element_type_resistor>;    // Ohm
using KZConstantCapacitor = KZConstantElement<element_type_capacitor>;  // F
using KZConstantCoil = KZConstantElement<element_type_inductor>;        // H

class KZVProbe final : public KZLineElementType {
  public:
    explicit KZVProbe(int record_id) : KZLineElementType(record_id, element_type_probe) {}
};

}  // namespace kzb
