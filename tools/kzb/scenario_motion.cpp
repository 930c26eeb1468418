#include "kzb/scenario_motion.h"

#include "fmt/format.h"

namespace kzb::tool {

namespace {

// Keys carry their unit: angles and speeds of rotary machines have an ending, those of linear ones are SI without.
struct MotionKeys {
    const char* position;
    const char* speed;
    const char* start_speed;
    const char* inertia;
    const char* free_type;
};

MotionKeys keys_of(bool linear) {
    if (linear) {
        return {"start_position", "speed", "start_speed", "mass", "mover"};
    }
    return {"start_angle_deg", "speed_rpm", "start_speed_rpm", "inertia", "rotor"};
}

void read_free_motion(Section& section, const MotionKeys& keys, bool linear, WaveformReader& waveforms,
                      MotionData& motion) {
    motion.start_speed = section.number(keys.start_speed).value_or(0.0);
    motion.free.inertia = section.required(keys.inertia, section.positive(keys.inertia));
    motion.free.viscous = section.not_negative("viscous_friction").value_or(0.0);
    motion.free.coulomb = section.not_negative("coulomb_friction").value_or(0.0);
    motion.free.load = waveforms.read(section, "load").value_or(Waveform());
    if (linear) {
        motion.free.lower = section.number("lower_stop");
        motion.free.upper = section.number("upper_stop");
        if (motion.free.lower && motion.free.upper && !(*motion.free.lower < *motion.free.upper)) {
            section.fail("upper_stop", "not above lower_stop");
        }
        motion.free.spring = section.not_negative("spring_stiffness").value_or(0.0);
        motion.free.spring_position = section.number("spring_position").value_or(0.0);
        motion.free.restitution = section.not_negative("restitution").value_or(0.0);
        if (motion.free.restitution > 1.0) {
            section.fail("restitution", fmt::format("{} is above 1", motion.free.restitution));
        }
    }
}

}  // namespace

void read_motion_keys(Section& section, bool linear, WaveformReader& waveforms, MotionData& motion) {
    const MotionKeys keys = keys_of(linear);
    const auto type =
        section.required("type", section.choice("type", {"locked", "speed", "positions", keys.free_type}));
    motion.kind = static_cast<Motion>(type);
    motion.start = section.number(keys.position).value_or(0.0);
    switch (motion.kind) {
        case Motion::locked:
            break;
        case Motion::speed:
            motion.speed = section.required(keys.speed, waveforms.read(section, keys.speed));
            break;
        case Motion::positions:
            motion.position = Waveform(waveforms.points(section));
            break;
        case Motion::free:
            read_free_motion(section, keys, linear, waveforms, motion);
            break;
    }
}

}  // namespace kzb::tool
