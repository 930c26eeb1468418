#include "kzb/machine.h"

#include <algorithm>

#include "fmt/format.h"
#include "kzb/command.h"
#include "kzb/model_file.h"

namespace kzb::tool {

std::optional<int> Machine::phase(std::string_view name) const {
    const auto at = std::find(phases.begin(), phases.end(), name);
    return at == phases.end() ? std::nullopt : std::optional<int>(static_cast<int>(at - phases.begin()) + 1);
}

Machine machine_of(int motor_type, const std::string& path) {
    switch (motor_type) {
        case 10000:
            return {motor_type, false, {"u", "v", "w"}};
        case 10005:
            return {motor_type, true, {"u", "v", "w"}};
        default:
            throw Failure(exit_file,
                          fmt::format("{}: motor type {} ({}), expected 10000 (PMSM) or 10005 (LinearSynchronous)",
                                      path, motor_type, motor_name(motor_type)));
    }
}

}  // namespace kzb::tool
