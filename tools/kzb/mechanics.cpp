#include "kzb/mechanics.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kzb::tool {

namespace {

constexpr double deg_per_s_per_rpm = 6.0;
constexpr double rad_per_s_per_rpm = std::numbers::pi / 30.0;

double towards_zero(double value, double by) {
    return value > 0.0 ? std::max(0.0, value - by) : std::min(0.0, value + by);
}

}  // namespace

Mechanics::Mechanics(const MotionData& data, bool linear, double time)
    : data_(data), linear_(linear), start_time_(time), time_(time), displacement_(data.start), speed_(0.0) {
    switch (data_.kind) {
        case Motion::locked:
            break;
        case Motion::speed:
            speed_ = data_.speed.at(time);
            break;
        case Motion::positions:
            displacement_ = data_.start + data_.position.at(time);
            break;
        case Motion::free:
            speed_ = data_.start_speed;
            break;
    }
}

void Mechanics::advance(double next_time, double torque) {
    const double h = next_time - time_;
    const double per_speed = linear_ ? 1.0 : deg_per_s_per_rpm;
    switch (data_.kind) {
        case Motion::locked:
            break;
        case Motion::speed:
            if (data_.speed.is_constant()) {
                displacement_ = data_.start + per_speed * speed_ * (next_time - start_time_);
            } else {
                const double next_speed = data_.speed.at(next_time);
                displacement_ += per_speed * h * 0.5 * (speed_ + next_speed);
                speed_ = next_speed;
            }
            break;
        case Motion::positions: {
            const double next = data_.start + data_.position.at(next_time);
            speed_ = h > 0.0 ? (next - displacement_) / h / per_speed : 0.0;
            displacement_ = next;
            break;
        }
        case Motion::free:
            advance_free(h, torque);
            break;
    }
    time_ = next_time;
}

void Mechanics::advance_free(double h, double torque) {
    const FreeMotion& free = data_.free;
    const double to_rad = linear_ ? 1.0 : std::numbers::pi / 180.0;
    const double to_omega = linear_ ? 1.0 : rad_per_s_per_rpm;
    const double omega = speed_ * to_omega;
    const double stretch = displacement_ * to_rad - free.spring_position + 0.25 * h * omega;
    const double damping = 1.0 + h * free.viscous / free.inertia + 0.25 * h * h * free.spring / free.inertia;
    const double pushed = (omega + h / free.inertia * (torque - free.load.at(time_) - free.spring * stretch)) / damping;
    const double next = towards_zero(pushed, h * free.coulomb / free.inertia / damping);
    displacement_ += h * 0.5 * (omega + next) / to_rad;
    speed_ = next / to_omega;
    // A stop turns the speed towards it back, or takes it.
    if (free.lower && displacement_ <= *free.lower) {
        displacement_ = *free.lower;
        speed_ = std::max(-free.restitution * speed_, speed_);
    }
    if (free.upper && displacement_ >= *free.upper) {
        displacement_ = *free.upper;
        speed_ = std::min(-free.restitution * speed_, speed_);
    }
}

}  // namespace kzb::tool
