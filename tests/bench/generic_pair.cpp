#include "generic_pair.h"

#include <cmath>

#include "same_bits.h"

namespace kzb_bench_test {

using kzb_reference::Generic;

GenericPair::GenericPair(kzb_reference::Store& store, const std::filesystem::path& directory)
    : store_(store), file_(store), unplaced_at_start_(kzb_reference::unplaced_lookups()) {
    KZB_CALC* handle = nullptr;
    status_ = file_.written() ? kzbcalcInitialize(file_.path(), 1, &handle) : -1;
    product_.reset(handle);
    if (status_ == 0) {
        const std::filesystem::path before = std::filesystem::current_path();
        std::filesystem::current_path(directory.empty() ? before : directory);
        reference_ = std::make_unique<Generic>(store);
        std::filesystem::current_path(before);
    }
}

void GenericPair::interpolation(int scheme) {
    static constexpr const char* names[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};
    ASSERT_EQ(kzbcalcSetInterpolationType(scheme, product()), 0);
    reference_->interpolation = names[scheme];
}

void GenericPair::temperature_correction() {
    ASSERT_EQ(kzbcalcSetTemperatureCorrectionCalc(product()), 0);
    reference_->temperature_correction = true;
}

void GenericPair::iron_loss() {
    if (kzbcalcSetIronlossCalc(product()) == 0) {
        reference_->ironloss_flag = 1;
    }
}

void GenericPair::set_data() {
    kzbcalcSetData(product());
    reference_->set_data();
}

void GenericPair::time(double value) {
    EXPECT_EQ(kzbcalcSetTime(value, product()), reference_->set_time(value));
}

void GenericPair::displacement(int id, double value) {
    EXPECT_EQ(kzbcalcSetDisplacementForGenericModel(id, value, product()), reference_->set_displacement(id, value));
}

void GenericPair::initial_position(int id, double value) {
    EXPECT_EQ(kzbcalcSetInitialPositionForGenericModel(id, value, product()),
              reference_->set_initial_position(id, value));
}

void GenericPair::supply(int id, double value) {
    EXPECT_EQ(kzbcalcSetPowerSupplyForGenericModel(id, value, product()), reference_->set_power_supply(id, value));
}

void GenericPair::supply_switch(int id, int on) {
    EXPECT_EQ(kzbcalcSetPowerSupplySwitchForGenericModel(id, on, product()),
              reference_->set_power_supply_switch(id, on));
}

void GenericPair::supply_type(int id, int type) {
    EXPECT_EQ(kzbcalcSetPowerSupplyTypeForGenericModel(id, type, product()),
              reference_->set_power_supply_type(id, type));
}

void GenericPair::user_input(int index, double value) {
    EXPECT_EQ(kzbcalcSetUserInputParameter(index, value, product()), reference_->set_user_input(index, value));
}

void GenericPair::initial_current(int kind, int id, double value) {
    static constexpr int (*const calls[])(int, double, KZB_CALC*) = {
        kzbcalcSetInitialCoilCurrentForGenericModel, kzbcalcSetInitialResistorCurrentForGenericModel,
        kzbcalcSetInitialInductorCurrentForGenericModel, kzbcalcSetInitialCapacitorCurrentForGenericModel};
    static constexpr int wrong_id[] = {180039, 180052, 180050, 180051};
    const bool valid = id >= 1 && id <= reference_->port_count(kind);
    EXPECT_EQ(calls[kind](id, value, product()), valid ? 0 : wrong_id[kind]);
    reference_->set_initial_current(kind, id, value);
}

void GenericPair::part_value(int kind, int id, double value) {
    static constexpr int (*const calls[])(int, double, KZB_CALC*) = {
        kzbcalcSetCoilResistanceForGenericModel, kzbcalcSetResistanceForGenericModel,
        kzbcalcSetInductanceForGenericModel, kzbcalcSetCapacitanceForGenericModel};
    static constexpr int wrong_value[] = {180041, 180041, 180059, 180058};
    static constexpr int wrong_id[] = {180049, 180052, 180050, 180051};
    static constexpr const char* keys[] = {"resistance", "resistance", "inductance", "capacitance"};
    const bool valid = id >= 1 && id <= reference_->port_count(kind);
    EXPECT_EQ(calls[kind](id, value, product()), value <= 0.0 ? wrong_value[kind] : valid ? 0 : wrong_id[kind]);
    if (valid) {
        reference_->set_parameter(kind, id, keys[kind], value);
    }
}

void GenericPair::coil_setting(int which, int id, double value) {
    static constexpr int (*const calls[])(int, double, KZB_CALC*) = {
        kzbcalcSetCoilBaseTemperatureForGenericModel, kzbcalcSetCoilTemperatureCorrectionCoefficientForGenericModel,
        kzbcalcSetCorrectionOfFluxForGenericModel, kzbcalcSetCorrectionOfCoilTurn2ForGenericModel};
    static constexpr const char* keys[] = {"base_coil_temp", "coef_coil_temp", "coef_flux", "turns2"};
    static constexpr int wrong_value[] = {180043, 180044, 180017, 180016};
    if (which == 4) {
        EXPECT_EQ(kzbcalcSetCoilTemperatureForGenericModel(id, value, product()),
                  reference_->set_coil_temperature(id, value));
        return;
    }
    const bool refused = which == 2 ? value <= 0.0 : value < 0.0;
    const bool valid = id >= 1 && id <= reference_->port_count(0);
    EXPECT_EQ(calls[which](id, value, product()), refused ? wrong_value[which] : valid ? 0 : 180049);
    if (!refused && valid) {
        reference_->set_parameter(0, id, keys[which], value);
    }
}

void GenericPair::force_correction(int id, double value) {
    const bool valid = id >= 1 && id <= reference_->force_count();
    EXPECT_EQ(kzbcalcSetCorrectionOfForceForGenericModel(id, value, product()), value <= 0.0 ? 180019
                                                                                : valid      ? 0
                                                                                             : 180057);
    if (valid && !(value <= 0.0)) {
        reference_->set_coef_force(id, value);
    }
}

void GenericPair::user_correction(int id, double value) {
    const bool valid = id >= 1 && id <= reference_->user_parameter_count();
    EXPECT_EQ(kzbcalcSetCorrectionOfUserSpecifiedParameterForGenericModel(id, value, product()), value <= 0.0 ? 180016
                                                                                                 : valid      ? 0
                                                                                                              : 180064);
    if (valid && !(value <= 0.0)) {
        reference_->set_coef_output(id, value);
    }
}

void GenericPair::execute() {
    EXPECT_EQ(kzbcalcExecute(product()), 0);
    reference_->execute();
}

void GenericPair::update() {
    kzbcalcUpdate(product());
    reference_->update();
}

void GenericPair::expect(const std::string& what, int sample, double actual, double expected) {
    if (!same_bits(actual, expected)) {
        ADD_FAILURE() << what << " at sample " << sample << ": " << std::hexfloat << actual << " instead of "
                      << expected << std::defaultfloat << " (" << actual << ", relative "
                      << (actual - expected) / std::fabs(expected) << ")";
    }
}

void GenericPair::expect_equal_circuit(int sample) {
    const kzb::KZCircuitForGeneric& circuit = model().circuit();
    const kzb_reference::generic::Circuit& other = reference_->circuit;
    ASSERT_EQ(circuit.branch_count(), static_cast<int>(other.branches.size()));
    ASSERT_EQ(circuit.terminal_count(), static_cast<int>(other.terminals.size()));
    for (int i = 0; i < circuit.branch_count(); ++i) {
        const std::string branch = " of branch " + std::to_string(i);
        const auto& expected = *other.branches[static_cast<std::size_t>(i)];
        expect("current" + branch, sample, circuit.branch_at(i)->current, expected.current);
        expect("previous current" + branch, sample, circuit.branch_at(i)->previous_current, expected.previous_current);
        EXPECT_EQ(circuit.branch_at(i)->equation, expected.equation);
    }
    for (int i = 0; i < circuit.terminal_count(); ++i) {
        const std::string terminal = " of terminal " + std::to_string(i);
        const auto& expected = *other.terminals[static_cast<std::size_t>(i)];
        expect("potential" + terminal, sample, circuit.terminal_at(i)->potential, expected.potential);
        expect("previous potential" + terminal, sample, circuit.terminal_at(i)->previous_potential,
               expected.previous_potential);
        EXPECT_EQ(circuit.terminal_at(i)->type, expected.type);
        EXPECT_EQ(circuit.terminal_at(i)->switch_on, expected.switch_on);
    }
    for (const int position : other.fem_positions) {
        const std::string coil = " of coil " + std::to_string(position);
        const auto expected = other.fem_coil_at(position);
        const kzb::KZFEMCoil* const actual = kzb::as_fem_coil(circuit.element_type_at(position).get());
        ASSERT_NE(actual, nullptr);
        expect("flux" + coil, sample, actual->flux, expected->flux);
        expect("previous flux" + coil, sample, actual->previous_flux, expected->previous_flux);
        ASSERT_EQ(actual->inductances.size(), expected->inductances.size()) << coil << " sample " << sample;
        for (const auto& [key, value] : actual->inductances) {
            ASSERT_EQ(expected->inductances.count(key), 1u) << coil;
            expect("inductance " + std::to_string(key) + coil, sample, value, expected->inductances.at(key));
        }
    }
    const std::vector<double>& axes = model().tables().axes();
    ASSERT_EQ(axes.size(), reference_->tables.axes.size());
    for (std::size_t i = 0; i < axes.size(); ++i) {
        expect("axis " + std::to_string(i), sample, axes[i], reference_->tables.axes[i]);
    }
}

void GenericPair::expect_equal_ports(int sample) {
    KZB_CALC* const handle = product();
    static constexpr double (*const currents[])(int, KZB_CALC*) = {
        kzbcalcGetCoilCurrentForGenericModel, kzbcalcGetResistorCurrentForGenericModel,
        kzbcalcGetInductorCurrentForGenericModel, kzbcalcGetCapacitorCurrentForGenericModel};
    static constexpr double (*const values[])(int, KZB_CALC*) = {nullptr, kzbcalcGetResistanceForGenericModel,
                                                                 kzbcalcGetInductanceForGenericModel,
                                                                 kzbcalcGetCapacitanceForGenericModel};
    static constexpr const char* keys[] = {"", "resistance", "inductance", "capacitance"};
    for (int kind = 0; kind < 4; ++kind) {
        for (int id = 1; id <= reference_->port_count(kind); ++id) {
            const std::string part = " of part " + std::to_string(kind) + '/' + std::to_string(id);
            expect("current" + part, sample, currents[kind](id, handle), reference_->current(kind, id));
            if (kind == 1) {
                expect("value" + part, sample, values[kind](id, handle), reference_->resistance(kind, id));
            } else if (kind > 1) {
                expect("value" + part, sample, values[kind](id, handle), reference_->parameter(kind, id, keys[kind]));
            }
        }
    }
    for (int id = 1; id <= reference_->port_count(0); ++id) {
        const std::string coil = " of coil port " + std::to_string(id);
        expect("flux" + coil, sample, kzbcalcGetCoilFluxForGenericModel(id, handle),
               reference_->parameter(0, id, "flux"));
        expect("temperature" + coil, sample, kzbcalcGetCoilTemperatureForGenericModel(id, handle),
               reference_->coil_temperature(id));
        expect("base temperature" + coil, sample, kzbcalcGetCoilBaseTemperatureForGenericModel(id, handle),
               reference_->parameter(0, id, "base_coil_temp"));
        expect("coefficient" + coil, sample, kzbcalcGetCoilTemperatureCorrectionCoefficientForGenericModel(id, handle),
               reference_->parameter(0, id, "coef_coil_temp"));
        expect("flux correction" + coil, sample, kzbcalcGetCorrectionOfFluxForGenericModel(id, handle),
               reference_->parameter(0, id, "coef_flux"));
        expect("turns" + coil, sample, kzbcalcGetCorrectionOfCoilTurn2ForGenericModel(id, handle),
               reference_->parameter(0, id, "turns2"));
        expect("resistance" + coil, sample, kzbcalcGetCoilResistanceForGenericModel(id, handle),
               reference_->resistance(0, id));
    }
    for (int id = 1; id <= reference_->probe_count(); ++id) {
        expect("probe", sample, kzbcalcGetVoltageProbeValueForGenericModel(id, handle), reference_->probe(id));
    }
    for (int id = 1; id <= reference_->source_count(); ++id) {
        EXPECT_EQ(kzbcalcGetPowerSupplyTypeForGenericModel(id, handle), reference_->power_supply_type(id));
    }
    for (int id = 1; id <= reference_->force_count(); ++id) {
        const std::string force = "force " + std::to_string(id);
        expect(force, sample, kzbcalcGetForceForGenericModel(id, handle), reference_->force(id));
        expect(force + " correction", sample, kzbcalcGetCorrectionOfForceForGenericModel(id, handle),
               reference_->coef_force(id));
    }
    EXPECT_EQ(kzbcalcGetNumberOfUserSpecifiedParameters(handle), reference_->user_parameter_count());
    for (int id = 1; id <= reference_->user_parameter_count(); ++id) {
        expect("user parameter " + std::to_string(id), sample, kzbcalcGetUserSpecifiedParameter(id, handle),
               reference_->user_parameter(id));
    }
    expect("iron loss", sample, kzbcalcGetIronloss(handle), reference_->ironloss());
}

// The reference gives a lookup up before its reduction where a coordinate has no place, the product counts it.
void GenericPair::expect_equal_statistics(int sample) {
    EXPECT_EQ(model().pass_counts().passes, reference_->passes) << "sample " << sample;
    EXPECT_EQ(product_->store->error, store_.error) << "sample " << sample;
    if (kzb_reference::unplaced_lookups() > unplaced_at_start_) {
        return;
    }
    for (const int slot : {1, 3, 5}) {
        EXPECT_EQ(product_->store->timing[slot], store_.timing[slot]) << "slot " << slot << " sample " << sample;
    }
}

void GenericPair::expect_equal_results(int sample) {
    expect_equal_circuit(sample);
    expect_equal_ports(sample);
    expect_equal_statistics(sample);
}

}  // namespace kzb_bench_test
