#include "kzb/status_text.h"

#include "interface/status.h"

namespace kzb::tool {

std::string_view status_text(int status) {
    switch (status) {
#define KZB_STATUS_CASE(name, code, text) \
    case code:                            \
        return text;
        KZB_STATUS_LIST(KZB_STATUS_CASE)
#undef KZB_STATUS_CASE
        default:
            return "unknown status";
    }
}

}  // namespace kzb::tool
