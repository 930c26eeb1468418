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
        case 10006:
            return {motor_type, false, {"u", "v", "w"}};
        case 10007:
            return {motor_type, false, {"u", "v", "w", "f"}};
        case 10003:
            return {motor_type, false, {"a_plus", "a_minus", "b_plus", "b_minus"}};
        case 10004:
            return {motor_type, true, {"coil"}};
        case 10008:
            return {motor_type, false, {}};
        case 10010:
            return {motor_type, false, {"a", "b", "c"}};
        case 10011:
            return {motor_type, false, {"a", "b", "c", "d"}};
        case 10012:
            return {motor_type, false, {"a", "b", "c", "d", "e"}};
        default:
            throw Failure(exit_file,
                          fmt::format("{}: motor type {} ({}), expected 10000, 10003 to 10008 or 10010 to 10012", path,
                                      motor_type, motor_name(motor_type)));
    }
}

}  // namespace kzb::tool
