#include "coil_pair.h"

#include <algorithm>
#include <cmath>

namespace kzb_bench_test {

CoilPair::CoilPair(const CoilModel& model, int calc_mode, std::mt19937_64& random)
    : motor_type_(model.motor_type), coils_(coils_of(model.motor_type)) {
    make_random_coil_model(model, random, store_);
    file_ = std::make_unique<ModelFile>(store_);
    KZB_CALC* handle = nullptr;
    EXPECT_TRUE(file_->written());
    EXPECT_EQ(kzbcalcInitialize(file_->path(), calc_mode, &handle), 0);
    product_.reset(handle);
    reference_ = make_coil_reference(model.motor_type, calc_mode, store_);
}

void CoilPair::expect(const char* what, int number, double actual, double expected) {
    saw_nan_ = saw_nan_ || std::isnan(expected);
    if (!same_bits(actual, expected)) {
        ADD_FAILURE() << what << ' ' << number << " after call " << calls_ << ": " << std::hexfloat << actual
                      << " instead of " << expected << std::defaultfloat << " (" << actual << ", " << expected << ")";
    }
}

void CoilPair::set_data() {
    ++calls_;
    EXPECT_EQ(kzbcalcSetData(product_.get()), 0);
    reference_->set_data();
}

void CoilPair::set_time(double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetTime(value, product_.get()), reference_->set_time(value));
}

void CoilPair::set_displacement(double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetDisplacement(value, product_.get()), reference_->set_displacement(value));
}

void CoilPair::set_voltage(int phase, double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetVoltage(phase, value, product_.get()), reference_->set_voltage(phase, value));
}

void CoilPair::set_signal(int phase, int value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetSignal(phase, value, product_.get()), reference_->set_signal(phase, value));
}

void CoilPair::set_current(int phase, double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetCurrent(phase, value, product_.get()), reference_->set_current(phase, value));
}

void CoilPair::execute() {
    ++calls_;
    EXPECT_EQ(kzbcalcExecute(product_.get()), 0);
    reference_->execute();
}

void CoilPair::update() {
    ++calls_;
    EXPECT_EQ(kzbcalcUpdate(product_.get()), 0);
    reference_->update();
}

void CoilPair::set_interpolation(int type) {
    static constexpr const char* names[] = {"Linear", "Cubic", "Spline4", "Spline6", "Spline"};
    ++calls_;
    ASSERT_EQ(kzbcalcSetInterpolationType(type, product_.get()), 0);
    reference_->interpolation = names[type];
}

void CoilPair::set_initial_current(int phase, double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetInitialCurrent(phase, value, product_.get()), reference_->set_initial_current(phase, value));
}

void CoilPair::set_initial_time(double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetInitialTime(value, product_.get()), reference_->set_initial_time(value));
}

void CoilPair::set_initial_displacement(double value) {
    ++calls_;
    EXPECT_EQ(kzbcalcSetInitialDisplacement(value, product_.get()), reference_->set_initial_displacement(value));
}

void CoilPair::set_resistance(double value) {
    ++calls_;
    const int status = kzbcalcSetResistance(value, product_.get());
    EXPECT_EQ(status, value <= 0.0 ? 180041 : 0);
    if (status == 0) {
        reference_->R_base = value;
    }
}

void CoilPair::set_correction(int which, double value) {
    ++calls_;
    kzb_reference::CoilMachine& r = *reference_;
    static constexpr int (*calls[])(double, KZB_CALC*) = {
        kzbcalcSetCorrectionOfFlux,       kzbcalcSetCorrectionOfMagnet, kzbcalcSetCorrectionOfSteel,
        kzbcalcSetCorrectionOfInductance, kzbcalcSetCorrectionOfTorque, kzbcalcSetCorrectionOfCoilTurn1,
        kzbcalcSetCorrectionOfCoilTurn2};
    double* const fields[] = {&r.correction_flux,
                              &r.correction_magnet,
                              &r.correction_steel,
                              &r.correction_inductance,
                              &r.correction_torque,
                              &r.turns1,
                              &r.turns2};
    static constexpr int refused[] = {180017, 180020, 180021, 180018, 180019, 180016, 180016};
    const bool force = which == 4 && !has_torque();
    const int status = force ? kzbcalcSetCorrectionOfForce(value, product_.get()) : calls[which](value, product_.get());
    const bool bad = which < 5 ? value <= 0.0 : value < 0.0;
    const int expected = !bad ? 0 : (force ? 180033 : refused[which]);
    EXPECT_EQ(status, expected);
    if (status == 0) {
        *fields[which] = value;
    }
}

