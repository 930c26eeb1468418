// KZFEMCoil: a coil whose flux linkage comes from tables.
//
//   psi = k psi_table,  dpsi/di = k dpsi_table/di,  k = turns2 / turns * coef_flux
//   R(T) = R (1 + (T - T0) alpha),  alpha in ppm per K
//
// The flux of the accepted step is kept as the table gave it, without k, as established: with k other than 1 the coil's
// equation sees k psi - psi_table_previous.
#pragma once

#include <utility>
#include <vector>

#include "circuit/generic/line_element_type.h"

namespace kzb {

// Reported for a coil without a group.
inline constexpr int unlinked_coil_code = 180032;
inline constexpr const char* unlinked_coil_text =
    "The circuit included in the specified kzb file is invalid."
    "Modify the input mqd file to link FEM coil component is linked with FEM coil condition using DORN-Studio and "
    "recreate kzb file.";

class KZFEMCoil final : public KZLineElementType {
  public:
    explicit KZFEMCoil(int record_id) : KZLineElementType(record_id, element_type_fem_coil) {}

    double get_parameter(std::string_view parameter) const override;
    double turn_ratio() const override { return turns2 / turns; }
    int get_int_parameter(std::string_view parameter) const override { return parameter == "group_id" ? group_id : 0; }
    void set_parameter(std::string_view parameter, double value) override;
    void update() override { previous_flux = flux; }
    std::vector<CircuitMessage> messages() const override;
    double temperature_factor(double temperature) const override {
        return (temperature - base_temperature) * (coef_temperature * 1e-6) + 1.0;
    }

    double scaled_flux() const { return turn_ratio() * coef_flux * flux; }
    double scaled_inductance(int key) const;
    void set_flux(double value) { flux = value; }
    void set_inductance(int key, double value);

    double resistance = 0.0;  // Ohm
    int group_id = 0;
    std::vector<std::pair<int, double>> inductances;  // H by key, ascending, as the tables gave them
    double flux = 0.0;                                // Vs, likewise
    double previous_flux = 0.0;
    double turns = 1.0;
    double turns2 = 1.0;
    double coef_flux = 1.0;
    double base_temperature = 293.15;  // K
    double coef_temperature = 3810.0;  // ppm per K
    std::vector<int> interacted;       // element type ids 1, 2 ..: coils whose current acts on this flux

  private:
    double* parameter_of(std::string_view parameter);
};

// The coil, or null for any other element type.
inline KZFEMCoil* as_fem_coil(KZLineElementType* type) {
    return type != nullptr && type->type == element_type_fem_coil ? static_cast<KZFEMCoil*>(type) : nullptr;
}

}  // namespace kzb
