#include "im_pair.h"

#include <algorithm>
#include <cstdlib>

#include "support/environment.h"

namespace kzb_bench_test {

namespace {

constexpr const char* schemes[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};

}  // namespace

ImPair::ImPair(std::unique_ptr<kzb_reference::Store> store, int calc_mode, const char* torque_type)
    : store_(std::move(store)), file_(std::make_unique<ModelFile>(*store_)) {
    const kzb_test::Environment environment("DORN_KZ_TORQUE_TYPE", torque_type);
    KZB_CALC* handle = nullptr;
    status_ = file_->written() ? kzbcalcInitialize(file_->path(), calc_mode, &handle) : -1;
    product_.reset(handle);
    reference_ = std::make_unique<kzb_reference::Induction>(
        *store_, calc_mode, kzb_reference::kzb_get_table_interpolated_value<kzb_reference::Bare>);
    reference_->set_torque_type(torque_type == nullptr ? 0 : std::atoi(torque_type));
}

void ImPair::set_interpolation(int scheme) {
    expect_status(kzbcalcSetInterpolationType(scheme, product_.get()), 0, "interpolation");
    reference_->set_interpolation(schemes[scheme]);
}

void ImPair::set_connection(int type) {
    expect_status(kzbcalcSetConnectionType(type, product_.get()), 0, "connection");
    reference_->set_connection(type);
}

void ImPair::set_resistance(double value) {
    expect_status(kzbcalcSetResistance(value, product_.get()), 0, "resistance");
    reference_->set_resistance(value);
}

void ImPair::set_secondary_resistance(double value) {
    expect_status(kzbcalcSetSecondaryResistance(value, product_.get()), reference_->set_secondary_resistance(value),
                  "secondary resistance");
}

void ImPair::set_slip_frequency(double value) {
    expect_status(kzbcalcSetSlipFrequency(value, product_.get()), reference_->set_slip_frequency(value), "slip");
}

void ImPair::set_step_size(double value) {
    expect_status(kzbcalcSetStepSize(value, product_.get()), reference_->set_step_size(value), "step size");
}

void ImPair::set_ironloss(bool old_formula) {
    const kzb_test::Environment environment("DORN_KZ_USE_OLD_IRONLOSS", old_formula ? "1" : nullptr);
    expect_status(kzbcalcSetIronlossCalc(product_.get()), reference_->set_ironloss_calc(old_formula), "iron loss");
}

void ImPair::set_user_copperloss() {
    expect_status(kzbcalcSetUserCopperlossCalc(product_.get()), reference_->set_user_copperloss_calc(), "copper loss");
}

void ImPair::set_dc_voltage(double value) {
    expect_status(kzbcalcSetDCVoltage(value, product_.get()), reference_->set_dc_voltage(value), "DC voltage");
}

void ImPair::set_carrier_frequency(double value) {
    expect_status(kzbcalcSetCarrierFrequency(value, product_.get()), reference_->set_carrier_frequency(value),
                  "carrier");
}

void ImPair::switch_temperatures_on() {
    expect_status(kzbcalcSetTemperatureCorrectionCalc(product_.get()), 0, "temperatures");
    reference_->temperature_correction = true;
}

void ImPair::set_coil_temperature(double value) {
    if (kzbcalcSetCoilTemperature(value, product_.get()) == 0) {
        reference_->coil_temperature = value;
    }
}

void ImPair::set_secondary_coil_temperature(double value) {
    if (kzbcalcSetSecondaryCoilTemperature(value, product_.get()) == 0) {
        reference_->secondary_coil_temperature = value;
    }
}

void ImPair::set_secondary_coil_base(double value) {
    if (kzbcalcSetSecondaryCoilBaseTemperature(value, product_.get()) == 0) {
        reference_->base_secondary_coil_temperature = value;
    }
}

void ImPair::set_secondary_coil_coefficient(double value) {
    if (kzbcalcSetSecondaryCoilTemperatureCorrectionCoefficient(value, product_.get()) == 0) {
        reference_->secondary_coil_coefficient = value;
    }
}

void ImPair::set_data() {
    expect_status(kzbcalcSetData(product_.get()), 0, "data");
    reference_->set_data();
}

void ImPair::set_initial_current(int phase, double value) {
    expect_status(kzbcalcSetInitialCurrent(phase, value, product_.get()), 0, "initial current");
    reference_->set_initial_current(phase, value);
}

void ImPair::set_initial_time(double value) {
    expect_status(kzbcalcSetInitialTime(value, product_.get()), 0, "initial time");
    reference_->set_initial_time(value);
}

void ImPair::set_initial_displacement(double value) {
    expect_status(kzbcalcSetInitialDisplacement(value, product_.get()), 0, "initial displacement");
    reference_->set_initial_displacement(value);
}

void ImPair::set_time(double value) {
    expect_status(kzbcalcSetTime(value, product_.get()), reference_->set_time(value), "time");
}

void ImPair::set_displacement(double value) {
    expect_status(kzbcalcSetDisplacement(value, product_.get()), 0, "displacement");
    reference_->set_displacement(value);
}

void ImPair::set_voltage(int phase, double value) {
    expect_status(kzbcalcSetVoltage(phase, value, product_.get()), 0, "voltage");
    reference_->set_voltage(phase, value);
}

void ImPair::set_current(int phase, double value) {
    expect_status(kzbcalcSetCurrent(phase, value, product_.get()), 0, "current");
    reference_->set_current(phase, value);
}

// A signal enters no number.
void ImPair::set_signal(int phase, int value) {
    expect_status(kzbcalcSetSignal(phase, value, product_.get()), 0, "signal");
}

void ImPair::execute() {
    expect_status(kzbcalcExecute(product_.get()), 0, "execute");
    reference_->execute();
}

void ImPair::get_torque() {
    const double product = kzbcalcGetTorque(product_.get());
    const double reference = reference_->get_torque();
    EXPECT_TRUE(same_bits(product, reference)) << "torque " << product << " instead of " << reference;
}

void ImPair::update() {
    expect_status(kzbcalcUpdate(product_.get()), 0, "update");
    reference_->update();
}

void ImPair::expect_equal_results(const std::string& where, bool cubic_calls) {
    KZB_CALC* const handle = product_.get();
    const auto expect = [&](const char* what, int number, double actual, double expected) {
        if (!same_bits(actual, expected)) {
            ADD_FAILURE() << what << ' ' << number << " at " << where << ": " << std::hexfloat << actual
                          << " instead of " << expected << std::defaultfloat << " (" << actual << ", relative "
                          << (actual - expected) / std::fabs(expected) << ")";
        }
    };
    for (int k = 1; k <= 3; ++k) {
        expect("current", k, kzbcalcGetCurrent(k, handle), reference_->get_current(k));
        expect("voltage", k, kzbcalcGetVoltage(k, handle), reference_->get_voltage(k));
        expect("induced voltage", k, kzbcalcGetInducedVoltage(k, handle), reference_->get_voltage(k));
    }
    for (int k = 0; k < 4; ++k) {
        expect("state", k, handle->state[static_cast<std::size_t>(k)], reference_->state(k));
    }
    expect("resistance", 0, kzbcalcGetResistance(handle), reference_->get_resistance());
    expect("secondary resistance", 0, kzbcalcGetSecondaryResistance(handle), reference_->get_secondary_resistance());
    expect("copper loss", 0, kzbcalcGetCopperloss(handle), reference_->get_copperloss());
    expect("primary copper loss", 0, kzbcalcGetPrimaryCopperLoss(handle), reference_->get_primary_copper_loss());
    expect("secondary copper loss", 0, kzbcalcGetSecondaryCopperLoss(handle), reference_->get_secondary_copper_loss());
    expect("user copper loss", 0, kzbcalcGetUserCopperLoss(handle), reference_->get_user_copper_loss());
    expect("iron loss", 0, kzbcalcGetIronloss(handle), reference_->get_ironloss());
    expect("secondary flux d", 0, kzbcalcGetSecondaryFluxD(handle), reference_->get_secondary_flux_d());
    expect("secondary flux q", 0, kzbcalcGetSecondaryFluxQ(handle), reference_->get_secondary_flux_q());
    expect("slip frequency", 0, kzbcalcGetSlipFrequency(handle), reference_->get_slip_frequency());
    expect("inductance type", 0, kzbcalcCheckInductionMotorInductanceType(handle), reference_->check_inductance_type());
    for (const std::size_t slot : {1, 3, 5}) {
        if (slot == 5 && !cubic_calls) {
            continue;
        }
        EXPECT_EQ(handle->store->timing[slot], store_->timing[slot]) << "slot " << slot << " at " << where;
    }
    EXPECT_EQ(handle->store->error, store_->error) << where;
    peak_current_ = std::max(peak_current_, std::fabs(reference_->get_current(1)));
}

}  // namespace kzb_bench_test
