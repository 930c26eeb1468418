// Texts of the store's error and warning codes.
#pragma once

namespace kzb {

const char* error_text(int code);
const char* warning_text(int code);

}  // namespace kzb
