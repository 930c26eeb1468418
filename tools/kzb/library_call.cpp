#include "kzb/library_call.h"

#include <algorithm>
#include <cerrno>

#include "fmt/format.h"
#include "fmt/ranges.h"
#include "kzb/library_noise.h"
#include "store/messages.h"

namespace kzb::tool {

LibraryAnswer ask_library(KZB_STORE& store, const std::function<int(KZB_STORE*)>& call) {
    LibraryAnswer answer;
    LibraryNoise noise;
    errno = 0;
    kzb_reset_error(&store);
    answer.result = call(&store);
    answer.error = kzb_has_error(&store);
    answer.said = noise.lines();
    std::erase_if(answer.said, tells_no_loss);
    return answer;
}

std::string cause_of(const LibraryAnswer& answer) {
    if (answer.error != 0) {
        return fmt::format("{} (error {})", error_text(answer.error), answer.error);
    }
    return answer.said.empty() ? "the library tells no cause" : fmt::format("{}", fmt::join(answer.said, "; "));
}

}  // namespace kzb::tool