void CoilPair::switch_temperatures_on() {
    ++calls_;
    EXPECT_EQ(kzbcalcSetTemperatureCorrectionCalc(product_.get()), 0);
    reference_->temperature_correction = true;
}

void CoilPair::set_temperature(int which, double value) {
    ++calls_;
    kzb_reference::CoilMachine& r = *reference_;
    static constexpr int (*calls[])(double, KZB_CALC*) = {kzbcalcSetCoilTemperature,
                                                          kzbcalcSetCoilBaseTemperature,
                                                          kzbcalcSetCoilTemperatureCorrectionCoefficient,
                                                          kzbcalcSetMagnetTemperature,
                                                          kzbcalcSetMagnetBaseTemperature,
                                                          kzbcalcSetMagFluxTemperatureCorrectionCoefficient};
    double* const fields[] = {&r.coil_temperature,   &r.base_coil_temperature,   &r.coil_temperature_coefficient,
                              &r.magnet_temperature, &r.base_magnet_temperature, &r.magnet_temperature_coefficient};
    int expected = 0;
    if (!r.temperature_correction) {
        expected = 180046;
    } else if (which == 5 ? value < -100.0 || value > 0.0 : value < 0.0) {
        expected = which == 5 ? 180045 : (which == 2 ? 180044 : 180043);
    } else if (which >= 3 && motor_type_ >= 10010) {
        expected = 180039;  // no magnet
    }
    EXPECT_EQ(calls[which](value, product_.get()), expected) << which;
    if (expected == 0) {
        *fields[which] = value;
    }
}

void CoilPair::compare_results() {
    KZB_CALC* const handle = product_.get();
    for (int k = 0; k <= coils_ + 1; ++k) {
        expect("current", k, kzbcalcGetCurrent(k, handle), reference_->get_current(k));
        expect("voltage", k, kzbcalcGetVoltage(k, handle), reference_->get_voltage(k));
        expect("induced voltage", k, kzbcalcGetInducedVoltage(k, handle), reference_->get_induced_voltage(k));
        expect("magnet flux", k, kzbcalcGetMagFlux(k, handle), reference_->get_mag_flux(k));
    }
    expect("resistance", 0, kzbcalcGetResistance(handle), reference_->get_resistance());
    expect("copper loss", 0, kzbcalcGetCopperloss(handle), reference_->get_copperloss());
    peak_current_ = std::max(peak_current_, std::fabs(reference_->get_current(1)));
}

void CoilPair::compare_torque() {
    ++calls_;
    expect("torque", 0, kzbcalcGetTorque(product_.get()), reference_->get_torque());
    expect("force", 0, kzbcalcGetForce(product_.get()), reference_->get_force());
}

void CoilPair::compare_inductance(int row, int column) {
    ++calls_;
    expect("inductance", 10 * row + column, kzbcalcGetInductance(row, column, product_.get()),
           reference_->get_inductance(row, column));
}

void CoilPair::compare_statistics() {
    if (saw_nan_ || kzb_get_int("control", "number_of_poles", store_) == 0) {
        return;
    }
    for (const int slot : {1, 3, 5}) {
        EXPECT_EQ(product_->store->timing[slot], store_.timing[slot]) << "slot " << slot;
    }
    EXPECT_EQ(product_->store->error, store_.error);
}

}  // namespace kzb_bench_test
