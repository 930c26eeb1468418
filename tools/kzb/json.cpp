#include "kzb/json.h"

namespace kzb::tool {

std::string json_text(const Json& document) {
    return document.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace kzb::tool
